// What the plug-in's own windows are made of: the system's message font, sizes that grow with it, controls
// and the dialog around them. A window's owner makes and uses these on the window's thread.
#pragma once

#include <windows.h>

#include <string>

namespace zoka {

// The fonts of one window, and sizes in dialog units (quarters of the font's average width, eighths of its
// height), so that everything grows with the font and the font with the screen's resolution. Outlives the
// controls that it was set for.
class WindowFonts {
public:
    WindowFonts();
    ~WindowFonts();
    WindowFonts(const WindowFonts&) = delete;
    WindowFonts& operator=(const WindowFonts&) = delete;

    HFONT text() const { return m_text; }
    // As large, each character as wide as the others.
    HFONT fixed() const { return m_fixed; }
    // Pixels of dialog units.
    int x(int units) const { return MulDiv(units, m_base.cx, 4); }
    int y(int units) const { return MulDiv(units, m_base.cy, 8); }
    // Pixels of those that a screen of 96 dots an inch would have: for what does not grow with the font.
    int px(int pixels) const { return MulDiv(pixels, m_dpi, 96); }
    int dpi() const { return m_dpi; }
    int lineHeight() const { return m_base.cy; }
    int fixedWidth() const { return m_fixedWidth; }
    // Width of a label's text in pixels; its '&' is not shown.
    int labelWidth(const std::string& text) const;

private:
    HFONT m_text = nullptr;
    HFONT m_fixed = nullptr;
    SIZE m_base{};
    int m_fixedWidth = 0;
    int m_dpi = 96;
};

// Distances in dialog units, as the system's own dialogs keep them.
inline constexpr int kMarginUnits = 7;
inline constexpr int kGapUnits = 4;
inline constexpr int kButtonWidthUnits = 52;
inline constexpr int kButtonHeightUnits = 14;
inline constexpr int kFieldHeightUnits = 12;
inline constexpr int kLabelHeightUnits = 9;

// A visible child without a size yet; null when it can't be made.
HWND makeControl(HWND parent, const char* className, const char* text, DWORD style, DWORD exStyle, int id,
                 HFONT font);
// A field of several lines to read and copy from: Tab, Enter and Escape are the dialog's, Ctrl+A selects all.
// Its scroll bar is there when it is needed.
HWND makeReadOnlyText(HWND parent, int id, HFONT font);
// `x`, `y`, `width`, `height` in pixels of the parent.
void place(HWND control, int x, int y, int width, int height);
// For a drop list: `height` is the closed one; it opens for up to 16 items.
void placeDropList(HWND control, int x, int y, int width, int height);

std::string textOf(HWND window);
// Does nothing when the window shows the text already, so nothing flickers.
void setText(HWND window, const std::string& text);
void enable(HWND control, bool enabled);
// The chosen item of a drop list; empty when none is.
std::string chosenItem(HWND dropList);

// Runs a modal dialog made from its styles alone, without controls and without a size, until its procedure ends it.
void runDialog(HWND owner, DWORD style, DWORD exStyle, DLGPROC procedure, LPARAM parameter);
// Makes a dialog from its styles alone, without controls, not visible and without a size; null on failure.
HWND makeDialog(HWND owner, DWORD style, DWORD exStyle, DLGPROC procedure, LPARAM parameter);
// Sizes a window and centres it over its owner, or on the screen without one, inside the screen's work area.
void centreOver(HWND window, HWND owner, int width, int height);
// Outer size of a window whose inner size is given.
SIZE outerSize(HWND window, int width, int height);

// Puts text on the clipboard; false when it can't be had.
bool copyToClipboard(HWND owner, const std::string& text);

}  // namespace zoka
