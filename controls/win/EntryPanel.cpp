#include "controls/win/EntryPanel.h"

#include <algorithm>

#include "controls/win/ControlClasses.h"

namespace zoka {
namespace {

constexpr int kSpacing = 3, kMargin = 6;  // in pixels at 96 dpi
constexpr size_t kSearchedForField =
    200;  // rows without a usable field are passed over by Tab, but not without end

}  // namespace

EntryPanel::EntryPanel(RowEditing& rows, RowHost& host)
    : m_editing(rows), m_host(host), m_layout(0, 0, 0), m_measure(rows) {}

HWND EntryPanel::create(HWND parent, int id, const WindowFonts& fonts) {
    m_fonts = &fonts;
    m_layout = PanelLayout(fonts.px(kMargin), fonts.px(kMargin), fonts.px(kSpacing));
    m_measure.setFonts(fonts);
    CreateWindowExA(WS_EX_CONTROLPARENT | WS_EX_CLIENTEDGE, kEntryPanelClass, "",
                    WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_CLIPCHILDREN, 0, 0, 0, 0, parent,
                    reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ControlClasses::instance(), this);
    return m_window;
}

// Where the row stands in the view, if all of it does.
std::optional<int> EntryPanel::placeInSight(size_t row) const {
    const size_t place = m_layout.rowOfItem(row);
    if (place >= m_layout.rows().size()) {
        return std::nullopt;
    }
    const int top = topOf(place);
    const bool isSeen = top >= 0 && top + m_layout.rectOfRow(place, 0).height <= m_height;
    return isSeen ? std::optional(top) : std::nullopt;
}

// In the view.
int EntryPanel::topOf(size_t place) const {
    return m_layout.rectOfRow(place, rowsWidth()).y - m_top;
}

// The row of the name that the one with the keyboard had: at its place, or else the first one.
std::optional<size_t> EntryPanel::rowLikeLast() const {
    if (m_lastName.empty()) {
        return std::nullopt;
    }
    if (m_lastFocused && *m_lastFocused < m_editing.size() &&
        m_editing.nameOf(*m_lastFocused) == m_lastName) {
        return m_lastFocused;
    }
    for (size_t row = 0; row < m_editing.size(); ++row) {
        if (m_editing.nameOf(row) == m_lastName) {
            return row;
        }
    }
    return std::nullopt;
}

void EntryPanel::rowsReplaced(bool samePlaces) {
    const bool hadFocus = focused() != nullptr;
    const bool hadDraft = !m_drafts.empty();
    std::optional<int> top;  // where the row is to stand in the view that takes the place of the last one
    const std::optional<size_t> like = rowLikeLast();
    samePlaces = samePlaces && (m_lastName.empty() || like == m_lastFocused);
    if (!samePlaces) {
        const size_t before = m_lastFocused ? m_layout.rowOfItem(*m_lastFocused) : m_layout.rows().size();
        if (m_window && before < m_layout.rows().size()) {
            top = topOf(before);
        }
        m_lastFocused = like;
        m_top = 0;
    }
    m_filled = true;
    // A window that goes away with the keyboard has nothing to say about its row any more.
    m_live.clear();
    m_measure.rowsReplaced();
    m_tips.hideRefusal();
    m_drafts.clear();
    if (!m_window) {
        return;
    }
    const bool isLike = !samePlaces && m_lastFocused;
    {
        const DrawingOff off(m_window);
        layout();
        const size_t place = isLike ? m_layout.rowOfItem(*m_lastFocused) : m_layout.rows().size();
        if (top && place < m_layout.rows().size()) {
            scrollTo(topOf(place) - *top);
        }
    }
    if (hadFocus) {
        focusLast();
    }
    if (hadDraft) {
        const std::string text = m_editing.giveUpInput();
        const auto live = m_lastFocused ? m_live.find(*m_lastFocused) : m_live.end();
        if (live != m_live.end() && live->second->field()) {
            showRefusal(live->second->field(), text);
        }
    }
}

void EntryPanel::fontsChanged() {
    if (!m_window) {
        return;
    }
    m_live.clear();  // before the fonts that they show
    m_measure.setFonts(*m_fonts);
    m_tips.fontsChanged(*m_fonts);
    m_layout = PanelLayout(m_fonts->px(kMargin), m_fonts->px(kMargin), m_fonts->px(kSpacing));
    const std::map<size_t, Draft> drafts = std::move(m_drafts);
    rowsReplaced(true);
    m_drafts = drafts;
    showValues();
}

void EntryPanel::showValues() {
    for (const auto& [row, window] : m_live) {
        window->showValue();
    }
}

void EntryPanel::fold(size_t heading, bool folded) {
    m_editing.filter.setFolded(heading, folded);
    layoutSoon();
}

void EntryPanel::layoutSoon() {
    if (m_window && !m_laidOutSoon) {
        m_laidOutSoon = PostMessageA(m_window, kLayoutRows, 0, 0) != 0;
    }
}

void EntryPanel::layout() {
    if (!m_window || m_placing) {
        return;
    }
    RECT area;
    GetClientRect(m_window, &area);
    const int height = static_cast<int>(area.bottom);
    const int width = rowsWidth() - 2 * m_fonts->px(kMargin);
    const std::optional<int> stood = m_lastFocused ? placeInSight(*m_lastFocused) : std::nullopt;
    std::vector<PanelItem> items(m_editing.size());
    const std::vector<bool> shown = m_editing.visibleRows();
    for (size_t row = 0; row < items.size(); ++row) {
        items[row].visible = shown[row];
        if (!shown[row]) {
            continue;
        }
        items[row].height = m_measure.height(row, width);
        items[row].gapAfter = m_editing.row(row).facts().field != EntryField::Text;
    }
    m_layout.stack(items);
    setText(m_window, m_filled && m_layout.rows().empty() ? m_editing.emptyText() : "");
    const std::vector<size_t>& rows = m_layout.rows();
    const EntryWindow* const focus = focused();
    const PanelFilter& filter = m_editing.filter;
    const bool isOther = m_search != filter.search || m_changedOnly != filter.changedOnly;
    if (isOther) {  // what is found is seen from its beginning
        m_search = filter.search;
        m_changedOnly = filter.changedOnly;
        m_top = 0;
    }
    if (!focus || m_layout.rowOfItem(focus->row()) < rows.size()) {
        const size_t last = m_lastFocused ? m_layout.rowOfItem(*m_lastFocused) : rows.size();
        const bool isWhole = filter.search.empty() && !filter.changedOnly;
        if (last == rows.size() || !(focus ? stood || isOther : isOther && isWhole)) {
            return scrollTo(m_top);
        }
        // The row in use stays in sight, and where it stands when others come back around it.
        if (isOther && stood) {
            m_top = m_layout.clampScroll(m_top + topOf(last) - *stood, height);
        }
        return scrollTo(m_layout.scrollToShow(last, m_top, height));
    }
    // A row that is shown no more takes the keyboard with it: the first field in sight gets it.
    m_top = m_layout.clampScroll(m_top, height);
    const PanelLayout::Range seen = m_layout.rowsWithin(m_top, height);
    size_t next = seen.first;
    while (next < seen.last && !takesKeyboard(rows[next])) {
        ++next;
    }
    if (next == seen.last) {
        scrollTo(m_top);
    } else {
        scrollTo(m_layout.scrollToShow(next, m_top, height));
        focusRow(rows[next]);
    }
    if (!GetFocus()) {
        SendMessageA(GetAncestor(m_window, GA_ROOT), WM_NEXTDLGCTL, 0, FALSE);
    }
}

// The room for the scroll bar is kept free where there is none: rows keep their width while they are filtered.
int EntryPanel::rowsWidth() const {
    RECT area;
    GetClientRect(m_window, &area);
    const bool hasBar = (GetWindowLongPtrA(m_window, GWL_STYLE) & WS_VSCROLL) != 0;
    return static_cast<int>(area.right) - (hasBar ? 0 : GetSystemMetrics(SM_CXVSCROLL));
}

void EntryPanel::scrollTo(int top) {
    if (!m_window) {
        return;
    }
    RECT area;
    GetClientRect(m_window, &area);
    m_height = static_cast<int>(area.bottom);
    m_top = m_layout.clampScroll(top, m_height);
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    info.nMax = std::max(m_layout.contentHeight() + m_fonts->px(kMargin) - 1, 0);
    info.nPage = static_cast<UINT>(std::max(static_cast<int>(area.bottom), 1));
    info.nPos = m_top;
    SCROLLINFO now{};
    now.cbSize = sizeof now;
    now.fMask = SIF_ALL;
    // A bar that is set is drawn, even where it stays as it was.
    if (!GetScrollInfo(m_window, SB_VERT, &now) || now.nMin != 0 || now.nMax != info.nMax ||
        now.nPage != info.nPage || now.nPos != info.nPos) {
        m_placing = true;  // a bar that comes or goes changes the window's size, but not the rows' width
        SetScrollInfo(m_window, SB_VERT, &info, TRUE);
        m_placing = false;
    }
    placeRows();
}

// The next row that takes the keyboard; the row itself when there is none near.
size_t EntryPanel::nextField(size_t row, int step) const {
    const std::vector<size_t>& rows = m_layout.rows();
    size_t at = row;
    for (size_t i = 0; i < kSearchedForField; ++i) {
        if (step < 0 ? at == 0 : at + 1 >= rows.size()) {
            break;
        }
        at = step < 0 ? at - 1 : at + 1;
        if (takesKeyboard(rows[at])) {
            return at;
        }
    }
    return row;
}

void EntryPanel::placeRows() {
    m_placing = true;
    RECT area;
    GetClientRect(m_window, &area);
    const std::vector<size_t>& rows = m_layout.rows();
    std::vector<size_t> wanted;  // places in `rows`
    const PanelLayout::Range seen = m_layout.rowsWithin(m_top, static_cast<int>(area.bottom));
    for (size_t i = seen.first; i < seen.last; ++i) {
        wanted.push_back(i);
    }
    const auto withNeighbours = [&](size_t first, size_t last) {
        for (const size_t i : {first, nextField(first, -1), last, nextField(last, 1)}) {
            wanted.push_back(i);
        }
    };
    if (seen.first < seen.last) {
        withNeighbours(seen.first, seen.last - 1);
    }
    if (const std::optional<size_t> row = keyboardRow()) {
        const size_t i = m_layout.rowOfItem(*row);
        if (i < rows.size()) {
            withNeighbours(i, i);
        }
    }
    std::sort(wanted.begin(), wanted.end());
    wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());

    // A panel without rows needs none. Not later: a reason must be shown where no window may be made any more.
    if (!m_tips.isMade() && !wanted.empty() && !m_host.leaving()) {
        m_tips.make(m_window, *m_fonts);
    }
    std::map<size_t, std::unique_ptr<EntryWindow>> before;
    before.swap(m_live);
    for (const size_t i : wanted) {
        const auto old = before.find(rows[i]);
        if (old == before.end()) {
            continue;
        }
        m_live[rows[i]] = std::move(old->second);
        before.erase(old);
    }
    bool moved = false;
    const auto windowFor = [&](size_t row, const PanelRect& at, int label) {
        const auto free = std::find_if(before.begin(), before.end(),
                                       [row](const auto& old) { return old.second->canTakeOver(row); });
        if (free == before.end()) {
            return std::make_unique<EntryWindow>(*this, row, at, label);
        }
        std::unique_ptr<EntryWindow> window = std::move(free->second);
        before.erase(free);
        window->takeOver(row);
        moved = true;
        return window;
    };
    const int width = rowsWidth();
    HWND after = HWND_TOP;
    for (const size_t i : wanted) {
        if (m_host.leaving()) {
            break;
        }
        PanelRect at = m_layout.rectOfRow(i, width);
        at.y = std::clamp(at.y - m_top, -30000, 30000);
        const int label = m_measure.labelWidth(at.width);
        auto& window = m_live[rows[i]];
        if (!window) {
            window = windowFor(rows[i], at, label);
        }
        if (!window->window()) {
            continue;
        }
        moved = moved || window->y() != at.y;
        window->setPlace(after, at, label);
        after = window->window();
    }
    before.clear();
    m_placing = false;
    // What the mouse stands on now is another row.
    if (moved) {
        m_tips.hideTooltip();
    }
    // Rows that change places one after the other would copy each other's pictures; so all are drawn anew, at
    // once, before anybody sees the old ones in their new places.
    if (moved || rows.empty()) {
        RedrawWindow(m_window, nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | (rows.empty() ? 0u : RDW_UPDATENOW));
    }
}

bool EntryPanel::isUsed(const EntryWindow& row) const {
    const auto within = [&](HWND control) {
        return control && (control == row.window() || IsChild(row.window(), control));
    };
    return within(GetFocus()) || within(GetCapture()) || within(m_menuField) || m_lastFocused == row.row();
}

EntryWindow* EntryPanel::windowOf(HWND control) {
    for (const auto& [row, window] : m_live) {
        if (window && window->window() &&
            (window->window() == control || IsChild(window->window(), control))) {
            return window.get();
        }
    }
    return nullptr;
}

EntryWindow* EntryPanel::focused() {
    const HWND focus = GetFocus();
    return focus && m_window && IsChild(m_window, focus) ? windowOf(focus) : nullptr;
}

// The row with the keyboard; while another window is in front, the one that may get it back.
std::optional<size_t> EntryPanel::keyboardRow() {
    if (const EntryWindow* const window = focused()) {
        return window->row();
    }
    return IsChild(GetAncestor(m_window, GA_ROOT), GetFocus()) ? std::nullopt : m_lastFocused;
}

void EntryPanel::fieldFocused(size_t row) {
    m_lastFocused = row;
    m_lastName = m_editing.nameOf(row);
    PostMessageA(m_window, kFocused, row, 0);
}

bool EntryPanel::commit() {
    EntryWindow* const window = focused();
    if (window && !window->commit()) {
        bringIntoSight(window->row());
        return false;
    }
    for (auto draft = m_drafts.begin(); draft != m_drafts.end(); draft = m_drafts.begin()) {
        const size_t row = draft->first;
        if (!draftOf(row)) {
            continue;
        }
        if (m_layout.rowOfItem(row) >= m_layout.rows().size()) {  // filtered out, it couldn't be mended
            m_editing.filter.search.clear();
            m_editing.filter.changedOnly = false;
            m_editing.filter.unfoldAll();
            m_host.filterDropped();
            layout();
        }
        focusRow(row);
        const auto live = m_live.find(row);
        if (live != m_live.end()) {
            live->second->commit();
        }
        return false;
    }
    return true;
}

bool EntryPanel::revert() {
    EntryWindow* const window = focused();
    if (window && window->revert()) {
        return true;
    }
    if (!m_tips.isRefusing()) {
        return false;
    }
    m_tips.hideRefusal();
    return true;
}

bool EntryPanel::revertDraft() {
    EntryWindow* const window = focused();
    return window && draftOf(window->row()) && window->revert();
}

const EntryPanel::Draft* EntryPanel::draftOf(size_t row) {
    const auto draft = m_drafts.find(row);
    if (draft == m_drafts.end()) {
        return nullptr;
    }
    if (row < m_editing.size() && m_editing.row(row).value() == draft->second.value &&
        m_editing.row(row).blocked().empty()) {
        return &draft->second;
    }
    m_drafts.erase(draft);
    return nullptr;
}

void EntryPanel::keepDraft(size_t row, std::string text, std::string why) {
    m_drafts[row] = {std::move(text), std::move(why), m_editing.row(row).value()};
}

bool EntryPanel::dropDraft(size_t row) {
    return m_drafts.erase(row) > 0;
}

void EntryPanel::bringIntoSight(size_t row) {
    const size_t place = m_layout.rowOfItem(row);
    if (!m_window || place >= m_layout.rows().size()) {
        return;
    }
    RECT area;
    GetClientRect(m_window, &area);
    scrollTo(m_layout.scrollToShow(place, m_top, static_cast<int>(area.bottom)));
}

void EntryPanel::focusRow(size_t row) {
    if (!m_window || m_layout.rowOfItem(row) >= m_layout.rows().size()) {
        return;
    }
    bringIntoSight(row);
    const auto live = m_live.find(row);
    if (live != m_live.end() && live->second->field()) {
        SendMessageA(GetAncestor(m_window, GA_ROOT), WM_NEXTDLGCTL,
                     reinterpret_cast<WPARAM>(live->second->field()), TRUE);
    }
}

std::optional<size_t> EntryPanel::focusedRow() {
    const EntryWindow* const window = focused();
    return window ? std::optional(window->row()) : std::nullopt;
}

// Whether it has a control that isn't disabled.
bool EntryPanel::takesKeyboard(size_t row) const {
    const EntryModel& model = m_editing.row(row);
    const EntryField field = model.facts().field;
    return field == EntryField::Heading ||
           (hasValue(field) && model.blocked().empty() && (model.readOnly().empty() || isTyped(field)));
}

void EntryPanel::focusLast() {
    if (m_lastFocused && m_layout.rowOfItem(*m_lastFocused) < m_layout.rows().size() &&
        takesKeyboard(*m_lastFocused)) {
        return focusRow(*m_lastFocused);
    }
    focusFirst();
}

void EntryPanel::focusFirst() {
    for (const size_t row : m_layout.rows()) {
        if (hasValue(m_editing.row(row).facts().field) && takesKeyboard(row)) {
            return focusRow(row);
        }
    }
}

bool EntryPanel::leaveBlockedRow() {
    const EntryWindow* const window = focused();
    const size_t row = window ? window->row() : 0;
    if (!window || row >= m_editing.size() || m_editing.row(row).blocked().empty()) {
        return true;
    }
    m_tips.hideRefusal();
    focusFirst();
    return focused() && focused()->row() != row;
}

}  // namespace zoka
