#include "controls/EditHistory.h"

#include <utility>

namespace zoka {

void EditHistory::add(Step step, bool joining) {
    if (step.empty()) {
        return;
    }
    m_steps.resize(m_done);
    if (joining && m_joinable && m_done > 0 && m_steps.back().size() == 1 && step.size() == 1 &&
        m_steps.back()[0].entry == step[0].entry) {
        m_steps.back()[0].after = std::move(step[0].after);
        // What was typed was given up again: nothing is left to undo.
        if (m_steps.back()[0].after == m_steps.back()[0].before) {
            m_steps.pop_back();
            m_done = m_steps.size();
            m_joinable = false;
        }
        return;
    }
    m_steps.push_back(std::move(step));
    m_done = m_steps.size();
    m_joinable = joining;
}

const EditHistory::Step& EditHistory::undo() {
    m_joinable = false;
    return m_steps[--m_done];
}

const EditHistory::Step& EditHistory::redo() {
    m_joinable = false;
    return m_steps[m_done++];
}

void EditHistory::clear() {
    m_steps.clear();
    m_done = 0;
    m_joinable = false;
}

}  // namespace zoka
