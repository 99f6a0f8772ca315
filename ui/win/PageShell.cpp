#include "ui/win/PageShell.h"

#include <commctrl.h>

#include <algorithm>
#include <exception>

#include "ui/win/StatusLine.h"

namespace zoka {

namespace {

enum { kTabs = 1001, kStatus };
constexpr UINT kSettle = WM_APP + 1;
constexpr UINT kPageFailed = WM_APP + 2;  // to the dialog, while the exception is handled
constexpr int kTabsHeight = 16;           // dialog units
constexpr int kTabPadding = 6;            // pixels at 96 dots per inch, beside and above a tab's text

}  // namespace

bool Page::create(HWND dialog) {
    return createDialog(dialog, WS_CHILD | DS_CONTROL | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT);
}

void Page::settleSoon() {
    if (!m_settlesSoon) {
        m_settlesSoon = PostMessageA(window(), kSettle, 0, 0);
    }
}

bool Page::clearSearch(HWND field) {
    const bool isSearching = GetWindowTextLengthA(field) > 0;
    if (isSearching) {
        SetWindowTextA(field, "");
    }
    return isSearching;
}

LRESULT Page::answerList(RowList& list, NMHDR& header, bool acts) {
    if (list.userMayHaveSelected(header)) {
        settleSoon();
    } else if (acts && header.code == static_cast<UINT>(NM_DBLCLK)) {
        mainAction();
    }
    return list.notified(header);
}

std::optional<LRESULT> Page::message(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            layout({0, 0, LOWORD(lParam), HIWORD(lParam)});
            return 0;
        case WM_COMMAND:
            // Enter and Escape are the dialog's.
            if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
                SendMessageA(GetParent(window()), message, wParam, lParam);
            } else {
                command(LOWORD(wParam), HIWORD(wParam));
            }
            return 0;
        case WM_NOTIFY:
            return notified(*reinterpret_cast<NMHDR*>(lParam));
        case kSettle:
            m_settlesSoon = false;
            settled();
            return 0;
        case WM_TIMER:
            timer(wParam);
            return 0;
        case WM_MEASUREITEM:
            measure(*reinterpret_cast<MEASUREITEMSTRUCT*>(lParam));
            return TRUE;
        case WM_DRAWITEM:
            draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            return TRUE;
        default:
            return std::nullopt;
    }
}

void Page::failed() {
    SendMessageA(GetParent(window()), kPageFailed, 0, 0);
}

std::optional<LRESULT> PageShell::message(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kPageFailed && std::current_exception()) {
        throw;  // which is what the dialog treats then
    }
    return DialogShell::message(message, wParam, lParam);
}

void PageShell::removePages() {
    for (const std::unique_ptr<Page>& made : m_pages) {
        if (made && made->window()) {
            DestroyWindow(made->window());
        }
    }
}

std::vector<HWND> PageShell::makeFoot() {
    return {makeButton(window(), "Close", IDCANCEL, fonts())};
}

void PageShell::createControls() {
    // A strip of tabs; the pages stand under it, so that no window lies over another.
    m_tabs = makeControl(window(), WC_TABCONTROLA, "", TCS_FOCUSONBUTTONDOWN | WS_TABSTOP, 0, kTabs,
                         fonts().text());
    SendMessageA(m_tabs, TCM_SETPADDING, 0, MAKELPARAM(fonts().px(kTabPadding), fonts().px(kTabPadding / 2)));
    for (size_t i = 0; i < m_titles.size(); ++i) {
        std::string title = m_titles[i];
        TCITEMA item{};
        item.mask = TCIF_TEXT;
        item.pszText = title.data();
        SendMessageA(m_tabs, TCM_INSERTITEMA, i, reinterpret_cast<LPARAM>(&item));
    }
    m_status = makeStatusLine(window(), kStatus, fonts());
    m_foot = makeFoot();
    showPage(m_current);
}

void PageShell::layout(Area inside) {
    // Cut so that of the frame that a tab control draws around its pages only the line under the tabs is seen.
    RECT tab{};
    SendMessageA(m_tabs, TCM_GETITEMRECT, static_cast<WPARAM>(m_current), reinterpret_cast<LPARAM>(&tab));
    Area strip = inside.takeTop(std::max(fonts().y(kTabsHeight), static_cast<int>(tab.bottom) + 2),
                                fonts().y(kGapUnits));
    place(m_tabs, strip.takeTop(static_cast<int>(tab.bottom) + GetSystemMetrics(SM_CYBORDER)));
    Area foot = inside.takeBottom(fonts().y(kButtonHeightUnits), fonts().y(kMarginUnits));
    for (auto button = m_foot.rbegin(); button != m_foot.rend(); ++button) {
        const int width = std::max(fonts().x(kButtonWidthUnits),
                                   fonts().labelWidth(textOf(*button)) + 2 * fonts().x(kGapUnits));
        place(*button, foot.takeRight(width, fonts().x(kGapUnits)));
    }
    place(m_status, foot.middle(fonts().y(kLabelHeightUnits)));
    if (page()) {
        place(page()->window(), inside);
    }
}

bool PageShell::takesKey(const MSG& message) {
    if (message.message != WM_KEYDOWN || (message.hwnd != window() && !IsChild(window(), message.hwnd))) {
        return false;
    }
    if (GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0) {
        int step = 0;
        if (message.wParam == VK_TAB) {
            step = GetKeyState(VK_SHIFT) < 0 ? -1 : 1;
        } else if (message.wParam == VK_NEXT) {
            step = 1;
        } else if (message.wParam == VK_PRIOR) {
            step = -1;
        }
        if (step != 0) {
            const bool onTabs = GetFocus() == m_tabs;
            const int count = static_cast<int>(m_titles.size());
            if (goToPage((m_current + step + count) % count) && onTabs) {
                SetFocus(m_tabs);
            }
            return true;
        }
    }
    return page() && page()->takesKey(message);
}

bool PageShell::goToPage(int index) {
    if (index != m_current) {
        showPage(index);
    }
    if (index != m_current || !page()) {
        return false;
    }
    SetFocus(page()->firstField());
    return true;
}

void PageShell::showPage(int index) {
    if (index != m_current && page() && !page()->commit()) {
        SendMessageA(m_tabs, TCM_SETCURSEL, static_cast<WPARAM>(m_current), 0);
        return;
    }
    std::unique_ptr<Page>& wanted = m_pages[static_cast<size_t>(index)];
    if (!wanted) {
        wanted = makePage(index);
        if (!wanted->create(window())) {
            wanted.reset();
            return;
        }
        m_stale[static_cast<size_t>(index)] = true;
        // Tab goes from the strip into the page, and from there to the button in the foot.
        SetWindowPos(wanted->window(), m_tabs, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
    const HWND before = m_current != index && page() ? page()->window() : nullptr;
    m_current = index;
    layoutNow();
    refreshPage();
    SendMessageA(m_tabs, TCM_SETCURSEL, static_cast<WPARAM>(index), 0);
    ShowWindow(page()->window(), SW_SHOW);
    if (before) {
        ShowWindow(before, SW_HIDE);
        setStatus("");  // was about the other page
    }
    pageShown(index);
}

void PageShell::refreshPage() {
    if (!m_stale[static_cast<size_t>(m_current)] || !page() || !hasContent()) {
        return;
    }
    m_stale[static_cast<size_t>(m_current)] = false;
    page()->refresh();
}

void PageShell::refreshPages() {
    m_stale.assign(m_stale.size(), true);
    refreshPage();
}

void PageShell::refreshOtherPagesLater() {
    m_stale.assign(m_stale.size(), true);
    m_stale[static_cast<size_t>(m_current)] = false;
}

void PageShell::setStatus(const std::string& text) {
    setReport(m_status, text);
}

void PageShell::entered() {
    if (page()) {
        page()->mainAction();
    }
}

// The system sends here what Enter does for a button inside a page.
void PageShell::command(int id, int code) {
    if (page()) {
        page()->command(id, code);
    }
}

LRESULT PageShell::notified(NMHDR& header) {
    if (header.idFrom == kTabs && header.code == static_cast<UINT>(TCN_SELCHANGE)) {
        showPage(static_cast<int>(SendMessageA(m_tabs, TCM_GETCURSEL, 0, 0)));
    }
    return 0;
}

void PageShell::fontsChanged() {
    for (const std::unique_ptr<Page>& made : m_pages) {
        if (made) {
            made->fontsChanged();
        }
    }
}

}  // namespace zoka
