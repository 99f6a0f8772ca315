// zoka scripts: a project's scripts, managed as the Project Manager window does it.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "plugin/host/FolderHost.h"
#include "templates/CatalogueXml.h"
#include "templates/NotesReport.h"
#include "templates/ScriptManagerSession.h"
#include "tools/cli/Command.h"
#include "tools/cli/Json.h"
#include "tools/cli/SuitePath.h"
#include "util/FileLock.h"
#include "util/KeyedHash.h"
#include "util/LineDiff.h"
#include "util/PathRules.h"

namespace zoka::cli {

namespace {

struct ScriptOptions {
    std::string project = ".", templates, catalogue, mainScript;
    std::vector<std::string> names;
    bool changes = false;  // the project, but for a dry run
    bool dryRun = false, json = false;
};

// One project, its host and its session. Its session is made only when the catalogue could be loaded.
class Manager {
public:
    // Whoever changes the project holds its main script's lock meanwhile.
    explicit Manager(const ScriptOptions& options) : m_host(foldersOf(options)), m_folders(m_host) {
        m_status = openProject(options);
        if (m_status != ExitStatus::Done) {
            return;
        }
        if (options.changes && !options.dryRun) {
            m_lock.emplace(m_mainScript);
            if (!*m_lock) {
                complain(m_lock->why());
                m_status = ExitStatus::Failed;
                return;
            }
        }
        m_folders.listOnce();
        const std::string file = options.catalogue.empty()
                                     ? joinPath(suitePath(options.templates), kCatalogueFile)
                                     : options.catalogue;
        m_status = loadCatalogueOrComplain(m_catalogue, file);
        if (m_status != ExitStatus::Done) {
            return;
        }
        m_session = std::make_unique<ScriptManagerSession>(
            m_host, m_catalogue, [](CTemplateData&, JobProgress*) { return true; }, userPrompt());
        m_session->open();
    }

    ExitStatus status() const { return m_status; }  // Done: the session stands
    ScriptManagerSession& session() { return *m_session; }
    FolderHost& host() { return m_host; }
    const ScriptFolders& folders() const { return m_folders; }  // as they were at first
    const std::string& mainScript() const { return m_mainScript; }
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

    std::optional<size_t> includedIndex(const std::string& fileName) const {
        return m_session->includedScripts().byFile(fileName);
    }

private:
    // Done when the folders and the main script are there.
    ExitStatus openProject(const ScriptOptions& options) {
        for (const std::string& folder : {options.project, options.templates}) {
            const auto entry = osFiles().search(suitePath(folder));
            if (!entry || !entry->isFolder) {
                complain("there is no folder " + folder);
                return ExitStatus::Usage;
            }
        }
        m_mainScript = m_host.GetMainScriptPath().value_or("");
        if (m_mainScript.empty() || !osFiles().exists(m_mainScript)) {
            complain(options.mainScript.empty() ? "the project has no main script: name it with --main"
                                                : "there is no main script " + options.mainScript);
            return ExitStatus::Usage;
        }
        if (!equalNoCase(folderOf(m_mainScript), m_host.GetProjectFolder())) {
            complain("the main script " + options.mainScript + " is not in the project folder " +
                     options.project);
            return ExitStatus::Usage;
        }
        if (!osFiles().readWhole(m_mainScript)) {
            complainUnreadable(m_mainScript, osFiles().lastError());
            return ExitStatus::Failed;
        }
        return ExitStatus::Done;
    }

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
    std::string m_mainScript;
    std::optional<FileLock> m_lock;
    ExitStatus m_status = ExitStatus::Done;
    std::unique_ptr<ScriptManagerSession> m_session;
};

void printDifference(const std::string& path, const std::string& before, const std::string& after) {
    printPatch(unifiedDifference(before, after, givenPath(path), givenPath(path)));
}

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
        std::vector<std::string> needers;
        for (const size_t needer : manager.session().includedScripts().dependents(i)) {
            needers.push_back(included[needer].fileName);
        }
        const std::string neededBy = manager.session().neededBy(i);
        if (options.json) {
            scripts.push_back({{"filename", jsonText(entry.fileName)},
                               {"title", entry.script ? jsonText(entry.script->m_name) : ""},
                               {"template", entry.script.has_value()},
                               {"place", place},
                               {"version", jsonText(version)},
                               {"date", jsonText(date)},
                               {"neededBy", jsonTexts(needers)}});
        } else {
            printShown(entry.fileName + "\t" + place + "\t" + version + "\t" + date + "\t" +
                       (entry.script ? entry.text : "(USER)") +
                       (neededBy.empty() ? "" : "\tneeded by " + neededBy) + "\n");
        }
    }
    if (options.json) {
        printJson({{"mainScript", jsonText(givenPath(manager.mainScript()))}, {"scripts", scripts}});
    }
    return ExitStatus::Done;
}

nlohmann::ordered_json asJson(const AddPlan& plan) {
    nlohmann::ordered_json copies = nlohmann::ordered_json::array(), lines = nlohmann::ordered_json::array();
    for (const AddPlan::Copy& copy : plan.copies) {
        copies.push_back({{"source", jsonText(givenPath(copy.source))},
                          {"destination", jsonText(givenPath(copy.destination))},
                          {"overwrites", copy.overwrites}});
    }
    for (const AddPlan::Line& line : plan.lines) {
        lines.push_back({{"name", jsonText(line.name)},
                         {"need", !line.asked},
                         {"present", line.present},
                         {"found", line.found}});
    }
    return {{"summary", jsonText(withGivenPaths(plan.summary()))}, {"copies", copies}, {"includes", lines}};
}

ExitStatus addScripts(Manager& manager, const ScriptOptions& options) {
    std::vector<std::string> paths;
    for (const std::string& name : options.names) {
        const std::optional<std::string> file = manager.fileOf(name);
        if (!file) {
            return ExitStatus::Usage;
        }
        std::string path;
        if (manager.folders().LocateScript(*file, path) == ScriptPlace::NotFound) {
            complain(placeProblem(*file));
            return ExitStatus::Findings;
        }
        paths.push_back(path);
    }
    ScriptAdding adding(manager.host(), userPrompt());
    const AddPlan plan = adding.plan(paths);
    if (!plan.problem.empty()) {
        complain(plan.problem);
        return ExitStatus::Findings;
    }
    if (options.json) {
        printJson(asJson(plan));
    } else {
        printShown(withGivenPaths(plan.summary()) + "\n");
    }
    if (options.dryRun) {
        if (options.json) {
            return ExitStatus::Done;
        }
        for (const AddPlan::Copy& copy : plan.copies) {
            printShown("copy " + givenPath(copy.source) + " -> " + givenPath(copy.destination) + "\n");
        }
        printDifference(plan.main.path, plan.main.before, plan.main.after);
        return ExitStatus::Done;
    }
    if (adding.carryOut(plan) && adding.error().empty()) {
        return ExitStatus::Done;
    }
    complain(adding.error());
    return adding.declined() ? ExitStatus::Findings : ExitStatus::Failed;
}

// All of them in one rewrite, or none: those that need each other go together. The user's own scripts too, which
// the window leaves to their owner.
ExitStatus remove(Manager& manager, const ScriptOptions& options) {
    ScriptManagerSession& session = manager.session();
    std::set<size_t> chosen;
    std::vector<std::string> files;
    for (const std::string& name : options.names) {
        const std::optional<std::string> file = manager.fileOf(name);
        const std::optional<size_t> entry = file ? manager.includedIndex(*file) : std::nullopt;
        if (!entry) {
            if (file) {
                complain("the main script doesn't include " + *file);
            }
            return ExitStatus::Usage;
        }
        if (chosen.insert(*entry).second) {
            files.push_back(session.included()[*entry].fileName);
        }
    }
    std::set<size_t> needing;
    for (const size_t entry : chosen) {
        for (const size_t dependent : session.includedScripts().dependents(entry)) {
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
    const RemovePlan plan = planRemoval(manager.host(), files);
    if (options.dryRun && plan.problem.empty()) {
        printDifference(plan.main.path, plan.main.before, plan.main.after);
        return ExitStatus::Done;
    }
    const Outcome removed = removeIncludes(manager.host(), plan);
    if (!removed) {
        complain(removed.why());
    }
    return removed ? ExitStatus::Done : ExitStatus::Failed;
}

std::string withoutLineEnd(std::string line) {
    while (line.ends_with('\n')) {
        line.pop_back();
    }
    return line;
}

// What `zoka scripts update` is about to do with these entries of the list.
ExitStatus reportUpdates(Manager& manager, const ScriptOptions& options,
                         const std::vector<UpdateEntry>& entries) {
    const UpdatePlan plan = manager.session().updateRun().plan(entries);
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const UpdateEntry& entry : entries) {
        list.push_back({{"filename", jsonText(entry.fileName)},
                        {"line", jsonText(withoutLineEnd(entry.line))},
                        {"missingNeeds", jsonTexts(entry.missingNeeds)}});
        if (!options.json) {
            printShown(withoutLineEnd(entry.line) + "\n");
        }
    }
    nlohmann::ordered_json scripts = nlohmann::ordered_json::array();
    for (const UpdatePlan::Script& script : plan.scripts) {
        const ValueUpdatePlan& change = script.change;
        scripts.push_back({{"filename", jsonText(script.fileName)},
                           {"valuesKept", change.kept},
                           {"valuesWithoutPlace", change.unplaced.size()},
                           {"linesLost", change.ownLines}});
        if (!options.json) {
            printDifference(change.old.script.scriptPath, change.before, change.after);
        }
    }
    if (options.json) {
        printJson({{"updates", list},
                   {"scripts", scripts},
                   {"includes", jsonTexts(plan.included)},
                   {"problems", jsonTexts(plan.problems)}});
    } else {
        printDifference(plan.main.path, plan.main.before, plan.main.after);
    }
    for (const UpdatePlan::Script& script : plan.scripts) {
        if (script.change.ownLines > 0) {
            complain(script.fileName +
                     ": lines that the template lacks: " + std::to_string(script.change.ownLines) +
                     "; it is kept beside the new one as " + script.fileName + ".N.bak");
        }
    }
    for (const std::string& problem : plan.problems) {
        complain(problem);
    }
    return plan.problems.empty() ? ExitStatus::Findings : ExitStatus::Failed;
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
    if ((options.json || options.dryRun) && (options.json || !entries.empty())) {
        const ExitStatus found = reportUpdates(manager, options, entries);
        if (options.dryRun) {
            return entries.empty() ? ExitStatus::Done : found;
        }
    } else if (options.dryRun) {
        return ExitStatus::Done;
    }
    bool agreed = true;
    if (files.empty()) {
        agreed = session.updateListed();
    } else if (!entries.empty()) {
        session.updateEntries(entries);
    }
    if (!agreed) {
        complain("declined; nothing was updated");
        return ExitStatus::Findings;
    }
    if (!options.json) {
        for (const std::string& file : files) {
            if (!listed.contains(file)) {
                printShown(file + ": nothing to update\n");
            }
        }
        if (!session.status().empty()) {
            printShown(session.status() + "\n");
        }
    }
    if (!session.updateRun().problems().empty()) {
        return ExitStatus::Failed;
    }
    std::string unplaced = session.updateRun().unplaced();
    if (unplaced.empty()) {
        return session.updateRun().leftAlone().empty() ? ExitStatus::Done : ExitStatus::Findings;
    }
    std::erase(unplaced, '\r');
    complain("no place for these values, kept in NAME.zoka.old, next to each script:\n" + unplaced);
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
        const RestorePlan plan = planRestore(manager.host(), file);
        if (!plan.problem.empty()) {
            complain(file + ": " + plan.problem);
            status = ExitStatus::Findings;
        } else if (options.dryRun) {
            printShown("copy " + givenPath(plan.source) + " -> " + givenPath(plan.destination) + "\n");
        } else {
            status = manager.session().restore(file) ? status : ExitStatus::Findings;
        }
    }
    return status;
}

ExitStatus notes(Manager& manager, const ScriptOptions& options) {
    const std::string text = withGivenPaths(manager.session().notes());
    if (options.json) {
        printJson({{"notes", jsonText(text)}});
    } else {
        printShown(text);
    }
    return ExitStatus::Done;
}

// The included scripts that need this one and those that need them, as a tree that has each once. Far down it is no
// longer moved to the right: a long chain would fill the page with blanks.
ExitStatus why(Manager& manager, const ScriptOptions& options) {
    constexpr size_t kDeepest = 20;
    const std::optional<std::string> file = manager.fileOf(options.names.front());
    if (!file) {
        return ExitStatus::Usage;
    }
    const IncludedScripts& scripts = manager.session().includedScripts();
    const std::optional<size_t> start = scripts.byFile(*file);
    if (!start) {
        printShown("the main script doesn't include " + *file + "\n");
        return ExitStatus::Findings;
    }
    const std::vector<IncludedScripts::Need> needs = scripts.allThatNeed(*start);
    const auto name = [&scripts](size_t script) { return scripts.all()[script].fileName; };
    if (options.json) {
        std::vector<std::string> names;
        nlohmann::ordered_json tree = nlohmann::ordered_json::array();
        for (const auto& [script, needed, depth] : needs) {
            names.push_back(name(script));
            tree.push_back({{"filename", jsonText(name(script))}, {"needs", jsonText(name(needed))}});
        }
        printJson({{"filename", jsonText(name(*start))}, {"neededBy", jsonTexts(names)}, {"tree", tree}});
        return ExitStatus::Done;
    }
    printShown(name(*start) +
               (needs.empty() ? " is included by itself: no included script needs it\n" : "\n"));
    for (const auto& [script, needed, depth] : needs) {
        printShown(
            std::string(2 * std::min(depth, kDeepest), ' ') + name(script) +
            (depth > kDeepest ? " (level " + std::to_string(depth) + ", needs " + name(needed) + ")" : "") +
            "\n");
    }
    return ExitStatus::Done;
}

}  // namespace

void addScriptCommands(const Command& app, Work& chosen) {
    const Command group = app.add("scripts", "Manage the scripts that a project includes",
                                  "zoka scripts list -p game -t suite/templates");
    const auto add = [&](const char* name, const char* what, const char* example,
                         ExitStatus (*work)(Manager&, const ScriptOptions&), const auto&... more) {
        const auto project = [](const Command& command, ScriptOptions& options) {
            command.option("-p,--project", options.project, "The project folder").showDefault();
            command.option("-t,--templates", options.templates, "The template folder").required();
            command.option("-c,--catalogue", options.catalogue,
                           "The catalogue [template_6.xml of that folder]");
            command.option("-m,--main", options.mainScript,
                           "The main script, where the project has several scripts");
        };
        addCommand<ScriptOptions>(
            group,
            {name, what, std::string("zoka scripts ") + name + " -p game -t suite/templates" + example},
            chosen,
            [work](const ScriptOptions& options) {
                Manager manager(options);
                return manager.status() == ExitStatus::Done ? work(manager, options) : manager.status();
            },
            project, more...);
    };
    const auto names = [](bool required, bool one = false) {
        return [=](const Command& command, ScriptOptions& options) {
            Option option = command.option("NAME", options.names, "Title or file name of a script");
            option.required(required);
            if (one) {
                option.one();
            }
        };
    };
    // A command that changes the project.
    const auto dryRun = [](const Command& command, ScriptOptions& options) {
        options.changes = true;
        command.flag("-n,--dry-run", options.dryRun,
                     "Change nothing; print what would be changed and copied");
    };

    add("list", "List the included scripts", "", list, kJson);
    add("add", "Include scripts and what they need, in one rewrite of the main script",
        " fog.kez camera_.kez", addScripts, names(true), dryRun, kJson);
    add("remove", "Take scripts out of the main script; their files stay", " fog.kez", remove, names(true),
        dryRun);
    add("update", "Bring scripts up to the template folder's; without NAME, all that differ", " --dry-run",
        update, names(false), dryRun, kJson);
    add("restore", "Copy scripts that the project has lost from the template folder", " fog.kez", restore,
        names(true), dryRun);
    add("notes", "Print the report of the notes page", "", notes, kJson);
    add("why", "Tell which included scripts need one, directly or not", " noise.kez", why, names(true, true),
        kJson);
}

}  // namespace zoka::cli
