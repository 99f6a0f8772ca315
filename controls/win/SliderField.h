// A slider with its number field.
#pragma once

#include <windows.h>

#include "controls/PanelLayout.h"

namespace zoka {

// The controls within a "ZT_SliderV" window, which its parent fills and reads. The window places them in its
// size and hands their WM_COMMAND and WM_HSCROLL on to its parent.
inline constexpr int kSliderTrack = 1, kSliderNumber = 2;

// `numberWidth` and `place` in pixels of the parent; `decimal` selects the kind of number field. Null on failure.
HWND makeSliderField(HWND parent, int id, HFONT font, bool decimal, int numberWidth, const PanelRect& place);

// A track without its thumb stands for several values, which differ.
void showThumb(HWND track, bool shown);

LRESULT CALLBACK sliderFieldProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

}  // namespace zoka
