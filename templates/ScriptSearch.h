// Finds catalogue scripts as the user types.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "templates/TemplateData.h"

namespace zoka {

// Holds what it searches in, so it is made anew when the catalogue changes. One thread at a time.
class ScriptSearch {
public:
    explicit ScriptSearch(const CTemplateData& catalogue);

    // The records, in catalogue order, whose class is `className` ("<all>" in any case: each; case doesn't
    // count) and that hold every word of `query`, in any case, in their title, class, description or file
    // name. A query that goes on from the last one looks through the last answer only.
    const std::vector<std::uint32_t>& find(const std::string& className, const std::string& query);

private:
    std::vector<std::string> m_texts;    // of each record, lowered, its fields parted by line ends
    std::vector<std::string> m_classes;  // of each record, lowered
    std::string m_className, m_query;    // of the last answer, lowered
    std::vector<std::uint32_t> m_found;
};

}  // namespace zoka
