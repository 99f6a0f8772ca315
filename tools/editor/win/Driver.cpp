#include "tools/editor/win/Driver.h"

#include <charconv>
#include <cstdio>
#include <exception>

#include "tools/editor/win/Screenshot.h"
#include "tools/editor/win/WindowSearch.h"

namespace zoka {

namespace {

constexpr DWORD kBetweenLooks = 4;  // ms

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        const bool plain = !word.empty() && word.find_first_of(" \"") == std::string::npos;
        text += (text.empty() ? "" : " ") + (plain ? word : "\"" + word + "\"");
    }
    return text;
}

// Not ExitProcess: the editor's thread may hang inside the plug-in.
[[noreturn]] void endProcess(UINT status) {
    std::fflush(stdout);
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), status);
    std::abort();
}

}  // namespace

// A piece of work on its way to the editor's thread and back. `state` is stored last.
struct Driver::Job {
    std::function<std::int32_t()> work;
    std::int32_t result = 0;
    std::string fault;
    std::atomic<bool> done{false};
};

long driveNumber(const std::string& word) {
    const bool hex = word.size() > 2 && word[0] == '0' && (word[1] == 'x' || word[1] == 'X');
    const char* const first = word.data() + (hex ? 2 : 0);
    const char* const last = word.data() + word.size();
    long number = 0;
    const auto [end, error] = std::from_chars(first, last, number, hex ? 16 : 10);
    if (error != std::errc() || end != last) {
        throw DriveFault("\"" + word + "\" is no number");
    }
    return number;
}

Driver::Driver(Editor& editor, EditorWindow& window, std::string file, DriveScript script,
               std::string pictures)
    : m_editor(editor),
      m_editorWindow(window),
      m_file(std::move(file)),
      m_script(std::move(script)),
      m_pictures(std::move(pictures)),
      m_window(window.handle()) {}

const std::map<std::string, Driver::Command>& Driver::commands() {
    static const std::map<std::string, Command> table = [] {
        std::map<std::string, Command> all;
        addEditorCommands(all);
        addWindowCommands(all);
        addControlCommands(all);
        addInputCommands(all);
        addFileCommands(all);
        addCheckCommands(all);
        return all;
    }();
    return table;
}

void Driver::run() {
    try {
        runLines();
        carryOut({"exit", "0"});
    } catch (const std::exception& fault) {
        fail(fault.what());
    }
}

void Driver::runLines() {
    std::vector<int> left(m_script.lines.size(), 0);  // rounds of each repeat still to come
    for (size_t at = 0; at < m_script.lines.size(); ++at) {
        const DriveLine& line = m_script.lines[at];
        m_line = line.number;
        if (line.words[0] == "repeat") {
            left[at] = line.times;
        } else if (line.words[0] == "end") {
            if (--left[line.partner] > 0) {
                at = line.partner;
            }
        } else {
            carryOut(line.words);
        }
    }
}

void Driver::carryOut(const Words& words) {
    const auto found = commands().find(words[0]);
    if (found == commands().end()) {
        throw DriveFault("there is no command \"" + words[0] + "\"");
    }
    const Command& command = found->second;
    const Words rest(words.begin() + 1, words.end());
    if (rest.size() < command.least || rest.size() > command.most) {
        throw DriveFault("wrong number of words for this command: " + joined(words));
    }
    (this->*command.run)(rest);
}

void Driver::fail(const std::string& what) {
    std::string text = m_file + ":" + std::to_string(m_line) + ": " + what + "\n";
    for (const DriveLine& line : m_script.lines) {
        if (line.number == m_line) {
            text += "  in: " + joined(line.words) + "\n";
        }
    }
    const std::string name = m_file.substr(m_file.find_last_of("\\/") + 1);
    const std::string path = m_pictures + "\\" + name + "-" + std::to_string(m_line) + ".png";
    std::string error;
    constexpr unsigned kPatience = 1000;
    text += "  windows:\n" + describeAll();
    text += "  picture: " + (takePicture(screenArea(), path, kPatience, error) ? path : error) + "\n";
    std::fputs(text.c_str(), stderr);
    endProcess(1);
}

bool Driver::until(const std::function<bool()>& condition) const {
    const ULONGLONG end = GetTickCount64() + m_patience;
    while (!condition()) {
        if (GetTickCount64() > end) {
            return false;
        }
        Sleep(kBetweenLooks);
    }
    return true;
}

void Driver::expect(const std::function<bool()>& condition, const std::string& expected,
                    const std::function<std::string()>& seen) const {
    if (!until(condition)) {
        throw DriveFault("expected " + expected + "; saw " + seen());
    }
}

void Driver::onEditor(std::function<std::int32_t()> work) {
    if (m_job) {
        throw DriveFault("what was started before has not been finished (\"finish\")");
    }
    const auto job = std::make_shared<Job>();
    job->work = std::move(work);
    m_job = job;
    m_editorWindow.post([job] {
        try {
            job->result = job->work();
        } catch (const std::exception& fault) {
            job->fault = fault.what();
        }
        job->done = true;
    });
    if (!m_start) {
        awaitJob();
    }
}

void Driver::awaitJob() {
    if (!m_job) {
        throw DriveFault("nothing was started");
    }
    const std::shared_ptr<Job> job = m_job;
    expect([&] { return job->done.load(); }, "the call to return",
           [] { return std::string("it still runs"); });
    m_job.reset();
    if (!job->fault.empty()) {
        throw DriveFault(job->fault);
    }
    m_result = job->result;
}

void Driver::askEditor(std::function<void()> work) {
    const auto done = std::make_shared<std::atomic<bool>>(false);
    m_editorWindow.post([done, work = std::move(work)] {
        work();
        *done = true;
    });
    expect([&] { return done->load(); }, "the editor to answer", [] { return std::string("no answer"); });
}

ProcedureState& Driver::procedure(const std::string& name) {
    ProcedureState* const state = m_editor.procedure(name);
    if (!state) {
        throw DriveFault("the plug-in has no procedure \"" + name + "\"");
    }
    return *state;
}

HWND Driver::window() const {
    if (!m_window || !IsWindow(m_window)) {
        throw DriveFault("the window that the script worked with is gone");
    }
    return m_window;
}

void Driver::picture(const std::string& path, const RECT& area) const {
    std::string error;
    if (!takePicture(area, path, m_patience, error)) {
        throw DriveFault(error);
    }
}

}  // namespace zoka
