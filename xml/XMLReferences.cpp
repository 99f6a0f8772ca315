#include "xml/XMLReferences.h"

#include <cstring>
#include <string>

#include "xml/PlatformCharset.h"
#include "xml/XMLConvert.h"
#include "xml/XMLScan.h"

namespace zoka {
namespace {

int digit(char c, bool hexadecimal) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (!hexadecimal) {
        return -1;
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

char* put(char* out, char32_t c, bool utf8) {
    if (c < 0x80 || utf8) {
        return putUtf8(out, c);
    }
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
    const auto found = [&](int length, char32_t character) {
        c = character;
        return p + length;
    };
    switch (*p) {
        case 'l':
            return startsWith(p, "lt;") ? found(3, '<') : nullptr;
        case 'g':
            return startsWith(p, "gt;") ? found(3, '>') : nullptr;
        case 'q':
            return startsWith(p, "quot;") ? found(5, '"') : nullptr;
        case 'a':
            if (startsWith(p, "amp;")) {
                return found(4, '&');
            }
            return startsWith(p, "apos;") ? found(5, '\'') : nullptr;
        case '#':
            break;
        default:
            return nullptr;
    }
    ++p;
    const bool hexadecimal = *p == 'x';
    if (hexadecimal) {
        ++p;
    }
    const char* const digits = p;
    c = 0;
    for (int value; (value = digit(*p, hexadecimal)) >= 0; ++p) {
        // Once too great it stays so: what is above every character is not counted on.
        if (c <= 0x10ffff) {
            c = c * (hexadecimal ? 16 : 10) + static_cast<char32_t>(value);
        }
    }
    return p > digits && *p == ';' && isXmlChar(c) ? p + 1 : nullptr;
}

bool xmlPlatformHas(char32_t c) {
    if (c < 0x80) {
        return true;
    }
    std::u16string unit;
    std::string bytes;
    appendUtf16(unit, c);
    return appendPlatform(bytes, unit);
}

XMLDecodedRange xmlDecode(char* first, char* last, bool isValue, bool utf8) {
    char* out = first;
    char* afterReference = first;
    const char stop = *last;
    for (char* p = first;;) {
        char* const next = scanEdits(p, stop, isValue);
        const auto length = static_cast<size_t>(next - p);
        if (out != p) {
            std::memmove(out, p, length);
        }
        out += length;
        p = next;
        if (p == last) {
            return {out, afterReference};
        }
        if (*p == '&') {
            char32_t character = 0;
            p = xmlReference(p, character);
            out = afterReference = put(out, character, utf8);
        } else {
            if (p[0] == '\r' && p[1] == '\n') {
                ++p;
            }
            ++p;
            *out++ = isValue ? ' ' : '\n';
        }
    }
}

}  // namespace zoka
