// Where the parts of a row's window stand, and what is drawn in it, as the row's facts and value say. Nothing here
// keeps anything. [panel thread]
#pragma once

#include <windows.h>

#include <string>

#include "controls/EntryModel.h"
#include "controls/PanelLayout.h"
#include "ui/win/WindowKit.h"

namespace zoka {

inline bool isMultiLine(const EntryFacts& facts) {
    return facts.field == EntryField::StringField && facts.lines > 1;
}

// In pixels of the row's window; what the row doesn't have stands nowhere.
struct EntryParts {
    PanelRect label, field, button;
};
EntryParts entryParts(const EntryFacts& facts, const WindowFonts& fonts, int width, int height,
                      int labelWidth);

// The bar in front of a changed row.
void drawMark(HDC dc, const RECT& row, const WindowFonts& fonts);
// The button of a heading, whose owner draws it.
void drawHeading(const DRAWITEMSTRUCT& item, const std::wstring& label, bool folded, const WindowFonts& fonts,
                 HFONT bold);
// The color on a button that chooses another one; a value that is none is crossed out.
void drawColour(const DRAWITEMSTRUCT& item, const EntryModel& row, const WindowFonts& fonts);

// The text, or as much of it as `width` pixels hold in that font, with dots behind it.
std::wstring textWithin(HWND control, HFONT font, const std::wstring& text, int width);

}  // namespace zoka
