#include "xml/XMLCursors.h"

#include <optional>

#include "xml/XMLTree.h"

namespace zoka {

const XMLCursor* XMLCursors::findOld(const XMLElement* owner, XMLCursorKind kind, const XMLName* name,
                                     int index) const {
    const auto found = old_.find(owner);
    if (found == old_.end()) {
        return nullptr;
    }
    for (const XMLCursor& cursor : found->second) {
        if (fits(cursor, kind, name)) {
            return cursor.index <= index ? &cursor : nullptr;
        }
    }
    return nullptr;
}

void XMLCursors::keep(const Place& place) {
    std::vector<XMLCursor>& list = old_[place.owner];
    const XMLCursorKind kind = place.cursor.kind;
    std::optional<XMLName> name;
    if (kind == XMLCursorKind::Named || kind == XMLCursorKind::Position) {
        name.emplace(static_cast<const XMLElement*>(place.cursor.item)->name,
                     XMLDocument::leadsOf(place.owner));
    }
    for (XMLCursor& old : list) {
        if (fits(old, kind, name ? &*name : nullptr)) {
            old = place.cursor;
            return;
        }
    }
    if (list.size() == kPerElement) {
        list.erase(list.begin());
    }
    list.push_back(place.cursor);
}

}  // namespace zoka
