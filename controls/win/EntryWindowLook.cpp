// Where the parts of a row stand, and what it draws itself.
#include <algorithm>

#include "controls/Colour.h"
#include "controls/win/EntryPanel.h"
#include "controls/win/EntryWindow.h"
#include "ui/win/WindowKit.h"

namespace zoka {
namespace {

constexpr int kMarkWidth = 3;  // of the bar in front of changed rows, in pixels at 96 dpi

}  // namespace

void EntryWindow::setPlace(HWND after, const PanelRect& place, int labelWidth) {
    if (m_after == after && m_place == place) {
        return;
    }
    m_after = after;
    m_place = place;
    m_labelWidth = labelWidth;  // follows the width, so the row is laid out when it changes
    SetWindowPos(m_window, after, place.x, place.y, place.width, place.height,
                 SWP_NOACTIVATE | SWP_NOCOPYBITS | SWP_SHOWWINDOW);
}

EntryWindow::Parts EntryWindow::partsIn(int width, int height) const {
    const WindowFonts& fonts = m_panel.fonts();
    const int left = fonts.x(5), gap = fonts.x(kGapUnits);
    const int fieldHeight = std::min(fonts.y(kFieldHeightUnits), height);
    const int lineHeight = std::min(fonts.lineHeight() + 1, height);
    const int besidesLeft = std::max(width - left, 0);
    Parts parts;
    switch (facts().field) {
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
    const int x = left + m_labelWidth + gap, room = std::max(width - x, 0);
    const int top = isMultiLine() ? fonts.px(2) : (height - fieldHeight) / 2;
    parts.label = {left, top + (fieldHeight - lineHeight) / 2, m_labelWidth, lineHeight};
    parts.field = {x, top, room, fieldHeight};
    if (facts().field == EntryField::IntField || facts().field == EntryField::FloatField) {
        const int spin = std::min(fieldHeight, fonts.x(11));
        parts.field.width = std::max(std::min(fonts.x(70), room) - spin, 0);
        parts.button = {x + parts.field.width, top, spin, fieldHeight};
    } else if (facts().field == EntryField::ColourField) {
        const int button = std::min(fonts.x(24), room / 2);
        parts.field.width = std::max(std::min(fonts.x(94), room) - button - gap, 0);
        parts.button = {x + parts.field.width + gap, top, button, fieldHeight};
    } else if (facts().field == EntryField::FileField) {
        const int button = std::min(fonts.x(46), room / 2);
        parts.field.width = std::max(room - button - gap, 0);
        parts.button = {x + room - button, top, button, fieldHeight};
    } else if (isMultiLine()) {
        parts.field.height = height - fonts.px(4);
    }
    return parts;
}

void EntryWindow::layout(const Parts& at) {
    const auto move = [](HWND control, const PanelRect& to) {
        if (control) {
            place(control, to.x, to.y, to.width, to.height);
        }
    };
    move(m_label, at.label);
    if (m_field && facts().field == EntryField::DropList) {
        placeDropList(m_field, at.field.x, at.field.y, at.field.width, at.field.height);
    } else {
        move(m_slider ? m_slider : m_field, at.field);
    }
    move(m_spin ? m_spin : m_browse, at.button);
}

void EntryWindow::paint() {
    PAINTSTRUCT painting;
    const HDC dc = BeginPaint(m_window, &painting);
    RECT area;
    GetClientRect(m_window, &area);
    if (m_marked) {
        const WindowFonts& fonts = m_panel.fonts();
        RECT bar{0, fonts.px(2), fonts.px(kMarkWidth), area.bottom - fonts.px(2)};
        FillRect(dc, &bar, GetSysColorBrush(COLOR_HIGHLIGHT));
    }
    if (facts().field == EntryField::Picture) {
        const PictureStore::Bitmap picture = m_panel.picture(m_row);
        if (picture.handle && area.right > 0 && area.bottom > 0) {
            const int left = m_panel.fonts().x(5);
            const SIZE size = m_panel.pictureSize(picture, static_cast<int>(area.right) - left);
            const HDC from = CreateCompatibleDC(dc);
            const HGDIOBJ old = SelectObject(from, picture.handle);
            SetStretchBltMode(dc, HALFTONE);
            StretchBlt(dc, left, 0, size.cx, size.cy, from, 0, 0, picture.width, picture.height, SRCCOPY);
            SelectObject(from, old);
            DeleteDC(from);
        }
    }
    EndPaint(m_window, &painting);
}

// Its border too, which stands on the same ground.
void EntryWindow::repaintField() {
    RedrawWindow(m_field, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME);
}

void EntryWindow::drawHeading(const DRAWITEMSTRUCT& item) const {
    RECT area = item.rcItem;
    FillRect(item.hDC, &area, GetSysColorBrush(COLOR_BTNFACE));
    const int size = m_panel.fonts().lineHeight() / 2, left = m_panel.fonts().x(5);
    const int middle = static_cast<int>(area.top + area.bottom) / 2;
    POINT mark[3];
    if (m_panel.rows().filter.isFolded(m_row)) {
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
    const HGDIOBJ oldFont = SelectObject(item.hDC, m_panel.boldFont());
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(COLOR_BTNTEXT));
    RECT text{left + size + left, area.top, area.right, area.bottom};
    RECT extent = text;
    const std::wstring label = wideText(facts().label, codePage());
    constexpr UINT kHow = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;
    DrawTextW(item.hDC, label.c_str(), -1, &extent, kHow | DT_CALCRECT);
    DrawTextW(item.hDC, label.c_str(), -1, &text, kHow);
    SelectObject(item.hDC, oldFont);
    RECT line{extent.right + left, middle, area.right, middle + 1};
    if (line.left < line.right) {
        FillRect(item.hDC, &line, GetSysColorBrush(COLOR_BTNSHADOW));
    }
    if (item.itemState & ODS_FOCUS) {
        RECT focus{text.left - 2, middle - m_panel.fonts().lineHeight() / 2 - 1,
                   std::min(extent.right + 2, area.right), middle + m_panel.fonts().lineHeight() / 2 + 1};
        DrawFocusRect(item.hDC, &focus);
    }
}

// The color on a button that chooses another one; a value that is none is crossed out.
void EntryWindow::drawColour(const DRAWITEMSTRUCT& item) const {
    RECT area = item.rcItem;
    const bool pressed = (item.itemState & ODS_SELECTED) != 0;
    DrawFrameControl(item.hDC, &area, DFC_BUTTON, DFCS_BUTTONPUSH | (pressed ? DFCS_PUSHED : 0u));
    const int border = m_panel.fonts().px(4);
    InflateRect(&area, -border, -border);
    const auto colour = colourOf(model().value());
    if (colour && !model().isDifferent()) {
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

}  // namespace zoka
