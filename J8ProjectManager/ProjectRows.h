// The values of a project as rows of a panel.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "J8ProjectManager/ProjectFields.h"
#include "J8ProjectManager/PropertyFacts.h"
#include "controls/EntryFacts.h"

namespace zoka {

// A row, or the heading of those behind it. Made from the model as it is; holds pointers into its components and
// behaviours, which edits of the project leave alone.
struct ProjectRow {
    EntryFacts facts;  // with the value that holds now: the entity's own or its parent's
    ProjectField field;
    J8Type type = J8Type::String;
    bool hasField = false;  // false: a heading, or a value that is only shown
    bool editable = false;  // false with hasField: a property that its component doesn't offer for editing
    const char* readOnly = nullptr;  // or another reason why it can't be changed; static
    bool isOwn = false;              // the entity says so itself
    std::optional<std::string>
        inherited;            // what holds without a value of its own; nothing where no parent has it
    bool fromParent = false;  // `inherited` is an edit of the parent, not the component's default
    // What the row's control shows, as the file would hold it: for ProjectSession::setValue.
    std::string stored(const std::string& shown) const;
    // Whether the entity's own value is another than the inherited one.
    bool differs() const { return isOwn && current != inherited; }
    std::string current;               // the value that holds now, as the file holds it
    std::optional<std::string> saved;  // of a row without `inherited`: what it counts as changed against

    const J8Property* property = nullptr;
    const J8Skill* skill = nullptr;
};

std::vector<ProjectRow> projectRows(const CJ8ProjectManager& project);
std::vector<ProjectRow> levelRows(const CJ8ProjectManager& project, size_t level);
// Name and parent; the skills of its parent, then those it has beyond; the properties of the components that it
// or its parent uses, then edits of properties that no component has.
std::vector<ProjectRow> entityRows(const CJ8ProjectManager& project, size_t level, size_t entity);
// The properties of a component with their defaults, which no save writes: only to be looked at.
std::vector<ProjectRow> propertyRows(const CJ8ProjectManager& project, size_t component);
// The components of entityRows alone.
std::vector<ProjectRow> componentRows(const CJ8ProjectManager& project, size_t level, size_t entity);

// Who says what an edit of an entity is, as its row tells.
struct EditValue {
    std::optional<std::string> own, inherited;
    bool fromParent = false;

    std::string current() const { return own ? *own : inherited.value_or(""); }
};
EditValue editValue(const CJ8ProjectManager& project, const ProjectField& edit);
// Whether the entity, or its parent, uses the component.
bool usesComponent(const CJ8ProjectManager& project, const J8LevelEntity& entity,
                   const std::string& component);

// Why a level or an entity should not get that name: another one has it. Else empty.
std::string takenRefusal(const CJ8ProjectManager& project, const ProjectField& field,
                         const std::string& value);

// Why the value can't be given to the field; empty when it can.
std::string fieldRefusal(const CJ8ProjectManager& project, const ProjectField& field,
                         const std::string& value);

}  // namespace zoka
