#include "customize/EntityComponents.h"

#include <algorithm>

#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "xml/XMLRead.h"

namespace zoka {
namespace {

// What the panel says in the place of rows that can't be shown.
constexpr const char* kNoComponentData = "COULD NOT FIND CMP DATA!";
constexpr const char* kNoParent = "No Parent Behavior";

std::string_view withoutExtension(std::string_view name) {
    return name.substr(0, name.rfind('.'));
}

std::optional<size_t> entityNamed(const CJ8LevelData& level, const std::string& name) {
    for (size_t i = 0; i < level.m_entities.size(); ++i) {
        if (level.m_entities[i].name == name) {
            return i;
        }
    }
    return std::nullopt;
}

// Nothing where the project names no map of the project file's name.
std::optional<size_t> openLevel(const CJ8ProjectManager& project) {
    const std::string file = project.projectFile();
    const std::string_view open = withoutExtension(fileNameOf(file));
    for (size_t i = 0; i < project.m_apLevels.size(); ++i) {
        const std::string map = pathFromXml(project.m_apLevels[i].m_mapFile.m_path);
        if (!map.empty() && equalNoCase(withoutExtension(fileNameOf(map)), open)) {
            return i;
        }
    }
    return std::nullopt;
}

template <class List, class Value>
bool allEqual(const List& list, const Value& valueOf) {
    return std::all_of(list.begin(), list.end(),
                       [&](const auto& one) { return valueOf(one) == valueOf(list.front()); });
}

std::string current(const EditValue& value) {
    return value.current();
}

// An entity's name, as the project has it.
std::string named(const std::string& entity) {
    return utf8Text(entity, TextSet::System);
}

std::string same(const std::string& text) {
    return text;
}

// Rows show the project's texts as they are.
constexpr ProjectTexts kTexts{same, same, TextSet::Utf8};

}  // namespace

std::optional<EntityPlace> placeOfEntity(const CJ8ProjectManager& project, const std::string& name) {
    const auto open = openLevel(project);
    for (size_t level = open.value_or(0); level < project.m_apLevels.size(); ++level) {
        if (const auto entity = entityNamed(project.m_apLevels[level], name)) {
            return EntityPlace{level, *entity};
        }
        if (open) {
            break;
        }
    }
    return std::nullopt;
}

std::optional<std::string> definedBehavior(const std::string& projectFile, const std::string& entity) {
    CJ8ProjectManager project;
    if (!project.LoadFromXML(projectFile, false)) {
        return std::nullopt;
    }
    const auto place = placeOfEntity(project, named(entity));
    if (!place) {
        return std::nullopt;
    }
    const std::string& parent = project.m_apLevels[place->level].m_entities[place->entity].parent;
    return !parent.empty() && project.behavior(parent) ? std::optional(parent) : std::nullopt;
}

std::vector<std::optional<FileTime>> EntityComponents::times() const {
    std::vector<std::optional<FileTime>> all;
    const auto add = [&all](const std::string& path) {
        FileTime time;
        all.push_back(osFiles().readTime(path, &time) ? std::optional(time) : std::nullopt);
    };
    add(m_file);
    for (size_t i = 1; i < m_model.sources().size(); ++i) {
        add(pathFromXml(m_model.sources()[i]));
    }
    return all;
}

bool EntityComponents::load() {
    m_loaded = m_project.open(m_file);
    m_times = times();
    return bool(m_loaded);
}

bool EntityComponents::reloadIfChanged() {
    return !hasChanges() && times() != m_times && (load(), true);
}

void EntityComponents::moveTo(std::string projectFile) {
    m_file = std::move(projectFile);
    m_isOptional = !osFiles().exists(m_file);
    load();
}

const CJ8BehaviorData* EntityComponents::parentOf(const std::string& entity) const {
    const auto place = placeOfEntity(m_model, named(entity));
    return place && !record(*place).parent.empty() ? m_model.behavior(record(*place).parent) : nullptr;
}

std::vector<std::pair<int, std::string>> EntityComponents::skillNames(const std::string& entity) const {
    std::vector<std::pair<int, std::string>> names;
    if (const CJ8BehaviorData* const parent = parentOf(entity)) {
        for (const J8Skill& skill : parent->m_apSkillEdits) {
            names.emplace_back(skill.num, skill.name);
        }
    }
    return names;
}

std::string EntityComponents::behaviorOf(const std::string& entity) const {
    const CJ8BehaviorData* const parent = parentOf(entity);
    return parent ? parent->m_name : "";
}

void EntityComponents::addText(const char* text, std::string help) {
    Row& row = m_rows.emplace_back();
    row.shown.facts.field = EntryField::Text;
    row.shown.facts.label = text;
    row.shown.facts.help = std::move(help);
}

void EntityComponents::dropRows() {
    m_places.clear();
    m_rows.clear();
}

void EntityComponents::show(std::vector<std::string> entities) {
    m_entities = std::move(entities);
    dropRows();
    if (m_entities.empty()) {
        return;
    }
    if (!m_loaded) {
        if (m_isOptional) {
            return;
        }
        addText(kNoComponentData, xmlFromPath(m_loaded.why()));
        return;
    }
    for (const std::string& entity : m_entities) {
        const auto place = placeOfEntity(m_model, named(entity));
        if (!place) {
            m_places.clear();
            addText(kNoComponentData, "The project has no entity " + named(entity) + " in this level.");
            return;
        }
        m_places.push_back(*place);
    }
    addRows();
}

void EntityComponents::addRows() {
    for (size_t i = 0; i < m_places.size(); ++i) {
        const std::string& parent = record(m_places[i]).parent;
        if (parent.empty() || !m_model.behavior(parent)) {
            const std::string entity = named(m_entities[i]);
            addText(kNoParent, parent.empty() ? "The entity " + entity + " has no parent."
                                              : "The project has no behavior " + parent + ", the parent of " +
                                                    entity + ".");
            break;
        }
    }
    std::vector<ProjectRow> heading;  // not added yet: it may have no row
    for (ProjectRow& own : componentRows(m_model, m_places.front().level, m_places.front().entity)) {
        if (!own.hasField) {
            heading.assign(1, std::move(own));
            const std::string& name = heading.front().facts.label;
            const bool shared = std::all_of(m_places.begin(), m_places.end(), [&](const EntityPlace& place) {
                return usesComponent(m_model, record(place), name);
            });
            if (shared && !m_model.component(name)) {
                const std::string help = heading.front().facts.help;
                m_rows.emplace_back().shown = std::move(heading.front());
                heading.clear();
                addText(kNoComponentData, help);
            }
            continue;
        }
        Row row;
        bool inAll = true;
        for (const EntityPlace& place : m_places) {
            ProjectField& field = row.fields.emplace_back(own.field);
            field.level = place.level;
            field.entity = place.entity;
            row.values.push_back(editValue(m_model, field));
            inAll = inAll && (own.property ? usesComponent(m_model, record(place), field.component)
                                           : row.values.back().own.has_value());
        }
        if (!inAll) {
            continue;
        }
        if (!heading.empty()) {
            m_rows.emplace_back().shown = std::move(heading.front());
            heading.clear();
        }
        row.shown = std::move(own);
        m_rows.push_back(std::move(row));
    }
}

void EntityComponents::readValues() {
    for (Row& row : m_rows) {
        for (size_t n = 0; n < row.fields.size(); ++n) {
            row.values[n] = editValue(m_model, row.fields[n]);
        }
    }
}

EntryModel EntityComponents::modelOf(size_t i) const {
    const Row& row = m_rows[i];
    EntryModel first = rowModel(row.shown, kTexts);
    if (row.values.size() < 2) {
        return first;
    }
    EntryFacts facts = first.facts();
    if (!allEqual(row.values, [](const EditValue& value) { return value.inherited; })) {
        facts.different = true;
        facts.value.clear();
    }
    EntryModel model(std::move(facts));
    model.setBlocked(first.blocked());
    showValue(i, model);
    return model;
}

void EntityComponents::showValue(size_t i, EntryModel& model) const {
    const Row& row = m_rows[i];
    if (row.values.empty()) {
        return;
    }
    if (allEqual(row.values, current)) {
        model.putBack(shownForm(row.shown, row.values.front().current(), kTexts));
    } else {
        model.setDifferent(std::any_of(row.values.begin(), row.values.end(), [](const EditValue& value) {
            return value.own && value.own != value.inherited;
        }));
    }
}

std::string EntityComponents::whoSays(size_t i) const {
    std::vector<std::pair<std::string, size_t>> sayers;  // each once, with the number of entities
    for (size_t n = 0; n < m_rows[i].values.size(); ++n) {
        const EditValue& value = m_rows[i].values[n];
        const std::string sayer = value.own          ? "the entity"
                                  : value.fromParent ? "the behavior " + record(m_places[n]).parent
                                                     : "the component's default";
        const auto found = std::find_if(sayers.begin(), sayers.end(),
                                        [&](const auto& known) { return known.first == sayer; });
        if (found == sayers.end()) {
            sayers.emplace_back(sayer, 1);
        } else {
            ++found->second;
        }
    }
    if (sayers.size() == 1) {
        return sayers.front().first;
    }
    std::string text;
    for (const auto& [sayer, count] : sayers) {
        text += (text.empty() ? "" : ", ") + sayer + " (" + std::to_string(count) + ')';
    }
    return text;
}

std::string EntityComponents::details(size_t i) const {
    const std::string sayer = whoSays(i);
    if (sayer.empty()) {
        return m_rows[i].shown.facts.help;
    }
    const std::string more = rowDetails(m_project, m_rows[i].shown, kTexts);
    return "Value from " + sayer + (more.empty() ? "" : "\r\n" + more);
}

std::optional<std::string> EntityComponents::defaultOf(size_t i) const {
    const ProjectRow& row = m_rows[i].shown;
    return row.property ? std::optional(shownForm(row, row.property->value, kTexts)) : std::nullopt;
}

std::string EntityComponents::nameOf(size_t i) const {
    const Row& row = m_rows[i];
    return row.fields.empty() ? "" : row.fields.front().component + '.' + row.fields.front().name;
}

std::vector<std::string> EntityComponents::findings() const {
    std::vector<std::string> lines;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const ProjectRow& row = m_rows[i].shown;
        for (size_t n = 0; row.property && n < m_rows[i].values.size(); ++n) {
            const std::string value = m_rows[i].values[n].current();
            const std::string why = valueRefusal(J8TypedValue::of(*row.property), value);
            if (!why.empty()) {
                lines.push_back(named(m_entities[n]) + ": " + nameOf(i) + " is " + value + "; " + why);
            }
        }
    }
    return lines;
}

Outcome EntityComponents::set(size_t i, const std::string& value) {
    Row& row = m_rows[i];
    std::vector<std::optional<std::string>> given;
    for (size_t n = 0; n < row.fields.size(); ++n) {
        std::string stored = value;
        if (row.shown.property) {
            stored = storedValue(J8TypedValue::of(*row.shown.property), stored, row.values[n].current());
        }
        const bool inherits = stored == row.values[n].inherited;
        const std::string refusal = inherits ? "" : fieldRefusal(m_model, row.fields[n], stored);
        if (!refusal.empty()) {
            return Refusal{refusal};
        }
        given.push_back(inherits ? std::nullopt : std::optional(std::move(stored)));
    }
    return give(row, given);
}

Outcome EntityComponents::inherit(size_t i) {
    return give(m_rows[i], std::vector<std::optional<std::string>>(m_rows[i].fields.size()));
}

Outcome EntityComponents::give(Row& row, const std::vector<std::optional<std::string>>& own) {
    std::vector<ProjectSession::FieldValue> values;
    for (size_t n = 0; n < row.fields.size(); ++n) {
        values.push_back({row.fields[n], own[n]});
    }
    if (Outcome set = m_project.setValues(values); !set) {
        return set;
    }
    for (size_t n = 0; n < row.fields.size(); ++n) {
        row.values[n].own = own[n];
    }
    return {};
}

void EntityComponents::goTo(size_t edits) {
    while (editsDone() > edits) {
        m_project.undo();
    }
    while (editsDone() < edits && m_project.canRedo()) {
        m_project.redo();
    }
    readValues();
}

SaveResult EntityComponents::save() {
    const SaveResult saved = m_project.save();
    m_times = times();
    return saved;
}

}  // namespace zoka
