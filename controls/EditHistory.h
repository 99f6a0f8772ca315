// The edits of a panel, to be undone and done again.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zoka {

struct EditChange {
    size_t entry = 0;  // its place in the panel
    std::string before;
    std::string after;
};

// A step is what one action of the user changed: one entry, or many at a reset. [panel thread]
class EditHistory {
public:
    using Step = std::vector<EditChange>;

    // A new step; what was undone before can't be done again then. An empty one is no step. With `joining` it
    // becomes one with the step before when both change the same single entry: keystrokes in one field.
    void add(Step step, bool joining = false);
    // The next step will not join the one before: the user has left the field.
    void endJoining() { m_joinable = false; }

    bool canUndo() const { return m_done > 0; }
    bool canRedo() const { return m_done < m_steps.size(); }
    // The step that was undone (to be set to its `before`, last change first) or done again. Only when there
    // is one.
    const Step& undo();
    const Step& redo();
    void clear();

private:
    std::vector<Step> m_steps;
    size_t m_done = 0;
    bool m_joinable = false;
};

}  // namespace zoka
