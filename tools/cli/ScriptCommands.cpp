// zoka scripts: a project's scripts, managed as the Project Manager window does it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "plugin/host/FolderHost.h"
#include "templates/CatalogueXml.h"
#include "templates/NotesReport.h"
#include "templates/ScriptManagerSession.h"
#include "templates/ValueKeepingUpdater.h"
#include "tools/cli/Cli.h"
#include "tools/cli/Json.h"
#include "tools/cli/SuitePath.h"
#include "util/FileLock.h"
#include "util/LineDiff.h"
#include "util/PathRules.h"

namespace zoka::cli {

namespace {

struct ScriptOptions {
    std::string project = ".", templates, catalogue, mainScript;
    std::vector<std::string> names;
    bool dryRun = false, json = false;
};

void print(const std::string& text) {
    printShown(text);
}

// One project, its host and its session. Its session is made only when the catalogue could be loaded.
class Manager {
public:
    // Whoever `changes` the project holds its main script's lock meanwhile.
    Manager(const ScriptOptions& options, bool changes) : m_host(foldersOf(options)), m_folders(m_host) {
        m_folders.listOnce();
        const std::string templates = suitePath(options.templates);
        const std::string file =
            options.catalogue.empty() ? joinPath(templates, kCatalogueFile) : options.catalogue;
        m_mainScript = m_host.GetMainScriptPath().value_or("");
        if (m_mainScript.empty() || !osFiles().exists(m_mainScript)) {
            complain("the project has no main script: name it with --main");
            m_status = ExitStatus::Usage;
            return;
        }
        if (changes) {
            m_lock.emplace(m_mainScript);
            if (!*m_lock) {
                complain(m_lock->error());
                m_status = ExitStatus::Failed;
                return;
            }
        }
        m_status = loadCatalogueOrComplain(m_catalogue, file);
        if (m_status != ExitStatus::Done) {
            return;
        }
        m_session = std::make_unique<ScriptManagerSession>(
            m_host, m_catalogue, [](CTemplateData&, JobProgress*) { return true; }, m_updater, userPrompt());
        m_session->open();
    }

    ExitStatus status() const { return m_status; }  // Done: the session stands
    ScriptManagerSession& session() { return *m_session; }
    FolderHost& host() { return m_host; }
    const ScriptFolders& folders() const { return m_folders; }  // as they were at first
    const std::string& mainScript() const { return m_mainScript; }
    std::string mainText() const { return osFiles().readWhole(m_mainScript).value_or(""); }
    void printDifference(const std::string& before, const std::string& after) const {
        printPatch(unifiedDifference(before, after, m_mainScript, m_mainScript));
    }

    // The file of a script named by its title or its file name; nothing, and a complaint, when it is unknown.
    std::optional<std::string> fileOf(const std::string& name) const {
        if (const auto titled = m_catalogue.findByName(name)) {
            return titled->m_filename;
        }
        if (const auto filed = m_catalogue.findByFilenameNoCase(name)) {
            return filed->m_filename;
        }
        for (const IncludedScript& entry : m_session->included()) {
            if (equalNoCase(entry.fileName, name) || entry.text == name) {
                return entry.fileName;
            }
        }
        if (m_folders.LocateScript(name) != ScriptPlace::NotFound) {
            return name;
        }
        complain("no script is called " + name);
        return {};
    }

    std::optional<int> includedIndex(const std::string& fileName) const {
        for (size_t i = 0; i < m_session->included().size(); ++i) {
            if (equalNoCase(m_session->included()[i].fileName, fileName)) {
                return static_cast<int>(i);
            }
        }
        return {};
    }

private:
    static FolderHost::Folders foldersOf(const ScriptOptions& options) {
        const std::string templates = suitePath(options.templates);
        FolderHost::Folders folders;
        folders.project = suitePath(options.project);
        folders.suite = std::string(folderOf(templates));
        folders.templateSubfolder = std::string(fileNameOf(templates));
        if (!options.mainScript.empty()) {
            folders.mainScript = suitePath(options.mainScript);
        }
        return folders;
    }

    FolderHost m_host;
    ScriptFolders m_folders;
    CTemplateData m_catalogue;
    ValueKeepingUpdater m_updater;
    std::string m_mainScript;
    std::optional<FileLock> m_lock;
    ExitStatus m_status = ExitStatus::Done;
    std::unique_ptr<ScriptManagerSession> m_session;
};

const char* placeName(ScriptPlace place) {
    return place == ScriptPlace::Project    ? "project"
           : place == ScriptPlace::Template ? "template"
                                            : "missing";
}

ExitStatus list(Manager& manager, const ScriptOptions& options) {
    nlohmann::ordered_json scripts = nlohmann::ordered_json::array();
    const auto& included = manager.session().included();
    for (size_t i = 0; i < included.size(); ++i) {
        const IncludedScript& entry = included[i];
        std::string version, date;
        manager.folders().ReadVersionAndDate(entry.fileName, version, date, false);
        const char* const place = placeName(manager.folders().LocateScript(entry.fileName));
        const std::string neededBy = manager.session().neededBy(i);
        if (options.json) {
            scripts.push_back({{"filename", jsonText(entry.fileName)},
                               {"title", entry.script ? jsonText(entry.script->m_name) : ""},
                               {"template", entry.script.has_value()},
                               {"place", place},
                               {"version", jsonText(version)},
                               {"date", jsonText(date)},
                               {"neededBy", jsonText(neededBy)}});
        } else {
            print(entry.fileName + "\t" + place + "\t" + version + "\t" + date + "\t" +
                  (entry.script ? entry.text : "(USER)") + (neededBy.empty() ? "" : "\t" + neededBy) + "\n");
        }
    }
    if (options.json) {
        printJson({{"mainScript", jsonText(manager.mainScript())}, {"scripts", scripts}});
    }
    return ExitStatus::Done;
}

nlohmann::ordered_json asJson(const AddPlan& plan) {
    nlohmann::ordered_json copies = nlohmann::ordered_json::array(), lines = nlohmann::ordered_json::array();
    for (const AddPlan::Copy& copy : plan.copies) {
        copies.push_back({{"source", jsonText(copy.source)},
                          {"destination", jsonText(copy.destination)},
                          {"overwrites", copy.overwrites}});
    }
    for (const AddPlan::Line& line : plan.lines) {
        lines.push_back({{"name", jsonText(line.name)},
                         {"need", !line.asked},
                         {"present", line.present},
                         {"found", line.found}});
    }
    return {{"summary", jsonText(plan.summary())}, {"copies", copies}, {"includes", lines}};
}

ExitStatus add(Manager& manager, const ScriptOptions& options) {
    std::vector<std::string> paths;
    for (const std::string& name : options.names) {
        const std::optional<std::string> file = manager.fileOf(name);
        if (!file) {
            return ExitStatus::Usage;
        }
        std::string path;
        if (manager.folders().LocateScript(*file, path) == ScriptPlace::NotFound) {
            complain("Can't find script file (1129).\nFile not added.");
            return ExitStatus::Findings;
        }
        paths.push_back(path);
    }
    ScriptAdding adding(manager.host(), userPrompt());
    const AddPlan plan = adding.plan(paths);
    if (options.json) {
        printJson(asJson(plan));
    } else {
        print(plan.summary() + "\n");
    }
    if (!plan.problem.empty()) {
        return ExitStatus::Findings;
    }
    if (plan.before.empty()) {
        complain("the main script is empty or can't be read: nothing is included");
        return ExitStatus::Findings;
    }
    if (options.dryRun) {
        if (options.json) {
            return ExitStatus::Done;
        }
        for (const AddPlan::Copy& copy : plan.copies) {
            print("copy " + copy.source + " -> " + copy.destination + "\n");
        }
        manager.printDifference(plan.before, plan.after);
        return ExitStatus::Done;
    }
    if (adding.AddScriptsToProject(paths) && adding.error().empty()) {
        return ExitStatus::Done;
    }
    complain(adding.error());
    return ExitStatus::Failed;
}

// All of them in one rewrite, or none: those that need each other go together. The user's own scripts too, which
// the window leaves to their owner.
ExitStatus remove(Manager& manager, const ScriptOptions& options) {
    ScriptManagerSession& session = manager.session();
    std::set<size_t> chosen;
    std::vector<std::string> files;
    for (const std::string& name : options.names) {
        const std::optional<std::string> file = manager.fileOf(name);
        const std::optional<int> index = file ? manager.includedIndex(*file) : std::nullopt;
        if (!index) {
            if (file) {
                complain("the main script doesn't include " + *file);
            }
            return ExitStatus::Usage;
        }
        const auto entry = static_cast<size_t>(*index);
        if (chosen.insert(entry).second) {
            files.push_back(session.included()[entry].fileName);
        }
    }
    std::set<size_t> needing;
    for (const size_t entry : chosen) {
        for (const size_t dependent : session.dependents(entry)) {
            if (!chosen.contains(dependent)) {
                needing.insert(dependent);
            }
        }
    }
    if (!needing.empty()) {
        std::vector<std::string> titles;
        for (const size_t dependent : needing) {
            titles.push_back(session.included()[dependent].text);
        }
        session.refuseRemoval(titles);
        return ExitStatus::Findings;
    }
    if (options.dryRun) {
        const std::string before = manager.mainText();
        manager.printDifference(before, withoutIncludes(before, files).value_or(before));
        return ExitStatus::Done;
    }
    std::string error;
    if (RemoveIncludes(manager.host(), files, &error)) {
        return ExitStatus::Done;
    }
    complain(error.empty() ? "the main script doesn't include them any more" : error);
    return ExitStatus::Failed;
}

std::string withoutLineEnd(std::string line) {
    while (line.ends_with('\n')) {
        line.pop_back();
    }
    return line;
}

// What `zoka scripts update` is about to do: the list's entries, of the files named or of all.
void reportUpdates(Manager& manager, const ScriptOptions& options, const std::vector<UpdateEntry>& entries) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    const ScriptFolders& folders = manager.folders();
    for (const UpdateEntry& entry : entries) {
        list.push_back({{"filename", jsonText(entry.fileName)},
                        {"line", jsonText(withoutLineEnd(entry.line))},
                        {"missingNeeds", jsonTexts(entry.missingNeeds)}});
        if (options.json) {
            continue;
        }
        print(withoutLineEnd(entry.line) + "\n");
        // One of two entries of a script, for its needs and for its version, shows its lines.
        const bool isLast = &entry == &entries.back() || (&entry)[1].fileName != entry.fileName;
        if (isLast && folders.LocateScript(entry.fileName) == ScriptPlace::Project &&
            folders.inTemplates(entry.fileName)) {
            printPatch(
                unifiedDifference(osFiles().readWhole(folders.projectPath(entry.fileName)).value_or(""),
                                  osFiles().readWhole(folders.templatePath(entry.fileName)).value_or(""),
                                  folders.projectPath(entry.fileName), folders.templatePath(entry.fileName)));
        }
    }
    if (options.json) {
        printJson({{"updates", list}});
        return;
    }
    const std::string before = manager.mainText();
    CLex lexer(before.data(), static_cast<long>(before.size()));
    const Insertion missing =
        planInsertion(lexer, manager.mainScript(), missingNeedsOf(entries, folders), folders.locator());
    if (missing.problem.empty()) {
        manager.printDifference(before, applyInsertion(before, missing));
    } else {
        complain(missing.problem);
    }
}

ExitStatus update(Manager& manager, const ScriptOptions& options) {
    ScriptManagerSession& session = manager.session();
    std::set<std::string> files, listed;  // lowered names
    for (const std::string& name : options.names) {
        const std::optional<std::string> file = manager.fileOf(name);
        if (!file) {
            return ExitStatus::Usage;
        }
        files.insert(lowered(*file));
    }
    std::vector<UpdateEntry> entries;
    for (const UpdateEntry& entry : session.updates()) {
        const std::string key = lowered(entry.fileName);
        if (!files.empty() && !files.contains(key)) {
            continue;
        }
        entries.push_back(entry);
        listed.insert(key);
    }
    if (options.json || options.dryRun) {
        reportUpdates(manager, options, entries);
    }
    if (options.dryRun) {
        return entries.empty() ? ExitStatus::Done : ExitStatus::Findings;
    }
    if (files.empty()) {
        session.updateListed();
    } else if (!entries.empty()) {
        session.updateEntries(entries);
    }
    if (!options.json) {
        for (const std::string& file : files) {
            if (!listed.contains(file)) {
                print(file + ": nothing to update\n");
            }
        }
        if (!session.status().empty()) {
            print(session.status() + "\n");
        }
    }
    if (!session.updateRun().problems().empty()) {
        return ExitStatus::Failed;
    }
    std::string unplaced = session.updateRun().unplaced();
    if (unplaced.empty()) {
        return ExitStatus::Done;
    }
    std::erase(unplaced, '\r');
    complain("no place for these values, which are kept beside each script (.zoka.old):\n" + unplaced);
    return ExitStatus::Findings;
}

ExitStatus restore(Manager& manager, const ScriptOptions& options) {
    std::vector<std::string> files;
    for (const std::string& name : options.names) {
        const std::optional<std::string> file = manager.fileOf(name);
        if (!file) {
            return ExitStatus::Usage;
        }
        files.push_back(*file);
    }
    ExitStatus status = ExitStatus::Done;
    for (const std::string& file : files) {
        if (!(options.dryRun ? canRestore(manager.host(), file) : manager.session().restore(file))) {
            status = ExitStatus::Findings;
        } else if (options.dryRun) {
            print("copy " + manager.folders().templatePath(file) + " -> " +
                  manager.folders().projectPath(file) + "\n");
        }
    }
    return status;
}

ExitStatus notes(Manager& manager, const ScriptOptions& options) {
    const std::string text = manager.session().notes();
    if (options.json) {
        printJson({{"notes", jsonText(text)}});
    } else {
        print(text);
    }
    return ExitStatus::Done;
}

// The included scripts that need this one, and those that need them, each once.
ExitStatus why(Manager& manager, const ScriptOptions& options) {
    const std::optional<std::string> file = manager.fileOf(options.names.front());
    if (!file) {
        return ExitStatus::Usage;
    }
    const auto& included = manager.session().included();
    const std::optional<int> start = manager.includedIndex(*file);
    if (!start) {
        print(*file + " is not included\n");
        return ExitStatus::Findings;
    }
    std::unordered_map<std::string, std::vector<size_t>> needers;
    for (size_t i = 0; i < included.size(); ++i) {
        std::string path;
        manager.folders().LocateScript(included[i].fileName, path);
        for (const std::string& need : readScriptFacts(path).needs) {
            needers[lowered(need)].push_back(i);
        }
    }
    struct Step {
        size_t script;
        std::string chain;
    };
    nlohmann::ordered_json chains = nlohmann::ordered_json::array();
    std::vector<Step> way = {{static_cast<size_t>(*start), included[static_cast<size_t>(*start)].fileName}};
    std::unordered_set<size_t> seen = {way[0].script};
    for (size_t at = 0; at < way.size(); ++at) {
        const Step step = way[at];
        for (const size_t needer : needers[lowered(included[step.script].fileName)]) {
            if (seen.insert(needer).second) {
                way.push_back({needer, step.chain + " <- " + included[needer].fileName});
            }
        }
        if (at > 0) {
            chains.push_back(jsonText(step.chain));
        }
        if (at > 0 && !options.json) {
            print(step.chain + "\n");
        }
    }
    if (options.json) {
        printJson({{"filename", jsonText(*file)}, {"neededBy", chains}});
    } else if (way.size() == 1) {
        print(*file + " is included by itself: no included script needs it\n");
    }
    return ExitStatus::Done;
}

using Action = ExitStatus (*)(Manager&, const ScriptOptions&);
enum Takes { kNothing = 0, kNames = 1, kOneName = 2, kNeedsNames = 4, kDryRun = 8, kJson = 16 };

void addCommand(CLI::App& scripts, Work& chosen, const char* name, const char* description, Action action,
                int takes, const char* example) {
    CLI::App* command = scripts.add_subcommand(name, description);
    const auto options = std::make_shared<ScriptOptions>();
    command->add_option("-p,--project", options->project, "The project folder")->capture_default_str();
    command->add_option("-t,--templates", options->templates, "The template folder")->required();
    command->add_option("-c,--catalogue", options->catalogue,
                        "The catalogue [template_6.xml of that folder]");
    command->add_option("-m,--main", options->mainScript,
                        "The main script, where the project has several scripts");
    if (takes & (kNames | kOneName)) {
        CLI::Option* names = command->add_option("NAME", options->names, "Title or file name of a script");
        if (takes & kOneName) {
            names->expected(1);
        }
        if (takes & kNeedsNames) {
            names->required();
        }
    }
    if (takes & kDryRun) {
        command->add_flag("--dry-run", options->dryRun,
                          "Change nothing; print what would be changed and copied");
    }
    if (takes & kJson) {
        command->add_flag("--json", options->json, "Print the report as JSON");
    }
    setExample(*command, example);
    command->callback([=, &chosen] {
        chosen = [=] {
            Manager manager(*options, (takes & kDryRun) && !options->dryRun);
            return manager.status() == ExitStatus::Done ? action(manager, *options) : manager.status();
        };
    });
}

}  // namespace

void addScriptCommands(CLI::App& app, Work& chosen) {
    CLI::App* scripts = app.add_subcommand("scripts", "Manage the scripts that a project includes");
    scripts->require_subcommand(1);
    setExample(*scripts, "zoka scripts list -p game -t suite/templates");
    addCommand(*scripts, chosen, "list", "List the included scripts", list, kJson,
               "zoka scripts list -p game -t suite/templates");
    addCommand(*scripts, chosen, "add",
               "Include scripts and what they need, in one rewrite of the main script", add,
               kNames | kNeedsNames | kDryRun | kJson,
               "zoka scripts add -p game -t suite/templates fog.kez camera_.kez");
    addCommand(*scripts, chosen, "remove", "Take scripts out of the main script; their files stay", remove,
               kNames | kNeedsNames | kDryRun, "zoka scripts remove -p game -t suite/templates fog.kez");
    addCommand(*scripts, chosen, "update",
               "Bring scripts up to the template folder's; without NAME, all that differ", update,
               kNames | kDryRun | kJson, "zoka scripts update -p game -t suite/templates --dry-run");
    addCommand(*scripts, chosen, "restore", "Copy scripts that the project has lost from the template folder",
               restore, kNames | kNeedsNames | kDryRun,
               "zoka scripts restore -p game -t suite/templates fog.kez");
    addCommand(*scripts, chosen, "notes", "Print the report of the notes page", notes, kJson,
               "zoka scripts notes -p game -t suite/templates");
    addCommand(*scripts, chosen, "why", "Tell which included scripts need one, directly or not", why,
               kOneName | kNeedsNames | kJson, "zoka scripts why -p game -t suite/templates noise.kez");
}

}  // namespace zoka::cli
