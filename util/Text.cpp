#include "util/Text.h"

#include <algorithm>

#include "util/Fold.h"
#include "util/LexChars.h"

namespace zoka {

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

std::vector<std::string_view> tokensOf(std::string_view line, Separators separators) {
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
