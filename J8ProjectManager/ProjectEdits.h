// Edits of a project, each of which can be taken back.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "J8ProjectManager/ProjectFields.h"

namespace zoka {

struct ProjectChange {
    enum class Kind { Value, LevelAdded, LevelRemoved, LevelMoved, EntityAdded, EntityRemoved, EntityMoved };
    Kind kind = Kind::Value;
    // Of a value: the field. Of the others the level and, of an entity's, the entity: where it is (moved: was).
    ProjectField field;
    size_t to = 0;  // where it was moved
    std::optional<std::string> before, after;

    // The whole entity before and after a change of its values: so that taking back leaves the order as it was.
    std::shared_ptr<const J8LevelEntity> entityBefore, entityAfter;  // also what was added or removed
    std::shared_ptr<const CJ8LevelData> level;                       // added or removed
    std::string address;  // before the change: to find its place again in a project that was loaded anew
};

// Makes the change of a value, for a step of ProjectEdits. The value must be one that the field can have.
ProjectChange valueChange(const CJ8ProjectManager& project, const ProjectField& field,
                          std::optional<std::string> value);

// The edits of one session, applied to the project as they are made.
class ProjectEdits {
public:
    using Step = std::vector<ProjectChange>;

    // Applies the step and keeps it. With `joining`, changes of the same single value become one step until
    // endJoining. False, with nothing changed or kept, when a value does not fit.
    bool apply(CJ8ProjectManager& project, Step step, bool joining = false);
    void endJoining() { m_joinable = false; }
    // What is applied in between is one step.
    void beginStep() {
        m_grouping = true;
        m_grouped = false;
    }
    void endStep() { m_grouping = false; }

    size_t done() const { return m_done; }
    bool canUndo() const { return m_done > 0; }
    bool canRedo() const { return m_done < m_steps.size(); }
    // The step taken back or done again; only when there is one.
    const Step& undo(CJ8ProjectManager& project);
    const Step& redo(CJ8ProjectManager& project);

    // Whether the project is as it was at the last markSaved.
    bool isSaved() const { return m_saved == static_cast<std::ptrdiff_t>(m_done); }
    // The value that the field had at the last markSaved; nothing where its level or entity was not there, or where
    // no undo leads there any more.
    std::optional<std::string> savedValue(const CJ8ProjectManager& project, ProjectField field) const;
    // A line for each change since the last markSaved, with its value whole: "level/harbour/doc = by the sea"; of
    // several values of one field the last one. Where no undo leads to that state, all that is done.
    std::vector<std::string> unsavedLines() const;
    void markSaved() noexcept { m_saved = static_cast<std::ptrdiff_t>(m_done); }
    void clear();

    // Does again, in a project that was loaded anew, what is done; it becomes one step. What was taken back
    // can be done again as far as it finds its places. Gives a line for each change that is done and found no place
    // there: its address, and the value.
    std::vector<std::string> carryTo(CJ8ProjectManager& project);

private:
    std::vector<Step> m_steps;
    size_t m_done = 0;
    std::ptrdiff_t m_saved = 0;  // -1: no undo leads there any more
    bool m_joinable = false;
    bool m_grouping = false, m_grouped = false;  // the last step takes what comes
};

}  // namespace zoka
