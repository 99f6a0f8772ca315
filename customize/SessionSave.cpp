// Save: the one way in which a script's file changes by the user's edits.
#include <utility>

#include "customize/CustomizeSession.h"
#include "customize/ValueFile.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"

namespace zoka {
namespace {

// Whether undo may go on: the rows mean the same as before.
bool sameRows(const CustomScript& a, const CustomScript& b) {
    if (a.entries.size() != b.entries.size()) {
        return false;
    }
    for (size_t i = 0; i < a.entries.size(); ++i) {
        const CustomEntry &one = a.entries[i], &other = b.entries[i];
        if (one.id != other.id || one.label != other.label || one.hasValue() != other.hasValue()) {
            return false;
        }
    }
    return true;
}

}  // namespace

// Nothing when saving can go on.
std::optional<SaveResult> CustomizeSession::settleChangesFromOutside(
    std::optional<std::string>& overwritten) {
    // The whole content is compared: times are too coarse for two programs that write at once. A file that can be
    // written but not read may hold another's work.
    const std::string& path = m_panel.script.scriptPath;
    const auto now = osFiles().readWhole(path);
    const std::string why = now ? "" : osFiles().lastError();
    if (!now && osFiles().exists(path) && osFiles().openForWriting(path, OsOpen::Existing)) {
        return saveFailed(m_prompt, "Can't read '" + path + "': " + why +
                                        "\nAnother program may have changed it, so it was not saved.");
    }
    if (!now) {
        // Who moved or renamed it would have two of them. In a folder that is gone writing it fails.
        if (osFiles().kindOf(path) == OsKind::Missing &&
            osFiles().kindOf(std::string(folderOf(path))) == OsKind::Folder &&
            !asksYes(m_prompt,
                     "The script is gone: it was moved, renamed or deleted since it was loaded.\n\nSave it "
                     "anew, as '" +
                         path + "'?")) {
            return SaveResult::Cancelled;
        }
        overwritten.emplace();
        return std::nullopt;
    }
    if (*now == m_panel.script.fileText()) {
        return std::nullopt;
    }
    const PromptAnswer answer = m_prompt.ask(
        "The script was changed on the disk since it was loaded.\n\n"
        "Yes: load it again, keep my values and save them.\n"
        "No: overwrite it, the other changes are lost.\n"
        "Cancel: don't save.",
        "ZOKA", PromptButtons::YesNoCancel, PromptIcon::Warning);
    if (answer == PromptAnswer::No) {
        overwritten = now;
        return std::nullopt;
    }
    if (answer != PromptAnswer::Yes) {
        return SaveResult::Cancelled;
    }
    m_carried = valuesToKeep(m_panel, true);
    if (const Outcome loaded = load(std::string(m_panel.script.scriptPath)); !loaded) {
        m_carried.clear();
        return saveFailed(m_prompt, loaded.why());
    }
    m_unplaced = carryValues(m_carried, m_panel, CarryTo::ChangedFile);
    addChangesToHistory();
    listener().valuesChanged();
    if (m_unplaced.empty()) {
        m_carried.clear();
        return hasChanges(m_panel.script) ? std::nullopt : std::optional(SaveResult::NothingToSave);
    }
    keepUnplaced();
    m_carried.clear();
    return saveFailed(m_prompt,
                      "These values found no place in the script as it is now; nothing was saved yet:\n\n" +
                          unplacedText(m_unplaced));
}

bool CustomizeSession::confirmLostEntries(const CustomScript& saved) {
    const std::vector<size_t> lost = notReadBack(m_panel.script, saved);
    if (lost.empty()) {
        return true;
    }
    constexpr size_t kListed = 10;
    std::string labels;
    for (size_t i = 0; i < lost.size() && i < kListed; ++i) {
        const CustomEntry& one = m_panel.script.entries[lost[i]];
        labels += '"' + one.label + "\" (line " + std::to_string(one.line) + ")\n";
    }
    if (lost.size() > kListed) {
        labels += "and " + std::to_string(lost.size() - kListed) + " more\n";
    }
    return asksYes(m_prompt,
                   "After saving, these entries will disappear from this panel "
                   "(an empty value, for instance, is not found any more):\n\n" +
                       labels + "\nSave all the same?");
}

SaveResult CustomizeSession::save() {
    if (!isOpen()) {
        return SaveResult::NothingToSave;
    }
    if (m_panel.script.fileLength == 0) {
        const Outcome written = WriteValueFile(m_panel.script, true, m_prompt);
        return written ? SaveResult(SaveResult::Saved) : SaveResult(Refusal{written.why()});
    }
    if (!hasChanges(m_panel.script)) {
        return SaveResult::NothingToSave;
    }
    const std::optional<std::string> project = m_project.askFolder();
    const SaveResult result = project ? saveInto(*project) : SaveResult(SaveResult::Cancelled);
    lookAtProject();
    return result;
}

SaveResult CustomizeSession::saveInto(const std::string& project) {
    std::optional<std::string> overwritten;
    if (const auto settled = settleChangesFromOutside(overwritten)) {
        return *settled;
    }
    const std::vector<ScriptEdit> edits = editsOf(m_panel.script);
    if (const std::string fault = editFault(m_panel.script, edits); !fault.empty()) {
        return saveFailed(m_prompt, fault + "\nThe script was not saved.");
    }
    std::string text = editedText(m_panel.script.fileText(), edits);
    // Nearly every edit leaves the other entries where they are; only those that may not are read again.
    const bool kept = keepsEntries(m_panel.script, edits);
    ScriptRows saved;
    if (!kept) {
        parseCustomText(text, saved.script);
        if (!confirmLostEntries(saved.script)) {
            return SaveResult::Cancelled;
        }
    }
    bool copied = false;
    if (const auto settled = m_project.take(m_panel.script, project, copied)) {
        return *settled;
    }
    const std::string path = m_panel.script.scriptPath;
    bool keepHistory = true;
    if (!kept) {
        saved.script.scriptPath = path;
        saved.makeRows(m_reader.hostNames(saved.script));
        keepHistory = sameRows(m_panel.script, saved.script);
    }
    const std::string values = valueFileText(m_panel.script, true);
    const std::string_view onDisk = overwritten ? *overwritten : m_panel.script.fileText();
    const FileContent files[] = {{path, text, FileKind::Named, copied ? std::nullopt : std::optional(onDisk)},
                                 {path + kValueFileEnding, values, FileKind::Generated, std::nullopt, path}};
    const SafeWriteResult result = safeWrite(files);
    if (result.changedMeanwhile) {
        return saveInto(project);  // another program was faster: asks what to do with its changes
    }
    if (result.written == 0) {
        const bool opens = osFiles().openForWriting(path, OsOpen::Existing) != nullptr;
        return saveFailed(m_prompt, opens ? result.why() : "Error open file to write", result.why());
    }
    m_project.saved(project, copied);
    // The script becomes what the file holds now: the spans of the next save are right.
    if (kept) {
        applyEdits(m_panel.script, edits, std::move(text));
        m_panel.settleRows(m_reader.hostNames(m_panel.script));
        rowsMade(true);
    } else {
        showScript(std::move(saved), keepHistory);
    }
    return result ? SaveResult(SaveResult::Saved) : saveFailed(m_prompt, kValueFileNotWritten, result.why());
}

}  // namespace zoka
