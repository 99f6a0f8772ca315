// Behaviours files, and the levels of the project file.
#include <algorithm>
#include <new>
#include <utility>

#include "J8ProjectManager/DeleteLogged.h"
#include "J8ProjectManager/J8ProjectManager.h"
#include "J8ProjectManager/LoadParts.h"
#include "J8ProjectManager/ReportTexts.h"
#include "util/Fold.h"
#include "util/OsFiles.h"
#include "xml/XMLRead.h"

namespace texts = zoka::texts;

bool CJ8ProjectManager::LoadBehaviorXML(const std::string& path) {
    const XMLNode root = openFile(path, "Behaviors", texts::kBehMissing, texts::kBehOpenError);
    if (root.isEmpty()) {
        return false;
    }
    const std::uint32_t source = std::exchange(m_source, addSource(path));
    loadComponentsOf(root);
    for (XMLNode node = root.firstChild("Behavior"); !node.isEmpty(); node = node.nextSibling("Behavior")) {
        try {
            m_apBehavior.emplace_back();
        } catch (const std::bad_alloc&) {
            add(texts::kBehaviorThrow, {}, node.place());
            break;
        }
        CJ8BehaviorData& behavior = m_apBehavior.back();
        behavior.m_source = m_source;
        if (LoadBehavior(behavior, node, m_report)) {
            m_behaviorIndex.add(behavior.m_name, static_cast<std::uint32_t>(m_apBehavior.size() - 1));
        } else {
            log(texts::kLoadBehaviorFailed);
        }
    }
    m_source = source;
    return true;
}

void CJ8ProjectManager::loadComponentsOf(const XMLNode& root) {
    const XMLNode node = root.firstChild("Component");
    if (node.isEmpty()) {
        add(texts::kNoComponents, {}, 0);
        return;
    }
    std::string path;
    if (const char* const text = node.getAttribute("proj_file")) {
        add(texts::kCmpFileProj, {text}, 0);
        path = m_roots.project() + text;
    } else if (const char* const dataText = node.getAttribute("j8_file")) {
        add(texts::kCmpFileJ8, {dataText}, 0);
        path = m_roots.data() + dataText;
    } else {
        add(texts::kCmpFileNotFound, {}, node.place());
        return;
    }
    // The disk doesn't tell case and detours apart.
    std::string file = zoka::osFiles().fullPath(zoka::pathFromXml(path));
    std::ranges::transform(file, file.begin(), [](char c) { return zoka::foldCase(c); });
    if (m_loadedComponents.find(file)) {
        add(texts::kCmpLoadedAlready, {path}, 0);
        return;
    }
    m_referrer = node.place();
    if (LoadCMPXML(path)) {
        m_loadedComponents.add(file, 0);
    } else {
        log(texts::kCmpLoadError, {path});
    }
}

bool CJ8ProjectManager::LoadBehavior(CJ8BehaviorData& behavior, const XMLNode& node, std::string& report) {
    behavior.m_place = node.place();
    const char* const name = node.getAttribute("name");
    if (!name) {
        addTo(report, texts::kBehaviorNoName, {}, node.place());
        return false;
    }
    behavior.m_name = name;
    const auto take = [&](std::string& field, const char* attribute, const zoka::ReportEntry& missing) {
        if (const char* const value = node.getAttribute(attribute)) {
            field = value;
        } else {
            addTo(report, missing, {name}, node.place());
        }
    };
    take(behavior.m_class, "class", texts::kBehaviorNoClass);
    take(behavior.m_group, "group", texts::kBehaviorNoGroup);
    behavior.m_doc = zoka::xmlAllText(node.firstChild("Doc"));
    if (behavior.m_doc.empty()) {
        addTo(report, texts::kBehaviorNoDocs, {name}, node.place());
    }
    for (XMLNode child = node.firstChild("Skill"); !child.isEmpty(); child = child.nextSibling("Skill")) {
        const char* const skillName = child.getAttribute("name");
        const auto num = zoka::xmlInteger(child.getAttribute("num"));
        if (!skillName || !num) {
            const std::string which = skillName ? "skill \"" + std::string(skillName) + '"'
                                      : num     ? "skill " + std::to_string(*num)
                                                : "a skill";
            addTo(report, texts::kSkillPassedOver,
                  {name, which,
                   skillName ? "whole number"
                   : num     ? "name"
                             : "name and no whole number"},
                  child.place());
            continue;
        }
        zoka::J8Skill& skill = behavior.m_apSkillEdits.emplace_back();
        skill.name = skillName;
        skill.num = *num;
        skill.place = child.place();
        skill.value = zoka::xmlAttribute(child, "value");
        if (const char* const word = child.getAttribute("type")) {
            skill.type = zoka::typeOfWord(word);
        }
        skill.doc = zoka::xmlAllText(child.firstChild("Doc"));
        const auto passOver = [](const XMLNode&) {};
        zoka::readLimits(child, skill.constraints, skill.enums, passOver, passOver);
    }
    for (XMLNode child = node.firstChild("Component"); !child.isEmpty();
         child = child.nextSibling("Component")) {
        const char* const component = child.getAttribute("name");
        if (!component) {
            continue;
        }
        behavior.m_apCMPNames.emplace_back(component);
        behavior.m_apCMPPlaces.push_back(child.place());
        // Only the first one counts.
        const XMLNode edit = child.firstChild("Edit");
        for (XMLNode other = edit.nextSibling("Edit"); !other.isEmpty(); other = other.nextSibling("Edit")) {
            const char* const otherName = other.getAttribute("name");
            addTo(report, texts::kEditPassedOver,
                  {name, component, otherName ? '"' + std::string(otherName) + '"' : "one without a name"},
                  other.place());
        }
        const char* const editName = edit.getAttribute("name");
        const char* const value = edit.getAttribute("value");
        if (editName && value) {
            behavior.m_apCMPEdits.push_back({component, editName, value, edit.place()});
        } else if (editName) {
            addTo(report, texts::kEditNoValue, {name, editName}, edit.place());
        }
    }
    return true;
}

bool CJ8ProjectManager::LoadLevel(CJ8LevelData& level, const XMLNode& node, std::string& report) {
    const char* const name = node.getAttribute("name");
    if (!name) {
        addTo(report, texts::kLevelNoName, {}, node.place());
        level.Clear();
        level.m_place = node.place();
        return false;
    }
    level.m_place = node.place();
    level.m_name = name;
    if (const char* const map = node.getAttribute("mapfile")) {
        level.m_mapFile.Set(map, CJ8File::kProjFile);
        level.m_mapFile.m_place = node.place();
    }
    level.m_doc = zoka::xmlAllText(node.firstChild("Doc"));
    if (level.m_doc.empty()) {
        addTo(report, texts::kLevelNoDocs, {name}, node.place());
    }
    size_t entities = 0;
    for (XMLNode child = node.firstChild("Entity"); !child.isEmpty(); child = child.nextSibling("Entity")) {
        ++entities;
    }
    level.m_entities.reserve(entities);
    for (XMLNode child = node.firstChild("Entity"); !child.isEmpty(); child = child.nextSibling("Entity")) {
        const char* const entityName = child.getAttribute("name");
        if (!entityName) {
            continue;
        }
        zoka::J8LevelEntity& entity = level.m_entities.emplace_back();
        entity.name = entityName;
        entity.parent = zoka::xmlAttribute(child, "parent");
        entity.place = child.place();
        for (XMLNode skill = child.firstChild("Skill"); !skill.isEmpty();
             skill = skill.nextSibling("Skill")) {
            if (const auto num = zoka::xmlInteger(skill.getAttribute("num"))) {
                const char* const value = skill.getAttribute("value");
                entity.skills.push_back(
                    {*num, skill.place(), value ? std::optional<std::string>(value) : std::nullopt});
            }
        }
        for (XMLNode part = child.firstChild("Component"); !part.isEmpty();
             part = part.nextSibling("Component")) {
            const char* const component = part.getAttribute("name");
            if (!component) {
                continue;
            }
            entity.components.push_back({component, part.place(), {}});
            std::vector<zoka::J8Edit>& edits = entity.components.back().edits;
            for (XMLNode edit = part.firstChild("Edit"); !edit.isEmpty(); edit = edit.nextSibling("Edit")) {
                const char* const editName = edit.getAttribute("name");
                const char* const value = edit.getAttribute("value");
                if (editName && value) {
                    edits.push_back({editName, value, edit.place()});
                }
            }
        }
    }
    return true;
}

void CJ8BehaviorData::Clear() {
    constexpr const char* kFunc = "CJ8BehaviorData::Clear()";
    zoka::deleteLogged(m_apSkillEdits, kFunc, "Throw while deleting m_apSkillEdits");
    zoka::deleteLogged(m_apCMPEdits, kFunc, "Throw while deleting m_apCMPEdits");
    zoka::deleteLogged(m_apCMPNames, kFunc, "Throw while deleting object");
    *this = CJ8BehaviorData();
}

void CJ8LevelData::Clear() {
    *this = CJ8LevelData();
}
