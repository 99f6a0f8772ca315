// Save, reload and close.
#include <utility>

#include "J8ProjectManager/ProjectSession.h"
#include "util/Backups.h"
#include "util/OsFiles.h"

namespace zoka {
namespace {

constexpr size_t kListed = 10;

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

}  // namespace

ProjectSave ProjectSession::fail(const std::string& message) {
    m_problem = message;
    m_prompt.tell(message);
    return ProjectSave::Failed;
}

bool ProjectSession::question(const std::string& text) {
    return m_prompt.ask(text, "ZOKA", PromptButtons::YesNo, PromptIcon::Warning) == PromptAnswer::Yes;
}

// Nothing when saving can go on; `overwrites` then tells whether another's changes will be lost.
std::optional<ProjectSave> ProjectSession::settleChangesFromOutside(bool& overwrites) {
    // The whole content is compared: times are too coarse for two programs that write at once.
    const auto now = osFiles().readWhole(m_path);
    const std::string why = now ? "" : osFiles().lastError();
    if (!now && osFiles().exists(m_path)) {
        return fail("Can't read '" + m_path + "': " + why +
                    "\nAnother program may have changed it, so it was not saved.");
    }
    if (!now || *now == m_bytes) {
        return std::nullopt;  // a file that is gone is simply written again
    }
    const PromptAnswer answer = m_prompt.ask(
        "The project file was changed by another program since it was loaded.\n\n"
        "Yes: load it again, keep my changes and save them.\n"
        "No: overwrite it, the other changes are lost (a copy of the file is kept).\n"
        "Cancel: don't save.",
        "ZOKA", PromptButtons::YesNoCancel, PromptIcon::Warning);
    overwrites = answer == PromptAnswer::No;
    if (overwrites) {
        return std::nullopt;
    }
    if (answer != PromptAnswer::Yes) {
        return ProjectSave::Cancelled;
    }
    ProjectDocument read{.bytes = *now, .document = {}, .project = {}, .results = {}};
    if (!parse(read)) {
        return fail("The project file as it is now can't be read.\n" + m_problem +
                    "\nIt was not saved; your changes are still here.");
    }
    ProjectEdits edits = std::move(m_edits);
    take(std::move(read));
    const std::vector<std::string> unplaced = edits.carryTo(m_model);
    m_edits = std::move(edits);
    if (unplaced.empty()) {
        return std::nullopt;
    }
    return fail("These changes found no place in the project as it is now; nothing was saved yet:\n\n" +
                listed(unplaced));
}

ProjectSave ProjectSession::save(bool force) {
    m_problem.clear();
    m_edits.endJoining();
    if (m_path.empty() || (!hasChanges() && !force)) {
        return ProjectSave::NothingToSave;
    }
    if (m_model.sources().empty() || m_model.projectFile().empty()) {
        return fail("No project is loaded; there is nothing to save.");
    }
    bool overwrites = false;
    if (const auto settled = settleChangesFromOutside(overwrites)) {
        return *settled;
    }
    if (!m_losses.empty()) {
        std::vector<std::string> lines;
        const XMLPlaces places(m_bytes);
        for (const ProjectLoss& loss : m_losses) {
            lines.push_back("line " + std::to_string(places.at(loss.place).line) + ": " + loss.text);
        }
        if (!question("A save does not keep what the project's format has no place for:\n\n" + listed(lines) +
                      "\nThe file as it is now is kept beside it. Save all the same?")) {
            return ProjectSave::Cancelled;
        }
    }
    if (!m_losses.empty() || overwrites) {
        const auto now = osFiles().readWhole(m_path);
        if (const BackupResult kept = keepBackup(m_path, now ? *now : m_bytes); !kept) {
            return fail(kept.error + "\nThe project was not saved.");
        }
    }
    if (!(writesStepReport ? m_model.SaveProjectXML() : m_model.SaveProjectXML(StepReport()))) {
        return fail(m_model.problem().empty() ? "The project could not be saved." : m_model.problem());
    }
    // Loaded again, the model knows the places of the file as it is now; undo goes on.
    m_edits.markSaved();
    ProjectDocument read;
    if (!this->read(read)) {
        return fail("The project was saved, but then: " + m_problem);
    }
    ProjectEdits edits = std::move(m_edits);
    take(std::move(read));
    m_edits = std::move(edits);
    return ProjectSave::Saved;
}

bool ProjectSession::mayDropChanges() {
    return !hasChanges() || question("The changes of this project are not saved.\n\nDrop them?");
}

bool ProjectSession::reload() {
    m_problem.clear();
    ProjectDocument read;
    if (!mayDropChanges() || !this->read(read)) {
        return false;
    }
    take(std::move(read));
    return true;
}

bool ProjectSession::close() {
    if (!hasChanges()) {
        return true;
    }
    const PromptAnswer answer = m_prompt.ask("Save the changes of this project?", "ZOKA",
                                             PromptButtons::YesNoCancel, PromptIcon::Warning);
    if (answer == PromptAnswer::Yes) {
        const ProjectSave saved = save();
        return saved == ProjectSave::Saved || saved == ProjectSave::NothingToSave;
    }
    return answer == PromptAnswer::No;
}

}  // namespace zoka
