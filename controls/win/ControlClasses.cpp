#include "controls/win/ControlClasses.h"

#include <commctrl.h>

#include <utility>

#include "controls/win/EntryPanel.h"
#include "controls/win/EntryWindow.h"
#include "controls/win/NumberEdit.h"
#include "controls/win/SliderField.h"
#include "ui/win/WindowKit.h"

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

// The system's controls load what they need at their first use: when the first one is made, painted, or destroyed.
// A panel that is opened or closed while its library is unmapped could not load anything, so one of each is made,
// painted and destroyed here, unseen, before the first panel.
void rehearse() {
    static bool done = false;
    if (std::exchange(done, true)) {
        return;
    }
    const HWND parent =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 90, 90, nullptr, nullptr, g_instance, nullptr);
    const HDC screen = GetDC(nullptr), canvas = CreateCompatibleDC(screen);
    const std::pair<const char*, DWORD> kinds[] = {
        {"EDIT", WS_BORDER}, {"BUTTON", BS_PUSHBUTTON},    {"BUTTON", BS_AUTOCHECKBOX},
        {"STATIC", SS_LEFT}, {"COMBOBOX", kDropListStyle}, {TRACKBAR_CLASSA, 0},
        {UPDOWN_CLASSA, 0},  {TOOLTIPS_CLASSA, 0},
    };
    for (const auto& [name, style] : kinds) {
        const HWND control = parent ? CreateWindowExA(0, name, "a", WS_CHILD | WS_VISIBLE | style, 0, 0, 40,
                                                      20, parent, nullptr, g_instance, nullptr)
                                    : nullptr;
        if (control) {
            SendMessageA(control, WM_PAINT, reinterpret_cast<WPARAM>(canvas), 0);
            SendMessageA(control, WM_PRINT, reinterpret_cast<WPARAM>(canvas),
                         PRF_CLIENT | PRF_NONCLIENT | PRF_ERASEBKGND);
        }
    }
    DeleteDC(canvas);
    ReleaseDC(nullptr, screen);
    if (parent) {
        DestroyWindow(parent);
    }
}

}  // namespace

ControlClasses::ControlClasses() {
    if (g_users++ > 0) {
        return;
    }
    g_instance = ownModule();
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
