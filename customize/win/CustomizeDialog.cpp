#include "customize/win/CustomizeDialog.h"

#include <algorithm>
#include <mutex>

#include "customize/win/CustomizeControls.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

// Where the panel was last in this run of the editor. It may be open on two threads, in the Project Manager too.
std::mutex g_lastLock;
RECT g_lastPlace{};
bool g_lastMaximized = false;

void setIcons(HWND window, HINSTANCE module, int icon) {
    const auto load = [&](int width, int height) {
        return reinterpret_cast<LPARAM>(LoadImageA(module, MAKEINTRESOURCEA(icon), IMAGE_ICON,
                                                   GetSystemMetrics(width), GetSystemMetrics(height),
                                                   LR_SHARED));
    };
    // Without icons of its own the system looks for others when it draws the caption, and needs the loader's
    // lock for it.
    SendMessageA(window, WM_SETICON, ICON_BIG, load(SM_CXICON, SM_CYICON));
    SendMessageA(window, WM_SETICON, ICON_SMALL, load(SM_CXSMICON, SM_CYSMICON));
}

// From the middle of the screen towards its right, where it covers less of the level, and leaves the middle to
// the other panel.
void moveAside(HWND window) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    RECT place{};
    if (!GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor) ||
        !GetWindowRect(window, &place)) {
        return;
    }
    const LONG room = monitor.rcWork.right - place.right;
    SetWindowPos(window, nullptr, static_cast<int>(place.left + room * 3 / 4), static_cast<int>(place.top), 0,
                 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

bool onScreen(const RECT& place) {
    const POINT caption{(place.left + place.right) / 2, place.top + 10};
    return place.right > place.left && MonitorFromPoint(caption, MONITOR_DEFAULTTONULL);
}

}  // namespace

CustomizeDialog::CustomizeDialog(Setup setup)
    : m_setup(std::move(setup)), m_session(m_setup.editor, userPrompt(), this), m_panel(*this) {}

CustomizeDialog::~CustomizeDialog() = default;

HWND CustomizeDialog::create(HINSTANCE instance, int number) {
    return CreateDialogParamA(instance, MAKEINTRESOURCEA(number), nullptr, dialogProc,
                              reinterpret_cast<LPARAM>(this));
}

void CustomizeDialog::runModal(HINSTANCE instance, int number, HWND owner) {
    const HWND window = CreateDialogParamA(instance, MAKEINTRESOURCEA(number), owner, dialogProc,
                                           reinterpret_cast<LPARAM>(this));
    if (!window) {
        return;
    }
    const bool enabled = owner && !EnableWindow(owner, FALSE);
    ShowWindow(window, SW_SHOW);  // it may be maximized
    load();
    MSG message;
    while (m_window) {
        const BOOL got = GetMessageA(&message, nullptr, 0, 0);
        if (got <= 0) {
            if (got == 0) {
                PostQuitMessage(static_cast<int>(message.wParam));
            }
            if (m_window) {
                DestroyWindow(m_window);
            }
            break;
        }
        if (!m_window || !IsDialogMessageA(m_window, &message)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    if (enabled) {
        EnableWindow(owner, TRUE);
    }
    if (owner) {
        SetActiveWindow(owner);
    }
}

void CustomizeDialog::initialise(HWND window) {
    m_window = window;
    m_fonts = std::make_unique<WindowFonts>();
    // The resource is shared with the other panel; this one's controls are made here.
    while (const HWND other = GetWindow(window, GW_CHILD)) {
        DestroyWindow(other);
    }
    setIcons(window, m_setup.module, m_setup.icon);
    RECT last;
    bool maximized = false;
    {
        const std::lock_guard lock(g_lastLock);
        last = g_lastPlace;
        maximized = g_lastMaximized;
    }
    const bool again = onScreen(last);
    if (again) {
        // Where it stands unless maximized counts from the work area, not from the screen.
        WINDOWPLACEMENT where{};
        where.length = sizeof where;
        where.showCmd = SW_HIDE;
        where.rcNormalPosition = last;
        SetWindowPlacement(window, &where);
    } else {
        const SIZE size = outerSize(window, m_fonts->x(340), m_fonts->y(380));
        const HWND owner = GetWindow(window, GW_OWNER);
        centreOver(window, owner, size.cx, size.cy);
        if (!owner) {
            moveAside(window);
        }
    }
    // In a window that has its size already: each would be moved with every change of it.
    makeControls();
    showState();
    layout();
    if (again && maximized) {
        ShowWindow(window, SW_MAXIMIZE);
    }
    SetFocus(GetDlgItem(window, IDCANCEL));
}

void CustomizeDialog::load() {
    if (m_setup.choices) {
        m_session.scriptChoices = m_setup.choices();
    }
    m_loaded = true;
    fillScriptChoices();  // they take room that the rows don't get
    if (!m_session.open(m_setup.scriptPath)) {
        rowsReplaced();
    }
    m_panel.focusFirst();
}

void CustomizeDialog::bringToFront() {
    if (m_window) {
        SetForegroundWindow(m_window);
    }
}

void CustomizeDialog::raiseOnce() {
    if (!m_window) {
        return;
    }
    constexpr UINT kHow = SWP_NOMOVE | SWP_NOSIZE;
    SetWindowPos(m_window, HWND_TOPMOST, 0, 0, 0, 0, kHow);
    SetWindowPos(m_window, HWND_NOTOPMOST, 0, 0, 0, 0, kHow);
}

void CustomizeDialog::rowsReplaced() {
    const std::string& path = m_session.script().scriptPath;
    const bool samePlaces = path == m_shownPath && m_session.size() == m_shownRows;
    m_shownPath = path;
    m_shownRows = m_session.size();
    m_panel.rowsReplaced(samePlaces);
    if (!m_window) {
        return;
    }
    if (!samePlaces) {
        setText(m_help, "No Help");
    }
    fillScriptChoices();
    showState();
}

void CustomizeDialog::valuesChanged() {
    if (!m_window) {
        return;
    }
    m_panel.showValues();
    if (m_session.filter.changedOnly) {
        m_panel.layoutSoon();
    }
    showState();
}

// The title names the script, with a mark while it has changes; buttons tell what they would do.
void CustomizeDialog::showState() {
    const std::string& path = m_session.script().scriptPath;
    const size_t changed = m_loaded ? m_session.changedCount() : 0;
    std::string title = kCustomizeTitle;
    if (!path.empty()) {
        title += " - " + std::string(fileNameOf(path)) + (changed > 0 ? " *" : "");
    }
    setText(m_window, title);
    const bool open = !path.empty();
    enable(GetDlgItem(m_window, kSave), changed > 0);
    enable(GetDlgItem(m_window, kRestore), open);
    enable(GetDlgItem(m_window, kUpdate), open);
    enable(GetDlgItem(m_window, kShowChanges), changed > 0);
    const size_t findings = m_session.script().findings.count();
    setText(GetDlgItem(m_window, kShowFindings), "Problems (" + std::to_string(findings) + ")...");
    enable(GetDlgItem(m_window, kShowFindings), findings > 0);
    setText(GetDlgItem(m_window, kChangedOnly),
            changed > 0 ? "Changed &only (" + std::to_string(changed) + ")" : "Changed &only");
}

void CustomizeDialog::rowFocused(size_t row) {
    if (row < m_session.size()) {
        setText(m_help, m_session.helpText(row));
    }
}

void CustomizeDialog::fold(size_t heading, bool folded) {
    m_session.filter.setFolded(heading, folded);
    m_panel.layoutSoon();
}

std::string CustomizeDialog::picturePath(const std::string& name) const {
    const std::string own = joinPath(folderOf(m_session.script().scriptPath), name);
    if (osFiles().search(own)) {
        return own;
    }
    return m_setup.editor.TemplatePath(name);
}

std::string CustomizeDialog::emptyText() const {
    if (!m_loaded) {
        return {};
    }
    if (m_session.script().scriptPath.empty()) {
        return m_session.problem().empty() ? "There is no script." : m_session.problem();
    }
    return m_session.size() == 0 ? "This script has nothing to customize." : "No entry matches.";
}

// The window asks about changes first. It is destroyed by the thread all the same when the editor wants it
// gone: then nothing here may touch it any more.
void CustomizeDialog::closeWindow() {
    if (m_busy) {
        return;
    }
    m_busy = true;
    const bool kept = m_panel.commit();
    const bool mayClose = kept && m_session.close();
    m_busy = false;
    if (!mayClose || !m_window) {
        return;
    }
    // Enabled before this window goes, or the system would bring another program's window to the front.
    if (const HWND owner = GetWindow(m_window, GW_OWNER)) {
        EnableWindow(owner, TRUE);
    }
    DestroyWindow(m_window);
}

INT_PTR CALLBACK CustomizeDialog::dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, DWLP_USER, lParam);
        reinterpret_cast<CustomizeDialog*>(lParam)->initialise(window);
        return FALSE;
    }
    auto* const self = reinterpret_cast<CustomizeDialog*>(GetWindowLongPtrA(window, DWLP_USER));
    return self && self->m_window ? self->message(message, wParam, lParam) : FALSE;
}

INT_PTR CustomizeDialog::message(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            layout();
            // At once: a window that follows the mouse would show its old picture meanwhile.
            RedrawWindow(m_window, nullptr, nullptr,
                         RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
            return TRUE;
        case WM_GETMINMAXINFO: {
            const SIZE least = leastSize();
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {least.cx, least.cy};
            return TRUE;
        }
        case WM_COMMAND:
            command(LOWORD(wParam), HIWORD(wParam));
            return TRUE;
        case WM_MOUSEWHEEL:
            PostMessageA(m_panel.window(), message, wParam, lParam);
            return TRUE;
        case WM_CLOSE:
            closeWindow();
            return TRUE;
        case WM_DESTROY: {
            WINDOWPLACEMENT where{};
            where.length = sizeof where;
            if (GetWindowPlacement(m_window, &where)) {
                const std::lock_guard lock(g_lastLock);
                g_lastPlace = where.rcNormalPosition;
                g_lastMaximized = where.showCmd == SW_SHOWMAXIMIZED;
            }
            return FALSE;
        }
        case WM_NCDESTROY:
            m_window = nullptr;
            m_help = nullptr;
            m_fonts.reset();
            return FALSE;
        default:
            return FALSE;
    }
}

}  // namespace zoka
