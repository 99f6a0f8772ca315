#include "tools/editor/win/ControlPicture.h"

#include <algorithm>
#include <cstdlib>

#include "tools/editor/win/WindowSearch.h"

namespace zoka {

ControlPicture::ControlPicture(int width, int height) : m_width(width), m_height(height) {
    const HDC screen = GetDC(nullptr);
    m_dc = CreateCompatibleDC(screen);
    m_bitmap = CreateCompatibleBitmap(screen, std::max(width, 1), std::max(height, 1));
    m_before = SelectObject(m_dc, m_bitmap);
    ReleaseDC(nullptr, screen);
}

ControlPicture::~ControlPicture() {
    SelectObject(m_dc, m_before);
    DeleteObject(m_bitmap);
    DeleteDC(m_dc);
}

void ControlPicture::paint(HWND control) const {
    ask(control, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(m_dc), PRF_CLIENT | PRF_ERASEBKGND);
}

void ControlPicture::write(HWND control, const std::string& text, const RECT& area, COLORREF ground) const {
    const RECT all{0, 0, m_width, m_height};
    const HBRUSH brush = CreateSolidBrush(ground);
    FillRect(m_dc, &all, brush);
    DeleteObject(brush);
    const WithFont font(control, m_dc);
    SetBkMode(m_dc, TRANSPARENT);
    RECT line = area;
    DrawTextA(m_dc, text.c_str(), -1, &line, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
}

int ControlPicture::firstInk(const RECT& area) const {
    const COLORREF ground = at(area.left, area.top);
    for (LONG y = area.top; y < area.bottom; ++y) {
        for (LONG x = area.left; x < area.right; ++x) {
            if (at(x, y) != ground) {
                return static_cast<int>(y - area.top);
            }
        }
    }
    return -1;
}

int ControlPicture::inkWidth(const RECT& area) const {
    constexpr int kInk = 90;  // what smooths a letter's edge is paler
    LONG first = area.right, last = area.left - 1;
    for (LONG y = area.top; y < area.bottom; ++y) {
        const COLORREF ground = at(area.left, y);
        for (LONG x = area.left; x < area.right; ++x) {
            if (colourDistance(at(x, y), ground) > kInk) {
                first = std::min(first, x);
                last = std::max(last, x);
            }
        }
    }
    return last < first ? 0 : static_cast<int>(last - first + 1);
}

int colourDistance(COLORREF a, COLORREF b) {
    return std::abs(GetRValue(a) - GetRValue(b)) + std::abs(GetGValue(a) - GetGValue(b)) +
           std::abs(GetBValue(a) - GetBValue(b));
}

}  // namespace zoka
