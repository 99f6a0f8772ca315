#include "templates/ScriptUpdate.h"

#include <algorithm>
#include <map>
#include <optional>

#include "customize/NumberedScripts.h"
#include "templates/IncludedScripts.h"
#include "util/KeyedHash.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {

namespace {

constexpr const char* kStoppedText = "Stopped: not every script was compared.";

// The project's copy of a script beside its template.
struct Copies {
    ScriptFacts own, original;  // "-1" for what can't be read
    bool equal = false;         // byte for byte, a numbered copy with its number
    std::string unread = {};    // why the project's copy can't be read; else empty

    bool sameVersion() const { return own.version == original.version && own.date == original.date; }
};

Copies compare(const ScriptFolders& folders, const std::string& fileName) {
    Copies copies;
    const std::string path = folders.projectPath(fileName);
    const std::optional<std::string> own = osFiles().readWhole(path);
    if (!own) {
        copies.unread = "Can't read '" + path + "': " + osFiles().lastError();
    }
    const std::optional<std::string> templatePath = folders.templateOf(fileName);
    const std::optional<std::string> original =
        templatePath ? templateTextFor(path, *templatePath) : std::nullopt;
    if (own) {
        copies.own = parseScriptFacts(*own);
    }
    if (original) {
        copies.original = parseScriptFacts(*original);
    }
    copies.equal = own && original && *own == *original;
    return copies;
}

}  // namespace

std::vector<OwnLines> UpdatePlan::ownLines() const {
    std::vector<OwnLines> own;
    for (const Script& script : scripts) {
        if (script.change.ownLines > 0) {
            own.push_back({script.fileName, script.change.ownLines});
        }
    }
    return own;
}

int ScriptUpdate::FillUpdateList(bool showAll, JobProgress* progress) {
    m_entries.clear();
    m_differing.clear();
    m_unread.clear();
    m_ownScripts = m_stopped = false;
    std::vector<std::string> names;
    if (const auto mainPath = m_host.GetMainScriptPath()) {
        if (const Outcome read = readIncludes(*mainPath, names); !read) {
            m_unread.push_back(read.why());
        }
    }
    KeyedSet<std::string> included;
    for (const std::string& name : names) {
        included.insert(lowered(name));
    }

    ScriptFolders folders(m_host);
    folders.listOnce();
    std::map<std::string, Copies> compared;  // by lowered names: one may be included twice
    for (size_t i = 0; i < names.size(); ++i) {
        const std::string& name = names[i];
        if (!mayContinue(progress, i, names.size(), name)) {
            m_stopped = true;
            break;
        }
        const auto record = templateRecordOf(m_catalogue, name);
        if (!record) {
            m_ownScripts = true;
            continue;
        }
        const CScriptElm script = m_catalogue.script(*record);
        const bool isCopy = !equalNoCase(script.m_filename, name);
        const std::string title = isCopy ? script.DisplayName() + " (" + name + ")" : script.m_name;
        addEntryOfNeeds(script, title, name, included);
        if (folders.LocateScript(name) != ScriptPlace::Project) {
            continue;
        }
        if (showAll) {
            m_entries.push_back({title, name, {}});
            continue;
        }
        const auto [found, isNew] = compared.try_emplace(lowered(name));
        if (isNew) {
            found->second = compare(folders, name);
        }
        const auto& [own, original, equal, unread] = found->second;
        if (!unread.empty()) {
            if (isNew) {
                m_unread.push_back(unread);
            }
            continue;
        }
        if (!found->second.sameVersion()) {
            m_entries.push_back({title + "--[Local ver: " + own.version + " date: " + own.date +
                                     " --> Template ver: " + original.version + " date: " + original.date +
                                     "]\n",
                                 name,
                                 {}});
        } else if (!equal && isNew) {
            m_differing.push_back(name);
        }
    }
    return 1;
}

void ScriptUpdate::addEntryOfNeeds(const CScriptElm& script, const std::string& title,
                                   const std::string& fileName, const KeyedSet<std::string>& included) {
    UpdateEntry entry{title + "--Is missing the following Needs:", fileName, {}};
    for (const std::string& need : needsOf(script, fileName)) {
        if (included.contains(lowered(need))) {
            continue;
        }
        entry.line += " \n" + need;
        entry.missingNeeds.push_back(need);
    }
    if (!entry.missingNeeds.empty()) {
        m_entries.push_back(std::move(entry));
    }
}

std::string ScriptUpdate::listedText() const {
    const std::string count =
        "Scripts that differ from the template folder: " + std::to_string(m_entries.size());
    return m_stopped ? count + ". " + kStoppedText : count;
}

std::string ScriptUpdate::nothingListedText() const {
    if (!m_unread.empty()) {
        std::string text = "Not every script could be compared:";
        for (const std::string& why : m_unread) {
            text += "\n" + why;
        }
        return m_stopped ? text + "\n" + kStoppedText : text;
    }
    if (m_stopped) {
        return kStoppedText;
    }
    if (!m_differing.empty()) {
        return "Versions and dates are the template folder's, but these scripts have other lines or "
               "values: " +
               joined(m_differing);
    }
    return m_ownScripts ? "Every template script in the project folder is as the template folder has it."
                        : "Every script in the project folder is as the template folder has it.";
}

UpdatePlan ScriptUpdate::plan(const std::vector<UpdateEntry>& entries, JobProgress* progress,
                              bool* stopped) const {
    UpdatePlan plan;
    ScriptFolders folders(m_host);
    folders.listOnce();
    KeyedSet<std::string> done;
    for (size_t i = 0; i < entries.size(); ++i) {
        const std::string& fileName = entries[i].fileName;
        for (const std::string& need : entries[i].missingNeeds) {
            std::string path = need;
            folders.LocateScript(need, path);
            plan.needs.push_back(std::move(path));
        }
        // Comparing is the first half of the work.
        if (!mayContinue(progress, i, 2 * entries.size(), fileName)) {
            if (stopped) {
                *stopped = true;
            }
            return plan;
        }
        std::string path;
        const ScriptPlace place = folders.LocateScript(fileName, path);
        // One that is used from the template folder is its own template.
        if (place == ScriptPlace::Template || !done.insert(lowered(fileName)).second) {
            continue;
        }
        const std::optional<std::string> original = folders.templateOf(fileName);
        if (place == ScriptPlace::NotFound) {
            plan.problems.push_back(placeProblem(fileName));
        } else if (osFiles().isLink(path)) {
            plan.problems.push_back(fileName + ": a link stands in its place");
        } else if (!original) {
            plan.problems.push_back(fileName + ": the template folder has no such script");
        } else if (auto change = planValueUpdate(path, *original); !change) {
            plan.problems.push_back(fileName + ": " + change.why());
        } else if (change->before == change->after) {
            plan.unchanged.push_back(fileName);
        } else {
            plan.scripts.push_back({fileName, std::move(*change)});
        }
    }
    if (plan.needs.empty()) {
        return plan;
    }
    const std::optional<std::string> mainPath = m_host.GetMainScriptPath();
    const std::optional<std::string> text = mainPath ? osFiles().readWhole(*mainPath) : std::nullopt;
    if (!text) {
        plan.problems.push_back(mainPath ? "Can't read '" + *mainPath + "': " + osFiles().lastError()
                                         : "The project has no main script.");
        return plan;
    }
    Insertion insertion = planInsertion(*text, *mainPath, plan.needs, folders.locator());
    plan.main = {*mainPath, *text, *text};
    if (!insertion.problem.empty()) {
        plan.problems.push_back(insertion.problem);
    } else {
        plan.main.after = *applyInsertion(*text, insertion);
        plan.included = std::move(insertion.names);
    }
    return plan;
}

void ScriptUpdate::forgetLastRun() {
    m_problems.clear();
    m_updated.clear();
    m_included.clear();
    m_leftAlone.clear();
    m_unplaced.clear();
}

bool ScriptUpdate::UpdateAll(JobProgress* progress) {
    forgetLastRun();
    // Of what was not compared nobody can say that it is up to date.
    if (m_entries.empty() && (m_stopped || !m_unread.empty())) {
        m_problems = m_unread;
        m_prompt.tell(nothingListedText());
        return false;
    }
    if (m_entries.empty()) {
        m_prompt.ask("Everything Up-to-Date.", "Can't Update", PromptButtons::Ok, PromptIcon::Information);
        return true;
    }
    if (m_prompt.ask("Update All Scripts Listed?", "ZOKA", PromptButtons::YesNo, PromptIcon::None) !=
        PromptAnswer::Yes) {
        return false;
    }
    update(m_entries, progress);
    return true;
}

void ScriptUpdate::UpdateSelected(int index) {
    forgetLastRun();
    if (index >= 0 && static_cast<size_t>(index) < m_entries.size()) {
        update({m_entries[static_cast<size_t>(index)]}, nullptr);
    }
}

void ScriptUpdate::UpdateEntries(const std::vector<UpdateEntry>& entries) {
    forgetLastRun();
    update(entries, nullptr);
}

void ScriptUpdate::update(const std::vector<UpdateEntry>& entries, JobProgress* progress) {
    bool stopped = false;
    UpdatePlan toDo = plan(entries, progress, &stopped);
    if (!stopped) {
        leaveOwnLines(toDo);
        carryOut(toDo, progress);
    }
    FillUpdateList(false);
    if (m_problems.empty()) {
        return;
    }
    std::string text;
    const auto add = [&text](const char* heading, auto first, auto last) {
        if (first != last) {
            (text += text.empty() ? "" : "\n\n") += heading;
        }
        std::for_each(first, last, [&text](const std::string& problem) { text += "\n" + problem; });
    };
    const auto halfDone = m_problems.end() - static_cast<std::ptrdiff_t>(m_halfDone);
    add("Not updated:", m_problems.begin(), halfDone);
    add("Updated, but not all of it:", halfDone, m_problems.end());
    m_prompt.tell(text);
}

// Asks about scripts with lines that their templates lack; those that the user keeps leave the plan.
void ScriptUpdate::leaveOwnLines(UpdatePlan& plan) {
    const std::vector<OwnLines> own = plan.ownLines();
    if (own.empty() || m_prompt.ask(ownLinesQuestion(own), "ZOKA", PromptButtons::YesNoDefaultNo,
                                    PromptIcon::Warning) == PromptAnswer::Yes) {
        return;
    }
    for (const OwnLines& script : own) {
        m_leftAlone.push_back(script.script);
    }
    std::erase_if(plan.scripts, [](const UpdatePlan::Script& script) { return script.change.ownLines > 0; });
}

void ScriptUpdate::carryOut(const UpdatePlan& plan, JobProgress* progress) {
    m_problems = plan.problems;
    includeMissing(plan);
    std::vector<std::string> halfDone;
    const size_t total = plan.scripts.size();
    for (size_t i = 0; i < total; ++i) {
        const UpdatePlan::Script& script = plan.scripts[i];
        if (!mayContinue(progress, total + i, 2 * total, script.fileName)) {
            break;
        }
        const auto updated = updateKeepingValues(script.change, FileKind::Generated);
        if (updated) {
            noteUpdated(script);
            if (!updated->empty()) {
                halfDone.push_back(script.fileName + ": " + *updated);
            }
        } else {
            m_problems.push_back(script.fileName + ": " + updated.why());
        }
    }
    m_halfDone = halfDone.size();
    m_problems.insert(m_problems.end(), halfDone.begin(), halfDone.end());
}

void ScriptUpdate::noteUpdated(const UpdatePlan::Script& script) {
    m_updated.push_back(script.fileName);
    const std::string unplaced = unplacedText(script.change.unplaced);
    if (unplaced.empty()) {
        return;
    }
    if (!m_unplaced.empty()) {
        m_unplaced += "\r\n";
    }
    m_unplaced += script.fileName + "\r\n" + unplaced;
}

void ScriptUpdate::includeMissing(const UpdatePlan& plan) {
    if (plan.main.before == plan.main.after) {
        return;
    }
    m_included = plan.included;
    const auto again = [&](const std::string& text) {
        const ScriptFolders folders(m_host);
        const Insertion insertion = planInsertion(text, plan.main.path, plan.needs, folders.locator());
        m_included = insertion.names;
        return applyInsertion(text, insertion);
    };
    if (const Outcome written = writeMainScript(plan.main, again); written) {
        m_host.MainScriptChanged();
    } else {
        m_problems.push_back(written.why());
        m_included.clear();
    }
}

}  // namespace zoka
