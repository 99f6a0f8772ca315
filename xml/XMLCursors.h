// Places that lookups by index remember, so that asking for 0, 1, 2, ... in turn takes linear time. Internal
// to this folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "xml/XMLItems.h"

namespace zoka {

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
    // The remembered place for that element, kind and (Named and Position) name at or before `index`, valid
    // until the next call; null when there is none.
    const XMLCursor* find(const XMLElement* owner, XMLCursorKind kind, const XMLName* name, int index) const {
        if (index < kFrom) {
            return nullptr;
        }

        const Place& recent = recent_[slotOf(owner, kind)];
        if (recent.owner != owner || !fits(recent.cursor, kind, name)) {
            return findOld(owner, kind, name, index);
        }

        return recent.cursor.index <= index ? &recent.cursor : nullptr;
    }
    void remember(const XMLElement* owner, const XMLCursor& cursor, const XMLName* name) {
        if (cursor.index < kFrom) {
            return;
        }

        Place& recent = recent_[slotOf(owner, cursor.kind)];
        if (recent.owner && (recent.owner != owner || !fits(recent.cursor, cursor.kind, name))) {
            keep(recent);
        }

        recent = {owner, cursor};
        // A long list is most likely being walked: what lies behind is wanted next.
        __builtin_prefetch(cursor.item->next);
    }

    // The child that a walk by position found last, whatever its name; most walks go on from there.
    const XMLElement* walked = nullptr;  // its owner
    const XMLItem* walkedItem = nullptr;
    int walkedIndex = 0;

private:
    struct Place {
        const XMLElement* owner = nullptr;
        XMLCursor cursor{};
    };
    // Below this index a walk from the first item is as good.
    static constexpr int kFrom = 8;
    // Loops over that many names of one element at once keep their places; with more the oldest is forgotten.
    static constexpr size_t kPerElement = 8;
    static constexpr size_t kRecent = 16;

    static size_t slotOf(const XMLElement* owner, XMLCursorKind kind) {
        const auto address = reinterpret_cast<std::uintptr_t>(owner);
        return (address / 64 + address / 1024 + static_cast<size_t>(kind)) % kRecent;
    }
    static bool fits(const XMLCursor& cursor, XMLCursorKind kind, const XMLName* name) {
        if (cursor.kind != kind) {
            return false;
        }

        if (!name) {
            return true;
        }

        const auto* element = static_cast<const XMLElement*>(cursor.item);
        return name->matches(element->key, element->name);
    }
    const XMLCursor* findOld(const XMLElement* owner, XMLCursorKind kind, const XMLName* name,
                             int index) const;
    void keep(const Place& place);

    // The latest places, one a slot; what loses its slot goes to the map.
    Place recent_[kRecent];
    std::unordered_map<const XMLElement*, std::vector<XMLCursor>> old_;
};

}  // namespace zoka
