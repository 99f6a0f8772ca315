#include "J8ProjectManager/win/OverviewPage.h"

namespace zoka {

namespace {

enum { kFacts = 2101, kRows = 2110 };
constexpr UINT kRebuild = WM_APP + 20;

// "22 Nov 2026" of a project's date, seconds since 1970; other texts as they are.
std::string dateShown(const std::string& date) {
    char* end = nullptr;
    const long long seconds = std::strtoll(date.c_str(), &end, 10);
    if (date.empty() || *end || seconds <= 0) {
        return date.empty() ? "none" : shownText(date);
    }
    const ULONGLONG ticks = (static_cast<ULONGLONG>(seconds) + 11644473600ULL) * 10000000ULL;
    const FILETIME time{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME day{};
    char text[80] = "";
    if (!FileTimeToSystemTime(&time, &day) ||
        GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &day, nullptr, text, sizeof text) == 0) {
        return shownText(date);
    }
    return text;
}

}  // namespace

OverviewPage::OverviewPage(ProjectFrame& frame)
    : ProjectPage(frame),
      m_panel(frame.session(), projectTexts(), [&frame](bool undo) { frame.undoOrRedo(undo); }),
      m_view(m_panel, *this) {}

void OverviewPage::createControls() {
    m_facts = makeControl(window(), "STATIC", "", SS_NOPREFIX | SS_LEFT, 0, kFacts, fonts().text());
    m_view.create(window(), fonts(), kRows);
    m_search = GetDlgItem(window(), kRows + 1);
}

void OverviewPage::layout(Area page) {
    place(m_facts, page.takeTop(3 * fonts().lineHeight(), fonts().y(kGapUnits)));
    m_view.place({page.x, page.y, page.width, page.height});
}

void OverviewPage::showFacts() {
    if (session().path().empty()) {
        return setText(m_facts, "");  // nothing is loaded yet
    }
    const CJ8ProjectManager& project = model();
    size_t entities = 0;
    for (const CJ8LevelData& level : project.m_apLevels) {
        entities += level.m_entities.size();
    }
    const auto count = [](size_t number, const char* one, const char* many) {
        return std::to_string(number) + " " + (number == 1 ? one : many);
    };
    std::string missing;
    for (int i = 0; i < kJ8Sections; ++i) {
        const CJ8File& file = project.m_sections[i];
        if (file.isNamed() && file.m_type == CJ8File::kNotValid) {
            missing += (missing.empty() ? "Missing: " : ", ") +
                       std::string(sectionTag(static_cast<J8Section>(i))) + " (" + shownText(file.m_path) +
                       ")";
        }
    }
    for (const CJ8File& file : project.m_apLostBehaviorFiles) {
        missing += (missing.empty() ? "Missing: " : ", ") + ("behaviors " + shownText(file.m_path));
    }
    setText(m_facts, session().path() + "\r\n" + "Version " +
                         (project.m_vers.empty() ? "none" : shownText(project.m_vers)) + ", saved " +
                         dateShown(project.m_date) + ". " +
                         count(project.m_apLevels.size(), "level", "levels") + " with " +
                         count(entities, "entity", "entities") + ", " +
                         count(project.m_apBehavior.size(), "behavior", "behaviors") + ", " +
                         count(project.m_apComponents.size(), "component", "components") + ".\r\n" +
                         (missing.empty() ? "All files of the project are there." : missing));
}

void OverviewPage::refresh() {
    m_refreshing = true;
    m_panel.showProject();
    m_refreshing = false;
    showFacts();
}

void OverviewPage::rowsChanged() {
    if (!m_refreshing) {
        showFacts();
        m_frame.edited();
        if (m_panel.takeOtherRows()) {
            PostMessageA(window(), kRebuild, 0, 0);
        }
    }
}

std::optional<LRESULT> OverviewPage::message(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kRebuild) {
        refresh();
        return 0;
    }
    return ProjectPage::message(message, wParam, lParam);
}

}  // namespace zoka
