#include "customize/CustomizeSession.h"

#include <algorithm>
#include <new>

#include "customize/ValueFile.h"
#include "util/Backups.h"
#include "util/Doors.h"
#include "util/KeyedHash.h"
#include "util/OsFiles.h"
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
      m_project(host, prompt) {}

Outcome CustomizeSession::open(const std::string& fileName) {
    const std::string path = fileName.empty() ? m_host.GetMainScriptPath().value_or("") : fileName;
    m_reserve.refill();
    ScriptRows loaded;
    ScriptProject::Home home;
    try {
        if (const Outcome made = m_reader.read(path, loaded, m_loading); !made) {
            m_notOpened = made.why();
            return made;
        }
        home = m_project.homeOf(fileName);
    } catch (const std::bad_alloc&) {
        throw OutOfMemory(path);
    }
    m_project.moveTo(std::move(home));
    m_carried.clear();
    m_unplaced.clear();
    filter.unfoldAll();
    showScript(std::move(loaded), false);
    return {};
}

bool CustomizeSession::switchTo(const std::string& fileName) {
    if (!mayDropChanges()) {
        return false;
    }
    std::string why;
    try {
        const Outcome opened = open(fileName);
        if (opened) {
            return true;
        }
        why = opened.why();
    } catch (const OutOfMemory& out) {
        why = outOfMemoryText(out.file());  // the script that is open stays
    }
    if (!why.empty()) {
        m_prompt.tell(why);
    }
    return false;
}

Outcome CustomizeSession::load(const std::string& fileName) {
    ScriptRows loaded;
    Outcome found = m_reader.read(fileName, loaded);
    if (found) {
        showScript(std::move(loaded), false);
    }
    return found;
}

// With its rows, so that nothing can fail while the view has those of the script before, which are gone.
void CustomizeSession::showScript(ScriptRows&& made, bool keepHistory) {
    m_panel = std::move(made);
    rowsMade(keepHistory);
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

bool CustomizeSession::close() {
    return mayDropChanges();
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
    const Outcome loaded = load(std::string(m_panel.script.scriptPath));
    if (loaded) {
        m_unplaced.clear();
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
    m_carried = valuesToKeep(m_panel, false);
    const bool byFile = valueFileCarriesAll(m_panel.script, true);
    if (!fetchTemplateCopy()) {
        m_carried.clear();
        return false;
    }
    ScriptRows loaded;
    if (const Outcome found = m_reader.read(m_panel.script.scriptPath, loaded); !found) {
        m_carried.clear();
        m_prompt.tell(found.why());
        return false;
    }
    m_unplaced.clear();
    const ScriptRows before = std::move(m_panel);
    showScript(std::move(loaded), false);
    m_view->bringToFront();
    if (byFile && before.script.set == m_panel.script.set) {
        carryFromValueFile(m_carried);
    } else {
        carryFromMemory(m_carried);
    }
    for (UnplacedValue& lost : lostWithoutId(before, m_panel)) {
        m_unplaced.push_back(std::move(lost));
    }
    keepUnplaced();
    m_carried.clear();
    addChangesToHistory();
    listener().valuesChanged();
    return true;
}

void CustomizeSession::carryFromMemory(const std::vector<KeptValue>& values) {
    KeyedSet<int> ids;
    for (const CustomEntry& one : m_panel.script.entries) {
        ids.insert(one.id);
    }
    for (const KeptValue& kept : values) {
        if (!ids.contains(kept.id)) {
            warnNoMatch(m_prompt);
        }
    }
    m_unplaced = carryValues(values, m_panel);
}

void CustomizeSession::carryFromValueFile(const std::vector<KeptValue>& values) {
    KeyedMap<int, const KeptValue*> keptOf;
    for (const KeptValue& kept : values) {
        keptOf.emplace(kept.id, &kept);
    }
    const auto place = [&](const ValueRecord& record, CustomEntry* entry) {
        const auto found = keptOf.find(record.id);
        UnplacedValue lost{{record.id, record.kind, found == keptOf.end() ? "" : found->second->label,
                            record.value, m_panel.script.set},
                           "the script has no entry for it"};
        if (lost.kept.value.ends_with('\r')) {
            lost.kept.value.pop_back();
        }
        if (entry) {
            const auto& model = static_cast<const EntryModel&>(*entry->control);
            lost.reason = carryRefusal(lost.kept, *entry, model.facts());
            if (lost.reason.empty()) {
                entry->control->SetValueFromText(lost.kept.value);
            }
        }
        if (!lost.reason.empty()) {
            m_unplaced.push_back(std::move(lost));
        }
    };
    if (ReadValueFile(m_panel.script, m_prompt, place)) {
        return;
    }
    // The user has been told; the values are still at hand.
    m_panel.makeRows(m_reader.hostNames(m_panel.script));
    rowsMade(false);
    m_unplaced = carryValues(values, m_panel);
}

void CustomizeSession::keepUnplaced() {
    if (!keepOldValues(m_panel.script, m_unplaced)) {
        m_prompt.tell(
            "These values found no place in the script, and could not be written into a file either:\n\n" +
            unplacedText(m_unplaced));
    }
}

std::vector<UnplacedValue> CustomizeSession::unsavedValues() const {
    std::vector<UnplacedValue> unsaved;
    if (isOpen()) {
        for (const KeptValue& kept : m_carried.empty() ? valuesToKeep(m_panel, true) : m_carried) {
            unsaved.push_back({kept, "it was not saved"});
        }
    }
    return unsaved;
}

void CustomizeSession::keepUnsaved() noexcept {
    m_reserve.release();
    keepInside([this] {
        (void)keepOldValues(m_panel.script, unsavedValues());  // there is nobody to be told
    });
}

void CustomizeSession::offerUnsaved() noexcept {
    m_reserve.release();
    keepInside([this] {
        const std::vector<UnplacedValue> unsaved = unsavedValues();
        if (unsaved.empty()) {
            return;
        }
        const std::string& path = m_panel.script.scriptPath;
        if (!asksYes(m_prompt,
                     "The window has to close, and " +
                         (unsaved.size() == 1 ? "a value" : std::to_string(unsaved.size()) + " values") +
                         " of '" + std::string(fileNameOf(path)) + "' " +
                         (unsaved.size() == 1 ? "is" : "are") + " not saved.\n\nKeep " +
                         (unsaved.size() == 1 ? "it" : "them") + " in the value file '" +
                         std::string(fileNameOf(path)) + kLeftOverEnding + "', beside the script?")) {
            return;
        }
        if (const Outcome kept = keepOldValues(m_panel.script, unsaved); !kept) {
            m_prompt.tell("The values could not be kept: " + kept.why());
        }
    });
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
