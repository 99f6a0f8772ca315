#include "J8ProjectManager/win/ProjectLists.h"

#include <string_view>

#include "J8ProjectManager/PropertyFacts.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {

namespace {

// Of the components' page.
enum : int { kAbout = 2310, kProperties = 2320 };
constexpr int kListWidth = 190;  // dialog units
constexpr int kAboutLines = 3;
constexpr UINT_PTR kFollowTimer = 21;
constexpr UINT kFollowAfter = 60;  // milliseconds

constexpr ListColumn kBehaviorColumns[] = {
    {"Behavior", 80, true}, {"Class", 60, true}, {"Group", 60, true}, {"Skills", 28}, {"File", 90, true}};
constexpr ListColumn kComponentColumns[] = {{"Component", 68, true}, {"Properties", 44}, {"File", 58, true}};
constexpr ListColumn kReportColumns[] = {{"Report", 300, true}};
constexpr ListColumn kProblemColumns[] = {
    {"Severity", 40}, {"Problem", 200, true}, {"File", 80, true}, {"Line", 28}};

const char* severityWord(int severity) {
    return severity == kReportError ? "Error" : severity == kReportWarning ? "Warning" : "Note";
}

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find_first_of("\r\n"));
}

// Lines of a text as a field of several lines wants them.
void addLines(std::string& text, const std::string& more) {
    (text += onOneLine(more, "\r\n")) += "\r\n";
}

// "  speed: float = 3.5 (min 0, max 10) - how fast it walks", and its enumeration below.
void addTyped(std::string& text, const std::string& name, const J8TypedValue& typed, const std::string& value,
              const std::vector<J8Enum>& enums) {
    text += "  " + shownText(name) + ": " + typeWord(typed.type) + " = " + shownText(value);
    if (const std::string limits = limitsText(typed); !limits.empty()) {
        text += " (" + shownText(limits) + ")";
    }
    if (!typed.doc.empty()) {
        text += " - " + shownText(firstLine(typed.doc));
    }
    text += "\r\n";
    for (const J8Enum& entry : enums) {
        text += "      " + shownText(entry.name) + " = " + shownText(entry.value) +
                (entry.doc.empty() ? "" : " - " + shownText(firstLine(entry.doc))) + "\r\n";
    }
}

// What is searched of a property or a skill. A line each, as all that is searched; UTF-8.
void addWords(std::string& text, const std::string& name, const J8TypedValue& typed, const std::string& value,
              const std::vector<J8Enum>& enums) {
    for (const std::string* word : {&name, &value, &typed.doc}) {
        text += *word;
        text += '\n';
    }
    for (const J8Constraint& limit : typed.constraints) {
        text += limit.type + ' ' + limit.value + '\n';
    }
    for (const J8Enum& entry : enums) {
        text += entry.name + '\n' + entry.value + '\n' + entry.doc + '\n';
    }
    text += typeWord(typed.type);
    text += '\n';
}

std::string sourceName(const CJ8ProjectManager& project, std::uint32_t source) {
    return source < project.sources().size() ? shownText(std::string(fileNameOf(project.sources()[source])))
                                             : "";
}

}  // namespace

BehaviorsPage::BehaviorsPage(ProjectFrame& frame)
    : SearchPage(frame,
                 {2201, "&Behaviors", kBehaviorColumns, "&Details:", "the project names no behaviors file"}) {
}

std::string BehaviorsPage::cell(size_t row, int column) const {
    const CJ8BehaviorData& behavior = model().m_apBehavior[row];
    switch (column) {
        case 0:
            return behavior.m_name.empty() ? "(without a name)" : shownText(behavior.m_name);
        case 1:
            return shownText(behavior.m_class);
        case 2:
            return shownText(behavior.m_group);
        case 3:
            return std::to_string(behavior.m_apSkillEdits.size());
        default:
            return sourceName(model(), behavior.m_source);
    }
}

std::string BehaviorsPage::searchText(size_t row) const {
    const CJ8BehaviorData& behavior = model().m_apBehavior[row];
    std::string text =
        behavior.m_name + '\n' + behavior.m_class + '\n' + behavior.m_group + '\n' + behavior.m_doc + '\n';
    if (behavior.m_source < model().sources().size()) {
        text += model().sources()[behavior.m_source] + '\n';
    }
    for (const J8Skill& skill : behavior.m_apSkillEdits) {
        text += std::to_string(skill.num) + ' ';
        addWords(text, skill.name, J8TypedValue::of(skill), skill.value, skill.enums);
    }
    for (const std::string& name : behavior.m_apCMPNames) {
        text += name + '\n';
    }
    for (const J8ComponentEdit& edit : behavior.m_apCMPEdits) {
        text += edit.name + '\n' + edit.value + '\n';
    }
    return shownText(text);
}

std::string BehaviorsPage::details(size_t row) const {
    const CJ8BehaviorData& behavior = model().m_apBehavior[row];
    std::string text =
        cell(row, 0) + "\r\n" + shownText(session().placeText(behavior.m_source, behavior.m_place)) + "\r\n";
    if (!behavior.m_doc.empty()) {
        addLines(text, "\n" + shownText(behavior.m_doc));
    }
    if (!behavior.m_apSkillEdits.empty()) {
        text += "\r\nSkills:\r\n";
    }
    for (const J8Skill& skill : behavior.m_apSkillEdits) {
        addTyped(text, std::to_string(skill.num) + " " + skill.name, J8TypedValue::of(skill), skill.value,
                 skill.enums);
    }
    if (!behavior.m_apCMPNames.empty()) {
        text += "\r\nComponents:\r\n";
    }
    for (const std::string& name : behavior.m_apCMPNames) {
        text += "  " + shownText(name) + (model().component(name) ? "" : " (in no components file)") + "\r\n";
        for (const J8ComponentEdit& edit : behavior.m_apCMPEdits) {
            if (edit.component == name) {
                text += "      " + shownText(edit.name) + " = " + shownText(edit.value) + "\r\n";
            }
        }
    }
    return text;
}

ComponentsPage::ComponentsPage(ProjectFrame& frame)
    : SearchPage(frame, {.firstId = 2301,
                         .name = "&Components",
                         .columns = kComponentColumns,
                         .empty = "the behaviors files name none",
                         .searchName = "&Find:"}),
      m_panel(frame.session(), projectTexts(), [&frame](bool undo) { frame.undoOrRedo(undo); }),
      m_view(m_panel, *this) {}

void ComponentsPage::createControls() {
    SearchPage::createControls();
    m_about = makeReadOnlyText(window(), kAbout, fonts().text());
    m_view.create(window(), fonts(), kProperties, false);
}

void ComponentsPage::layout(Area page) {
    placeList(page.takeLeft(std::min(fonts().x(kListWidth), page.width * 9 / 20), 2 * fonts().x(kGapUnits)));
    place(m_about, page.takeTop(kAboutLines * fonts().lineHeight() + fonts().px(8), fonts().y(kGapUnits)));
    m_view.place({page.x, page.y, page.width, page.height});
}

void ComponentsPage::refresh() {
    m_shown.reset();
    SearchPage::refresh();
}

// While a search is being typed, the properties follow once the typing pauses.
void ComponentsPage::showDetails(std::optional<size_t> row) {
    if (row && m_shown && GetFocus() == firstField()) {
        SetTimer(window(), kFollowTimer, kFollowAfter, nullptr);
    } else {
        showComponent(row);
    }
}

void ComponentsPage::timer(UINT_PTR id) {
    KillTimer(window(), id);
    showComponent(selected());
}

void ComponentsPage::showComponent(std::optional<size_t> row) {
    if (row && row == m_shown) {
        return;
    }
    m_shown = row;
    if (!row) {
        setText(m_about, "");
        return m_panel.showNothing();
    }
    const CJ8CMPData& component = model().m_apComponents[*row];
    std::string about;
    if (!component.m_doc.empty()) {
        addLines(about, shownText(component.m_doc));
    }
    setText(m_about,
            about + "Declared in " + shownText(session().placeText(component.m_source, component.m_place)));
    m_panel.showComponent(*row);
}

void ComponentsPage::command(int id, int code) {
    if (!m_view.command(id, code)) {
        SearchPage::command(id, code);
    }
}

// Enter in the rows' search is the rows' own.
void ComponentsPage::mainAction() {
    if (GetFocus() == list() || GetFocus() == firstField()) {
        m_view.focusSearch();
    } else {
        m_view.enter();
    }
}

bool ComponentsPage::takesKey(const MSG& message) {
    return (message.hwnd == list() || message.hwnd == firstField() || message.wParam != 'F') &&
           SearchPage::takesKey(message);
}

std::string ComponentsPage::cell(size_t row, int column) const {
    const CJ8CMPData& component = model().m_apComponents[row];
    switch (column) {
        case 0:
            return shownText(component.m_name);
        case 1:
            return std::to_string(component.m_properties.size());
        default:
            return sourceName(model(), component.m_source);
    }
}

std::string ComponentsPage::searchText(size_t row) const {
    const CJ8CMPData& component = model().m_apComponents[row];
    std::string text = component.m_name + '\n' + component.m_doc + '\n';
    if (component.m_source < model().sources().size()) {
        text += model().sources()[component.m_source] + '\n';
    }
    for (const J8Property& property : component.m_properties) {
        addWords(text, property.name, J8TypedValue::of(property), property.value, property.enums);
    }
    return shownText(text);
}

ReportPage::ReportPage(ProjectFrame& frame)
    : SearchPage(frame, {.firstId = 2401, .name = "&Report", .columns = kReportColumns, .copiesAll = true}) {}

void ReportPage::collect() {
    m_lines.clear();
    std::string_view rest = model().m_report;
    while (!rest.empty()) {
        const size_t end = rest.find('\n');
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end == rest.npos ? rest.size() : end + 1);
        while (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        m_lines.push_back(shownText(std::string(line)));
    }
}

ProblemsPage::ProblemsPage(ProjectFrame& frame)
    : SearchPage(frame,
                 {2501, "&Problems", kProblemColumns, "&What it says (Enter goes there):", "none", true}) {}

void ProblemsPage::collect() {
    m_problems = session().problems();
}

std::string ProblemsPage::cell(size_t row, int column) const {
    const ProjectProblem& problem = m_problems[row];
    switch (column) {
        case 0:
            return severityWord(problem.severity);
        case 1:
            return shownText(problem.text);
        case 2:
            return shownText(std::string(fileNameOf(problem.file)));
        default:
            return problem.line > 0 ? std::to_string(problem.line) : "";
    }
}

std::string ProblemsPage::copied(size_t row) const {
    std::string text;
    addLines(text, shownText(ProjectSession::problemsText({m_problems[row]})));
    return text.substr(0, text.size() - 2);  // one line end is the text's own
}

std::string ProblemsPage::details(size_t row) const {
    return copied(row);
}

void ProblemsPage::opened(size_t row) {
    m_frame.goTo(targetOf(model(), m_problems[row]));
}

}  // namespace zoka
