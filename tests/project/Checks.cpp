#include "tests/project/Checks.h"

#include <string>
#include <vector>

#include "J8ProjectManager/ProjectCheck.h"
#include "J8ProjectManager/ProjectFields.h"
#include "J8ProjectManager/ProjectLosses.h"
#include "J8ProjectManager/ProjectPlaces.h"
#include "J8ProjectManager/ProjectRows.h"
#include "util/OsFiles.h"

namespace zoka::test {
namespace {

void put(const std::string& path, std::string_view bytes) {
    if (const auto file = osFiles().openForWriting(path, OsOpen::Truncate)) {
        file->write(bytes);
    }
}

// Writes the files beside the project; gives the project file's own bytes.
std::string_view spread(std::string_view files, const std::string& folder) {
    constexpr std::string_view kMark = "\n---\n";
    std::vector<std::string_view> parts;
    while (parts.size() < 2 && files.find(kMark) != files.npos) {
        parts.push_back(files.substr(0, files.find(kMark)));
        files.remove_prefix(files.find(kMark) + kMark.size());
    }
    parts.push_back(files);
    put(folder + "\\b.xml", parts.size() > 1 ? parts[1] : "");
    put(folder + "\\c.xml", parts.size() > 2 ? parts[2] : "");
    return parts[0];
}

void load(CJ8ProjectManager& project, std::string_view bytes, const std::string& folder) {
    XMLResults results;
    project.loadFromTree(XMLNode::parseBytes(bytes, "Project", &results), folder + "\\game.xml", false,
                         &results);
}

// All that loading found and says.
std::string told(const CJ8ProjectManager& project) {
    std::string text = project.m_report;
    for (const J8Finding& finding : project.findings()) {
        text +=
            std::to_string(finding.source) + "@" + std::to_string(finding.place) + " " + finding.text + "\n";
    }
    return text;
}

std::string allFields(const CJ8ProjectManager& project) {
    std::string text;
    forEachField(project, [&](const ProjectField&, const std::string& address, const auto& value) {
        text += address + "=" + value.value_or("<none>") + "\n";
    });
    return text;
}

}  // namespace

std::string loadFault(std::string_view files, const std::string& folder) {
    const std::string_view bytes = spread(files, folder);
    CJ8ProjectManager project;
    load(project, bytes, folder);
    ProjectPlaces places(project);
    for (const J8Finding& finding : project.findings()) {
        if (finding.source >= project.sources().size() || places.text(finding).empty()) {
            return "a finding of no file: " + finding.text;
        }
    }
    for (const J8Finding& finding : checkProject(project)) {
        if (finding.text.empty()) {
            return "a finding without a text";
        }
    }
    // Loaded from the disk, level by level.
    put(folder + "\\game.xml", bytes);
    CJ8ProjectManager fromDisk;
    fromDisk.LoadFromXML(folder + "\\game.xml", false);
    if (told(fromDisk) != told(project) || allFields(fromDisk) != allFields(project)) {
        return "from the disk:\n" + told(fromDisk) + allFields(fromDisk) + "and not\n" + told(project) +
               allFields(project);
    }
    const XMLNode document = XMLNode::parseBytes(bytes);
    if (!document.isEmpty()) {
        lossesOf(document, project.createXMLTopNode({}, "1"), std::string(bytes));
    }
    for (size_t level = 0; level < project.m_apLevels.size() && level < 20; ++level) {
        for (size_t entity = 0; entity < project.m_apLevels[level].m_entities.size() && entity < 20;
             ++entity) {
            for (const ProjectRow& row : entityRows(project, level, entity)) {
                if (row.hasField && fieldAt(project, addressOf(project, row.field)).value() != row.field) {
                    return "not found again: " + addressOf(project, row.field);
                }
            }
        }
    }
    return {};
}

std::string saveFault(std::string_view files, const std::string& folder) {
    CJ8ProjectManager project, again;
    load(project, spread(files, folder), folder);
    const XMLText text = project.fileText({}, "1");
    if (!text) {
        return "not written";
    }
    const std::string written(text.view());
    const auto differs = [&](const XMLText& other, const std::string& how) {
        return other.view() == written
                   ? ""
                   : how + " written as\n" + std::string(other.view()) + "\nand not as\n" + written;
    };
    if (const auto fault = differs(project.createXMLTopNode({}, "1").toFileBytes(), "its tree");
        !fault.empty()) {
        return fault;
    }
    load(again, written, folder);
    project.m_date = again.m_date;
    if (allFields(project) != allFields(again)) {
        return "read back as\n" + allFields(again) + "and not as\n" + allFields(project);
    }
    return differs(again.fileText({}, "1"), "again");
}

}  // namespace zoka::test
