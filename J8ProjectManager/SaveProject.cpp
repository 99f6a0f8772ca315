// Writing the project file.
#include <chrono>
#include <new>
#include <string>

#include "J8ProjectManager/J8ProjectManager.h"
#include "util/SafeWrite.h"

using zoka::J8Section;
using zoka::Refusal;
using zoka::SafeWriteResult;
using zoka::StepReport;

namespace {

// The keys of the steps that saving reports. Other tools of the suite read them.
namespace keys {

constexpr const char* kErrProject = "ErrProject";
constexpr const char* kAddBehaviors = "AddBehaviorXmls";
constexpr const char* kAddBehavior = "AddBehavior";
constexpr const char* kWarnBehavior = "WarnBehaviorBadPathTag";
constexpr const char* kAddLevel = "AddLevel";
constexpr const char* kWarnLevel = "WarnLevel";
constexpr const char* kAddLevelEntity = "AddLevelEntity";
constexpr const char* kErrGetFilepath = "ErrGetFilepath";
constexpr const char* kSections[] = {"WarnCamera", "WarnUI",      "WarnAnimationPool",
                                     "WarnWepDef", "WarnDisplay", "WarnUserInput"};

}  // namespace keys
}  // namespace

namespace zoka {
namespace {

// Adds an element for the file under the attribute of its kind. False, with nothing added, for a kind without
// one.
bool addFile(XMLNode& parent, const char* tag, const CJ8File& file) {
    const CJ8File::eType kind = file.kindToWrite();
    const char* const attribute = kind >= CJ8File::kFile ? PathTag(kind) : "";
    if (!*attribute) {
        return false;
    }
    parent.addChild(tag).addAttribute(attribute, file.m_path.c_str());
    return true;
}

void addDoc(XMLNode& parent, const std::string& doc) {
    if (!doc.empty()) {
        parent.addChild("Doc").addText(doc.c_str());
    }
}

void addEntity(XMLNode& parent, const J8LevelEntity& entity) {
    XMLNode node = parent.addChild("Entity");
    node.addAttribute("name", entity.name.c_str());
    if (!entity.parent.empty()) {
        node.addAttribute("parent", entity.parent.c_str());
    }
    for (const J8EntitySkill& skill : entity.skills) {
        XMLNode child = node.addChild("Skill");
        child.addAttribute("num", std::to_string(skill.num).c_str());
        if (skill.value) {
            child.addAttribute("value", skill.value->c_str());
        }
    }
    for (const J8EntityComponent& component : entity.components) {
        XMLNode child = node.addChild("Component");
        child.addAttribute("name", component.name.c_str());
        for (const J8Edit& edit : component.edits) {
            XMLNode value = child.addChild("Edit");
            value.addAttribute("name", edit.name.c_str());
            value.addAttribute("value", edit.value.c_str());
        }
    }
}

void addLevel(XMLNode& parent, const CJ8LevelData& level, const StepReport& report) {
    XMLNode node = parent.addChild("Level");
    node.addAttribute("name", level.m_name.c_str());
    report.add(keys::kAddLevel, level.m_name);
    if (level.m_mapFile.m_path.empty()) {
        report.add(keys::kWarnLevel, "No mapfile");
    } else {
        node.addAttribute("mapfile", level.m_mapFile.m_path.c_str());
    }
    addDoc(node, level.m_doc);
    for (const J8LevelEntity& entity : level.m_entities) {
        addEntity(node, entity);
        report.add(keys::kAddLevelEntity, entity.name);
    }
}

}  // namespace
}  // namespace zoka

XMLNode CJ8ProjectManager::createXMLTopNode(const StepReport& report, const std::string& date) const try {
    XMLNode top = XMLNode::createTop("Project", false, XMLCharset::Utf8);
    top.addAttribute("name", m_name.c_str());
    top.addAttribute("date", date.c_str());
    top.addAttribute("vers", zoka::kJ8Version);
    XMLNode paths = top.addChild("Paths");
    paths.addAttribute("proj_file", m_roots.project().c_str());
    paths.addAttribute("j8_file", m_roots.data().c_str());
    report.add(keys::kAddBehaviors);
    for (const CJ8File& file : m_apBehaviorFiles) {
        const bool added = file.m_type != CJ8File::kNotValid && zoka::addFile(top, "Behavior", file);
        report.add(added ? keys::kAddBehavior : keys::kWarnBehavior, file.m_path);
    }
    for (const CJ8File& file : m_apLostBehaviorFiles) {
        report.add(keys::kWarnBehavior, file.m_path);
    }
    for (int i = 0; i < zoka::kJ8Sections; ++i) {
        if (!zoka::addFile(top, zoka::sectionTag(static_cast<J8Section>(i)), m_sections[i])) {
            report.add(keys::kSections[i], "None.");
        }
    }
    for (const CJ8LevelData& level : m_apLevels) {
        zoka::addLevel(top, level, report);
    }
    return top;
} catch (const std::bad_alloc&) {
    report.group("createXMLTopNode").add(keys::kErrProject);
    return {};
}

std::optional<std::string> CJ8ProjectManager::fileText(const StepReport& report,
                                                       const std::string& date) const {
    const zoka::XMLText text = createXMLTopNode(report, date).toFileBytes();
    return text ? std::optional<std::string>(text.view()) : std::nullopt;
}

std::string CJ8ProjectManager::dateNow() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(now).count());
}

SafeWriteResult CJ8ProjectManager::SaveProjectXML(const StepReport& report, const std::string* expected) {
    std::string path;
    if (!m_projectFile.GetFilepath(path, m_roots)) {
        report.add(keys::kErrGetFilepath);
        return {Refusal{"The project has no file to be saved to."}};
    }
    const std::string date = dateNow();
    const zoka::XMLText text = createXMLTopNode(report, date).toFileBytes();
    if (!text) {
        return {Refusal{"There is not enough memory to write the project."}};
    }
    zoka::FileContent file = {path, text.view()};
    if (expected) {
        file.expected = *expected;
    }
    SafeWriteResult written = zoka::safeWrite({&file, 1});
    if (written) {
        m_date = date;
        m_vers = zoka::kJ8Version;
    }
    return written;
}

SafeWriteResult CJ8ProjectManager::SaveProjectXML(const std::string* expected) {
    const StepReport report = StepReport::start("J8ProjectManagerDebug", "SaveProjectXML");
    SafeWriteResult saved = SaveProjectXML(report, expected);
    if (saved) {
        report.markSucceeded();
    }
    report.write("J8ProjectManagerDebug.xml");
    return saved;
}
