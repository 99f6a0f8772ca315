// A component: a named set of properties that behaviours and entities use.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "J8ProjectManager/J8Types.h"

class CJ8CMPData {
public:
    std::string m_name;
    std::string m_doc;
    std::vector<zoka::J8Property> m_properties;
    std::uint32_t m_source = 0;  // its file, an index of CJ8ProjectManager::sources()
    std::uint32_t m_place = 0;   // of its element there
};
