// What the panel of Entity Behavior says about its rows, and their values as copied and pasted lines.
#include <algorithm>
#include <utility>

#include "controls/EntryRules.h"
#include "customize/BehaviorSession.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

std::string nameOfField(int kind, int number) {
    return (kind == kSkill ? "skill" : "flag") + std::to_string(number);
}

std::string utf8(std::string_view systemText) {
    return utf8Text(systemText, TextSet::System);
}

}  // namespace

std::string BehaviorSession::subject() const {
    std::string all;
    for (const std::string& entity : m_entities) {
        all += entity + '\n';
    }
    return all;
}

std::string BehaviorSession::nameOf(size_t i) const {
    const std::string name = lineName(i).text();
    return name.empty() ? utf8Text(row(i).facts().label, row(i).facts().set) : name;
}

std::string BehaviorSession::status() const {
    const std::string whose = whoseRows();
    return m_givenUp.empty() ? whose : whose + (whose.ends_with('.') ? " " : ". ") + m_givenUp;
}

std::string BehaviorSession::whoseRows() const {
    if (!m_access) {
        return "The editor tells nothing of its entities.";
    }
    if (m_entities.empty()) {
        return "No entity is selected.";
    }
    if (!m_gone.empty()) {
        return m_gone + " is gone from the level, or the editor gives nothing of it.";
    }
    if (m_entities.size() == 1) {
        return m_entities.front();
    }
    constexpr size_t kNamed = 20;
    std::string text = std::to_string(m_entities.size()) + " entities";
    if (!m_givenUp.empty()) {
        return text;  // there is more to be read in the line
    }
    text += ": ";
    for (size_t i = 0; i < m_entities.size() && i < kNamed; ++i) {
        text += (i > 0 ? ", " : "") + m_entities[i];
    }
    return text + (m_entities.size() > kNamed ? ", ..." : "");
}

std::string BehaviorSession::emptyText() const {
    if (size() > 0) {
        return RowEditing::emptyText();
    }
    if (m_entities.empty()) {
        return canFollow() ? "Select an entity in the editor." : "No entity is selected.";
    }
    return m_actions.panels().size() > 1 ? "The actions of these entities have no value in common."
                                         : "The script of the entity's action can't be read, or has changed.";
}

// In the row's own character set, as all that its tooltip says.
std::string BehaviorSession::details(size_t i) const {
    const Source& source = m_sources[i];
    if (source.component) {
        return components().details(*source.component);
    }
    if (source.line == 0) {
        return source.number > 0 ? nameOfField(source.kind, source.number) : "";
    }
    const std::string place =
        *convertText(fileNameOf(m_actions.panels().front().scriptName), TextSet::System, row(i).facts().set) +
        ", line " + std::to_string(source.line);
    return source.number > 0 ? nameOfField(source.kind, source.number) + "; " + place : place;
}

std::string BehaviorSession::helpText(size_t i) const {
    const std::string help = RowEditing::helpText(i);
    const std::string sayer = m_sources[i].component ? components().whoSays(*m_sources[i].component) : "";
    return sayer.empty() ? help : "Value from " + sayer + ".\r\n" + help;
}

std::optional<std::string> BehaviorSession::defaultOf(size_t i) const {
    return m_sources[i].component ? components().defaultOf(*m_sources[i].component)
                                  : RowEditing::defaultOf(i);
}

std::string BehaviorSession::picturePath(const std::string& nameInScript) const {
    const std::vector<BehaviorPanel>& panels = m_actions.panels();
    const TextSet set = panels.empty() ? TextSet::System : panels.front().set;
    const std::string name = convertText(nameInScript, set, TextSet::System).value().value_or(nameInScript);
    if (!panels.empty()) {
        const std::string own = joinPath(folderOf(panels.front().scriptName), name);
        if (osFiles().exists(own)) {
            return own;
        }
    }
    return m_host.TemplatePath(name);
}

std::vector<std::string> BehaviorSession::findings() const {
    std::vector<std::string> lines;
    for (const BehaviorPanel& panel : m_actions.panels()) {
        for (const MarkupFinding& one : panel.findings.kept()) {
            lines.push_back(utf8(panel.scriptName) + ':' + std::to_string(one.line) + ": " +
                            utf8Text(one.what, panel.set));
        }
    }
    for (size_t i = 0; i < size(); ++i) {
        const EntryFacts& facts = row(i).facts();
        if (!facts.limited || facts.minimum > facts.maximum) {
            continue;
        }
        for (size_t n = 0; n < m_sources[i].values.size(); ++n) {
            const double value = static_cast<double>(m_sources[i].values[n]);
            // Compared as they are shown: 0.1 is no float.
            const bool out = value < facts.minimum || value > facts.maximum;
            const std::string text = skillText(m_sources[i].values[n]);
            const double shown = numberOf(text).value_or(value);
            if (out && (shown < facts.minimum || shown > facts.maximum)) {
                lines.push_back(utf8(m_entities[n]) + ": " + utf8Text(facts.label, facts.set) + " is " +
                                text + "; " + allowedRange(facts));
            }
        }
    }
    if (m_project) {
        const std::vector<std::string> own = components().findings();
        lines.insert(lines.end(), own.begin(), own.end());
    }
    return lines;
}

std::string BehaviorSession::findingsText() const {
    std::string text;
    for (const std::string& line : findings()) {
        text += line + "\r\n";
    }
    return text;
}

LineName BehaviorSession::lineName(size_t i) const {
    const Source& source = m_sources[i];
    if (source.component) {
        return {"", components().nameOf(*source.component)};
    }
    return source.number == 0 ? LineName()
                              : LineName{nameOfField(source.kind, source.number),
                                         utf8Text(row(i).facts().label, row(i).facts().set)};
}

// A value of several lines would be taken for several values.
std::string BehaviorSession::copyText(size_t first, size_t last) const {
    std::string text;
    for (size_t i = first; i < last && i < size(); ++i) {
        const std::string name = lineName(i).text();
        const bool isOneLine = row(i).value().find_first_of("\r\n") == std::string::npos;
        if (!name.empty() && isOneLine && !row(i).isDifferent()) {
            text += name + " = " + utf8Text(row(i).value(), row(i).facts().set) + "\r\n";
        }
    }
    return text;
}

// As the row takes it: of a list the choice that is the same number. Of components the project says what they take.
Result<std::string> BehaviorSession::pastedValue(size_t i, std::string_view text) const {
    const EntryFacts& facts = row(i).facts();
    Result<std::string> value = convertText(text, TextSet::Utf8, facts.set);
    const auto number = value ? skillOfText(*value) : std::nullopt;
    if (m_sources[i].number == 0 || facts.options.empty() || !number) {
        return value;
    }
    value = textOf(i, *number);
    if (!row(i).isDifferent() && *value == row(i).value()) {
        return value;
    }
    const std::string refusal = choiceRefusal(facts, *value);
    return refusal.empty() ? value : Refusal{utf8Text(refusal, facts.set)};
}

PasteResult BehaviorSession::paste(const std::string& text) {
    PasteResult result;
    std::vector<LineName> names(size());
    for (size_t i = 0; i < size(); ++i) {
        names[i] = lineName(i);
    }
    const BehaviorLines rows(std::move(names));
    std::vector<RowValue> values;
    std::vector<std::string_view> lines;  // of the values
    for (const std::string_view line : filledLines(text)) {
        const auto place = rows.placeOf(line);
        auto value = place ? pastedValue(place->row, place->value) : Refusal{place.why()};
        if (value) {
            values.push_back({place->row, std::move(*value)});
            lines.push_back(line);
        } else {
            result.refuse(line, value.why());
        }
    }
    std::vector<std::string> refusals;
    result.taken = setValues(values, &refusals);
    for (size_t i = 0; i < lines.size(); ++i) {
        if (!refusals[i].empty()) {
            result.refuse(lines[i], refusals[i]);
        }
    }
    return result;
}

}  // namespace zoka
