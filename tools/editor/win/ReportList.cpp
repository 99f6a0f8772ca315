#include "tools/editor/win/ReportList.h"

#include <commctrl.h>

#include <algorithm>

namespace zoka {

namespace {

constexpr int kLeastWidth = 60;  // pixels of the last column

}  // namespace

void ReportList::create(HWND parent, int id, DWORD style, HFONT font, const std::vector<Column>& columns) {
    m_window = CreateWindowExA(WS_EX_CLIENTEDGE, WC_LISTVIEWA, "",
                               WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_SHOWSELALWAYS | style, 0,
                               0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                               GetModuleHandleA(nullptr), nullptr);
    ListView_SetExtendedListViewStyle(m_window, LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP);
    SendMessageA(m_window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    m_columns = 0;
    for (const Column& each : columns) {
        LVCOLUMNA column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.pszText = const_cast<char*>(each.title);
        column.cx = each.width;
        SendMessageA(m_window, LVM_INSERTCOLUMNA, static_cast<WPARAM>(m_columns++),
                     reinterpret_cast<LPARAM>(&column));
    }
}

void ReportList::place(int x, int y, int width, int height) const {
    const int last = m_columns - 1;
    int others = 2 * GetSystemMetrics(SM_CXEDGE) + GetSystemMetrics(SM_CXVSCROLL);
    for (int i = 0; i < last; ++i) {
        others += ListView_GetColumnWidth(m_window, i);
    }
    ListView_SetColumnWidth(m_window, last, std::max(kLeastWidth, width - others));
    MoveWindow(m_window, x, y, width, height, TRUE);
}

}  // namespace zoka
