// A level of the project and the entities in it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "J8ProjectManager/J8File.h"
#include "J8ProjectManager/J8Types.h"

namespace zoka {

struct J8EntitySkill {
    int num = 0;
    std::uint32_t place = 0;
    std::optional<std::string> value;
};

struct J8EntityComponent {
    std::string name;
    std::uint32_t place = 0;
    std::vector<J8Edit> edits;
};

struct J8LevelEntity {
    std::string name;
    std::string parent;  // the name of a behaviour; empty: none
    std::uint32_t place = 0;
    std::vector<J8EntitySkill> skills;
    std::vector<J8EntityComponent> components;
};

}  // namespace zoka

class CJ8LevelData {
public:
    void Clear();

    std::string m_name;
    CJ8File m_mapFile;  // its path text is empty where the level has none
    std::string m_doc;
    std::vector<zoka::J8LevelEntity> m_entities;
    std::uint32_t m_place = 0;  // of its element in the project file
};
