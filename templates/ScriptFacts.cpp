#include "templates/ScriptFacts.h"

#include <algorithm>

#include "util/LexChars.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {

namespace {

// What an editor may put in front of a UTF-8 text; it belongs to no line.
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kHeaderDelims = ":,;";
constexpr std::string_view kValueDelims = ",";
// A value stands behind its keyword, a colon and a blank.
constexpr size_t kVersionOffset = 5;
constexpr size_t kDateOffset = 6;

// The token of `line` that starts at or after `position`; empty when there is none.
std::string_view valueFrom(std::string_view line, size_t position) {
    if (position >= line.size()) {
        return {};
    }
    return LineTokens(line.substr(position), kValueDelims).next();
}

void takeLine(std::string_view line, ScriptFacts& facts) {
    LineTokens tokens(line, kHeaderDelims);
    if (!tokens.next().starts_with("//")) {
        return;
    }
    const std::string_view keyword = tokens.next();
    if (keyword.empty()) {
        return;
    }
    const auto position = static_cast<size_t>(keyword.data() - line.data());
    if (equalNoCase(keyword, "needs")) {
        for (std::string_view name; !(name = tokens.next()).empty();) {
            facts.needs.emplace_back(name);
        }
    } else if (equalNoCase(keyword, "ver")) {
        const std::string_view value = valueFrom(line, position + kVersionOffset);
        if (!value.empty()) {
            facts.version = value;
        }
    } else if (keyword.size() == 4 && equalNoCase(keyword.substr(0, 3), "dat")) {
        const std::string_view value = valueFrom(line, position + kDateOffset);
        if (!value.empty()) {
            facts.date = value;
        }
    }
}

}  // namespace

std::string_view LineTokens::next() {
    const auto separates = [this](char c) {
        return lex::isBlank(c) || m_delims.find(c) != std::string_view::npos;
    };
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

ScriptFacts parseScriptFacts(std::string_view text) {
    ScriptFacts facts;
    facts.readable = true;
    if (text.starts_with(kUtf8Mark)) {
        text.remove_prefix(kUtf8Mark.size());
    }
    while (!text.empty()) {
        const size_t length = std::min(text.find('\n'), text.size());
        takeLine(text.substr(0, length), facts);
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return facts;
}

ScriptFacts readScriptFacts(const std::string& path) {
    const std::optional<std::string> text = osFiles().readWhole(path);
    return text ? parseScriptFacts(*text) : ScriptFacts();
}

const ScriptFacts& ScriptFactsReader::of(const std::string& path) {
    const auto [found, added] = m_facts.try_emplace(path);
    if (added) {
        found->second = readScriptFacts(path);
    }
    return found->second;
}

}  // namespace zoka
