#include "ui/win/TextWindow.h"

#include <algorithm>

#include "ui/win/WindowKit.h"

namespace zoka {
namespace {

enum { kHeading = 1301, kText, kCopy };
constexpr int kWidth = 330, kHeight = 160, kLeastWidth = 200, kLeastHeight = 100;  // dialog units

class TextWindow {
public:
    TextWindow(const std::string& title, const std::string& heading, std::string text, TextLook look)
        : m_title(title), m_headingText(heading), m_shown(std::move(text)), m_look(look) {
        // A window's text ends at a zero, and so does the clipboard's: what stands behind it counts, too.
        std::replace(m_shown.begin(), m_shown.end(), '\0', ' ');
    }

    void run(HWND owner) {
        runDialog(owner, WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_CLIPCHILDREN, 0, procedure,
                  reinterpret_cast<LPARAM>(this));
    }

private:
    void initialise(HWND window) {
        m_window = window;
        SetWindowTextA(window, m_title.c_str());
        const HWND owner = GetWindow(window, GW_OWNER);
        // Without an icon of its own the system looks for another when it draws the caption, and needs the
        // loader's lock for it.
        for (const int size : {ICON_SMALL, ICON_BIG}) {
            SendMessageA(window, WM_SETICON, static_cast<WPARAM>(size),
                         SendMessageA(owner, WM_GETICON, static_cast<WPARAM>(size), 0));
        }
        const HFONT font = m_fonts.text();
        m_heading = makeControl(window, "STATIC", m_headingText.c_str(), SS_NOPREFIX, 0, kHeading, font);
        m_text = makeReadOnlyText(window, kText, m_look == TextLook::FixedWidth ? m_fonts.fixed() : font);
        SetWindowTextA(m_text, m_shown.c_str());
        m_copy = makeControl(window, "BUTTON", "C&opy", WS_TABSTOP, 0, kCopy, font);
        m_close = makeControl(window, "BUTTON", "Close", WS_TABSTOP | BS_DEFPUSHBUTTON, 0, IDCANCEL, font);
        const SIZE size = outerSize(window, m_fonts.x(kWidth), m_fonts.y(kHeight));
        centreOver(window, owner, static_cast<int>(size.cx), static_cast<int>(size.cy));
        layout();
        SetFocus(m_close);
    }

    int headingHeight(int width) const {
        RECT area{0, 0, width, 0};
        const HDC dc = GetDC(m_window);
        const HGDIOBJ old = SelectObject(dc, m_fonts.text());
        DrawTextA(dc, textOf(m_heading).c_str(), -1, &area, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
        SelectObject(dc, old);
        ReleaseDC(m_window, dc);
        return std::clamp(static_cast<int>(area.bottom), m_fonts.lineHeight(), 4 * m_fonts.lineHeight());
    }

    void layout() const {
        RECT area;
        GetClientRect(m_window, &area);
        const int margin = m_fonts.x(kMarginUnits), top = m_fonts.y(kMarginUnits), gap = m_fonts.y(kGapUnits);
        const int width = static_cast<int>(area.right) - 2 * margin, heading = headingHeight(width);
        const int button = m_fonts.x(kButtonWidthUnits), height = m_fonts.y(kButtonHeightUnits);
        const int foot = static_cast<int>(area.bottom) - top - height;
        place(m_heading, margin, top, width, heading);
        place(m_text, margin, top + heading + gap, width, foot - gap - (top + heading + gap));
        place(m_copy, margin + width - 2 * button - m_fonts.x(kGapUnits), foot, button, height);
        place(m_close, margin + width - button, foot, button, height);
        InvalidateRect(m_window, nullptr, TRUE);
    }

    void command(int id) {
        if (id == IDCANCEL || id == IDOK) {
            EndDialog(m_window, IDCANCEL);
        } else if (id == kCopy) {
            setText(m_heading, copyToClipboard(m_window, m_shown)
                                   ? m_headingText
                                   : "Not copied: another program uses the clipboard.");
            layout();
        }
    }

    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_INITDIALOG) {
            SetWindowLongPtrA(window, DWLP_USER, lParam);
            reinterpret_cast<TextWindow*>(lParam)->initialise(window);
            return FALSE;
        }
        auto* const self = reinterpret_cast<TextWindow*>(GetWindowLongPtrA(window, DWLP_USER));
        if (!self) {
            return FALSE;
        }
        switch (message) {
            case WM_SIZE:
                self->layout();
                return TRUE;
            case WM_GETMINMAXINFO: {
                const SIZE least =
                    outerSize(window, self->m_fonts.x(kLeastWidth), self->m_fonts.y(kLeastHeight));
                reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {least.cx, least.cy};
                return TRUE;
            }
            case WM_COMMAND:
                self->command(LOWORD(wParam));
                return TRUE;
            case WM_CLOSE:
                EndDialog(window, IDCANCEL);
                return TRUE;
            default:
                return FALSE;
        }
    }

    const std::string &m_title, &m_headingText;
    std::string m_shown;
    const TextLook m_look;
    WindowFonts m_fonts;
    HWND m_window = nullptr, m_heading = nullptr, m_text = nullptr, m_copy = nullptr, m_close = nullptr;
};

}  // namespace

void showTextWindow(HWND owner, const std::string& title, const std::string& heading, const std::string& text,
                    TextLook look) {
    TextWindow(title, heading, text, look).run(owner);
}

}  // namespace zoka
