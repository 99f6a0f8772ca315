#include "J8ProjectManager/ProjectEdits.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "J8ProjectManager/ProjectLosses.h"
#include "util/Text.h"

namespace zoka {
namespace {

using ChangeKind = ProjectChange::Kind;

template <class List, class Record>
void insertAt(List& list, size_t place, const Record& record) {
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), record);
}

template <class List>
void removeAt(List& list, size_t place) {
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(place));
}

template <class List>
void move(List& list, size_t from, size_t to) {
    auto record = std::move(list[from]);
    removeAt(list, from);
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(to), std::move(record));
}

bool isOfEntity(const ProjectField& field) {
    return field.kind >= ProjectField::Kind::EntityName;
}

// In the direction of `forward`. False when a value does not fit.
bool make(CJ8ProjectManager& project, const ProjectChange& change, bool forward) {
    std::vector<CJ8LevelData>& levels = project.m_apLevels;
    const size_t level = change.field.level, entity = change.field.entity;
    switch (change.kind) {
        case ChangeKind::Value:
            if (change.entityBefore) {
                levels[level].m_entities[entity] = forward ? *change.entityAfter : *change.entityBefore;
                return true;
            }
            return setFieldValue(project, change.field, forward ? change.after : change.before);
        case ChangeKind::LevelAdded:
        case ChangeKind::LevelRemoved:
            if ((change.kind == ChangeKind::LevelAdded) == forward) {
                insertAt(levels, level, *change.level);
            } else {
                removeAt(levels, level);
            }
            return true;
        case ChangeKind::LevelMoved:
            move(levels, forward ? level : change.to, forward ? change.to : level);
            return true;
        case ChangeKind::EntityAdded:
        case ChangeKind::EntityRemoved:
            if ((change.kind == ChangeKind::EntityAdded) == forward) {
                insertAt(levels[level].m_entities, entity, *change.entityAfter);
            } else {
                removeAt(levels[level].m_entities, entity);
            }
            return true;
        case ChangeKind::EntityMoved:
            move(levels[level].m_entities, forward ? entity : change.to, forward ? change.to : entity);
            return true;
    }
    return false;
}

// The place in a list that was loaded anew of what comes behind its last element at most.
size_t within(size_t place, size_t size) {
    return std::min(place, size);
}

// The change as it must be made in the project as it is now; nothing when it has no place there.
std::optional<ProjectChange> placedAnew(const CJ8ProjectManager& project, const ProjectChange& change) {
    ProjectChange placed = change;
    if (change.kind == ChangeKind::Value) {
        const auto field = fieldAt(project, change.address);
        return field ? std::optional(valueChange(project, *field, change.after)) : std::nullopt;
    }
    const std::vector<CJ8LevelData>& levels = project.m_apLevels;
    if (change.kind == ChangeKind::LevelAdded) {
        placed.field.level = within(change.field.level, levels.size());
        return placed;
    }
    const auto level = levelAt(project, change.address);
    if (!level) {
        return std::nullopt;
    }
    placed.field.level = *level;
    if (change.kind == ChangeKind::LevelRemoved) {
        placed.level = std::make_shared<const CJ8LevelData>(levels[*level]);
        return placed;
    }
    if (change.kind == ChangeKind::LevelMoved) {
        placed.to = within(change.to, levels.size() - 1);
        return placed;
    }
    const std::vector<J8LevelEntity>& entities = levels[*level].m_entities;
    if (change.kind == ChangeKind::EntityAdded) {
        placed.field.entity = within(change.field.entity, entities.size());
        return placed;
    }
    const auto entity = fieldAt(project, change.address + "/name");
    if (!entity) {
        return std::nullopt;
    }
    placed.field.entity = entity->entity;
    if (change.kind == ChangeKind::EntityRemoved) {
        placed.entityAfter = std::make_shared<const J8LevelEntity>(entities[entity->entity]);
    } else {
        placed.to = within(change.to, entities.size() - 1);
    }
    return placed;
}

bool areOfOneField(const ProjectChange& one, const ProjectChange& other) {
    return one.kind == ChangeKind::Value && other.kind == ChangeKind::Value && one.address == other.address;
}

// "level/harbour/doc = by the sea", for the user.
std::string valueLine(const ProjectChange& change, const std::optional<std::string>& value) {
    return change.address + (value ? " = " + *value : " without a value");
}

std::string lineOf(const ProjectChange& change) {
    switch (change.kind) {
        case ChangeKind::Value:
            return valueLine(change, change.after ? std::optional(shortText(*change.after)) : std::nullopt);
        case ChangeKind::LevelAdded:
            return change.address + " added";
        case ChangeKind::EntityAdded:
            return change.address + ": entity \"" + shortText(change.entityAfter->name) + "\" added";
        case ChangeKind::LevelRemoved:
        case ChangeKind::EntityRemoved:
            return change.address + " removed";
        case ChangeKind::LevelMoved:
        case ChangeKind::EntityMoved:
            return change.address + " moved";
    }
    return change.address;
}

}  // namespace

ProjectChange valueChange(const CJ8ProjectManager& project, const ProjectField& field,
                          std::optional<std::string> value) {
    ProjectChange change;
    change.field = field;
    change.before = fieldValue(project, field);
    change.after = std::move(value);
    change.address = addressOf(project, field);
    return change;
}

bool ProjectEdits::apply(CJ8ProjectManager& project, Step step, bool joining) {
    for (size_t i = 0; i < step.size(); ++i) {
        ProjectChange& change = step[i];
        bool made = false;
        if (change.kind == ChangeKind::Value && isOfEntity(change.field)) {
            const J8LevelEntity& entity =
                project.m_apLevels[change.field.level].m_entities[change.field.entity];
            change.entityBefore = std::make_shared<const J8LevelEntity>(entity);
            made = setFieldValue(project, change.field, change.after);
            change.entityAfter = std::make_shared<const J8LevelEntity>(entity);
        } else if (change.kind == ChangeKind::Value) {
            // Looked for at every key, a path in a network would hold the window up.
            made = setFieldValue(project, change.field, change.after, !joining);
        } else {
            made = make(project, change, true);
        }
        if (!made) {
            while (i-- > 0) {
                make(project, step[i], false);
            }
            return false;
        }
    }
    if (step.empty()) {
        return true;
    }
    if (m_saved > static_cast<std::ptrdiff_t>(m_done)) {
        m_saved = -1;
    }
    m_steps.resize(m_done);
    const bool single = step.size() == 1 && step[0].kind == ChangeKind::Value;
    if (m_grouping && m_grouped) {
        std::ranges::move(step, std::back_inserter(m_steps.back()));
        m_joinable = false;
        return true;
    }
    m_grouped = true;
    if (joining && single && m_joinable && m_done > 0 && !isSaved() &&
        m_steps.back()[0].field == step[0].field) {
        ProjectChange& last = m_steps.back()[0];
        last.after = std::move(step[0].after);
        last.entityAfter = std::move(step[0].entityAfter);
        if (last.after == last.before) {
            // What was typed was given up again: nothing is left to undo. The value is back already; of an entity the
            // list gets its old order, too.
            if (last.entityBefore) {
                make(project, last, false);
            }
            m_steps.pop_back();
            m_done = m_steps.size();
            m_joinable = m_grouped = false;
            return true;
        }
    } else {
        m_steps.push_back(std::move(step));
        ++m_done;
    }
    m_joinable = joining && single;
    return true;
}

const ProjectEdits::Step& ProjectEdits::undo(CJ8ProjectManager& project) {
    const Step& step = m_steps[--m_done];
    for (size_t i = step.size(); i-- > 0;) {
        make(project, step[i], false);
    }
    m_joinable = false;
    return step;
}

const ProjectEdits::Step& ProjectEdits::redo(CJ8ProjectManager& project) {
    const Step& step = m_steps[m_done++];
    for (const ProjectChange& change : step) {
        make(project, change, true);
    }
    m_joinable = false;
    return step;
}

std::optional<std::string> ProjectEdits::savedValue(const CJ8ProjectManager& project,
                                                    ProjectField field) const {
    if (m_saved < 0) {
        return std::nullopt;
    }
    std::optional<std::string> value = fieldValue(project, field).value_or("");
    const auto saved = static_cast<size_t>(m_saved);
    const bool forward = saved > m_done;
    // The field's place is followed through the steps in between.
    const auto pass = [&](const ProjectChange& change) {
        const bool isEntity = isOfEntity(field);
        const auto follow = [&](size_t& place, size_t at, bool appears, bool vanishes) {
            if (vanishes && place == at) {
                return false;
            }
            place += appears && place >= at ? 1 : 0;
            place -= vanishes && place > at ? 1 : 0;
            return true;
        };
        const auto moved = [&](size_t& place, size_t from, size_t to) {
            if (place == from) {
                place = to;
            } else if (from < place && place <= to) {
                --place;
            } else if (to <= place && place < from) {
                ++place;
            }
        };
        const size_t from = forward ? change.field.level : change.to;
        const size_t to = forward ? change.to : change.field.level;
        switch (change.kind) {
            case ChangeKind::Value:
                if (change.field == field) {
                    value = (forward ? change.after : change.before).value_or("");
                }
                return true;
            case ChangeKind::LevelAdded:
                return follow(field.level, change.field.level, forward, !forward);
            case ChangeKind::LevelRemoved:
                return follow(field.level, change.field.level, !forward, forward);
            case ChangeKind::LevelMoved:
                moved(field.level, from, to);
                return true;
            default:
                break;
        }
        if (!isEntity || change.field.level != field.level) {
            return true;
        }
        if (change.kind == ChangeKind::EntityMoved) {
            moved(field.entity, forward ? change.field.entity : change.to,
                  forward ? change.to : change.field.entity);
            return true;
        }
        const bool appears = (change.kind == ChangeKind::EntityAdded) == forward;
        return follow(field.entity, change.field.entity, appears, !appears);
    };
    for (size_t i = m_done; i != saved; forward ? ++i : --i) {
        const Step& step = m_steps[forward ? i : i - 1];
        for (size_t n = 0; n < step.size(); ++n) {
            if (!pass(step[forward ? n : step.size() - 1 - n])) {
                return std::nullopt;
            }
        }
    }
    return value;
}

std::vector<std::string> ProjectEdits::unsavedLines() const {
    const size_t saved = m_saved < 0 ? 0 : static_cast<size_t>(m_saved);
    const bool forward = saved <= m_done;
    std::vector<const ProjectChange*> changes;
    const auto add = [&](const ProjectChange& change) {
        std::erase_if(changes, [&](const ProjectChange* earlier) { return areOfOneField(*earlier, change); });
        changes.push_back(&change);
    };
    for (size_t i = saved; i < m_done; ++i) {
        std::ranges::for_each(m_steps[i], add);
    }
    for (size_t i = saved; i > m_done; --i) {
        std::for_each(m_steps[i - 1].rbegin(), m_steps[i - 1].rend(), add);
    }
    std::vector<std::string> lines;
    if (m_saved < 0) {
        lines.push_back("changes that had been saved were taken back");
    }
    for (const ProjectChange* const change : changes) {
        const bool isValue = change->kind == ChangeKind::Value;
        const std::string line = isValue ? valueLine(*change, forward ? change->after : change->before)
                                         : lineOf(*change) + (forward ? "" : ", taken back");
        lines.push_back(onOneLine(line, "\\n"));
    }
    return lines;
}

void ProjectEdits::clear() {
    m_steps.clear();
    m_done = 0;
    m_saved = 0;
    m_joinable = false;
}

std::vector<std::string> ProjectEdits::carryTo(CJ8ProjectManager& project) {
    const size_t done = std::exchange(m_done, 0);
    const std::vector<Step> steps = std::exchange(m_steps, {});
    clear();
    std::vector<const ProjectChange*> unplaced;
    // Makes the change; adds it to `step` as it was made.
    const auto madeAnew = [&](const ProjectChange& change, Step& step) {
        auto placed = placedAnew(project, change);
        if (!placed || !apply(project, {std::move(*placed)})) {
            return false;
        }
        step.push_back(std::move(m_steps.back()[0]));
        m_steps.clear();
        m_done = 0;
        return true;
    };
    Step all;
    for (size_t i = 0; i < done; ++i) {
        for (const ProjectChange& change : steps[i]) {
            if (!madeAnew(change, all)) {
                // Of several values of one field the last one is the user's.
                std::erase_if(unplaced,
                              [&](const ProjectChange* earlier) { return areOfOneField(*earlier, change); });
                unplaced.push_back(&change);
            }
        }
    }
    // What was taken back is made too, and taken back again; from the first step on that can't be made there is no
    // redo.
    std::vector<Step> redone;
    bool isWhole = true;
    for (size_t i = done; i < steps.size() && isWhole; ++i) {
        Step& step = redone.emplace_back();
        isWhole =
            std::ranges::all_of(steps[i], [&](const ProjectChange& each) { return madeAnew(each, step); });
    }
    if (!all.empty()) {
        m_steps.push_back(std::move(all));
    }
    const size_t kept = m_steps.size();
    std::ranges::move(redone, std::back_inserter(m_steps));
    m_done = m_steps.size();
    while (m_done > kept) {
        undo(project);
    }
    if (!isWhole) {
        m_steps.pop_back();
    }
    m_saved = 0;
    std::vector<std::string> lines;
    for (const ProjectChange* const change : unplaced) {
        lines.push_back(lineOf(*change));
    }
    return lines;
}

}  // namespace zoka
