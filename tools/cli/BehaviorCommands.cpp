// zoka behavior, zoka level: what actions declare for their entities, and the entities of a level.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "controls/EntryModel.h"
#include "controls/EntryRules.h"
#include "customize/BehaviorPanel.h"
#include "tools/cli/Cli.h"
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

struct BehaviorOptions {
    std::string file, entity;
    std::vector<std::string> words;
    bool json = false, dryRun = false;
};

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

bool isValue(const CustomEntry& row) {
    return skillNumber(row) > 0 || flagNumber(row) > 0;
}

// The rows of an action of a script at hand.
BehaviorPanel panelOf(const std::string& path, const std::string& script, const std::string& action) {
    BehaviorPanel panel;
    panel.scriptName = path;
    if (const auto block = findActionBlock(script, action)) {
        panel.blockStart = static_cast<std::int32_t>(block->start);
        panel.blockLength = static_cast<std::int32_t>(block->length);
        readBehaviorMarkup(script, panel);
    }
    return panel;
}

Json jsonOf(const CustomEntry& row) {
    Json one;
    one["line"] = row.line;
    one["kind"] = customKeywordName(row.kind);
    if (isValue(row)) {
        one["field"] = fieldName(row);
        one["default"] = jsonText(row.value);
    }
    one["label"] = jsonText(row.label);
    if (!row.help.empty()) {
        one["help"] = jsonText(row.help);
    }
    const EntryFacts facts = behaviorFacts(row);
    if (facts.limited) {
        one["minimum"] = facts.minimum;
        one["maximum"] = facts.maximum;
        one["step"] = EntryModel(facts).step();
    }
    if (!facts.options.empty()) {
        one["options"] = jsonTexts(facts.options);
    }
    return one;
}

std::string inParentheses(const std::string& text) {
    return text.empty() ? "" : "\t(" + text + ')';
}

ExitStatus listBehavior(const BehaviorOptions& options) {
    const std::string path = suitePath(options.file);
    const auto script = readInput(path);
    if (!script) {
        return ExitStatus::Failed;
    }
    Json all = Json::array();
    bool found = false;
    for (const std::string& action : actionNames(*script)) {
        if (!options.entity.empty() && !equalNoCase(action, options.entity)) {
            continue;
        }
        found = true;
        const BehaviorPanel panel = panelOf(path, *script, action);
        Json one{{"action", jsonText(action)}, {"rows", Json::array()}};
        print(options.json ? "" : action + '\n');
        for (const CustomEntry& row : panel.rows) {
            if (row.line == 0) {
                continue;  // shown for want of declared ones
            }
            one["rows"].push_back(jsonOf(row));
            if (!options.json && isValue(row)) {
                print("    " + fieldName(row) + ' ' + row.label + " = " + row.value +
                      inParentheses(allowedRange(behaviorFacts(row))) + '\n');
            }
        }
        all.push_back(std::move(one));
    }
    if (!found && !options.entity.empty()) {
        complain("the script has no action \"" + options.entity + '"');
        return ExitStatus::Usage;
    }
    if (options.json) {
        printJson(all);
    }
    return ExitStatus::Done;
}

// The scripts that the arguments name; of a folder those in it.
// Of a folder that can't be read it is said, and `status` becomes Failed.
std::vector<std::string> scriptsOf(const std::vector<std::string>& words, ExitStatus& status) {
    std::vector<std::string> paths;
    for (const std::string& word : words) {
        const std::string path = suitePath(word);
        const auto entry = osFiles().search(path);
        if (!entry || !entry->isFolder) {
            paths.push_back(path);
            continue;
        }
        OsListing left;
        for (const OsEntry& one : osFiles().list(joinPath(path, "*.kez"), &left)) {
            if (!one.isFolder) {
                paths.push_back(joinPath(path, one.name));
            }
        }
        tellSkipped(left, word);
        if (!left.error.empty()) {
            complain("cannot read " + word + ": " + left.error);
            status = ExitStatus::Failed;
        }
    }
    return paths;
}

ExitStatus checkBehavior(const BehaviorOptions& options) {
    ExitStatus status = ExitStatus::Done;
    Json all = Json::array();
    for (const std::string& path : scriptsOf(options.words, status)) {
        const auto script = readInput(path);
        if (!script) {
            status = worse(status, ExitStatus::Failed);
            continue;
        }
        for (const std::string& action : actionNames(*script)) {
            const BehaviorPanel panel = panelOf(path, *script, action);
            for (const MarkupFinding& one : panel.findings.kept()) {
                status = worse(status, ExitStatus::Findings);
                if (options.json) {
                    all.push_back(
                        {{"file", jsonText(path)}, {"line", one.line}, {"what", jsonText(one.what)}});
                } else {
                    print(path + ':' + std::to_string(one.line) + ": " + one.what + '\n');
                }
            }
        }
    }
    if (options.json) {
        printJson(all);
    }
    return status;
}

// A level with the rows of its entities' actions.
class OpenLevelFile {
public:
    explicit OpenLevelFile(const std::string& file) : m_path(suitePath(file)) {
        auto text = readInput(m_path);
        if (!text) {
            return;
        }
        std::string error;
        auto map = readLevelMap(*text, error);
        if (!map) {
            complain(file + ": " + error);
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
    const LevelEntity* find(const std::string& name) const {
        for (const LevelEntity& entity : m_map.entities) {
            if (entity.name == name) {
                return &entity;
            }
        }
        complain("the level has no entity \"" + name + '"');
        return nullptr;
    }
    // What the entity's action declares, and its other values that are not 0.
    std::vector<CustomEntry> valuesOf(const LevelEntity& entity) const {
        std::vector<CustomEntry> rows;
        if (!entity.script.empty()) {
            const std::string script = joinPath(folderOf(m_path), entity.script);
            if (const auto text = osFiles().readWhole(script)) {
                rows = panelOf(script, *text, entity.action).rows;
            }
        }
        std::erase_if(rows, [](const CustomEntry& row) { return !isValue(row); });
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
        return rows;
    }

private:
    std::string m_path, m_text;
    LevelMap m_map;
    ExitStatus m_status = ExitStatus::Failed;
};

std::string valueText(const LevelEntity& entity, const CustomEntry& row) {
    if (const int skill = skillNumber(row)) {
        return skillText(entity.skills[static_cast<size_t>(skill - 1)]);
    }
    return entity.flags >> (flagNumber(row) - 1) & 1U ? "1" : "0";
}

std::string nameOf(const CustomEntry& row) {
    return fieldName(row) + (row.label.empty() ? "" : ' ' + row.label);
}

ExitStatus listLevel(const BehaviorOptions& options) {
    const OpenLevelFile level(options.file);
    if (level.status() != ExitStatus::Done) {
        return level.status();
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
        print(options.json ? ""
                           : entity.name + '\t' + entity.script + (entity.action.empty() ? "" : " ") +
                                 entity.action + '\n');
        for (const CustomEntry& row : level.valuesOf(entity)) {
            Json value = jsonOf(row);
            value["value"] = valueText(entity, row);
            one["values"].push_back(std::move(value));
            if (!options.json) {
                print("    " + nameOf(row) + " = " + valueText(entity, row) +
                      inParentheses(row.line == 0 ? "not declared" : allowedRange(behaviorFacts(row))) +
                      '\n');
            }
        }
        all.push_back(std::move(one));
    }
    if (options.json) {
        printJson(all);
    }
    return ExitStatus::Done;
}

// The value that goes by a label or by "skill3", "flag1"; nothing after a complaint.
std::optional<CustomEntry> rowNamed(const OpenLevelFile& level, const LevelEntity& entity,
                                    const std::string& name) {
    const std::vector<CustomEntry> rows = level.valuesOf(entity);
    for (const bool byLabel : {false, true}) {
        const CustomEntry* found = nullptr;
        for (const CustomEntry& row : rows) {
            if (!equalNoCase(byLabel ? row.label : fieldName(row), name)) {
                continue;
            }
            if (found && found->id != row.id) {
                complain("several values are called \"" + name + "\"; name it by its number, as in " +
                         fieldName(row));
                return std::nullopt;
            }
            found = &row;
        }
        if (found) {
            return *found;
        }
    }
    const int keyword = LookupCustomKeyword(name);
    CustomEntry row;  // a field that no action declares
    if (keyword >= kFlag1 && keyword < kSkill) {
        row.kind = kFlag;
        row.id = kFlagIds + keyword - kFlag1 + 1;
        return row;
    }
    if (keyword >= kSkill1 && keyword < kBehavior) {
        row.kind = kSkill;
        row.id = kSkillIds + keyword - kSkill1 + 1;
        return row;
    }
    complain("the entity has no value called \"" + name + '"');
    return std::nullopt;
}

ExitStatus getLevel(const BehaviorOptions& options) {
    const OpenLevelFile level(options.file);
    if (level.status() != ExitStatus::Done) {
        return level.status();
    }
    const LevelEntity* const entity = level.find(options.entity);
    if (!entity) {
        return ExitStatus::Usage;
    }
    std::vector<std::string> values;
    for (const std::string& name : options.words) {
        const auto row = rowNamed(level, *entity, name);
        if (!row) {
            return ExitStatus::Usage;
        }
        values.push_back(valueText(*entity, *row));
    }
    if (options.json) {
        printJson(jsonTexts(values));
    } else {
        for (const std::string& value : values) {
            print(value + '\n');
        }
    }
    return ExitStatus::Done;
}

ExitStatus setLevel(const BehaviorOptions& options) {
    const OpenLevelFile level(options.file);
    if (level.status() != ExitStatus::Done) {
        return level.status();
    }
    const LevelEntity* const entity = level.find(options.entity);
    if (!entity) {
        return ExitStatus::Usage;
    }
    std::string text = level.text();
    for (const std::string& word : options.words) {
        const size_t equals = word.find('=');
        if (equals == word.npos) {
            complain('"' + word + "\" is not of the form name=value");
            return ExitStatus::Usage;
        }
        const auto row = rowNamed(level, *entity, word.substr(0, equals));
        if (!row) {
            return ExitStatus::Usage;
        }
        EntryFacts facts = behaviorFacts(*row);
        facts.value = valueText(*entity, *row);
        const std::string value = word.substr(equals + 1);
        std::string why = EntryModel(facts).refusalOf(value);
        const auto number = skillOfText(value);
        if (why.empty() && !number) {
            why = "it is no number";
        }
        if (!why.empty()) {
            complain(nameOf(*row) + ": " + why);
            return ExitStatus::Usage;
        }
        const int skill = skillNumber(*row);
        auto edited = withLevelValue(
            text, {entity->name, skill > 0, skill > 0 ? skill : flagNumber(*row), number.value_or(0)});
        if (!edited) {
            complain("the entity's lines were not found");
            return ExitStatus::Failed;
        }
        text = std::move(*edited);
    }
    if (options.dryRun) {
        print(unifiedDifference(level.text(), text, level.path(), level.path()));
        return ExitStatus::Done;
    }
    return rewriteFile(level.path(), level.text(), text, [&] { return setLevel(options); });
}

ExitStatus diffLevels(const BehaviorOptions& options) {
    const OpenLevelFile before(options.file), after(options.entity);
    const ExitStatus status = worse(before.status(), after.status());
    if (status != ExitStatus::Done) {
        return status;
    }
    Json all = Json::array();
    const auto tell = [&](const std::string& entity, const std::string& what, const std::string& from,
                          const std::string& to) {
        if (options.json) {
            all.push_back({{"entity", jsonText(entity)},
                           {"value", jsonText(what)},
                           {"before", jsonText(from)},
                           {"after", jsonText(to)}});
        } else {
            print(entity + '\t' + what + ": " + from + " -> " + to + '\n');
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
        std::vector<CustomEntry> rows = before.valuesOf(one);
        for (CustomEntry& row : after.valuesOf(other)) {
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
    return ExitStatus::Done;
}

}  // namespace

void addBehaviorCommands(CLI::App& app, Work& chosen) {
    CLI::App* group = nullptr;
    std::string groupName;
    const auto add = [&](const char* name, const char* what, const std::string& example,
                         ExitStatus (*work)(const BehaviorOptions&), auto&&... more) {
        CLI::App* command = group->add_subcommand(name, what);
        const auto options = std::make_shared<BehaviorOptions>();
        (more(*command, *options), ...);
        command->add_flag("--json", options->json, "Print JSON");
        setExample(*command, "zoka " + groupName + ' ' + name + ' ' + example);
        command->callback([=, &chosen] { chosen = [=] { return work(*options); }; });
    };
    const auto file = [](const char* name, const char* what) {
        return [=](CLI::App& command, BehaviorOptions& options) {
            command.add_option(name, options.file, what)->required();
        };
    };
    const auto second = [](const char* name, const char* what, bool required) {
        return [=](CLI::App& command, BehaviorOptions& options) {
            command.add_option(name, options.entity, what)->required(required);
        };
    };
    const auto words = [](const char* name, const char* what, bool required) {
        return [=](CLI::App& command, BehaviorOptions& options) {
            command.add_option(name, options.words, what)->required(required);
        };
    };
    const auto dryRun = [](CLI::App& command, BehaviorOptions& options) {
        command.add_flag("-n,--dry-run", options.dryRun, "Write nothing; print the lines that would change");
    };
    group = app.add_subcommand("behavior", "What actions declare for the entities that they are attached to");
    groupName = "behavior";
    setExample(*group, "zoka behavior list guard.kez");
    add("list", "Print the skills and flags that a script's actions declare", "guard.kez guard_patrol",
        listBehavior, file("SCRIPT", "The script"), second("ACTION", "One action alone", false));
    add("check", "Tell what is wrong with the markup of scripts' actions", "templates", checkBehavior,
        words("SCRIPT", "Scripts, or folders of scripts", true));
    group = app.add_subcommand("level", "The entities of a level of the stand-in editor");
    groupName = "level";
    setExample(*group, "zoka level list main.zlm");
    add("list", "Print the entities with their skills and flags", "main.zlm guard_north", listLevel,
        file("LEVEL", "The level (.zlm)"), words("ENTITY", "These entities alone", false));
    add("get", "Print values of an entity", "main.zlm guard_north Speed", getLevel,
        file("LEVEL", "The level (.zlm)"), second("ENTITY", "The entity", true),
        words("NAME", "Labels, or names like skill3 and flag1", true));
    add("set", "Change values of an entity", "main.zlm guard_north Speed=4 flag1=0", setLevel,
        file("LEVEL", "The level (.zlm)"), second("ENTITY", "The entity", true),
        words("NAME=VALUE", "Values by label, or by names like skill3 and flag1", true), dryRun);
    add("diff", "Print the values that differ between two levels", "main.zlm backup.zlm", diffLevels,
        file("LEVEL", "The level (.zlm)"), second("OTHER", "The other level", true));
}

}  // namespace zoka::cli
