#include "templates/win/PageWindow.h"

namespace zoka {

namespace {

constexpr UINT kSettle = WM_APP + 1;

}  // namespace

bool PageWindow::create(HWND dialog) {
    return makeDialog(dialog, WS_CHILD | DS_CONTROL | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT, dialogProc,
                      reinterpret_cast<LPARAM>(this)) != nullptr;
}

HWND PageWindow::label(const char* text) {
    return makeControl(m_window, "STATIC", text, SS_LEFTNOWORDWRAP, 0, -1, fonts().text());
}

HWND PageWindow::button(const char* text, int id, bool isMain) {
    return makeControl(m_window, "BUTTON", text,
                       WS_TABSTOP | static_cast<DWORD>(isMain ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON), 0, id,
                       fonts().text());
}

void PageWindow::settleSoon() {
    if (!m_settlesSoon) {
        m_settlesSoon = PostMessageA(m_window, kSettle, 0, 0);
    }
}

INT_PTR CALLBACK PageWindow::dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, DWLP_USER, static_cast<LONG_PTR>(lParam));
        auto* const page = reinterpret_cast<PageWindow*>(lParam);
        page->m_window = window;
        page->createControls();
        return FALSE;
    }
    auto* const self = reinterpret_cast<PageWindow*>(GetWindowLongPtrA(window, DWLP_USER));
    if (!self) {
        return FALSE;
    }
    switch (message) {
        case WM_SIZE:
            self->layout(LOWORD(lParam), HIWORD(lParam));
            return TRUE;
        case WM_COMMAND:
            // Enter and Escape are the dialog's.
            if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
                SendMessageA(GetParent(window), message, wParam, lParam);
            } else {
                self->command(LOWORD(wParam), HIWORD(wParam));
            }
            return TRUE;
        case WM_NOTIFY:
            SetWindowLongPtrA(window, DWLP_MSGRESULT, self->notified(*reinterpret_cast<NMHDR*>(lParam)));
            return TRUE;
        case kSettle:
            self->m_settlesSoon = false;
            self->settled();
            return TRUE;
        case WM_TIMER:
            self->timer(wParam);
            return TRUE;
        case WM_MEASUREITEM:
            self->measure(*reinterpret_cast<MEASUREITEMSTRUCT*>(lParam));
            return TRUE;
        case WM_DRAWITEM:
            self->draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            return TRUE;
        default:
            return FALSE;
    }
}

}  // namespace zoka
