// What a panel's thread needs from the panel it carries.
#pragma once

#include <windows.h>

#include <atomic>

#include "plugin/PluginSeams.h"
#include "util/JobProgress.h"

namespace zoka {

class PanelWindow : public PanelDialog, protected JobProgress {
public:
    // [panel thread] Makes the modeless window from the dialog resource `number`, not shown yet; null on
    // failure. It closes itself by DestroyWindow, on WM_CLOSE. Slow reading belongs into `load`. What the
    // window needs from other libraries is to be loaded here, not at its closing: a closing panel must do
    // without the loader's lock.
    virtual HWND create(HINSTANCE instance, int number) = 0;
    // [panel thread] Called once from the message loop when the window is on the screen. Gives up at its next step
    // once the panel is to leave.
    virtual void load() = 0;
    // [panel thread] The window is gone, and every loop that ran within it. May come while the library is being freed:
    // nothing may be shown, and the loader's lock not be needed.
    virtual void gone() noexcept {}
    // [any thread] The editor wants the panel gone.
    void leave() { m_leaving.store(true); }

protected:
    // What loading asks before each step. [panel thread]
    bool step(size_t, size_t, const std::string&) override { return !m_leaving.load(); }

private:
    std::atomic<bool> m_leaving{false};
};

// The module that holds the resources; set when the library is loaded.
HINSTANCE moduleInstance();
void setModuleInstance(HINSTANCE instance);

}  // namespace zoka
