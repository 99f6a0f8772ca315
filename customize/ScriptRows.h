// A loaded script with the rows that show it.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "controls/EntryModel.h"
#include "customize/CustomScript.h"

namespace zoka {

// Row i shows entry i, whose control it is. Movable, not copied. [panel thread]
class ScriptRows {
public:
    ScriptRows() = default;
    ScriptRows(ScriptRows&&) = default;
    ScriptRows& operator=(ScriptRows&&) = default;

    CustomScript script;

    // `hostNames` are offered for entities and paths. When it throws, the rows are those before.
    void makeRows(const HostNames& hostNames = {});
    // After saving: the values of the rows that have changed are those loaded, and every row is given the host's
    // names anew. The script holds the new values already, and has the same entries.
    void settleRows(const HostNames& hostNames);
    size_t size() const { return m_rows.size(); }
    std::span<EntryModel> rows() { return m_rows; }
    EntryModel& row(size_t i) { return m_rows[i]; }
    const EntryModel& row(size_t i) const { return m_rows[i]; }

private:
    std::vector<EntryModel> m_rows;
};

}  // namespace zoka
