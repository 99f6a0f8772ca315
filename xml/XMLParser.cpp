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
    Parser(XMLDocument& document, XMLElement* root, char* text, size_t size, const XMLWatch& watch)
        : document_(document),
          root_(root),
          begin_(text),
          end_(text + size),
          watch_(watch),
          nextWatch_(watch ? text : end_),
          position_(text, Utf8, document.leads) {}

    XMLElement* parse(const char* tag, XMLResults& results);

private:
    char* fail(XMLErrorCode code, const char* place) {
        code_ = code;
        place_ = place;
        return nullptr;
    }
    // Tells the watch that the text is parsed up to `p`; `p` again, or null when it stops.
    char* tellWatch(char* p) {
        if (!watch_) {
            return p;
        }
        nextWatch_ = p + std::min(kWatchEvery, static_cast<size_t>(end_ - p));
        stopped_ = !watch_(static_cast<size_t>(p - begin_), static_cast<size_t>(end_ - begin_));
        return stopped_ ? nullptr : p;
    }
    // For what may not stand at `place`; at the end that the text is cut off there.
    char* unexpected(char* place) {
        if (place == end_ && current_ != root_) {
            return fail(kXmlMissingEndTag, place);
        }
        if (place == end_) {
            return fail(kXmlInvalidTag, place);
        }
        char32_t c = 0;
        return fail(Utf8 && utf8Sequence(place, c) == 0 ? kXmlCannotConvert : kXmlUnexpectedToken, place);
    }
    // Whether the text may hold characters of two bytes that pass as two ASCII ones to the scanning code.
    bool hasPairs() const { return leads() != nullptr; }
    XMLLeads leads() const { return Utf8 ? nullptr : document_.leads; }
    // Past one character from 80 hex on, or a control character, which is an error.
    char* oddCharacter(char* p) {
        char32_t c = 0;
        const unsigned length = hasClass(*p, kCharHigh) ? utf8Sequence(p, c) : 0;
        shifts_ = true;
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
        for (const char* open = current_->name;; ++open, ++p) {
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
        const char*& place = longNames_[slotOf(key)];
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
        XMLElement* element = document_.newElement();
        element->key = xmlNameKey(name, length, leads());
        element->name = sharedName(name, length, element->key);
        element->parent = current_;
        document_.append(current_, element);
        return element;
    }
    void newClear(const char* value, XMLItemKind kind) {
        document_.append(current_, document_.newTextItem(kind, value));
        if (kind == XMLItemKind::CData) {
            current_->textUse = XMLTextUse::AmongItems;
        }
    }
    void openRun() {
        run_ = document_.openRun(runRoom_);
        runCount_ = 0;
    }
    void addToRun(const XMLAttribute& attribute) {
        if (runCount_ == runRoom_) {
            run_ = document_.growRun(run_, runRoom_);
        }
        ::new (static_cast<void*>(run_ + runCount_++)) XMLAttribute(attribute);
    }
    void closeRun(XMLElement* element) {
        if (runCount_ == 0) {
            return;
        }
        document_.closeRun(run_, runCount_);
        element->attributes = run_;
        element->attributeCount = static_cast<std::uint32_t>(runCount_);
    }

    XMLDocument& document_;
    XMLElement* const root_;
    char* const begin_;
    char* const end_;
    const XMLWatch& watch_;
    char* nextWatch_;
    bool stopped_ = false;
    XMLElement* current_ = root_;
    XMLElement* top_ = nullptr;
    bool doctypeSeen_ = false;
    XMLPosition position_;
    // Whether the text or value being read has characters that must be accounted for when it is decoded: line
    // ends or such as are not ASCII, be it by a reference.
    bool shifts_ = false;
    XMLErrorCode code_ = kXmlNone;
    const char* place_ = nullptr;
    XMLPosition::Place topPlace_{0, 0};
    // Of the tag being read.
    XMLAttribute* run_ = nullptr;
    size_t runCount_ = 0;
    size_t runRoom_ = 0;
    const char* longNames_[64] = {};
    std::uint64_t seenKeys_ = 0;
    KeyedSet<std::string_view> seenNames_;
};

template <bool Utf8>
XMLElement* Parser<Utf8>::parse(const char* tag, XMLResults& results) {
    if (skipBlanks(begin_) == end_) {
        fail(kXmlNoData, nullptr);
    } else {
        const bool declared = startsWith(begin_, "<?xml") && (isXmlBlank(begin_[5]) || begin_[5] == '?');
        char* p = declared ? declaration(begin_) : begin_;
        if (p && content(p) && !top_) {
            fail(kXmlNoElements, end_);
        }
    }
    XMLPosition::Place place{0, 0};
    if (place_) {
        place = position_.at(place_);
    }
    if (code_ == kXmlNone && !stopped_ && tag && !XMLName(tag, leads()).matches(top_->key, top_->name)) {
        code_ = kXmlFirstTagNotFound;
        place = topPlace_;
    }
    results.code = code_;
    results.line = place.line;
    results.column = place.column;
    return code_ == kXmlNone && !stopped_ ? top_ : nullptr;
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
    shifts_ |= c >= 0x80 || c == '\n' || c == '\r';
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
        } else if (p == end_) {
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
    position_.end(p + 5);
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
            return q == end_ ? fail(kXmlUnmatchedQuote, start - 1) : fail(kXmlInvalidTag, q);
        }
        if (!allowed(which, {start, static_cast<size_t>(q - start)})) {
            return fail(kXmlInvalidTag, start);
        }
        position_.end(nameEndsAt);
        *q++ = 0;
        addToRun({xmlNameKey(name, word.size(), leads()), name, start});
        next = which + 1;
    }
    if (next == 0) {
        return fail(kXmlInvalidTag, q);
    }
    XMLElement* element = newElement(p + 2, 3);
    element->isDeclaration = true;
    closeRun(element);
    return skipBlanks(q) + 2;
}

template <bool Utf8>
char* Parser<Utf8>::content(char* p) {
    while (p) {
        p = skipBlanks(p);
        if (*p != '<') {
            if (current_ != root_) {
                p = text(p);
                if (!p) {
                    break;
                }
            } else {
                if (p == end_) {
                    return p;
                }
                return fail(top_ ? kXmlUnexpectedToken : kXmlFirstNotStartTag, p);
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
                if (p >= nextWatch_ && !tellWatch(p)) {
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
    shifts_ = hasPairs();
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
            edits = shifts_ = true;
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
        const bool shifts = shifts_ || std::memchr(start, '\n', static_cast<size_t>(p - start));
        if (shifts) {
            position_.beforeEdit(start, p);
        }
        const XMLDecodedRange range = xmlDecode(start, p, false, Utf8);
        for (end = range.end; end > range.afterReference && isXmlBlank(end[-1]);) {
            --end;
        }
        *end = 0;
        if (shifts) {
            position_.afterEdit(start, p);
        }
    } else {
        while (isXmlBlank(end[-1])) {
            --end;
        }
        position_.end(end);
    }
    document_.appendText(current_, start);
    return p;
}

template <bool Utf8>
char* Parser<Utf8>::startTag(char* p) {
    char* const name = p + 1;
    char* q = nameEnd(name);
    if (q == name) {
        return name == end_ ? unexpected(name) : fail(kXmlMissingTagName, name);
    }
    if (current_ == root_ && top_) {
        return fail(kXmlUnexpectedToken, p);
    }
    char c = *q;
    if (c != '>' && c != '/' && !isXmlBlank(c)) {
        return unexpected(q);
    }
    XMLElement* element = newElement(name, static_cast<size_t>(q - name));
    if (current_ == root_) {
        top_ = element;
        topPlace_ = position_.at(p);
    }
    position_.end(q);
    openRun();
    for (;;) {
        if (c == '>') {
            current_ = element;
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
        position_.end(attributeEnd);
        addToRun({key, attribute, q + 1});
        q = value(q + 1, quote);
        if (!q) {
            return nullptr;
        }
        c = *++q;
    }
    closeRun(element);
    return q;
}

// Ends the value and gives the place of its closing quote.
template <bool Utf8>
char* Parser<Utf8>::value(char* p, char quote) {
    char* const start = p;
    bool edits = false;
    shifts_ = hasPairs();
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
            shifts_ |= c != '\t';
        } else if (p == end_) {
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
        if (shifts_) {
            position_.beforeEdit(start, p);
        }
        *xmlDecode(start, p, true, Utf8).end = 0;
        if (shifts_) {
            position_.afterEdit(start, p);
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
    if (runCount_ == 0) {
        seenKeys_ = 0;
    }
    if (runCount_ >= many) {
        if (runCount_ == many) {
            seenNames_.clear();
            for (size_t i = 0; i < many; ++i) {
                seenNames_.emplace(run_[i].name);
            }
        }
        return !seenNames_.emplace(name, length).second;
    }
    const std::uint64_t bit = std::uint64_t{1} << slotOf(key);
    const bool maybe = (seenKeys_ & bit) != 0;
    seenKeys_ |= bit;
    if (!maybe) {
        return false;
    }
    for (size_t i = 0; i < runCount_; ++i) {
        const XMLAttribute& other = run_[i];
        if (other.key == key && std::strncmp(other.name, name, length) == 0 && other.name[length] == 0) {
            return true;
        }
    }
    return false;
}

template <bool Utf8>
char* Parser<Utf8>::endTag(char* p) {
    if (current_ == root_) {
        return fail(top_ ? kXmlUnmatchedEndTag : kXmlFirstNotStartTag, p);
    }
    char* const name = p + 2;
    char* q = sameNameEnd(name);
    if (!q) {
        char* const end = nameEnd(name);
        if (end == end_) {
            return unexpected(end);
        }
        return end == name ? fail(kXmlMissingEndTagName, name) : fail(kXmlUnmatchedEndTag, p);
    }
    q = skipBlanks(q);
    if (*q != '>') {
        return unexpected(q);
    }
    current_ = current_->parent;
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
        return fail(kXmlUnmatchedClear, close + 2 == end_ ? p : close);
    }
    *close = 0;
    newClear(start, XMLItemKind::Comment);
    return close + 3;
}

template <bool Utf8>
char* Parser<Utf8>::cdata(char* p) {
    if (current_ == root_) {
        return fail(top_ ? kXmlUnexpectedToken : kXmlFirstNotStartTag, p);
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
    if (current_ != root_ || top_ || doctypeSeen_ || name == start) {
        return fail(kXmlInvalidTag, p);
    }
    doctypeSeen_ = true;
    char* q = nameEnd(name);
    if (q == name) {
        return q == end_ ? fail(kXmlUnmatchedClear, p) : unexpected(q);
    }
    bool inSubset = false;
    int open = 0;
    while (q) {
        const char c = *q;
        if (q == end_) {
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
        return name == end_ ? fail(kXmlUnmatchedClear, p) : fail(kXmlMissingTagName, name);
    }
    const auto length = static_cast<size_t>(end - name);
    const auto fold = [name](int i) { return name[i] | 0x20; };
    if (length == 3 && fold(0) == 'x' && fold(1) == 'm' && fold(2) == 'l') {
        return fail(kXmlInvalidTag, p);
    }
    if (end == end_) {
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
    position_.end(end);
    *close = 0;
    return close + 2;
}

}  // namespace

XMLElement* parseXml(XMLDocument& document, XMLElement* root, char* text, size_t size, const char* tag,
                     XMLResults& results, const XMLWatch& watch) {
    if (document.charset == XMLCharset::Utf8) {
        return Parser<true>(document, root, text, size, watch).parse(tag, results);
    }
    return Parser<false>(document, root, text, size, watch).parse(tag, results);
}

}  // namespace zoka
