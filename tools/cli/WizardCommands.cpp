// zoka wizard and zoka project new: project wizards without their dialog.
#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "J8ProjectWizard/J8Wizard.h"
#include "J8ProjectWizard/NewProjectSession.h"
#include "J8ProjectWizard/PlanTree.h"
#include "J8ProjectWizard/WizardFindings.h"
#include "tools/cli/Cli.h"
#include "tools/cli/Command.h"
#include "tools/cli/Json.h"
#include "tools/cli/SuitePath.h"
#include "util/CopyFailure.h"
#include "util/DebugLog.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLErrors.h"
#include "xml/XMLRead.h"

namespace zoka::cli {
namespace {

using Json = nlohmann::ordered_json;

struct WizardOptions {
    std::string suite = ".", wizard, folder;
    std::optional<std::string> name, docs, level, levelDocs, map, templates;
    bool json = false, dryRun = false;
};

constexpr std::string_view kWizardEnd = ".xml";

enum class Logs { Left, None };

// Does some work on the wizards of a suite, whose folder becomes the current one: they name their templates from there.
// What only looks leaves no debug log behind.
template <class Do>
ExitStatus withWizards(const WizardOptions& options, Logs logs, Do work) {
    if (!osFiles().setCurrentFolder(suitePath(options.suite))) {
        complain("Can't enter the folder '" + options.suite + "': " + osFiles().lastError());
        return ExitStatus::Failed;
    }
    if (logs == Logs::None) {
        debugLogFileName().clear();
    }
    return work(CJ8Wizard());
}

// The same with the wizard of that title or file name, with or without its end.
template <class Do>
ExitStatus withWizard(const WizardOptions& options, Logs logs, Do work) {
    return withWizards(options, logs, [&](const CJ8Wizard& wizards) {
        const std::string& name = options.wizard;
        std::vector<unsigned> found;
        for (unsigned i = 0; i < wizards.paths().size(); ++i) {
            const std::string_view file = fileNameOf(wizards.paths()[i]);
            if (equalNoCase(file, name) || equalNoCase(file, name + std::string(kWizardEnd))) {
                return work(wizards, i);
            }
            if (wizards.titles()[i] == name || pathFromXml(wizards.titles()[i]) == name) {
                found.push_back(i);
            }
        }
        if (found.size() == 1) {
            return work(wizards, found.front());
        }
        complain(found.empty() ? "no wizard is called \"" + name + "\"; see zoka wizard list"
                               : "several wizards are called \"" + name + "\"; name the file of one");
        return ExitStatus::Usage;
    });
}

// XML that is no wizard: the list passes it over, too.
bool isOtherXml(const std::string& path) {
    XMLResults results;
    const auto bytes = osFiles().readWhole(path);
    return bytes && XMLNode::parseBytes(*bytes, "Wizard", &results).isEmpty() &&
           results.code == kXmlFirstTagNotFound;
}

ExitStatus noWizards() {
    complain(std::string("there is no wizard in ") + kWizardsFolder);
    return ExitStatus::Findings;
}

Json jsonOf(const CJ8WizardUserData& data) {
    return {{"name", jsonText(data.m_strName)},
            {"docs", jsonText(data.m_strDocs)},
            {"levelName", jsonText(data.m_strLevelName)},
            {"levelMap", jsonText(data.m_strLevelMap)},
            {"levelDocs", jsonText(data.m_strLevelDocs)}};
}

Json jsonOf(const PlanTree& tree, const std::string& folder) {
    Json rows = Json::array();
    for (const PlanRow& row : tree.rows()) {
        Json one{{"kind", row.isOnlyChecked ? "checked"
                          : row.isFolder    ? "folder"
                                            : "file"},
                 {"target", jsonText(row.target)}};
        if (!row.source.empty()) {
            one["source"] = jsonText(row.source);
        }
        if (const std::string problem = tree.problem(row, folder); !problem.empty()) {
            one["problem"] = jsonText(problem);
        }
        rows.push_back(std::move(one));
    }
    return rows;
}

void printTree(const PlanTree& tree, const std::string& folder) {
    for (const PlanRow& row : tree.rows()) {
        std::string line(2 * static_cast<size_t>(row.depth), ' ');
        line +=
            row.depth == 0 ? (folder.empty() ? "(the project folder)" : givenPath(folder + "\\")) : row.name;
        if (!row.source.empty()) {
            line += (row.isOnlyChecked ? "  (looked for: " : "  (from ") + shownSource(row);
            const std::string size = tree.sizeText(row);
            line += (size.empty() ? size : ", " + size) + ")";
        }
        if (const std::string problem = tree.problem(row, folder); !problem.empty()) {
            line += "  ! " + problem;
        }
        printShown(line + "\n");
    }
}

std::string tabless(std::string text) {
    std::ranges::replace(text, '\t', ' ');
    return text;
}

ExitStatus list(const WizardOptions& options) {
    return withWizards(options, Logs::None, [&](const CJ8Wizard& wizards) {
        Json all = Json::array();
        for (size_t i = 0; i < wizards.paths().size(); ++i) {
            if (options.json) {
                all.push_back({{"title", jsonText(wizards.titles()[i])},
                               {"path", jsonText(givenPath(wizards.paths()[i]))}});
            } else {
                printShown(tabless(onOneLine(wizards.titles()[i])) + "\t" + givenPath(wizards.paths()[i]) +
                           "\n");
            }
        }
        if (options.json) {
            printJson(all);
        }
        return wizards.paths().empty() ? noWizards() : ExitStatus::Done;
    });
}

ExitStatus show(const WizardOptions& options) {
    return withWizard(options, Logs::None, [&](const CJ8Wizard& wizards, unsigned index) {
        CJ8WizardUserData data;
        wizards.LoadDefaults(data, index);
        std::string description;
        CJ8Wizard::GetWizardDesc(description, wizards.paths()[index]);
        const auto plan = wizards.plan(index, data.m_strLevelMap);
        PlanTree tree(plan ? *plan : CreationPlan());
        tree.lookAtAll();
        if (options.json) {
            printJson({{"title", jsonText(wizards.titles()[index])},
                       {"path", jsonText(givenPath(wizards.paths()[index]))},
                       {"description", jsonText(description)},
                       {"defaults", jsonOf(data)},
                       {"plan", jsonOf(tree, {})}});
            return ExitStatus::Done;
        }
        printShown(wizards.titles()[index] + "\n" + description + "\n\nProject: " + data.m_strName +
                   "\nLevel: " + data.m_strLevelName + " (" + data.m_strLevelMap + ")\n\n");
        printTree(tree, {});
        return ExitStatus::Done;
    });
}

// What is wrong in the wizards' files, those that have a title that an earlier one has included.
std::vector<std::pair<std::string, WizardFinding>> findingsOf(const CJ8Wizard& wizards) {
    std::vector<std::pair<std::string, WizardFinding>> all;
    std::map<std::string, std::string> fileOfTitle;
    for (const OsEntry& file : osFiles().list(std::string(kWizardsFolder) + "*")) {
        const std::string path = osFiles().fullPath(kWizardsFolder + file.name);
        const auto listed = std::ranges::find(wizards.paths(), path);
        // A file that is meant to be a wizard, by its name, counts if it can't be read.
        if (file.isFolder || (listed == wizards.paths().end() &&
                              (!lowered(file.name).ends_with(kWizardEnd) || isOtherXml(path)))) {
            continue;
        }
        for (WizardFinding& finding : wizardFindings(path)) {
            all.emplace_back(path, std::move(finding));
        }
        if (listed != wizards.paths().end()) {
            const auto [first, isNew] = fileOfTitle.try_emplace(
                wizards.titles()[static_cast<size_t>(listed - wizards.paths().begin())], path);
            if (!isNew) {
                all.emplace_back(
                    path, WizardFinding{1, 1, "The same title as that of " + givenPath(first->second)});
            }
        }
    }
    return all;
}

ExitStatus check(const WizardOptions& options) {
    return withWizards(options, Logs::None, [&](const CJ8Wizard& wizards) {
        const auto findings = findingsOf(wizards);
        Json all = Json::array();
        for (const auto& [path, finding] : findings) {
            if (options.json) {
                Json one{{"file", jsonText(givenPath(path))}};
                if (finding.line > 0) {
                    one["line"] = finding.line;
                    one["column"] = finding.column;
                }
                one["finding"] = jsonText(finding.text);
                all.push_back(std::move(one));
            } else {
                const std::string place = finding.line > 0 ? ":" + std::to_string(finding.line) + ":" +
                                                                 std::to_string(finding.column)
                                                           : "";
                printShown(givenPath(path) + place + ": " + finding.text + "\n");
            }
        }
        if (options.json) {
            printJson(all);
        }
        return !findings.empty()         ? ExitStatus::Findings
               : wizards.paths().empty() ? noWizards()
                                         : ExitStatus::Done;
    });
}

void take(std::string& field, const std::optional<std::string>& given) {
    if (given) {
        field = xmlFromPath(*given);
    }
}

// What the arguments say of the new project; what they don't is the wizard's default.
CJ8WizardUserData dataOf(const WizardOptions& options, const CJ8Wizard& wizards, unsigned index) {
    CJ8WizardUserData data;
    wizards.LoadDefaults(data, index);
    data.m_strProjectFolder = options.folder;
    take(data.m_strName, options.name);
    take(data.m_strDocs, options.docs);
    take(data.m_strLevelName, options.level);
    take(data.m_strLevelDocs, options.levelDocs);
    take(data.m_strLevelMap, options.map);
    if (options.templates) {
        data.m_strTemplatesPath = *options.templates;
    }
    return data;
}

void printPlan(const WizardOptions& options, const CJ8Wizard& wizards, unsigned index,
               const CJ8WizardUserData& data, bool exists, const std::string& refusal) {
    const auto plan = wizards.plan(index, data.m_strLevelMap);
    PlanTree tree(plan ? *plan : CreationPlan());
    tree.lookAtAll();
    if (options.json) {
        Json all{{"project", jsonText(givenPath(data.m_strProjectFolder))}, {"exists", exists}};
        if (!refusal.empty()) {
            all["refused"] = jsonText(refusal);
        }
        if (const std::string problem = tree.firstProblem(data.m_strProjectFolder); !problem.empty()) {
            all["problem"] = jsonText(problem);
        }
        all["plan"] = jsonOf(tree, data.m_strProjectFolder);
        printJson(all);
    } else {
        printTree(tree, data.m_strProjectFolder);
        printShown("\nThat is " + tree.summary() + ".\n");
    }
}

// Messages of the dialog's are laid out for its boxes.
std::string linesOf(const std::string& message) {
    return std::string(trimmed(onOneLine(message, "\n")));
}

// Why there is no project, for who reads JSON.
void printRefusal(const CJ8WizardUserData& data, const char* key, const std::string& why) {
    printJson({{"project", jsonText(givenPath(data.m_strProjectFolder))}, {key, jsonText(why)}});
}

ExitStatus failed(int code, const CJ8WizardUserData& data) {
    complain(runMessage(code));
    if (!data.m_strMessage.empty()) {
        complain(linesOf(data.m_strMessage));
    }
    return code == kWizardFolderExists ? ExitStatus::Findings : ExitStatus::Failed;
}

ExitStatus make(const WizardOptions& options, const CJ8Wizard& wizards, unsigned index,
                CJ8WizardUserData& data) {
    CreationRecord record;
    const int code = wizards.Run(data, index, {nullptr, &record});
    if (code < 0) {
        const ExitStatus status = failed(code, data);
        if (options.json) {
            printRefusal(data, code == kWizardFolderExists ? "refused" : "failed",
                         linesOf(std::string(runMessage(code)) + "\n" + data.m_strMessage));
        }
        offerRemoval(userPrompt(), record, false, [](const WizardJob& job) { job(nullptr); });
        return status;
    }
    if (options.json) {
        printJson({{"project", jsonText(givenPath(data.m_strProjectFolder))},
                   {"level", jsonText(data.m_strLevelMap)},
                   {"folders", record.folders()},
                   {"files", record.files()},
                   {"notCopied", jsonTexts(record.failedCopies())}});
    } else {
        printShown("made " + countOf(record.folders(), "folder", "folders") + " and " +
                   countOf(record.files(), "file", "files") + " in " + givenPath(data.m_strProjectFolder) +
                   "\n");
    }
    // What a project may lack was planned so, and is no failure.
    bool whole = true;
    const auto plan = wizards.plan(index, data.m_strLevelMap);
    const PlanTree tree(plan ? *plan : CreationPlan());
    for (const PlanRow& row : tree.rows()) {
        const std::string path = withSeparator(data.m_strProjectFolder) + row.target;
        if (!row.isOptional &&
            std::ranges::find(record.failedCopies(), path) != record.failedCopies().end()) {
            complain(copyFailure(shownSource(row), path, ""));
            whole = false;
        }
    }
    return whole ? ExitStatus::Done : ExitStatus::Failed;
}

// What the dialog asks for, too; empty: all of it is there.
std::string whatIsMissing(const CJ8WizardUserData& data) {
    return data.m_strName.empty()            ? "Enter a Project Name. (--name)"
           : data.m_strProjectFolder.empty() ? "Enter a Project Folder Name. (--folder)"
           : data.m_strTemplatesPath.empty() ? "Enter a J8 Templates Path. (--templates)"
                                             : "";
}

// Whether the project's file, as it is among the templates, has a level that takes the name and the documentation.
bool hasLevel(const CreationPlan& plan) {
    return plan.loadsProjectFile && !XMLNode::parseFile(plan.projectFiles.files.back().source.c_str(),
                                                        "Project", nullptr, {}, XMLCharset::Utf8)
                                         .firstChild("Level")
                                         .isEmpty();
}

ExitStatus createWith(const WizardOptions& options, const CJ8Wizard& wizards, unsigned index) {
    CJ8WizardUserData data = dataOf(options, wizards, index);
    if (const std::string what = whatIsMissing(data); !what.empty()) {
        complain(what);
        return ExitStatus::Usage;
    }
    const bool isRefused = wizards.Check(data.m_strMessage, index, data) < 0;
    const bool exists = osFiles().kindOf(options.folder) != OsKind::Missing;
    const std::string refusal = isRefused ? linesOf(data.m_strMessage)
                                : exists  ? runMessage(kWizardFolderExists)
                                          : "";
    if (options.dryRun) {
        printPlan(options, wizards, index, data, exists, refusal);
    }
    if (isRefused) {
        complain(refusal + "\nNothing was made.");
        if (options.json && !options.dryRun) {
            printRefusal(data, "refused", refusal);
        }
        return ExitStatus::Findings;
    }
    if (options.dryRun && exists) {
        data.m_strMessage = options.folder;
        return failed(kWizardFolderExists, data);
    }
    const auto plan = wizards.plan(index, data.m_strLevelMap);
    if ((options.level || options.levelDocs) && plan && !hasLevel(*plan)) {
        complain("warning: the wizard's project has no level, so --level and --level-docs count for nothing");
    }
    return options.dryRun ? ExitStatus::Done : make(options, wizards, index, data);
}

ExitStatus create(WizardOptions options) {
    // They are meant from where the tool was started.
    for (std::string* path : {&options.folder, options.templates ? &*options.templates : nullptr}) {
        if (!path || path->empty()) {
            continue;
        }
        if (path->size() > 1 && (*path)[1] == ':' && (path->size() == 2 || !isSeparator((*path)[2]))) {
            complain('"' + *path + "\" is relative to a drive; name the folder's whole path");
            return ExitStatus::Usage;
        }
        *path = suitePath(*path);
    }
    return withWizard(
        options, options.dryRun ? Logs::None : Logs::Left,
        [&](const CJ8Wizard& wizards, unsigned index) { return createWith(options, wizards, index); });
}

}  // namespace

void addWizardCommands(const Command& app, Work& chosen) {
    const auto suite = [](const Command& command, WizardOptions& options) {
        command.option("FOLDER", options.suite,
                       "The suite's folder, which holds templates (default: the current one)");
    };
    const Command wizard = app.add("wizard", "The suite's project wizards", "zoka wizard list");
    const auto title = [](const Command& command, WizardOptions& options) {
        command.option("WIZARD", options.wizard, "Its title or its file name").required();
    };
    addCommand<WizardOptions>(wizard, {"list", "List the wizards", "zoka wizard list"}, chosen, list, suite,
                              kJson);
    addCommand<WizardOptions>(
        wizard, {"show", "Show a wizard and what it makes", "zoka wizard show \"Empty project\""}, chosen,
        show, title, suite, kJson);
    addCommand<WizardOptions>(wizard,
                              {"check", "Tell what is wrong in the wizards' files", "zoka wizard check"},
                              chosen, check, suite, kJson);

    const Command project = app.below("project");
    addCommand<WizardOptions>(
        project,
        {"new", "Make a project with a wizard",
         "zoka project new \"Empty project\" --name \"My game\" --folder C:\\games\\mine"},
        chosen, create, title,
        [](const Command& command, WizardOptions& options) {
            command.option("--folder", options.folder, "The new project's folder, which must not exist")
                .required();
            command.option("--name", options.name, "The project's name");
            command.option("--docs", options.docs, "What the project is about");
            command.option("--level", options.level, "The first level's name");
            command.option("--level-docs", options.levelDocs, "What the first level is about");
            command.option("--map", options.map, "File name of the first level's map, without extension");
            command.option("--templates", options.templates, "The J8 templates path");
            command.option("--suite", options.suite, "The suite's folder (default: the current one)");
            command.flag("-n,--dry-run", options.dryRun, "Make nothing; print what would be made");
        },
        kJson);
}

}  // namespace zoka::cli
