// What a tree is made of. Internal to this folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include "xml/XMLNames.h"

namespace zoka {

struct XMLElement;

enum class XMLItemKind : std::uint8_t { Element, Text, Comment, CData, Doctype };

// Texts and CDATA sections among an element's own content. A text that is all the content stands in the
// element itself and is no item: most elements with a text have nothing else.
enum class XMLTextUse : std::uint8_t { None, AmongItems, Alone };

// What stands in an element's list of content. The list is a ring: the owner points to the last item, the
// last item to the first.
struct XMLItem {
    XMLItem* next = nullptr;
    XMLItemKind kind = XMLItemKind::Element;
    // Of elements only:
    bool isDeclaration = false;  // written as <?name ...?>
    XMLTextUse textUse = XMLTextUse::None;
    bool grownRun : 1 = false;  // its attributes' run has room for a power of two
    // A lookup has walked far in its content; XMLCursors may hold an index of it.
    mutable bool walkedFar : 1 = false;
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

// An attribute: its name stands in front of its value, in the text that was parsed or in memory of its own. Most of a
// large tree are attributes, hence the narrow fields.
class XMLAttribute {
public:
    // `key` is the name's. With `hasValue` false, `value` is just a place behind the name. Throws std::bad_alloc when
    // they are too far apart.
    XMLAttribute(const char* name, const char* value, std::uint64_t key, bool hasValue = true)
        : m_value(value),
          m_key(narrow(key)),
          m_back(static_cast<std::uint32_t>(value - name) & kMostBack),
          m_hasValue(hasValue) {
        if (value - name > std::ptrdiff_t{kMostBack}) {
            throw std::bad_alloc();
        }
    }

    const char* name() const { return m_value - m_back; }
    // May be null.
    const char* value() const { return m_hasValue ? m_value : nullptr; }
    bool isNamed(const XMLName& wanted) const {
        return m_key == narrow(wanted.key) && wanted.matches(name());
    }

private:
    static constexpr std::uint32_t kMostBack = 0x7fffffff;

    static std::uint32_t narrow(std::uint64_t key) { return static_cast<std::uint32_t>(key ^ key >> 29); }

    const char* m_value;
    std::uint32_t m_key;
    std::uint32_t m_back : 31;
    std::uint32_t m_hasValue : 1;
};

struct XMLElement : XMLItem {
    std::uint32_t attributeCount = 0;
    std::uint64_t key = 0;       // of the name, see XMLNames.h
    const char* name = nullptr;  // null: the document node
    XMLElement* parent = nullptr;
    union {
        XMLAttribute* attributes = nullptr;  // in one run
        const char*
            tag;  // while there is none: where its name stood in the text, null for what a program made
    };

    XMLItem* lastItem() const { return textUse == XMLTextUse::Alone ? nullptr : m_last; }
    XMLItem* firstItem() const {
        XMLItem* last = lastItem();
        return last ? last->next : nullptr;
    }
    // The one behind `item`; null behind the last.
    XMLItem* itemAfter(const XMLItem* item) const { return item == m_last ? nullptr : item->next; }
    // The text that is all the content, or null. Of a declaration other than "xml": its data, kept as it is.
    const char* textAlone() const { return textUse == XMLTextUse::Alone ? m_text : nullptr; }
    bool isBare() const { return textUse == XMLTextUse::None && !m_last; }

    void setTextAlone(const char* text) {
        m_text = text;
        textUse = XMLTextUse::Alone;
    }
    // Only while no text stands alone; see XMLDocument::append.
    void appendItem(XMLItem* item) {
        item->next = m_last ? m_last->next : item;
        if (m_last) {
            m_last->next = item;
        }

        m_last = item;
    }
    // Takes out what stands behind `item`; null: all.
    void cutBehind(XMLItem* item) {
        if (!item) {
            return clearContent();
        }
        item->next = m_last->next;
        m_last = item;
    }
    void clearContent() {
        m_last = nullptr;
        textUse = XMLTextUse::None;
    }

private:
    union {
        XMLItem* m_last = nullptr;
        const char* m_text;
    };
};
static_assert(sizeof(void*) != 8 || (sizeof(XMLElement) == 56 && sizeof(XMLAttribute) == 16));

}  // namespace zoka
