// The markup of a document beside its elements: the declaration, comments, CDATA sections, the document type and
// processing instructions; and the state that parsing them shares with parsing elements. Internal to this folder.
#pragma once

#include <cstring>
#include <new>
#include <string_view>

#include "xml/XMLConvert.h"
#include "xml/XMLNode.h"
#include "xml/XMLPosition.h"
#include "xml/XMLScan.h"
#include "xml/XMLTree.h"

namespace zoka {

// Every step takes the place where it starts and gives the one where it ended, or null after an error. Places
// are handed on and not kept in the object, so that they stay in registers. What every element needs stands in this
// header, where it is inlined.
class XMLMarkupParser {
public:
    XMLMarkupParser(const XMLMarkupParser&) = delete;
    XMLMarkupParser& operator=(const XMLMarkupParser&) = delete;

protected:
    XMLMarkupParser(XMLDocument& document, XMLElement* root, char* text, size_t size)
        : m_document(document),
          m_root(root),
          m_begin(text),
          m_end(text + size),
          m_utf8(document.charset == XMLCharset::Utf8),
          m_position(text, m_utf8, document.leads) {}

    // <?xml version="1.0" encoding="..." standalone="..."?>, the last two optional.
    char* declaration(char* p);
    // Comment, CDATA section or document type.
    char* exclamation(char* p);
    char* instruction(char* p);

    char* fail(XMLErrorCode code, const char* place) {
        m_code = code;
        m_place = place;
        return nullptr;
    }
    // For what may not stand at `place`; at the end that the text is cut off there.
    char* unexpected(char* place);
    // Past one character from 80 hex on, or a control character, which is an error.
    char* oddCharacter(char* p) {
        char32_t c = 0;
        const unsigned length = hasClass(*p, kCharHigh) ? utf8Sequence(p, c) : 0;
        m_shifts = true;
        return length && isXmlChar(c) ? p + length : unexpected(p);
    }
    // The end of the name at `p`; `p` itself when none starts there.
    char* nameEnd(char* p) {
        if (!hasClass(*p, kCharNameStart | kCharHigh)) {
            return p;
        }
        char* const end = scanName(p);
        return hasClass(*end, kCharHigh) ? unusualNameEnd(p, end) : end;
    }

    // The same name where it stood before, if it is found, else the name itself. Lookups compare what a key doesn't
    // hold of a long name, and find it in the cache when the elements of a name share it. (An attribute's name stands
    // beside its value, which is wanted next.)
    const char* sharedName(const char* name, size_t length, std::uint64_t key) {
        if (length < sizeof key) {
            return name;
        }
        const char*& place = m_longNames[slotOf(key)];
        // The one before ends in front of this one, so that it may be read that far.
        if (!place || std::memcmp(place, name, length) != 0 || place[length] != 0) {
            place = name;
        }
        return place;
    }
    // One of 64, by the key.
    static unsigned slotOf(std::uint64_t key) {
        return static_cast<unsigned>(key * 0x9e3779b97f4a7c15u >> 58);
    }

    // `leads` are those of the document.
    XMLElement* newElement(char* name, size_t length, XMLLeads leads) {
        XMLElement* element = m_document.newElement();
        element->key = xmlNameKey(name, length, leads);
        element->name = sharedName(name, length, element->key);
        element->parent = m_current;
        m_document.append(m_current, element);
        return element;
    }
    void openRun() {
        m_run = m_document.openRun(m_runRoom);
        m_runCount = 0;
    }
    void addToRun(const XMLAttribute& attribute) {
        if (m_runCount == m_runRoom) {
            m_run = m_document.growRun(m_run, m_runRoom);
        }
        ::new (static_cast<void*>(m_run + m_runCount++)) XMLAttribute(attribute);
    }
    // `tag` is where the element's name stood.
    void closeRun(XMLElement* element, const char* tag) {
        if (m_runCount == 0) {
            element->tag = tag;
            return;
        }
        m_document.closeRun(m_run, m_runCount);
        element->attributes = m_run;
        element->attributeCount = static_cast<std::uint32_t>(m_runCount);
    }

    XMLDocument& m_document;
    XMLElement* const m_root;
    char* const m_begin;
    char* const m_end;
    const bool m_utf8;
    XMLElement* m_current = m_root;
    XMLElement* m_top = nullptr;
    XMLPosition m_position;
    // Whether the text or value being read has characters that must be accounted for when it is decoded: line
    // ends or such as are not ASCII, be it by a reference.
    bool m_shifts = false;
    XMLErrorCode m_code = kXmlNone;
    const char* m_place = nullptr;
    // Of the tag being read.
    XMLAttribute* m_run = nullptr;
    size_t m_runCount = 0;

private:
    // The same of a name at `start` that has other than ASCII characters from `p` on.
    char* unusualNameEnd(char* start, char* p);
    // The place of `close` at or after `p`, when only allowed characters stand between. `opening` is blamed
    // when there is none.
    char* findClose(char* p, std::string_view close, char* opening);
    char* comment(char* p);
    char* cdata(char* p);
    char* doctype(char* p);
    void newClear(const char* value, XMLItemKind kind);

    size_t m_runRoom = 0;
    bool m_doctypeSeen = false;
    const char* m_longNames[64] = {};
};

}  // namespace zoka
