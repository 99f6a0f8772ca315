#include "xml/XMLCursors.h"

#include "xml/XMLTree.h"

namespace zoka {
namespace {

bool fits(const XMLCursor& cursor, XMLCursorKind kind, const XMLName* name) {
    if (cursor.kind != kind) return false;
    if (!name) return true;
    const auto* element = static_cast<const XMLElement*>(cursor.item);
    return name->matches(element->key, element->name);
}

}  // namespace

const XMLCursor* XMLCursors::find(const XMLElement* owner, XMLCursorKind kind, const XMLName* name,
                                  int index) const {
    if (index < kFrom) return nullptr;
    const auto found = places_.find(owner);
    if (found == places_.end()) return nullptr;
    for (const XMLCursor& cursor : found->second)
        if (fits(cursor, kind, name)) return cursor.index <= index ? &cursor : nullptr;
    return nullptr;
}

void XMLCursors::remember(const XMLElement* owner, const XMLCursor& cursor, const XMLName* name) {
    if (cursor.index < kFrom) return;
    std::vector<XMLCursor>& list = places_[owner];
    for (XMLCursor& old : list)
        if (fits(old, cursor.kind, name)) {
            old = cursor;
            return;
        }
    if (list.size() == kPerElement) list.erase(list.begin());
    list.push_back(cursor);
}

}  // namespace zoka
