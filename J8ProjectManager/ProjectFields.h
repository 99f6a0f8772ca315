// The values of a project that a user can see and change one by one, and the addresses that name them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "J8ProjectManager/J8ProjectManager.h"
#include "util/Outcome.h"

namespace zoka {

// Which value of a project. A number is the place in its list.
struct ProjectField {
    enum class Kind {
        Name,         // "name"
        ProjectRoot,  // "paths/project"
        DataRoot,     // "paths/data"
        Section,      // "section/Camera": "proj:", "j8:" or "file:" and the path text
        LevelName,    // "level/harbour/name"
        LevelMap,     // "level/harbour/mapfile"
        LevelDoc,     // "level/harbour/doc"
        EntityName,   // "level/harbour/entity/guard/name"
        EntityParent,
        EntitySkill,  // "level/harbour/entity/guard/skill/3"
        EntityEdit,   // "level/harbour/entity/guard/component/body/mass"
    };
    Kind kind = Kind::Name;
    J8Section section = J8Section::Camera;
    size_t level = 0, entity = 0;
    int num = 0;                  // of a skill
    std::string component, name;  // of an edit
    bool operator==(const ProjectField&) const = default;
};

// The field's value; nothing where the project has none: a skill that the entity doesn't set, a section without
// a file, a level without a map file.
std::optional<std::string> fieldValue(const CJ8ProjectManager& project, const ProjectField& field);
// Gives the field a value, or takes it away. Only skills, edits, sections and map files can be without; others
// become empty. A section's file is looked for on the disk. False, with nothing changed, for a text that a
// section can't have.
// Without `looksForFiles`, while a path is being typed, files are not looked for: resolveSections does that later.
bool setFieldValue(CJ8ProjectManager& project, const ProjectField& field,
                   const std::optional<std::string>& value, bool looksForFiles = true);

// The address. Names stand in it as they are, but for '/', '%', '#', '=' and control characters, which become %2F, %25,
// %23, %3D, %0A and so on. Of several levels or entities of one name the second is "guard#2".
std::string addressOf(const CJ8ProjectManager& project, const ProjectField& field);
std::string addressOfLevel(const CJ8ProjectManager& project, size_t level);
std::string addressOfEntity(const CJ8ProjectManager& project, size_t level, size_t entity);

// What an address names, or why it names nothing. Skills and edits that the entity doesn't set are named all the same.
Result<ProjectField> fieldAt(const CJ8ProjectManager& project, std::string_view address);
std::optional<size_t> levelAt(const CJ8ProjectManager& project, std::string_view address);

// All values that the project file holds and that count, in its order, each with its address. Linear in the project.
void forEachField(const CJ8ProjectManager& project,
                  const std::function<void(const ProjectField&, const std::string& address,
                                           const std::optional<std::string>& value)>& use);

}  // namespace zoka
