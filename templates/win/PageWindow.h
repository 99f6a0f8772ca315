// One page of the "Project Manager" window, and what the window offers to its pages.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <string>

#include "templates/ScriptManagerSession.h"
#include "ui/win/PageShell.h"

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

class PageWindow : public Page {
public:
    explicit PageWindow(ManagerFrame& frame) : Page(frame.fonts()), m_frame(frame) {}

protected:
    ScriptManagerSession& session() const { return m_frame.session(); }

    ManagerFrame& m_frame;
};

}  // namespace zoka
