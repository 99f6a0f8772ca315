// What a control looks like, painted by itself into a picture of ours: whatever lies over it on the screen, and whether
// or not it is in sight.
#pragma once

#include <windows.h>

#include <string>

namespace zoka {

// Draws with a control's own font, on the control's device or on one of the caller's.
class WithFont {
public:
    explicit WithFont(HWND control, HDC dc = nullptr)
        : m_control(control),
          m_own(!dc),
          m_dc(dc ? dc : GetDC(control)),
          m_before(SelectObject(m_dc, reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0)))) {}
    ~WithFont() {
        SelectObject(m_dc, m_before);
        if (m_own) {
            ReleaseDC(m_control, m_dc);
        }
    }
    WithFont(const WithFont&) = delete;
    WithFont& operator=(const WithFont&) = delete;

    HDC dc() const { return m_dc; }
    // Of a text of one line.
    SIZE extent(const std::string& text) const {
        SIZE size{};
        GetTextExtentPoint32A(m_dc, text.c_str(), static_cast<int>(text.size()), &size);
        return size;
    }
    LONG height() const {
        TEXTMETRICA metrics;
        GetTextMetricsA(m_dc, &metrics);
        return metrics.tmHeight;
    }

private:
    HWND m_control;
    bool m_own;
    HDC m_dc;
    HGDIOBJ m_before;
};

class ControlPicture {
public:
    // Of black pixels, so many wide and high.
    ControlPicture(int width, int height);
    ~ControlPicture();
    ControlPicture(const ControlPicture&) = delete;
    ControlPicture& operator=(const ControlPicture&) = delete;

    // Has the control paint its inside.
    void paint(HWND control) const;
    // Writes a text in a control's font, in the middle of the area's height, on a ground of that colour.
    void write(HWND control, const std::string& text, const RECT& area, COLORREF ground) const;

    COLORREF at(LONG x, LONG y) const { return GetPixel(m_dc, static_cast<int>(x), static_cast<int>(y)); }
    // The first row of pixels that isn't like the area's left upper corner, counted from the area's top; -1 when all
    // are.
    int firstInk(const RECT& area) const;
    // How wide the part of an area is that has pixels unlike those at the left end of their rows.
    int inkWidth(const RECT& area) const;

private:
    int m_width, m_height;
    HDC m_dc;
    HBITMAP m_bitmap;
    HGDIOBJ m_before;
};

// How much two colours differ, from 0 to 765.
int colourDistance(COLORREF a, COLORREF b);

}  // namespace zoka
