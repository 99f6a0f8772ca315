#include "J8ProjectManager/ProjectPlaces.h"

#include "util/OsFiles.h"

namespace zoka {

XMLPlace ProjectPlaces::at(std::uint32_t source, std::uint32_t place) {
    if (place == 0 || source >= m_project->sources().size()) {
        return {};
    }
    const auto [file, isNew] = m_files.try_emplace(source);
    if (isNew) {
        auto bytes = osFiles().readWhole(pathFromXml(m_project->sources()[source]));
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
