#include "customize/EntitySelection.h"

#include <algorithm>
#include <cmath>

namespace zoka {

std::string EntityField::name() const {
    return (kind == kSkill ? "skill" : "flag") + std::to_string(number);
}

bool isSame(float one, float other) {
    return one == other || (std::isnan(one) && std::isnan(other));
}

std::string EntitySelection::inWords(bool briefly) const {
    if (!m_access) {
        return "The editor tells nothing of its entities.";
    }
    if (m_shown.empty()) {
        return "No entity is selected.";
    }
    if (!m_gone.empty()) {
        return m_gone + " is gone from the level, or the editor gives nothing of it.";
    }
    if (m_shown.size() == 1) {
        return m_shown.front();
    }
    constexpr size_t kNamed = 20;
    std::string text = std::to_string(m_shown.size()) + " entities";
    if (briefly) {
        return text;
    }
    text += ": ";
    for (size_t i = 0; i < m_shown.size() && i < kNamed; ++i) {
        text += (i > 0 ? ", " : "") + m_shown[i];
    }
    return text + (m_shown.size() > kNamed ? ", ..." : "");
}

void EntitySelection::show(std::vector<std::string> entities, const EntityComponents* components) {
    m_shown = std::move(entities);
    m_gone = m_shown.size() == 1 && !isThere(*m_access, m_shown.front()) ? m_shown.front() : "";
    m_actions.load(m_access, withComponents(), components);
}

bool EntitySelection::look(bool anyway) {
    const auto changes = m_access->changes();
    if (!anyway && (!changes || changes == m_changes)) {
        return false;
    }
    m_changes = m_known = changes;
    return true;
}

std::vector<std::string> EntitySelection::now() const {
    const auto gone = [this](const std::string& entity) { return !isThere(*m_access, entity); };
    std::vector<std::string> entities = follows() ? m_access->selected() : m_shown;
    if (std::all_of(entities.begin(), entities.end(), gone) &&
        std::all_of(m_shown.begin(), m_shown.end(), gone)) {
        return m_shown;  // what was shown has been deleted: that is told
    }
    std::erase_if(entities, gone);
    return entities;
}

bool EntitySelection::areOthers(const std::vector<std::string>& now) const {
    return now != m_shown || (!m_gone.empty() && isThere(*m_access, m_shown.front())) ||
           m_actions.haveChanged(*m_access, m_shown);
}

bool EntitySelection::noteGone() {
    if (!m_gone.empty() || m_shown.empty() || isThere(*m_access, m_shown.front())) {
        return false;
    }
    m_gone = m_shown.front();
    return true;
}

std::optional<float> EntitySelection::read(const EntityField& field, const std::string& entity) const {
    if (field.kind == kSkill) {
        return m_access->skill(entity, field.number);
    }
    const auto on = m_access->flag(entity, field.number);
    return on ? std::optional(*on ? 1.0F : 0.0F) : std::nullopt;
}

bool EntitySelection::writeOne(const EntityField& field, const std::string& entity, float value) {
    return field.kind == kSkill ? m_access->setSkill(entity, field.number, value)
                                : m_access->setFlag(entity, field.number, value != 0);
}

// Whether the editor has gone on to other entities, or to a level with others of these names, since the rows were made:
// the panel looks only now and then. Of a host that does not count its changes these are many questions, so the first
// row of a step asks them for all.
bool EntitySelection::isOutdated() {
    const auto changes = m_access->changes();
    const bool isExpected = changes ? changes == m_known : m_isUpToDate;
    if (!isExpected && (now() != m_shown || m_actions.haveMoved(*m_access, m_shown))) {
        return true;
    }
    // Not noted in m_changes: another hand may have changed values, which is still to be seen.
    m_known = changes;
    m_isUpToDate = m_isInStep;
    return false;
}

Written EntitySelection::write(const EntityField& field, const std::vector<float>& before,
                               const std::vector<float>& values) {
    if (!m_access || isOutdated()) {
        return Written::Outdated;
    }
    std::uint32_t changed = 0;
    for (size_t n = 0; n < m_shown.size(); ++n) {
        if (writeOne(field, m_shown[n], values[n])) {
            changed += isSame(values[n], before[n]) ? 0U : 1U;
            continue;
        }
        if (m_actions.haveMoved(*m_access, m_shown)) {
            return Written::Outdated;
        }
        while (n-- > 0) {
            writeOne(field, m_shown[n], before[n]);
        }
        return Written::Refused;
    }
    // Between two of these writes a level may have opened. Where other entities were only selected, the values are
    // written: the next write or look notices.
    if (m_known) {
        const auto changes = m_access->changes();
        if (changes == *m_known + changed) {
            m_known = changes;
        } else if (m_actions.haveMoved(*m_access, m_shown)) {
            return Written::Outdated;
        }
    }
    return Written::All;
}

}  // namespace zoka
