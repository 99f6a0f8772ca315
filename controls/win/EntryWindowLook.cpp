// Where the parts of a row stand, and what it draws itself.
#include <algorithm>

#include "controls/win/EntryPanel.h"
#include "controls/win/EntryWindow.h"
#include "util/win/WindowKit.h"

namespace zoka {
namespace {

constexpr int kMarkWidth = 3;  // of the bar in front of changed rows, in pixels at 96 dpi

}  // namespace

void EntryWindow::setPlace(HWND after, int y, const PanelRect& place, int labelWidth) {
    m_y = y;
    m_labelWidth = labelWidth;  // follows the width, so the row is laid out when it changes
    SetWindowPos(m_window, after, place.x, y, place.width, place.height,
                 SWP_NOACTIVATE | SWP_NOCOPYBITS | SWP_SHOWWINDOW);
}

void EntryWindow::layout(int width, int height) {
    const WindowFonts& fonts = m_panel.fonts();
    const int left = fonts.x(5), gap = fonts.x(kGapUnits);
    const int fieldHeight = std::min(fonts.y(kFieldHeightUnits), height);
    const int lineHeight = std::min(fonts.lineHeight() + 1, height);
    const EntryField field = facts().field;
    if (field == EntryField::Text || field == EntryField::Caption) {
        return place(m_label, left, 0, width - left, height);
    }
    if (field == EntryField::Picture) {
        if (m_label) place(m_label, left, (height - lineHeight) / 2, width - left, lineHeight);
        return;
    }
    if (field == EntryField::Heading) return place(m_field, 0, 0, width, height);
    if (field == EntryField::Switch)
        return place(m_field, left, (height - fieldHeight) / 2, width - left, fieldHeight);
    const int x = left + m_labelWidth + gap, room = std::max(width - x, 0);
    const int top = isMultiLine() ? fonts.px(2) : (height - fieldHeight) / 2;
    place(m_label, left, top + (fieldHeight - lineHeight) / 2, m_labelWidth, lineHeight);
    if (m_slider) {
        place(m_slider, x, top, room, fieldHeight);
    } else if (m_spin) {
        const int spin = std::min(fieldHeight, fonts.x(11)), number = std::min(fonts.x(70), room) - spin;
        place(m_field, x, top, number, fieldHeight);
        place(m_spin, x + number, top, spin, fieldHeight);
    } else if (m_browse) {
        const int button = std::min(fonts.x(46), room / 2);
        place(m_field, x, top, room - button - gap, fieldHeight);
        place(m_browse, x + room - button, top, button, fieldHeight);
    } else if (field == EntryField::DropList) {
        placeDropList(m_field, x, top, room, fieldHeight);
    } else {
        place(m_field, x, top, room, isMultiLine() ? height - fonts.px(4) : fieldHeight);
    }
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

void EntryWindow::drawHeading(const DRAWITEMSTRUCT& item) const {
    RECT area = item.rcItem;
    FillRect(item.hDC, &area, GetSysColorBrush(COLOR_BTNFACE));
    const int size = m_panel.fonts().lineHeight() / 2, left = m_panel.fonts().x(5);
    const int middle = static_cast<int>(area.top + area.bottom) / 2;
    POINT mark[3];
    if (m_panel.host().isFolded(m_row)) {
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
    const std::string& label = facts().label;
    constexpr UINT kHow = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;
    DrawTextA(item.hDC, label.c_str(), -1, &extent, kHow | DT_CALCRECT);
    DrawTextA(item.hDC, label.c_str(), -1, &text, kHow);
    SelectObject(item.hDC, oldFont);
    RECT line{extent.right + left, middle, area.right, middle + 1};
    if (line.left < line.right) FillRect(item.hDC, &line, GetSysColorBrush(COLOR_BTNSHADOW));
    if (item.itemState & ODS_FOCUS) {
        RECT focus{text.left - 2, middle - m_panel.fonts().lineHeight() / 2 - 1,
                   std::min(extent.right + 2, area.right), middle + m_panel.fonts().lineHeight() / 2 + 1};
        DrawFocusRect(item.hDC, &focus);
    }
}

}  // namespace zoka
