// Writing the project file.
#include <chrono>
#include <new>
#include <string>

#include "J8ProjectManager/J8ProjectManager.h"
#include "util/SafeWrite.h"
#include "util/Text.h"
#include "xml/XMLStreamWriter.h"

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

// Writes an element for the file under the attribute of its kind. False, with nothing written, for a kind without
// one.
bool writeReference(XMLStreamWriter& out, const char* tag, const CJ8File& file) {
    const CJ8File::eType kind = file.kindToWrite();
    const char* const attribute = kind >= CJ8File::kFile ? PathTag(kind) : "";
    if (!*attribute) {
        return false;
    }
    out.open(tag);
    out.attribute(attribute, file.m_path);
    out.close();
    return true;
}

void writeEntity(XMLStreamWriter& out, const J8LevelEntity& entity) {
    out.open("Entity");
    out.attribute("name", entity.name);
    if (!entity.parent.empty()) {
        out.attribute("parent", entity.parent);
    }
    for (const J8EntitySkill& skill : entity.skills) {
        out.open("Skill");
        out.attribute("num", std::to_string(skill.num));
        if (skill.value) {
            out.attribute("value", *skill.value);
        }
        out.close();
    }
    for (const J8EntityComponent& component : entity.components) {
        out.open("Component");
        out.attribute("name", component.name);
        for (const J8Edit& edit : component.edits) {
            out.open("Edit");
            out.attribute("name", edit.name);
            out.attribute("value", edit.value);
            out.close();
        }
        out.close();
    }
    out.close();
}

void writeLevel(XMLStreamWriter& out, const CJ8LevelData& level, const StepReport& report) {
    out.open("Level");
    out.attribute("name", level.m_name);
    report.add(keys::kAddLevel, level.m_name);
    if (level.m_mapFile.m_path.empty()) {
        report.add(keys::kWarnLevel, "No mapfile");
    } else {
        out.attribute("mapfile", level.m_mapFile.m_path);
    }
    if (!level.m_doc.empty()) {
        out.leaf("Doc", level.m_doc);
    }
    for (const J8LevelEntity& entity : level.m_entities) {
        writeEntity(out, entity);
        report.add(keys::kAddLevelEntity, entity.name);
    }
    out.close();
}

}  // namespace
}  // namespace zoka

zoka::XMLText CJ8ProjectManager::fileText(const StepReport& report, const std::string& date) const try {
    zoka::XMLStreamWriter out;
    out.open("Project");
    out.attribute("name", m_name);
    out.attribute("date", date);
    out.attribute("vers", zoka::kJ8Version);
    out.open("Paths");
    out.attribute("proj_file", m_roots.project());
    out.attribute("j8_file", m_roots.data());
    out.close();
    report.add(keys::kAddBehaviors);
    for (const CJ8File& file : m_apBehaviorFiles) {
        const bool added = file.m_type != CJ8File::kNotValid && zoka::writeReference(out, "Behavior", file);
        report.add(added ? keys::kAddBehavior : keys::kWarnBehavior, file.m_path);
    }
    for (const CJ8File& file : m_apLostBehaviorFiles) {
        report.add(keys::kWarnBehavior, file.m_path);
    }
    for (int i = 0; i < zoka::kJ8Sections; ++i) {
        if (!zoka::writeReference(out, zoka::sectionTag(static_cast<J8Section>(i)), m_sections[i])) {
            report.add(keys::kSections[i], "None.");
        }
    }
    for (const CJ8LevelData& level : m_apLevels) {
        zoka::writeLevel(out, level, report);
    }
    out.close();
    return out.take();
} catch (const std::bad_alloc&) {
    report.group("createXMLTopNode").add(keys::kErrProject);
    return {};
}

XMLNode CJ8ProjectManager::createXMLTopNode(const StepReport& report, const std::string& date) const {
    const zoka::XMLText text = fileText(report, date);
    if (!text) {
        return {};
    }
    // The mark is none of the text's characters.
    const XMLNode top =
        XMLNode::parseText(text.bytes.get() + zoka::kUtf8Mark.size(), "Project", nullptr, XMLCharset::Utf8);
    if (top.isEmpty()) {
        report.group("createXMLTopNode").add(keys::kErrProject);
    }
    return top;
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
    const zoka::XMLText text = fileText(report, date);
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
