#include "ui/win/DialogShell.h"

#include <algorithm>

namespace zoka {

namespace {

constexpr UINT kEndNow = WM_APP + 90;

bool onScreen(const RECT& place) {
    const POINT caption{(place.left + place.right) / 2, place.top + 10};
    return place.right > place.left && MonitorFromPoint(caption, MONITOR_DEFAULTTONULL);
}

}  // namespace

void PlaceMemory::keep(HWND window) {
    WINDOWPLACEMENT where{};
    where.length = sizeof where;
    if (!GetWindowPlacement(window, &where)) {
        return;
    }
    const std::lock_guard lock(m_lock);
    m_place = where.rcNormalPosition;
    m_maximized = where.showCmd == SW_SHOWMAXIMIZED;
}

bool PlaceMemory::give(HWND window, bool& maximized) const {
    WINDOWPLACEMENT where{};
    where.length = sizeof where;
    where.showCmd = SW_HIDE;
    {
        const std::lock_guard lock(m_lock);
        where.rcNormalPosition = m_place;
        maximized = m_maximized;
    }
    // The place of a window that may be maximized counts from the work area, not from the screen.
    return onScreen(where.rcNormalPosition) && SetWindowPlacement(window, &where);
}

DialogShell::~DialogShell() {
    enableOwner();
}

bool DialogShell::create(HWND owner) {
    DWORD style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN;
    style |= m_frame.leastWidth > 0 ? static_cast<DWORD>(WS_THICKFRAME) : static_cast<DWORD>(DS_MODALFRAME);
    if (m_frame.maximizes) {
        style |= WS_MAXIMIZEBOX;
    }
    return createDialog(owner, style, 0);
}

bool DialogShell::createFromResource(HINSTANCE module, int resource, HWND owner) {
    return createDialog(owner, module, resource);
}

void DialogShell::created() {
    while (const HWND other = GetWindow(window(), GW_CHILD)) {
        DestroyWindow(other);
    }
    SetWindowTextA(window(), m_frame.title.c_str());
    const HWND owner = GetWindow(window(), GW_OWNER);
    setWindowIcons(window(), m_frame.module, m_frame.icon, owner);
    m_maximized = false;
    if (!m_frame.memory || !m_frame.memory->give(window(), m_maximized)) {
        placeFirst(outerSize(window(), m_fonts.x(m_frame.width), m_fonts.y(m_frame.height)));
    }
    fitOnScreen();
    // In a window that has its size already: each would be moved with every change of it.
    createControls();
    m_ready = true;
    layoutNow();
    if (m_maximized) {
        ShowWindow(window(), SW_MAXIMIZE);
    }
    if (const HWND field = firstField()) {
        SetFocus(field);
    }
}

void DialogShell::placeFirst(SIZE size) {
    centreOver(window(), GetWindow(window(), GW_OWNER), static_cast<int>(size.cx), static_cast<int>(size.cy));
}

void DialogShell::fitOnScreen() {
    RECT place, common;
    GetWindowRect(window(), &place);
    const RECT area = workArea(window());
    if (!IntersectRect(&common, &place, &area) || !EqualRect(&common, &place)) {
        placeOnScreen(window(), place, area);
    }
}

SIZE DialogShell::leastSize() const {
    const bool isFixed = m_frame.leastWidth == 0;
    const SIZE least = outerSize(window(), m_fonts.x(isFixed ? m_frame.width : m_frame.leastWidth),
                                 m_fonts.y(isFixed ? m_frame.height : m_frame.leastHeight));
    const RECT area = workArea(window());
    return {std::min(least.cx, area.right - area.left), std::min(least.cy, area.bottom - area.top)};
}

void DialogShell::runModal(HWND owner) {
    if (!owner) {
        owner = modalOwner();
    }
    if (!create(owner)) {
        return;
    }
    m_modal = true;
    // An owner that takes no input already belongs to a window further out, which lets it take input again.
    if (owner && IsWindowEnabled(owner)) {
        EnableWindow(owner, FALSE);
        m_disabled = owner;
    }
    ShowWindow(window(), m_maximized ? SW_SHOWMAXIMIZED : SW_SHOW);
    if (const HWND field = window() ? firstField() : nullptr) {
        SetFocus(field);
    }
    if (window()) {
        shown();
    }
    const auto tookKey = [this](const MSG& key) {
        return inside([&]() -> std::optional<LRESULT> { return takesKey(key); }).value_or(TRUE) != FALSE;
    };
    const bool programEnds =
        runMessageLoop([this] { return !window(); }, [this] { return window(); }, tookKey);
    if (programEnds && window()) {
        end();
    }
    m_modal = false;
    enableOwner();
    if (owner && IsWindow(owner)) {
        SetActiveWindow(owner);
    }
}

void DialogShell::close() {
    if (m_closing) {
        return;
    }
    m_closing = true;
    const bool closes = mayClose();
    m_closing = false;
    if (closes) {
        end();
    }
}

void DialogShell::end() {
    if (!window()) {
        return;
    }
    // Before this window goes, or the system would bring another program's window to the front.
    enableOwner();
    DestroyWindow(window());
}

void DialogShell::enableOwner() {
    if (m_disabled && IsWindow(m_disabled)) {
        EnableWindow(m_disabled, TRUE);
    }
    m_disabled = nullptr;
}

void DialogShell::layoutNow() {
    if (!m_ready || !window()) {
        return;
    }
    RECT area;
    GetClientRect(window(), &area);
    layout(Area{0, 0, static_cast<int>(area.right), static_cast<int>(area.bottom)}.inset(
        m_fonts.x(kMarginUnits), m_fonts.y(kMarginUnits)));
}

void DialogShell::renewFonts(int dpi) {
    if (!m_ready || !m_fonts.renew(window(), dpi)) {
        return;
    }
    fontsChanged();
    // A window that has become too small for its controls grows.
    RECT frame;
    GetWindowRect(window(), &frame);
    const SIZE least = leastSize();
    frame.right = std::max(frame.right, frame.left + least.cx);
    frame.bottom = std::max(frame.bottom, frame.top + least.cy);
    if (!IsZoomed(window()) && !IsIconic(window())) {
        placeOnScreen(window(), frame, workArea(window()));
    }
    layoutNow();
    InvalidateRect(window(), nullptr, TRUE);
}

std::optional<LRESULT> DialogShell::message(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED) {
                layoutNow();
                // At once: a window that follows the mouse would show its old picture meanwhile.
                RedrawWindow(window(), nullptr, nullptr,
                             RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
            }
            return 0;
        case WM_GETMINMAXINFO:
            if (m_frame.leastWidth > 0) {
                const SIZE least = leastSize();
                reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {least.cx, least.cy};
            }
            return 0;
        case WM_COMMAND:
            // The system sends here what Enter and Esc do.
            if (LOWORD(wParam) == IDCANCEL) {
                if (GetKeyState(VK_ESCAPE) >= 0 || !givenUp()) {
                    close();
                }
            } else if (LOWORD(wParam) == IDOK) {
                entered();
            } else {
                command(LOWORD(wParam), HIWORD(wParam));
            }
            return 0;
        case WM_NOTIFY:
            return notified(*reinterpret_cast<NMHDR*>(lParam));
        case WM_CLOSE:
            close();
            return 0;
        case WM_SETTINGCHANGE:
            if (wParam == SPI_SETNONCLIENTMETRICS || wParam == SPI_SETICONTITLELOGFONT) {
                renewFonts(0);
            }
            return std::nullopt;
        case 0x02E0: {  // WM_DPICHANGED: the window has come to a screen of another resolution
            const RECT& wanted = *reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(window(), nullptr, static_cast<int>(wanted.left), static_cast<int>(wanted.top),
                         static_cast<int>(wanted.right - wanted.left),
                         static_cast<int>(wanted.bottom - wanted.top), SWP_NOZORDER | SWP_NOACTIVATE);
            renewFonts(LOWORD(wParam));
            return 0;
        }
        case WM_WINDOWPOSCHANGED:
            // Somebody else may have ended the modal dialog the system's way, which hides it.
            if (m_modal && (reinterpret_cast<const WINDOWPOS*>(lParam)->flags & SWP_HIDEWINDOW) != 0) {
                PostMessageA(window(), kEndNow, 0, 0);
            }
            return std::nullopt;
        case kEndNow: {
            // An owner that is made an icon hides its windows, too.
            const HWND owner = GetWindow(window(), GW_OWNER);
            if (!IsWindowVisible(window()) && !(owner && IsIconic(owner))) {
                end();
            }
            return 0;
        }
        case WM_DESTROY:
            if (m_frame.memory) {
                m_frame.memory->keep(window());
            }
            enableOwner();
            return std::nullopt;
        case WM_NCDESTROY:
            m_ready = false;
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

bool runMessageLoop(const std::function<bool()>& done, const std::function<HWND()>& window,
                    const std::function<bool(const MSG&)>& takesKey) {
    MSG message;
    while (!done()) {
        const BOOL got = GetMessageW(&message, nullptr, 0, 0);
        if (got == 0) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return true;
        }
        if (got < 0 || (takesKey && takesKey(message))) {
            continue;
        }
        const HWND dialog = window();
        if (dialog && IsDialogMessageW(dialog, &message)) {
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return false;
}

}  // namespace zoka
