#include "customize/ScriptRows.h"

#include <algorithm>
#include <utility>

#include "util/LexChars.h"

namespace zoka {
namespace {

// Lines below one switch have one label; the line itself tells them apart.
std::string labelOf(const CustomScript& script, size_t i) {
    const CustomEntry& entry = script.entries[i];
    const auto shares = [&](size_t other) {
        return other < script.entries.size() && script.entries[other].line == entry.line;
    };
    if (entry.kind != kEnable || !(shares(i - 1) || shares(i + 1))) {
        return entry.label;
    }
    size_t start = entry.valueStart;
    while (start < script.text.size() && (lex::isBlank(script.text[start]) || script.text[start] == '/')) {
        ++start;
    }
    const size_t end = script.text.find_first_of("\r\n", start);  // the text always ends with one
    constexpr size_t kShown = 80;
    return entry.label + ": " +
           std::string(beginningOf(std::string_view(script.text).substr(start, end - start), kShown));
}

EntryModel rowOf(const CustomScript& script, size_t i, const HostNames& hostNames) {
    EntryFacts facts = factsOf(script, script.entries[i], hostNames);
    facts.label = labelOf(script, i);
    return EntryModel(std::move(facts));
}

}  // namespace

void ScriptRows::makeRows(const HostNames& hostNames) {
    std::vector<EntryModel> made;
    made.reserve(script.entries.size());
    for (size_t i = 0; i < script.entries.size(); ++i) {
        made.push_back(rowOf(script, i, hostNames));
    }
    m_rows = std::move(made);
    for (size_t i = 0; i < m_rows.size(); ++i) {
        script.entries[i].control = &m_rows[i];
    }
}

void ScriptRows::settleRows(const HostNames& hostNames) {
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const CustomEntry& entry = script.entries[i];
        if (m_rows[i].HasChanged() || entry.kind == kEntryEntity || entry.kind == kEntryPath) {
            m_rows[i] = rowOf(script, i, hostNames);
        }
    }
}

}  // namespace zoka
