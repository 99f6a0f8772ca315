#include "J8ProjectManager/win/SearchPage.h"

#include <algorithm>
#include <utility>

#include "controls/TextSet.h"
#include "util/Text.h"

namespace zoka {

namespace {

// Texts of windows are in the system's set.
std::string searchable(const std::string& text) {
    return foldedText(text, TextSet::System);
}

}  // namespace

void SearchPage::createControls() {
    m_searchLabel = label(m_look.searchName);
    m_search = makeField(window(), m_look.firstId + kSearch, fonts());
    SendMessageA(m_search, EM_LIMITTEXT, 200, 0);
    m_list.takeKeysOf(m_search);
    if (m_look.copiesAll) {
        m_copyAll = button("C&opy all", m_look.firstId + kCopyAll);
    }
    m_name = label("");
    m_list.create(
        window(), m_look.firstId + kList, fonts(), fonts().text(), m_look.columns,
        [this](int row, int column) -> std::string {
            // The list can be drawn before it is filled anew: fewer rows may be there by now.
            const auto at = static_cast<size_t>(row);
            return row >= 0 && at < m_rows.size() && m_rows[at] < rowCount() ? cell(m_rows[at], column) : "";
        });
    if (m_look.detailsName) {
        m_detailsName = label(m_look.detailsName);
        m_details = makeReadOnlyText(window(), m_look.firstId + kDetails, fonts().text());
    }
}

void SearchPage::layout(Area page) {
    if (m_details) {
        placeList(page.takeTop((page.height + fonts().y(kFieldHeightUnits + kLabelHeightUnits)) / 2,
                               fonts().y(kGapUnits)));
        placeLabelAbove(m_detailsName, page, fonts());
        place(m_details, page);
    } else {
        placeList(page);
    }
}

void SearchPage::placeList(Area page) {
    Area row = page.takeTop(fonts().y(kFieldHeightUnits), fonts().y(kGapUnits));
    if (m_copyAll) {
        const int gap = fonts().x(kGapUnits);
        place(m_copyAll, row.takeRight(fonts().labelWidth(textOf(m_copyAll)) + 2 * gap, gap));
    }
    placeLabel(m_searchLabel, row, fonts());
    place(m_search, row);
    placeLabelAbove(m_name, page, fonts());
    m_list.place(page);
}

std::string SearchPage::searchText(size_t row) const {
    std::string text;
    for (size_t column = 0; column < m_look.columns.size(); ++column) {
        text += cell(row, static_cast<int>(column)) + '\n';
    }
    return text;
}

std::string SearchPage::copied(size_t row) const {
    std::string text;
    for (size_t column = 0; column < m_look.columns.size(); ++column) {
        text += (column > 0 ? "\t" : "") + cell(row, static_cast<int>(column));
    }
    return text + "\r\n";
}

void SearchPage::refresh() {
    collect();
    m_words.clear();
    const std::optional<Kept> kept = std::exchange(m_kept, std::nullopt);
    const std::optional<size_t> again = kept ? findKept(*kept) : std::nullopt;
    filter(again ? again : selected());
}

void SearchPage::keepSelection() {
    const std::optional<size_t> row = selected();
    if (m_kept || !row || *row >= rowCount() || nameOf(*row).empty()) {
        return;  // what was kept before has not been shown since
    }
    m_kept = Kept{nameOf(*row)};
    for (size_t i = 0; i < *row; ++i) {
        m_kept->before += nameOf(i) == m_kept->name ? 1 : 0;
    }
}

std::optional<size_t> SearchPage::findKept(Kept kept) const {
    for (size_t row = 0; row < rowCount(); ++row) {
        if (nameOf(row) == kept.name && kept.before-- == 0) {
            return row;
        }
    }
    return std::nullopt;
}

void SearchPage::filter(std::optional<size_t> before) {
    const std::string wanted = searchable(textOf(m_search));
    const std::vector<std::string_view> words = tokensOf(wanted, kWhiteSpace);
    const size_t count = rowCount();
    if (m_words.size() != count && !words.empty()) {
        m_words.clear();
        for (size_t row = 0; row < count; ++row) {
            m_words.push_back(searchable(searchText(row)));
        }
    }
    m_rows.clear();
    for (size_t row = 0; row < count; ++row) {
        if (words.empty() || holdsAll(m_words[row], words)) {
            m_rows.push_back(row);
        }
    }
    m_list.setCount(static_cast<int>(m_rows.size()));
    std::string name = std::string(m_look.name) + ": " + std::to_string(m_rows.size());
    if (m_rows.size() != count) {
        name += " of " + std::to_string(count);
    } else if (count == 0 && *m_look.empty) {
        name = std::string(m_look.name) + ": " + m_look.empty;
    }
    setText(m_name, name);
    if (m_copyAll) {
        enable(m_copyAll, !m_rows.empty());
    }
    if (before && std::ranges::binary_search(m_rows, *before)) {
        selectRow(*before);
    } else {
        m_list.select(m_rows.empty() ? -1 : 0);
        showSelection();
    }
}

std::optional<size_t> SearchPage::selected() const {
    const int row = m_list.selected();
    return row >= 0 && static_cast<size_t>(row) < m_rows.size()
               ? std::optional(m_rows[static_cast<size_t>(row)])
               : std::nullopt;
}

void SearchPage::selectRow(size_t row) {
    if (!std::ranges::binary_search(m_rows, row)) {
        SetWindowTextA(m_search, "");  // which shows all rows
    }
    const auto found = std::ranges::lower_bound(m_rows, row);
    m_list.select(found == m_rows.end() ? -1 : static_cast<int>(found - m_rows.begin()));
    showSelection();
}

void SearchPage::showDetails(std::optional<size_t> row) {
    if (m_details) {
        setText(m_details, row ? details(*row) : "");
    }
}

void SearchPage::mainAction() {
    if (const auto row = selected()) {
        opened(*row);
    }
}

void SearchPage::command(int id, int code) {
    if (id == m_look.firstId + kSearch && code == EN_CHANGE) {
        filter(selected());
    } else if (id == m_look.firstId + kCopyAll && code == BN_CLICKED) {
        std::string text;
        for (const size_t row : m_rows) {
            text += copied(row);
        }
        copy(text);
    }
}

void SearchPage::copy(const std::string& text) {
    m_frame.setStatus(copyToClipboard(window(), text) ? "Copied" : kNotCopied);
}

bool SearchPage::givenUp() {
    return clearSearch(m_search);
}

bool SearchPage::takesKey(const MSG& message) {
    if (GetKeyState(VK_CONTROL) >= 0 || GetKeyState(VK_MENU) < 0) {
        return false;
    }
    if (message.wParam == 'F') {
        SendMessageA(window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(m_search), TRUE);
        return true;
    }
    const auto row = selected();
    if (message.wParam == 'C' && message.hwnd == m_list.window() && row) {
        copy(copied(*row));
        return true;
    }
    return false;
}

LRESULT SearchPage::notified(NMHDR& header) {
    return static_cast<int>(header.idFrom) == m_look.firstId + kList ? answerList(m_list, header) : 0;
}

}  // namespace zoka
