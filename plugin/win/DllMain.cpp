// The library's start and end. The loader's lock is held in both, so as little as possible happens here.
#include <windows.h>

#include "plugin/Procedures.h"
#include "plugin/win/PanelWindow.h"
#include "plugin/win/PluginWindows.h"
#include "util/win/WinPrompt.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
    static zoka::WinPrompt prompt;
    static zoka::PluginWindows windows;
    if (reason == DLL_PROCESS_ATTACH) {
        zoka::setModuleInstance(instance);
        zoka::setUserPrompt(&prompt);
        zoka::setPluginSeams(&windows);
        return zoka::startLibrary(zoka::startWindowToolkit);
    }
    // When the process ends, the panels' threads are gone already, whatever they were doing: nothing may
    // wait.
    if (reason == DLL_PROCESS_DETACH && !processEnds) {
        zoka::shutDownPlugin();
    }
    return TRUE;
}
