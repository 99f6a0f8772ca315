// Save, reload and close.
#include <new>
#include <utility>

#include "J8ProjectManager/ProjectSession.h"
#include "util/Backups.h"
#include "util/ChangedOutside.h"
#include "util/Doors.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"

namespace zoka {
namespace {

constexpr size_t kListed = 10;
constexpr const char* kWhat = "The project file";

// Lines with texts of the project, for a question.
std::string listed(const std::vector<std::string>& lines) {
    std::string text;
    for (size_t i = 0; i < lines.size() && i < kListed; ++i) {
        text += pathFromXml(lines[i]) + "\n";
    }
    if (lines.size() > kListed) {
        text += "and " + std::to_string(lines.size() - kListed) + " more\n";
    }
    return text;
}

// Behind those that the file beside the project has already.
Outcome keepLines(const std::string& project, const std::vector<std::string>& lines) {
    const std::string path = project + kLeftOverEnding;
    auto text = osFiles().readWhole(path);
    if (!text) {
        const std::string why = osFiles().lastError();
        if (osFiles().exists(path)) {  // what it keeps must not be overwritten
            return Refusal{"Can't read '" + path + "': " + why};
        }
        text.emplace();
    }
    for (const std::string& line : lines) {
        *text += line + '\n';
    }
    const FileContent file{path, *text, FileKind::Generated, std::nullopt, project};
    return safeWrite({&file, 1});
}

}  // namespace

SaveResult ProjectSession::fail(const std::string& message) {
    m_prompt.tell(message);
    return SaveResult::Failed;
}

bool ProjectSession::question(const std::string& text) {
    return m_prompt.ask(text, "ZOKA", PromptButtons::YesNo, PromptIcon::Warning) == PromptAnswer::Yes;
}

// Nothing when saving can go on; `onDisk` is then what the file holds and `overwrites` whether another's changes will
// be lost.
std::optional<SaveResult> ProjectSession::settleChangesFromOutside(std::string& onDisk, bool& overwrites) {
    // The whole content is compared: times are too coarse for two programs that write at once.
    const auto now = osFiles().readWhole(m_path);
    const std::string why = now ? "" : osFiles().lastError();
    if (!now && osFiles().exists(m_path)) {
        return fail(unreadableNow(m_path, why));
    }
    onDisk = now.value_or("");
    overwrites = false;
    if (!now) {
        // Who moved or renamed it would have two of them. In a folder that is gone writing it fails.
        const bool isGone = osFiles().kindOf(m_path) == OsKind::Missing &&
                            osFiles().kindOf(std::string(folderOf(m_path))) == OsKind::Folder;
        return isGone && asksAboutOthersChanges && !asksToSaveAnew(m_prompt, kWhat, m_path)
                   ? std::optional<SaveResult>(SaveResult::Cancelled)
                   : std::nullopt;
    }
    if (*now == m_bytes) {
        return std::nullopt;
    }
    PromptAnswer answer = PromptAnswer::Yes;
    if (asksAboutOthersChanges) {
        answer = askAboutChangedFile(m_prompt, kWhat);
    }
    overwrites = answer == PromptAnswer::No;
    if (overwrites) {
        return std::nullopt;
    }
    return answer == PromptAnswer::Yes ? takeOver(*now) : SaveResult::Cancelled;
}

// Makes the edits in the project as others left it. It takes the model's place only when all of them can be made.
std::optional<SaveResult> ProjectSession::takeOver(std::string theirs) {
    Loaded loaded = loadedFrom(m_path, std::move(theirs));
    if (!loaded.usable) {
        return fail("The project file as it is now can't be read:\n" + loaded.usable.why() +
                    "\n\nIt was not saved; your changes are still here.");
    }
    ProjectEdits edits = m_edits;
    if (const std::vector<std::string> unplaced = edits.carryTo(*loaded.model); !unplaced.empty()) {
        return fail(
            "These changes find no place in the project file as it is now:\n\n" + listed(unplaced) +
            "\nNothing was saved; all your changes are still here. Take these back and save again, or save "
            "and overwrite the file.");
    }
    m_edits = std::move(edits);
    replaceModel(std::move(loaded));
    return std::nullopt;
}

// The copy of what will be lost. Nothing when saving can go on.
std::optional<SaveResult> ProjectSession::settleLosses(const std::string& onDisk, bool overwrites) {
    // What counts is the file that is written over, be it as it was loaded or another program's.
    const std::vector<ProjectLoss> losses = overwrites ? lossesOfFile(onDisk) : foundLosses();
    if (!losses.empty()) {
        std::vector<std::string> lines;
        for (const ProjectLoss& loss : losses) {
            lines.push_back("line " + std::to_string(loss.place.line) + ": " + loss.text);
        }
        if (!question(
                "A save does not keep what the project's format has no place for:\n\n" + listed(lines) +
                (lines.size() > kListed ? "All are listed under Problems and by zoka project check.\n" : "") +
                "\nThe file as it is now is kept beside it. Save all the same?")) {
            return SaveResult::Cancelled;
        }
    }
    if (!losses.empty() || overwrites) {
        if (const auto kept = keepBackup(m_path, onDisk.empty() ? m_bytes : onDisk); !kept) {
            return fail(kept.why() + "\nThe project was not saved.");
        }
    }
    return std::nullopt;
}

SaveResult ProjectSession::save(bool force) {
    m_edits.endJoining();
    if (m_path.empty() || (!hasChanges() && !force)) {
        return SaveResult::NothingToSave;
    }
    if (m_model.sources().empty() || m_model.projectFile().empty()) {
        return fail("No project is loaded; there is nothing to save.");
    }
    for (bool saved = false; !saved;) {
        std::string onDisk;
        bool overwrites = false;
        if (const auto settled = settleChangesFromOutside(onDisk, overwrites)) {
            return *settled;
        }
        if (const auto settled = settleLosses(onDisk, overwrites)) {
            return *settled;
        }
        const SafeWriteResult written = writesStepReport ? m_model.SaveProjectXML(&onDisk)
                                                         : m_model.SaveProjectXML(StepReport(), &onDisk);
        saved = bool(written);
        // What was written while a question stood is settled like what was written before.
        if (!saved && (!written.changedMeanwhile || osFiles().readWhole(m_path).value_or("") == onDisk)) {
            return fail(written.why());
        }
    }
    m_edits.markSaved();
    // Loaded again, the model knows the places of the file that was written. That text is taken, not what the disk
    // holds by now: undo goes on, and its steps are made for this project.
    if (const XMLText text = m_model.fileText({}, m_model.m_date)) {
        // The file holds this now, also where there is no memory to load it.
        m_bytes = text.view();
        m_frame.reset();
        m_losses.clear();
        Loaded written;
        try {
            written = loadedFrom(m_path, m_bytes);
        } catch (const std::bad_alloc&) {
            // It is saved; the model goes on with the places of the file before.
            return SaveResult::Saved;
        }
        if (written.usable) {
            replaceModel(std::move(written));
        }
    }
    return SaveResult::Saved;
}

bool ProjectSession::mayDropChanges() {
    return !hasChanges() || question("The changes of this project are not saved.\n\nDrop them?");
}

Outcome ProjectSession::reload() {
    if (!mayDropChanges()) {
        return Refusal{};
    }
    Loaded loaded = read(m_path);
    if (!loaded.usable) {
        return loaded.usable;
    }
    m_edits.clear();
    replaceModel(std::move(loaded));
    return {};
}

bool ProjectSession::close() {
    if (!hasChanges()) {
        return true;
    }
    const PromptAnswer answer = m_prompt.ask("Save the changes of this project?", "ZOKA",
                                             PromptButtons::YesNoCancel, PromptIcon::Warning);
    if (answer == PromptAnswer::Yes) {
        const SaveResult saved = save();
        return saved == SaveResult::Saved || saved == SaveResult::NothingToSave;
    }
    return answer == PromptAnswer::No;
}

void ProjectSession::offerUnsaved() noexcept {
    m_reserve.release();
    keepInside([this] {
        modelGoes = modelReplaced = nullptr;
        if (!hasChanges()) {
            return;
        }
        const std::vector<std::string> lines = m_edits.unsavedLines();
        const std::string name(fileNameOf(m_path));
        const bool isOne = lines.size() == 1;
        if (!question("The window has to close, and " +
                      (isOne ? "an edit" : std::to_string(lines.size()) + " edits") + " of '" + name + "' " +
                      (isOne ? "is" : "are") + " not saved.\n\nKeep " + (isOne ? "it?" : "them?"))) {
            return;
        }
        keepInside([this] { save(); }, name);
        if (!hasChanges()) {
            return;
        }
        const Outcome kept = keepLines(m_path, lines);
        m_prompt.tell(kept ? "The edits are in '" + name + kLeftOverEnding +
                                 "', beside the project, as lines of text; the project is as it was."
                           : "The edits could not be kept: " + kept.why());
    });
}

void ProjectSession::keepUnsaved() noexcept {
    m_reserve.release();
    keepInside([this] {
        if (hasChanges()) {
            (void)keepLines(m_path, m_edits.unsavedLines());  // there is nobody to be told
        }
    });
}

}  // namespace zoka
