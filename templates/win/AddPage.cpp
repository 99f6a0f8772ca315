#include "templates/win/AddPage.h"

#include <algorithm>

namespace zoka {

namespace {

enum { kClass = 1101, kSearch, kList, kTitles, kAdd, kPlan, kDetails };
enum : UINT_PTR { kFillTimer = 1, kPlanTimer };
constexpr UINT kFillEvery = 10;      // milliseconds
constexpr size_t kFillAtOnce = 500;  // titles
constexpr UINT kPlanAfter = 60;      // so that moving through the list doesn't read files at each row

enum Column { kTitleColumn, kClassColumn, kVersionColumn, kDateColumn, kEngineColumn, kIncludedColumn };
constexpr ListColumn kColumns[] = {{"Script", 80, true}, {"Class", 54, true}, {"Version", 37},
                                   {"Date", 36},         {"Engine", 40},      {"In project", 44}};
// Dialog units.
constexpr int kClassWidth = 96;
constexpr int kPlanHeight = 30;

}  // namespace

void AddPage::createControls() {
    const HFONT font = fonts().text();
    m_classLabel = label("&Class:");
    m_class = makeDropList(window(), kClass, fonts());
    m_searchLabel = label("S&earch:");
    m_search = makeField(window(), kSearch, fonts());
    m_list.takeKeysOf(m_search);
    m_found = label("");
    m_list.create(window(), kList, fonts(), font, kColumns,
                  [this](int row, int column) { return cell(row, column); });
    m_titleLabel = label("Sc&ript to add:");
    m_titles = makeDropList(window(), kTitles, fonts());
    m_add = button("&Add", kAdd, true);
    m_planLabel = label("&What adding it will do:");
    m_plan = makeReadOnlyText(window(), kPlan, font);
    m_detailsLabel = label("&Details:");
    m_details = makeReadOnlyText(window(), kDetails, font);

    m_classes = session().classes();
    for (const std::string& name : m_classes) {
        SendMessageW(m_class, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wideReport(name).c_str()));
    }
    SendMessageA(m_class, CB_SETCURSEL, 0, 0);
    // The titles follow while the user looks at the list already.
    SendMessageA(m_titles, CB_INITSTORAGE, session().catalogue().scripts().size(), 0);
    SetTimer(window(), kFillTimer, kFillEvery, nullptr);
    filter();
}

void AddPage::layout(Area page) {
    const int gapX = fonts().x(kGapUnits), gapY = fonts().y(kGapUnits), field = fonts().y(kFieldHeightUnits);
    const int labelHeight = fonts().y(kLabelHeightUnits), plan = fonts().y(kPlanHeight);
    Area filter = page.takeTop(field, gapY);
    placeLabel(m_classLabel, filter, fonts());
    placeDropList(m_class, filter.takeLeft(fonts().x(kClassWidth), 2 * gapX));
    placeLabel(m_searchLabel, filter, fonts());
    place(m_search, filter);

    // The list and the details share what the fixed rows leave.
    const int shared = page.height - 3 * labelHeight - field - plan - 3 * gapY;
    placeLabelAbove(m_found, page, fonts());
    m_list.place(page.takeTop(shared * 3 / 5, gapY));
    Area title = page.takeTop(field, gapY);
    place(m_add, title.takeRight(fonts().x(kButtonWidthUnits), gapX));
    placeLabel(m_titleLabel, title, fonts());
    placeDropList(m_titles, title);
    placeLabelAbove(m_planLabel, page, fonts());
    place(m_plan, page.takeTop(plan, gapY));
    placeLabelAbove(m_detailsLabel, page, fonts());
    place(m_details, page);
}

std::string AddPage::cell(int row, int column) {
    if (!m_rows || row < 0 || static_cast<size_t>(row) >= m_rows->size()) {
        return {};
    }
    const std::uint32_t record = (*m_rows)[static_cast<size_t>(row)];
    const CTemplateData& catalogue = session().catalogue();
    const CTemplateData::Row& shown = catalogue.rows()[record];
    switch (column) {
        case kTitleColumn:
            return std::string(shown.displayName());
        case kClassColumn:
            return std::string(shown.className);
        case kVersionColumn:
            return std::string(catalogue.version(record));
        case kDateColumn:
            return std::string(catalogue.date(record));
        case kEngineColumn:
            return catalogue.engineReqText(record);
        default:
            return session().isIncluded(record) ? "included" : "";
    }
}

void AddPage::filter() {
    const std::string query = textOf(m_search, CP_UTF8);
    const auto chosen = static_cast<size_t>(SendMessageA(m_class, CB_GETCURSEL, 0, 0));
    m_rows = &session().search(chosen < m_classes.size() ? m_classes[chosen] : m_classes.front(), query);
    m_list.setCount(static_cast<int>(m_rows->size()));
    const size_t all = session().catalogue().scripts().size();
    setText(m_found, "&Scripts: " + std::to_string(m_rows->size()) +
                         (m_rows->size() == all ? "" : " of " + std::to_string(all)));
    if (m_record && !std::ranges::binary_search(*m_rows, *m_record)) {
        m_record.reset();
    }
    // Whoever types is looking for one script: the first find is at hand for Enter.
    if (!m_record && !query.empty() && !m_rows->empty()) {
        m_record = m_rows->front();
    }
    selectRecord(m_record);
}

// Brings the list, the drop list and what stands below in step.
void AddPage::selectRecord(std::optional<std::uint32_t> record) {
    m_record = record;
    int row = -1;
    if (record) {
        if (const auto at = std::ranges::lower_bound(*m_rows, *record);
            at != m_rows->end() && *at == *record) {
            row = static_cast<int>(at - m_rows->begin());
        }
    }
    if (m_list.selected() != row) {
        m_list.select(row);
    }
    showSelection();
}

void AddPage::showSelection() {
    // A title that the drop list hasn't got yet is selected when it has come.
    const WPARAM title = m_record && *m_record < m_titlesFilled ? *m_record : static_cast<WPARAM>(-1);
    if (SendMessageA(m_titles, CB_GETCURSEL, 0, 0) != static_cast<LRESULT>(title)) {
        SendMessageA(m_titles, CB_SETCURSEL, title, 0);
    }
    if (m_record != m_planned) {
        // Nothing of another script stays in sight until this one's plan is made.
        setText(m_plan, "");
        m_planned.reset();
    }
    enable(m_add, m_record && session().canAdd(*m_record));
    std::string text;
    if (m_record) {
        const ScriptDetails details = session().details(*m_record);
        text = details.fileName;
        if (!details.description.empty()) {
            text += "\r\n" + details.description;
        }
        if (!details.actions.empty()) {
            text += "\r\n\r\nActions:\r\n" + details.actions;
        }
    }
    setReport(m_details, text);
    SetTimer(window(), kPlanTimer, kPlanAfter, nullptr);
}

void AddPage::showPlan() {
    if (!m_record) {
        setText(m_plan, "Choose a script to see what adding it will do.");
        return;
    }
    const AddPlan plan = session().plan(*m_record);
    m_planned = m_record;
    setReport(m_plan, plan.summary());
    // One that is included already may have needs that are missing.
    enable(m_add, !plan.isIncludedAlready());
}

void AddPage::fillTitles(size_t atMost) {
    const std::vector<CTemplateData::Row>& rows = session().catalogue().rows();
    const size_t end = std::min(rows.size(), m_titlesFilled + atMost);
    for (; m_titlesFilled < end; ++m_titlesFilled) {
        const std::wstring title = wideReport(std::string(rows[m_titlesFilled].displayName()));
        SendMessageW(m_titles, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(title.c_str()));
    }
    if (m_titlesFilled == rows.size()) {
        KillTimer(window(), kFillTimer);
    }
    if (m_record && *m_record < m_titlesFilled && SendMessageA(m_titles, CB_GETCURSEL, 0, 0) < 0) {
        SendMessageA(m_titles, CB_SETCURSEL, *m_record, 0);
    }
}

void AddPage::chooseTitle() {
    const LRESULT chosen = SendMessageA(m_titles, CB_GETCURSEL, 0, 0);
    if (chosen < 0) {
        return;
    }
    m_record = static_cast<std::uint32_t>(chosen);
    if (!std::ranges::binary_search(*m_rows, *m_record)) {
        m_settling = true;
        SendMessageA(m_class, CB_SETCURSEL, 0, 0);
        SetWindowTextA(m_search, "");
        m_settling = false;
        filter();
        return;
    }
    selectRecord(m_record);
}

void AddPage::refresh() {
    m_list.redraw();
    showPlan();
}

void AddPage::mainAction() {
    if (!m_record) {
        return;
    }
    session().add(m_record);
    m_frame.sessionChanged();
}

void AddPage::command(int id, int code) {
    if (m_settling) {
        return;
    }
    if ((id == kClass && code == CBN_SELCHANGE) || (id == kSearch && code == EN_CHANGE)) {
        filter();
    } else if (id == kTitles && code == CBN_DROPDOWN) {
        fillTitles(session().catalogue().scripts().size());
    } else if (id == kTitles && code == CBN_SELCHANGE) {
        chooseTitle();
    } else if (id == kAdd && code == BN_CLICKED) {
        mainAction();
    }
}

LRESULT AddPage::notified(NMHDR& header) {
    return header.idFrom == kList ? answerList(m_list, header) : 0;
}

void AddPage::settled() {
    const int row = m_list.selected();
    m_record.reset();
    if (row >= 0 && static_cast<size_t>(row) < m_rows->size()) {
        m_record = (*m_rows)[static_cast<size_t>(row)];
    }
    showSelection();
}

void AddPage::timer(UINT_PTR id) {
    if (id == kFillTimer) {
        fillTitles(kFillAtOnce);
    } else if (id == kPlanTimer) {
        KillTimer(window(), kPlanTimer);
        showPlan();
    }
}

}  // namespace zoka
