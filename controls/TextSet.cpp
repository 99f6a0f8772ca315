#include "controls/TextSet.h"

#include <algorithm>

#include "util/Fold.h"
#include "util/Text.h"
#include "xml/PlatformCharset.h"
#include "xml/XMLConvert.h"

namespace zoka {
namespace {

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool isWithin(char32_t c, char32_t first, char32_t last) {
    return c >= first && c <= last;
}

char32_t smallLetter(char32_t c) {
    if (isWithin(c, 0xc0, 0xde)) {
        return c == 0xd7 ? c : c + 0x20;  // not the sign of multiplication
    }
    // Pairs of a capital and its small letter.
    if (isWithin(c, 0x139, 0x148) || isWithin(c, 0x179, 0x17e)) {
        return c % 2 == 1 ? c + 1 : c;
    }
    if (isWithin(c, 0x100, 0x177) || isWithin(c, 0x1e00, 0x1e95) || isWithin(c, 0x1ea0, 0x1eff) ||
        isWithin(c, 0x460, 0x481) || isWithin(c, 0x48a, 0x4bf) || isWithin(c, 0x4d0, 0x52f)) {
        return c == 0x130 || c == 0x131 || c == 0x138 ? c : c | 1;
    }
    if (c == 0x178) {
        return 0xff;
    }
    if (c == 0x386) {
        return 0x3ac;
    }
    if (isWithin(c, 0x388, 0x38a)) {
        return c + 37;
    }
    if (isWithin(c, 0x391, 0x3ab)) {
        return c + 0x20;
    }
    if (isWithin(c, 0x400, 0x40f)) {
        return c + 0x50;
    }
    return isWithin(c, 0x410, 0x42f) ? c + 0x20 : c;
}

}  // namespace

TextSet textSetOf(const std::string& bytes) {
    const bool utf8 = firstNotUtf8(bytes) == bytes.npos && (utf8MarkLength(bytes) > 0 || !isAscii(bytes));
    return utf8 ? TextSet::Utf8 : TextSet::System;
}

Result<std::string> convertText(std::string_view text, TextSet from, TextSet to) {
    if (from == to || isAscii(text)) {
        return std::string(text);
    }
    if (from == TextSet::System) {
        return utf8FromPlatform(text);
    }
    const std::string source(text);
    std::string made;
    for (size_t at = 0; at < source.size();) {
        char32_t c = 0;
        const unsigned length = utf8Sequence(source.c_str() + at, c);
        std::u16string units;
        if (length > 0) {
            appendUtf16(units, c);
        }
        if (length == 0 || !appendPlatform(made, units)) {
            return Refusal{"\"" + source.substr(at, std::max(length, 1U)) +
                           "\" is not in this file's character set; save the file as UTF-8 to use it."};
        }
        at += length;
    }
    return made;
}

std::string utf8Text(std::string_view text, TextSet set) {
    return set == TextSet::Utf8 ? std::string(text) : *convertText(text, set, TextSet::Utf8);
}

bool isWritten(std::string_view text, TextSet set) {
    return set == TextSet::System || firstNotUtf8(std::string(text)) == text.npos;
}

std::string_view beginningOf(std::string_view text, size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    size_t end = bytes;
    while (end > 0 && bytes - end < 3 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) {
        --end;
    }
    return text.substr(0, end);
}

size_t characterCount(std::string_view text, TextSet set) {
    const auto begins = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; };
    return set == TextSet::System ? text.size() : static_cast<size_t>(std::ranges::count_if(text, begins));
}

std::string foldedText(std::string_view text, TextSet set) {
    if (isAscii(text)) {
        return lowered(text);
    }
    const std::string source = utf8Text(text, set);
    std::string made;
    made.reserve(source.size());
    for (size_t at = 0; at < source.size();) {
        char32_t c = 0;
        const unsigned length = utf8Sequence(source.c_str() + at, c);
        if (length < 2) {
            made += foldCase(source[at]);
            ++at;
        } else {
            appendUtf8(made, smallLetter(c));
            at += length;
        }
    }
    return made;
}

}  // namespace zoka
