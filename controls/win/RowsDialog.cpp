#include "controls/win/RowsDialog.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>

#include "ui/win/StatusLine.h"

namespace zoka {
namespace {

// Where each kind of window was last in this run of the editor. One may be open on several threads.
PlaceMemory& placeOf(const std::string& title) {
    static std::mutex lock;
    static std::map<std::string, PlaceMemory> places;
    const std::lock_guard locked(lock);
    return places[title];
}

struct Corner {
    HWND window;  // whose it is to be
    LONG left, top;
    LONG step;  // as near as that another one's is the same place
    bool taken;
};

BOOL CALLBACK isTaken(HWND other, LPARAM data) noexcept {
    auto& corner = *reinterpret_cast<Corner*>(data);
    DWORD process = 0;
    RECT place{};
    GetWindowThreadProcessId(other, &process);
    corner.taken = other != corner.window && process == GetCurrentProcessId() && IsWindowVisible(other) &&
                   GetWindowRect(other, &place) && std::abs(place.left - corner.left) < corner.step &&
                   std::abs(place.top - corner.top) < corner.step;
    return !corner.taken;
}

// From the middle of the screen towards its right, where it covers less of the level. Where another panel stands there,
// it goes so far down and to the left that the captions of both can be seen.
void moveAside(HWND window) {
    RECT place{};
    if (!GetWindowRect(window, &place)) {
        return;
    }
    const RECT screen = workArea(window);
    const LONG room = screen.right - place.right;
    Corner corner{window, place.left + room * 3 / 4, place.top,
                  GetSystemMetrics(SM_CYCAPTION) + GetSystemMetrics(SM_CYSIZEFRAME), false};
    while (corner.top + 2 * corner.step < screen.bottom) {
        corner.taken = false;
        EnumWindows(isTaken, reinterpret_cast<LPARAM>(&corner));
        if (!corner.taken) {
            break;
        }
        corner.left = std::max(corner.left - corner.step, screen.left);
        corner.top += corner.step;
    }
    SetWindowPos(window, nullptr, static_cast<int>(corner.left), static_cast<int>(corner.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

constexpr int kCloseUnits = 44, kFindingsUnits = 70;  // "Problems (1000)..."
constexpr UINT kFindFocus = WM_APP + 20;

// In dialog units.
int leastWidth(const RowsDialog::Look& look) {
    int width = kCloseUnits;
    for (const RowsButton& one : look.buttons) {
        width += one.units + kGapUnits;
    }
    return std::max(width, RowsView::kLeastWidth) + 2 * kMarginUnits;
}

int leastHeight(const RowsDialog::Look& look) {
    const int lines = kFieldHeightUnits + kGapUnits;
    return RowsView::kLeastHeight + 2 * kMarginUnits + kGapUnits + kButtonHeightUnits +
           (look.chooserLabel ? lines : 0) + (look.statusLine ? lines : 0);
}

}  // namespace

RowsButton findingsButton(int id) {
    return {id, "&Problems (0)...", kFindingsUnits, true};
}

ButtonState findingsState(size_t count) {
    return {count > 0, "&Problems (" + std::to_string(count) + ")..."};
}

RowsDialog::RowsDialog(Look look)
    : DialogShell({.title = look.title,
                   .module = look.module,
                   .icon = look.icon,
                   .width = 340,
                   .height = 380,
                   .leastWidth = leastWidth(look),
                   .leastHeight = leastHeight(look),
                   .maximizes = true,
                   .memory = &placeOf(look.title)}),
      m_look(std::move(look)) {
    m_look.buttons.push_back({IDCANCEL, "Close", kCloseUnits});
}

HWND RowsDialog::create(HINSTANCE instance, int number) {
    return createFromResource(instance, number, nullptr) ? window() : nullptr;
}

void RowsDialog::placeFirst(SIZE size) {
    DialogShell::placeFirst(size);
    if (!GetWindow(window(), GW_OWNER)) {
        moveAside(window());
    }
}

void RowsDialog::load() {
    m_loaded = true;
    fillRows();
    if (m_look.lookMs > 0 && window() && !leaving()) {
        // It goes with its window.
        SetTimer(window(), reinterpret_cast<UINT_PTR>(this), m_look.lookMs, lookNow);
    }
    m_view->focusFirst();
    showState();
}

void CALLBACK RowsDialog::lookNow(HWND window, UINT, UINT_PTR self, DWORD) {
    answerInside(window, [self]() -> LRESULT {
        auto* const dialog = reinterpret_cast<RowsDialog*>(self);
        if (dialog->window() && !dialog->m_busy) {
            dialog->look();
        }
        return 0;
    });
}

void RowsDialog::failed() {
    KillTimer(window(), reinterpret_cast<UINT_PTR>(this));
    offerUnsaved();
    m_settled = true;
    DialogShell::failed();
}

// In the order of Tab.
void RowsDialog::createControls() {
    // The resource is shared with other panels, and its default button is the one that closes. Enter is no button's.
    SendMessageA(window(), DM_SETDEFID, IDOK, 0);
    m_view.emplace(rows(), static_cast<RowsOwner&>(*this));
    const HFONT font = fonts().text();
    if (m_look.chooserLabel) {
        makeControl(window(), "STATIC", m_look.chooserLabel, 0, 0, chooserLabelId(), font);
        m_view->join(makeControl(window(), "COMBOBOX", "", kDropListStyle, 0, chooserId(), font));
        for (const int id : {chooserLabelId(), chooserId()}) {
            ShowWindow(button(id), SW_HIDE);
        }
    }
    m_view->create(window(), fonts(), viewId());
    for (const RowsButton& one : m_look.buttons) {
        m_view->join(makeControl(window(), "BUTTON", one.text,
                                 WS_TABSTOP | (one.check ? BS_AUTOCHECKBOX : BS_PUSHBUTTON), 0, one.id,
                                 font));
    }
    if (m_look.statusLine) {
        makeStatusLine(window(), statusId(), fonts());
    }
    showState();
}

// From the top the chooser, from the bottom status and buttons; the view gets what is left.
void RowsDialog::layout(Area inside) {
    const WindowFonts& f = fonts();
    const int gapX = f.x(kGapUnits), gapY = f.y(kGapUnits), line = f.lineHeight() + 1;
    if (m_look.chooserLabel && m_choices > 1) {
        std::string text = m_look.chooserLabel;
        std::erase(text, '&');
        Area row = inside.takeTop(f.y(kFieldHeightUnits), gapY);
        const Area label =
            row.takeLeft(std::max(f.labelWidth("Search:"), f.labelWidth(text)) + gapX).middle(line);
        place(button(chooserLabelId()), label.x, label.y, label.width, label.height);
        placeDropList(button(chooserId()), row.x, row.y, row.width, row.height);
    }
    if (m_look.statusLine) {
        const Area row = inside.takeBottom(line, gapY);
        place(button(statusId()), row.x, row.y, row.width, row.height);
    }
    Area foot = inside.takeBottom(f.y(kButtonHeightUnits), gapY);
    const auto put = [&](const RowsButton& one, const Area& at) {
        place(button(one.id), at.x, at.y, at.width, at.height);
    };
    for (const RowsButton& one : m_look.buttons) {
        if (one.left) {
            put(one, foot.takeLeft(f.x(one.units), gapX));
        }
    }
    for (auto one = m_look.buttons.rbegin(); one != m_look.buttons.rend(); ++one) {
        if (!one->left) {
            put(*one, foot.takeRight(f.x(one->units), gapX));
        }
    }
    m_view->place({inside.x, inside.y, inside.width, inside.height});
    InvalidateRect(window(), nullptr, TRUE);
}

void RowsDialog::setChoices(const std::vector<std::string>& items, size_t at) {
    if (!window()) {
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
        layoutNow();
    }
}

// Buttons tell what they would do.
void RowsDialog::showState() {
    if (!window() || !m_view) {
        return;
    }
    setTitle(caption());
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
    if (id == chooserId() && m_look.chooserLabel) {
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

bool RowsDialog::rowShortcut(WPARAM key) {
    for (const RowsButton& one : m_look.buttons) {
        if (one.key != 0 && key == static_cast<WPARAM>(one.key)) {
            press(one.id);  // not now: it may take the control away that has the key
            return true;
        }
    }
    return false;
}

void RowsDialog::entered() {
    const HWND focus = GetFocus();
    if (SendMessageA(focus, WM_GETDLGCODE, 0, 0) & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) {
        SendMessageA(focus, BM_CLICK, 0, 0);
    } else if (!m_busy) {
        m_view->enter();
    }
}

bool RowsDialog::givenUp() {
    return m_busy || m_view->escape();
}

// The window is destroyed by the thread all the same when the editor wants it gone: then nothing here may touch it
// any more.
bool RowsDialog::mayClose() {
    if (m_busy) {
        return false;
    }
    const Busy busy(*this);
    m_settled = m_view->commit() && mayLeave();
    return m_settled;
}

std::optional<LRESULT> RowsDialog::message(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_ACTIVATE:
            if (LOWORD(wParam) != WA_INACTIVE && m_loaded && !m_busy) {
                activated();
                // The control that had it may have gone meanwhile; the system tries that one after this message.
                PostMessageA(window(), kFindFocus, 0, 0);
            }
            return std::nullopt;
        case kFindFocus:
            if (!m_busy) {
                m_view->findFocus();
            }
            return 0;
        case WM_MOUSEWHEEL:
            m_view->wheel(wParam, lParam);
            return 0;
        case WM_NCDESTROY:
            if (m_view) {
                m_view->closed();
            }
            break;
        default:
            break;
    }
    return DialogShell::message(message, wParam, lParam);
}

}  // namespace zoka
