#include "tools/editor/win/DriveContext.h"

#include <atomic>
#include <charconv>
#include <exception>

#include "tools/editor/win/Screenshot.h"
#include "tools/editor/win/WindowSearch.h"

namespace zoka {

namespace {

constexpr DWORD kBetweenLooks = 4;  // ms

const DriveCommands& commands() {
    static const DriveCommands table = [] {
        DriveCommands all;
        addEditorCommands(all);
        addWindowCommands(all);
        addControlCommands(all);
        addLayoutCommands(all);
        addPaintCommands(all);
        addInputCommands(all);
        addFileCommands(all);
        addCheckCommands(all);
        return all;
    }();
    return table;
}

}  // namespace

// `done` is stored last.
struct DriveJob {
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

std::string listed(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "\"" : " \"") + text + "\"";
    }
    return all.empty() ? "nothing" : all;
}

void DriveContext::carryOut(const Words& words) {
    const auto found = commands().find(words[0]);
    if (found == commands().end()) {
        throw DriveFault("there is no command \"" + words[0] + "\"");
    }
    const DriveCommand& command = found->second;
    const Words rest(words.begin() + 1, words.end());
    if (rest.size() < command.least || rest.size() > command.most) {
        throw DriveFault("wrong number of words for " + listed(words));
    }
    command.run(*this, rest);
}

void DriveContext::useMemory(long megabytes) {
    constexpr SIZE_T kMegabyte = 1 << 20;
    constexpr SIZE_T kLargest = SIZE_T{1} << 30;
    for (void* const piece : usedMemory) {
        VirtualFree(piece, 0, MEM_RELEASE);
    }
    usedMemory.clear();
    const SIZE_T least = static_cast<SIZE_T>(megabytes) * kMegabyte;
    for (SIZE_T size = kLargest; least > 0 && size >= least; size /= 2) {
        while (void* const piece = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS)) {
            usedMemory.push_back(piece);
        }
    }
}

bool DriveContext::until(const std::function<bool()>& condition) const {
    const ULONGLONG end = GetTickCount64() + patience;
    while (!condition()) {
        if (GetTickCount64() > end) {
            return false;
        }
        Sleep(kBetweenLooks);
    }
    return true;
}

void DriveContext::expect(const std::function<bool()>& condition, const std::string& expected,
                          const std::function<std::string()>& seen) const {
    if (!until(condition)) {
        throw DriveFault("expected " + expected + "; saw " + seen());
    }
}

void DriveContext::onEditor(std::function<std::int32_t()> work) {
    if (job) {
        throw DriveFault("what was started before has not been finished (\"finish\")");
    }
    job = std::make_shared<DriveJob>();
    job->work = std::move(work);
    editorWindow.post([posted = job] {
        try {
            posted->result = posted->work();
        } catch (const std::exception& fault) {
            posted->fault = fault.what();
        }
        posted->done = true;
    });
    if (!starting) {
        awaitJob();
    }
}

void DriveContext::awaitJob() {
    if (!job) {
        throw DriveFault("nothing was started");
    }
    expect([&] { return job->done.load(); }, "the call to return",
           [] { return std::string("it still runs"); });
    const std::shared_ptr<DriveJob> ended = std::move(job);
    if (!ended->fault.empty()) {
        throw DriveFault(ended->fault);
    }
    result = ended->result;
}

void DriveContext::askEditor(std::function<void()> work) const {
    const auto done = std::make_shared<std::atomic<bool>>(false);
    editorWindow.post([done, work = std::move(work)] {
        work();
        *done = true;
    });
    expect([&] { return done->load(); }, "the editor to answer", [] { return std::string("no answer"); });
}

ProcedureState& DriveContext::procedure(const std::string& name) const {
    ProcedureState* const state = editor.procedure(name);
    if (!state) {
        throw DriveFault("the plug-in has no procedure \"" + name + "\"");
    }
    return *state;
}

LevelEntity DriveContext::entity(const std::string& name) const {
    LevelEntity found;
    const auto copy = [&](LevelEntity& one) {
        found = one;
        return true;
    };
    if (!editor.level().withEntity(name, copy)) {
        throw DriveFault("the level has no entity \"" + name + "\"");
    }
    return found;
}

HWND DriveContext::window() const {
    if (!current || !IsWindow(current)) {
        throw DriveFault("the window that the script worked with is gone");
    }
    return current;
}

HWND DriveContext::control(const std::string& name) const {
    const HWND top = window();
    HWND found = nullptr;
    expect([&] { return (found = findControl(top, name)) != nullptr; },
           "a control " + name + " in " + describe(top),
           [&] {
               std::vector<std::string> all;
               for (const HWND child : childWindows(top)) {
                   if (IsWindowVisible(child)) {
                       all.push_back(describe(child));
                   }
               }
               return listed(all);
           });
    return found;
}

HWND DriveContext::usableControl(const std::string& name) const {
    const HWND top = window();
    HWND found = control(name);
    // Looked up anew each time: a search may just be taking away the row that it was in.
    const auto usable = [&] {
        if (const HWND now = findControl(top, name)) {
            found = now;
        }
        return IsWindowEnabled(found) && IsWindowEnabled(top);
    };
    expect(usable, name + " to be enabled", [] { return std::string("it is disabled"); });
    return found;
}

void DriveContext::notifyParent(HWND child, WORD code) const {
    PostMessageA(GetParent(child), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(child), code),
                 reinterpret_cast<LPARAM>(child));
}

void DriveContext::picture(const std::string& path, const RECT& area) const {
    if (const Outcome taken = takePicture(area, path, patience); !taken) {
        throw DriveFault(taken.why());
    }
}

}  // namespace zoka
