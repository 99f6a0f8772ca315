// Records, include lines and answers as the tests of this folder write them.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "templates/IncludeList.h"
#include "templates/ScriptElm.h"
#include "tests/support/FaultyOsFiles.h"

namespace zoka::test {

using Names = std::vector<std::string>;

inline CScriptElm script(std::string name, std::string file, std::string className = {},
                         std::string type = "USER", Names needs = {}) {
    CScriptElm elm;
    elm.m_name = std::move(name);
    elm.m_filename = std::move(file);
    elm.m_class = std::move(className);
    elm.m_type = std::move(type);
    elm.m_needs = std::move(needs);
    return elm;
}

// All texts of a record but those of its sections.
inline Names fields(const CScriptElm& elm) {
    Names all = {elm.m_id,   elm.m_prefix,      elm.m_directory,     elm.m_filename, elm.m_name,
                 elm.m_desc, elm.m_note,        elm.m_class,         elm.m_type,     elm.m_vers,
                 elm.m_date, elm.m_engreq.vers, elm.m_engreq.edition};
    all.insert(all.end(), elm.m_needs.begin(), elm.m_needs.end());
    return all;
}
inline Names fields(const CScriptAction& action) {
    return {action.m_name, action.m_filename, action.m_engreq.vers, action.m_engreq.edition, action.m_desc};
}

inline std::string includes(const Names& names) {
    std::string lines;
    for (const std::string& name : names) {
        lines += includeLine(name);
    }

    return lines;
}

// Calls `round` with the first operation of the disk failing, then with the second, until none is left to fail.
template <class Round>
void withEachFault(const Round& round) {
    for (int n = 1;; ++n) {
        const FaultyOsFiles disk(FaultyOsFiles::nth(n));
        round(n);
        if (n > disk.operations()) {
            return;
        }
    }
}

}  // namespace zoka::test
