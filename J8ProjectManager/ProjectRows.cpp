#include "J8ProjectManager/ProjectRows.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace zoka {
namespace {

using Kind = ProjectField::Kind;

ProjectRow heading(std::string label, std::string help = {}) {
    ProjectRow row;
    row.facts.field = EntryField::Heading;
    row.facts.label = std::move(label);
    row.facts.help = std::move(help);
    return row;
}

// A row of a plain text.
ProjectRow textRow(const CJ8ProjectManager& project, ProjectField field, std::string label,
                   std::string help) {
    ProjectRow row;
    row.field = std::move(field);
    row.hasField = row.editable = true;
    const auto value = fieldValue(project, row.field);
    row.isOwn = value.has_value();
    row.current = value.value_or("");
    row.facts.field = EntryField::StringField;
    row.facts.label = std::move(label);
    row.facts.help = std::move(help);
    row.facts.value = row.current;
    return row;
}

// A row of a value with a type. `inherited` is what holds without `own`.
ProjectRow typedRow(const J8TypedValue& typed, ProjectField field, const std::optional<std::string>& own,
                    std::optional<std::string> inherited) {
    ProjectRow row;
    row.field = std::move(field);
    row.hasField = true;
    row.type = typed.type;
    row.isOwn = own.has_value();
    row.current = own ? *own : inherited.value_or("");
    row.facts = factsOf(typed, row.current, inherited);
    row.inherited = std::move(inherited);
    if (const std::string limits = limitsText(typed); !limits.empty()) {
        row.facts.help += (row.facts.help.empty() ? "" : "\n") + limits;
    }
    return row;
}

// Null where no behaviors file has it.
const CJ8BehaviorData* parentOf(const CJ8ProjectManager& project, const J8LevelEntity& entity) {
    return entity.parent.empty() ? nullptr : project.behavior(entity.parent);
}

// A value that nothing declares.
ProjectRow strayRow(ProjectField field, std::string label, const std::string& value) {
    ProjectRow row;
    row.field = std::move(field);
    row.hasField = row.editable = row.isOwn = true;
    row.type = J8Type::Unknown;
    row.current = value;
    row.facts.field = EntryField::StringField;
    row.facts.label = std::move(label);
    row.facts.value = value;
    return row;
}

void addSkills(std::vector<ProjectRow>& rows, const J8LevelEntity& entity, const CJ8BehaviorData* parent,
               ProjectField field) {
    field.kind = Kind::EntitySkill;
    std::map<int, const J8EntitySkill*> own;
    for (const J8EntitySkill& skill : entity.skills) {
        own.try_emplace(skill.num, &skill);
    }
    const size_t first = rows.size();
    if (parent) {
        std::set<int> done;
        for (const J8Skill& skill : parent->m_apSkillEdits) {
            if (!done.insert(skill.num).second) {
                continue;  // of several of one number the first counts
            }
            field.num = skill.num;
            const auto found = own.find(skill.num);
            rows.push_back(typedRow(J8TypedValue::of(skill), field,
                                    found == own.end() ? std::nullopt : found->second->value, skill.value));
            rows.back().skill = &skill;
            rows.back().editable = true;
            if (found != own.end()) {
                own.erase(found);
            }
        }
    }
    for (const auto& [num, skill] : own) {
        field.num = num;
        rows.push_back(strayRow(field, "Skill " + std::to_string(num), skill->value.value_or("")));
        rows.back().isOwn = skill->value.has_value();
    }
    if (rows.size() > first) {
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(first), heading("Skills"));
    }
}

void addComponent(std::vector<ProjectRow>& rows, const CJ8ProjectManager& project, const std::string& name,
                  std::map<std::string, std::string> own, const std::map<std::string, std::string>& inherited,
                  ProjectField field) {
    field.kind = Kind::EntityEdit;
    field.component = name;
    const CJ8CMPData* const component = project.component(name);
    rows.push_back(heading(name, component ? component->m_doc : "This component is in no components file."));
    std::set<std::string_view> done;
    for (size_t i = 0; component && i < component->m_properties.size(); ++i) {
        const J8Property& property = component->m_properties[i];
        if (!done.insert(property.name).second) {
            continue;
        }
        field.name = property.name;
        const auto mine = own.find(property.name);
        const auto given = inherited.find(property.name);
        rows.push_back(typedRow(J8TypedValue::of(property), field,
                                mine == own.end() ? std::nullopt : std::optional(mine->second),
                                given == inherited.end() ? property.value : given->second));
        rows.back().property = &property;
        rows.back().editable = property.edit;
        rows.back().fromParent = given != inherited.end();
        if (mine != own.end()) {
            own.erase(mine);
        }
    }
    for (const auto& [property, value] : own) {
        field.name = property;
        rows.push_back(strayRow(field, property, value));
    }
}

void addComponents(std::vector<ProjectRow>& rows, const CJ8ProjectManager& project,
                   const J8LevelEntity& entity, const CJ8BehaviorData* parent, const ProjectField& field) {
    using Values = std::map<std::string, std::string>;
    std::vector<std::string> names;
    std::map<std::string, std::pair<Values, Values>> values;  // own and inherited
    const auto use = [&](const std::string& name) -> std::pair<Values, Values>& {
        const auto [found, isNew] = values.try_emplace(name);
        if (isNew) {
            names.push_back(name);
        }
        return found->second;
    };
    if (parent) {
        for (const std::string& name : parent->m_apCMPNames) {
            use(name);
        }
        for (const J8ComponentEdit& edit : parent->m_apCMPEdits) {
            use(edit.component).second.try_emplace(edit.name, edit.value);
        }
    }
    for (const J8EntityComponent& component : entity.components) {
        Values& own = use(component.name).first;
        for (const J8Edit& edit : component.edits) {
            own.try_emplace(edit.name, edit.value);
        }
    }
    for (const std::string& name : names) {
        const auto& [own, inherited] = values[name];
        addComponent(rows, project, name, own, inherited, field);
    }
}

}  // namespace

std::string ProjectRow::stored(const std::string& shown) const {
    if (property) {
        return storedValue(J8TypedValue::of(*property), shown, current);
    }
    return skill ? storedValue(J8TypedValue::of(*skill), shown, current) : shown;
}

std::vector<ProjectRow> projectRows(const CJ8ProjectManager& project) {
    std::vector<ProjectRow> rows;
    ProjectField field;
    rows.push_back(textRow(project, field, "Name", "The project's name."));
    field.kind = Kind::ProjectRoot;
    rows.push_back(
        textRow(project, field, "Project folder", "The folder that \"proj\" files are read from."));
    field.kind = Kind::DataRoot;
    rows.push_back(textRow(project, field, "Data folder", "The folder that \"j8\" files are read from."));
    rows.push_back(heading("Files"));
    field.kind = Kind::Section;
    for (int i = 0; i < kJ8Sections; ++i) {
        field.section = static_cast<J8Section>(i);
        rows.push_back(textRow(project, field, sectionTag(field.section),
                               "\"proj:\", \"j8:\" or \"file:\" and the file's name."));
    }
    return rows;
}

std::vector<ProjectRow> levelRows(const CJ8ProjectManager& project, size_t level) {
    std::vector<ProjectRow> rows;
    ProjectField field;
    field.level = level;
    field.kind = Kind::LevelName;
    rows.push_back(textRow(project, field, "Name", "The level's name."));
    field.kind = Kind::LevelMap;
    rows.push_back(textRow(project, field, "Map file", "The level's map, in the project folder."));
    field.kind = Kind::LevelDoc;
    rows.push_back(textRow(project, field, "Documentation", "What the level is about."));
    rows.back().facts.lines = 4;
    rows.back().facts.bareFeeds = true;  // as texts of a tree end their lines
    return rows;
}

std::vector<ProjectRow> entityRows(const CJ8ProjectManager& project, size_t level, size_t entity) {
    const J8LevelEntity& record = project.m_apLevels[level].m_entities[entity];
    const CJ8BehaviorData* const parent = parentOf(project, record);
    std::vector<ProjectRow> rows;
    ProjectField field;
    field.level = level;
    field.entity = entity;
    field.kind = Kind::EntityName;
    rows.push_back(textRow(project, field, "Name", "The entity's name in the level."));
    field.kind = Kind::EntityParent;
    rows.push_back(textRow(project, field, "Parent",
                           parent                  ? parent->m_doc
                           : record.parent.empty() ? "The entity has no behavior."
                                                   : "No behaviors file has this behavior."));
    rows.back().facts.field = EntryField::DropList;
    rows.back().facts.hostNames = project.behaviorNames();
    addSkills(rows, record, parent, field);
    addComponents(rows, project, record, parent, field);
    return rows;
}

std::vector<ProjectRow> propertyRows(const CJ8ProjectManager& project, size_t component) {
    const CJ8CMPData& record = project.m_apComponents[component];
    std::vector<ProjectRow> rows;
    rows.reserve(record.m_properties.size());
    ProjectField field;
    field.kind = Kind::EntityEdit;
    field.component = record.m_name;
    for (const J8Property& property : record.m_properties) {
        field.name = property.name;
        rows.push_back(typedRow(J8TypedValue::of(property), field, std::nullopt, property.value));
        rows.back().property = &property;
        rows.back().readOnly = "This is the default, from the components file, which is changed there.";
    }
    return rows;
}

std::vector<ProjectRow> componentRows(const CJ8ProjectManager& project, size_t level, size_t entity) {
    const J8LevelEntity& record = project.m_apLevels[level].m_entities[entity];
    std::vector<ProjectRow> rows;
    ProjectField field;
    field.level = level;
    field.entity = entity;
    addComponents(rows, project, record, parentOf(project, record), field);
    return rows;
}

EditValue editValue(const CJ8ProjectManager& project, const ProjectField& edit) {
    EditValue value;
    value.own = fieldValue(project, edit);
    const CJ8BehaviorData* const parent =
        parentOf(project, project.m_apLevels[edit.level].m_entities[edit.entity]);
    if (parent) {
        for (const J8ComponentEdit& one : parent->m_apCMPEdits) {
            if (one.component == edit.component && one.name == edit.name) {
                value.inherited = one.value;
                value.fromParent = true;
                return value;
            }
        }
    }
    if (const CJ8CMPData* const component = project.component(edit.component)) {
        for (const J8Property& property : component->m_properties) {
            if (property.name == edit.name) {
                value.inherited = property.value;
                return value;
            }
        }
    }
    return value;
}

bool usesComponent(const CJ8ProjectManager& project, const J8LevelEntity& entity,
                   const std::string& component) {
    const CJ8BehaviorData* const parent = parentOf(project, entity);
    return (parent && std::find(parent->m_apCMPNames.begin(), parent->m_apCMPNames.end(), component) !=
                          parent->m_apCMPNames.end()) ||
           std::any_of(entity.components.begin(), entity.components.end(),
                       [&](const J8EntityComponent& one) { return one.name == component; });
}

std::string takenRefusal(const CJ8ProjectManager& project, const ProjectField& field,
                         const std::string& value) {
    if (field.kind == Kind::LevelName) {
        for (size_t i = 0; i < project.m_apLevels.size(); ++i) {
            if (i != field.level && project.m_apLevels[i].m_name == value) {
                return "There is a level of that name already.";
            }
        }
    }
    if (field.kind == Kind::EntityName) {
        const std::vector<J8LevelEntity>& entities = project.m_apLevels[field.level].m_entities;
        for (size_t i = 0; i < entities.size(); ++i) {
            if (i != field.entity && entities[i].name == value) {
                return "There is an entity of that name in this level already.";
            }
        }
    }
    return {};
}

std::string fieldRefusal(const CJ8ProjectManager& project, const ProjectField& field,
                         const std::string& value) {
    switch (field.kind) {
        case Kind::Name:
            return value.empty() ? "Enter a Project Name." : "";
        case Kind::LevelName:
        case Kind::EntityName:
            return value.empty() ? "A name is needed, by which it is told from the others." : "";
        case Kind::Section:
            if (!value.starts_with("proj:") && !value.starts_with("j8:") && !value.starts_with("file:")) {
                return "\"proj:\", \"j8:\" or \"file:\" must stand in front of the file's name.";
            }
            return value.ends_with(":") ? "The file's name is missing behind it." : "";
        case Kind::EntitySkill:
        case Kind::EntityEdit:
            break;
        default:
            return {};
    }
    const J8LevelEntity& entity = project.m_apLevels[field.level].m_entities[field.entity];
    if (field.kind == Kind::EntitySkill) {
        const CJ8BehaviorData* const parent = parentOf(project, entity);
        for (size_t i = 0; parent && i < parent->m_apSkillEdits.size(); ++i) {
            if (parent->m_apSkillEdits[i].num == field.num) {
                return valueRefusal(J8TypedValue::of(parent->m_apSkillEdits[i]), value);
            }
        }
        return {};
    }
    const CJ8CMPData* const component = project.component(field.component);
    for (size_t i = 0; component && i < component->m_properties.size(); ++i) {
        if (component->m_properties[i].name == field.name) {
            return valueRefusal(J8TypedValue::of(component->m_properties[i]), value);
        }
    }
    return {};
}

}  // namespace zoka
