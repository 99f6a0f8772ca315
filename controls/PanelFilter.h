// Which rows of a panel are shown: by words searched for, by whether they changed, by folded sections.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "controls/EntryFacts.h"

namespace zoka {

struct FilterItem {
    EntryField field = EntryField::Text;
    std::string_view label;
    std::string_view help;
    bool changed = false;
    TextSet set = TextSet::System;
};

// Sections run from their heading to the next one; what stands above the first belongs to none. Case doesn't
// count, for accented letters neither. [panel thread]
class PanelFilter {
public:
    // Every word of it must be in an entry's label, help or section. In UTF-8; what is none is in the system's set.
    std::string search;
    bool changedOnly = false;

    bool isFolded(size_t heading) const { return heading < m_folded.size() && m_folded[heading]; }
    void setFolded(size_t heading, bool folded);
    void foldAll(std::span<const FilterItem> items, bool folded);
    void unfoldAll() { m_folded.clear(); }

    // One flag an item. While something is searched for or only changes are shown, folding doesn't count, and
    // a heading is shown when any of its section is. Linear in the texts.
    std::vector<bool> visible(std::span<const FilterItem> items) const;

private:
    std::vector<bool> m_folded;  // by the heading's index
};

}  // namespace zoka
