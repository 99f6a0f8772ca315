// Finds the value in a script's definition.
#pragma once

#include <cstddef>
#include <string_view>

namespace zoka {

// Tokens of a definition, across lines: ':', ';', '=' and ',' by themselves, "<...>" on one line, texts in
// double quotes over any number of lines, and runs of anything else. Never throws; linear.
class DefinitionTokens {
public:
    enum class End {
        None,         // not yet
        Text,         // the text is used up
        Comment,      // a token that begins with '/'
        OpenBracket,  // '<' without '>' on its line
        OpenQuote,    // a double quote without a second one
    };

    // `lastQuote` is the place of the last double quote in `text` (npos: it has none), which the caller finds
    // once for all definitions of the text: without it many open quotes would take quadratic time.
    DefinitionTokens(std::string_view text, size_t from, size_t lastQuote)
        : m_text(text), m_at(from), m_lastQuote(lastQuote) {}

    // The next token, as a part of the text; empty at the end.
    std::string_view next();

    End end() const { return m_end; }
    // Behind the token last returned; at the end, where what ended it begins.
    size_t position() const { return m_at; }

private:
    std::string_view stop(End why);

    std::string_view m_text;
    size_t m_at;
    size_t m_lastQuote;
    End m_end = End::None;
};

struct DefinitionValue {
    enum class Found {
        Yes,
        NotThere,     // the definition ends without a value
        Interrupted,  // a comment or the end of the text comes first
        OpenBracket,
        OpenQuote,
    };
    Found found = Found::NotThere;
    std::string_view token;  // with its quotes or brackets
    size_t end = 0;          // how far the definition was read
};

// The value of the definition that begins at `from`: what stands behind "=", or the first text in double
// quotes. The word that declares it is skipped, and ";" ends it.
DefinitionValue findDefinitionValue(std::string_view text, size_t from, size_t lastQuote);

}  // namespace zoka
