// What the panel of Entity Behavior says about its rows, and the lines that are copied and pasted.
#include <algorithm>
#include <utility>

#include "controls/EntryRules.h"
#include "customize/BehaviorSession.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

std::string nameOfField(int kind, int number) {
    return (kind == kSkill ? "skill" : "flag") + std::to_string(number);
}

// "skill3" or "flag1" in front of a label.
bool isFieldName(std::string_view word) {
    const int keyword = LookupCustomKeyword(word);
    return keyword > kFlag && keyword < kBehavior && keyword != kSkill;
}

struct PastedLine {
    std::string_view field;  // may be empty
    std::string_view label;
    std::string_view value;
};

PastedLine pastedLine(std::string_view line, size_t equals) {
    PastedLine parts{{}, trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1))};
    const std::string_view word = parts.label.substr(0, parts.label.find_first_of(" \t"));
    if (isFieldName(word)) {
        parts.field = word;
        parts.label = trimmed(parts.label.substr(word.size()));
    }
    return parts;
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
    const std::string name = copyName(i);
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

std::string BehaviorSession::copyName(size_t i) const {
    const Source& source = m_sources[i];
    const std::string name = source.component ? components().nameOf(*source.component)
                             : source.number > 0
                                 ? nameOfField(source.kind, source.number) + ' ' + row(i).facts().label
                                 : "";
    return utf8Text(name, row(i).facts().set);
}

// A value of several lines would be taken for several values.
std::string BehaviorSession::copyText(size_t first, size_t last) const {
    std::string text;
    for (size_t i = first; i < last && i < size(); ++i) {
        const std::string name = copyName(i);
        const bool isOneLine = row(i).value().find_first_of("\r\n") == std::string::npos;
        if (!name.empty() && isOneLine && !row(i).isDifferent()) {
            text += name + " = " + utf8Text(row(i).value(), row(i).facts().set) + "\r\n";
        }
    }
    return text;
}

Result<size_t> BehaviorSession::rowFor(const std::string& field, const std::string& label) const {
    const auto isLabel = [folded = foldedText(label, TextSet::Utf8)](const std::string& one, TextSet set) {
        return foldedText(one, set) == folded;
    };
    std::optional<size_t> named;
    for (size_t i = 0; i < size(); ++i) {
        const Source& source = m_sources[i];
        if (source.component && field.empty() && isLabel(copyName(i), TextSet::Utf8)) {
            return i;
        }
        if (source.number == 0) {
            continue;
        }
        const bool sameField = equalNoCase(field, nameOfField(source.kind, source.number));
        const bool sameLabel = isLabel(row(i).facts().label, row(i).facts().set);
        if (sameField && (sameLabel || label.empty())) {
            return i;
        }
        if (!sameLabel) {
            continue;
        }
        if (named && (m_sources[*named].number != source.number || m_sources[*named].kind != source.kind)) {
            return Refusal{"several values are called that"};
        }
        named = named.value_or(i);
    }
    return named ? Result(*named) : Refusal{"there is no such value here"};
}

// Makes a number the choice of the row's list that is equal. Why there is none, in the row's character set; of components
// the project says what they take.
std::string BehaviorSession::takeChoice(size_t i, std::string& value) const {
    const auto number = skillOfText(value);
    if (m_sources[i].number == 0 || row(i).facts().options.empty() || !number) {
        return {};
    }
    value = textOf(i, *number);
    return !row(i).isDifferent() && value == row(i).value() ? "" : choiceRefusal(row(i).facts(), value);
}

PasteResult BehaviorSession::paste(const std::string& text) {
    PasteResult result;
    std::vector<RowValue> values;
    std::vector<std::string> lines;
    const auto refuse = [&](std::string_view line, const std::string& why) {
        result.refused.push_back(std::string(line) + "  (" + why + ')');
    };
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = trimmed(std::string_view(text).substr(at, end - at));
        at = end + 1;
        if (line.empty()) {
            continue;
        }
        Result<size_t> place = Refusal{"it is not of the form \"name = value\""};
        for (size_t equals = line.find('='); equals != line.npos && !place;
             equals = line.find('=', equals + 1)) {
            const PastedLine parts = pastedLine(line, equals);
            place = rowFor(std::string(parts.field), std::string(parts.label));
            if (!place) {
                continue;
            }
            auto value = convertText(parts.value, TextSet::Utf8, row(*place).facts().set);
            if (!value) {
                place = Refusal{value.why()};
                break;
            }
            if (std::string why = takeChoice(*place, *value); !why.empty()) {
                place = Refusal{utf8Text(why, row(*place).facts().set)};
                break;
            }
            values.push_back({*place, std::move(*value)});
        }
        if (place) {
            lines.emplace_back(line);
        } else {
            refuse(line, place.why());
        }
    }
    std::vector<std::string> refusals;
    result.taken = setValues(values, &refusals);
    for (size_t i = 0; i < lines.size(); ++i) {
        if (!refusals[i].empty()) {
            refuse(lines[i], refusals[i]);
        }
    }
    return result;
}

}  // namespace zoka
