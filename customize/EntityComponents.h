// The components that a J8 project gives entities, as rows of a panel. Edits go into the project in memory, until it
// is saved.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "J8ProjectManager/ProjectPanel.h"
#include "J8ProjectManager/ProjectSession.h"
#include "controls/EntryModel.h"
#include "util/FileTime.h"

namespace zoka {

// A level and an entity of it, by their places in the model.
struct EntityPlace {
    size_t level = 0, entity = 0;
};
// In the level whose map has the project file's name, as that of the main script beside it has; where there is no such
// level, in the first one that has the entity. `name` as the project's texts.
std::optional<EntityPlace> placeOfEntity(const CJ8ProjectManager& project, const std::string& name);

// The behaviour that makes the project define a panel for the entity; nothing when it defines none. Loads the project
// into a model of its own. The entity's name is in the system's character set, the behaviour's in UTF-8. [any thread]
std::optional<std::string> definedBehavior(const std::string& projectFile, const std::string& entity);

// Rows are counted from 0; all their texts are the project's own, in UTF-8. Names of entities are the editor's, in the
// system's character set. The prompt outlives the object. [panel thread]
class EntityComponents {
public:
    EntityComponents(std::string projectFile, UserPrompt& prompt)
        : m_file(std::move(projectFile)), m_project(m_model, prompt) {
        m_project.modelGoes = [this] { dropRows(); };  // which point into it
    }

    // Reads the project. False when it can't be read; no entity has components then.
    bool load();
    // Reads it again when its files are others than before and nothing is unsaved; true when that has happened.
    bool reloadIfChanged();
    const std::string& file() const { return m_file; }
    // Goes on to another project; unsaved edits are given up. Where there is no such file, or its name is empty,
    // entities have no components.
    void moveTo(std::string projectFile);

    // Makes the rows that these entities share.
    void show(std::vector<std::string> entities);
    size_t size() const { return m_rows.size(); }
    EntryModel modelOf(size_t row) const;
    // Puts the value into the row's model, as the project holds it now.
    void showValue(size_t row, EntryModel& model) const;
    // Whose value each row shows, its type, and where it is declared.
    std::string details(size_t row) const;
    // "the entity", "the behavior guard", "the component's default"; empty for a row without a value.
    std::string whoSays(size_t row) const;
    // The component's own default; nothing where no components file has the property.
    std::optional<std::string> defaultOf(size_t row) const;
    // "body.mass"; empty for a row without a value.
    std::string nameOf(size_t row) const;
    // Values that their type or limits forbid, a line each, in UTF-8.
    std::vector<std::string> findings() const;
    // Of the entity's behaviour, in UTF-8; empty when it has none.
    std::vector<std::pair<int, std::string>> skillNames(const std::string& entity) const;
    std::string behaviorOf(const std::string& entity) const;

    // Gives all entities the value, or none, with the reason. An entity that inherits the value gets no edit.
    Outcome set(size_t row, const std::string& shown);
    // Takes the entities' own values away.
    Outcome inherit(size_t row);
    // How many edits are done, and back or forward to that many.
    size_t editsDone() const { return m_project.editsDone(); }
    void goTo(size_t edits);

    bool hasChanges() const { return m_project.hasChanges(); }
    // As the project's own window does. The project may be loaded anew by it, before the last question is asked; there
    // are no rows then until show().
    SaveResult save();
    // True when the panel may close: asks about unsaved edits, and saves them as save() does.
    bool close() { return m_project.close(); }
    // As ProjectSession's. The rows are not to be used any more.
    void offerUnsaved() noexcept { m_project.offerUnsaved(); }
    void keepUnsaved() noexcept { m_project.keepUnsaved(); }

private:
    struct Row {
        ProjectRow shown;                  // of the first entity; without a field it is text alone
        std::vector<ProjectField> fields;  // one an entity
        std::vector<EditValue> values;     // likewise
    };

    const J8LevelEntity& record(const EntityPlace& place) const {
        return m_model.m_apLevels[place.level].m_entities[place.entity];
    }
    const CJ8BehaviorData* parentOf(const std::string& entity) const;
    void dropRows();
    void addText(const char* text, std::string help);
    void addRows();
    // One an entity, all or none; nothing takes its own value away.
    Outcome give(Row& row, const std::vector<std::optional<std::string>>& own);
    void readValues();
    std::vector<std::optional<FileTime>> times() const;

    std::string m_file;
    CJ8ProjectManager m_model;
    ProjectSession m_project;
    Outcome m_loaded = Refusal{};  // or why the project could not be loaded
    bool m_isOptional = false;
    std::vector<std::optional<FileTime>> m_times;  // of the files read
    std::vector<std::string> m_entities;
    std::vector<EntityPlace> m_places;  // of the entities; empty when one has none
    std::vector<Row> m_rows;
};

}  // namespace zoka
