#include "xml/XMLReferences.h"

#include <cstring>
#include <string>

#include "xml/PlatformCharset.h"
#include "xml/XMLConvert.h"
#include "xml/XMLEncoding.h"

namespace zoka {
namespace {

struct Entity {
    const char* text;
    std::size_t length;
    char32_t character;
};
constexpr Entity kEntities[] = {
    {"amp;", 4, '&'}, {"lt;", 3, '<'}, {"gt;", 3, '>'}, {"quot;", 5, '"'}, {"apos;", 5, '\''},
};

int digit(char c, bool hexadecimal) {
    if (c >= '0' && c <= '9') return c - '0';
    if (!hexadecimal) return -1;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

char* put(char* out, char32_t c) {
    if (c < 0x80 || xmlCharset() == XMLCharset::Utf8) return putUtf8(out, c);
    std::u16string unit;
    std::string bytes;
    appendUtf16(unit, c);
    appendPlatform(bytes, unit);
    std::memcpy(out, bytes.data(), bytes.size());
    return out + bytes.size();
}

}  // namespace

char* xmlReference(char* p, char32_t& c) {
    ++p;
    if (*p != '#') {
        for (const Entity& entity : kEntities)
            if (std::strncmp(p, entity.text, entity.length) == 0) {
                c = entity.character;
                return p + entity.length;
            }
        return nullptr;
    }
    ++p;
    const bool hexadecimal = *p == 'x';
    if (hexadecimal) ++p;
    const char* const digits = p;
    c = 0;
    for (int value; (value = digit(*p, hexadecimal)) >= 0; ++p)
        // Once too great it stays so: what is above every character is not counted on.
        if (c <= 0x10ffff) c = c * (hexadecimal ? 16 : 10) + static_cast<char32_t>(value);
    return p > digits && *p == ';' && isXmlChar(c) ? p + 1 : nullptr;
}

bool xmlHasCharacter(char32_t c) {
    if (c < 0x80 || xmlCharset() == XMLCharset::Utf8) return true;
    std::u16string unit;
    std::string bytes;
    appendUtf16(unit, c);
    return appendPlatform(bytes, unit);
}

XMLDecodedRange xmlDecode(char* first, char* last, bool isValue) {
    char* out = first;
    char* afterReference = first;
    for (char* p = first; p < last;) {
        const char c = *p;
        if (c == '&') {
            char32_t character = 0;
            p = xmlReference(p, character);
            out = afterReference = put(out, character);
            continue;
        }
        ++p;
        if (c == '\r' && *p == '\n') ++p;
        if (c == '\r')
            *out++ = isValue ? ' ' : '\n';
        else
            *out++ = isValue && (c == '\n' || c == '\t') ? ' ' : c;
    }
    return {out, afterReference};
}

}  // namespace zoka
