// What changed between two texts, line by line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zoka {

struct DiffLine {
    char mark;         // ' ' in both, '-' in the first text alone, '+' in the second alone
    std::string text;  // without its line end
};
// A run of changes with up to three lines around it. Lines count from 1; for an empty side, the line before.
struct DiffHunk {
    size_t oldStart = 0, oldCount = 0;
    size_t newStart = 0, newCount = 0;
    std::vector<DiffLine> lines;
};

// "line ends change from LF to CR LF", where every line of one text ends otherwise than every line of the other;
// else empty.
std::string lineEndChange(std::string_view before, std::string_view after);

// Empty when the texts are equal. Where lineEndChange says so of all lines at once, their ends don't count.
// Otherwise lines that differ in their line end alone are different; the text of such a line then ends with a
// visible "\r". Of very long texts, what lies between two lines that occur once in both counts as replaced where it is
// very long too, so that the time stays about linear.
std::vector<DiffHunk> lineDifference(std::string_view before, std::string_view after);

// The hunks in the unified format, lines ended with LF; empty when the texts are equal. A change of all line ends
// is a line in front.
std::string unifiedDifference(std::string_view before, std::string_view after, const std::string& oldName,
                              const std::string& newName);

}  // namespace zoka
