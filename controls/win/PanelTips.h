// What stands over a panel's rows: the tooltips of their controls, and in a balloon why a text was refused.
#pragma once

#include <windows.h>

#include <string>

#include "ui/win/WindowKit.h"

namespace zoka {

// Each does nothing until `make` was called. [panel thread]
class PanelTips {
public:
    // To make windows the system takes the loader's lock: not while another thread may be unmapping the library.
    void make(HWND panel, const WindowFonts& fonts);
    // They break their lines at another width now.
    void fontsChanged(const WindowFonts& fonts);
    bool isMade() const { return m_tooltip != nullptr; }
    // The panel's window is gone, and they with it.
    void forget() { m_panel = m_tooltip = m_balloon = nullptr; }

    // --- Tooltips. Their texts are asked for with TTN_GETDISPINFOW, of which the sender is `tooltip`.
    HWND tooltip() const { return m_tooltip; }
    void add(HWND control);
    void remove(HWND control);  // before the control goes
    // Every message of such a control.
    void relay(HWND control, UINT message, WPARAM wParam, LPARAM lParam);
    void hideTooltip();

    // --- The reason of a refusal, for some seconds.
    void showRefusal(HWND field, const std::string& text);
    void hideRefusal();
    // Whether one is shown, or will be; at that field.
    bool isRefusing() const { return m_refusing; }
    bool isRefusing(HWND field) const { return m_refusing && field == m_refusedField; }
    // The panel's window hands these two on.
    static constexpr UINT kShowRefusal = WM_APP + 4;
    void showNow();
    void timer(WPARAM id);

private:
    void placeBalloon();
    void followField();
    RECT balloonPlace() const;

    HWND m_panel = nullptr, m_tooltip = nullptr, m_balloon = nullptr;
    HWND m_refusedField = nullptr;
    std::wstring m_refusal;
    RECT m_balloonFor{};  // where the field was when the balloon was placed
    bool m_refusing = false;
};

}  // namespace zoka
