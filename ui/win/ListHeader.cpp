// Titles of a list's columns, drawn by us: the system draws them into the width that it measures, which leaves out what
// the last letter and its smoothing take, so that "Component" loses the end of its t.
#include <windows.h>

#include <commctrl.h>

#include "ui/win/RowList.h"
#include "ui/win/Subclass.h"

namespace zoka {

namespace {

void drawTitle(const DRAWITEMSTRUCT& item) {
    wchar_t text[256] = L"";
    HDITEMW title{};
    title.mask = HDI_TEXT;
    title.pszText = text;
    title.cchTextMax = sizeof text / sizeof *text;
    SendMessageW(item.hwndItem, HDM_GETITEMW, item.itemID, reinterpret_cast<LPARAM>(&title));
    RECT line = item.rcItem;
    line.left += 3 * GetSystemMetrics(SM_CXEDGE);  // where the rows below have their texts
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(COLOR_BTNTEXT));
    DrawTextW(item.hDC, text, -1, &line, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
}

LRESULT CALLBACK headerOwnerProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) noexcept {
    if (message == WM_DRAWITEM) {
        const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
        if (item.CtlType == ODT_HEADER) {
            drawTitle(item);
            return TRUE;
        }
    }
    return nextProcedure(list, message, wParam, lParam);
}

}  // namespace

void drawTitles(HWND list) {
    const HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
    const LRESULT columns = SendMessageA(header, HDM_GETITEMCOUNT, 0, 0);
    for (LRESULT i = 0; i < columns; ++i) {
        HDITEMW title{};
        title.mask = HDI_FORMAT;
        SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&title));
        title.fmt |= HDF_OWNERDRAW;
        SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&title));
    }
    addProcedure(list, headerOwnerProc);
}

}  // namespace zoka
