// The "Project Manager" window: a frame with a page each for adding, customizing, removing, notes and
// updating.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "plugin/host/ZunEditorInterface.h"

namespace zoka {

struct ManagerSetup {
    ZunEditorInterface& editor;  // all references outlive the window
    std::string catalogue;       // full path of its file
    HINSTANCE module;            // holds the icon
    int icon;
    // Opens the customization panel for the script of that path, over a window; empty where there is none.
    std::function<void(HWND owner, const std::string& scriptPath)> customize;
};

// [editor thread] Shows the window over the thread's active window and returns when the user has closed it.
// Size and page are those of the last time. A catalogue that
// can't be read is told and asked about first; whoever reads it all the same has the process ended.
void runManagerDialog(const ManagerSetup& setup);

}  // namespace zoka
