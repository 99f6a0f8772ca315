// Runs a drive script against the editor's window, on a thread of its own, so that it goes on while modal
// windows of the plug-in's hold the editor's thread. The commands are described in docs/editor.md.
#pragma once

#include <atomic>
#include <string>

#include "tools/editor/DriveScript.h"
#include "tools/editor/win/DriveContext.h"

namespace zoka {

class Driver {
public:
    // `window` and `editor` must outlive the driver. `pictures`: folder for the picture that is taken on a
    // failure.
    Driver(Editor& editor, EditorWindow& window, std::string file, DriveScript script, std::string pictures);

    // Carries out the script and ends the process: with 0 at its end, with N at "exit N", with 1 after a
    // failure (said on the standard error stream as "file:line: ..."). [driver's thread]
    void run();

    // The line that is being carried out, for a watchdog's message. Works on every thread.
    int currentLine() const { return m_line; }

private:
    void runLines();
    [[noreturn]] void fail(const std::string& what);

    DriveContext m_context;
    std::string m_file;
    DriveScript m_script;
    std::string m_pictures;
    std::atomic<int> m_line{0};
};

}  // namespace zoka
