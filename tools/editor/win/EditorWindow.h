// The stand-in editor's window: menu, the level's entities, the log of calls, a status bar.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <queue>
#include <string>
#include <vector>

#include "tools/editor/win/Editor.h"
#include "tools/editor/win/EditorMenu.h"
#include "tools/editor/win/EntityList.h"
#include "tools/editor/win/ReportList.h"
#include "tools/editor/win/SlimLock.h"

namespace zoka {

class EditorWindow {
public:
    // [editor thread], like everything here but post(). `editor` must outlive the window.
    explicit EditorWindow(Editor& editor);
    ~EditorWindow();
    EditorWindow(const EditorWindow&) = delete;
    EditorWindow& operator=(const EditorWindow&) = delete;

    // Creates and shows the window. False when the system refuses.
    bool create(bool show);
    HWND handle() const { return m_window; }
    // Runs the message loop until the window is closed; the process's exit status. A window that was destroyed leaves
    // it running.
    int run();
    // As another part of an editor may do it, by a message that is sent: the window goes, no message loop is told, and
    // the thread goes on. create() makes another one. Works on every thread.
    void destroy();
    // Tells the editor's thread by WM_QUIT that the program ends, but only as a rehearsal: the message loop notes it
    // when it comes there, and goes on. Works on every thread, like the question for what was noted last (-1: nothing).
    void rehearseQuit(int status);
    int notedQuit() const { return m_notedQuit; }

    // Has `job` run on the editor's thread as soon as that thread takes messages, be it inside a modal window
    // of the plug-in's. Works on every thread.
    void post(std::function<void()> job);

    // What a choice of the user's in the menu does: runs a procedure, or, where it is busy, asks whether to
    // terminate it.
    void choose(ProcedureState& procedure);

    // Selects the entities, in the list too.
    void selectEntities(const std::vector<std::string>& names) { m_entities.select(names); }

private:
    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT onNotify(NMHDR& header);
    void onCommand(UINT command);
    void onCreate();
    void onClose();
    void runJobs();

    void layOut();
    void dragSplitter(int y);
    void showLog();
    void showStatus();
    void editorChanged();

    void openProject();
    void loadPlugin();
    void saveLevel();
    void about();
    void complain(const std::string& text);
    void complainOf(const Outcome& outcome);  // where it is a refusal

    Editor& m_editor;
    EditorMenu m_menu;
    HWND m_window = nullptr;
    EntityList m_entities;
    ReportList m_log;
    HWND m_status = nullptr;
    HFONT m_font = nullptr;
    HACCEL m_keys = nullptr;
    int m_logShare = 40;  // percent of the height that the log takes
    bool m_dragging = false;
    std::string m_shownStatus;
    DWORD m_thread = GetCurrentThreadId();
    bool m_endsLoop = true;  // when the window goes
    std::atomic<bool> m_rehearsesQuit{false};
    std::atomic<int> m_notedQuit{-1};

    SlimLock m_jobMutex;
    std::queue<std::function<void()>> m_jobs;
};

}  // namespace zoka
