// Finds catalogue scripts as the user types.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "templates/TemplateData.h"

namespace zoka {

// Holds what it searches in, so it is made anew when the catalogue changes. One thread at a time.
class ScriptSearch {
public:
    explicit ScriptSearch(const CTemplateData& catalogue) { take(catalogue, nullptr); }
    // The same for a job that can be stopped; null when `progress` did.
    static std::unique_ptr<ScriptSearch> make(const CTemplateData& catalogue, JobProgress* progress);

    // The records, in catalogue order, whose class is `className` ("<all>" in any case: each; case doesn't
    // count) and that hold every word of `query`, in any case, in their title, class, description or file
    // name. A query that goes on from the last one looks through the last answer only.
    const std::vector<std::uint32_t>& find(const std::string& className, const std::string& query);

private:
    ScriptSearch() = default;
    bool take(const CTemplateData& catalogue, JobProgress* progress);

    std::vector<std::string> m_texts;            // of each record, lowered, its fields parted by line ends
    std::vector<std::string> m_classes;          // of each record, lowered
    std::string m_className = "<all>", m_query;  // of the last answer, lowered
    std::vector<std::uint32_t> m_found;
};

}  // namespace zoka
