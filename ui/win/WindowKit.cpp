#include "ui/win/WindowKit.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>

namespace zoka {

namespace {

SIZE averageCharacter(HDC dc, HFONT font) {
    static const char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const HGDIOBJ old = SelectObject(dc, font);
    SIZE size{};
    GetTextExtentPoint32A(dc, kLetters, 52, &size);
    SelectObject(dc, old);
    return {(size.cx / 26 + 1) / 2, size.cy};
}

void showScrollBarAsNeeded(HWND text) {
    RECT area;
    TEXTMETRICA metrics;
    const HDC dc = GetDC(text);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(text, WM_GETFONT, 0, 0)));
    GetTextMetricsA(dc, &metrics);
    SelectObject(dc, old);
    ReleaseDC(text, dc);
    SendMessageA(text, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&area));
    const LRESULT lines = SendMessageA(text, EM_GETLINECOUNT, 0, 0);
    const bool needed = lines * metrics.tmHeight > area.bottom - area.top;
    const bool shown = (GetWindowLongPtrA(text, GWL_STYLE) & WS_VSCROLL) != 0;
    // Showing it makes the lines shorter and so never fewer: this comes to rest.
    if (needed != shown) {
        ShowScrollBar(text, SB_VERT, needed);
    }
}

LRESULT CALLBACK readOnlyTextProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                  DWORD_PTR) {
    switch (message) {
        case WM_GETDLGCODE:
            // Of the keys it keeps the arrows alone; a field of several lines else takes Enter and Tab, and
            // closes its parent on Escape.
            return DLGC_WANTARROWS;
        case WM_KEYDOWN:
            if (wParam == 'A' && GetKeyState(VK_CONTROL) < 0) {
                SendMessageA(window, EM_SETSEL, 0, -1);
                return 0;
            }
            break;
        case WM_SETTEXT:
        case WM_SIZE: {
            const LRESULT result = DefSubclassProc(window, message, wParam, lParam);
            showScrollBarAsNeeded(window);
            return result;
        }
        case WM_NCDESTROY:
            RemoveWindowSubclass(window, readOnlyTextProc, id);
            break;
        default:
            break;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

// Without a menu, a class or a title of its own.
struct EmptyDialog {
    DLGTEMPLATE dialog;
    WORD menu, className, title;
};

}  // namespace

WindowFonts::WindowFonts() {
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof metrics;
    LOGFONTA font{};
    if (SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) {
        font = metrics.lfMessageFont;
    } else {
        GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
    }
    m_text = CreateFontIndirectA(&font);
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    std::strcpy(font.lfFaceName, "Courier New");
    m_fixed = CreateFontIndirectA(&font);
    const HDC dc = GetDC(nullptr);
    m_base = averageCharacter(dc, m_text);
    m_fixedWidth = averageCharacter(dc, m_fixed).cx;
    m_dpi = std::max(GetDeviceCaps(dc, LOGPIXELSY), 96);
    ReleaseDC(nullptr, dc);
}

WindowFonts::~WindowFonts() {
    DeleteObject(m_text);
    DeleteObject(m_fixed);
}

int WindowFonts::labelWidth(const std::string& text) const {
    RECT area{};
    const HDC dc = GetDC(nullptr);
    const HGDIOBJ old = SelectObject(dc, m_text);
    DrawTextA(dc, text.c_str(), -1, &area, DT_CALCRECT | DT_SINGLELINE);
    SelectObject(dc, old);
    ReleaseDC(nullptr, dc);
    return static_cast<int>(area.right);
}

HWND makeControl(HWND parent, const char* className, const char* text, DWORD style, DWORD exStyle, int id,
                 HFONT font) {
    const HWND control = CreateWindowExA(exStyle, className, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0,
                                         parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                         GetModuleHandleA(nullptr), nullptr);
    SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    return control;
}

HWND makeReadOnlyText(HWND parent, int id, HFONT font) {
    const HWND text =
        makeControl(parent, "EDIT", "", ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_TABSTOP,
                    WS_EX_CLIENTEDGE, id, font);
    SendMessageA(text, EM_LIMITTEXT, 0, 0);
    SetWindowSubclass(text, readOnlyTextProc, 1, 0);
    return text;
}

void place(HWND control, int x, int y, int width, int height) {
    // Nothing is copied to the new place: neighbours that are moved one after the other would copy each other.
    SetWindowPos(control, nullptr, x, y, std::max(width, 0), std::max(height, 0),
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

void placeDropList(HWND control, int x, int y, int width, int height) {
    // The height given to a drop list is that of the open one; the closed one follows from its items.
    place(control, x, y, width, height * 16);
    const auto missing = [control, height] {
        RECT frame{};
        GetWindowRect(control, &frame);
        return height - static_cast<int>(frame.bottom - frame.top);
    };
    LRESULT item = SendMessageA(control, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0);
    // Some systems make the field a little higher than they are told: the second time allows for that.
    for (int i = 0; i < 2 && missing() != 0; ++i) {
        item += missing();
        SendMessageA(control, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), item);
    }
}

std::string textOf(HWND window) {
    std::string text(static_cast<size_t>(std::max(GetWindowTextLengthA(window), 0)) + 1, '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

void setText(HWND window, const std::string& text) {
    if (textOf(window) != text) {
        SetWindowTextA(window, text.c_str());
    }
}

void enable(HWND control, bool enabled) {
    if ((IsWindowEnabled(control) != 0) == enabled) {
        return;
    }
    // The keyboard would be lost in a control that takes no input.
    if (!enabled && GetFocus() == control) {
        SendMessageA(GetAncestor(control, GA_ROOT), WM_NEXTDLGCTL, 0, FALSE);
    }
    EnableWindow(control, enabled);
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

void runDialog(HWND owner, DWORD style, DWORD exStyle, DLGPROC procedure, LPARAM parameter) {
    const EmptyDialog form{{style, exStyle, 0, 0, 0, 0, 0}, 0, 0, 0};
    DialogBoxIndirectParamA(GetModuleHandleA(nullptr), &form.dialog, owner, procedure, parameter);
}

HWND makeDialog(HWND owner, DWORD style, DWORD exStyle, DLGPROC procedure, LPARAM parameter) {
    const EmptyDialog form{{style, exStyle, 0, 0, 0, 0, 0}, 0, 0, 0};
    return CreateDialogIndirectParamA(GetModuleHandleA(nullptr), &form.dialog, owner, procedure, parameter);
}

SIZE outerSize(HWND window, int width, int height) {
    RECT frame{0, 0, width, height};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrA(window, GWL_EXSTYLE)));
    return {frame.right - frame.left, frame.bottom - frame.top};
}

void centreOver(HWND window, HWND owner, int width, int height) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoA(MonitorFromWindow(owner ? owner : window, MONITOR_DEFAULTTONEAREST), &monitor);
    const RECT& area = monitor.rcWork;
    RECT over = area;
    if (owner && !IsIconic(owner) && IsWindowVisible(owner)) {
        GetWindowRect(owner, &over);
    }
    width = std::min(width, static_cast<int>(area.right - area.left));
    height = std::min(height, static_cast<int>(area.bottom - area.top));
    const auto within = [](LONG middle, int size, LONG low, LONG high) {
        return std::clamp(static_cast<int>(middle) - size / 2, static_cast<int>(low),
                          std::max(static_cast<int>(high) - size, static_cast<int>(low)));
    };
    SetWindowPos(window, nullptr, within((over.left + over.right) / 2, width, area.left, area.right),
                 within((over.top + over.bottom) / 2, height, area.top, area.bottom), width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

bool copyToClipboard(HWND owner, const std::string& text) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, text.size() + 1);
    if (!memory) {
        return false;
    }
    std::memcpy(GlobalLock(memory), text.c_str(), text.size() + 1);
    GlobalUnlock(memory);
    bool done = false;
    if (OpenClipboard(owner)) {
        // The clipboard owns the memory once it has taken it.
        done = EmptyClipboard() && SetClipboardData(CF_TEXT, memory);
        CloseClipboard();
    }
    if (!done) {
        GlobalFree(memory);
    }
    return done;
}

}  // namespace zoka
