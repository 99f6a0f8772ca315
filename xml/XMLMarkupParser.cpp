#include "xml/XMLMarkupParser.h"

#include <algorithm>
#include <cstring>

namespace zoka {

char* XMLMarkupParser::unexpected(char* place) {
    if (place == m_end && m_current != m_root) {
        return fail(kXmlMissingEndTag, place);
    }
    if (place == m_end) {
        return fail(kXmlInvalidTag, place);
    }
    char32_t c = 0;
    return fail(m_utf8 && utf8Sequence(place, c) == 0 ? kXmlCannotConvert : kXmlUnexpectedToken, place);
}

char* XMLMarkupParser::unusualNameEnd(char* start, char* p) {
    for (;; p = scanName(p)) {
        if (!hasClass(*p, kCharHigh)) {
            return p;
        }
        char32_t c = 0;
        const unsigned length = m_utf8 ? utf8Sequence(p, c) : platformCharacter(p, m_document.leads);
        if (length == 0) {
            return p;
        }
        if (m_utf8 && !(p == start ? isXmlNameStart(c) : isXmlNameChar(c))) {
            return p;
        }
        p += length;
    }
}

char* XMLMarkupParser::findClose(char* p, std::string_view close, char* opening) {
    while (p) {
        p = m_utf8 ? scanTo<true>(p, close[0]) : scanTo<false>(p, close[0]);
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

char* XMLMarkupParser::declaration(char* p) {
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
        addToRun({name, start, xmlNameKey(name, word.size(), m_document.leads)});
        next = which + 1;
    }
    if (next == 0) {
        return fail(kXmlInvalidTag, q);
    }
    XMLElement* element = newElement(p + 2, 3, m_document.leads);
    element->isDeclaration = true;
    closeRun(element, p + 2);
    return skipBlanks(q) + 2;
}

void XMLMarkupParser::newClear(const char* value, XMLItemKind kind) {
    m_document.append(m_current, m_document.newTextItem(kind, value));
    if (kind == XMLItemKind::CData) {
        m_current->textUse = XMLTextUse::AmongItems;
    }
}

char* XMLMarkupParser::exclamation(char* p) {
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

char* XMLMarkupParser::comment(char* p) {
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

char* XMLMarkupParser::cdata(char* p) {
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
char* XMLMarkupParser::doctype(char* p) {
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
            q = isXmlBlank(c) || !hasClass(c, kCharControl | (m_utf8 ? kCharHigh : 0)) ? q + 1
                                                                                       : oddCharacter(q);
        }
    }
    return nullptr;
}

char* XMLMarkupParser::instruction(char* p) {
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
    XMLElement* element = newElement(name, length, m_document.leads);
    element->isDeclaration = true;
    if (close > data) {
        element->setTextAlone(data);
    }
    m_position.end(end);
    *close = 0;
    return close + 2;
}

}  // namespace zoka
