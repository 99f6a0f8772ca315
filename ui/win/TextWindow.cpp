#include "ui/win/TextWindow.h"

#include <algorithm>

#include "ui/win/DialogShell.h"
#include "util/Text.h"

namespace zoka {
namespace {

enum { kHeading = 1301, kText, kCopy };

class TextWindow : public DialogShell {
public:
    TextWindow(const std::string& title, const std::string& heading, const std::string& text, TextLook look)
        : DialogShell({.title = title, .width = 330, .height = 160, .leastWidth = 200, .leastHeight = 100}),
          m_headingText(heading),
          m_shown(onOneLine(text, "\r\n")),  // as the field wants its lines
          m_look(look) {
        // A window's text ends at a zero, and so does the clipboard's: what stands behind it counts, too.
        std::replace(m_shown.begin(), m_shown.end(), '\0', ' ');
    }

private:
    void createControls() override {
        m_heading =
            makeControl(window(), "STATIC", m_headingText.c_str(), SS_NOPREFIX, 0, kHeading, fonts().text());
        m_text = makeReadOnlyText(window(), kText,
                                  m_look == TextLook::FixedWidth ? fonts().fixed() : fonts().text());
        SetWindowTextW(m_text, wideReport(m_shown).c_str());
        m_copy = makeButton(window(), "C&opy", kCopy, fonts());
        m_close = makeButton(window(), "Close", IDCANCEL, fonts(), true);
    }

    HWND firstField() override { return m_close; }

    int headingHeight(int width) const {
        RECT area{0, 0, width, 0};
        const HDC dc = GetDC(window());
        const HGDIOBJ old = SelectObject(dc, fonts().text());
        DrawTextA(dc, textOf(m_heading).c_str(), -1, &area, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
        SelectObject(dc, old);
        ReleaseDC(window(), dc);
        return std::clamp(static_cast<int>(area.bottom), fonts().lineHeight(), 4 * fonts().lineHeight());
    }

    void layout(Area inside) override {
        const int gap = fonts().y(kGapUnits);
        Area foot = inside.takeBottom(fonts().y(kButtonHeightUnits), gap);
        placeButtonsRight({m_close, m_copy}, foot, fonts());
        place(m_heading, inside.takeTop(headingHeight(inside.width), gap));
        place(m_text, inside);
    }

    void entered() override { close(); }

    void command(int id, int) override {
        if (id == kCopy) {
            setText(m_heading, copyToClipboard(window(), m_shown) ? m_headingText : kNotCopied);
            layoutNow();
            InvalidateRect(m_heading, nullptr, TRUE);
        }
    }

    const std::string m_headingText;
    std::string m_shown;
    const TextLook m_look;
    HWND m_heading = nullptr, m_text = nullptr, m_copy = nullptr, m_close = nullptr;
};

}  // namespace

void showTextWindow(HWND owner, const std::string& title, const std::string& heading, const std::string& text,
                    TextLook look) {
    TextWindow(title, heading, text, look).runModal(owner);
}

}  // namespace zoka
