#include "controls/win/SliderField.h"

#include <commctrl.h>

#include <algorithm>

#include "controls/win/ControlClasses.h"
#include "ui/win/WindowKit.h"

namespace zoka {

namespace {

struct SliderPlaces {
    PanelRect track, number;
};

SliderPlaces placesIn(int width, int height, int numberWidth) {
    const int number = std::min(numberWidth, width / 2);
    return {{0, 0, std::max(width - number - height / 5, 0), height}, {width - number, 0, number, height}};
}

// The system's own thumb has one size on every screen.
void fitThumb(HWND track, int height) {
    SendMessageA(track, TBM_SETTHUMBLENGTH, static_cast<WPARAM>(height * 4 / 5), 0);
}

}  // namespace

HWND makeSliderField(HWND parent, int id, HFONT font, bool decimal, int numberWidth, const PanelRect& place) {
    const HINSTANCE instance = ControlClasses::instance();
    const HWND window = CreateWindowExA(WS_EX_CONTROLPARENT, kSliderClass, "", WS_CHILD | WS_VISIBLE, place.x,
                                        place.y, place.width, place.height, parent,
                                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance, nullptr);
    if (!window) {
        return nullptr;
    }
    SetWindowLongPtrA(window, GWLP_USERDATA, numberWidth);
    const SliderPlaces at = placesIn(place.width, place.height, numberWidth);
    const HWND track = CreateWindowExA(
        0, TRACKBAR_CLASSA, "",
        WS_CHILD | WS_VISIBLE | WS_TABSTOP | TBS_HORZ | TBS_BOTH | TBS_NOTICKS | TBS_FIXEDLENGTH, at.track.x,
        at.track.y, at.track.width, at.track.height, window,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(kSliderTrack)), instance, nullptr);
    fitThumb(track, at.track.height);
    const HWND number =
        CreateWindowExW(WS_EX_CLIENTEDGE, wideText(decimal ? kFloatEditClass : kIntEditClass).c_str(), L"",
                        WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL, at.number.x, at.number.y,
                        at.number.width, at.number.height, window,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(kSliderNumber)), instance, nullptr);
    SendMessageA(number, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    return window;
}

void showThumb(HWND track, bool shown) {
    const LONG style = GetWindowLongA(track, GWL_STYLE);
    const LONG wanted = shown ? style & ~TBS_NOTHUMB : style | TBS_NOTHUMB;
    if (wanted != style) {
        SetWindowLongA(track, GWL_STYLE, wanted);
        InvalidateRect(track, nullptr, TRUE);
    }
}

LRESULT CALLBACK sliderFieldProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    switch (message) {
        case WM_SIZE: {
            const SliderPlaces at = placesIn(LOWORD(lParam), HIWORD(lParam),
                                             static_cast<int>(GetWindowLongPtrA(window, GWLP_USERDATA)));
            const auto move = [window](int id, const PanelRect& to) {
                MoveWindow(GetDlgItem(window, id), to.x, to.y, to.width, to.height, TRUE);
            };
            move(kSliderTrack, at.track);
            fitThumb(GetDlgItem(window, kSliderTrack), at.track.height);
            move(kSliderNumber, at.number);
            return 0;
        }
        case WM_COMMAND:
        case WM_HSCROLL:
        case WM_CTLCOLOREDIT:
            return SendMessageA(GetParent(window), message, wParam, lParam);
        default:
            return DefWindowProcA(window, message, wParam, lParam);
    }
}

}  // namespace zoka
