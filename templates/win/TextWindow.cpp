#include "templates/win/TextWindow.h"

namespace zoka {

namespace {

enum { kHeading = 100, kText, kCopy };
constexpr int kWidth = 320, kHeight = 160, kLeastWidth = 200, kLeastHeight = 100;  // dialog units
constexpr int kHeadingLines = 2;

}  // namespace

void TextWindow::show(const std::string& title, const std::string& heading, const std::string& text) {
    if (!makeDialog(m_owner, WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_CLIPCHILDREN, 0,
                    dialogProc, reinterpret_cast<LPARAM>(this)))
        return;
    SetWindowTextA(m_window, title.c_str());
    setText(m_heading, heading);
    setText(m_text, text);
    const bool ownerTakesInput = m_owner && IsWindowEnabled(m_owner);
    const HWND focus = GetFocus();
    if (ownerTakesInput) EnableWindow(m_owner, FALSE);
    ShowWindow(m_window, SW_SHOW);
    SetFocus(m_close);
    MSG message;
    while (!m_ended) {
        const BOOL got = GetMessageA(&message, nullptr, 0, 0);
        if (got <= 0) {
            if (got == 0) PostQuitMessage(static_cast<int>(message.wParam));  // for the loops further out
            break;
        }
        if (IsDialogMessageA(m_window, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    // The owner first, so that the system goes on with it.
    if (ownerTakesInput) EnableWindow(m_owner, TRUE);
    if (IsWindow(m_window)) DestroyWindow(m_window);
    if (IsWindow(focus)) SetFocus(focus);
}

void TextWindow::createControls(HWND window) {
    m_window = window;
    const HFONT font = m_fonts.text();
    m_heading = makeControl(window, "STATIC", "", SS_NOPREFIX, 0, kHeading, font);
    m_text = makeReadOnlyText(window, kText, font);
    m_copy = makeControl(window, "BUTTON", "C&opy", BS_PUSHBUTTON | WS_TABSTOP, 0, kCopy, font);
    m_close = makeControl(window, "BUTTON", "Close", BS_DEFPUSHBUTTON | WS_TABSTOP, 0, IDCANCEL, font);
    const SIZE size = outerSize(window, m_fonts.x(kWidth), m_fonts.y(kHeight));
    centreOver(window, m_owner, static_cast<int>(size.cx), static_cast<int>(size.cy));
    layout();
}

void TextWindow::layout() {
    RECT inside;
    GetClientRect(m_window, &inside);
    const int margin = m_fonts.x(kMarginUnits), marginY = m_fonts.y(kMarginUnits), gap = m_fonts.y(kGapUnits);
    const int width = static_cast<int>(inside.right) - 2 * margin;
    const int button = m_fonts.x(kButtonWidthUnits), field = m_fonts.y(kButtonHeightUnits);
    const int heading = kHeadingLines * m_fonts.lineHeight();
    const int foot = static_cast<int>(inside.bottom) - marginY - field;
    place(m_heading, margin, marginY, width, heading);
    place(m_text, margin, marginY + heading + gap, width, foot - gap - (marginY + heading + gap));
    place(m_copy, margin + width - 2 * button - m_fonts.x(kGapUnits), foot, button, field);
    place(m_close, margin + width - button, foot, button, field);
}

void TextWindow::command(int id) {
    if (id == IDCANCEL || id == IDOK)
        m_ended = true;
    else if (id == kCopy && !copyToClipboard(m_window, textOf(m_text)))
        setText(m_heading, "Not copied: another program uses the clipboard.");
}

INT_PTR CALLBACK TextWindow::dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, DWLP_USER, static_cast<LONG_PTR>(lParam));
        reinterpret_cast<TextWindow*>(lParam)->createControls(window);
        return FALSE;
    }
    auto* const self = reinterpret_cast<TextWindow*>(GetWindowLongPtrA(window, DWLP_USER));
    if (!self) return FALSE;
    switch (message) {
        case WM_SIZE:
            self->layout();
            return TRUE;
        case WM_GETMINMAXINFO: {
            const SIZE least = outerSize(window, self->m_fonts.x(kLeastWidth), self->m_fonts.y(kLeastHeight));
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {least.cx, least.cy};
            return TRUE;
        }
        case WM_COMMAND:
            self->command(LOWORD(wParam));
            return TRUE;
        case WM_CLOSE:
            self->m_ended = true;
            return TRUE;
        default:
            return FALSE;
    }
}

}  // namespace zoka
