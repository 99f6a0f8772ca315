// Bytes and characters: UTF-8, UTF-16, the platform's set, and what a file's bytes become in memory. Internal
// to this folder.
#pragma once

#include <string>
#include <string_view>

#include "util/Text.h"
#include "xml/XMLEncoding.h"

namespace zoka {

// Length of the UTF-8 sequence at `p`, 0 when it is malformed (cut off, overlong, a surrogate, above 10FFFF);
// the character goes to `c`. The text must end with a 0.
inline unsigned utf8Sequence(const char* p, char32_t& c) {
    const auto byte = [p](int i) { return static_cast<unsigned char>(p[i]); };
    const auto trail = [&byte](int i) { return (byte(i) & 0xc0) == 0x80; };
    const auto bits = [&byte](int i) { return char32_t{byte(i)} & 0x3f; };
    const char32_t lead = byte(0);
    if (lead < 0x80) {
        c = lead;
        return 1;
    }
    if (lead < 0xc2 || lead > 0xf4 || !trail(1)) {
        return 0;
    }

    if (lead < 0xe0) {
        c = (lead & 0x1f) << 6 | bits(1);
        return 2;
    }
    if (!trail(2)) {
        return 0;
    }

    if (lead < 0xf0) {
        c = (lead & 0x0f) << 12 | bits(1) << 6 | bits(2);
        return c < 0x800 || (c >= 0xd800 && c < 0xe000) ? 0 : 3;
    }
    if (!trail(3)) {
        return 0;
    }

    c = (lead & 0x07) << 18 | bits(1) << 12 | bits(2) << 6 | bits(3);
    return c < 0x10000 || c > 0x10ffff ? 0 : 4;
}

// Writes the character in UTF-8 at `out` (up to 4 bytes); gives the place behind it.
char* putUtf8(char* out, char32_t c);
void appendUtf8(std::string& out, char32_t c);
void appendUtf16(std::u16string& out, char32_t c);
// UTF-16 to UTF-8; lone surrogates become U+FFFD.
std::string utf8FromUtf16(std::u16string_view text);
bool isUtf8(const char* text);
// Text in the platform's set as UTF-8.
std::string utf8FromPlatform(std::string_view text);
// The character of a byte of the Windows-1252 set.
char16_t windows1252(unsigned char byte);

// Whether XML 1.0 allows the character in a document at all.
inline bool isXmlChar(char32_t c) {
    if (c < 0x20) {
        return c == '\t' || c == '\n' || c == '\r';
    }

    return c < 0xd800 || (c >= 0xe000 && c < 0xfffe) || (c >= 0x10000 && c <= 0x10ffff);
}
// What a tree in that set holds of a value or text that a program gives: characters that XML does not allow become
// U+FFFD ('?' in the platform's set), and what is no UTF-8 where it should be is taken as text in the platform's set.
std::string allowedXmlText(const char* text, XMLCharset charset);
bool isXmlNameStart(char32_t c);
bool isXmlNameChar(char32_t c);

// What the bytes of a file stand for, by its mark, its declaration and the bytes themselves: a mark counts more than
// a declaration, and bytes that are no UTF-8 more than either.
enum class XMLFileSet { Utf8, Utf16Le, Utf16Be, Latin1, Windows1252, Platform };

struct XMLFileForm {
    XMLFileSet set = XMLFileSet::Utf8;
    size_t mark = 0;  // bytes in front of the text
    // Where the file says of itself what isn't so: the place, and what. No text where all is well. (A file that
    // declares nothing and is in the platform's set says nothing wrong.)
    int line = 0;
    int column = 0;
    std::string untrue;
};
// Looks at every byte. `bytes` must be followed by a 0.
XMLFileForm xmlFileForm(std::string_view bytes);

// What stands behind the first `encoding =` of the text, from its quote on; empty where there is none.
std::string_view namedEncoding(std::string_view text);

// The offset of the first byte that is no UTF-8, or npos. `text` must be followed by a 0.
size_t firstNotUtf8(std::string_view text);

// A file's bytes in another character set.
struct XMLDecoded {
    // False: cannot be converted; `text` holds what comes before the first character that can't.
    bool ok = true;
    // True: `text` is the file's text. False: the file's own bytes are, from `skip` on.
    bool converted = false;
    std::string text;
    size_t skip = 0;
};
// The bytes as a tree in `charset` needs them. Bytes that seem to be UTF-8 by mark and declaration are taken for it
// without a look at them, unless `notUtf8` says that they aren't. `bytes` must be followed by a 0.
XMLDecoded decodeXmlFile(std::string_view bytes, XMLCharset charset, bool notUtf8 = false);

}  // namespace zoka
