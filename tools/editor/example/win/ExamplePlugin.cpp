// The smallest plug-in worth the name: one procedure that says where the project is, and one with a panel of
// its own that stays open beside the editor and can be terminated. A starting point for plug-ins of one's
// own.
#include <windows.h>

#include <atomic>

#include "plugin/EntryPoints.h"
#include "plugin/host/HostAbi.h"

namespace {

AppInterface* g_application = nullptr;

// The panel's thread; null when none runs. [editor thread]
HANDLE g_panelThread = nullptr;
std::atomic<HWND> g_panel{nullptr};

// Calls slot `slot` of the editor's table: the object's first word points to the table.
template <typename Result, typename... Arguments>
Result callHost(unsigned slot, Arguments... arguments) {
    void* const editor = g_application->editor;
    void* const* const table = *static_cast<void***>(editor);
// A member of a class that is not ours is called through a plain pointer.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wattributes"
    using Function = Result(ZOKA_HOST_MEMBER*)(void*, Arguments...);
#pragma GCC diagnostic pop
    return reinterpret_cast<Function>(table[slot])(editor, arguments...);
}

void projectFolder(char (&folder)[zoka::kHostPathSize]) {
    folder[0] = 0;
    callHost<std::int32_t, char*, std::int32_t>(zoka::kSlotGetProjectFolder, folder, sizeof folder);
    folder[sizeof folder - 1] = 0;  // a host may fill the whole buffer
}

std::int32_t showFolder(PluginProcDef*, HostContext*, std::int32_t* busy) {
    if (!busy) {
        return 0;
    }
    *busy = 1;
    char folder[zoka::kHostPathSize];
    projectFolder(folder);
    MessageBoxA(GetActiveWindow(), folder, "Project folder", MB_OK);
    *busy = 0;
    return 1;
}

INT_PTR CALLBACK panelProc(HWND panel, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_CLOSE || (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL)) {
        return DestroyWindow(panel);
    }
    return FALSE;
}

// The panel: an ordinary dialog window with its own message loop. It ends with its window.
DWORD WINAPI runPanel(void* busyWord) {
    const HWND panel = CreateWindowExA(0, "#32770", "Example Panel", WS_POPUP | WS_CAPTION | WS_SYSMENU, 200,
                                       200, 320, 130, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    char folder[zoka::kHostPathSize];
    projectFolder(folder);
    CreateWindowExA(0, "STATIC", folder, WS_CHILD | WS_VISIBLE, 12, 12, 290, 20, panel, nullptr, nullptr,
                    nullptr);
    CreateWindowExA(0, "BUTTON", "Close", WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_DEFPUSHBUTTON, 222, 60, 80,
                    26, panel, reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDCANCEL)), nullptr, nullptr);
    SetWindowLongPtrA(panel, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(panelProc));
    for (HWND control = GetWindow(panel, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
        SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    }
    ShowWindow(panel, SW_SHOW);
    g_panel = panel;
    MSG message;
    while (IsWindow(panel) && GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (IsDialogMessageA(panel, &message)) {
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    g_panel = nullptr;
    std::atomic_ref<std::int32_t>(*static_cast<std::int32_t*>(busyWord)) = 0;
    return 0;
}

std::int32_t endPanel() {
    if (!g_panelThread) {
        return 1;
    }
    // Asked again until it is gone: the window may not be there yet when the first request comes.
    constexpr DWORD kAgain = 20;  // ms
    do {
        if (const HWND panel = g_panel) {
            PostMessageA(panel, WM_CLOSE, 0, 0);
        }
    } while (WaitForSingleObject(g_panelThread, kAgain) == WAIT_TIMEOUT);
    CloseHandle(g_panelThread);
    g_panelThread = nullptr;
    return 1;
}

std::int32_t openPanel(PluginProcDef*, HostContext*, std::int32_t* busy) {
    if (!busy) {
        return 0;
    }
    endPanel();
    *busy = 1;
    g_panelThread = CreateThread(nullptr, 0, runPanel, busy, 0, nullptr);
    if (!g_panelThread) {
        *busy = 0;
    }
    return 0;
}

PluginProcDef g_records[] = {
    {0, 1, 0x100, "Show Folder", "Tools\\Example\\Show Folder", 0, 0, 0, &g_records[0], showFolder, nullptr,
     0, 0},
    {0, 2, 0x101, "Example Panel", nullptr, 0, 0, 0, &g_records[1], openPanel, endPanel, 0, 0},
};
constexpr std::int32_t kRecordCount = 2;

}  // namespace

std::int32_t PIInitialize(AppInterface* appInterface) {
    if (g_application || !appInterface || !appInterface->editor) {
        return 0;
    }
    g_application = appInterface;
    return 1;
}

std::int32_t PIGetPIInfo(std::uint32_t* a, std::uint32_t* b, std::uint32_t* c) {
    if (a) {
        *a = 0;
    }
    if (b) {
        *b = 1;
    }
    if (c) {
        *c = 0;
    }
    return 0;
}

PluginProcDef* PIGetProcDef(std::int32_t index) {
    return g_application && index >= 0 && index < kRecordCount ? &g_records[index] : nullptr;
}
