#include "J8ProjectManager/ProjectTargets.h"

#include <tuple>

#include "J8ProjectManager/ProjectPlaces.h"

namespace zoka {

ProjectTarget targetOf(const CJ8ProjectManager& project, const ProjectProblem& problem) {
    ProjectTarget best;
    XMLPlace bestAt;
    ProjectPlaces places(project);
    const auto offer = [&](std::uint32_t source, std::uint32_t place, ProjectTab tab, size_t first,
                           std::optional<size_t> second = {}) {
        if (source >= project.sources().size() || project.sources()[source] != problem.file) {
            return;
        }
        const XMLPlace at = places.at(source, place);
        const auto wanted = std::tuple(problem.line, problem.column);
        if (at.line > 0 && std::tuple(at.line, at.column) <= wanted &&
            std::tuple(at.line, at.column) >= std::tuple(bestAt.line, bestAt.column)) {
            bestAt = at;
            best = {tab, first, second};
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
            offer(0, level.m_entities[n].place, ProjectTab::Levels, i, n);
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
            return {ProjectTab::Levels, field.level, {}};
        default:
            return {ProjectTab::Levels, field.level, field.entity};
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
