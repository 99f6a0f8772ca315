#include "xml/XMLParser.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "util/KeyedHash.h"
#include "xml/XMLMarkupParser.h"
#include "xml/XMLReferences.h"

namespace zoka {
namespace {

constexpr size_t kWatchEvery = size_t{1} << 18;  // bytes

// Elements with their attributes and texts. `Utf8` is whether the document is.
template <bool Utf8>
class Parser : XMLMarkupParser {
public:
    Parser(XMLDocument& document, XMLElement* root, char* text, size_t size, const XMLProgress& watch,
           const XMLTakeElement& take)
        : XMLMarkupParser(document, root, text, size),
          m_watch(watch),
          m_nextWatch(watch ? text : m_end),
          m_take(take) {}

    XMLElement* parse(const char* tag, XMLResults& results);

private:
    // Tells the watch that the text is parsed up to `p`; `p` again, or null when it stops.
    char* tellWatch(char* p) {
        if (!m_watch) {
            return p;
        }
        m_nextWatch = p + std::min(kWatchEvery, static_cast<size_t>(m_end - p));
        m_stopped = !m_watch(static_cast<size_t>(p - m_begin), static_cast<size_t>(m_end - m_begin));
        return m_stopped ? nullptr : p;
    }
    // Whether the text may hold characters of two bytes that pass as two ASCII ones to the scanning code.
    bool hasPairs() const { return leads() != nullptr; }
    XMLLeads leads() const { return Utf8 ? nullptr : m_document.leads; }
    // Past the reference at `p`.
    char* reference(char* p);
    // Inlined into its one caller, reading would take a tenth longer.
    [[gnu::noinline]] char* content(char* p);
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

    const XMLProgress& m_watch;
    char* m_nextWatch;
    const XMLTakeElement& m_take;
    XMLDocument::Room m_roomBefore;  // before the child of the top that is being read, when m_take is set
    XMLItem* m_itemBefore = nullptr;
    bool m_stopped = false;
    XMLPosition::Place m_topPlace{0, 0};
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
    XMLElement* element = newElement(name, static_cast<size_t>(q - name), leads());
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
        addToRun({attribute, q + 1, key});
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
                m_seenNames.emplace(m_run[i].name());
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
        const char* const other = m_run[i].name();
        if (std::strncmp(other, name, length) == 0 && other[length] == 0) {
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

}  // namespace

XMLElement* parseXml(XMLDocument& document, XMLElement* root, char* text, size_t size, const char* tag,
                     XMLResults& results, const XMLProgress& watch, const XMLTakeElement& take) {
    if (document.charset == XMLCharset::Utf8) {
        return Parser<true>(document, root, text, size, watch, take).parse(tag, results);
    }
    return Parser<false>(document, root, text, size, watch, take).parse(tag, results);
}

}  // namespace zoka
