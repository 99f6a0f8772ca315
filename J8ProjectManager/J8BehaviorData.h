// A behaviour that entities can have as their parent, and the components that it gives them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "J8ProjectManager/J8Types.h"

// A component: a named set of properties that behaviours and entities use.
class CJ8CMPData {
public:
    std::string m_name;
    std::string m_doc;
    std::vector<zoka::J8Property> m_properties;
    std::uint32_t m_source = 0;  // its file, an index of CJ8ProjectManager::sources()
    std::uint32_t m_place = 0;   // of its element there
};

namespace zoka {

struct J8ComponentEdit {
    std::string component, name, value;
    std::uint32_t place = 0;  // of its element
    bool operator==(const J8ComponentEdit& other) const {
        return component == other.component && name == other.name && value == other.value;
    }
};

}  // namespace zoka

// Copies are deep.
class CJ8BehaviorData {
public:
    void Clear();

    std::string m_name;  // empty: its element had none
    std::string m_class;
    std::string m_group;
    std::string m_doc;
    std::vector<zoka::J8Skill> m_apSkillEdits;
    std::vector<std::string> m_apCMPNames;     // of the components that it uses, in the file's order
    std::vector<std::uint32_t> m_apCMPPlaces;  // of the elements of m_apCMPNames
    std::vector<zoka::J8ComponentEdit> m_apCMPEdits;
    std::uint32_t m_source = 0;  // its file, an index of CJ8ProjectManager::sources()
    std::uint32_t m_place = 0;   // of its element there
};
