#include "util/LineDiff.h"

#include <gtest/gtest.h>

using namespace zoka;

namespace {

std::string unified(const std::string& before, const std::string& after) {
    return unifiedDifference(before, after, "a", "b");
}

// Applies the hunks to `before`, line by line; the result has to be `after`.
std::string patched(const std::string& before, const std::vector<DiffHunk>& hunks) {
    std::vector<std::string> lines;
    for (size_t at = 0; at < before.size();) {
        const size_t end = std::min(before.find('\n', at), before.size() - 1) + 1;
        lines.push_back(before.substr(at, end - at));
        at = end;
    }
    std::string result;
    size_t next = 0;
    for (const DiffHunk& hunk : hunks) {
        const size_t start = hunk.oldStart - (hunk.oldCount > 0 ? 1 : 0);
        while (next < start) {
            result += lines[next++];
        }
        size_t oldCount = 0, newCount = 0;
        for (const DiffLine& line : hunk.lines) {
            if (line.mark != '+') {
                ++oldCount, ++next;
            }
            if (line.mark != '-') {
                ++newCount, result += line.text + "\n";
            }
        }
        EXPECT_EQ(oldCount, hunk.oldCount);
        EXPECT_EQ(newCount, hunk.newCount);
    }
    while (next < lines.size()) {
        result += lines[next++];
    }
    return result;
}

}  // namespace

TEST(LineDiff, Unified) {
    struct Row {
        const char *before, *after, *expected;
    };
    const Row rows[] = {
        {"", "", ""},
        {"a\r\n", "a\r\n", ""},
        {"", "a\r\n", "--- a\n+++ b\n@@ -0,0 +1 @@\n+a\n"},
        {"a\n", "", "--- a\n+++ b\n@@ -1 +0,0 @@\n-a\n"},
        {"a\r\nb\r\n", "a\r\nx\r\nb\r\n", "--- a\n+++ b\n@@ -1,2 +1,3 @@\n a\n+x\n b\n"},
        {"a\r\nb\r\n", "a\nb\n", "b: line ends change from CR LF to LF\n"},
        {"a\nb\n", "a\r\nc\r\n",
         "b: line ends change from LF to CR LF\n--- a\n+++ b\n@@ -1,2 +1,2 @@\n a\n-b\n+c\n"},
        {"a\r\nb\n", "a\nb\n", "--- a\n+++ b\n@@ -1,2 +1,2 @@\n-a\\r\n+a\n b\n"},
        {"1\n2\n3\n4\n5\n6\n7\n8\n9\n", "1\n2\n3\n4\nX\n6\n7\n8\n9\n",
         "--- a\n+++ b\n@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+X\n 6\n 7\n 8\n"},
        {"a\n1\n2\n3\n4\n5\n6\n7\n8\nb\n", "A\n1\n2\n3\n4\n5\n6\n7\n8\nB\n",
         "--- a\n+++ b\n@@ -1,4 +1,4 @@\n-a\n+A\n 1\n 2\n 3\n@@ -7,4 +7,4 @@\n 6\n 7\n 8\n-b\n+B\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(unified(row.before, row.after), row.expected) << row.before;
    }
}

TEST(LineDiff, HunksTurnOneTextIntoTheOther) {
    unsigned state = 1;
    const auto random = [&state](unsigned below) {
        state = state * 1664525U + 1013904223U;
        return (state >> 16) % below;
    };
    for (int round = 0; round < 300; ++round) {
        std::string before, after;
        const unsigned lines = random(40);
        for (unsigned i = 0; i < lines; ++i) {
            const std::string line = std::to_string(random(6)) + "\n";
            before += line;
            if (random(5) > 0) {
                after += line;
            }
            if (random(6) == 0) {
                after += "new\n";
            }
        }
        EXPECT_EQ(patched(before, lineDifference(before, after)), after) << before << "->\n" << after;
    }
}

TEST(LineDiff, LongTextsAreCutAtLinesThatOccurOnce) {
    unsigned state = 1;
    const auto lines = [&state](int different) {
        std::string text;
        for (int i = 0; i < 6000; ++i) {
            state = state * 1664525U + 1013904223U;
            text += std::to_string((state >> 8) % different) + "\n}\n";
        }
        return text;
    };
    const std::string first = lines(4000), second = lines(4000);
    const auto hunks =
        lineDifference("version 1\n" + first + second, "version 2\n" + first + "new\n" + second + "end\n");
    ASSERT_EQ(hunks.size(), 3U);
    EXPECT_EQ(hunks[1].oldCount, 6U);
    EXPECT_EQ(hunks[1].newCount, 7U);
    for (const int different : {10, 3000, 30000}) {
        const std::string before = lines(different) + second, after = second + lines(different);
        EXPECT_EQ(patched(before, lineDifference(before, after)), after) << different;
    }
}

TEST(LineDiff, VeryDifferentTextsTakeLinearTime) {
    std::string before = "same\n", after = "same\n";
    for (int i = 0; i < 200000; ++i) {
        before += "a" + std::to_string(i) + "\n";
        after += "b" + std::to_string(i) + "\n";
    }
    const auto hunks = lineDifference(before, after);
    ASSERT_EQ(hunks.size(), 1U);
    EXPECT_EQ(hunks[0].lines.size(), 400001U);
}
