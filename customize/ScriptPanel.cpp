#include "customize/ScriptPanel.h"

namespace zoka {

void ScriptPanel::makeRows(const HostNames& hostNames) {
    m_rows.clear();
    m_rows.reserve(script.entries.size());
    for (CustomEntry& entry : script.entries) {
        m_rows.emplace_back(specOf(script, entry, hostNames));
        entry.control = &m_rows.back();
    }
}

void ScriptPanel::settleRows(const HostNames& hostNames) {
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const CustomEntry& entry = script.entries[i];
        if (m_rows[i].HasChanged() || entry.kind == kEntryEntity || entry.kind == kEntryPath) {
            m_rows[i] = EntryModel(specOf(script, entry, hostNames));
        }
    }
}

}  // namespace zoka
