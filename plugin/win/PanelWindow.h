// What a panel's thread needs from the panel it carries.
#pragma once

#include <windows.h>

#include "plugin/PluginSeams.h"

namespace zoka {

class PanelWindow : public PanelDialog {
public:
    // [panel thread] Makes the modeless window from the dialog resource `number`, not shown yet; null on
    // failure. It closes itself by DestroyWindow, on WM_CLOSE. Slow reading belongs into `load`. What the
    // window needs from other libraries is to be loaded here, not at its closing: a closing panel must do
    // without the loader's lock.
    virtual HWND create(HINSTANCE instance, int number) = 0;
    // [panel thread] Called once from the message loop when the window is on the screen.
    virtual void load() = 0;
};

// The module that holds the resources; set when the library is loaded.
HINSTANCE moduleInstance();
void setModuleInstance(HINSTANCE instance);

}  // namespace zoka
