// zoka wizard and zoka project new: project wizards without their dialog.
#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "J8ProjectWizard/J8Wizard.h"
#include "J8ProjectWizard/NewProjectSession.h"
#include "J8ProjectWizard/PlanTree.h"
#include "J8ProjectWizard/WizardFindings.h"
#include "tools/cli/Cli.h"
#include "tools/cli/Json.h"
#include "tools/cli/SuitePath.h"
#include "util/DebugLog.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLRead.h"

namespace zoka::cli {
namespace {

using Json = nlohmann::ordered_json;

struct WizardOptions {
    std::string suite = ".", wizard, folder;
    std::string name, docs, level, levelDocs, map, templates;
    bool json = false, dryRun = false;
};

constexpr std::string_view kWizardEnd = ".xml";

enum class Logs { Left, None };

// Does some work on the wizards of a suite, whose folder becomes the current one: they name their templates from there.
// What only looks leaves no debug log behind.
template <class Do>
ExitStatus withWizards(const WizardOptions& options, Logs logs, Do work) {
    if (!osFiles().setCurrentFolder(suitePath(options.suite))) {
        complain("cannot enter the folder " + options.suite + ": " + osFiles().lastError());
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
        for (unsigned i = 0; i < wizards.paths().size(); ++i) {
            const std::string_view file = fileNameOf(wizards.paths()[i]);
            if (wizards.titles()[i] == name || pathFromXml(wizards.titles()[i]) == name ||
                equalNoCase(file, name) || equalNoCase(file, name + std::string(kWizardEnd))) {
                return work(wizards, i);
            }
        }
        complain("no wizard is called \"" + name + "\"; see zoka wizard list");
        return ExitStatus::Usage;
    });
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
        line += row.depth == 0 ? (folder.empty() ? "(the project folder)" : folder + "\\") : row.name;
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

ExitStatus list(const WizardOptions& options) {
    return withWizards(options, Logs::None, [&](const CJ8Wizard& wizards) {
        Json all = Json::array();
        for (size_t i = 0; i < wizards.paths().size(); ++i) {
            if (options.json) {
                all.push_back(
                    {{"title", jsonText(wizards.titles()[i])}, {"path", jsonText(wizards.paths()[i])}});
            } else {
                printShown(onOneLine(wizards.titles()[i]) + "\t" + wizards.paths()[i] + "\n");
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
                       {"path", jsonText(wizards.paths()[index])},
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

ExitStatus check(const WizardOptions& options) {
    return withWizards(options, Logs::None, [&](const CJ8Wizard&) {
        Json all = Json::array();
        bool any = false, found = false;
        for (const OsEntry& file : osFiles().list(std::string(kWizardsFolder) + "*")) {
            const std::string path = osFiles().fullPath(kWizardsFolder + file.name);
            // What was meant to be a wizard, by its name, and what is one.
            if (file.isFolder ||
                (!lowered(file.name).ends_with(kWizardEnd) && !CJ8Wizard::IsWizardFile(path))) {
                continue;
            }
            found = true;
            for (const WizardFinding& finding : wizardFindings(path)) {
                any = true;
                if (options.json) {
                    all.push_back({{"file", jsonText(path)},
                                   {"line", finding.line},
                                   {"column", finding.column},
                                   {"finding", jsonText(finding.text)}});
                } else {
                    printShown(path + ":" + std::to_string(finding.line) + ":" +
                               std::to_string(finding.column) + ": " + finding.text + "\n");
                }
            }
        }
        if (options.json) {
            printJson(all);
        }
        return !found ? noWizards() : any ? ExitStatus::Findings : ExitStatus::Done;
    });
}

void take(std::string& field, const std::string& given) {
    if (!given.empty()) {
        field = xmlFromPath(given);
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
    if (!options.templates.empty()) {
        data.m_strTemplatesPath = options.templates;
    }
    return data;
}

void printPlan(const WizardOptions& options, const CJ8Wizard& wizards, unsigned index,
               const CJ8WizardUserData& data, bool exists) {
    const auto plan = wizards.plan(index, data.m_strLevelMap);
    PlanTree tree(plan ? *plan : CreationPlan());
    tree.lookAtAll();
    if (options.json) {
        printJson({{"project", jsonText(data.m_strProjectFolder)},
                   {"exists", exists},
                   {"plan", jsonOf(tree, data.m_strProjectFolder)}});
    } else {
        printTree(tree, data.m_strProjectFolder);
        printShown("\nThat is " + tree.summary() + ".\n");
    }
}

ExitStatus make(const WizardOptions& options, const CJ8Wizard& wizards, unsigned index,
                CJ8WizardUserData& data) {
    CreationRecord record;
    const int code = wizards.Run(data, index, {nullptr, &record});
    if (code < 0) {
        complain(runMessage(code));
        if (!data.m_strMessage.empty()) {
            complain(data.m_strMessage);
        }
        offerRemoval(userPrompt(), record, false);
        return ExitStatus::Failed;
    }
    if (options.json) {
        printJson({{"project", jsonText(data.m_strProjectFolder)},
                   {"level", jsonText(data.m_strLevelMap)},
                   {"folders", record.folders()},
                   {"files", record.files()}});
    } else {
        printShown("made " + countOf(record.folders(), "folder", "folders") + " and " +
                   countOf(record.files(), "file", "files") + " in " + data.m_strProjectFolder + "\n");
    }
    return ExitStatus::Done;
}

ExitStatus create(WizardOptions options) {
    // They are meant from where the tool was started.
    options.folder = suitePath(options.folder);
    if (!options.templates.empty()) {
        options.templates = suitePath(options.templates);
    }
    return withWizard(options, options.dryRun ? Logs::None : Logs::Left,
                      [&](const CJ8Wizard& wizards, unsigned index) {
                          CJ8WizardUserData data = dataOf(options, wizards, index);
                          if (data.m_strTemplatesPath.empty()) {
                              complain("there is no folder " + std::string(kTemplatesXmlFolder) +
                                       "; name the data folder with --templates");
                              return ExitStatus::Usage;
                          }
                          const int checked = wizards.Check(data.m_strMessage, index, data);
                          const bool exists = osFiles().kindOf(options.folder) != OsKind::Missing;
                          if (options.dryRun) {
                              printPlan(options, wizards, index, data, exists);
                          }
                          if (checked < 0) {
                              complain(data.m_strMessage + (data.m_strMessage.ends_with('\n') ? "" : "\n") +
                                       "Nothing was made.");
                              return ExitStatus::Findings;
                          }
                          if (exists) {
                              complain("there is a folder or file of that name already: " + options.folder +
                                       "; nothing was made");
                              return ExitStatus::Findings;
                          }
                          return options.dryRun ? ExitStatus::Done : make(options, wizards, index, data);
                      });
}

}  // namespace

void addWizardCommands(CLI::App& app, Work& chosen) {
    const auto add = [&chosen](CLI::App& group, const char* name, const char* what,
                               const std::string& example,
                               const std::function<ExitStatus(const WizardOptions&)>& work, auto&& more) {
        CLI::App* command = group.add_subcommand(name, what);
        const auto options = std::make_shared<WizardOptions>();
        more(*command, *options);
        command->add_flag("--json", options->json, "Print JSON");
        setExample(*command, example);
        command->callback([=, &chosen] { chosen = [=] { return work(*options); }; });
    };
    const auto suite = [](CLI::App& command, WizardOptions& options) {
        command.add_option("FOLDER", options.suite,
                           "The suite's folder, which holds templates (default: the current one)");
    };
    CLI::App* wizard = app.add_subcommand("wizard", "The suite's project wizards");
    setExample(*wizard, "zoka wizard list");
    add(*wizard, "list", "List the wizards", "zoka wizard list", list, suite);
    add(*wizard, "show", "Show a wizard and what it makes", "zoka wizard show \"Empty project\"", show,
        [&suite](CLI::App& command, WizardOptions& options) {
            command.add_option("WIZARD", options.wizard, "Its title or its file name")->required();
            suite(command, options);
        });
    add(*wizard, "check", "Tell what is wrong in the wizards' files", "zoka wizard check", check, suite);

    // The group may be there already.
    const auto groups =
        app.get_subcommands([](const CLI::App* group) { return group->get_name() == "project"; });
    CLI::App* project = groups.empty() ? nullptr : groups.front();
    if (!project) {
        project = app.add_subcommand("project", "J8 projects");
        setExample(*project, "zoka project new empty --folder C:\\games\\mine");
    }
    add(*project, "new", "Make a project with a wizard",
        "zoka project new \"Empty project\" --name \"My game\" --folder C:\\games\\mine", create,
        [](CLI::App& command, WizardOptions& options) {
            command.add_option("WIZARD", options.wizard, "Its title or its file name")->required();
            command.add_option("--folder", options.folder, "The new project's folder, which must not exist")
                ->required();
            command.add_option("--name", options.name, "The project's name");
            command.add_option("--docs", options.docs, "What the project is about");
            command.add_option("--level", options.level, "The first level's name");
            command.add_option("--level-docs", options.levelDocs, "What the first level is about");
            command.add_option("--map", options.map, "File name of the first level's map, without extension");
            command.add_option("--templates", options.templates, "The J8 templates path");
            command.add_option("--suite", options.suite, "The suite's folder (default: the current one)");
            command.add_flag("-n,--dry-run", options.dryRun, "Make nothing; print what would be made");
        });
}

}  // namespace zoka::cli
