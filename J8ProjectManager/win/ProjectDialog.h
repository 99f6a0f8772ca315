// The "Project Manager" window of a J8 project: a page each for the project's own values, its behaviours, components
// and levels, the report and the problems.
#pragma once

#include <windows.h>

#include <string>

#include "J8ProjectManager/J8ProjectManager.h"

namespace zoka {

struct ProjectSetup {
    CJ8ProjectManager& project;  // the project is loaded into it
    std::string projectFile;     // full path
    HINSTANCE module;            // holds the icon
    int icon;
};

// [editor thread] Shows the window over the thread's active window and returns when the user has closed it. A project
// that can't be read is told of, and no window is shown.
void runProjectDialog(const ProjectSetup& setup);

}  // namespace zoka
