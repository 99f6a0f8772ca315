#include "customize/ScriptPanel.h"

namespace zoka {

void ScriptPanel::makeRows(const std::vector<std::string>& hostNames) {
    m_rows.clear();
    m_rows.reserve(script.entries.size());
    for (CustomEntry& entry : script.entries) {
        m_rows.emplace_back(specOf(script, entry, hostNames));
        entry.control = &m_rows.back();
    }
}

}  // namespace zoka
