// The Project Manager of a J8 project without its window: loading, what is wrong, edits, saving.
//
//     ProjectSession session(*CJ8ProjectManager::Instance(), userPrompt());
//     if (const Outcome opened = session.open(projectFile); !opened) show(opened.why());
//     for (const ProjectRow& row : session.entityRows(level, entity)) ...
//     session.setValue(row.field, row.stored(typed), true);
//     ... session.close() before the window goes
//
// Everything here is used on the thread of the window; model and prompt must outlive the session. After an edit
// places in the lists below are new: ask again.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "J8ProjectManager/ProjectEdits.h"
#include "J8ProjectManager/ProjectFields.h"
#include "J8ProjectManager/ProjectLosses.h"
#include "J8ProjectManager/ProjectPlaces.h"
#include "J8ProjectManager/ProjectRows.h"
#include "util/Doors.h"
#include "util/SaveResult.h"
#include "util/UserPrompt.h"

namespace zoka {

// One thing to mend.
struct ProjectProblem {
    std::string file;          // UTF-8, as the text
    int line = 0, column = 0;  // 0: the file as a whole
    int severity = kReportWarning;
    std::string text;
    // The same place as J8Finding has it; `place` 0: the file as a whole.
    std::uint32_t source = 0, place = 0;
};

class ProjectSession {
public:
    ProjectSession(CJ8ProjectManager& model, UserPrompt& prompt) : m_model(model), m_prompt(prompt) {}
    ProjectSession(const ProjectSession&) = delete;
    ProjectSession& operator=(const ProjectSession&) = delete;

    // A project that was read, in no session yet.
    struct Loaded {
        std::string path;  // full
        std::unique_ptr<CJ8ProjectManager> model;
        std::string bytes;
        // What a save writes of it beside the levels.
        std::unique_ptr<CJ8ProjectManager> frame;
        Outcome usable;        // or why not
        bool wasRead = false;  // all of the file, well-formed or not
    };
    // Reads a project without touching a session. The result of one that `watch` stopped must not be used. Throws
    // std::bad_alloc. [any thread]
    static Loaded read(const std::string& path, const XMLProgress& watch = {});

    // Loads a project in place of what the model held. Refused when the file can't be read or holds no project; the
    // model is empty then. The reason is in the system's character set, like all that the user is told.
    Outcome open(const std::string& path) { return open(read(path)); }
    Outcome open(Loaded loaded);
    const CJ8ProjectManager& model() const { return m_model; }
    const std::string& path() const { return m_path; }
    // Whether the file could be looked at when it was opened; one that can't be used although it was is damaged.
    bool wasRead() const { return m_wasRead; }

    // --- What is wrong. The report is model().m_report.
    // What loading found, what a check of the project as it is now finds, and what a save would lose. Reads the
    // files to name lines.
    std::vector<ProjectProblem> problems() const;
    // A line each, "file:line:column: error: text".
    static std::string problemsText(const std::vector<ProjectProblem>& problems);
    // What the file holds that a save can't keep, with its lines.
    std::vector<ProjectProblem> losses() const;
    // "C:\game\enemies.xml:12:2": where a behaviour, a component, an entity is declared.
    std::string placeText(std::uint32_t source, std::uint32_t place) const;

    // --- Rows of the project's own values, of a level, and of an entity with all that its parent gives it.
    std::vector<ProjectRow> projectRows() const { return zoka::projectRows(m_model); }
    std::vector<ProjectRow> levelRows(size_t level) const { return zoka::levelRows(m_model, level); }
    std::vector<ProjectRow> entityRows(size_t level, size_t entity) const {
        return zoka::entityRows(m_model, level, entity);
    }

    // --- Edits. Each is one step of undo.
    // The value in the form in which the file holds it; nothing takes it away, back to what the parent gives.
    // Everything stays as it was when it's refused. With `typing` the edits of one field become one step, until
    // leaveField; a path's file is looked for then.
    Outcome setValue(const ProjectField& field, const std::optional<std::string>& value, bool typing = false);
    // The same of several fields: all of them get their value, or none.
    struct FieldValue {
        ProjectField field;
        std::optional<std::string> value;
    };
    Outcome setValues(const std::vector<FieldValue>& values, bool typing = false);
    // True when files were looked for whose paths had been typed.
    bool leaveField();
    // Values set in between are one step.
    void beginStep() { m_edits.beginStep(); }
    void endStep() { m_edits.endStep(); }
    // New ones get a name that is free. `place` is where it will be in its list.
    void addLevel(size_t place, const std::string& name);
    void duplicateLevel(size_t level);
    void removeLevel(size_t level);
    void moveLevel(size_t from, size_t to);
    void addEntity(size_t level, size_t place, const std::string& name, const std::string& parent);
    void duplicateEntity(size_t level, size_t entity);
    void removeEntity(size_t level, size_t entity);
    // False, with nothing done, where there is no such entity.
    bool moveEntity(size_t level, size_t from, size_t to);

    // How many steps are done. A panel with an undo of its own notes it before an edit, and goes back to it.
    size_t editsDone() const { return m_edits.done(); }
    bool canUndo() const { return m_edits.canUndo(); }
    bool canRedo() const { return m_edits.canRedo(); }
    // What changed, to be shown; nothing when there was nothing to undo or do again.
    const ProjectChange* undo();
    const ProjectChange* redo();
    // What the file holds for a field that no parent gives a value; nothing where that isn't known.
    std::optional<std::string> savedValue(const ProjectField& field) const {
        return m_edits.savedValue(m_model, field);
    }
    bool hasChanges() const { return !m_edits.isSaved(); }

    // --- The file.
    // The line difference of what a save would write.
    std::string changesText() const;
    // Asks what is to be asked, keeps a copy of a file whose content would be lost, and writes; undo goes on. What
    // another program writes until the file is replaced is never written over unasked. With `force` also when nothing
    // has changed.
    SaveResult save(bool force = false);
    // Loads again; asks first when edits would be lost. Refused with the model and the edits as they were; without a
    // reason where the user chose to keep them.
    Outcome reload();
    // True when the window may close: asks about changes.
    bool close();
    // Something was thrown and the window goes: asks whether the edits are to be kept, and saves the project; where
    // that fails they go as lines into a file beside it, its name with kLeftOverEnding. Nothing may show the model any
    // more: modelReplaced is not called. Never throws.
    void offerUnsaved() noexcept;
    // The window is gone, and nobody could be asked: what is not saved goes as lines into that file. Never throws.
    void keepUnsaved() noexcept;
    // The bytes that a save would write now.
    std::string text() const;
    // Those of the file, as loaded.
    const std::string& bytes() const { return m_bytes; }

    // Whether saves leave their step report in the current folder.
    bool writesStepReport = true;
    // Whether a save that finds the file changed by another program asks what to do; else it takes the others'
    // changes over and makes its own in them.
    bool asksAboutOthersChanges = true;
    // Called just before all that the model holds goes: what is selected can still be named.
    std::function<void()> modelGoes;
    // Called when all that the model held has gone, with pointers into it, in the middle of save or reload too:
    // before anything more is asked.
    std::function<void()> modelReplaced;

private:
    const std::vector<ProjectLoss>& foundLosses() const;
    std::vector<ProjectLoss> lossesOfFile(const std::string& bytes) const;
    static Loaded loadedFrom(std::string path, std::string bytes, const XMLProgress& watch = {});
    void replaceModel(Loaded loaded);
    bool question(const std::string& text);
    SaveResult fail(const std::string& message);
    std::optional<SaveResult> settleChangesFromOutside(std::string& onDisk, bool& overwrites);
    std::optional<SaveResult> takeOver(std::string theirs);
    std::optional<SaveResult> settleLosses(const std::string& onDisk, bool overwrites);
    void step(ProjectChange change);
    bool mayDropChanges();

    CJ8ProjectManager& m_model;
    UserPrompt& m_prompt;
    std::string m_path;
    std::string m_bytes;  // of the file, as loaded
    // Of the project as it was loaded, until the losses are asked for: finding them takes about as long as loading.
    mutable std::unique_ptr<CJ8ProjectManager> m_frame;
    mutable std::vector<ProjectLoss> m_losses;
    bool m_wasRead = false;
    ProjectEdits m_edits;
    bool m_typedPaths = false;  // their files have not been looked for
    MemoryReserve m_reserve;    // for offerUnsaved
    mutable std::optional<ProjectPlaces> m_places;
};

}  // namespace zoka
