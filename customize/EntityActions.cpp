#include "customize/EntityActions.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "customize/EntriesText.h"
#include "util/OsFiles.h"

namespace zoka {
namespace {

std::optional<FileTime> timeOf(const std::string& script) {
    FileTime time;
    return !script.empty() && osFiles().readTime(script, &time) ? std::optional(time) : std::nullopt;
}

std::vector<std::string> choicesOf(const CustomEntry& row) {
    return behaviorFacts(row, TextSet::System).options;
}

// Whether the control of the row's action offers the number.
bool takes(const CustomEntry& row, float number) {
    const std::vector<std::string> choices = choicesOf(row);
    const double value = static_cast<double>(number);
    return !choices.empty() ? std::any_of(choices.begin(), choices.end(),
                                          [&](const std::string& one) { return skillOfText(one) == number; })
                            : !row.isLimited() || (value >= row.minimum && value <= row.maximum);
}

// A value must suit both: the narrower limits, the choices that both take. Where there is none, the minimum is above
// the maximum.
void narrow(CustomEntry& row, const CustomEntry& other) {
    const std::vector<std::string> choices = choicesOf(row), others = choicesOf(other);
    if (choices.empty() && others.empty()) {
        if (row.isLimited() && other.isLimited()) {
            row.minimum = std::max(row.minimum, other.minimum);
            row.maximum = std::min(row.maximum, other.maximum);
        } else if (other.isLimited()) {
            row.controlKind = other.controlKind;
            row.minimum = other.minimum;
            row.maximum = other.maximum;
            row.step = other.step;
        }
        return;
    }
    std::vector<std::string> both;
    for (const std::string& choice : choices.empty() ? others : choices) {
        const auto number = skillOfText(choice);
        if (number && takes(row, *number) && takes(other, *number)) {
            both.push_back(choice);
        }
    }
    row.controlKind = both.empty() ? kSpin : kDropList;
    row.minimum = 1;
    row.maximum = 0;
    row.options = std::move(both);
}

std::string captionOf(const BehaviorPanel& panel) {
    return utf8Text(panel.caption(), panel.set);
}

}  // namespace

bool isThere(EntityAccess& access, const std::string& entity) {
    return access.action(entity) || access.skill(entity, 1) || access.flag(entity, 1);
}

void EntityActions::load(EntityAccess* access, const std::vector<std::string>& entities,
                         const EntityComponents* components) {
    m_places.clear();
    m_panels.clear();
    m_scriptTimes.clear();
    // By the action's place, and by the behaviour where its names stand in for what the action doesn't declare.
    using Key = std::tuple<std::string, std::int32_t, std::int32_t, std::optional<std::string>>;
    std::set<Key> known;
    for (const std::string& entity : entities) {
        const auto& place = m_places.emplace_back(access ? access->action(entity) : std::nullopt);
        const ActionPlace at = place.value_or(ActionPlace{});
        const std::string behavior = components ? components->behaviorOf(entity) : "";
        if (known.contains({at.script, at.start, at.length, std::nullopt}) ||
            known.contains({at.script, at.start, at.length, behavior})) {
            continue;
        }
        BehaviorPanel& panel = m_panels.emplace_back();
        panel.scriptName = at.script;
        panel.blockStart = at.start;
        panel.blockLength = at.length;
        if (components) {
            for (const auto& [number, name] : components->skillNames(entity)) {
                if (number >= 1 && number <= kEntitySkills) {
                    panel.defaultSkillNames.push_back({static_cast<std::uint8_t>(number), name});
                }
            }
        }
        m_scriptTimes.push_back(timeOf(at.script));
        if (place) {
            LoadBehaviorPanel(panel);
        } else if (!access || isThere(*access, entity)) {
            addUndeclaredRows(panel);
        }
        const auto form = panel.declaredCount > 0 ? std::nullopt : std::optional(behavior);
        known.insert({at.script, at.start, at.length, form});
    }
}

bool EntityActions::haveMoved(EntityAccess& access, const std::vector<std::string>& entities) const {
    for (size_t i = 0; i < entities.size(); ++i) {
        // An entity that is gone keeps its rows, so that its values can still be read.
        const auto now = access.action(entities[i]);
        if (now != m_places[i] && (now || isThere(access, entities[i]))) {
            return true;
        }
    }
    return false;
}

bool EntityActions::haveChanged(EntityAccess& access, const std::vector<std::string>& entities) const {
    if (haveMoved(access, entities)) {
        return true;
    }
    for (size_t i = 0; i < m_panels.size(); ++i) {
        if (timeOf(m_panels[i].scriptName) != m_scriptTimes[i]) {
            return true;
        }
    }
    return false;
}

std::string EntityActions::title() const {
    const std::string title = m_panels.empty() ? "" : captionOf(m_panels.front());
    const bool isCommon = std::all_of(m_panels.begin(), m_panels.end(),
                                      [&](const BehaviorPanel& panel) { return captionOf(panel) == title; });
    return isCommon ? title : "";
}

std::vector<std::string> EntityActions::findings() const {
    std::vector<std::string> lines;
    for (const BehaviorPanel& panel : m_panels) {
        for (const MarkupFinding& one : panel.findings.kept()) {
            lines.push_back(findingText(utf8Text(panel.scriptName, TextSet::System),
                                        {one.line, utf8Text(one.what, panel.set)}));
        }
    }
    return lines;
}

std::vector<CustomEntry> EntityActions::sharedRows() const {
    if (m_panels.size() < 2) {
        return m_panels.empty() ? std::vector<CustomEntry>() : m_panels.front().rows;
    }
    const auto labelOf = [](const BehaviorPanel& panel, const CustomEntry& row) {
        return foldedText(row.label, panel.set);
    };
    // The first row of each number in the other actions.
    std::vector<std::map<int, const CustomEntry*>> byId(m_panels.size());
    for (size_t i = 1; i < m_panels.size(); ++i) {
        for (const CustomEntry& row : m_panels[i].rows) {
            byId[i].try_emplace(row.id, &row);
        }
    }
    std::vector<CustomEntry> shared;
    const CustomEntry* heading = nullptr;
    for (const CustomEntry& row : m_panels.front().rows) {
        if (row.kind == kSection) {
            heading = &row;
        }
        if (!isEntityValue(row)) {
            continue;
        }
        CustomEntry made = row;
        bool inAll = true;
        for (size_t i = 1; i < m_panels.size() && inAll; ++i) {
            const auto other = byId[i].find(row.id);
            inAll = other != byId[i].end() &&
                    labelOf(m_panels[i], *other->second) == labelOf(m_panels.front(), row);
            if (inAll) {
                narrow(made, *other->second);
            }
        }
        if (!inAll) {
            continue;
        }
        if (heading) {
            shared.push_back(*std::exchange(heading, nullptr));
        }
        shared.push_back(std::move(made));
    }
    return shared;
}

}  // namespace zoka
