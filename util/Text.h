// Small rules of text that every reader of files shares: marks, blanks, case, tokens.
#pragma once

#include <string>
#include <string_view>
#include <vector>

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

// Without the blanks, tabs and line ends around it; without the blanks and tabs in front.
std::string_view trimmed(std::string_view text);
std::string_view withoutLeadingBlanks(std::string_view text);

// Letters A to Z in their small form, for names that are compared without regard to case.
std::string lowered(std::string_view text);

// The texts with ", " between them.
std::string joined(const std::vector<std::string>& texts);

// The text with `lineEnd` in the place of each LF, and without CRs.
std::string onOneLine(std::string_view text, std::string_view lineEnd = " ");

// Tokens of one line: runs of characters bounded by `separators`. A CR, LF or 0 ends the line, unless it is a
// separator itself. With kBlanks and more as separators the same tokens as CLex's walk, but without its process-wide
// state.
class LineTokens {
public:
    LineTokens(std::string_view line, std::string_view separators) : m_rest(line), m_separators(separators) {}
    // The next token, as a part of the line; empty at its end.
    std::string_view next();
    // What stands behind the token last returned.
    std::string_view rest() const { return m_rest; }

private:
    std::string_view m_rest;
    std::string_view m_separators;
};

// All of them, as parts of the line.
std::vector<std::string_view> tokensOf(std::string_view line, std::string_view separators);

// Whether every word stands somewhere in the text: what a search finds, of texts and words in the same case.
bool holdsAll(std::string_view text, const std::vector<std::string_view>& words);

// Whether there is nothing but 0 to 9.
constexpr bool isDigits(std::string_view text) {
    return text.find_first_not_of("0123456789") == text.npos;
}

}  // namespace zoka
