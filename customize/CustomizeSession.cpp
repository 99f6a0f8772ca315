#include "customize/CustomizeSession.h"

#include <new>

#include "customize/ScriptSave.h"
#include "customize/ValueFile.h"
#include "util/Doors.h"
#include "util/PathRules.h"

namespace zoka {

CustomizeSession::CustomizeSession(ZunEditorInterface& host, UserPrompt& prompt, CustomizeView* view,
                                   JobProgress* loading)
    : m_host(host),
      m_prompt(prompt),
      m_view(view ? view : &m_noView),
      m_loading(loading),
      m_reader(host),
      m_template(host, prompt),
      m_project(host, prompt),
      m_values(m_panel, prompt) {}

Outcome CustomizeSession::open(const std::string& fileName) {
    Opened opened;
    Outcome found =
        fileName.empty() ? read(m_host.GetMainScriptPath().value_or(""), opened) : read(fileName, opened);
    if (found) {
        show(std::move(opened));
    }
    return found;
}

bool CustomizeSession::switchTo(const std::string& fileName) {
    if (!mayDropChanges()) {
        return false;
    }
    Opened opened;
    Outcome found = Refusal{};
    try {
        found = read(fileName, opened);
        if (!found.why().empty()) {
            m_prompt.tell(found.why());
        }
    } catch (const std::bad_alloc&) {
        tellOutOfMemory(fileName);  // the script that is open stays
    }
    if (found) {
        show(std::move(opened));
    }
    return bool(found);
}

// All that may need much memory, before anything of the script that is open is changed.
Outcome CustomizeSession::read(const std::string& path, Opened& opened) {
    try {
        m_values.putMemoryAside();
        Outcome found = m_reader.read(path, opened.panel, m_loading);
        if (found) {
            opened.home = m_project.homeOf(path);
        } else {
            m_notOpened = found.why();
        }
        return found;
    } catch (const std::bad_alloc&) {
        throw OutOfMemory(path);
    }
}

void CustomizeSession::show(Opened&& opened) {
    m_project.moveTo(std::move(opened.home));
    m_values.forget();
    filter.unfoldAll();
    try {
        showScript(std::move(opened.panel));
    } catch (const std::bad_alloc&) {
        throw OutOfMemory(script().scriptPath);
    }
}

// The script that is open, as its file is now.
Outcome CustomizeSession::load() {
    ScriptRows loaded;
    Outcome found = m_reader.read(std::string(script().scriptPath), loaded);
    if (found) {
        showScript(std::move(loaded));
    }
    return found;
}

// With its rows, so that nothing can fail while the view has those of the script before, which are gone.
void CustomizeSession::showScript(ScriptRows&& made) {
    m_panel = std::move(made);
    rowsMade(false);
}

void CustomizeSession::rowsMade(bool keepHistory) {
    m_template.forgetValues();
    showRows(m_panel.rows(), keepHistory);
}

bool CustomizeSession::mayDropChanges() {
    if (changedCount() == 0) {
        return true;
    }
    switch (m_prompt.ask("Save Changes?", "ZOKA", PromptButtons::YesNoCancel, PromptIcon::None)) {
        case PromptAnswer::Yes: {
            // Closing after a failure would lose what was to be saved.
            const SaveResult result = save();
            return result == SaveResult::Saved || result == SaveResult::NothingToSave;
        }
        case PromptAnswer::No:
            return true;
        default:
            return false;
    }
}

bool CustomizeSession::fetchTemplateCopy() {
    const std::string& path = m_panel.script.scriptPath;
    const auto chosen = m_template.choose(path);
    m_view->raiseOnce();
    return chosen && m_template.copyOver(path, *chosen);
}

bool CustomizeSession::restore() {
    if (!isOpen() || !asksYes(m_prompt, "Restore values to default??") || !fetchTemplateCopy()) {
        return false;
    }
    const Outcome loaded = load();
    if (loaded) {
        m_values.forget();
    } else {
        m_prompt.tell(loaded.why());
    }
    m_view->bringToFront();
    return bool(loaded);
}

bool CustomizeSession::update() {
    if (!isOpen() ||
        !asksYes(m_prompt,
                 "Update the script?\n\nThis will transfer your current values into an updated KEZ script.\n"
                 "(Some values may be lost or overwriten)")) {
        return false;
    }
    // Without the value file the values would have no place but this memory once the script is replaced.
    if (!WriteValueFile(m_panel.script, true, m_prompt)) {
        return false;
    }
    m_values.begin(ValuesToKeep::AllWithId);
    ScriptRows loaded;
    if (!fetchTemplateCopy()) {
        m_values.giveUp();
        return false;
    }
    if (const Outcome found = m_reader.read(m_panel.script.scriptPath, loaded); !found) {
        m_values.giveUp();
        m_prompt.tell(found.why());
        return false;
    }
    const ScriptRows before = std::move(m_panel);
    showScript(std::move(loaded));
    m_view->bringToFront();
    m_values.intoNewVersion(before);
    m_values.arrived();
    addChangesToHistory();
    listener().valuesChanged();
    return true;
}

SaveResult CustomizeSession::save() {
    if (!isOpen()) {
        return SaveResult::NothingToSave;
    }
    if (script().fileLength == 0) {
        const Outcome written = WriteValueFile(script(), true, m_prompt);
        return written ? SaveResult(SaveResult::Saved) : SaveResult(Refusal{written.why()});
    }
    if (!hasChanges(script())) {
        return SaveResult::NothingToSave;
    }
    const std::optional<std::string> project = m_project.askFolder();
    const SaveResult result = project ? saveInto(*project, false) : SaveResult(SaveResult::Cancelled);
    lookAtProject();
    return result;
}

SaveResult CustomizeSession::saveInto(const std::string& project, bool isOvertaken) {
    ScriptSave save(m_panel, m_reader, m_prompt);
    bool loadsAgain = false, isCopied = false;
    SaveEnd end = save.settleWithDisk(isOvertaken, loadsAgain);
    if (!end && loadsAgain) {
        end = loadAgain();
    }
    if (!end) {
        end = save.makeText();
    }
    if (!end) {
        end = m_project.take(m_panel.script, project, isCopied);
    }
    if (!end) {
        end = save.write(isCopied, isOvertaken);
    }
    if (end) {
        return *end;
    }
    if (isOvertaken) {
        return saveInto(project, true);  // asks what to do with the other program's changes
    }
    m_project.saved(project, isCopied);
    rowsMade(save.takeOver());
    return save.end();
}

// What another has made of the script's file, with the user's values in it.
SaveEnd CustomizeSession::loadAgain() {
    m_values.begin(ValuesToKeep::Changed);
    if (const Outcome loaded = load(); !loaded) {
        m_values.giveUp();
        return saveFailed(m_prompt, loaded.why());
    }
    m_values.intoChangedFile();
    addChangesToHistory();
    listener().valuesChanged();
    m_values.arrived();
    if (!unplaced().empty()) {
        return saveFailed(
            m_prompt, "These values found no place in the script as it is now; nothing was saved yet:\n\n" +
                          unplacedText(unplaced()));
    }
    return hasChanges(script()) ? std::nullopt : SaveEnd(SaveResult::NothingToSave);
}

// Of the same script, also where it is the project's copy or another version by now.
std::string CustomizeSession::nameOf(size_t i) const {
    const CustomEntry& one = entry(i);
    return one.hasValue()
               ? std::string(fileNameOf(script().scriptPath)) + entryKey(one.id, one.label, script().set)
               : std::string();
}

std::string CustomizeSession::details(size_t i) const {
    std::string text;
    const CustomEntry& one = entry(i);
    if (one.hasValue()) {
        text = one.id >= 1 ? "id " + std::to_string(one.id) : "no id: an update does not keep the value";
        text += "\r\n";
    }
    return text + "line " + std::to_string(one.line);
}

std::string CustomizeSession::emptyText() const {
    if (script().scriptPath.empty()) {
        return m_notOpened.empty() ? "There is no script." : m_notOpened;
    }
    return size() == 0 ? "This script has nothing to customize." : "No entry matches.";
}

}  // namespace zoka
