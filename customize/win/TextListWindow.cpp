#include "customize/win/TextListWindow.h"

#include <algorithm>

#include "util/win/WindowKit.h"

namespace zoka {
namespace {

enum { kIntro = 1301, kText, kCopy };

class TextListWindow {
public:
    TextListWindow(const std::string& title, const std::string& intro, const std::string& text)
        : m_title(title), m_intro(intro), m_text(text) {}

    void run(HWND owner) {
        struct {
            DLGTEMPLATE dialog;
            WORD menu, className, title;
        } const form{{WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_CLIPCHILDREN, 0, 0, 0, 0, 0, 0},
                     0,
                     0,
                     0};
        DialogBoxIndirectParamA(GetModuleHandleA(nullptr), &form.dialog, owner, procedure,
                                reinterpret_cast<LPARAM>(this));
    }

private:
    void initialise(HWND window) {
        m_window = window;
        SetWindowTextA(window, m_title.c_str());
        // Without an icon of its own the system looks for another when it draws the caption, and needs the
        // loader's lock for it.
        const HWND owner = GetWindow(window, GW_OWNER);
        for (const int size : {ICON_SMALL, ICON_BIG})
            SendMessageA(window, WM_SETICON, static_cast<WPARAM>(size),
                         SendMessageA(owner, WM_GETICON, static_cast<WPARAM>(size), 0));
        makeControl(window, "STATIC", m_intro.c_str(), SS_NOPREFIX, 0, kIntro, m_fonts.text());
        const HWND list = makeReadOnlyText(window, kText, m_fonts.fixed());
        SetWindowTextA(list, m_text.c_str());
        makeControl(window, "BUTTON", "C&opy", WS_TABSTOP, 0, kCopy, m_fonts.text());
        makeControl(window, "BUTTON", "Close", WS_TABSTOP | BS_DEFPUSHBUTTON, 0, IDCANCEL, m_fonts.text());
        const SIZE size = outerSize(window, m_fonts.x(330), m_fonts.y(160));
        centreOver(window, GetWindow(window, GW_OWNER), size.cx, size.cy);
        SetFocus(GetDlgItem(window, IDCANCEL));
    }

    void layout() const {
        RECT area;
        GetClientRect(m_window, &area);
        const int margin = m_fonts.x(kMarginUnits), top = m_fonts.y(kMarginUnits);
        const int width = static_cast<int>(area.right) - 2 * margin, gap = m_fonts.y(kGapUnits);
        const int button = m_fonts.x(kButtonWidthUnits), height = m_fonts.y(kButtonHeightUnits);
        const int label = m_fonts.y(kLabelHeightUnits), bottom = static_cast<int>(area.bottom) - top - height;
        place(GetDlgItem(m_window, kIntro), margin, top, width, label);
        place(GetDlgItem(m_window, kText), margin, top + label + gap, width,
              bottom - gap - top - label - gap);
        place(GetDlgItem(m_window, kCopy), margin + width - 2 * button - m_fonts.x(kGapUnits), bottom, button,
              height);
        place(GetDlgItem(m_window, IDCANCEL), margin + width - button, bottom, button, height);
        InvalidateRect(m_window, nullptr, TRUE);
    }

    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_INITDIALOG) {
            SetWindowLongPtrA(window, DWLP_USER, lParam);
            reinterpret_cast<TextListWindow*>(lParam)->initialise(window);
            return FALSE;
        }
        auto* const self = reinterpret_cast<TextListWindow*>(GetWindowLongPtrA(window, DWLP_USER));
        if (!self) return FALSE;
        switch (message) {
            case WM_SIZE:
                self->layout();
                return TRUE;
            case WM_GETMINMAXINFO: {
                const SIZE least = outerSize(window, self->m_fonts.x(160), self->m_fonts.y(80));
                reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {least.cx, least.cy};
                return TRUE;
            }
            case WM_COMMAND:
                if (LOWORD(wParam) == kCopy) copyToClipboard(window, self->m_text);
                if (LOWORD(wParam) == IDCANCEL) EndDialog(window, IDCANCEL);
                return TRUE;
            case WM_CLOSE:
                EndDialog(window, IDCANCEL);
                return TRUE;
            default:
                return FALSE;
        }
    }

    const std::string &m_title, &m_intro, &m_text;
    WindowFonts m_fonts;
    HWND m_window = nullptr;
};

}  // namespace

void showTextList(HWND owner, const std::string& title, const std::string& intro, const std::string& text) {
    TextListWindow(title, intro, text).run(owner);
}

}  // namespace zoka
