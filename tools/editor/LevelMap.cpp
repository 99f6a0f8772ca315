#include "tools/editor/LevelMap.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "util/Text.h"

namespace zoka {

namespace {

constexpr std::string_view kSpaces = " \t\r";

std::string_view nextWord(std::string_view& line) {
    const size_t start = line.find_first_not_of(kSpaces);
    if (start == std::string_view::npos) {
        line = {};
        return {};
    }
    const size_t end = std::min(line.find_first_of(kSpaces, start), line.size());
    const std::string_view word = line.substr(start, end - start);
    line.remove_prefix(end);
    return word;
}

template <typename Number>
bool readNumber(std::string_view word, Number& number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size();
}

bool readFinite(std::string_view word, float& number) {
    return readNumber(word, number) && std::isfinite(number);
}

// One line inside an entity's block.
Outcome readProperty(std::string_view keyword, std::string_view rest, LevelEntity& entity) {
    if (keyword == "action") {
        entity.script = nextWord(rest);
        entity.action = nextWord(rest);
        if (entity.action.empty()) {
            return Refusal{"action needs a script file and an action's name"};
        }
    } else if (keyword == "position") {
        for (float& axis : entity.position) {
            if (!readFinite(nextWord(rest), axis)) {
                return Refusal{"position needs three numbers"};
            }
        }
    } else if (keyword == "skill") {
        int number = 0;
        float value = 0;
        if (!readNumber(nextWord(rest), number) || number < 1 || number > kEntitySkills ||
            !readFinite(nextWord(rest), value)) {
            return Refusal{"skill needs a number from 1 to 20 and a value"};
        }
        entity.skills[static_cast<size_t>(number - 1)] = value;
    } else if (keyword == "flag") {
        int number = 0;
        if (!readNumber(nextWord(rest), number) || number < 1 || number > kEntityFlags) {
            return Refusal{"flag needs a number from 1 to 8"};
        }
        entity.flags |= 1U << (number - 1);
    } else {
        return Refusal{"unknown word \"" + std::string(keyword) + "\""};
    }
    if (!nextWord(rest).empty()) {
        return Refusal{"too many words after " + std::string(keyword)};
    }
    return {};
}

void appendNumber(std::string& out, float value) {
    char digits[32];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
    out.append(" ").append(digits, end);
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalFolded(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

bool isWordChar(char c) {
    return (lower(c) >= 'a' && lower(c) <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// Past a comment or a quoted text that begins at `at`; `at` itself when neither does.
size_t skipQuiet(std::string_view text, size_t at) {
    const auto past = [&](std::string_view mark, size_t from) {
        const size_t found = text.find(mark, from);
        return found == std::string_view::npos ? text.size() : found + mark.size();
    };
    if (text.substr(at, 2) == "//") {
        return past("\n", at);
    }
    if (text.substr(at, 2) == "/*") {
        return past("*/", at + 2);
    }
    if (text[at] == '"') {
        return past("\"", at + 1);
    }
    return at;
}

// The word that begins at `at`; empty when none does.
std::string_view wordAt(std::string_view text, size_t at) {
    size_t end = at;
    while (end < text.size() && isWordChar(text[end])) {
        ++end;
    }
    return text.substr(at, end - at);
}

// The start of the comment lines directly above `at` that describe the action: from the line "// action: NAME"
// on. `at` itself when there are none.
size_t startOfDescription(std::string_view text, size_t at, std::string_view action) {
    size_t below = text.substr(0, at).find_last_of('\n') + 1;  // the line's start
    if (text.substr(below, at - below).find_first_not_of(kSpaces) != text.npos) {
        return at;
    }
    while (below > 0) {
        const size_t above = text.substr(0, below - 1).find_last_of('\n') + 1;
        std::string_view line = text.substr(above, below - above);
        line.remove_prefix(std::min(line.find_first_not_of(kSpaces), line.size()));
        if (!line.starts_with("//")) {
            break;
        }
        line.remove_prefix(2);
        line.remove_prefix(std::min(line.find_first_not_of(kSpaces), line.size()));
        const std::string_view word = wordAt(line, 0);
        const size_t name = std::min(line.find_first_not_of(": \t", word.size()), line.size());
        if (equalFolded(word, "action") && name > word.size() && equalFolded(wordAt(line, name), action) &&
            line.substr(word.size(), name - word.size()).find(':') != line.npos) {
            return above;
        }
        below = above;
    }
    return at;
}

}  // namespace

Result<LevelMap> readLevelMap(std::string_view text) {
    LevelMap level;
    bool sawHeader = false;
    bool inEntity = false;
    int lineNumber = 0;
    text.remove_prefix(utf8MarkLength(text));
    const auto fault = [&](const std::string& what) {
        return Refusal{"line " + std::to_string(std::max(lineNumber, 1)) + ": " + what};
    };
    while (!text.empty()) {
        ++lineNumber;
        const size_t lineEnd = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, lineEnd);
        text.remove_prefix(std::min(lineEnd + 1, text.size()));
        const std::string_view keyword = nextWord(line);
        if (keyword.empty()) {
            continue;
        }
        if (keyword.starts_with("//")) {
            std::string& comments = inEntity ? level.entities.back().comments : level.comments;
            comments.append(keyword)
                .append(line.substr(0, line.find_last_not_of(kSpaces) + 1))
                .append("\r\n");
            continue;
        }
        if (!sawHeader) {
            if (keyword != "level" || nextWord(line) != "1") {
                return fault("a level begins with \"level 1\"");
            }
            sawHeader = true;
        } else if (!inEntity) {
            LevelEntity entity;
            entity.name = nextWord(line);
            if (keyword != "entity" || entity.name.empty() || !nextWord(line).empty()) {
                return fault("expected \"entity NAME\"");
            }
            entity.comments.swap(level.comments);
            level.entities.push_back(std::move(entity));
            inEntity = true;
        } else if (keyword == "end") {
            inEntity = false;
        } else if (const Outcome read = readProperty(keyword, line, level.entities.back()); !read) {
            return fault(read.why());
        }
    }
    if (!sawHeader) {
        return fault("a level begins with \"level 1\"");
    }
    if (inEntity) {
        return fault("the entity \"" + level.entities.back().name + "\" has no end");
    }
    return level;
}

std::string writeLevelMap(const LevelMap& level) {
    std::string out = "level 1\r\n";
    for (const LevelEntity& entity : level.entities) {
        out += "\r\n" + entity.comments + "entity " + entity.name + "\r\n";
        if (!entity.script.empty()) {
            out += "    action   " + entity.script + " " + entity.action + "\r\n";
        }
        out += "    position";
        for (const float axis : entity.position) {
            appendNumber(out, axis);
        }
        out += "\r\n";
        for (size_t i = 0; i < entity.skills.size(); ++i) {
            if (entity.skills[i] == 0) {
                continue;
            }
            out += "    skill    " + std::to_string(i + 1);
            appendNumber(out, entity.skills[i]);
            out += "\r\n";
        }
        for (int flag = 1; flag <= kEntityFlags; ++flag) {
            if (entity.flags >> (flag - 1) & 1U) {
                out += "    flag     " + std::to_string(flag) + "\r\n";
            }
        }
        out += "end\r\n";
    }
    if (!level.comments.empty()) {
        out += "\r\n" + level.comments;
    }
    return out;
}

std::vector<ScriptAction> actionsOf(std::string_view script) {
    std::vector<ScriptAction> actions;
    struct Open {
        size_t action;
        int depth;  // of braces around its name
    };
    std::vector<Open> open;  // the innermost is the last; no depth is less than those before it
    int depth = 0;
    const auto closeAt = [&](size_t end) {
        ScriptAction& action = actions[open.back().action];
        action.block.length = end - action.block.start;
        open.pop_back();
        return &action;
    };
    for (size_t at = 0; at < script.size();) {
        if (const size_t past = skipQuiet(script, at); past != at) {
            at = past;
            continue;
        }
        const std::string_view word = wordAt(script, at);
        const size_t start = at;
        at += std::max<size_t>(word.size(), 1);
        const char c = script[start];
        if (c == '{') {
            if (!open.empty() && open.back().depth == depth) {
                actions[open.back().action].hasBody = true;
            }
            ++depth;
        } else if (c == '}') {
            --depth;
            while (!open.empty() && open.back().depth >= depth) {
                closeAt(at)->isClosed = true;
            }
        } else if (c == ';') {
            while (!open.empty() && open.back().depth == depth) {
                closeAt(at)->isClosed = true;
            }
        } else if (equalFolded(word, "action")) {
            const size_t name = std::min(script.find_first_not_of(" \t\r\n", at), script.size());
            if (const std::string_view named = wordAt(script, name); !named.empty()) {
                open.push_back({actions.size(), depth});
                actions.push_back({std::string(named), {startOfDescription(script, start, named), 0}});
                at = name + named.size();
            }
        }
    }
    while (!open.empty()) {
        closeAt(script.size());
    }
    return actions;
}

std::optional<ActionBlock> findActionBlock(std::string_view script, std::string_view action) {
    std::optional<ActionBlock> found;
    for (const ScriptAction& one : actionsOf(script)) {
        if (!equalFolded(one.name, action)) {
            continue;
        }
        if (one.hasBody) {
            return one.block;
        }
        if (!found) {
            found = one.block;
        }
    }
    return found;
}

}  // namespace zoka
