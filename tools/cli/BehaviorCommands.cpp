// zoka behavior: what actions declare for the entities that they are attached to.
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "controls/EntryRules.h"
#include "customize/EntriesText.h"
#include "tools/cli/ActionRows.h"
#include "tools/cli/Command.h"
#include "tools/cli/Json.h"
#include "tools/cli/SuitePath.h"
#include "tools/editor/LevelMap.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka::cli {
namespace {

using Json = nlohmann::ordered_json;

struct BehaviorOptions {
    std::string file, action;
    std::vector<std::string> scripts;
    bool json = false;
};

// Calls `use` with each action that has a body, its first line and its rows. Linear in the script.
template <class Use>
void forEachAction(const std::string& script, Use use) {
    size_t counted = 0;
    int line = 1;
    const TextSet set = textSetOf(script);
    for (const ScriptAction& action : actionsOf(script)) {
        if (!action.hasBody) {
            continue;
        }
        const size_t start = action.block.start;
        // A description that stands inside another action is counted from the beginning.
        if (start < counted) {
            counted = 0;
            line = 1;
        }
        line += static_cast<int>(std::count(script.data() + counted, script.data() + start, '\n'));
        counted = start;
        BehaviorPanel panel;
        panel.set = set;
        readActionBlock(std::string_view(script).substr(start, action.block.length), line, panel);
        use(action, line, panel);
    }
}

ExitStatus listBehavior(const BehaviorOptions& options) {
    const std::string path = suitePath(options.file);
    const auto script = readInput(path);
    if (!script) {
        return ExitStatus::Failed;
    }
    if (hasUtf16Mark(*script)) {
        complain(path + ": " + kUtf16Script);
        return ExitStatus::Failed;
    }
    Json all = Json::array();
    bool found = false;
    forEachAction(*script, [&](const ScriptAction& action, int, const BehaviorPanel& panel) {
        if (!options.action.empty() && !equalNoCase(action.name, options.action)) {
            return;
        }
        found = true;
        Json one{{"action", jsonText(action.name)}, {"rows", Json::array()}};
        printShown(options.json ? "" : action.name + '\n');
        for (const CustomEntry& row : panel.rows) {
            if (row.line == 0) {
                continue;  // shown for want of declared ones
            }
            one["rows"].push_back(jsonOf(row, panel.set));
            if (!options.json && isEntityValue(row)) {
                printShown("    " + nameOf(row) + " = " + row.value +
                           inParentheses(allowedRange(behaviorFacts(row, panel.set))) + '\n');
            }
        }
        all.push_back(std::move(one));
    });
    if (!found && !options.action.empty()) {
        complain("the script has no action \"" + options.action + '"');
        return ExitStatus::Usage;
    }
    if (options.json) {
        printJson(all);
    }
    return ExitStatus::Done;
}

// The scripts that the arguments name; of a folder those in it. Of a folder that can't be read it is said, and `status`
// becomes Failed.
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
            complainUnreadable(word, left.error);
            status = ExitStatus::Failed;
        }
    }
    return paths;
}

// Of the actions' markup, and of the actions themselves.
std::vector<MarkupFinding> findingsOf(const std::string& script) {
    if (hasUtf16Mark(script)) {
        return {{1, kUtf16Script}};
    }
    std::vector<MarkupFinding> findings;
    std::map<std::string, int> known;  // the line of each name's first action
    forEachAction(script, [&](const ScriptAction& action, int line, const BehaviorPanel& panel) {
        const auto [first, isNew] = known.emplace(lowered(action.name), line);
        if (!isNew) {
            findings.push_back({line, "there is an action \"" + action.name + "\" in line " +
                                          std::to_string(first->second) + " already"});
        }
        if (!action.isClosed) {
            findings.push_back({line, "no brace closes the body of \"" + action.name + '"'});
        }
        const std::vector<MarkupFinding> more = panel.findings.kept();
        findings.insert(findings.end(), more.begin(), more.end());
    });
    return findings;
}

ExitStatus checkBehavior(const BehaviorOptions& options) {
    ExitStatus status = ExitStatus::Done;
    Json all = Json::array();
    for (const std::string& path : scriptsOf(options.scripts, status)) {
        const auto script = readInput(path);
        if (!script) {
            status = worse(status, ExitStatus::Failed);
            continue;
        }
        for (const MarkupFinding& one : findingsOf(*script)) {
            status = worse(status, ExitStatus::Findings);
            if (options.json) {
                all.push_back(
                    {{"file", jsonText(givenPath(path))}, {"line", one.line}, {"what", jsonText(one.what)}});
            } else {
                printShown(findingText(givenPath(path), one) + '\n');
            }
        }
    }
    if (options.json) {
        printJson(all);
    }
    return status;
}

}  // namespace

void addBehaviorCommands(const Command& app, Work& chosen) {
    const Command group =
        app.add("behavior", "What actions declare for the entities that they are attached to",
                "zoka behavior list guard.kez");
    addCommand<BehaviorOptions>(
        group,
        {"list", "Print the skills and flags that a script's actions declare",
         "zoka behavior list guard.kez guard_patrol"},
        chosen, listBehavior,
        [](const Command& command, BehaviorOptions& options) {
            command.option("SCRIPT", options.file, "The script").required();
            command.option("ACTION", options.action, "One action alone");
        },
        kJson);
    addCommand<BehaviorOptions>(
        group,
        {"check", "Tell what is wrong with the markup of scripts' actions", "zoka behavior check templates"},
        chosen, checkBehavior,
        [](const Command& command, BehaviorOptions& options) {
            command.option("SCRIPT", options.scripts, "Scripts, or folders of scripts").required();
        },
        kJson);
}

}  // namespace zoka::cli
