#include "J8ProjectManager/ProjectFields.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "util/PathRules.h"

namespace zoka {
namespace {

using Kind = ProjectField::Kind;

struct SectionForm {
    const char* prefix;
    CJ8File::eType type;
};
constexpr SectionForm kForms[] = {
    {"proj:", CJ8File::kProjFile}, {"j8:", CJ8File::kJ8File}, {"file:", CJ8File::kFile}};

std::string sectionText(const CJ8File& file) {
    for (const SectionForm& form : kForms) {
        if (file.kindToWrite() == form.type) {
            return form.prefix + file.m_path;
        }
    }
    return {};
}

bool setSection(CJ8File& file, const std::string& text) {
    for (const SectionForm& form : kForms) {
        if (text.starts_with(form.prefix)) {
            file.Clear();
            file.Set(text.substr(std::string_view(form.prefix).size()), form.type);
            return true;
        }
    }
    return false;
}

// What has a meaning of its own in an address. In names it is written as in those of the web, and so are control
// characters: an address that is printed can be typed.
constexpr std::string_view kMarks = "/%#=";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

std::string escaped(std::string_view name) {
    std::string made;
    bool isUpper = false;  // the second byte of a control character of the upper half
    for (size_t i = 0; i < name.size(); ++i) {
        const auto byte = static_cast<unsigned char>(name[i]);
        const bool wasUpper = isUpper;
        isUpper = byte == 0xC2 && i + 1 < name.size() && static_cast<unsigned char>(name[i + 1]) < 0xA0;
        if (byte < ' ' || byte == 0x7F || isUpper || wasUpper || kMarks.find(name[i]) != kMarks.npos) {
            made += {'%', kHexDigits[byte >> 4], kHexDigits[byte & 0xF]};
        } else {
            made += name[i];
        }
    }
    return made;
}

std::string unescaped(std::string_view text) {
    std::string made;
    for (size_t i = 0; i < text.size(); ++i) {
        unsigned byte = 0;
        const bool isEscape = text[i] == '%' && i + 2 < text.size() &&
                              std::from_chars(&text[i] + 1, &text[i] + 3, byte, 16).ptr == &text[i] + 3;
        made += isEscape ? static_cast<char>(byte) : text[i];
        i += isEscape ? 2 : 0;
    }
    return made;
}

// The name's part of an address: which of the equal names before `place` it is.
template <class List, class Name>
std::string countedName(const List& list, size_t place, const Name& nameOf) {
    size_t equal = 1;
    for (size_t i = 0; i < place; ++i) {
        equal += nameOf(list[i]) == nameOf(list[place]);
    }
    return escaped(nameOf(list[place])) + (equal > 1 ? "#" + std::to_string(equal) : "");
}

template <class List, class Name>
std::optional<size_t> findCounted(const List& list, std::string_view part, const Name& nameOf) {
    size_t wanted = 1;
    if (const size_t mark = part.rfind('#'); mark != part.npos) {
        const std::string_view number = part.substr(mark + 1);
        const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), wanted);
        if (error != std::errc() || end != number.data() + number.size()) {
            return std::nullopt;
        }
        part = part.substr(0, mark);
    }
    const std::string name = unescaped(part);
    for (size_t i = 0; i < list.size(); ++i) {
        if (nameOf(list[i]) == name && --wanted == 0) {
            return i;
        }
    }
    return std::nullopt;
}

const std::string& nameOfLevel(const CJ8LevelData& level) {
    return level.m_name;
}
const std::string& nameOfEntity(const J8LevelEntity& entity) {
    return entity.name;
}

std::vector<std::string_view> partsOf(std::string_view address) {
    std::vector<std::string_view> parts;
    for (;;) {
        const size_t end = address.find('/');
        parts.push_back(address.substr(0, end));
        if (end == address.npos) {
            return parts;
        }
        address.remove_prefix(end + 1);
    }
}

// Behind the entity's own part.
std::string fieldPart(const ProjectField& field) {
    switch (field.kind) {
        case Kind::EntityName:
            return "/name";
        case Kind::EntityParent:
            return "/parent";
        case Kind::EntitySkill:
            return "/skill/" + std::to_string(field.num);
        case Kind::EntityEdit:
            return "/component/" + escaped(field.component) + "/" + escaped(field.name);
        case Kind::LevelName:
            return "/name";
        case Kind::LevelMap:
            return "/mapfile";
        case Kind::LevelDoc:
            return "/doc";
        default:
            return {};
    }
}

std::optional<ProjectField> entityField(const std::vector<std::string_view>& parts, ProjectField field) {
    if (parts.size() == 5 && parts[4] == "name") {
        field.kind = Kind::EntityName;
        return field;
    }
    if (parts.size() == 5 && parts[4] == "parent") {
        field.kind = Kind::EntityParent;
        return field;
    }
    if (parts.size() == 6 && parts[4] == "skill") {
        field.kind = Kind::EntitySkill;
        const char* const last = parts[5].data() + parts[5].size();
        const auto [end, error] = std::from_chars(parts[5].data(), last, field.num);
        return error == std::errc() && end == last ? std::optional(field) : std::nullopt;
    }
    if (parts.size() == 7 && parts[4] == "component") {
        field.kind = Kind::EntityEdit;
        field.component = unescaped(parts[5]);
        field.name = unescaped(parts[6]);
        return field;
    }
    return std::nullopt;
}

// The skill, or the edit, of an entity that a field names; null where the entity has none.
template <class Entity>
auto* skillOf(Entity& entity, int num) {
    for (auto& skill : entity.skills) {
        if (skill.num == num) {
            return &skill;
        }
    }
    return static_cast<decltype(entity.skills.data())>(nullptr);
}

// A component may stand there several times, and all edits count; of one property's the first.
template <class Entity>
auto editOf(Entity& entity, const ProjectField& field) {
    for (auto& component : entity.components) {
        for (size_t i = 0; component.name == field.component && i < component.edits.size(); ++i) {
            if (component.edits[i].name == field.name) {
                return std::pair(&component, i);
            }
        }
    }
    return std::pair(static_cast<decltype(entity.components.data())>(nullptr), size_t{0});
}

void setSkill(J8LevelEntity& entity, int num, const std::optional<std::string>& value) {
    J8EntitySkill* const skill = skillOf(entity, num);
    if (!value) {
        // One that comes again counts no less once the first has gone.
        std::erase_if(entity.skills, [&](const J8EntitySkill& each) { return each.num == num; });
    } else if (skill) {
        skill->value = value;
    } else {
        entity.skills.push_back({num, 0, value});
    }
}

void setEdit(J8LevelEntity& entity, const ProjectField& field, const std::optional<std::string>& value) {
    if (!value) {
        for (J8EntityComponent& component : entity.components) {
            if (component.name == field.component) {
                std::erase_if(component.edits, [&](const J8Edit& edit) { return edit.name == field.name; });
            }
        }
        return;
    }
    const auto [found, place] = editOf(entity, field);
    if (found) {
        found->edits[place].value = *value;
    } else {
        const auto component =
            std::ranges::find(entity.components, field.component, &J8EntityComponent::name);
        J8EntityComponent& to =
            component != entity.components.end() ? *component : entity.components.emplace_back();
        to.name = field.component;
        to.edits.push_back({field.name, *value, 0});
    }
}

}  // namespace

std::optional<std::string> fieldValue(const CJ8ProjectManager& project, const ProjectField& field) {
    if (field.kind == Kind::Name) {
        return project.m_name;
    }
    if (field.kind == Kind::ProjectRoot) {
        return project.m_roots.project();
    }
    if (field.kind == Kind::DataRoot) {
        return project.m_roots.data();
    }
    if (field.kind == Kind::Section) {
        const CJ8File& file = project.section(field.section);
        return file.isNamed() ? std::optional(sectionText(file)) : std::nullopt;
    }
    const CJ8LevelData& level = project.m_apLevels[field.level];
    if (field.kind == Kind::LevelName) {
        return level.m_name;
    }
    if (field.kind == Kind::LevelMap) {
        return level.m_mapFile.m_path.empty() ? std::nullopt : std::optional(level.m_mapFile.m_path);
    }
    if (field.kind == Kind::LevelDoc) {
        return level.m_doc;
    }
    const J8LevelEntity& entity = level.m_entities[field.entity];
    if (field.kind == Kind::EntityName) {
        return entity.name;
    }
    if (field.kind == Kind::EntityParent) {
        return entity.parent;
    }
    if (field.kind == Kind::EntitySkill) {
        const J8EntitySkill* const skill = skillOf(entity, field.num);
        return skill ? skill->value : std::nullopt;
    }
    const auto [component, place] = editOf(entity, field);
    return component ? std::optional(component->edits[place].value) : std::nullopt;
}

bool setFieldValue(CJ8ProjectManager& project, const ProjectField& field,
                   const std::optional<std::string>& value, bool looksForFiles) {
    const std::string text = value.value_or("");
    if (field.kind == Kind::Section) {
        CJ8File& file = project.section(field.section);
        if (!value) {
            file.Clear();
            return true;
        }
        const bool isSet = setSection(file, text);
        if (isSet && looksForFiles) {
            project.keepKind(file);
        }
        return isSet;
    }
    switch (field.kind) {
        case Kind::Name:
            project.m_name = text;
            return true;
        case Kind::ProjectRoot:
            project.m_roots.setProject(text);
            if (looksForFiles) {
                project.resolveSections();
            }
            return true;
        case Kind::DataRoot:
            project.m_roots.setData(text);
            if (looksForFiles) {
                project.resolveSections();
            }
            return true;
        default:
            break;
    }
    CJ8LevelData& level = project.m_apLevels[field.level];
    switch (field.kind) {
        case Kind::LevelName:
            level.m_name = text;
            return true;
        case Kind::LevelMap:
            level.m_mapFile.Set(text, text.empty() ? CJ8File::kInline : CJ8File::kProjFile);
            return true;
        case Kind::LevelDoc:
            level.m_doc = text;
            return true;
        default:
            break;
    }
    J8LevelEntity& entity = level.m_entities[field.entity];
    if (field.kind == Kind::EntityName) {
        entity.name = text;
    } else if (field.kind == Kind::EntityParent) {
        entity.parent = text;
    } else if (field.kind == Kind::EntitySkill) {
        setSkill(entity, field.num, value);
    } else {
        setEdit(entity, field, value);
    }
    return true;
}

std::string addressOfLevel(const CJ8ProjectManager& project, size_t level) {
    return "level/" + countedName(project.m_apLevels, level, nameOfLevel);
}

std::string addressOfEntity(const CJ8ProjectManager& project, size_t level, size_t entity) {
    return addressOfLevel(project, level) + "/entity/" +
           countedName(project.m_apLevels[level].m_entities, entity, nameOfEntity);
}

std::string addressOf(const CJ8ProjectManager& project, const ProjectField& field) {
    switch (field.kind) {
        case Kind::Name:
            return "name";
        case Kind::ProjectRoot:
            return "paths/project";
        case Kind::DataRoot:
            return "paths/data";
        case Kind::Section:
            return std::string("section/") + sectionTag(field.section);
        case Kind::LevelName:
        case Kind::LevelMap:
        case Kind::LevelDoc:
            return addressOfLevel(project, field.level) + fieldPart(field);
        default:
            return addressOfEntity(project, field.level, field.entity) + fieldPart(field);
    }
}

std::optional<size_t> levelAt(const CJ8ProjectManager& project, std::string_view address) {
    const std::vector<std::string_view> parts = partsOf(address);
    const bool named = parts.size() >= 2 && parts[0] == "level";
    return named ? findCounted(project.m_apLevels, parts[1], nameOfLevel) : std::nullopt;
}

Result<ProjectField> fieldAt(const CJ8ProjectManager& project, std::string_view address) {
    const std::vector<std::string_view> parts = partsOf(address);
    ProjectField field;
    const auto as = [&field](Kind kind) {
        field.kind = kind;
        return Result(field);
    };
    if (address == "name") {
        return as(Kind::Name);
    }
    if (address == "paths/project") {
        return as(Kind::ProjectRoot);
    }
    if (address == "paths/data") {
        return as(Kind::DataRoot);
    }
    if (parts.size() == 2 && parts[0] == "section") {
        for (int i = 0; i < kJ8Sections; ++i) {
            field.section = static_cast<J8Section>(i);
            if (equalNoCase(sectionTag(field.section), parts[1])) {
                return as(Kind::Section);
            }
        }
        return Refusal{"there is no section \"" + std::string(parts[1]) + "\""};
    }
    const Refusal noAddress{"\"" + std::string(address) + "\" is no address of a value"};
    if (parts[0] != "level" || parts.size() < 3) {
        return noAddress;
    }
    const auto level = levelAt(project, address);
    if (!level) {
        return Refusal{"there is no level \"" + std::string(parts[1]) + "\""};
    }
    field.level = *level;
    if (parts.size() == 3 && parts[2] == "name") {
        return as(Kind::LevelName);
    }
    if (parts.size() == 3 && parts[2] == "mapfile") {
        return as(Kind::LevelMap);
    }
    if (parts.size() == 3 && parts[2] == "doc") {
        return as(Kind::LevelDoc);
    }
    if (parts[2] != "entity" || parts.size() < 5) {
        return noAddress;
    }
    const auto entity = findCounted(project.m_apLevels[*level].m_entities, parts[3], nameOfEntity);
    if (!entity) {
        return Refusal{"there is no entity \"" + std::string(parts[3]) + "\" in that level"};
    }
    field.entity = *entity;
    const auto found = entityField(parts, field);
    return found ? Result(*found) : noAddress;
}

namespace {

// Counts names that come again, for addresses made in turn.
class NameCounter {
public:
    std::string next(const std::string& name) {
        const size_t count = ++m_counts[name];
        return escaped(name) + (count > 1 ? "#" + std::to_string(count) : "");
    }

private:
    std::map<std::string, size_t> m_counts;
};

}  // namespace

void forEachField(const CJ8ProjectManager& project,
                  const std::function<void(const ProjectField&, const std::string& address,
                                           const std::optional<std::string>& value)>& use) {
    ProjectField field;
    for (const Kind kind : {Kind::Name, Kind::ProjectRoot, Kind::DataRoot}) {
        field.kind = kind;
        use(field, addressOf(project, field), fieldValue(project, field));
    }
    field.kind = Kind::Section;
    for (int i = 0; i < kJ8Sections; ++i) {
        field.section = static_cast<J8Section>(i);
        use(field, addressOf(project, field), fieldValue(project, field));
    }
    NameCounter levels;
    for (field.level = 0; field.level < project.m_apLevels.size(); ++field.level) {
        const CJ8LevelData& level = project.m_apLevels[field.level];
        const std::string levelAddress = "level/" + levels.next(level.m_name);
        for (const Kind kind : {Kind::LevelName, Kind::LevelMap, Kind::LevelDoc}) {
            field.kind = kind;
            use(field, levelAddress + fieldPart(field), fieldValue(project, field));
        }
        NameCounter entities;
        for (field.entity = 0; field.entity < level.m_entities.size(); ++field.entity) {
            const J8LevelEntity& entity = level.m_entities[field.entity];
            const std::string address = levelAddress + "/entity/" + entities.next(entity.name);
            for (const Kind kind : {Kind::EntityName, Kind::EntityParent}) {
                field.kind = kind;
                use(field, address + fieldPart(field), fieldValue(project, field));
            }
            field.kind = Kind::EntitySkill;
            // Of what is there twice the first counts.
            std::set<int> numbers;
            for (const J8EntitySkill& skill : entity.skills) {
                field.num = skill.num;
                if (numbers.insert(skill.num).second) {
                    use(field, address + fieldPart(field), skill.value);
                }
            }
            field.kind = Kind::EntityEdit;
            std::set<std::pair<std::string_view, std::string_view>> edits;
            for (const J8EntityComponent& component : entity.components) {
                field.component = component.name;
                for (const J8Edit& edit : component.edits) {
                    field.name = edit.name;
                    if (edits.emplace(component.name, edit.name).second) {
                        use(field, address + fieldPart(field), edit.value);
                    }
                }
            }
        }
    }
}

}  // namespace zoka
