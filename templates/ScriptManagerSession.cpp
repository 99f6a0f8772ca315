#include "templates/ScriptManagerSession.h"

#include <algorithm>

#include "templates/NotesReport.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {

namespace {

constexpr const char* kNothingAdded = "<none>";

const char* textOf(PageError::Code code) {
    return code == PageError::CatalogueNotLoaded
               ? "The template catalogue can't be loaded (page error 1)."
               : "The script is not in the template catalogue (page error 2).";
}

// For an edit field: every line end is CR LF.
std::string inEditLines(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\r') {
            continue;
        }
        if (c == '\n') {
            result += '\r';
        }
        result += c;
    }
    return result;
}

std::string joined(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items) {
        text += (text.empty() ? "" : ", ") + item;
    }
    return text;
}

}  // namespace

PageError::PageError(Code code) : std::runtime_error(textOf(code)), m_code(code) {}

ScriptManagerSession::ScriptManagerSession(ZunEditorInterface& host, CTemplateData& catalogue,
                                           CatalogueLoader loader, ScriptUpdater& updater, UserPrompt& prompt)
    : m_host(host),
      m_catalogue(catalogue),
      m_loader(std::move(loader)),
      m_prompt(prompt),
      m_update(host, catalogue, updater, prompt) {}

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

std::optional<std::uint32_t> ScriptManagerSession::templateOf(const std::string& fileName) const {
    if (const auto record = m_catalogue.recordByFilenameNoCase(fileName)) {
        return record;
    }
    const std::string original = numberedTemplateOf(fileName);
    return original.empty() ? std::nullopt : m_catalogue.recordByFilenameNoCase(original);
}

void ScriptManagerSession::readIncluded() {
    m_included.clear();
    m_byText.clear();
    m_needers.clear();
    m_includedRecords.clear();
    std::vector<std::string> names;
    if (const auto mainPath = m_host.GetMainScriptPath()) {
        ReadIncludeList(*mainPath, names);
    }
    for (std::string& name : names) {
        IncludedScript entry{name, name, {}};
        if (const auto record = templateOf(name)) {
            entry.script = m_catalogue.script(*record);
            entry.text = entry.script->DisplayName();
            // A title stands for one file: where it would mean another, the file name makes it plain.
            const auto named = m_catalogue.findByName(entry.text);
            if (!named || !equalNoCase(named->m_filename, name)) {
                entry.text += " (" + name + ")";
            }
            m_includedRecords.insert(*record);
        }
        const size_t index = m_included.size();
        m_byText.try_emplace(entry.text, index);
        if (entry.script) {
            for (const std::string& need : entry.script->m_needs) {
                std::vector<size_t>& needers = m_needers[need];
                if (needers.empty() || needers.back() != index) {
                    needers.push_back(index);
                }
            }
        }
        m_included.push_back(std::move(entry));
    }
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
    return first && m_includedRecords.contains(*first);
}

ScriptDetails ScriptManagerSession::details(std::uint32_t record) const {
    const CScriptElm script = m_catalogue.script(record);
    ScriptDetails details{script.m_filename,
                          script.m_class,
                          script.m_vers,
                          script.m_date,
                          script.m_engreq.AsText(),
                          inEditLines(script.m_desc),
                          {}};
    for (const CScriptSection& section : script.m_sections) {
        for (const CScriptAction& action : section.m_actions) {
            if (!details.actions.empty()) {
                details.actions += "\r\n";
            }
            details.actions += action.m_name;
            if (!action.m_desc.empty()) {
                details.actions += " - " + inEditLines(action.m_desc);
            }
        }
    }
    return details;
}

bool ScriptManagerSession::pathsOf(std::span<const std::uint32_t> records,
                                   std::vector<std::string>& paths) const {
    const ScriptFolders folders(m_host);
    for (const std::uint32_t record : records) {
        std::string path;
        if (folders.LocateScript(std::string(m_catalogue.rows()[record].filename), path) ==
            ScriptPlace::NotFound) {
            return false;
        }
        paths.push_back(std::move(path));
    }
    return true;
}

AddPlan ScriptManagerSession::plan(std::span<const std::uint32_t> records) {
    std::vector<std::string> paths;
    if (pathsOf(records, paths)) {
        AddPlan plan = ScriptAdding(m_host, m_prompt).plan(paths);
        if (plan.problem.empty() && plan.before.empty()) {
            plan.problem = "The main script is empty or can't be read.";
        }
        return plan;
    }
    AddPlan none;
    none.problem = "The script file is not found.";
    return none;
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
    if (!pathsOf(records, paths)) {
        m_prompt.tell("Can't find script file (1129).\nFile not added.");
        m_lastAdded = kNothingAdded;
        return false;
    }
    ScriptAdding adding(m_host, m_prompt);
    const bool added = adding.AddScriptsToProject(paths) && adding.error().empty();
    m_lastAdded = added ? std::string(m_catalogue.rows()[records.back()].displayName()) : kNothingAdded;
    if (!added) {
        m_status = "Not added: " + adding.error();
    } else {
        m_status = adding.changed() ? "Added: " + m_lastAdded
                                    : "Nothing to add: " + m_lastAdded + " is included already";
    }
    refresh();
    return added;
}

// --- Remove

std::vector<size_t> ScriptManagerSession::dependentsOf(const std::string& fileName,
                                                       const IncludedScript* self) const {
    std::vector<size_t> dependents;
    const auto found = m_needers.find(fileName);
    if (found == m_needers.end()) {
        return dependents;
    }
    for (const size_t index : found->second) {
        if (!self || m_included[index].text != self->text) {
            dependents.push_back(index);
        }
    }
    return dependents;
}

bool ScriptManagerSession::FindDependents(const std::string& title, std::vector<std::string>& titles) {
    titles.clear();
    const bool loaded = !m_catalogue.IsEmpty();
    needCatalogue(nullptr);
    if (!loaded) {
        readIncluded();
    }
    const auto entry = m_byText.find(title);
    const IncludedScript* const self = entry == m_byText.end() ? nullptr : &m_included[entry->second];
    std::string fileName;
    if (self && self->script) {
        // A copy has a name of its own; else the catalogue's spelling counts.
        fileName =
            equalNoCase(self->script->m_filename, self->fileName) ? self->script->m_filename : self->fileName;
    } else if (!m_catalogue.GetScriptFilename(fileName, title, false)) {
        throw PageError(PageError::ScriptNotInCatalogue);
    }
    for (const size_t index : dependentsOf(fileName, self)) {
        titles.push_back(m_included[index].text);
    }
    return !titles.empty();
}

std::vector<size_t> ScriptManagerSession::dependents(size_t index) const {
    const IncludedScript& entry = m_included[index];
    const bool own = entry.script && equalNoCase(entry.script->m_filename, entry.fileName);
    return dependentsOf(own ? entry.script->m_filename : entry.fileName, &entry);
}

std::string ScriptManagerSession::neededBy(size_t index) const {
    std::vector<std::string> titles;
    for (const size_t dependent : dependents(index)) {
        titles.push_back(m_included[dependent].text);
    }
    return titles.empty() ? std::string() : "needed by " + joined(titles);
}

void ScriptManagerSession::refuseRemoval(const std::vector<std::string>& dependents) {
    std::string text = "The following scripts must be removed first: ";
    for (const std::string& title : dependents) {
        text += "\n\n" + title;
    }
    m_prompt.ask(text, "Can't Remove Script", PromptButtons::Ok, PromptIcon::Error);
}

bool ScriptManagerSession::remove(int index) {
    if (index < 0 || static_cast<size_t>(index) >= m_included.size()) {
        return false;
    }
    m_status.clear();
    const IncludedScript entry = m_included[static_cast<size_t>(index)];
    bool removed = false;
    try {
        std::vector<std::string> titles;
        if (FindDependents(entry.text, titles)) {
            refuseRemoval(titles);
            return false;
        }
        std::string error;
        removed = RemoveInclude(m_host, entry.fileName, &error);
        m_status = removed         ? "Removed: " + entry.text
                   : error.empty() ? "Not removed: the main script doesn't include it any more"
                                   : "Not removed: " + error;
    } catch (const PageError& error) {
        m_prompt.tell(error.what());
    } catch (const EmptyScriptError& error) {
        m_status = std::string("Not removed: ") + error.what();
    }
    refresh();
    return removed;
}

std::optional<std::string> ScriptManagerSession::pathOf(size_t index) const {
    std::string path;
    const ScriptFolders folders(m_host);
    if (folders.LocateScript(m_included[index].fileName, path) == ScriptPlace::NotFound) {
        return {};
    }
    return path;
}

// --- Notes

std::string ScriptManagerSession::notes() {
    std::string text = std::string("Project Manager: ") + kReportVersion + "\r\n";
    try {
        needCatalogue(nullptr);
        BuildNotesReport(text, m_host, m_catalogue, m_host.GetMainScriptPath().value_or(""));
    } catch (const PageError& error) {
        m_prompt.tell(error.what());
    }
    return text;
}

// --- Update

const std::vector<UpdateEntry>& ScriptManagerSession::updates() {
    if (!m_updatesListed) {
        m_update.FillUpdateList(false);
    }
    m_updatesListed = true;
    return m_update.entries();
}

std::vector<DiffHunk> ScriptManagerSession::difference(size_t index) {
    const ScriptFolders folders(m_host);
    const std::string& name = updates()[index].fileName;
    if (folders.LocateScript(name) != ScriptPlace::Project || !folders.inTemplates(name)) {
        return {};
    }
    return lineDifference(osFiles().readWhole(folders.projectPath(name)).value_or(""),
                          osFiles().readWhole(folders.templatePath(name)).value_or(""));
}

void ScriptManagerSession::tellUpdated() {
    m_status = m_update.updated().empty() ? "" : "Updated: " + joined(m_update.updated());
    if (!m_update.included().empty()) {
        m_status += (m_status.empty() ? "" : "; ") + ("Included: " + joined(m_update.included()));
    }
    if (!m_update.unplaced().empty()) {
        m_status += "; some values found no place";
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

void ScriptManagerSession::updateListed(JobProgress* progress) {
    updates();
    m_update.UpdateAll(progress);
    m_update.FillUpdateList(false);
    tellUpdated();
}

std::vector<std::string> ScriptManagerSession::restorable() const {
    ScriptFolders folders(m_host);
    folders.listOnce();
    std::vector<std::string> names;
    for (const IncludedScript& entry : m_included) {
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
