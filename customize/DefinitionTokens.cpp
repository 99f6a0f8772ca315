#include "customize/DefinitionTokens.h"

#include <array>

#include "util/LexChars.h"
#include "util/Text.h"

namespace zoka {
namespace {

constexpr Separators kPunctuation(":;=,");
// Of every byte whether a word ends in front of it: the one question that is asked of each character of a definition.
constexpr auto kEndsWord = [] {
    std::array<bool, 256> ends{};
    for (const unsigned char c : std::string_view(" \t\r\n:;=,")) {
        ends[c] = true;
    }
    return ends;
}();

}  // namespace

std::string_view DefinitionTokens::stop(End why) {
    m_end = why;
    return {};
}

std::string_view DefinitionTokens::next() {
    if (m_end != End::None) {
        return {};
    }
    size_t start = m_at;
    while (start < m_text.size() && lex::isSpace(m_text[start])) {
        ++start;
    }
    m_at = start;
    if (start >= m_text.size()) {
        return stop(End::Text);
    }
    size_t end = start + 1;
    switch (m_text[start]) {
        case '/':
            return stop(End::Comment);
        case '<':
            end = m_text.find_first_of(">\r\n", start);
            if (end == m_text.npos || m_text[end] != '>') {
                return stop(End::OpenBracket);
            }
            ++end;
            break;
        case '"':
            if (m_lastQuote == m_text.npos || m_lastQuote <= start) {
                return stop(End::OpenQuote);
            }
            end = m_text.find('"', start + 1) + 1;
            break;
        case ':':
        case ';':
        case '=':
        case ',':
            break;
        default:
            while (end < m_text.size() && !kEndsWord[static_cast<unsigned char>(m_text[end])]) {
                ++end;
            }
            break;
    }
    m_at = end;
    return m_text.substr(start, end - start);
}

DefinitionValue findDefinitionValue(std::string_view text, size_t from, size_t lastQuote) {
    using Found = DefinitionValue::Found;
    DefinitionTokens tokens(text, from, lastQuote);
    const auto none = [&] {
        DefinitionValue value;
        value.end = tokens.position();
        switch (tokens.end()) {
            case DefinitionTokens::End::OpenBracket:
                value.found = Found::OpenBracket;
                break;
            case DefinitionTokens::End::OpenQuote:
                value.found = Found::OpenQuote;
                break;
            case DefinitionTokens::End::None:
                value.found = Found::NotThere;
                break;
            case DefinitionTokens::End::Text:
            case DefinitionTokens::End::Comment:
                value.found = Found::Interrupted;
                break;
        }
        return value;
    };
    if (tokens.next().empty()) {
        return none();  // the word that declares
    }
    for (;;) {
        std::string_view token = tokens.next();
        if (token.empty() || token == ";") {
            return none();
        }
        if (token == "=") {
            token = tokens.next();
            // Replacing a separator would break the definition: there is no value between the two.
            if (token.empty() || (token.size() == 1 && kPunctuation.has(token[0]))) {
                return none();
            }
            return {Found::Yes, token, tokens.position()};
        }
        if (token[0] == '"') {
            return {Found::Yes, token, tokens.position()};
        }
    }
}

}  // namespace zoka
