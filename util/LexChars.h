// The character classes on which the lexer's lines, tokens and numbers agree. ASCII
// alone, whatever the locale.
#pragma once

#include <climits>
#include <cstddef>
#include <cstring>

#include "util/Fold.h"

namespace zoka::lex {

constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t';
}
constexpr bool isLineEnd(char c) {
    return c == '\r' || c == '\n';
}
constexpr bool isSpace(char c) {
    return isBlank(c) || isLineEnd(c);
}
constexpr bool isDecimal(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isSign(char c) {
    return c == '+' || c == '-';
}
inline bool isOneOf(char c, const char* set) {
    return set && c && std::strchr(set, c);
}

// The end of the line that 0-terminated `text` begins with: its CR, LF or 0.
inline const char* lineEnd(const char* text) {
    return text + std::strcspn(text, "\r\n");
}

inline bool equalsIgnoringCase(const char* a, const char* b, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        if (foldCase(a[i]) != foldCase(b[i])) {
            return false;
        }
    }

    return true;
}

// strlen for the interfaces that count in int; longer texts are cut at what it can count.
inline int lengthOf(const char* text) {
    const size_t n = std::strlen(text);
    return n > static_cast<size_t>(INT_MAX) ? INT_MAX : static_cast<int>(n);
}

}  // namespace zoka::lex
