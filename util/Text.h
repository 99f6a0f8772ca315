// Small rules of text that every reader of files shares: marks, blanks, case, tokens.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "util/LexChars.h"

namespace zoka {

// What editors put in front of a UTF-8 text. It belongs to no line.
inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

// 3 where the text begins with that mark, else 0.
constexpr size_t utf8MarkLength(std::string_view text) {
    return text.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0;
}
// Whether the text begins with a mark of UTF-16: two bytes a character, so no text to be read by lines of bytes.
constexpr bool hasUtf16Mark(std::string_view text) {
    return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF");
}

inline constexpr std::string_view kBlanks = " \t";
inline constexpr std::string_view kWhiteSpace = " \t\r\n";

// Without the blanks, tabs and line ends around it. Character by character, here and below, because the library's
// searches for one of a set call a function for each.
constexpr std::string_view trimmed(std::string_view text) {
    while (!text.empty() && lex::isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && lex::isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}
// Without the blanks and tabs in front.
constexpr std::string_view withoutLeadingBlanks(std::string_view text) {
    while (!text.empty() && lex::isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

// Letters A to Z in their small form, for names that are compared without regard to case.
std::string lowered(std::string_view text);

// The texts with ", " between them.
std::string joined(const std::vector<std::string>& texts);

// The text with `lineEnd` in the place of each LF, and without CRs.
std::string onOneLine(std::string_view text, std::string_view lineEnd = " ");

// The characters between tokens, a set that is known when this is compiled: looking at a character takes no loop. All
// stand in front of '@' in ASCII, as the set has 64 places.
class Separators {
public:
    consteval Separators(std::string_view characters) {
        for (const char c : characters) {
            if (c < 0 || c >= 64) {
                throw "not in front of '@'";
            }
            m_set |= std::uint64_t{1} << c;
        }
    }
    constexpr bool has(char c) const { return has(m_set, c); }
    // Whether a token ends in front of it: also a CR, LF or 0, which end the line.
    constexpr bool endsToken(char c) const { return has(m_set | 1 | 1 << '\r' | 1 << '\n', c); }

private:
    // Without a jump, which words of letters and digits would make hard to foresee.
    static constexpr bool has(std::uint64_t set, char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (set >> (byte & 63) & static_cast<std::uint64_t>(byte < 64)) != 0;
    }

    std::uint64_t m_set = 0;
};

// Tokens of one line: runs of characters bounded by `separators`. A CR, LF or 0 ends the line, unless it is a
// separator itself. With kBlanks and more as separators the same tokens as CLex's walk, but without its process-wide
// state.
class LineTokens {
public:
    constexpr LineTokens(std::string_view line, Separators separators)
        : m_rest(line), m_separators(separators) {}
    // The next token, as a part of the line; empty at its end.
    constexpr std::string_view next() {
        size_t start = 0;
        while (start < m_rest.size() && m_separators.has(m_rest[start])) {
            ++start;
        }
        size_t end = start;
        while (end < m_rest.size() && !m_separators.endsToken(m_rest[end])) {
            ++end;
        }
        const std::string_view token = m_rest.substr(start, end - start);
        m_rest.remove_prefix(token.empty() ? m_rest.size() : end);
        return token;
    }
    // What stands behind the token last returned.
    constexpr std::string_view rest() const { return m_rest; }

private:
    std::string_view m_rest;
    Separators m_separators;
};

// All of them, as parts of the line.
std::vector<std::string_view> tokensOf(std::string_view line, Separators separators);

// Whether every word stands somewhere in the text: what a search finds, of texts and words in the same case.
bool holdsAll(std::string_view text, const std::vector<std::string_view>& words);

// Whether there is nothing but 0 to 9.
constexpr bool isDigits(std::string_view text) {
    return text.find_first_not_of("0123456789") == text.npos;
}

}  // namespace zoka
