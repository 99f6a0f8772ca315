// Lines and columns in a project's files.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "J8ProjectManager/J8ProjectManager.h"
#include "xml/XMLRead.h"

namespace zoka {

// Reads a file when the first place in it is asked for. Right as long as the files are those that were loaded.
class ProjectPlaces {
public:
    explicit ProjectPlaces(const CJ8ProjectManager& project) : m_project(&project) {}

    XMLPlace at(std::uint32_t source, std::uint32_t place);
    XMLPlace of(const J8Finding& finding);
    // "C:\game\game.xml:12:3"; without line and column where they aren't known.
    std::string text(const J8Finding& finding);

private:
    const CJ8ProjectManager* m_project;
    std::map<std::uint32_t, XMLPlaces> m_files;
};

}  // namespace zoka
