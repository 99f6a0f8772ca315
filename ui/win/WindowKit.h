// What the plug-in's own windows are made of: the system's message font, sizes that grow with it, controls
// and the dialog around them. A window's owner makes and uses these on the window's thread.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <string>
#include <string_view>

#include "ui/Area.h"

namespace zoka {

// The module that this code is in, the DLL or the program: what its window classes are registered with.
HINSTANCE ownModule();

// The fonts of one window, and sizes in dialog units (quarters of the font's average width, eighths of its
// height), so that everything grows with the font and the font with the screen's resolution. Outlives the
// controls that it was set for.
class WindowFonts {
public:
    WindowFonts();
    ~WindowFonts();
    WindowFonts(const WindowFonts&) = delete;
    WindowFonts& operator=(const WindowFonts&) = delete;

    // The system's font or the screen has changed: gives all controls of `window` their new fonts and sizes. `dpi` is
    // the resolution of the window's screen, 0: the system's. False when nothing is different.
    bool renew(HWND window, int dpi);

    HFONT text() const { return m_text; }
    // Monospaced, and as large.
    HFONT fixed() const { return m_fixed; }
    // Pixels of dialog units.
    int x(int units) const { return MulDiv(units, m_base.cx, 4); }
    int y(int units) const { return MulDiv(units, m_base.cy, 8); }
    // Pixels of those that a screen of 96 dots per inch would have: for what does not grow with the font.
    int px(int pixels) const { return MulDiv(pixels, m_dpi, 96); }
    int dpi() const { return m_dpi; }
    int lineHeight() const { return m_base.cy; }
    int fixedWidth() const { return m_fixedWidth; }
    // Width that a label needs for its text, in pixels; its '&' is not shown.
    int labelWidth(const std::string& text) const;

private:
    void make(int dpi);

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

// Texts of this program are in the system's set (CP_ACP), or in UTF-8 where they come from a file that is; windows
// hold UTF-16.
std::wstring wideText(std::string_view text, UINT codePage = CP_ACP);
// The same of a text that tells of files: UTF-8 where all of it is, else in the system's set.
std::wstring wideReport(const std::string& text);
std::string narrowText(std::wstring_view text, UINT codePage);

// A visible child without a size yet; null when it can't be made.
HWND makeControl(HWND parent, const char* className, const char* text, DWORD style, DWORD exStyle, int id,
                 HFONT font);
// A label of one line; its '&' marks the letter of the control that is made next.
HWND makeLabel(HWND parent, const char* text, const WindowFonts& fonts, int id = -1);
HWND makeButton(HWND parent, const char* text, int id, const WindowFonts& fonts, bool isDefault = false);
// The height of a line of a control's own font, in pixels.
int textHeightOf(HWND control);
// A drop list of fixed choices. Its parent is asked to draw it (WM_DRAWITEM): every Window does, others call
// drawChoice.
inline constexpr DWORD kDropListStyle =
    static_cast<DWORD>(CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS) | WS_VSCROLL | WS_TABSTOP;
// Draws an item of a drop list, or the choice that the closed one shows; false where another control is to be drawn.
bool drawChoice(const DRAWITEMSTRUCT& item);
HWND makeDropList(HWND parent, int id, const WindowFonts& fonts);
// A field of one line, with its text in the middle of its height, as the labels, lists and buttons beside it have it.
// `style`: further edit styles.
HWND makeField(HWND parent, int id, const WindowFonts& fonts, DWORD style = 0);
// Gives that to an edit control of one line, whatever its class.
void centreFieldText(HWND edit);
// The same for an edit control whose messages its owner sees already: what is to be answered to each of them in place
// of `own`, its own procedure's answer. The owner then calls renewFrame once.
LRESULT centredFieldAnswer(HWND edit, UINT message, LPARAM lParam, LRESULT own);
// Lets a window lay out its border anew.
void renewFrame(HWND window);
// A field of several lines to type in. Its scroll bar is there when it is needed.
HWND makeText(HWND parent, int id, HFONT font);
// The same for an edit control whose messages its owner sees already: called after the control's own procedure.
void fitScrollBar(HWND edit, UINT message);
// A field of several lines to read and copy from: Tab, Enter and Escape are the dialog's, Ctrl+A selects all.
// Its scroll bar is there when it is needed.
HWND makeReadOnlyText(HWND parent, int id, HFONT font);
// `x`, `y`, `width`, `height` in pixels of the parent.
void place(HWND control, int x, int y, int width, int height);
inline void place(HWND control, const Area& area) {
    place(control, area.x, area.y, area.width, area.height);
}
// For a drop list: `height` is the closed one; it opens for up to 16 items. One that was made with its open height, at
// its place, needs but fitDropList, once it has its font.
inline int openHeight(int height) {
    return 16 * height;
}
void fitDropList(HWND control, int height);
// Before it opens: wide enough for its items, as far as the screen reaches.
void widenOpenList(HWND dropList);
void placeDropList(HWND control, int x, int y, int width, int height);
inline void placeDropList(HWND control, const Area& area) {
    placeDropList(control, area.x, area.y, area.width, area.height);
}
// Cuts the width of a label off the left of a row of controls, or `width` where several are to be alike, and puts it
// there, its text as high as that of the controls.
void placeLabel(HWND label, Area& row, const WindowFonts& fonts, int width = 0);
// Puts a label above what it names, and cuts its height off the top of that area.
void placeLabelAbove(HWND label, Area& area, const WindowFonts& fonts);
// Cuts buttons of the usual width off the right of a row, the last one first.
void placeButtonsRight(std::initializer_list<HWND> buttons, Area& row, const WindowFonts& fonts,
                       int units = kButtonWidthUnits);

// The colour for the text of what is wrong, on the ground of windows and fields.
COLORREF inkOfWrong();

std::string textOf(HWND window, UINT codePage = CP_ACP);
// Does nothing when the window shows the text already, so nothing flickers.
void setText(HWND window, const std::string& text, UINT codePage = CP_ACP);
// The same of a text that tells of files, as wideReport.
void setReport(HWND window, const std::string& text);
void enable(HWND control, bool enabled);

// As long as it lives a visible window draws nothing of itself or its children; then it draws all of it once. Rows that
// come one by one would be drawn each time.
class DrawingOff {
public:
    explicit DrawingOff(HWND window);
    ~DrawingOff();
    DrawingOff(const DrawingOff&) = delete;
    DrawingOff& operator=(const DrawingOff&) = delete;

private:
    HWND m_window;  // null when it isn't shown: drawing again would show it
};

// The chosen item of a drop list; empty when none is.
std::string chosenItem(HWND dropList);

// Both icons of a window's caption, shared, so that nobody frees them; without a module those of `owner`. Without an
// icon of its own the system looks for another each time that it draws the caption, and needs the loader's lock for it:
// a panel that closes while its library is unmapped would never get it.
void setWindowIcons(HWND window, HINSTANCE module, int icon, HWND owner = nullptr);
// The window that a modal one belongs over: the thread's active window or, while another program is in front, its first
// visible one. Null when it has none.
HWND modalOwner();
// The part of the screen that windows may cover, of the screen that the window is on or nearest to.
RECT workArea(HWND window);
// Gives a window that place, moved into `area` where it reaches over its edge and made smaller where it is larger.
void placeOnScreen(HWND window, const RECT& place, const RECT& area);
// Sizes a window and centres it over its owner, or on the screen without one, inside the screen's work area.
void centreOver(HWND window, HWND owner, int width, int height);
// Outer size of a window whose inner size is given.
SIZE outerSize(HWND window, int width, int height);

// Told when copyToClipboard fails.
inline constexpr const char* kNotCopied = "Not copied: another program uses the clipboard";
// Puts text, as wideReport takes it, on the clipboard; false when it can't be had.
bool copyToClipboard(HWND owner, const std::string& text);
// The clipboard's text, cut at that many characters; empty when it has none.
std::string clipboardText(HWND owner, size_t most, UINT codePage = CP_ACP);

}  // namespace zoka
