#include "J8ProjectManager/ProjectCheck.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "J8ProjectManager/PropertyFacts.h"
#include "plugin/host/HostAbi.h"
#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLErrorText.h"
#include "xml/XMLRead.h"

namespace zoka {
namespace {

constexpr int kNote = 3;

// The numbers or names of one list, to find those that come again.
template <class Key>
class Seen {
public:
    bool again(const Key& key) { return !m_keys.insert(key).second; }

private:
    std::set<Key> m_keys;
};

class Check {
public:
    explicit Check(const CJ8ProjectManager& project) : m_project(project) {}

    std::vector<J8Finding> run() {
        checkSections();
        checkBehaviorFiles();
        checkComponents();
        checkBehaviors();
        checkLevels();
        checkUse();
        return std::move(m_findings);
    }

private:
    void find(int severity, std::uint32_t source, std::uint32_t place, std::string text) {
        J8Finding finding;
        finding.severity = severity;
        finding.source = source;
        finding.place = place;
        finding.text = std::move(text);
        m_findings.push_back(std::move(finding));
    }
    void warn(std::uint32_t source, std::uint32_t place, std::string text) {
        find(kReportWarning, source, place, std::move(text));
    }

    void tellMissing(const char* what, const CJ8File& file, int severity) {
        if (!file.m_path.empty()) {
            find(severity, 0, file.m_place,
                 std::string(what) + ": there is no file \"" + file.m_path +
                     "\", nor one below the project path or the data path");
        }
    }

    void checkSections() {
        for (int i = 0; i < kJ8Sections; ++i) {
            const CJ8File& file = m_project.m_sections[i];
            std::string path;
            if (!file.GetFilepath(path, m_project.m_roots)) {
                tellMissing(sectionTag(static_cast<J8Section>(i)), file, kReportWarning);
                continue;
            }
            XMLResults results;
            if (XMLNode::parseFile(pathFromXml(path).c_str(), nullptr, &results, {}, XMLCharset::Utf8)
                    .isEmpty()) {
                const int line = xmlErrorPlace(results).line;
                find(kReportError, 0, file.m_place,
                     std::string(sectionTag(static_cast<J8Section>(i))) + " file \"" + file.m_path +
                         "\" can't be read: " + xmlErrorMessage(results, {}, file.m_path) +
                         (line > 0 ? " (line " + std::to_string(line) + ")" : ""));
            }
        }
    }

    // They were loaded with the path roots of then, which may have been edited since.
    void checkBehaviorFiles() {
        for (const CJ8File& file : m_project.m_apLostBehaviorFiles) {
            if (file.m_type == CJ8File::kNotValid) {
                tellMissing("Behavior", file, kReportError);
            }
        }
        Seen<std::string> names;
        for (const CJ8File& file : m_project.m_apBehaviorFiles) {
            std::string path;
            if (!file.GetFilepath(path, file.kindToWrite(), m_project.m_roots) || !isProjectFileThere(path)) {
                find(kReportError, 0, file.m_place,
                     "behaviors file \"" + file.m_path + "\" is not below the paths as they are now");
            } else if (names.again(lowered(normalizePath(path)))) {
                warn(0, file.m_place, "behaviors file \"" + file.m_path + "\" is named twice");
            }
        }
    }

    void checkValue(const J8TypedValue& typed, std::string_view value, std::uint32_t source,
                    std::uint32_t place, const std::string& what) {
        // Made at the first value: a list of choices may be long, and its values many.
        const auto check = m_checks.try_emplace(&typed.constraints, typed).first;
        if (const std::string refusal = check->second.refusal(value); !refusal.empty()) {
            warn(source, place, what + " is \"" + std::string(value) + "\": " + refusal);
        }
    }

    // A limit that is no number limits nothing.
    void checkLimits(const std::vector<J8Constraint>& constraints, std::uint32_t source, std::uint32_t place,
                     const std::string& what) {
        for (const J8Constraint& limit : constraints) {
            if (isLostLimit(limit)) {
                warn(source, place,
                     "limit " + limit.type + " of " + what + " is \"" + limit.value +
                         "\": a number is needed; it limits nothing");
            }
        }
    }

    void checkComponents() {
        for (const CJ8CMPData& component : m_project.m_apComponents) {
            Seen<std::string_view> names;
            for (const J8Property& property : component.m_properties) {
                const std::string what =
                    "property \"" + property.name + "\" of component \"" + component.m_name + "\"";
                if (names.again(property.name)) {
                    warn(component.m_source, property.place, what + " is there twice");
                }
                checkLimits(property.constraints, component.m_source, property.place, what);
                if (!property.value.empty()) {
                    checkValue(J8TypedValue::of(property), property.value, component.m_source, property.place,
                               what);
                }
            }
        }
    }

    void checkBehaviors() {
        Seen<std::string_view> names;
        for (const CJ8BehaviorData& behavior : m_project.m_apBehavior) {
            if (behavior.m_name.empty()) {
                continue;
            }
            const std::string of = " of behavior \"" + behavior.m_name + "\"";
            if (names.again(behavior.m_name)) {
                warn(behavior.m_source, behavior.m_place,
                     "behavior \"" + behavior.m_name + "\" is there twice; the first one counts");
            }
            Seen<int> numbers;
            for (const J8Skill& skill : behavior.m_apSkillEdits) {
                const std::string what = "skill " + std::to_string(skill.num) + " (" + skill.name + ")" + of;
                if (numbers.again(skill.num)) {
                    warn(behavior.m_source, skill.place, what + " is there twice; the first one counts");
                }
                if (skill.num < 1 || skill.num > kEntitySkills) {
                    warn(behavior.m_source, skill.place,
                         what + ": entities have the skills 1 to " + std::to_string(kEntitySkills));
                }
                if (skill.type == J8Type::Unknown) {
                    warn(behavior.m_source, skill.place, what + " has a type that is none");
                }
                checkLimits(skill.constraints, behavior.m_source, skill.place, what);
                if (!skill.value.empty()) {
                    checkValue(J8TypedValue::of(skill), skill.value, behavior.m_source, skill.place, what);
                }
            }
            for (size_t i = 0; i < behavior.m_apCMPNames.size(); ++i) {
                const std::string& name = behavior.m_apCMPNames[i];
                if (!m_project.component(name)) {
                    warn(behavior.m_source, behavior.m_apCMPPlaces[i],
                         "component \"" + name + "\"" + of + " is in no components file");
                }
            }
            for (const J8ComponentEdit& edit : behavior.m_apCMPEdits) {
                checkEdit(edit.component, edit.name, edit.value, behavior.m_source, edit.place, of, false);
            }
        }
    }

    void checkEdit(const std::string& componentName, const std::string& name, const std::string& value,
                   std::uint32_t source, std::uint32_t place, const std::string& of, bool isEntity) {
        const CJ8CMPData* const component = m_project.component(componentName);
        if (!component) {
            return;  // said once for the component
        }
        const std::string what = "\"" + name + "\" of component \"" + componentName + "\"" + of;
        if (const J8Property* const property = propertyOf(*component, name)) {
            checkValue(J8TypedValue::of(*property), value, source, place, what);
            if (isEntity && !property->edit) {
                warn(source, place, what + ": the component does not let entities change it");
            }
        } else {
            warn(source, place, what + " is no property of that component");
        }
    }

    // An index is made at the first question for a component.
    const J8Property* propertyOf(const CJ8CMPData& component, std::string_view name) {
        const auto [index, isNew] = m_properties.try_emplace(&component);
        if (isNew) {
            for (const J8Property& property : component.m_properties) {
                index->second.try_emplace(property.name, &property);
            }
        }
        const auto found = index->second.find(name);
        return found == index->second.end() ? nullptr : found->second;
    }
    const J8Skill* skillOf(const CJ8BehaviorData& behavior, int num) {
        const auto [index, isNew] = m_skills.try_emplace(&behavior);
        if (isNew) {
            for (const J8Skill& skill : behavior.m_apSkillEdits) {
                index->second.try_emplace(skill.num, &skill);
            }
        }
        const auto found = index->second.find(num);
        return found == index->second.end() ? nullptr : found->second;
    }

    // The disk is asked once for each name.
    bool isMapThere(const std::string& map) {
        const auto [known, isNew] = m_maps.try_emplace(map);
        if (isNew) {
            known->second = isProjectFileThere(m_project.m_roots.project() + map) || isProjectFileThere(map);
        }
        return known->second;
    }

    void checkLevels() {
        Seen<std::string_view> names;
        for (const CJ8LevelData& level : m_project.m_apLevels) {
            const std::string quoted = "level \"" + level.m_name + "\"";
            if (names.again(level.m_name)) {
                warn(0, level.m_place, quoted + " is there twice");
            }
            const std::string& map = level.m_mapFile.m_path;
            if (map.empty()) {
                warn(0, level.m_place, quoted + " has no map file");
            } else if (!isMapThere(map)) {
                find(kReportError, 0, level.m_place, "map file \"" + map + "\" of " + quoted + " is missing");
            }
            Seen<std::string_view> entities;
            for (const J8LevelEntity& entity : level.m_entities) {
                if (entities.again(entity.name)) {
                    warn(0, entity.place, "entity \"" + entity.name + "\" is twice in " + quoted);
                }
                checkEntity(entity, " of entity \"" + entity.name + "\"");
            }
        }
    }

    void checkEntity(const J8LevelEntity& entity, const std::string& of) {
        const CJ8BehaviorData* const parent =
            entity.parent.empty() ? nullptr : m_project.behavior(entity.parent);
        if (parent) {
            m_used.insert(parent->m_source);
        } else if (!entity.parent.empty()) {
            find(kReportError, 0, entity.place,
                 "parent \"" + entity.parent + "\"" + of + " is in no behaviors file");
        }
        Seen<int> numbers;
        for (const J8EntitySkill& skill : entity.skills) {
            const std::string what = "skill " + std::to_string(skill.num) + of;
            if (numbers.again(skill.num)) {
                warn(0, skill.place, what + " is there twice");
            }
            const J8Skill* const declared = parent ? skillOf(*parent, skill.num) : nullptr;
            if (declared && skill.value) {
                checkValue(J8TypedValue::of(*declared), *skill.value, 0, skill.place, what);
            } else if (parent && !declared) {
                warn(0, skill.place, what + " is none of its parent \"" + entity.parent + "\"");
            }
        }
        Seen<std::pair<std::string_view, std::string_view>> edits;
        for (const J8EntityComponent& component : entity.components) {
            if (!m_project.component(component.name)) {
                warn(0, component.place,
                     "component \"" + component.name + "\"" + of + " is in no components file");
            }
            for (const J8Edit& edit : component.edits) {
                if (edits.again({component.name, edit.name})) {
                    warn(0, edit.place > 0 ? edit.place : component.place,
                         "\"" + edit.name + "\" of component \"" + component.name + "\"" + of +
                             " is there twice; the first one counts");
                }
                checkEdit(component.name, edit.name, edit.value, 0,
                          edit.place > 0 ? edit.place : component.place, of, true);
            }
        }
    }

    void checkUse() {
        // A file may be loaded twice, and its first behaviors are the ones that count.
        std::set<std::string> told;
        const auto sourceOf = [this](std::uint32_t source) { return lowered(m_project.sources()[source]); };
        for (const std::uint32_t source : m_used) {
            told.insert(sourceOf(source));
        }
        std::uint32_t last = 0;  // 0 is the project file
        for (const CJ8BehaviorData& behavior : m_project.m_apBehavior) {
            if (std::exchange(last, behavior.m_source) != behavior.m_source &&
                told.insert(sourceOf(behavior.m_source)).second) {
                find(kNote, behavior.m_source, 0, "no entity of the project uses a behavior of this file");
            }
        }
    }

    const CJ8ProjectManager& m_project;
    std::vector<J8Finding> m_findings;
    std::map<const CJ8CMPData*, std::map<std::string_view, const J8Property*>> m_properties;
    std::map<const CJ8BehaviorData*, std::map<int, const J8Skill*>> m_skills;
    std::map<const std::vector<J8Constraint>*, J8ValueCheck> m_checks;  // by what they were made from
    std::map<std::string, bool> m_maps;
    std::set<std::uint32_t> m_used;  // the sources of behaviours that entities have as their parent
};

}  // namespace

std::string undeclaredRefusal(const CJ8ProjectManager& project, const ProjectField& field,
                              const std::string& value) {
    using Kind = ProjectField::Kind;
    if (field.kind == Kind::EntityParent) {
        return value.empty() || project.behavior(value) ? "" : "\"" + value + "\" is in no behaviors file";
    }
    if ((field.kind != Kind::EntitySkill && field.kind != Kind::EntityEdit) || fieldValue(project, field)) {
        return {};
    }
    if (field.kind == Kind::EntitySkill) {
        const std::string& name = project.m_apLevels[field.level].m_entities[field.entity].parent;
        const CJ8BehaviorData* const parent = project.behavior(name);
        const auto isIt = [&](const J8Skill& skill) { return skill.num == field.num; };
        return !parent || std::ranges::any_of(parent->m_apSkillEdits, isIt)
                   ? ""
                   : "its parent \"" + name + "\" has no such skill";
    }
    const CJ8CMPData* const component = project.component(field.component);
    if (!component) {
        return "component \"" + field.component + "\" is in no components file";
    }
    const auto isIt = [&](const J8Property& property) { return property.name == field.name; };
    const auto property = std::ranges::find_if(component->m_properties, isIt);
    if (property == component->m_properties.end()) {
        return "component \"" + field.component + "\" has no such property";
    }
    return property->edit ? "" : "component \"" + field.component + "\" does not let entities change it";
}

std::vector<J8Finding> checkProject(const CJ8ProjectManager& project) {
    return Check(project).run();
}

}  // namespace zoka
