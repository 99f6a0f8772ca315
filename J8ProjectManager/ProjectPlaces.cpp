#include "J8ProjectManager/ProjectPlaces.h"

#include "util/OsFiles.h"

namespace zoka {

XMLPlace ProjectPlaces::at(std::uint32_t source, std::uint32_t place) {
    if (place == 0 || source >= m_project->sources().size()) {
        return {};
    }
    const auto [file, isNew] = m_files.try_emplace(source);
    if (isNew) {
        // The project file's path is one of the disk, the others are texts of files.
        const std::string& path = m_project->sources()[source];
        auto bytes = osFiles().readWhole(source == 0 ? path : pathFromXml(path));
        file->second = XMLPlaces(bytes ? std::move(*bytes) : std::string());
    }
    return file->second.at(place);
}

XMLPlace ProjectPlaces::of(const J8Finding& finding) {
    return finding.line > 0 ? XMLPlace{finding.line, finding.column} : at(finding.source, finding.place);
}

std::string ProjectPlaces::text(const J8Finding& finding) {
    std::string text =
        finding.source < m_project->sources().size() ? m_project->sources()[finding.source] : "";
    const XMLPlace place = of(finding);
    if (place.line > 0) {
        text += ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
    }
    return text;
}

}  // namespace zoka
