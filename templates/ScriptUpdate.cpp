#include "templates/ScriptUpdate.h"

#include "templates/IncludeList.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {

int ScriptUpdate::FillUpdateList(bool showAll) {
    m_entries.clear();
    std::vector<std::string> names;
    if (const auto mainPath = m_host.GetMainScriptPath()) {
        ReadIncludeList(*mainPath, names);
    }
    std::unordered_set<std::string> included;
    for (const std::string& name : names) {
        included.insert(lowered(name));
    }

    ScriptFolders folders(m_host);
    folders.listOnce();
    ScriptFactsReader facts;
    for (const std::string& name : names) {
        const std::optional<CScriptElm> script = m_catalogue.findByFilenameNoCase(name);
        if (!script) {
            continue;
        }
        addEntryOfNeeds(*script, name, included);
        if (folders.LocateScript(name) != ScriptPlace::Project) {
            continue;
        }
        if (showAll) {
            m_entries.push_back({script->m_name, name, {}});
            continue;
        }
        std::string version, date, templateVersion, templateDate;
        folders.ReadVersionAndDate(name, version, date, false, &facts);
        folders.ReadVersionAndDate(name, templateVersion, templateDate, true, &facts);
        if (version == templateVersion && date == templateDate) {
            continue;
        }
        m_entries.push_back({script->m_name + "--[Local ver: " + version + " date: " + date +
                                 " --> Template ver: " + templateVersion + " date: " + templateDate + "]\n",
                             name,
                             {}});
    }
    return 1;
}

void ScriptUpdate::addEntryOfNeeds(const CScriptElm& script, const std::string& fileName,
                                   const std::unordered_set<std::string>& included) {
    UpdateEntry entry{script.m_name + "--Is missing the following Needs:", fileName, {}};
    for (const std::string& need : script.m_needs) {
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

void ScriptUpdate::forgetLastRun() {
    m_problems.clear();
    m_updated.clear();
    m_included.clear();
    m_unplaced.clear();
}

void ScriptUpdate::UpdateAll(JobProgress* progress) {
    forgetLastRun();
    if (m_entries.empty()) {
        m_prompt.ask("Everything Up-to-Date.", "Can't Update", PromptButtons::Ok, PromptIcon::Information);
        return;
    }
    if (m_prompt.ask("Update All Scripts Listed?", "ZOKA", PromptButtons::YesNo, PromptIcon::None) !=
        PromptAnswer::Yes) {
        return;
    }
    update(m_entries, progress);
}

void ScriptUpdate::UpdateSelected(int index) {
    forgetLastRun();
    if (index < 0 || static_cast<size_t>(index) >= m_entries.size()) {
        return;
    }
    update({m_entries[static_cast<size_t>(index)]}, nullptr);
}

void ScriptUpdate::UpdateEntries(const std::vector<UpdateEntry>& entries) {
    forgetLastRun();
    update(entries, nullptr);
}

void ScriptUpdate::update(const std::vector<UpdateEntry>& entries, JobProgress* progress) {
    includeMissing(entries);
    ScriptFolders folders(m_host);
    folders.listOnce();
    std::unordered_set<std::string> done;
    for (size_t i = 0; i < entries.size(); ++i) {
        const std::string& fileName = entries[i].fileName;
        if (!goOn(progress, i, entries.size(), fileName)) {
            break;
        }
        std::string path;
        const ScriptPlace place = folders.LocateScript(fileName, path);
        // One that is used from the template folder is its own template.
        if (place == ScriptPlace::Template || !done.insert(lowered(fileName)).second) {
            continue;
        }
        std::string why;
        if (place == ScriptPlace::NotFound) {
            m_problems.push_back(fileName + ": the script is not found");
        } else if (!folders.inTemplates(fileName)) {
            m_problems.push_back(fileName + ": the template folder has no such script");
        } else if (m_updater.update(path, folders.templatePath(fileName), why)) {
            noteUpdated(fileName);
        } else {
            m_problems.push_back(why.empty() ? fileName : fileName + ": " + why);
        }
    }
    FillUpdateList(false);
    if (m_problems.empty()) {
        return;
    }
    std::string text = "Not updated:";
    for (const std::string& problem : m_problems) {
        text += "\n" + problem;
    }
    m_prompt.tell(text);
}

void ScriptUpdate::noteUpdated(const std::string& fileName) {
    m_updated.push_back(fileName);
    const std::string unplaced = m_updater.unplaced();
    if (unplaced.empty()) {
        return;
    }
    if (!m_unplaced.empty()) {
        m_unplaced += "\r\n";
    }
    m_unplaced += fileName + "\r\n" + unplaced;
}

std::vector<std::string> missingNeedsOf(const std::vector<UpdateEntry>& entries,
                                        const ScriptFolders& folders) {
    std::vector<std::string> paths;
    for (const UpdateEntry& entry : entries) {
        for (const std::string& need : entry.missingNeeds) {
            std::string path = need;
            folders.LocateScript(need, path);
            paths.push_back(std::move(path));
        }
    }
    return paths;
}

void ScriptUpdate::includeMissing(const std::vector<UpdateEntry>& entries) {
    const ScriptFolders folders(m_host);
    const std::vector<std::string> paths = missingNeedsOf(entries, folders);
    if (paths.empty()) {
        return;
    }
    const auto mainPath = m_host.GetMainScriptPath();
    const auto text = mainPath ? osFiles().readWhole(*mainPath) : std::nullopt;
    if (!text) {
        return;
    }
    CLex lexer(text->data(), static_cast<long>(text->size()));
    std::vector<std::string> before, after;
    ScanIncludeBlock(lexer, before);
    std::string error;
    const int changed = InsertIncludes(lexer, *mainPath, paths, folders.locator(), &error);
    if (!error.empty()) {
        m_problems.push_back(error);
    }
    if (changed == 0 || !error.empty()) {
        return;
    }
    ReadIncludeList(*mainPath, after);
    std::unordered_set<std::string> known(before.begin(), before.end());
    for (const std::string& name : after) {
        if (!known.contains(name)) {
            m_included.push_back(name);
        }
    }
    m_host.MainScriptChanged();
}

namespace {

bool refuse(UserPrompt& prompt, const char* text, const char* title) {
    prompt.ask(text, title, PromptButtons::Ok, PromptIcon::Error);
    return false;
}

}  // namespace

bool canRestore(ZunEditorInterface& editor, const std::string& fileName, UserPrompt& prompt) {
    const ScriptFolders folders(editor);
    const std::string project = folders.projectPath(fileName);
    if (isPlainFileName(fileName) && osFiles().exists(project)) {
        return refuse(prompt, "Original file still there.", "Can't Update Script");
    }
    if (!folders.inTemplates(fileName)) {
        return refuse(prompt, "Can't find the original in template folder.", "Can't Update Script");
    }
    if (equalNoCase(project, folders.templatePath(fileName))) {
        return refuse(prompt, "Same File!\nNo Update.", "ZOKA");
    }
    return true;
}

bool RestoreFromTemplate(ZunEditorInterface& editor, const std::string& fileName, UserPrompt& prompt) {
    if (!canRestore(editor, fileName, prompt)) {
        return false;
    }
    const ScriptFolders folders(editor);
    return editor.CopyFileToFolder(folders.templatePath(fileName), folders.project()) ||
           refuse(prompt, "Copy error (1128).\nNo Update.", "ZOKA");
}

}  // namespace zoka
