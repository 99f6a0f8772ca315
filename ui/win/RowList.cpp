#include "ui/win/RowList.h"

#include <algorithm>

#include "ui/win/Subclass.h"

namespace zoka {

namespace {

// A third of the highlight's colour on the window's.
COLORREF paleHighlight() {
    const COLORREF strong = GetSysColor(COLOR_HIGHLIGHT), plain = GetSysColor(COLOR_WINDOW);
    const auto mix = [](int a, int b) { return (a + 2 * b) / 3; };
    return RGB(mix(GetRValue(strong), GetRValue(plain)), mix(GetGValue(strong), GetGValue(plain)),
               mix(GetBValue(strong), GetBValue(plain)));
}

}  // namespace

void RowList::create(HWND parent, int id, const WindowFonts& fonts, HFONT font,
                     std::span<const ListColumn> columns, CellText text) {
    m_text = std::move(text);
    const bool header = columns.front().title != nullptr;
    m_window = makeControl(parent, WC_LISTVIEWA, "",
                           LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS | WS_TABSTOP |
                               static_cast<DWORD>(header ? LVS_NOSORTHEADER : LVS_NOCOLUMNHEADER),
                           WS_EX_CLIENTEDGE, id, font);
    // Its texts are asked for in UTF-16, though the dialog around it is one of 8-bit texts.
    SendMessageA(m_window, LVM_SETUNICODEFORMAT, TRUE, 0);
    SendMessageA(m_window, LVM_SETEXTENDEDLISTVIEWSTYLE, 0,
                 LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP | LVS_EX_DOUBLEBUFFER);
    m_columns = columns;
    m_fonts = &fonts;
    for (size_t i = 0; i < columns.size(); ++i) {
        std::string title = columns[i].title ? columns[i].title : "";
        LVCOLUMNA column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        column.pszText = title.data();
        column.cx = fonts.x(columns[i].units);
        column.iSubItem = static_cast<int>(i);
        SendMessageA(m_window, LVM_INSERTCOLUMNA, i, reinterpret_cast<LPARAM>(&column));
    }
    if (header) {
        drawTitles(m_window);
    }
}

void RowList::place(const Area& area) {
    zoka::place(m_window, area);
    fitColumns();
}

// The scroll bar, where there is one, is no part of the inside.
void RowList::fitColumns() const {
    RECT inside;
    GetClientRect(m_window, &inside);
    if (!m_columns.front().title) {
        const int width = std::max(m_textWidth, static_cast<int>(inside.right));
        SendMessageA(m_window, LVM_SETCOLUMNWIDTH, 0, MAKELPARAM(width, 0));
        return;
    }
    int left = static_cast<int>(inside.right), growing = 0;
    for (const ListColumn& column : m_columns) {
        left -= m_fonts->x(column.units);
        if (column.grows) {
            growing += column.units;
        }
    }
    for (size_t i = 0; i < m_columns.size(); ++i) {
        const ListColumn& column = m_columns[i];
        int width = m_fonts->x(column.units);
        if (column.grows && left > 0) {
            // What is left is shared out to the last pixel.
            const int share = left * column.units / growing;
            width += share;
            left -= share;
            growing -= column.units;
        }
        SendMessageA(m_window, LVM_SETCOLUMNWIDTH, i, MAKELPARAM(width, 0));
    }
}

// The list itself would cut off the end, which is the file's name.
void RowList::fitPath(std::wstring& path, int column) const {
    const auto width =
        static_cast<LONG>(SendMessageA(m_window, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column), 0));
    RECT room{0, 0, std::max<LONG>(width - 6 * GetSystemMetrics(SM_CXEDGE), 0), 0};
    path.resize(path.size() + 5);  // as much may be put in
    const HDC dc = GetDC(m_window);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(m_window, WM_GETFONT, 0, 0)));
    DrawTextW(dc, path.data(), -1, &room,
              DT_SINGLELINE | DT_NOPREFIX | DT_CALCRECT | DT_PATH_ELLIPSIS | DT_MODIFYSTRING);
    SelectObject(dc, old);
    ReleaseDC(m_window, dc);
    path.resize(path.find(L'\0'));
}

void RowList::setTextWidth(int width) {
    m_textWidth = width;
    fitColumns();
}

void RowList::setCount(int rows) {
    m_moving.cancel();
    select(-1);
    SendMessageA(m_window, LVM_SETITEMCOUNT, static_cast<WPARAM>(rows), 0);
    fitColumns();
    redraw();
}

int RowList::count() const {
    return static_cast<int>(SendMessageA(m_window, LVM_GETITEMCOUNT, 0, 0));
}

int RowList::selected() const {
    return static_cast<int>(
        SendMessageA(m_window, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), MAKELPARAM(LVNI_SELECTED, 0)));
}

void RowList::select(int row) {
    LVITEMA item{};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    m_settling = true;
    if (selected() >= 0 && selected() != row) {
        SendMessageA(m_window, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
    }
    if (row >= 0) {
        item.state = item.stateMask;
        SendMessageA(m_window, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
        SendMessageA(m_window, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    }
    m_settling = false;
}

bool RowList::userMayHaveSelected(const NMHDR& header) const {
    if (m_settling) {
        return false;
    }
    if (header.code == static_cast<UINT>(LVN_ODSTATECHANGED)) {
        return true;
    }
    if (header.code != static_cast<UINT>(LVN_ITEMCHANGED)) {
        return false;
    }
    const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
    return (change.uChanged & LVIF_STATE) != 0 &&
           ((change.uNewState ^ change.uOldState) & LVIS_SELECTED) != 0;
}

LRESULT RowList::notified(NMHDR& header) {
    switch (header.code) {
        case static_cast<UINT>(LVN_BEGINDRAG):
            m_moving.begin(reinterpret_cast<const NMLISTVIEW&>(header).iItem);
            return 0;
        case static_cast<UINT>(LVN_GETDISPINFOW): {
            LVITEMW& item = reinterpret_cast<NMLVDISPINFOW&>(header).item;
            if ((item.mask & LVIF_TEXT) != 0 && item.cchTextMax > 0) {
                std::wstring text = wideReport(m_text(item.iItem, item.iSubItem));
                const auto column = static_cast<size_t>(item.iSubItem);
                if (column < m_columns.size() && m_columns[column].isPath) {
                    fitPath(text, item.iSubItem);
                }
                const size_t length = text.copy(item.pszText, static_cast<size_t>(item.cchTextMax) - 1);
                item.pszText[length] = 0;
            }
            return 0;
        }
        case static_cast<UINT>(NM_CUSTOMDRAW):
            return paint(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
        case static_cast<UINT>(LVN_ODFINDITEMW): {
            const auto& search = reinterpret_cast<const NMLVFINDITEMW&>(header);
            return find(search.iStart, search.lvfi.flags, search.lvfi.psz ? search.lvfi.psz : L"");
        }
        default:
            return 0;
    }
}

void RowList::takeKeysOf(HWND field) {
    addProcedure(field, keysProc, reinterpret_cast<DWORD_PTR>(this));
}

LRESULT CALLBACK RowList::keysProc(HWND field, UINT message, WPARAM wParam, LPARAM lParam,
                                   DWORD_PTR self) noexcept {
    if (message == WM_KEYDOWN &&
        (wParam == VK_UP || wParam == VK_DOWN || wParam == VK_PRIOR || wParam == VK_NEXT)) {
        return SendMessageA(reinterpret_cast<RowList*>(self)->m_window, message, wParam, lParam);
    }
    return nextProcedure(field, message, wParam, lParam);
}

// The system gives a row selected in a list without the keyboard nearly the colour of the others.
LRESULT RowList::paint(NMLVCUSTOMDRAW& draw) const {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) {
        return CDRF_NOTIFYITEMDRAW;
    }
    if (draw.nmcd.dwDrawStage == CDDS_ITEMPOSTPAINT) {
        m_moving.paintMark(draw);
    }
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) {
        return CDRF_DODEFAULT;
    }
    const LRESULT afterwards = m_moving.isDragging() ? CDRF_NOTIFYPOSTPAINT : CDRF_DODEFAULT;
    const bool isSelected =
        SendMessageA(m_window, LVM_GETITEMSTATE, draw.nmcd.dwItemSpec, LVIS_SELECTED) != 0;
    if (isSelected && GetFocus() == m_window) {
        return afterwards;
    }
    const bool isWrong = m_isWrong && m_isWrong(static_cast<int>(draw.nmcd.dwItemSpec));
    if (isSelected) {
        draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_SELECTED);
        draw.clrTextBk = paleHighlight();
    } else if (!isWrong) {
        return afterwards;
    }
    draw.clrText = isWrong ? inkOfWrong() : GetSysColor(COLOR_WINDOWTEXT);
    return CDRF_NEWFONT | afterwards;
}

// The typed beginning of a row's first text, from a row on and around the end.
int RowList::find(int start, UINT flags, const std::wstring& typed) const {
    const bool partial = (flags & LVFI_PARTIAL) != 0;
    if ((!partial && (flags & LVFI_STRING) == 0) || typed.empty()) {
        return -1;
    }
    const int rows = count();
    const int length = static_cast<int>(typed.size());
    for (int i = 0; i < rows; ++i) {
        const int row = (std::max(start, 0) + i) % rows;
        const std::wstring text = wideReport(m_text(row, 0));
        const int size = static_cast<int>(text.size());
        if (size >= length && CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, text.data(),
                                             partial ? length : size, typed.data(), length) == CSTR_EQUAL) {
            return row;
        }
    }
    return -1;
}

}  // namespace zoka
