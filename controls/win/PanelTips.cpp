#include "controls/win/PanelTips.h"

#include <commctrl.h>

#include "ui/win/StatusLine.h"

namespace zoka {
namespace {

constexpr int kTipUnits = 240;
constexpr UINT_PTR kHideTimer = 1, kFollowTimer = 2;
constexpr UINT kRefusalMs = 6000, kFollowMs = 30;

TTTOOLINFOW toolOf(HWND panel) {
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.hwnd = panel;
    return tool;
}

}  // namespace

void PanelTips::make(HWND panel, const WindowFonts& fonts) {
    m_panel = panel;
    m_tooltip = makeTip(panel, fonts.x(kTipUnits));
    SendMessageA(m_tooltip, TTM_SETDELAYTIME, TTDT_AUTOPOP, 20000);
    m_balloon = makeTip(panel, fonts.x(kTipUnits));
    TTTOOLINFOW tool = toolOf(panel);
    tool.uFlags = TTF_TRACK | TTF_ABSOLUTE;
    tool.lpszText = const_cast<wchar_t*>(L"");
    SendMessageA(m_balloon, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void PanelTips::fontsChanged(const WindowFonts& fonts) {
    for (const HWND tip : {m_tooltip, m_balloon}) {
        SendMessageA(tip, TTM_SETMAXTIPWIDTH, 0, fonts.x(kTipUnits));
    }
}

void PanelTips::add(HWND control) {
    TTTOOLINFOW tool = toolOf(m_panel);
    tool.uFlags = TTF_IDISHWND;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    SendMessageA(m_tooltip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void PanelTips::remove(HWND control) {
    TTTOOLINFOW tool = toolOf(m_panel);
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    SendMessageA(m_tooltip, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void PanelTips::relay(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    relayToTip(m_tooltip, control, message, wParam, lParam);
}

void PanelTips::hideTooltip() {
    SendMessageA(m_tooltip, TTM_POP, 0, 0);
}

void PanelTips::showRefusal(HWND field, const std::string& text) {
    if (!m_balloon) {
        return;
    }
    m_refusal = wideReport(text);
    m_refusedField = field;
    TTTOOLINFOW tool = toolOf(m_panel);
    tool.lpszText = m_refusal.data();
    SendMessageA(m_balloon, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
    hideTooltip();
    placeBalloon();
    // Once the change of the keyboard's place is over that it may have come with: a window shown in the middle of
    // it can stay below the panel.
    m_refusing = PostMessageA(m_panel, kShowRefusal, 0, 0) != 0;
    SetTimer(m_panel, kHideTimer, kRefusalMs, nullptr);
    SetTimer(m_panel, kFollowTimer, kFollowMs, nullptr);
}

void PanelTips::showNow() {
    if (!m_refusing) {
        return;
    }
    if (IsWindow(m_refusedField)) {  // the keyboard may be elsewhere by now
        placeBalloon();
    }
    // Shown anew: it may be in sight already, and have come to lie below the panel.
    TTTOOLINFOW tool = toolOf(m_panel);
    SendMessageA(m_balloon, TTM_TRACKACTIVATE, FALSE, reinterpret_cast<LPARAM>(&tool));
    SendMessageA(m_balloon, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
    SetWindowPos(m_balloon, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void PanelTips::hideRefusal() {
    if (!m_balloon) {
        return;
    }
    KillTimer(m_panel, kHideTimer);
    KillTimer(m_panel, kFollowTimer);
    m_refusing = false;
    TTTOOLINFOW tool = toolOf(m_panel);
    SendMessageA(m_balloon, TTM_TRACKACTIVATE, FALSE, reinterpret_cast<LPARAM>(&tool));
}

void PanelTips::timer(WPARAM id) {
    if (id == kHideTimer) {
        hideRefusal();
    } else if (id == kFollowTimer) {
        followField();
    }
}

void PanelTips::placeBalloon() {
    GetWindowRect(m_refusedField, &m_balloonFor);
    const RECT area = balloonPlace();
    SendMessageA(m_balloon, TTM_TRACKPOSITION, 0, MAKELPARAM(area.left, area.top));
}

// The balloon is a window of its own: it goes with the field when the panel is moved or scrolled, and away with it.
void PanelTips::followField() {
    RECT now{}, panel{}, seen{};
    GetWindowRect(m_panel, &panel);
    if (!GetWindowRect(m_refusedField, &now) || !IntersectRect(&seen, &now, &panel)) {
        hideRefusal();
    } else if (!EqualRect(&now, &m_balloonFor)) {
        placeBalloon();
    }
}

// Below the field, or above it where it would hide the one that has the keyboard.
RECT PanelTips::balloonPlace() const {
    const TTTOOLINFOW tool = toolOf(m_panel);
    const auto size =
        static_cast<DWORD>(SendMessageA(m_balloon, TTM_GETBUBBLESIZE, 0, reinterpret_cast<LPARAM>(&tool)));
    RECT at, focus, both;
    GetWindowRect(m_refusedField, &at);
    RECT below{at.left, at.bottom + 2, at.left + LOWORD(size), at.bottom + 2 + HIWORD(size)};
    const HWND keyboard = GetFocus();
    if (keyboard && keyboard != m_refusedField && GetWindowRect(keyboard, &focus) &&
        IntersectRect(&both, &below, &focus)) {
        OffsetRect(&below, 0, static_cast<int>(at.top - 2 - below.bottom));
    }
    return below;
}

}  // namespace zoka
