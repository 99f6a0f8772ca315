// One page of the "Project Manager" window, and what the window offers to its pages.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <string>

#include "templates/ScriptManagerSession.h"
#include "ui/win/WindowKit.h"

namespace zoka {

class ManagerFrame {
public:
    virtual ~ManagerFrame() = default;
    virtual HWND window() const = 0;
    virtual ScriptManagerSession& session() = 0;
    virtual const WindowFonts& fonts() const = 0;
    // After an action: every page shows the session's new state, the foot its status.
    virtual void sessionChanged() = 0;
    virtual void setStatus(const std::string& text) = 0;
    // Runs a job of the session that may take long; the window takes no input meanwhile, and the user can
    // cancel.
    virtual void runJob(const std::string& title, const std::function<void(JobProgress&)>& job) = 0;
    // Shows a text that the user reads and may copy, and returns when its window is closed.
    virtual void showText(const std::string& title, const std::string& heading, const std::string& text) = 0;
    // Opens the customization panel for a script; false where there is none.
    virtual bool canCustomize() const = 0;
    virtual void customize(const std::string& scriptPath) = 0;
};

// A window without frame inside the dialog. Its controls are made when the page is first shown.
class PageWindow {
public:
    explicit PageWindow(ManagerFrame& frame) : m_frame(frame) {}
    virtual ~PageWindow() = default;
    PageWindow(const PageWindow&) = delete;
    PageWindow& operator=(const PageWindow&) = delete;

    // Makes the window with its controls, not visible; false on failure. Its window goes with the dialog.
    bool create(HWND dialog);
    HWND window() const { return m_window; }

    // Shows the session's present state.
    virtual void refresh() = 0;
    // What Enter does where no button has the keyboard.
    virtual void mainAction() = 0;
    // Where the keyboard goes when the page is first shown.
    virtual HWND firstField() const = 0;
    // A control of the page did something.
    virtual void command(int id, int code) = 0;

protected:
    virtual void createControls() = 0;
    // Places the controls on a page of that size, in pixels.
    virtual void layout(int width, int height) = 0;
    // The answer goes back to the control.
    virtual LRESULT notified(NMHDR&) { return 0; }
    virtual void timer(UINT_PTR) {}
    // Has settled() called before the next input. A list drops its selection before it takes another one: what hangs
    // on it is shown when both are done.
    void settleSoon();
    virtual void settled() {}
    // Of owner-drawn lists.
    virtual void measure(MEASUREITEMSTRUCT&) {}
    virtual void draw(const DRAWITEMSTRUCT&) {}

    ScriptManagerSession& session() const { return m_frame.session(); }
    const WindowFonts& fonts() const { return m_frame.fonts(); }
    HWND label(const char* text);
    HWND button(const char* text, int id, bool isMain = false);

    ManagerFrame& m_frame;

private:
    static INT_PTR CALLBACK dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND m_window = nullptr;
    bool m_settlesSoon = false;
};

}  // namespace zoka
