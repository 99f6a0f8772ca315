// Tooltips, and the line of a window that tells what is the matter.
#pragma once

#include <windows.h>

#include "ui/win/WindowKit.h"

namespace zoka {

// A tooltip window without tools yet, which goes with the window that `owner` is a part of. `width` in pixels: where
// its lines are broken.
HWND makeTip(HWND owner, int width);
// Every message of a control with a tooltip in `tip`: what the mouse does opens and closes it. The system's own way, a
// subclass of each control, costs a lookup for each of their messages.
void relayToTip(HWND tip, HWND control, UINT message, WPARAM wParam, LPARAM lParam);

// A line of text that ends in dots where it doesn't fit; all of it is shown then when the mouse rests on it.
HWND makeStatusLine(HWND parent, int id, const WindowFonts& fonts);

}  // namespace zoka
