#include "controls/win/SliderField.h"

#include <commctrl.h>

#include <algorithm>

#include "controls/win/ControlClasses.h"

namespace zoka {

HWND makeSliderField(HWND parent, int id, HFONT font, bool decimal, int numberWidth) {
    const HINSTANCE instance = ControlClasses::instance();
    const HWND window =
        CreateWindowExA(WS_EX_CONTROLPARENT, kSliderClass, "", WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, parent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance, nullptr);
    if (!window) return nullptr;
    SetWindowLongPtrA(window, GWLP_USERDATA, numberWidth);
    CreateWindowExA(0, TRACKBAR_CLASSA, "", WS_CHILD | WS_VISIBLE | WS_TABSTOP | TBS_HORZ | TBS_NOTICKS, 0, 0,
                    0, 0, window, reinterpret_cast<HMENU>(static_cast<INT_PTR>(kSliderTrack)), instance,
                    nullptr);
    const HWND number =
        CreateWindowExA(WS_EX_CLIENTEDGE, decimal ? kFloatEditClass : kIntEditClass, "",
                        WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL, 0, 0, 0, 0, window,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(kSliderNumber)), instance, nullptr);
    SendMessageA(number, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    return window;
}

LRESULT CALLBACK sliderFieldProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE: {
            const int width = LOWORD(lParam), height = HIWORD(lParam);
            const int number =
                std::min(static_cast<int>(GetWindowLongPtrA(window, GWLP_USERDATA)), width / 2);
            MoveWindow(GetDlgItem(window, kSliderTrack), 0, 0, std::max(width - number - height / 5, 0),
                       height, TRUE);
            MoveWindow(GetDlgItem(window, kSliderNumber), width - number, 0, number, height, TRUE);
            return 0;
        }
        case WM_COMMAND:
        case WM_HSCROLL:
            return SendMessageA(GetParent(window), message, wParam, lParam);
        default:
            return DefWindowProcA(window, message, wParam, lParam);
    }
}

}  // namespace zoka
