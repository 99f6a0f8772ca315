#include "plugin/win/StatusWindow.h"

#include "plugin/host/HostAbi.h"
#include "plugin/win/Resources.h"

namespace zoka {
namespace {

// Sizes in dialog units: quarters of the font's average width, eighths of its height. So everything grows
// with the font, and the font with the screen's resolution.
constexpr int kMargin = 7;
constexpr int kGap = 4;
constexpr int kLineHeight = 10;
constexpr int kButtonWidth = 50;
constexpr int kButtonHeight = 14;
constexpr int kMinimumWidth = 160;

// The font of the system's own messages; null when the system doesn't say. The caller deletes it.
HFONT messageFont() {
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof metrics;
    if (!SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) {
        return nullptr;
    }
    return CreateFontIndirectA(&metrics.lfMessageFont);
}

// Both sizes, shared, so nobody frees them. Without icons of its own the system looks for others each time
// that it draws the caption, and needs the loader's lock for it: a panel that closes during an unload would
// never get it.
void setIcons(HWND window) {
    const auto load = [](int width, int height) {
        return reinterpret_cast<LPARAM>(LoadImageA(moduleInstance(), MAKEINTRESOURCEA(IDI_ZOKA), IMAGE_ICON,
                                                   GetSystemMetrics(width), GetSystemMetrics(height),
                                                   LR_SHARED));
    };
    SendMessageA(window, WM_SETICON, ICON_BIG, load(SM_CXICON, SM_CYICON));
    SendMessageA(window, WM_SETICON, ICON_SMALL, load(SM_CXSMICON, SM_CYSMICON));
}

SIZE fontBase(HWND window, HFONT font) {
    static const char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const HDC dc = GetDC(window);
    const HGDIOBJ old = SelectObject(dc, font);
    SIZE size{};
    GetTextExtentPoint32A(dc, kLetters, 52, &size);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    return {(size.cx / 26 + 1) / 2, size.cy};
}

}  // namespace

HWND StatusWindow::create(HINSTANCE instance, int number) {
    m_modal = false;
    return CreateDialogParamA(instance, MAKEINTRESOURCEA(number), nullptr, dialogProc,
                              reinterpret_cast<LPARAM>(this));
}

INT_PTR StatusWindow::runModal(HINSTANCE instance, int number) {
    m_modal = true;
    return DialogBoxParamA(instance, MAKEINTRESOURCEA(number), GetActiveWindow(), dialogProc,
                           reinterpret_cast<LPARAM>(this));
}

void StatusWindow::load() {
    int id = IDC_STATUS;
    for (const std::string& line : m_status()) {
        if (id <= IDC_STATUS_LAST) {
            SetDlgItemTextA(m_window, id++, line.c_str());
        }
    }
}

INT_PTR CALLBACK StatusWindow::dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, DWLP_USER, static_cast<LONG_PTR>(lParam));
        reinterpret_cast<StatusWindow*>(lParam)->initialise(window);
        return TRUE;
    }
    auto* const self = reinterpret_cast<StatusWindow*>(GetWindowLongPtrA(window, DWLP_USER));
    if (!self) {
        return FALSE;
    }
    switch (message) {
        case WM_SIZE:
            self->placeControls();
            return TRUE;
        case WM_GETMINMAXINFO: {
            RECT frame{0, 0, self->pixels(kMinimumWidth, false),
                       self->pixels(2 * kMargin + 4 * kLineHeight + kGap + kButtonHeight, true)};
            AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE)), FALSE,
                               static_cast<DWORD>(GetWindowLongPtrA(window, GWL_EXSTYLE)));
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {frame.right - frame.left,
                                                                     frame.bottom - frame.top};
            return TRUE;
        }
        case WM_COMMAND:
            if (LOWORD(wParam) == IDCANCEL) {
                SendMessageA(window, WM_CLOSE, 0, 0);
            }
            return TRUE;
        case WM_CLOSE:
            self->end(IDCANCEL);
            return TRUE;
        case WM_NCDESTROY:
            if (self->m_font) {
                DeleteObject(self->m_font);
                self->m_font = nullptr;
            }
            self->m_window = nullptr;
            return FALSE;
        default:
            return FALSE;
    }
}

void StatusWindow::initialise(HWND window) {
    m_window = window;
    SetWindowTextA(window, m_title.c_str());
    setIcons(window);
    m_font = messageFont();
    m_fontBase =
        fontBase(window, m_font ? m_font : reinterpret_cast<HFONT>(SendMessageA(window, WM_GETFONT, 0, 0)));
    if (m_font) {
        for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
            SendMessageA(child, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), FALSE);
        }
    }
    placeControls();
    if (m_modal) {
        load();
    }
}

int StatusWindow::pixels(int dialogUnits, bool vertical) const {
    return vertical ? MulDiv(dialogUnits, static_cast<int>(m_fontBase.cy), 8)
                    : MulDiv(dialogUnits, static_cast<int>(m_fontBase.cx), 4);
}

// Lines from the top, the button in the lower right corner.
void StatusWindow::placeControls() {
    RECT client;
    GetClientRect(m_window, &client);
    const int marginX = pixels(kMargin, false);
    const int marginY = pixels(kMargin, true);
    const int width = static_cast<int>(client.right) - 2 * marginX;
    int y = marginY;
    for (int id = IDC_STATUS; id <= IDC_STATUS_LAST; ++id) {
        if (const HWND line = GetDlgItem(m_window, id)) {
            MoveWindow(line, marginX, y, width, pixels(kLineHeight, true), TRUE);
            y += pixels(kLineHeight, true);
        }
    }
    if (const HWND button = GetDlgItem(m_window, IDCANCEL)) {
        const int buttonWidth = pixels(kButtonWidth, false);
        MoveWindow(button, static_cast<int>(client.right) - marginX - buttonWidth,
                   static_cast<int>(client.bottom) - marginY - pixels(kButtonHeight, true), buttonWidth,
                   pixels(kButtonHeight, true), TRUE);
    }
}

void StatusWindow::end(INT_PTR result) {
    if (m_modal) {
        EndDialog(m_window, result);
    } else {
        DestroyWindow(m_window);
    }
}

}  // namespace zoka
