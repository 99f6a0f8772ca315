#include "tools/editor/win/Driver.h"

#include <cstdio>
#include <exception>

#include "tools/editor/win/Screenshot.h"
#include "tools/editor/win/WindowSearch.h"

namespace zoka {

namespace {

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

Driver::Driver(Editor& editor, EditorWindow& window, std::string file, DriveScript script,
               std::string pictures)
    : m_context{.editor = editor, .editorWindow = window},
      m_file(std::move(file)),
      m_script(std::move(script)),
      m_pictures(std::move(pictures)) {}

void Driver::run() {
    try {
        runLines();
        m_context.carryOut({"exit", "0"});
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
            m_context.carryOut(line.words);
        }
    }
}

void Driver::fail(const std::string& what) {
    m_context.useMemory(0);
    std::string text = m_file + ":" + std::to_string(m_line) + ": " + what + "\n";
    for (const DriveLine& line : m_script.lines) {
        if (line.number == m_line) {
            text += "  in: " + joined(line.words) + "\n";
        }
    }
    const std::string name = m_file.substr(m_file.find_last_of("\\/") + 1);
    const std::string path = m_pictures + "\\" + name + "-" + std::to_string(m_line) + ".png";
    constexpr unsigned kPatience = 1000;
    text += "  windows:\n" + describeAll();
    const Outcome taken = takePicture(screenArea(), path, kPatience);
    text += "  picture: " + (taken ? path : taken.why()) + "\n";
    std::fputs(text.c_str(), stderr);
    endProcess(1);
}

}  // namespace zoka
