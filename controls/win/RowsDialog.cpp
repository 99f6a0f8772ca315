#include "controls/win/RowsDialog.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace zoka {
namespace {

// Where each kind of window was last in this run of the editor. One may be open on several threads.
struct LastPlace {
    RECT place{};
    bool maximized = false;
};
std::mutex g_lastLock;
std::map<std::string, LastPlace>& lastPlaces() {
    static std::map<std::string, LastPlace> places;
    return places;
}

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

constexpr int kCloseUnits = 44;

}  // namespace

RowsDialog::RowsDialog(Look look) : m_look(std::move(look)) {
    m_look.buttons.push_back({IDCANCEL, "Close", kCloseUnits});
}

RowsDialog::~RowsDialog() = default;

HWND RowsDialog::create(HINSTANCE instance, int number) {
    return CreateDialogParamA(instance, MAKEINTRESOURCEA(number), nullptr, dialogProc,
                              reinterpret_cast<LPARAM>(this));
}

void RowsDialog::runModal(HINSTANCE instance, int number, HWND owner) {
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

void RowsDialog::initialise(HWND window) {
    m_window = window;
    m_view.emplace(rows(), static_cast<RowsOwner&>(*this));
    m_fonts = std::make_unique<WindowFonts>();
    // The resource is shared with the other panel; this one's controls are made here. Enter is no button's.
    while (const HWND other = GetWindow(window, GW_CHILD)) {
        DestroyWindow(other);
    }
    SendMessageA(window, DM_SETDEFID, IDOK, 0);
    setIcons(window, m_look.module, m_look.icon);
    LastPlace last;
    {
        const std::lock_guard lock(g_lastLock);
        last = lastPlaces()[m_look.title];
    }
    const bool again = onScreen(last.place);
    if (again) {
        // Where it stands unless maximized counts from the work area, not from the screen.
        WINDOWPLACEMENT where{};
        where.length = sizeof where;
        where.showCmd = SW_HIDE;
        where.rcNormalPosition = last.place;
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
    if (again && last.maximized) {
        ShowWindow(window, SW_MAXIMIZE);
    }
    SetFocus(button(IDCANCEL));
}

void RowsDialog::load() {
    m_loaded = true;
    fillRows();
    m_view->focusFirst();
    showState();
}

// In the order of Tab.
void RowsDialog::makeControls() {
    const HFONT font = m_fonts->text();
    if (m_look.chooserLabel) {
        makeControl(m_window, "STATIC", m_look.chooserLabel, 0, 0, chooserLabelId(), font);
        m_view->join(makeControl(m_window, "COMBOBOX", "", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, 0,
                                 chooserId(), font));
        for (const int id : {chooserLabelId(), chooserId()}) {
            ShowWindow(button(id), SW_HIDE);
        }
    }
    m_view->create(m_window, *m_fonts, viewId());
    for (const RowsButton& one : m_look.buttons) {
        m_view->join(makeControl(m_window, "BUTTON", one.text,
                                 WS_TABSTOP | (one.check ? BS_AUTOCHECKBOX : BS_PUSHBUTTON), 0, one.id,
                                 font));
    }
    if (m_look.statusLine) {
        makeControl(m_window, "STATIC", "", SS_NOPREFIX | SS_ENDELLIPSIS, 0, statusId(), font);
    }
}

SIZE RowsDialog::leastSize() const {
    int width = 0;
    for (const RowsButton& one : m_look.buttons) {
        width += one.units + kGapUnits;
    }
    const int lines = kFieldHeightUnits + kGapUnits;
    const int height = RowsView::kLeastHeight + 2 * kMarginUnits + kGapUnits + kButtonHeightUnits +
                       (m_look.chooserLabel ? lines : 0) + (m_look.statusLine ? lines : 0);
    return outerSize(m_window,
                     m_fonts->x(std::max(width - kGapUnits, RowsView::kLeastWidth) + 2 * kMarginUnits),
                     m_fonts->y(height));
}

// From the top the chooser, from the bottom status and buttons; the view gets what is left.
void RowsDialog::layout() {
    if (!m_window) {
        return;
    }
    RECT area;
    GetClientRect(m_window, &area);
    const WindowFonts& f = *m_fonts;
    const int gapX = f.x(kGapUnits), gapY = f.y(kGapUnits), labelHeight = f.lineHeight() + 1;
    PanelRect rest{f.x(kMarginUnits), f.y(kMarginUnits), static_cast<int>(area.right) - 2 * f.x(kMarginUnits),
                   static_cast<int>(area.bottom) - 2 * f.y(kMarginUnits)};
    if (m_look.chooserLabel && m_choices > 1) {
        const int field = f.y(kFieldHeightUnits);
        std::string text = m_look.chooserLabel;
        std::erase(text, '&');
        const int label = std::max(f.labelWidth("Search:"), f.labelWidth(text)) + gapX;
        place(button(chooserLabelId()), rest.x, rest.y + (field - labelHeight) / 2, label, labelHeight);
        placeDropList(button(chooserId()), rest.x + label, rest.y, std::max(rest.width - label, 0), field);
        rest.y += field + gapY;
        rest.height -= field + gapY;
    }
    if (m_look.statusLine) {
        place(button(statusId()), rest.x, rest.y + rest.height - labelHeight, rest.width, labelHeight);
        rest.height -= labelHeight + gapY;
    }
    const int height = f.y(kButtonHeightUnits), top = rest.y + rest.height - height;
    int left = rest.x, right = rest.x + rest.width;
    for (const RowsButton& one : m_look.buttons) {
        if (one.left) {
            place(button(one.id), left, top, f.x(one.units), height);
            left += f.x(one.units) + gapX;
        }
    }
    for (auto one = m_look.buttons.rbegin(); one != m_look.buttons.rend(); ++one) {
        if (!one->left) {
            right -= f.x(one->units);
            place(button(one->id), right, top, f.x(one->units), height);
            right -= gapX;
        }
    }
    rest.height -= height + gapY;
    m_view->place(rest);
    InvalidateRect(m_window, nullptr, TRUE);
}

void RowsDialog::setChoices(const std::vector<std::string>& items, size_t at) {
    if (!m_window) {
        return;
    }
    const HWND list = button(chooserId());
    m_filling = true;
    SendMessageA(list, CB_RESETCONTENT, 0, 0);
    for (const std::string& item : items) {
        SendMessageA(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
    }
    SendMessageA(list, CB_SETCURSEL, at < items.size() ? at : static_cast<WPARAM>(-1), 0);
    m_filling = false;
    const bool before = m_choices > 1, now = items.size() > 1;
    m_choices = items.size();
    if (before != now) {
        for (const int id : {chooserLabelId(), chooserId()}) {
            ShowWindow(button(id), now ? SW_SHOWNA : SW_HIDE);
        }
        layout();
    }
}

// Buttons tell what they would do.
void RowsDialog::showState() {
    if (!m_window) {
        return;
    }
    setText(m_window, caption());
    for (const RowsButton& one : m_look.buttons) {
        if (one.id == IDCANCEL) {
            continue;
        }
        const ButtonState state = stateOf(one.id);
        if (!state.text.empty()) {
            setText(button(one.id), state.text);
        }
        enable(button(one.id), state.enabled);
    }
    if (m_look.statusLine) {
        setText(button(statusId()), status());
    }
}

void RowsDialog::command(int id, int code) {
    // While a question is open the window takes no commands but those that terminate it.
    if (m_busy || m_view->command(id, code)) {
        return;
    }
    if (id == IDOK) {  // Enter
        const HWND focus = GetFocus();
        if (SendMessageA(focus, WM_GETDLGCODE, 0, 0) & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) {
            SendMessageA(focus, BM_CLICK, 0, 0);
        } else {
            m_view->enter();
        }
    } else if (id == IDCANCEL) {
        if (code == BN_CLICKED && !(GetKeyState(VK_ESCAPE) < 0 && m_view->escape())) {
            closeWindow();
        }
    } else if (id == chooserId() && m_look.chooserLabel) {
        const LRESULT item = SendMessageA(button(id), CB_GETCURSEL, 0, 0);
        if (code == CBN_SELCHANGE && !m_filling && item >= 0) {
            chosen(static_cast<size_t>(item));
        }
    } else if (code == BN_CLICKED) {
        const Busy busy(*this);
        if (m_view->commit()) {
            pressed(id);
        }
    }
}

// The window is destroyed by the thread all the same when the editor wants it gone: then nothing here may touch it
// any more.
void RowsDialog::closeWindow() {
    if (m_busy) {
        return;
    }
    bool may = false;
    {
        const Busy busy(*this);
        may = m_view->commit() && mayClose();
    }
    if (!may || !m_window) {
        return;
    }
    // Enabled before this window goes, or the system would bring another program's window to the front.
    if (const HWND owner = GetWindow(m_window, GW_OWNER)) {
        EnableWindow(owner, TRUE);
    }
    DestroyWindow(m_window);
}

INT_PTR CALLBACK RowsDialog::dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, DWLP_USER, lParam);
        reinterpret_cast<RowsDialog*>(lParam)->initialise(window);
        return FALSE;
    }
    auto* const self = reinterpret_cast<RowsDialog*>(GetWindowLongPtrA(window, DWLP_USER));
    return self && self->m_window ? self->message(message, wParam, lParam) : FALSE;
}

INT_PTR RowsDialog::message(UINT message, WPARAM wParam, LPARAM lParam) {
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
        case WM_ACTIVATE:
            if (LOWORD(wParam) != WA_INACTIVE && m_loaded && !m_busy) {
                activated();
            }
            return FALSE;
        case WM_COMMAND:
            command(LOWORD(wParam), HIWORD(wParam));
            return TRUE;
        case WM_MOUSEWHEEL:
            m_view->wheel(wParam, lParam);
            return TRUE;
        case WM_CLOSE:
            closeWindow();
            return TRUE;
        case WM_DESTROY: {
            WINDOWPLACEMENT where{};
            where.length = sizeof where;
            if (GetWindowPlacement(m_window, &where)) {
                const std::lock_guard lock(g_lastLock);
                lastPlaces()[m_look.title] = {where.rcNormalPosition, where.showCmd == SW_SHOWMAXIMIZED};
            }
            return FALSE;
        }
        case WM_NCDESTROY:
            m_window = nullptr;
            m_view->closed();
            m_fonts.reset();
            return FALSE;
        default:
            return FALSE;
    }
}

}  // namespace zoka
