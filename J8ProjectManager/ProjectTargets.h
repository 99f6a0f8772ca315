// The pages of a project's window, and which thing on them a problem is about.
#pragma once

#include <cstddef>
#include <optional>

#include "J8ProjectManager/ProjectSession.h"

namespace zoka {

enum class ProjectTab { Overview, Behaviors, Components, Levels, Report, Problems };
inline constexpr const char* kProjectTabs[] = {"Overview", "Behaviors", "Components",
                                               "Levels",   "Report",    "Problems"};

// A behaviour, a component, a level (`second` is nothing then) or an entity of it, by their places in the model's
// lists; or a whole page.
struct ProjectTarget {
    ProjectTab tab = ProjectTab::Overview;
    size_t first = 0;
    std::optional<size_t> second = {};
    std::optional<ProjectField> field = {};  // the value of the level or entity, where it is about one
    bool operator==(const ProjectTarget&) const = default;
};

// What stands at the problem's place, or begins last above it in the same file; the overview where nothing does.
ProjectTarget targetOf(const CJ8ProjectManager& project, const ProjectProblem& problem);
// The page and the thing that a value belongs to.
ProjectTarget targetOf(const ProjectField& field);

// What to show after a change was taken back (`undone`) or made again: in the place of what is gone its neighbour
// above.
ProjectTarget targetOf(const ProjectChange& change, bool undone);

}  // namespace zoka
