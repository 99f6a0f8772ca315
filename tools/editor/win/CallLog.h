// The record of everything that passes between the editor and the plug-in: what the editor calls, what the
// plug-in calls, and what came of it. Kept in memory for the log pane and the drive scripts, and written to a
// file as it comes.
#pragma once

#include <windows.h>

#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

#include "tools/editor/win/SlimLock.h"

namespace zoka {

struct CallLogLine {
    std::string thread;  // "editor", or "panel" and the thread's number
    std::string call;
    std::string answer;
};

// All operations work on every thread.
class CallLog {
public:
    // `editorThread`: the thread whose lines say "editor".
    explicit CallLog(DWORD editorThread) : m_editorThread(editorThread) {}
    ~CallLog();

    // Also writes every line from now on to `path`, each as "thread: call -> answer". False when it can't be
    // opened.
    bool openFile(const std::string& path);
    // The window that is sent `message` (posted) once for any number of new lines, until it has asked for
    // size().
    void notify(HWND window, UINT message);

    // Keeps a line; on standard output too when echo is on.
    void add(const std::string& call, const std::string& answer);
    void setEcho(bool on);

    size_t size();
    CallLogLine line(size_t index);
    void clear();
    // Whether a kept line from `first` on, in the form of the file, holds `text`.
    bool holds(const std::string& text, size_t first = 0);

private:
    SlimLock m_mutex;
    std::vector<CallLogLine> m_lines;
    DWORD m_editorThread;
    std::FILE* m_file = nullptr;
    HWND m_window = nullptr;
    UINT m_message = 0;
    bool m_told = false;
    bool m_echo = false;
};

// Text between quotes, cut where it grows long, control characters shown as dots: for log lines.
std::string quoted(const char* text, size_t limit = 300);

}  // namespace zoka
