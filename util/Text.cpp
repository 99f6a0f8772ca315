#include "util/Text.h"

#include <algorithm>

#include "util/Fold.h"
#include "util/LexChars.h"

namespace zoka {

// Each character is compared here and below, because the library's searches for one of a set call a function for each.
std::string_view trimmed(std::string_view text) {
    while (!text.empty() && lex::isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && lex::isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view withoutLeadingBlanks(std::string_view text) {
    while (!text.empty() && lex::isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = foldCase(c);
    }
    return result;
}

std::string joined(const std::vector<std::string>& texts) {
    std::string line;
    for (const std::string& text : texts) {
        line += (line.empty() ? "" : ", ") + text;
    }
    return line;
}

std::string onOneLine(std::string_view text, std::string_view lineEnd) {
    std::string line;
    for (const char c : text) {
        if (c == '\n') {
            line += lineEnd;
        } else if (c != '\r') {
            line += c;
        }
    }
    return line;
}

std::string_view LineTokens::next() {
    // Nearly every character stands behind all separators and is looked at once.
    char last = '\r';
    for (const char separator : m_separators) {
        last = std::max(last, separator);
    }
    const auto separates = [last, separators = m_separators](char c) {
        if (c > last) {
            return false;
        }
        for (const char separator : separators) {
            if (c == separator) {
                return true;
            }
        }
        return false;
    };
    const auto endsLine = [](char c) { return c == 0 || lex::isLineEnd(c); };
    size_t start = 0;
    while (start < m_rest.size() && separates(m_rest[start])) {
        ++start;
    }
    size_t end = start;
    while (end < m_rest.size() &&
           (m_rest[end] > last || !(separates(m_rest[end]) || endsLine(m_rest[end])))) {
        ++end;
    }
    const std::string_view token = m_rest.substr(start, end - start);
    m_rest.remove_prefix(token.empty() ? m_rest.size() : end);
    return token;
}

std::vector<std::string_view> tokensOf(std::string_view line, std::string_view separators) {
    std::vector<std::string_view> found;
    LineTokens tokens(line, separators);
    for (std::string_view token = tokens.next(); !token.empty(); token = tokens.next()) {
        found.push_back(token);
    }
    return found;
}

bool holdsAll(std::string_view text, const std::vector<std::string_view>& words) {
    return std::ranges::all_of(words, [text](std::string_view word) { return text.find(word) != text.npos; });
}

}  // namespace zoka
