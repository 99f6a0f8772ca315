// What one line of the markup says: its keyword, and what stands behind it, as numbers, limits and choices.
#pragma once

#include <string>
#include <string_view>

namespace zoka {

struct CustomEntry;

// The parts of a comment's line with which the behaviour panel's markup agrees too.
struct MarkupLine {
    std::string_view keyword;  // the first word behind the two slashes, or empty
    std::string_view text;     // everything behind it, without the blanks around
    bool colon = false;        // a ":" follows the keyword directly or after blanks
};
// `line` begins with the two slashes and runs to the line's end.
MarkupLine splitMarkupLine(std::string_view line);

// The control word and its parameters. False, with the entry as it was, for an unknown control word; `fault`
// (may be null) is set to what else is wrong with the parameters.
bool readControl(std::string_view text, CustomEntry& entry, std::string* fault);

// The number at the text's start, 0 without one. A number beyond 32 bits sets `fits` to false and is held at
// the end.
int markupInteger(std::string_view text, bool* fits = nullptr);

// "12, 800, Label" of a text of several lines: two numbers, each with a comma behind it, and what stands behind them.
// Both or none; `one` tells of the first alone.
std::string_view readTextNumbers(std::string_view text, int& first, int& second, bool& one);

}  // namespace zoka
