#include "J8ProjectManager/ProjectTargets.h"

#include <utility>

namespace zoka {

ProjectTarget targetOf(const CJ8ProjectManager& project, const ProjectProblem& problem) {
    ProjectTarget best;
    std::uint32_t bestPlace = 0;
    const auto offer = [&](std::uint32_t source, std::uint32_t place, ProjectTab tab, size_t first,
                           std::optional<size_t> second = {}, std::optional<ProjectField> field = {}) {
        if (source == problem.source && place > 0 && place <= problem.place && place >= bestPlace) {
            bestPlace = place;
            best = {tab, first, second, std::move(field)};
        }
    };
    const auto offerEntity = [&](size_t i, size_t n) {
        const J8LevelEntity& entity = project.m_apLevels[i].m_entities[n];
        ProjectField field;
        field.level = i;
        field.entity = n;
        field.kind = ProjectField::Kind::EntityName;
        if (!entity.parent.empty() && !project.behavior(entity.parent)) {
            field.kind = ProjectField::Kind::EntityParent;
        }
        offer(0, entity.place, ProjectTab::Levels, i, n, field);
        field.kind = ProjectField::Kind::EntitySkill;
        for (const J8EntitySkill& skill : entity.skills) {
            field.num = skill.num;
            offer(0, skill.place, ProjectTab::Levels, i, n, field);
        }
        field.num = ProjectField().num;
        field.kind = ProjectField::Kind::EntityEdit;
        for (const J8EntityComponent& component : entity.components) {
            field.component = component.name;
            for (const J8Edit& edit : component.edits) {
                field.name = edit.name;
                offer(0, edit.place, ProjectTab::Levels, i, n, field);
            }
        }
    };
    for (size_t i = 0; i < project.m_apBehavior.size(); ++i) {
        offer(project.m_apBehavior[i].m_source, project.m_apBehavior[i].m_place, ProjectTab::Behaviors, i);
    }
    for (size_t i = 0; i < project.m_apComponents.size(); ++i) {
        offer(project.m_apComponents[i].m_source, project.m_apComponents[i].m_place, ProjectTab::Components,
              i);
    }
    for (size_t i = 0; i < project.m_apLevels.size(); ++i) {
        const CJ8LevelData& level = project.m_apLevels[i];
        offer(0, level.m_place, ProjectTab::Levels, i);
        for (size_t n = 0; n < level.m_entities.size(); ++n) {
            offerEntity(i, n);
        }
    }
    return best;
}

ProjectTarget targetOf(const ProjectField& field) {
    using Kind = ProjectField::Kind;
    switch (field.kind) {
        case Kind::Name:
        case Kind::ProjectRoot:
        case Kind::DataRoot:
        case Kind::Section:
            return {};
        case Kind::LevelName:
        case Kind::LevelMap:
        case Kind::LevelDoc:
            return {ProjectTab::Levels, field.level, {}, field};
        default:
            return {ProjectTab::Levels, field.level, field.entity, field};
    }
}

ProjectTarget targetOf(const ProjectChange& change, bool undone) {
    using Kind = ProjectChange::Kind;
    const size_t level = change.field.level, entity = change.field.entity;
    const auto above = [](size_t place) { return place > 0 ? place - 1 : 0; };
    switch (change.kind) {
        case Kind::LevelAdded:
        case Kind::LevelRemoved: {
            const bool isGone = (change.kind == Kind::LevelAdded) == undone;
            return {ProjectTab::Levels, isGone ? above(level) : level, {}};
        }
        case Kind::LevelMoved:
            return {ProjectTab::Levels, undone ? level : change.to, {}};
        case Kind::EntityAdded:
        case Kind::EntityRemoved: {
            const bool isGone = (change.kind == Kind::EntityAdded) == undone;
            return {ProjectTab::Levels, level, isGone ? above(entity) : entity};
        }
        case Kind::EntityMoved:
            return {ProjectTab::Levels, level, undone ? entity : change.to};
        default:
            return targetOf(change.field);
    }
}

}  // namespace zoka
