// What a tree is made of. Internal to this folder.
#pragma once

#include <cstdint>

#include "xml/XMLNames.h"

namespace zoka {

struct XMLElement;

enum class XMLItemKind : std::uint8_t { Element, Text, Comment, CData, Doctype };

// What stands in an element's list of content. The list is a ring: the owner points to the last item, the
// last item to the first.
struct XMLItem {
    XMLItem* next = nullptr;
    XMLItemKind kind = XMLItemKind::Element;
    // Of elements only:
    bool isDeclaration = false;  // written as <?name ...?>
    bool holdsText = false;      // a text or CDATA section is among its own content
    bool grownRun = false;       // its attributes' run has room for a power of two
};

struct XMLTextItem : XMLItem {
    const char* value = nullptr;  // of a comment and the like: what stands between its tags
};

struct XMLClearTags {
    const char* open;
    const char* close;
};
inline XMLClearTags clearTags(XMLItemKind kind) {
    switch (kind) {
        case XMLItemKind::Comment:
            return {"<!--", "-->"};
        case XMLItemKind::CData:
            return {"<![CDATA[", "]]>"};
        default:
            return {"<!DOCTYPE", ">"};
    }
}

struct XMLAttribute {
    std::uint64_t key = 0;
    const char* name = nullptr;
    const char* value = nullptr;  // may be null
};

struct XMLElement : XMLItem {
    std::uint32_t attributeCount = 0;
    std::uint64_t key = 0;       // of the name, see XMLNames.h
    const char* name = nullptr;  // null: the document node
    XMLElement* parent = nullptr;
    XMLItem* lastItem = nullptr;
    XMLAttribute* attributes = nullptr;  // in one run
    // A text in front of all other content stands here and not in the list: most elements with a text have no
    // other content. Of a declaration other than "xml": its data, kept as it is.
    const char* text = nullptr;

    XMLItem* firstItem() const { return lastItem ? lastItem->next : nullptr; }
};
static_assert(sizeof(void*) != 8 || (sizeof(XMLElement) == 64 && sizeof(XMLAttribute) == 24));

}  // namespace zoka
