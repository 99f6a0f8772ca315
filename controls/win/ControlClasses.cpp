#include "controls/win/ControlClasses.h"

#include <commctrl.h>

#include "controls/win/EntryPanel.h"
#include "controls/win/EntryWindow.h"
#include "controls/win/NumberEdit.h"
#include "controls/win/SliderField.h"

namespace zoka {
namespace {

int g_users = 0;
HINSTANCE g_instance = nullptr;

void registerPlain(const char* name, WNDPROC procedure) {
    WNDCLASSEXA made{};
    made.cbSize = sizeof made;
    made.lpfnWndProc = procedure;
    made.hInstance = g_instance;
    made.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
    made.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_BTNFACE + 1));
    made.lpszClassName = name;
    RegisterClassExA(&made);
}

// The system's controls load what they need at their first use, and some of it when the first one is
// destroyed. A panel closed while its library is unmapped could not load anything, so one of each is made and
// destroyed here, unseen.
void rehearse() {
    const HWND parent =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 90, 90, nullptr, nullptr, g_instance, nullptr);
    if (!parent) {
        return;
    }
    for (const char* name : {"EDIT", "BUTTON", "STATIC", "COMBOBOX", TRACKBAR_CLASSA, UPDOWN_CLASSA}) {
        CreateWindowExA(0, name, "", WS_CHILD | WS_VISIBLE, 0, 0, 40, 20, parent, nullptr, g_instance,
                        nullptr);
    }
    CreateWindowExA(0, TOOLTIPS_CLASSA, "", WS_POPUP, 0, 0, 0, 0, parent, nullptr, g_instance, nullptr);
    DestroyWindow(parent);
}

}  // namespace

ControlClasses::ControlClasses() {
    if (g_users++ > 0) {
        return;
    }
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&g_users), &g_instance);
    registerNumberEdits(g_instance);
    registerPlain(kSliderClass, sliderFieldProc);
    registerPlain(kEntryClass, EntryWindow::windowProc);
    registerPlain(kEntryPanelClass, EntryPanel::windowProc);
    rehearse();
}

ControlClasses::~ControlClasses() {
    if (--g_users > 0) {
        return;
    }
    for (const char* name : {kEntryPanelClass, kEntryClass, kSliderClass, kFloatEditClass, kIntEditClass}) {
        UnregisterClassA(name, g_instance);
    }
}

HINSTANCE ControlClasses::instance() {
    return g_instance;
}

}  // namespace zoka
