#include "util/Text.h"

#include <algorithm>

#include "util/Fold.h"
#include "util/LexChars.h"

namespace zoka {

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(kWhiteSpace);
    return first == text.npos ? std::string_view()
                              : text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

std::string_view withoutLeadingBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
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
    const auto separates = [this](char c) { return m_separators.find(c) != m_separators.npos; };
    const auto endsLine = [](char c) { return c == 0 || lex::isLineEnd(c); };
    size_t start = 0;
    while (start < m_rest.size() && separates(m_rest[start])) {
        ++start;
    }
    size_t end = start;
    while (end < m_rest.size() && !separates(m_rest[end]) && !endsLine(m_rest[end])) {
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
