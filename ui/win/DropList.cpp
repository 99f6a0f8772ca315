// Drop lists that show their text where the fields beside them do.
#include <algorithm>
#include <atomic>

#include "ui/win/WindowKit.h"

namespace zoka {

namespace {

std::wstring itemText(HWND dropList, WPARAM item) {
    const LRESULT length = SendMessageW(dropList, CB_GETLBTEXTLEN, item, 0);
    std::wstring text(static_cast<size_t>(std::max<LRESULT>(length, 0)) + 1, L'\0');
    SendMessageW(dropList, CB_GETLBTEXT, item, reinterpret_cast<LPARAM>(text.data()));
    text.pop_back();
    return text;
}

}  // namespace

HWND makeDropList(HWND parent, int id, const WindowFonts& fonts) {
    return makeControl(parent, "COMBOBOX", "", kDropListStyle, 0, id, fonts.text());
}

void placeDropList(HWND control, int x, int y, int width, int height) {
    // The height given to a drop list is that of the open one; the closed one follows from its items.
    place(control, x, y, width, openHeight(height));
    fitDropList(control, height);
}

void fitDropList(HWND control, int height) {
    // What the system adds to the item's height; -1: not known yet. Each height that is set moves the list several
    // times.
    static std::atomic<int> s_added{-1};
    const auto missing = [control, height] {
        RECT frame{};
        GetWindowRect(control, &frame);
        return height - static_cast<int>(frame.bottom - frame.top);
    };
    SendMessageA(control, CB_SETITEMHEIGHT, 0, textHeightOf(control) + 2);
    int item = static_cast<int>(SendMessageA(control, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0));
    // Some systems make the field a little higher than they are told: the second time allows for that.
    for (int i = 0; i < 2 && missing() != 0; ++i) {
        item = i == 0 && s_added >= 0 ? height - s_added : item + missing();
        SendMessageA(control, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), item);
    }
    s_added = height - item;
}

// The system's own way is a fixed distance from the upper edge, which is the middle on small screens alone.
bool drawChoice(const DRAWITEMSTRUCT& item) {
    if (item.CtlType != ODT_COMBOBOX) {
        return false;
    }
    const bool isDisabled = (item.itemState & ODS_DISABLED) != 0;
    const bool isSelected = (item.itemState & ODS_SELECTED) != 0 && !isDisabled;
    FillRect(item.hDC, &item.rcItem,
             GetSysColorBrush(isSelected   ? COLOR_HIGHLIGHT
                              : isDisabled ? COLOR_BTNFACE
                                           : COLOR_WINDOW));
    if (item.itemID != static_cast<UINT>(-1)) {
        const std::wstring text = itemText(item.hwndItem, item.itemID);
        SetBkMode(item.hDC, TRANSPARENT);
        SetTextColor(item.hDC, GetSysColor(isSelected   ? COLOR_HIGHLIGHTTEXT
                                           : isDisabled ? COLOR_GRAYTEXT
                                                        : COLOR_WINDOWTEXT));
        RECT line = item.rcItem;
        line.left += textHeightOf(item.hwndItem) / 4;
        DrawTextW(item.hDC, text.c_str(), static_cast<int>(text.size()), &line,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
    if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0) {
        DrawFocusRect(item.hDC, &item.rcItem);
    }
    return true;
}

void widenOpenList(HWND dropList) {
    constexpr LRESULT kMeasured = 1000;  // wide enough for these is wide enough
    RECT frame{};
    GetWindowRect(dropList, &frame);
    LONG widest = 0;
    const HDC dc = GetDC(dropList);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(dropList, WM_GETFONT, 0, 0)));
    const LRESULT items = std::min(SendMessageA(dropList, CB_GETCOUNT, 0, 0), kMeasured);
    for (LRESULT i = 0; i < items; ++i) {
        const std::wstring text = itemText(dropList, static_cast<WPARAM>(i));
        SIZE size{};
        if (GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size)) {
            widest = std::max(widest, size.cx);
        }
    }
    SelectObject(dc, old);
    ReleaseDC(dropList, dc);
    const LONG needed = widest + textHeightOf(dropList) + GetSystemMetrics(SM_CXVSCROLL);
    const LONG room = workArea(dropList).right - frame.left;
    SendMessageA(dropList, CB_SETDROPPEDWIDTH,
                 static_cast<WPARAM>(std::max(frame.right - frame.left, std::min(needed, room))), 0);
}

std::string chosenItem(HWND dropList) {
    const LRESULT chosen = SendMessageA(dropList, CB_GETCURSEL, 0, 0);
    if (chosen < 0) {
        return {};
    }
    const LRESULT length = SendMessageA(dropList, CB_GETLBTEXTLEN, static_cast<WPARAM>(chosen), 0);
    std::string text(static_cast<size_t>(std::max<LRESULT>(length, 0)) + 1, '\0');
    SendMessageA(dropList, CB_GETLBTEXT, static_cast<WPARAM>(chosen), reinterpret_cast<LPARAM>(text.data()));
    text.pop_back();
    return text;
}

}  // namespace zoka
