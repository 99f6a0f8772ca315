#include "customize/ScriptSave.h"

#include <utility>

#include "customize/ValueFile.h"
#include "util/Backups.h"
#include "util/ChangedOutside.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"

namespace zoka {
namespace {

constexpr const char* kWhat = "The script";

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

SaveEnd ScriptSave::settleWithDisk(bool isOvertaken, bool& loadsAgain) {
    const std::string& path = m_panel.script.scriptPath;
    if (!isOvertaken && m_panel.script.onDisk && osFiles().search(path) == m_panel.script.onDisk) {
        return std::nullopt;
    }
    // Times are too coarse for two programs that write at once. A file that can be written but not read may hold
    // another's work.
    const auto now = osFiles().readWhole(path);
    const std::string why = now ? "" : osFiles().lastError();
    if (!now && osFiles().exists(path) && osFiles().openForWriting(path, OsOpen::Existing)) {
        return saveFailed(m_prompt, unreadableNow(path, why));
    }
    if (!now) {
        // Who moved or renamed it would have two of them. In a folder that is gone writing it fails.
        if (osFiles().kindOf(path) == OsKind::Missing &&
            osFiles().kindOf(std::string(folderOf(path))) == OsKind::Folder &&
            !asksToSaveAnew(m_prompt, kWhat, path)) {
            return SaveResult::Cancelled;
        }
        m_overwritten.emplace();
        return std::nullopt;
    }
    if (*now == m_panel.script.fileText()) {
        return std::nullopt;
    }
    switch (askAboutChangedFile(m_prompt, kWhat)) {
        case PromptAnswer::Yes:
            loadsAgain = true;
            return std::nullopt;
        case PromptAnswer::No:
            m_overwritten = now;
            return std::nullopt;
        default:
            return SaveResult::Cancelled;
    }
}

SaveEnd ScriptSave::makeText() {
    m_edits = editsOf(m_panel.script);
    if (const std::string fault = editFault(m_panel.script, m_edits); !fault.empty()) {
        return saveFailed(m_prompt, fault + "\nThe script was not saved.");
    }
    m_text = editedText(m_panel.script.fileText(), m_edits);
    // Nearly every edit leaves the other entries where they are; only those that may not are read again.
    m_keepsEntries = keepsEntries(m_panel.script, m_edits);
    if (!m_keepsEntries) {
        parseCustomText(m_text, m_saved.script);
        if (!mayLoseEntries()) {
            return SaveResult::Cancelled;
        }
    }
    return std::nullopt;
}

bool ScriptSave::mayLoseEntries() {
    const std::vector<size_t> lost = notReadBack(m_panel.script, m_saved.script);
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

SaveEnd ScriptSave::write(bool isCopied, bool& isOvertaken) {
    const std::string& path = m_panel.script.scriptPath;
    if (!m_keepsEntries) {  // before anything is written: they may need memory that there isn't
        m_saved.script.scriptPath = path;
        m_saved.makeRows(m_reader.hostNames(m_saved.script));
    }
    // A script that is copied leaves the one that the panel had as it is.
    if (!isCopied && m_overwritten && !m_overwritten->empty()) {
        if (const auto kept = keepBackup(path, *m_overwritten); !kept) {
            return saveFailed(m_prompt, kept.why() + "\nThe script was not saved.");
        }
    }
    const std::string_view onDisk = m_overwritten ? *m_overwritten : m_panel.script.fileText();
    const FileContent files[] = {
        {.path = path, .bytes = m_text, .expected = isCopied ? std::nullopt : std::optional(onDisk)},
        {.path = path + kValueFileEnding, .kind = FileKind::Generated, .like = path, .made = [this] {
             return valueFileText(m_panel.script, true);
         }}};
    const SafeWriteResult result = safeWrite(files);
    isOvertaken = result.changedMeanwhile;
    if (result.written == 0 && !isOvertaken) {
        const bool opens = osFiles().openForWriting(path, OsOpen::Existing) != nullptr;
        return opens ? saveFailed(m_prompt, result.why())
                     : saveFailed(m_prompt, "Error open file to write", result.why());
    }
    m_written = result;
    return std::nullopt;
}

bool ScriptSave::takeOver() {
    // Before the rows that are shown are gone: it may need memory that there isn't.
    auto onDisk = osFiles().search(m_panel.script.scriptPath);
    bool isSame = true;
    // The spans of the next save are right then.
    if (m_keepsEntries) {
        applyEdits(m_panel.script, m_edits, std::move(m_text));
        m_panel.settleRows(m_reader.hostNames(m_panel.script));
    } else {
        isSame = sameRows(m_panel.script, m_saved.script);
        m_panel = std::move(m_saved);
    }
    m_panel.script.onDisk = std::move(onDisk);
    return isSame;
}

SaveResult ScriptSave::end() {
    return m_written ? SaveResult(SaveResult::Saved)
                     : saveFailed(m_prompt, kValueFileNotWritten, m_written.why());
}

}  // namespace zoka
