// Places that lookups by index remember, so that asking for 0, 1, 2, ... in turn takes linear time, and indexes of
// elements in which they go another way. Internal to this folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "xml/XMLContentIndex.h"

namespace zoka {

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

        const Place& recent = m_recent[slotOf(owner, kind)];
        if (recent.owner != owner || !fits(recent.cursor, kind, name)) {
            return nullptr;
        }

        return recent.cursor.index <= index ? &recent.cursor : nullptr;
    }
    void remember(const XMLElement* owner, const XMLCursor& cursor) {
        if (cursor.index < kFrom) {
            return;
        }

        Place& recent = m_recent[slotOf(owner, cursor.kind)];
        recent = {owner, cursor};
        // A long list is most likely being walked: what lies behind is wanted next.
        __builtin_prefetch(cursor.item->next);
    }

    // The element's index, up to date, where it has one; else null.
    const XMLContentIndex* indexOf(const XMLElement* owner) {
        return owner->walkedFar ? updated(owner, false) : nullptr;
    }
    // To be told of a lookup that has walked over kFarWalk items. Gives an index to use instead from the second such
    // walk on: a lookup here and there isn't worth one. Null when memory for it runs out, too.
    const XMLContentIndex* walksFar(const XMLElement* owner) {
        const bool again = owner->walkedFar;
        owner->walkedFar = true;
        return again ? updated(owner, true) : nullptr;
    }
    static constexpr int kFarWalk = 64;

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
    const XMLContentIndex* updated(const XMLElement* owner, bool make);

    // The latest places, one a slot.
    Place m_recent[kRecent];
    std::unordered_map<const XMLElement*, XMLContentIndex> m_indexes;
};

}  // namespace zoka
