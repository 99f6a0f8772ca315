// zoka level: the entities of a level of the stand-in editor.
#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "controls/EntryModel.h"
#include "controls/EntryRules.h"
#include "customize/BehaviorPanel.h"
#include "tools/cli/ActionRows.h"
#include "tools/cli/Command.h"
#include "tools/cli/Json.h"
#include "tools/cli/SuitePath.h"
#include "tools/editor/LevelEdit.h"
#include "tools/editor/LevelMap.h"
#include "util/LineDiff.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka::cli {
namespace {

using Json = nlohmann::ordered_json;

struct LevelOptions {
    std::string file, entity;  // of `diff` the other level
    std::vector<std::string> words;
    bool json = false, dryRun = false, force = false;
};

// What is said of an entity's values: the rows, and the character set of their texts.
struct EntityValues {
    std::vector<CustomEntry> rows;
    TextSet set = TextSet::System;
};

// A level with the rows of its entities' actions.
class OpenLevelFile {
public:
    explicit OpenLevelFile(const std::string& file) : m_path(suitePath(file)) {
        auto text = readInput(m_path);
        if (!text) {
            return;
        }
        auto map = readLevelMap(*text);
        if (!map) {
            complain(file + ": " + map.why());
            m_status = ExitStatus::Findings;
            return;
        }
        m_text = std::move(*text);
        m_map = std::move(*map);
        m_status = ExitStatus::Done;
    }

    ExitStatus status() const { return m_status; }
    const std::string& path() const { return m_path; }
    const std::string& text() const { return m_text; }
    const LevelMap& map() const { return m_map; }
    // Null after a complaint, where there is none of that name or more than one.
    const LevelEntity* find(const std::string& name) const {
        const LevelEntity* found = nullptr;
        for (const LevelEntity& entity : m_map.entities) {
            if (entity.name == name && found) {
                complain("the level has several entities \"" + name + '"');
                return nullptr;
            }
            if (entity.name == name) {
                found = &entity;
            }
        }
        if (!found) {
            complain("the level has no entity \"" + name + '"');
        }
        return found;
    }
    // What the entity's action declares, and its other values that are not 0.
    EntityValues valuesOf(const LevelEntity& entity) const {
        BehaviorPanel panel;
        const std::optional<std::string>& script = scriptOf(entity);
        if (const auto block = script ? findActionBlock(*script, entity.action) : std::nullopt) {
            panel.blockStart = static_cast<std::int32_t>(block->start);
            panel.blockLength = static_cast<std::int32_t>(block->length);
            readBehaviorMarkup(*script, panel);
        }
        std::vector<CustomEntry>& rows = panel.rows;
        std::erase_if(rows, [](const CustomEntry& row) { return !isEntityValue(row); });
        const auto addUndeclared = [&](int kind, int id, bool isSet) {
            const auto same = [&](const CustomEntry& row) { return row.id == id; };
            if (isSet && std::none_of(rows.begin(), rows.end(), same)) {
                CustomEntry& row = rows.emplace_back();
                row.kind = kind;
                row.id = id;
            }
        };
        for (int n = 1; n <= kEntitySkills; ++n) {
            addUndeclared(kSkill, kSkillIds + n, entity.skills[static_cast<size_t>(n - 1)] != 0);
        }
        for (int n = 1; n <= kEntityFlags; ++n) {
            addUndeclared(kFlag, kFlagIds + n, (entity.flags >> (n - 1) & 1U) != 0);
        }
        return {std::move(rows), panel.set};
    }

    // Why the entity's values have no labels; empty when they have, or when it has no action.
    std::string whyUnlabelled(const LevelEntity& entity) const {
        if (entity.script.empty()) {
            return {};
        }
        const std::optional<std::string>& script = scriptOf(entity);
        return !script                                   ? "the script can't be read"
               : findActionBlock(*script, entity.action) ? ""
                                                         : "the script has no such action";
    }

private:
    // Read once.
    const std::optional<std::string>& scriptOf(const LevelEntity& entity) const {
        const auto [found, isNew] = m_scripts.try_emplace(entity.script);
        if (isNew && !entity.script.empty()) {
            found->second = osFiles().readWhole(joinPath(folderOf(m_path), entity.script));
        }
        return found->second;
    }

    std::string m_path, m_text;
    LevelMap m_map;
    mutable std::map<std::string, std::optional<std::string>> m_scripts;
    ExitStatus m_status = ExitStatus::Failed;
};

float valueOf(const LevelEntity& entity, const CustomEntry& row) {
    if (const int skill = skillNumber(row)) {
        return entity.skills[static_cast<size_t>(skill - 1)];
    }
    return entity.flags >> (flagNumber(row) - 1) & 1U ? 1.0F : 0.0F;
}

std::string valueText(const LevelEntity& entity, const CustomEntry& row) {
    return skillText(valueOf(entity, row));
}

ExitStatus listLevel(const LevelOptions& options) {
    const OpenLevelFile level(options.file);
    if (level.status() != ExitStatus::Done) {
        return level.status();
    }
    ExitStatus status = ExitStatus::Done;
    for (const std::string& name : options.words) {
        const auto named = [&](const LevelEntity& entity) { return entity.name == name; };
        if (std::none_of(level.map().entities.begin(), level.map().entities.end(), named)) {
            complain("the level has no entity \"" + name + '"');
            status = ExitStatus::Usage;
        }
    }
    Json all = Json::array();
    for (const LevelEntity& entity : level.map().entities) {
        if (!options.words.empty() &&
            std::find(options.words.begin(), options.words.end(), entity.name) == options.words.end()) {
            continue;
        }
        Json one{{"entity", jsonText(entity.name)},
                 {"script", jsonText(entity.script)},
                 {"action", jsonText(entity.action)},
                 {"values", Json::array()}};
        const std::string why = level.whyUnlabelled(entity);
        if (!why.empty()) {
            one["fault"] = why;
        }
        printShown(options.json ? ""
                                : entity.name + '\t' + entity.script + (entity.action.empty() ? "" : " ") +
                                      entity.action + inParentheses(why) + '\n');
        const EntityValues values = level.valuesOf(entity);
        for (const CustomEntry& row : values.rows) {
            Json value = jsonOf(row, values.set);
            value["value"] = valueText(entity, row);
            one["values"].push_back(std::move(value));
            if (!options.json) {
                printShown("    " + nameOf(row) + " = " + valueText(entity, row) +
                           inParentheses(row.line == 0 ? "not declared"
                                                       : allowedRange(behaviorFacts(row, values.set))) +
                           '\n');
            }
        }
        all.push_back(std::move(one));
    }
    if (options.json) {
        printJson(all);
    }
    return status;
}

struct NamedValue {
    CustomEntry row;
    TextSet set;
};

// The id of the value that "skill3" or "flag1" names; 0 for another text.
int idNamed(const std::string& name) {
    const int keyword = LookupCustomKeyword(name);
    return keyword >= kFlag1 && keyword < kSkill       ? kFlagIds + keyword - kFlag1 + 1
           : keyword >= kSkill1 && keyword < kBehavior ? kSkillIds + keyword - kSkill1 + 1
                                                       : 0;
}

// The values that go by that name, each once. A number is never a label: what it names must not depend on how the
// script calls another value.
std::vector<CustomEntry> rowsNamed(const EntityValues& values, const std::string& name) {
    const int id = idNamed(name);
    const std::string label = foldedText(name, textSetOf(name));
    std::vector<CustomEntry> found;
    for (const CustomEntry& row : values.rows) {
        const bool isNamed = id ? row.id == id : foldedText(row.label, values.set) == label;
        if (isNamed && std::ranges::find(found, row.id, &CustomEntry::id) == found.end()) {
            found.push_back(row);
        }
    }
    if (id && found.empty()) {  // a value that no action declares
        CustomEntry& row = found.emplace_back();
        row.kind = id > kFlagIds && id <= kFlagIds + kEntityFlags ? kFlag : kSkill;
        row.id = id;
    }
    return found;
}

// The value of that name; nothing after a complaint.
std::optional<CustomEntry> rowNamed(const OpenLevelFile& level, const LevelEntity& entity,
                                    const EntityValues& values, const std::string& name) {
    std::vector<CustomEntry> found = rowsNamed(values, name);
    if (found.size() > 1) {
        complain("several values are called \"" + name + "\"; name it by its number, as in " +
                 fieldName(found.front()));
        return std::nullopt;
    }
    if (found.empty()) {
        const std::string why = level.whyUnlabelled(entity);
        complain("the entity has no value called \"" + name + '"' + (why.empty() ? "" : "; " + why));
        return std::nullopt;
    }
    for (const CustomEntry& row : values.rows) {
        if (row.id != found.front().id && equalNoCase(row.label, name)) {
            complain("warning: " + name + " is taken as the number; the value labelled so is " +
                     fieldName(row));
        }
    }
    return std::move(found.front());
}

ExitStatus getValues(const LevelOptions& options, const OpenLevelFile& level, const LevelEntity& entity) {
    const EntityValues values = level.valuesOf(entity);
    std::vector<std::string> texts;
    for (const std::string& name : options.words) {
        const auto row = rowNamed(level, entity, values, name);
        if (!row) {
            return ExitStatus::Usage;
        }
        texts.push_back(valueText(entity, *row));
    }
    if (options.json) {
        printJson(jsonTexts(texts));
    } else {
        for (const std::string& value : texts) {
            printShown(value + '\n');
        }
    }
    return ExitStatus::Done;
}

ExitStatus setLevel(const LevelOptions& options);

// The choice that is that number, or the text as it was given.
std::string choiceOf(const EntryFacts& facts, float number, const std::string& given) {
    const auto found = std::ranges::find_if(
        facts.options, [&](const std::string& option) { return skillOfText(option) == number; });
    return found == facts.options.end() ? given : *found;
}

Json changeOf(const std::string& entity, const std::string& what, const std::string& from,
              const std::string& to) {
    return {{"entity", jsonText(entity)},
            {"value", jsonText(what)},
            {"before", jsonText(from)},
            {"after", jsonText(to)}};
}

// Where the name in "name=value" ends. A label may hold the sign, too: the longest one that exists counts.
size_t nameEnd(const EntityValues& values, const std::string& word) {
    for (size_t end = word.rfind('='); end != word.npos && end > 0; end = word.rfind('=', end - 1)) {
        if (!rowsNamed(values, word.substr(0, end)).empty()) {
            return end;
        }
    }
    return word.find('=');
}

ExitStatus setValues(const LevelOptions& options, const OpenLevelFile& level, const LevelEntity& entity) {
    struct Change {
        CustomEntry row;
        float before, after;
    };
    const EntityValues values = level.valuesOf(entity);
    std::vector<Change> changes;
    for (const std::string& word : options.words) {
        const size_t equals = nameEnd(values, word);
        if (equals == word.npos || equals == 0) {
            complain('"' + word + "\" is not of the form name=value");
            return ExitStatus::Usage;
        }
        const std::string name = word.substr(0, equals);
        if (rowsNamed(values, name).empty() && !rowsNamed(values, word).empty()) {
            complain("the value is missing after the label \"" + word + "\"");
            return ExitStatus::Usage;
        }
        const auto row = rowNamed(level, entity, values, name);
        if (!row) {
            return ExitStatus::Usage;
        }
        EntryFacts facts = behaviorFacts(*row, values.set);
        facts.value = valueText(entity, *row);
        const std::string given = word.substr(equals + 1);
        const auto number = skillOfText(given);
        const std::string value = number ? choiceOf(facts, *number, given) : given;
        const EntryModel model(facts);
        std::string why = model.refusalOf(value);
        if (why.empty() && !options.force) {
            why = notOffered(model, value);
        }
        if (!number && why.empty()) {
            why = skillRefusal(value);
        }
        if (!why.empty()) {
            complain(nameOf(*row) + ": " + why + " Nothing was changed.");
            return ExitStatus::Findings;
        }
        // One that is named again has its last value.
        std::erase_if(changes, [&](const Change& earlier) { return earlier.row.id == row->id; });
        changes.push_back({*row, valueOf(entity, *row), number.value_or(0)});
    }
    // A value that is there already keeps its line as it is written.
    std::erase_if(changes, [](const Change& change) { return change.before == change.after; });
    std::string text = level.text();
    Json told = Json::array();
    for (const auto& [row, before, after] : changes) {
        const int skill = skillNumber(row);
        auto edited =
            withLevelValue(text, {entity.name, skill > 0, skill > 0 ? skill : flagNumber(row), after});
        if (!edited) {
            complain("the entity's lines were not found");
            return ExitStatus::Failed;
        }
        text = std::move(*edited);
        told.push_back(changeOf(entity.name, nameOf(row), skillText(before), skillText(after)));
    }
    if (options.dryRun) {
        if (!options.json) {
            printPatch(unifiedDifference(level.text(), text, options.file, options.file));
        }
    } else {
        bool isElsewhere = false;
        const ExitStatus status = rewriteFile(level.path(), level.text(), text, [&] {
            isElsewhere = true;
            return setLevel(options);
        });
        if (status != ExitStatus::Done || isElsewhere) {
            return status;
        }
    }
    if (options.json) {
        printJson(told);
    }
    return ExitStatus::Done;
}

// Does `deed` with the level and the entity that the options name.
template <class Deed>
ExitStatus onEntity(const LevelOptions& options, Deed deed) {
    const OpenLevelFile level(options.file);
    if (level.status() != ExitStatus::Done) {
        return level.status();
    }
    const LevelEntity* const entity = level.find(options.entity);
    if (!entity) {
        return ExitStatus::Usage;
    }
    return deed(level, *entity);
}

ExitStatus getLevel(const LevelOptions& options) {
    return onEntity(options,
                    [&](const auto& level, const auto& entity) { return getValues(options, level, entity); });
}

ExitStatus setLevel(const LevelOptions& options) {
    return onEntity(options,
                    [&](const auto& level, const auto& entity) { return setValues(options, level, entity); });
}

ExitStatus diffLevels(const LevelOptions& options) {
    const OpenLevelFile before(options.file), after(options.entity);
    const ExitStatus status = worse(before.status(), after.status());
    if (status != ExitStatus::Done) {
        return status;
    }
    Json all = Json::array();
    bool differs = false;
    const auto tell = [&](const std::string& entity, const std::string& what, const std::string& from,
                          const std::string& to) {
        differs = true;
        if (options.json) {
            all.push_back(changeOf(entity, what, from, to));
        } else {
            printShown(entity + '\t' + what + ": " + from + " -> " + to + '\n');
        }
    };
    std::map<std::string, const LevelEntity*> second;
    for (const LevelEntity& entity : after.map().entities) {
        second.emplace(entity.name, &entity);
    }
    for (const LevelEntity& one : before.map().entities) {
        const auto found = second.find(one.name);
        if (found == second.end()) {
            tell(one.name, "entity", "there", "gone");
            continue;
        }
        const LevelEntity& other = *found->second;
        if (one.script != other.script || one.action != other.action) {
            tell(one.name, "action", one.script + ' ' + one.action, other.script + ' ' + other.action);
        }
        std::vector<CustomEntry> rows = before.valuesOf(one).rows;
        for (CustomEntry& row : after.valuesOf(other).rows) {
            const auto same = [&](const CustomEntry& known) { return known.id == row.id; };
            if (std::none_of(rows.begin(), rows.end(), same)) {
                rows.push_back(std::move(row));
            }
        }
        for (const CustomEntry& row : rows) {
            if (valueText(one, row) != valueText(other, row)) {
                tell(one.name, nameOf(row), valueText(one, row), valueText(other, row));
            }
        }
        second.erase(found);
    }
    for (const auto& [name, entity] : second) {
        tell(name, "entity", "not there", "added");
    }
    if (options.json) {
        printJson(all);
    }
    return differs ? ExitStatus::Findings : ExitStatus::Done;
}

}  // namespace

void addLevelCommands(const Command& app, Work& chosen) {
    const Command group =
        app.add("level", "The entities of a level of the stand-in editor", "zoka level list main.zlm");
    const auto level = [](const Command& command, LevelOptions& options) {
        command.option("LEVEL", options.file, "The level (.zlm)").required();
    };
    const auto entity = [](const Command& command, LevelOptions& options) {
        command.option("ENTITY", options.entity, "The entity").required();
    };
    addCommand<LevelOptions>(
        group,
        {"list", "Print the entities with their skills and flags", "zoka level list main.zlm guard_north"},
        chosen, listLevel, level,
        [](const Command& command, LevelOptions& options) {
            command.option("ENTITY", options.words, "These entities alone");
        },
        kJson);
    addCommand<LevelOptions>(
        group, {"get", "Print values of an entity", "zoka level get main.zlm guard_north Speed"}, chosen,
        getLevel, level, entity,
        [](const Command& command, LevelOptions& options) {
            command.option("NAME", options.words, "Labels, or names like skill3 and flag1").required();
        },
        kJson);
    addCommand<LevelOptions>(
        group, {"set", "Change values of an entity", "zoka level set main.zlm guard_north Speed=4 flag1=0"},
        chosen, setLevel, level, entity,
        [](const Command& command, LevelOptions& options) {
            command.option("NAME=VALUE", options.words, "Values by label, or by names like skill3 and flag1")
                .required();
        },
        kDryRun, kForce, kJson);
    addCommand<LevelOptions>(
        group,
        {"diff", "Print the values that differ between two levels", "zoka level diff main.zlm backup.zlm"},
        chosen, diffLevels, level,
        [](const Command& command, LevelOptions& options) {
            command.option("OTHER", options.entity, "The other level").required();
        },
        kJson);
}

}  // namespace zoka::cli
