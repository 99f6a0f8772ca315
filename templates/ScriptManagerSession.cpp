#include "templates/ScriptManagerSession.h"

#include <algorithm>

#include "templates/NotesReport.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLErrorText.h"

namespace zoka {

namespace {

constexpr const char* kNothingAdded = "<none>";

std::string textOf(PageError::Code code, const std::string& script) {
    return code == PageError::CatalogueNotLoaded
               ? "The template catalogue can't be loaded."
               : "The script " + script + " is not in the template catalogue.";
}

}  // namespace

PageError::PageError(Code code, const std::string& script)
    : std::runtime_error(textOf(code, script)), m_code(code) {}

bool leavesDamagedCatalogue(UserPrompt& prompt, const std::string& path, const XMLResults& results) {
    std::string text = "The template catalogue can't be read:\n" + path;
    if (results.line > 0) {
        text += ", line " + std::to_string(results.line) + ", column " + std::to_string(results.column);
    }
    return prompt.ask(
               text + "\n" + xmlErrorMessage(results, {}, fileNameOf(path)) +
                   "\n\nLeave Add Script? Nothing has been changed.\nNo reads the catalogue all the same, "
                   "which ends the editor, and unsaved work in the level with it.",
               kManagerTitle, PromptButtons::YesNo, PromptIcon::Error) == PromptAnswer::Yes;
}

ScriptManagerSession::ScriptManagerSession(ZunEditorInterface& host, CTemplateData& catalogue,
                                           CatalogueLoader loader, UserPrompt& prompt)
    : m_host(host),
      m_catalogue(catalogue),
      m_loader(std::move(loader)),
      m_prompt(prompt),
      m_update(host, catalogue, prompt),
      m_included(host, catalogue) {}

void ScriptManagerSession::needCatalogue(JobProgress* progress) {
    if (m_catalogue.IsEmpty() && !m_loader(m_catalogue, progress)) {
        throw PageError(PageError::CatalogueNotLoaded);
    }
}

bool ScriptManagerSession::open(JobProgress* progress) {
    try {
        needCatalogue(progress);
    } catch (const PageError& error) {
        m_prompt.tell(error.what());
        return false;
    }
    if (!m_search && !prepareSearch(progress)) {
        return false;
    }
    refresh();
    return true;
}

bool ScriptManagerSession::prepareSearch(JobProgress* progress) {
    m_search = ScriptSearch::make(m_catalogue, progress);
    return m_search != nullptr;
}

void ScriptManagerSession::refresh() {
    readIncluded();
    m_updatesListed = false;
}

// A main script that can't be read leaves the lists empty, which is told once.
void ScriptManagerSession::readIncluded() {
    const Outcome read = m_included.read();
    if (!read && m_includedRead) {
        m_prompt.tell(read.why());
    }
    m_includedRead = bool(read);
}

// --- Add

std::vector<std::string> ScriptManagerSession::classes() const {
    std::vector<std::string> list;
    m_catalogue.GetClassList(list);
    return list;
}

const std::vector<std::uint32_t>& ScriptManagerSession::search(const std::string& className,
                                                               const std::string& query) {
    if (!m_search) {
        prepareSearch(nullptr);
    }
    return m_search->find(className, query);
}

bool ScriptManagerSession::isIncluded(std::uint32_t record) const {
    // Of records with one file name the include list knows the first.
    const auto first = m_catalogue.recordByFilenameNoCase(m_catalogue.rows()[record].filename);
    return first && m_included.contains(*first);
}

bool ScriptManagerSession::canAdd(std::uint32_t record) const {
    return !isIncluded(record) || IsNumberedTemplate(std::string(m_catalogue.rows()[record].filename));
}

ScriptDetails ScriptManagerSession::details(std::uint32_t record) const {
    const CScriptElm script = m_catalogue.script(record);
    ScriptDetails details{script.m_filename,
                          script.m_class,
                          script.m_vers,
                          script.m_date,
                          script.m_engreq.AsText(),
                          onOneLine(script.m_desc, "\r\n"),
                          {}};
    for (const CScriptSection& section : script.m_sections) {
        for (const CScriptAction& action : section.m_actions) {
            if (!details.actions.empty()) {
                details.actions += "\r\n";
            }
            details.actions += action.m_name;
            if (!action.m_desc.empty()) {
                details.actions += " - " + onOneLine(action.m_desc, "\r\n");
            }
        }
    }
    return details;
}

std::string ScriptManagerSession::pathsOf(std::span<const std::uint32_t> records,
                                          std::vector<std::string>& paths) const {
    const ScriptFolders folders(m_host);
    for (const std::uint32_t record : records) {
        const std::string name(m_catalogue.rows()[record].filename);
        std::string path;
        if (folders.LocateScript(name, path) == ScriptPlace::NotFound) {
            return placeProblem(name);
        }
        paths.push_back(std::move(path));
    }
    return {};
}

AddPlan ScriptManagerSession::plan(std::span<const std::uint32_t> records) {
    std::vector<std::string> paths;
    AddPlan none;
    none.problem = pathsOf(records, paths);
    return none.problem.empty() ? ScriptAdding(m_host, m_prompt).plan(paths) : none;
}

bool ScriptManagerSession::add(std::optional<std::uint32_t> record) {
    return record && add(std::span(&*record, 1));
}

bool ScriptManagerSession::add(std::span<const std::uint32_t> records) {
    if (records.empty()) {
        return false;
    }
    m_status.clear();
    std::vector<std::string> paths;
    if (const std::string problem = pathsOf(records, paths); !problem.empty()) {
        m_status = "Not added: " + problem;
        m_prompt.tell("Can't find script file (1129).\nFile not added.");
        m_lastAdded = kNothingAdded;
        return false;
    }
    ScriptAdding adding(m_host, m_prompt);
    const bool added = adding.AddScriptsToProject(paths) && adding.error().empty();
    m_lastAdded = added ? std::string(m_catalogue.rows()[records.back()].displayName()) : kNothingAdded;
    if (added) {
        m_status = adding.changed()
                       ? "Added: " + m_lastAdded
                       : std::string(fileNameOf(paths.back())) + " is already included; nothing to add";
    } else {
        m_status = "Not added: " + adding.error();
        if (!adding.declined()) {
            m_prompt.tell("Not added:\n" + adding.error());
        }
    }
    refresh();
    return added;
}

// --- Remove

bool ScriptManagerSession::FindDependents(const std::string& title, std::vector<std::string>& titles) {
    titles.clear();
    const bool loaded = !m_catalogue.IsEmpty();
    needCatalogue(nullptr);
    if (!loaded) {
        readIncluded();
    }
    const IncludedScript* const self = m_included.byText(title);
    std::string fileName;
    if (self && self->script) {
        // A copy has a name of its own; else the catalogue's spelling counts.
        fileName =
            equalNoCase(self->script->m_filename, self->fileName) ? self->script->m_filename : self->fileName;
    } else if (!m_catalogue.GetScriptFilename(fileName, title, false)) {
        throw PageError(PageError::ScriptNotInCatalogue, title);
    }
    for (const size_t index : m_included.dependents(fileName, self)) {
        titles.push_back(included()[index].text);
    }
    return !titles.empty();
}

std::string ScriptManagerSession::neededBy(size_t index) const {
    std::vector<std::string> titles;
    for (const size_t dependent : m_included.dependents(index)) {
        titles.push_back(included()[dependent].text);
    }
    return joined(titles);
}

std::string ScriptManagerSession::removalProblem(size_t index) const {
    if (!included()[index].script) {
        return "Not a template script: delete its include line from the main script yourself.";
    }
    const std::string needed = neededBy(index);
    return needed.empty() ? std::string() : "Can't be removed yet: needed by " + needed;
}

void ScriptManagerSession::refuseRemoval(const std::vector<std::string>& dependents) {
    std::string text = "The following scripts must be removed first: ";
    for (const std::string& title : dependents) {
        text += "\n\n" + title;
    }
    m_prompt.ask(text, "Can't Remove Script", PromptButtons::Ok, PromptIcon::Error);
}

bool ScriptManagerSession::remove(int index) {
    if (index < 0 || static_cast<size_t>(index) >= included().size()) {
        return false;
    }
    m_status.clear();
    const IncludedScript entry = included()[static_cast<size_t>(index)];
    bool removed = false;
    try {
        std::vector<std::string> titles;
        if (FindDependents(entry.text, titles)) {
            refuseRemoval(titles);
            return false;
        }
        const Outcome outcome = RemoveInclude(m_host, entry.fileName);
        removed = bool(outcome);
        m_status = removed ? "Removed: " + entry.text : "Not removed: " + outcome.why();
        if (!removed) {
            m_prompt.tell("Not removed:\n" + outcome.why());
        }
    } catch (const PageError& error) {
        m_prompt.tell(error.what());
    } catch (const EmptyScriptError& error) {
        m_prompt.tell(std::string("Not removed:\n") + error.what());
    }
    refresh();
    return removed;
}

std::optional<std::string> ScriptManagerSession::pathOf(size_t index) const {
    std::string path;
    const ScriptFolders folders(m_host);
    if (folders.LocateScript(included()[index].fileName, path) == ScriptPlace::NotFound) {
        return {};
    }
    return path;
}

bool ScriptManagerSession::isUsedFromTemplates(size_t index) const {
    return ScriptFolders(m_host).LocateScript(included()[index].fileName) == ScriptPlace::Template;
}

bool ScriptManagerSession::copyIntoProject(size_t index) {
    const std::string name = included()[index].fileName;
    const bool copied = RestoreFromTemplate(m_host, name, m_prompt);
    m_status = copied ? "Copied into the project: " + name : "";
    refresh();
    return copied;
}

// --- Notes

std::string ScriptManagerSession::notes(JobProgress* progress) {
    std::string text = std::string("Project Manager: ") + kReportVersion + "\r\n";
    try {
        needCatalogue(nullptr);
        BuildNotesReport(text, m_host, m_catalogue, m_host.GetMainScriptPath().value_or(""), progress);
    } catch (const PageError& error) {
        m_prompt.tell(error.what());
    }
    return text;
}

// --- Update

const std::vector<UpdateEntry>& ScriptManagerSession::updates(JobProgress* progress) {
    if (!m_updatesListed) {
        m_update.FillUpdateList(false, progress);
    }
    m_updatesListed = true;
    return m_update.entries();
}

UpdatePlan ScriptManagerSession::updatePlan(size_t index) {
    return m_update.plan({updates()[index]});
}

void ScriptManagerSession::tellUpdated(bool ran) {
    m_status.clear();
    const auto tell = [this](const char* what, const std::vector<std::string>& names) {
        if (!names.empty()) {
            m_status += (m_status.empty() ? "" : "; ") + (what + joined(names));
        }
    };
    tell("Updated: ", m_update.updated());
    tell("Included: ", m_update.included());
    tell("Left as they are: ", m_update.leftAlone());
    if (!m_update.unplaced().empty()) {
        m_status += "; some values found no place";
    }
    if (ran && m_status.empty() && m_update.problems().empty()) {
        m_status = "Nothing had to be changed";
    }
    readIncluded();
}

void ScriptManagerSession::updateSelected(int index) {
    updates();
    m_update.UpdateSelected(index);
    tellUpdated();
}

void ScriptManagerSession::updateEntries(const std::vector<UpdateEntry>& entries) {
    m_update.UpdateEntries(entries);
    tellUpdated();
}

void ScriptManagerSession::updateAll(JobProgress* progress) {
    m_updatesListed = true;  // all of them, while the user is asked
    m_update.FillUpdateList(true);
    updateListed(progress);
}

bool ScriptManagerSession::updateListed(JobProgress* progress) {
    const bool any = !updates().empty();
    const bool agreed = m_update.UpdateAll(progress);
    m_update.FillUpdateList(false);
    tellUpdated(any && agreed);
    return agreed;
}

std::vector<std::string> ScriptManagerSession::restorable() const {
    ScriptFolders folders(m_host);
    folders.listOnce();
    std::vector<std::string> names;
    for (const IncludedScript& entry : included()) {
        if (entry.script && folders.LocateScript(entry.fileName) == ScriptPlace::Template) {
            names.push_back(entry.fileName);
        }
    }
    return names;
}

bool ScriptManagerSession::restore(const std::string& fileName) {
    const bool restored = RestoreFromTemplate(m_host, fileName, m_prompt);
    m_status = restored ? "Restored: " + fileName : "";
    refresh();
    return restored;
}

}  // namespace zoka
