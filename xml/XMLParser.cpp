#include "xml/XMLParser.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

#include "util/KeyedHash.h"
#include "xml/XMLConvert.h"
#include "xml/XMLNode.h"
#include "xml/XMLPosition.h"
#include "xml/XMLReferences.h"
#include "xml/XMLScan.h"

namespace zoka {
namespace {

constexpr size_t kWatchEvery = size_t{1} << 18;  // bytes

// Every step takes the place where it starts and gives the one where it ended, or null after an error. Places
// are handed on and not kept in the object, so that they stay in registers.
template <bool Utf8>
class Parser {
public:
    Parser(XMLDocument& document, XMLElement* root, char* text, size_t size, const XMLProgress& watch,
           const XMLTakeElement& take)
        : m_document(document),
          m_root(root),
          m_begin(text),
          m_end(text + size),
          m_watch(watch),
          m_nextWatch(watch ? text : m_end),
          m_take(take),
          m_position(text, Utf8, document.leads) {}

    XMLElement* parse(const char* tag, XMLResults& results);

private:
    char* fail(XMLErrorCode code, const char* place) {
        m_code = code;
        m_place = place;
        return nullptr;
    }
    // Tells the watch that the text is parsed up to `p`; `p` again, or null when it stops.
    char* tellWatch(char* p) {
        if (!m_watch) {
            return p;
        }
        m_nextWatch = p + std::min(kWatchEvery, static_cast<size_t>(m_end - p));
        m_stopped = !m_watch(static_cast<size_t>(p - m_begin), static_cast<size_t>(m_end - m_begin));
        return m_stopped ? nullptr : p;
    }
    // For what may not stand at `place`; at the end that the text is cut off there.
    char* unexpected(char* place) {
        if (place == m_end && m_current != m_root) {
            return fail(kXmlMissingEndTag, place);
        }
        if (place == m_end) {
            return fail(kXmlInvalidTag, place);
        }
        char32_t c = 0;
        return fail(Utf8 && utf8Sequence(place, c) == 0 ? kXmlCannotConvert : kXmlUnexpectedToken, place);
    }
    // Whether the text may hold characters of two bytes that pass as two ASCII ones to the scanning code.
    bool hasPairs() const { return leads() != nullptr; }
    XMLLeads leads() const { return Utf8 ? nullptr : m_document.leads; }
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
    // The same of a name at `start` that has other than ASCII characters from `p` on.
    char* unusualNameEnd(char* start, char* p);
    // Past the reference at `p`.
    char* reference(char* p);
    // The place of `close` at or after `p`, when only allowed characters stand between. `opening` is blamed
    // when there is none.
    char* findClose(char* p, std::string_view close, char* opening);

    char* declaration(char* p);
    char* content(char* p);
    char* text(char* p);
    char* startTag(char* p);
    char* value(char* p, char quote);
    bool isDouble(const char* name, size_t length, std::uint64_t key);
    char* endTag(char* p);
    // The end of the name at `p` when it is that of the open element, else null.
    char* sameNameEnd(char* p) {
        for (const char* open = m_current->name;; ++open, ++p) {
            if (*open == 0) {
                return hasClass(*p, kCharName | kCharHigh) ? nullptr : p;
            }
            if (*open != *p) {
                return nullptr;
            }
        }
    }
    char* exclamation(char* p);
    char* comment(char* p);
    char* cdata(char* p);
    char* doctype(char* p);
    char* instruction(char* p);

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

    XMLElement* newElement(char* name, size_t length) {
        XMLElement* element = m_document.newElement();
        element->key = xmlNameKey(name, length, leads());
        element->name = sharedName(name, length, element->key);
        element->parent = m_current;
        m_document.append(m_current, element);
        return element;
    }
    // Around a child of the top element.
    void beforeChild() {
        if (m_top->textUse == XMLTextUse::Alone) {
            m_document.listTextAlone(m_top);
        }
        m_itemBefore = m_top->lastItem();
        m_roomBefore = m_document.room();
    }
    void afterChild(XMLElement* element) {
        if (m_take(element)) {
            m_top->cutBehind(m_itemBefore);
            m_document.rewind(m_roomBefore);
        }
    }
    void newClear(const char* value, XMLItemKind kind) {
        m_document.append(m_current, m_document.newTextItem(kind, value));
        if (kind == XMLItemKind::CData) {
            m_current->textUse = XMLTextUse::AmongItems;
        }
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
    const XMLProgress& m_watch;
    char* m_nextWatch;
    const XMLTakeElement& m_take;
    XMLDocument::Room m_roomBefore;  // before the child of the top that is being read, when m_take is set
    XMLItem* m_itemBefore = nullptr;
    bool m_stopped = false;
    XMLElement* m_current = m_root;
    XMLElement* m_top = nullptr;
    bool m_doctypeSeen = false;
    XMLPosition m_position;
    // Whether the text or value being read has characters that must be accounted for when it is decoded: line
    // ends or such as are not ASCII, be it by a reference.
    bool m_shifts = false;
    XMLErrorCode m_code = kXmlNone;
    const char* m_place = nullptr;
    XMLPosition::Place m_topPlace{0, 0};
    // Of the tag being read.
    XMLAttribute* m_run = nullptr;
    size_t m_runCount = 0;
    size_t m_runRoom = 0;
    const char* m_longNames[64] = {};
    std::uint64_t m_seenKeys = 0;
    KeyedSet<std::string_view> m_seenNames;
};

template <bool Utf8>
XMLElement* Parser<Utf8>::parse(const char* tag, XMLResults& results) {
    if (skipBlanks(m_begin) == m_end) {
        fail(kXmlNoData, nullptr);
    } else {
        const bool declared = startsWith(m_begin, "<?xml") && (isXmlBlank(m_begin[5]) || m_begin[5] == '?');
        char* p = declared ? declaration(m_begin) : m_begin;
        if (p && content(p) && !m_top) {
            fail(kXmlNoElements, m_end);
        }
    }
    XMLPosition::Place place{0, 0};
    if (m_place) {
        place = m_position.at(m_place);
    }
    if (m_code == kXmlNone && !m_stopped && tag && !XMLName(tag, leads()).matches(m_top->key, m_top->name)) {
        m_code = kXmlFirstTagNotFound;
        place = m_topPlace;
    }
    results.code = m_code;
    results.line = place.line;
    results.column = place.column;
    return m_code == kXmlNone && !m_stopped ? m_top : nullptr;
}

template <bool Utf8>
char* Parser<Utf8>::unusualNameEnd(char* start, char* p) {
    for (;; p = scanName(p)) {
        if (!hasClass(*p, kCharHigh)) {
            return p;
        }
        char32_t c = 0;
        const unsigned length = Utf8 ? utf8Sequence(p, c) : platformCharacter(p, leads());
        if (length == 0) {
            return p;
        }
        if (Utf8 && !(p == start ? isXmlNameStart(c) : isXmlNameChar(c))) {
            return p;
        }
        p += length;
    }
}

template <bool Utf8>
char* Parser<Utf8>::reference(char* p) {
    char32_t c = 0;
    char* end = xmlReference(p, c);
    if (!end) {
        return fail(kXmlUnknownEntity, p);
    }
    m_shifts |= c >= 0x80 || c == '\n' || c == '\r';
    return Utf8 || xmlPlatformHas(c) ? end : fail(kXmlCannotConvert, p);
}

template <bool Utf8>
char* Parser<Utf8>::findClose(char* p, std::string_view close, char* opening) {
    while (p) {
        p = scanTo<Utf8>(p, close[0]);
        if (*p == close[0]) {
            if (std::strncmp(p, close.data(), close.size()) == 0) {
                return p;
            }
            ++p;
        } else if (p == m_end) {
            return fail(kXmlUnmatchedClear, opening);
        } else {
            p = oddCharacter(p);
        }
    }
    return nullptr;
}

// <?xml version="1.0" encoding="..." standalone="..."?>, the last two optional.
template <bool Utf8>
char* Parser<Utf8>::declaration(char* p) {
    constexpr std::string_view names[] = {"version", "encoding", "standalone"};
    constexpr size_t all = 3;
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto allowed = [&](size_t which, std::string_view value) {
        if (which == 2) {
            return value == "yes" || value == "no";
        }
        if (which == 0) {
            if (!value.starts_with("1.") || value.size() < 3) {
                return false;
            }
            return std::all_of(value.begin() + 2, value.end(), isDigit);
        }
        return !value.empty() && hasClass(value[0], kCharNameStart) && value.find(':') == value.npos &&
               value[0] != '_';
    };

    if (p[5] == '?') {
        return fail(kXmlInvalidTag, p + 5);
    }
    openRun();
    m_position.end(p + 5);
    char* q = p + 6;
    size_t next = 0;
    for (;;) {
        char* const name = skipBlanks(q);
        if (name[0] == '?' && name[1] == '>') {
            break;
        }
        if (name == q && next != 0) {
            return fail(kXmlInvalidTag, q);
        }
        char* const nameEndsAt = nameEnd(name);
        const std::string_view word(name, static_cast<size_t>(nameEndsAt - name));
        size_t which = next;
        while (which < all && names[which] != word) {
            ++which;
        }
        if (which == all || (next == 0 && which != 0)) {
            return fail(kXmlInvalidTag, name);
        }
        q = skipBlanks(nameEndsAt);
        if (*q != '=') {
            return fail(kXmlInvalidTag, q);
        }
        q = skipBlanks(q + 1);
        const char quote = *q;
        if (quote != '"' && quote != '\'') {
            return fail(kXmlInvalidTag, q);
        }
        char* const start = q + 1;
        for (q = start; hasClass(*q, kCharName);) {
            ++q;
        }
        if (*q != quote) {
            return q == m_end ? fail(kXmlUnmatchedQuote, start - 1) : fail(kXmlInvalidTag, q);
        }
        if (!allowed(which, {start, static_cast<size_t>(q - start)})) {
            return fail(kXmlInvalidTag, start);
        }
        m_position.end(nameEndsAt);
        *q++ = 0;
        addToRun({xmlNameKey(name, word.size(), leads()), name, start});
        next = which + 1;
    }
    if (next == 0) {
        return fail(kXmlInvalidTag, q);
    }
    XMLElement* element = newElement(p + 2, 3);
    element->isDeclaration = true;
    closeRun(element, p + 2);
    return skipBlanks(q) + 2;
}

template <bool Utf8>
char* Parser<Utf8>::content(char* p) {
    while (p) {
        p = skipBlanks(p);
        if (*p != '<') {
            if (m_current != m_root) {
                p = text(p);
                if (!p) {
                    break;
                }
            } else {
                if (p == m_end) {
                    return p;
                }
                return fail(m_top ? kXmlUnexpectedToken : kXmlFirstNotStartTag, p);
            }
        }
        // A text's terminator may stand in the place of the '<'.
        switch (p[1]) {
            case '/':
                p = endTag(p);
                break;
            case '!':
                p = exclamation(p);
                break;
            case '?':
                p = instruction(p);
                break;
            default:
                if (p >= m_nextWatch && !tellWatch(p)) {
                    return nullptr;
                }
                p = startTag(p);
        }
    }
    return nullptr;
}

// Gives the place of the markup behind the text.
template <bool Utf8>
char* Parser<Utf8>::text(char* p) {
    char* const start = p;
    bool edits = false;
    m_shifts = hasPairs();
    for (; p;) {
        p = scanText<Utf8>(p);
        const char c = *p;
        if (c == '<') {
            break;
        }
        if (c == '&') {
            p = reference(p);
            edits = true;
        } else if (c == '\r') {
            ++p;
            edits = m_shifts = true;
        } else if (c == ']') {
            if (p[1] == ']' && p[2] == '>') {
                return fail(kXmlUnmatchedClear, p);
            }
            ++p;
        } else {
            p = oddCharacter(p);
        }
    }
    if (!p) {
        return nullptr;
    }

    char* end = p;
    if (edits) {
        const bool shifts = m_shifts || std::memchr(start, '\n', static_cast<size_t>(p - start));
        if (shifts) {
            m_position.beforeEdit(start, p);
        }
        const XMLDecodedRange range = xmlDecode(start, p, false, Utf8);
        for (end = range.end; end > range.afterReference && isXmlBlank(end[-1]);) {
            --end;
        }
        *end = 0;
        if (shifts) {
            m_position.afterEdit(start, p);
        }
    } else {
        while (isXmlBlank(end[-1])) {
            --end;
        }
        m_position.end(end);
    }
    m_document.appendText(m_current, start);
    return p;
}

template <bool Utf8>
char* Parser<Utf8>::startTag(char* p) {
    char* const name = p + 1;
    char* q = nameEnd(name);
    if (q == name) {
        return name == m_end ? unexpected(name) : fail(kXmlMissingTagName, name);
    }
    if (m_current == m_root && m_top) {
        return fail(kXmlUnexpectedToken, p);
    }
    char c = *q;
    if (c != '>' && c != '/' && !isXmlBlank(c)) {
        return unexpected(q);
    }
    const bool ofTop = m_take && m_current == m_top;
    if (ofTop) {
        beforeChild();
    }
    XMLElement* element = newElement(name, static_cast<size_t>(q - name));
    if (m_current == m_root) {
        m_top = element;
        m_topPlace = m_position.at(p);
    }
    m_position.end(q);
    openRun();
    for (;;) {
        if (c == '>') {
            m_current = element;
            ++q;
            break;
        }
        if (c == '/') {
            if (q[1] != '>') {
                return unexpected(q + 1);
            }
            q += 2;
            break;
        }
        if (!isXmlBlank(c)) {
            return unexpected(q);
        }
        q = skipBlanks(q + 1);
        c = *q;
        if (c == '>' || c == '/') {
            continue;
        }

        char* const attribute = q;
        char* const attributeEnd = nameEnd(attribute);
        if (attributeEnd == attribute) {
            return unexpected(attribute);
        }
        q = skipBlanks(attributeEnd);
        if (*q != '=') {
            return unexpected(q);
        }
        q = skipBlanks(q + 1);
        const char quote = *q;
        if (quote != '"' && quote != '\'') {
            return unexpected(q);
        }
        const auto length = static_cast<size_t>(attributeEnd - attribute);
        const std::uint64_t key = xmlNameKey(attribute, length, leads());
        if (isDouble(attribute, length, key)) {
            return fail(kXmlInvalidTag, attribute);
        }
        m_position.end(attributeEnd);
        addToRun({key, attribute, q + 1});
        q = value(q + 1, quote);
        if (!q) {
            return nullptr;
        }
        c = *++q;
    }
    closeRun(element, name);
    if (ofTop && m_current == m_top) {
        afterChild(element);
    }
    return q;
}

// Ends the value and gives the place of its closing quote.
template <bool Utf8>
char* Parser<Utf8>::value(char* p, char quote) {
    char* const start = p;
    bool edits = false;
    m_shifts = hasPairs();
    while (p) {
        p = scanValue<Utf8>(p, quote);
        const char c = *p;
        if (c == quote) {
            break;
        }
        if (c == '&') {
            p = reference(p);
            edits = true;
        } else if (isXmlBlank(c)) {
            ++p;
            edits = true;
            m_shifts |= c != '\t';
        } else if (p == m_end) {
            return fail(kXmlUnmatchedQuote, start - 1);
        } else if (c == '<') {
            return fail(kXmlUnexpectedToken, p);
        } else {
            p = oddCharacter(p);
        }
    }
    if (!p) {
        return nullptr;
    }
    if (edits) {
        if (m_shifts) {
            m_position.beforeEdit(start, p);
        }
        *xmlDecode(start, p, true, Utf8).end = 0;
        if (m_shifts) {
            m_position.afterEdit(start, p);
        }
    } else {
        *p = 0;
    }
    return p;
}

// Whether the tag has an attribute of exactly that name already. Few names share a bit of the sieve, so that
// the attributes in front are rarely looked at; of a great many the names are kept in a set.
template <bool Utf8>
bool Parser<Utf8>::isDouble(const char* name, size_t length, std::uint64_t key) {
    constexpr size_t many = 32;
    if (m_runCount == 0) {
        m_seenKeys = 0;
    }
    if (m_runCount >= many) {
        if (m_runCount == many) {
            m_seenNames.clear();
            for (size_t i = 0; i < many; ++i) {
                m_seenNames.emplace(m_run[i].name);
            }
        }
        return !m_seenNames.emplace(name, length).second;
    }
    const std::uint64_t bit = std::uint64_t{1} << slotOf(key);
    const bool maybe = (m_seenKeys & bit) != 0;
    m_seenKeys |= bit;
    if (!maybe) {
        return false;
    }
    for (size_t i = 0; i < m_runCount; ++i) {
        const XMLAttribute& other = m_run[i];
        if (other.key == key && std::strncmp(other.name, name, length) == 0 && other.name[length] == 0) {
            return true;
        }
    }
    return false;
}

template <bool Utf8>
char* Parser<Utf8>::endTag(char* p) {
    if (m_current == m_root) {
        return fail(m_top ? kXmlUnmatchedEndTag : kXmlFirstNotStartTag, p);
    }
    char* const name = p + 2;
    char* q = sameNameEnd(name);
    if (!q) {
        char* const end = nameEnd(name);
        if (end == m_end) {
            return unexpected(end);
        }
        return end == name ? fail(kXmlMissingEndTagName, name) : fail(kXmlUnmatchedEndTag, p);
    }
    q = skipBlanks(q);
    if (*q != '>') {
        return unexpected(q);
    }
    XMLElement* const closed = m_current;
    m_current = closed->parent;
    if (m_current == m_top && m_take) {
        afterChild(closed);
    }
    return q + 1;
}

template <bool Utf8>
char* Parser<Utf8>::exclamation(char* p) {
    // The '<' is not looked at: a text's terminator may stand in its place.
    if (startsWith(p + 1, "!--")) {
        return comment(p);
    }
    if (startsWith(p + 1, "![CDATA[")) {
        return cdata(p);
    }
    if (startsWith(p + 1, "!DOCTYPE")) {
        return doctype(p);
    }
    return fail(kXmlInvalidTag, p);
}

template <bool Utf8>
char* Parser<Utf8>::comment(char* p) {
    char* const start = p + 4;
    char* const close = findClose(start, "--", p);
    if (!close) {
        return nullptr;
    }
    if (close[2] != '>') {
        return fail(kXmlUnmatchedClear, close + 2 == m_end ? p : close);
    }
    *close = 0;
    newClear(start, XMLItemKind::Comment);
    return close + 3;
}

template <bool Utf8>
char* Parser<Utf8>::cdata(char* p) {
    if (m_current == m_root) {
        return fail(m_top ? kXmlUnexpectedToken : kXmlFirstNotStartTag, p);
    }
    char* const start = p + 9;
    char* const close = findClose(start, "]]>", p);
    if (!close) {
        return nullptr;
    }
    *close = 0;
    newClear(start, XMLItemKind::CData);
    return close + 3;
}

// Kept, not understood: its end is where brackets and inner markup are balanced.
template <bool Utf8>
char* Parser<Utf8>::doctype(char* p) {
    char* const start = p + 9;
    char* const name = skipBlanks(start);
    if (m_current != m_root || m_top || m_doctypeSeen || name == start) {
        return fail(kXmlInvalidTag, p);
    }
    m_doctypeSeen = true;
    char* q = nameEnd(name);
    if (q == name) {
        return q == m_end ? fail(kXmlUnmatchedClear, p) : unexpected(q);
    }
    bool inSubset = false;
    int open = 0;
    while (q) {
        const char c = *q;
        if (q == m_end) {
            return fail(kXmlUnmatchedClear, p);
        }
        if (c == '"' || c == '\'') {
            q = findClose(q + 1, {&c, 1}, p);
            if (q) {
                ++q;
            }
        } else if (c == '<' && startsWith(q, "<!--")) {
            q = findClose(q + 4, "-->", p);
            if (q) {
                q += 3;
            }
        } else if (c == '<' && q[1] == '?') {
            q = findClose(q + 2, "?>", p);
            if (q) {
                q += 2;
            }
        } else if (c == '<') {
            ++open;
            ++q;
        } else if (c == '>' && open > 0) {
            --open;
            ++q;
        } else if (c == '>') {
            if (inSubset) {
                return unexpected(q);
            }
            *q = 0;
            newClear(start, XMLItemKind::Doctype);
            return q + 1;
        } else if ((c == '[' || c == ']') && open == 0) {
            if (inSubset != (c == ']')) {
                return unexpected(q);
            }
            inSubset = c == '[';
            ++q;
        } else {
            q = isXmlBlank(c) || !hasClass(c, kCharControl | (Utf8 ? kCharHigh : 0)) ? q + 1
                                                                                     : oddCharacter(q);
        }
    }
    return nullptr;
}

template <bool Utf8>
char* Parser<Utf8>::instruction(char* p) {
    char* const name = p + 2;
    char* const end = nameEnd(name);
    if (end == name) {
        return name == m_end ? fail(kXmlUnmatchedClear, p) : fail(kXmlMissingTagName, name);
    }
    const auto length = static_cast<size_t>(end - name);
    const auto fold = [name](int i) { return name[i] | 0x20; };
    if (length == 3 && fold(0) == 'x' && fold(1) == 'm' && fold(2) == 'l') {
        return fail(kXmlInvalidTag, p);
    }
    if (end == m_end) {
        return fail(kXmlUnmatchedClear, p);
    }
    if (!isXmlBlank(*end) && (end[0] != '?' || end[1] != '>')) {
        return unexpected(end);
    }
    char* const data = skipBlanks(end);
    char* const close = findClose(data, "?>", p);
    if (!close) {
        return nullptr;
    }
    XMLElement* element = newElement(name, length);
    element->isDeclaration = true;
    if (close > data) {
        element->setTextAlone(data);
    }
    m_position.end(end);
    *close = 0;
    return close + 2;
}

}  // namespace

XMLElement* parseXml(XMLDocument& document, XMLElement* root, char* text, size_t size, const char* tag,
                     XMLResults& results, const XMLProgress& watch, const XMLTakeElement& take) {
    if (document.charset == XMLCharset::Utf8) {
        return Parser<true>(document, root, text, size, watch, take).parse(tag, results);
    }
    return Parser<false>(document, root, text, size, watch, take).parse(tag, results);
}

}  // namespace zoka
