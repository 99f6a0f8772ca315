// A window of the DLL's own, opened as a user does.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "tests/support/TempFolder.h"
#include "tools/editor/win/Editor.h"

namespace zoka::bench {

// The stand-in editor with the plug-in, and a project open in a folder that is the suite's too. `folder` gets a level
// and its main script.
class PluginEditor {
public:
    PluginEditor(const test::TempFolder& folder, const std::string& dll);
    ~PluginEditor() { m_editor.unloadPlugin(); }
    PluginEditor(const PluginEditor&) = delete;
    PluginEditor& operator=(const PluginEditor&) = delete;

    // Another one.
    void openProject(const test::TempFolder& folder);
    Editor& editor() { return m_editor; }

private:
    CallLog m_log;
    Editor m_editor;
};

// Opens a modal window through its procedure, hands it to `use` once it is painted, and closes it. One at a time.
class WindowRun {
public:
    // `title` is what the window's title begins with. One that is filled later says by `isFilled` when it is, and is
    // used then; `seen` gets it before.
    WindowRun(Editor& editor, const std::string& procedure, std::string title, std::function<void(HWND)> use,
              std::function<bool(HWND)> isFilled = {}, std::function<void(HWND)> seen = {});

    // From the call of the procedure to the painted window, in milliseconds.
    double opening() const { return m_opening; }
    // The same to the painted window with all that it shows.
    double filling() const { return m_filling; }

private:
    static LRESULT CALLBACK hookProc(int code, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK helperProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void opened(HWND window);
    double elapsed() const;

    static WindowRun* s_current;
    const std::string m_title;
    const std::function<void(HWND)> m_use;
    const std::function<bool(HWND)> m_isFilled;
    const std::function<void(HWND)> m_seen;
    HWND m_helper = nullptr;
    LARGE_INTEGER m_start{};
    double m_opening = 0, m_filling = 0;
    double m_looking = 0;  // what `seen` took
    bool m_done = false;
};

}  // namespace zoka::bench
