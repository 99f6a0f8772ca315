#include "tools/editor/DriveScript.h"

#include <algorithm>
#include <charconv>

namespace zoka {

namespace {

constexpr std::string_view kWordBreaks = " \t\r";

// The words of one line, quotes taken off. A text in `fault` tells what is wrong.
std::vector<std::string> splitWords(std::string_view line, std::string& fault) {
    std::vector<std::string> words;
    size_t at = 0;
    while ((at = line.find_first_not_of(kWordBreaks, at)) != std::string_view::npos) {
        std::string word;
        if (line[at] != '"') {
            const size_t end = std::min(line.find_first_of(kWordBreaks, at), line.size());
            word = line.substr(at, end - at);
            at = end;
            if (words.empty() && word[0] == '#') {
                return words;
            }
        } else {
            for (++at;; ++at) {
                if (at >= line.size()) {
                    fault = "a quoted word has no end";
                    return words;
                }
                if (line[at] == '"') {
                    if (line.substr(at + 1, 1) != "\"") {
                        break;
                    }
                    ++at;
                }
                word += line[at];
            }
            ++at;
        }
        words.push_back(std::move(word));
    }
    return words;
}

// Puts values in the place of ${NAME}. An unknown name is a fault.
void substitute(std::string& word, const std::map<std::string, std::string>& values, std::string& fault) {
    for (size_t at = 0; (at = word.find("${", at)) != std::string::npos;) {
        const size_t end = word.find('}', at);
        const auto value =
            end == std::string::npos ? values.end() : values.find(word.substr(at + 2, end - at - 2));
        if (value == values.end()) {
            fault = "no value for " + word.substr(at) + " (give it with --set NAME=VALUE)";
            return;
        }
        word.replace(at, end + 1 - at, value->second);
        at += value->second.size();
    }
}

}  // namespace

Result<DriveScript> readDriveScript(std::string_view text, const std::map<std::string, std::string>& values) {
    DriveScript script;
    std::vector<size_t> open;  // repeats without an end so far
    int number = 0;
    const auto fault = [&](int line, const std::string& what) {
        return Refusal{std::to_string(line) + ": " + what};
    };
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        DriveLine line;
        line.number = ++number;
        std::string what;
        line.words = splitWords(text.substr(0, end), what);
        text.remove_prefix(std::min(end + 1, text.size()));
        for (std::string& word : line.words) {
            substitute(word, values, what);
        }
        if (!what.empty()) {
            return fault(number, what);
        }
        if (line.words.empty()) {
            continue;
        }
        const size_t index = script.lines.size();
        if (line.words[0] == "repeat") {
            const std::string count = line.words.size() == 2 ? line.words[1] : "";
            const auto [last, bad] = std::from_chars(count.data(), count.data() + count.size(), line.times);
            if (bad != std::errc() || *last != 0 || line.times < 1) {
                return fault(number, "repeat needs a count of 1 or more");
            }
            open.push_back(index);
        } else if (line.words[0] == "end") {
            if (open.empty()) {
                return fault(number, "end without repeat");
            }
            line.partner = open.back();
            script.lines[open.back()].partner = index;
            open.pop_back();
        }
        script.lines.push_back(std::move(line));
    }
    if (!open.empty()) {
        return fault(script.lines[open.back()].number, "repeat without end");
    }
    return script;
}

}  // namespace zoka
