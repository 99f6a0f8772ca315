#include "controls/win/EntryLook.h"

#include <algorithm>

#include "controls/Colour.h"

namespace zoka {
namespace {

constexpr int kMarkWidth = 3;  // of the bar in front of changed rows, in pixels at 96 dpi

}  // namespace

EntryParts entryParts(const EntryFacts& facts, const WindowFonts& fonts, int width, int height,
                      int labelWidth) {
    const int left = fonts.x(5), gap = fonts.x(kGapUnits);
    const int fieldHeight = std::min(fonts.y(kFieldHeightUnits), height);
    const int lineHeight = std::min(fonts.lineHeight() + 1, height);
    const int besidesLeft = std::max(width - left, 0);
    EntryParts parts;
    switch (facts.field) {
        case EntryField::Text:
        case EntryField::Caption:
            parts.label = {left, 0, besidesLeft, height};
            return parts;
        case EntryField::Picture:
            parts.label = {left, (height - lineHeight) / 2, besidesLeft, lineHeight};
            return parts;
        case EntryField::Heading:
            parts.field = {0, 0, width, height};
            return parts;
        case EntryField::Switch:
            parts.field = {left, (height - fieldHeight) / 2, besidesLeft, fieldHeight};
            return parts;
        default:
            break;
    }
    const int x = left + labelWidth + gap, room = std::max(width - x, 0);
    const int top = isMultiLine(facts) ? fonts.px(2) : (height - fieldHeight) / 2;
    parts.label = {left, top + (fieldHeight - lineHeight) / 2, labelWidth, lineHeight};
    parts.field = {x, top, room, fieldHeight};
    if (facts.field == EntryField::IntField || facts.field == EntryField::FloatField) {
        const int spin = std::min(fieldHeight, fonts.x(11));
        parts.field.width = std::max(std::min(fonts.x(70), room) - spin, 0);
        parts.button = {x + parts.field.width, top, spin, fieldHeight};
    } else if (facts.field == EntryField::ColourField) {
        const int button = std::min(fonts.x(24), room / 2);
        parts.field.width = std::max(std::min(fonts.x(94), room) - button - gap, 0);
        parts.button = {x + parts.field.width + gap, top, button, fieldHeight};
    } else if (facts.field == EntryField::FileField) {
        const int button = std::min(fonts.x(46), room / 2);
        parts.field.width = std::max(room - button - gap, 0);
        parts.button = {x + room - button, top, button, fieldHeight};
    } else if (isMultiLine(facts)) {
        parts.field.height = height - fonts.px(4);
    }
    return parts;
}

void drawMark(HDC dc, const RECT& row, const WindowFonts& fonts) {
    RECT bar{0, fonts.px(2), fonts.px(kMarkWidth), row.bottom - fonts.px(2)};
    FillRect(dc, &bar, GetSysColorBrush(COLOR_HIGHLIGHT));
}

void drawHeading(const DRAWITEMSTRUCT& item, const std::wstring& label, bool folded, const WindowFonts& fonts,
                 HFONT bold) {
    RECT area = item.rcItem;
    FillRect(item.hDC, &area, GetSysColorBrush(COLOR_BTNFACE));
    const int size = fonts.lineHeight() / 2, left = fonts.x(5);
    const int middle = static_cast<int>(area.top + area.bottom) / 2;
    POINT mark[3];
    if (folded) {
        mark[0] = {left + size / 4, middle - size / 2};
        mark[1] = {left + size / 4, middle + size / 2};
        mark[2] = {left + size * 3 / 4, middle};
    } else {
        mark[0] = {left, middle - size / 4};
        mark[1] = {left + size, middle - size / 4};
        mark[2] = {left + size / 2, middle + size / 4};
    }
    const HGDIOBJ oldBrush = SelectObject(item.hDC, GetSysColorBrush(COLOR_BTNTEXT));
    const HGDIOBJ oldPen = SelectObject(item.hDC, GetStockObject(BLACK_PEN));
    Polygon(item.hDC, mark, 3);
    SelectObject(item.hDC, oldPen);
    SelectObject(item.hDC, oldBrush);
    const HGDIOBJ oldFont = SelectObject(item.hDC, bold);
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(COLOR_BTNTEXT));
    RECT text{left + size + left, area.top, area.right, area.bottom};
    RECT extent = text;
    constexpr UINT kHow = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;
    DrawTextW(item.hDC, label.c_str(), -1, &extent, kHow | DT_CALCRECT);
    DrawTextW(item.hDC, label.c_str(), -1, &text, kHow);
    SelectObject(item.hDC, oldFont);
    RECT line{extent.right + left, middle, area.right, middle + 1};
    if (line.left < line.right) {
        FillRect(item.hDC, &line, GetSysColorBrush(COLOR_BTNSHADOW));
    }
    if (item.itemState & ODS_FOCUS) {
        RECT focus{text.left - 2, middle - fonts.lineHeight() / 2 - 1, std::min(extent.right + 2, area.right),
                   middle + fonts.lineHeight() / 2 + 1};
        DrawFocusRect(item.hDC, &focus);
    }
}

void drawColour(const DRAWITEMSTRUCT& item, const EntryModel& row, const WindowFonts& fonts) {
    RECT area = item.rcItem;
    const bool pressed = (item.itemState & ODS_SELECTED) != 0;
    DrawFrameControl(item.hDC, &area, DFC_BUTTON, DFCS_BUTTONPUSH | (pressed ? DFCS_PUSHED : 0u));
    const int border = fonts.px(4);
    InflateRect(&area, -border, -border);
    const auto colour = colourOf(row.value());
    if (colour && !row.isDifferent()) {
        SetDCBrushColor(item.hDC, RGB(colour->red, colour->green, colour->blue));
        FillRect(item.hDC, &area, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    } else {
        FillRect(item.hDC, &area, GetSysColorBrush(COLOR_WINDOW));
        MoveToEx(item.hDC, area.left, area.bottom - 1, nullptr);
        LineTo(item.hDC, area.right, area.top - 1);
    }
    FrameRect(item.hDC, &area, GetSysColorBrush(COLOR_BTNSHADOW));
    if (item.itemState & ODS_FOCUS) {
        InflateRect(&area, 1, 1);
        DrawFocusRect(item.hDC, &area);
    }
}

std::wstring textWithin(HWND control, HFONT font, const std::wstring& text, int width) {
    const HDC dc = GetDC(control);
    const HGDIOBJ old = SelectObject(dc, font);
    SIZE size{}, dots{};
    int fits = 0;
    std::wstring shown = text;
    GetTextExtentPoint32W(dc, L"...", 3, &dots);
    GetTextExtentExPointW(dc, text.c_str(), static_cast<int>(text.size()), width, &fits, nullptr, &size);
    if (static_cast<size_t>(fits) < text.size()) {
        GetTextExtentExPointW(dc, text.c_str(), static_cast<int>(text.size()), width - dots.cx, &fits,
                              nullptr, &size);
        shown = text.substr(0, static_cast<size_t>(std::max(fits, 0))) + L"...";
    }
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return shown;
}

}  // namespace zoka
