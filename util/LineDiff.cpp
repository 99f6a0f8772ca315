#include "util/LineDiff.h"

#include <algorithm>
#include <dtl/dtl.hpp>
#include <span>

#include "util/KeyedHash.h"

namespace zoka {

namespace {

constexpr size_t kContext = 3;
// Lines that are compared in one; the comparison's time grows with lines times differences.
constexpr size_t kMostLines = 8000;

using Lines = std::vector<std::string_view>;

// Line ends belong to their lines; a last line without one differs from one with it.
Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        const size_t length = end == std::string_view::npos ? text.size() : end + 1;
        lines.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return lines;
}

struct Edit {
    char mark;
    std::string_view line;
};

using LineSpan = std::span<const std::string_view>;
// A line of the one text and its equal in the other.
struct Pair {
    size_t before, after;
};

void addReplaced(std::vector<Edit>& edits, LineSpan before, LineSpan after) {
    for (const std::string_view line : before) {
        edits.push_back({'-', line});
    }
    for (const std::string_view line : after) {
        edits.push_back({'+', line});
    }
}

// The lines that occur once in either text, in the order of `before`.
std::vector<Pair> onceInBoth(LineSpan before, LineSpan after) {
    struct Places {
        size_t countBefore = 0, countAfter = 0, inAfter = 0;
    };
    KeyedMap<std::string_view, Places> places;
    places.reserve(before.size() + after.size());
    for (const std::string_view line : before) {
        ++places[line].countBefore;
    }
    for (size_t i = 0; i < after.size(); ++i) {
        Places& found = places[after[i]];
        ++found.countAfter;
        found.inAfter = i;
    }
    std::vector<Pair> pairs;
    for (size_t i = 0; i < before.size(); ++i) {
        const Places& found = places.at(before[i]);
        if (found.countBefore == 1 && found.countAfter == 1) {
            pairs.push_back({i, found.inAfter});
        }
    }
    return pairs;
}

// As many of them as possible that stand in the same order in both texts.
std::vector<Pair> inOneOrder(const std::vector<Pair>& pairs) {
    constexpr size_t kNone = static_cast<size_t>(-1);
    std::vector<size_t> ends;                           // of the best rows of each length, the last pair
    std::vector<size_t> previous(pairs.size(), kNone);  // in the best row that ends with the pair
    for (size_t i = 0; i < pairs.size(); ++i) {
        const auto place = std::lower_bound(ends.begin(), ends.end(), pairs[i].after,
                                            [&](size_t end, size_t line) { return pairs[end].after < line; });
        previous[i] = place == ends.begin() ? kNone : *(place - 1);
        if (place == ends.end()) {
            ends.push_back(i);
        } else {
            *place = i;
        }
    }
    std::vector<Pair> row;
    for (size_t i = ends.empty() ? kNone : ends.back(); i != kNone; i = previous[i]) {
        row.push_back(pairs[i]);
    }
    std::reverse(row.begin(), row.end());
    return row;
}

void addEdits(std::vector<Edit>& edits, LineSpan before, LineSpan after) {
    if (before.empty() || after.empty() || before.size() + after.size() > kMostLines) {
        return addReplaced(edits, before, after);
    }
    dtl::Diff<std::string_view, Lines> diff(Lines(before.begin(), before.end()),
                                            Lines(after.begin(), after.end()));
    diff.compose();
    for (const auto& [line, info] : diff.getSes().getSequence()) {
        edits.push_back({info.type == dtl::SES_ADD ? '+' : info.type == dtl::SES_DELETE ? '-' : ' ', line});
    }
}

// The edits between the common beginning and the common end. What is too long to be compared in one is cut at the
// lines that occur once in both.
std::vector<Edit> editsBetween(LineSpan before, LineSpan after) {
    std::vector<Edit> edits;
    Pair from{0, 0};
    if (before.size() + after.size() > kMostLines) {
        for (const Pair& same : inOneOrder(onceInBoth(before, after))) {
            addEdits(edits, before.subspan(from.before, same.before - from.before),
                     after.subspan(from.after, same.after - from.after));
            edits.push_back({' ', before[same.before]});
            from = {same.before + 1, same.after + 1};
        }
    }
    addEdits(edits, before.subspan(from.before), after.subspan(from.after));
    return edits;
}

std::string shown(std::string_view line, bool showCr) {
    if (line.ends_with('\n')) {
        line.remove_suffix(1);
    }
    const bool cr = line.ends_with('\r');
    if (cr) {
        line.remove_suffix(1);
    }
    return std::string(line) + (cr && showCr ? "\\r" : "");
}

std::string_view body(std::string_view line) {
    while (line.ends_with('\n') || line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

// What all lines of a text end with: "LF", "CR LF", or nothing where they differ or none has an end.
std::string_view commonLineEnd(std::string_view text) {
    bool lf = false, crLf = false;
    for (size_t at = 0; (at = text.find('\n', at)) != std::string_view::npos; ++at) {
        (at > 0 && text[at - 1] == '\r' ? crLf : lf) = true;
    }
    return lf == crLf ? "" : lf ? "LF" : "CR LF";
}

std::string inLf(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') {
            result += text[i];
        }
    }
    return result;
}

}  // namespace

std::string lineEndChange(std::string_view before, std::string_view after) {
    const std::string_view from = commonLineEnd(before), to = commonLineEnd(after);
    if (from.empty() || to.empty() || from == to) {
        return {};
    }
    return "line ends change from " + std::string(from) + " to " + std::string(to);
}

std::vector<DiffHunk> lineDifference(std::string_view before, std::string_view after) {
    if (!lineEndChange(before, after).empty()) {
        return lineDifference(inLf(before), inLf(after));
    }
    const Lines a = linesOf(before), b = linesOf(after);
    size_t head = 0;
    while (head < a.size() && head < b.size() && a[head] == b[head]) {
        ++head;
    }
    size_t tail = 0;
    while (tail < a.size() - head && tail < b.size() - head &&
           a[a.size() - 1 - tail] == b[b.size() - 1 - tail]) {
        ++tail;
    }
    if (head == a.size() && head == b.size()) {
        return {};
    }

    const size_t first = head > kContext ? head - kContext : 0;
    std::vector<Edit> edits;
    for (size_t i = first; i < head; ++i) {
        edits.push_back({' ', a[i]});
    }
    const auto middle = editsBetween(std::span(a).subspan(head, a.size() - head - tail),
                                     std::span(b).subspan(head, b.size() - head - tail));
    edits.insert(edits.end(), middle.begin(), middle.end());
    for (size_t i = 0; i < std::min(tail, kContext); ++i) {
        edits.push_back({' ', a[a.size() - tail + i]});
    }

    // Only where lines of both sides agree but for their ends do those need to be seen.
    bool showCr = false;
    for (size_t i = 1; i < edits.size(); ++i) {
        showCr |= edits[i - 1].mark != ' ' && edits[i].mark != ' ' && edits[i - 1].mark != edits[i].mark &&
                  edits[i - 1].line != edits[i].line && body(edits[i - 1].line) == body(edits[i].line);
    }

    // In each run of changes, what goes stands before what comes.
    for (auto from = edits.begin(); from != edits.end();) {
        from = std::find_if(from, edits.end(), [](const Edit& edit) { return edit.mark != ' '; });
        const auto to = std::find_if(from, edits.end(), [](const Edit& edit) { return edit.mark == ' '; });
        std::stable_partition(from, to, [](const Edit& edit) { return edit.mark == '-'; });
        from = to;
    }

    std::vector<DiffHunk> hunks;
    size_t oldLine = first, newLine = first;  // lines passed
    size_t keepUntil = 0;                     // edits up to here belong to the open hunk
    for (size_t i = 0; i < edits.size(); ++i) {
        if (i >= keepUntil) {
            // A hunk opens where a change comes within the next lines.
            const size_t ahead = std::min(edits.size(), i + kContext + 1);
            const bool near = std::any_of(edits.begin() + static_cast<std::ptrdiff_t>(i),
                                          edits.begin() + static_cast<std::ptrdiff_t>(ahead),
                                          [](const Edit& edit) { return edit.mark != ' '; });
            if (near) {
                if (keepUntil < i || hunks.empty()) {
                    hunks.push_back({oldLine + 1, 0, newLine + 1, 0, {}});
                }
                keepUntil = ahead;
            }
        }
        const Edit& edit = edits[i];
        if (edit.mark != ' ') {
            keepUntil = std::max(keepUntil, i + kContext + 1);
        }
        if (i < keepUntil) {
            DiffHunk& hunk = hunks.back();
            hunk.lines.push_back({edit.mark, shown(edit.line, showCr)});
            hunk.oldCount += edit.mark != '+';
            hunk.newCount += edit.mark != '-';
        }
        oldLine += edit.mark != '+';
        newLine += edit.mark != '-';
    }
    for (DiffHunk& hunk : hunks) {
        if (hunk.oldCount == 0) {
            --hunk.oldStart;
        }
        if (hunk.newCount == 0) {
            --hunk.newStart;
        }
    }
    return hunks;
}

std::string unifiedDifference(std::string_view before, std::string_view after, const std::string& oldName,
                              const std::string& newName) {
    const std::vector<DiffHunk> hunks = lineDifference(before, after);
    std::string text = lineEndChange(before, after);
    if (!text.empty()) {
        text = newName + ": " + text + "\n";
    }
    if (hunks.empty()) {
        return text;
    }
    text += "--- " + oldName + "\n+++ " + newName + "\n";
    const auto range = [](size_t start, size_t count) {
        return std::to_string(start) + (count == 1 ? "" : "," + std::to_string(count));
    };
    for (const DiffHunk& hunk : hunks) {
        text += "@@ -" + range(hunk.oldStart, hunk.oldCount) + " +" + range(hunk.newStart, hunk.newCount) +
                " @@\n";
        for (const DiffLine& line : hunk.lines) {
            text += line.mark + line.text + "\n";
        }
    }
    return text;
}

}  // namespace zoka
