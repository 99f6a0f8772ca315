// Places that lookups by index remember, so that asking for 0, 1, 2, ... in turn takes linear time. Internal
// to this folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "xml/XMLNames.h"

namespace zoka {

struct XMLElement;
struct XMLItem;

enum class XMLCursorKind : std::uint8_t {
    Named,     // the index counts children of the item's name
    Position,  // the index counts children of every name, the walk being over the item's name
    Any,       // the index counts children of every name
    Text,
    Clear
};

struct XMLCursor {
    const XMLItem* item;
    int index;
    XMLCursorKind kind;
};

class XMLCursors {
public:
    // Below this index a walk from the first item is as good.
    static constexpr int kFrom = 8;

    // The remembered place for that element, kind and (Named and Position) name at or before `index`; null
    // when there is none.
    const XMLCursor* find(const XMLElement* owner, XMLCursorKind kind, const XMLName* name, int index) const;
    void remember(const XMLElement* owner, const XMLCursor& cursor, const XMLName* name);

private:
    // Loops over that many names of one element at once keep their places; with more the oldest is forgotten.
    static constexpr std::size_t kPerElement = 8;

    std::unordered_map<const XMLElement*, std::vector<XMLCursor>> places_;
};

}  // namespace zoka
