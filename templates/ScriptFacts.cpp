#include "templates/ScriptFacts.h"

#include <algorithm>

#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {

namespace {

constexpr std::string_view kHeaderDelims = " \t:,;";
constexpr std::string_view kValueDelims = " \t,";
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
