#include "tools/editor/LevelEdit.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace zoka {
namespace {

constexpr std::string_view kFieldBreaks = " \t\r";

struct Word {
    size_t start, length;
};

// The words of the line that begins at `start` and ends before `end`.
std::vector<Word> wordsOf(std::string_view text, size_t start, size_t end) {
    std::vector<Word> words;
    const std::string_view line = text.substr(0, end);
    for (size_t at = start; (at = line.find_first_not_of(kFieldBreaks, at)) < end;) {
        const size_t last = std::min(line.find_first_of(kFieldBreaks, at), end);
        words.push_back({at, last - at});
        at = last;
    }
    return words;
}

std::string numberText(float value) {
    char digits[32];
    return std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

}  // namespace

std::optional<std::string> withLevelValue(std::string_view text, const LevelValue& change) {
    const std::string keyword = change.isSkill ? "skill" : "flag";
    const std::string number = std::to_string(change.number);
    bool inside = false;
    std::optional<Word> value;                         // of the last line that sets the skill
    std::vector<std::pair<size_t, size_t>> flagLines;  // from, to
    std::string indent = "    ";
    for (size_t start = 0; start < text.size();) {
        const size_t feed = text.find('\n', start);
        const size_t end = std::min(feed, text.size()), next = std::min(end + 1, text.size());
        const std::vector<Word> words = wordsOf(text, start, end);
        const auto word = [&](size_t i) {
            return i < words.size() ? text.substr(words[i].start, words[i].length) : std::string_view();
        };
        if (!inside) {
            inside = word(0) == "entity" && word(1) == change.entity;
        } else if (word(0) == "end") {
            std::string made(text);
            if (change.isSkill && value) {
                return made.replace(value->start, value->length, numberText(change.value));
            }
            if (!change.isSkill && change.value == 0) {
                for (auto line = flagLines.rbegin(); line != flagLines.rend(); ++line) {
                    made.erase(line->first, line->second - line->first);
                }
                return made;
            }
            if (!flagLines.empty() || (change.isSkill && change.value == 0)) {
                return made;  // what isn't named is 0
            }
            const bool bare = start >= 2 && text[start - 1] == '\n' && text[start - 2] != '\r';
            const std::string shown = change.isSkill ? ' ' + numberText(change.value) : std::string();
            std::string line = indent + keyword;
            line.append(change.isSkill ? 4 : 5, ' ').append(number).append(shown);
            return made.insert(start, line + (bare ? "\n" : "\r\n"));
        } else if (!words.empty() && !word(0).starts_with("//")) {
            indent = text.substr(start, words[0].start - start);
            int read = 0;
            const std::string_view digits = word(1);
            std::from_chars(digits.data(), digits.data() + digits.size(), read);
            if (word(0) == keyword && read == change.number) {
                if (change.isSkill && words.size() > 2) {
                    value = words[2];
                } else {
                    flagLines.emplace_back(start, next);
                }
            }
        }
        start = next;
    }
    return std::nullopt;
}

}  // namespace zoka
