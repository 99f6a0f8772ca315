#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <string>
#include <vector>

#include "util/Lex.h"
#include "util/LineIndex.h"

using testing::ElementsAre;

namespace {

CLex lexOver(const std::string& text) {
    return CLex(text.data(), static_cast<long>(text.size()));
}

std::vector<std::string> unformatted(CLex& lex) {
    std::vector<std::string> lines;
    while (const char* line = lex.getNextUnformLine()) {
        lines.emplace_back(line, static_cast<size_t>(lex.getLineLen()));
    }
    return lines;
}

std::vector<std::string> formatted(CLex& lex) {
    std::vector<std::string> lines;
    while (const char* line = lex.getNextLine()) {
        EXPECT_EQ(std::string(line).size(), static_cast<size_t>(lex.getLineLen()));
        lines.emplace_back(line);
    }
    return lines;
}

TEST(Lines, StartAtTheTextAndAfterEveryLineFeed) {
    const struct {
        std::string text;
        std::vector<std::string> lines;
    } rows[] = {
        {"", {""}},
        {"a", {"a"}},
        {"a\nb", {"a", "b"}},
        {"a\nb\n", {"a", "b", ""}},
        {"\n\n", {"", "", ""}},
        {"a\r\nb\r\nc\r", {"a\r", "b\r", "c"}},  // the CR stays, but not on the last line
        {"a\nb\r\r", {"a", "b"}},
        {"a\nb\r\r\r", {"a", "b\r"}},  // two at most
        {std::string("a\0b\n\0", 5), {std::string("a\0b", 3), std::string("\0", 1)}},
    };
    for (const auto& row : rows) {
        CLex lex = lexOver(row.text);
        EXPECT_EQ(lex.getLinesNumber(), static_cast<int>(row.lines.size())) << row.text;
        EXPECT_EQ(unformatted(lex), row.lines) << row.text;
    }
}

TEST(Lines, OfNoTextOrNoSizeDoNoHarm) {
    CLex none(nullptr, 10);
    EXPECT_EQ(none.getLinesNumber(), 0);
    EXPECT_EQ(none.getNextUnformLine(), nullptr);
    EXPECT_EQ(none.getNextLine(), nullptr);
    EXPECT_EQ(none.searchToLine("a"), nullptr);
    EXPECT_EQ(none.setPosAtLine(0), 0);
    EXPECT_EQ(none.getPos(), 0);
    EXPECT_EQ(none.getBufSize(), 0);
    for (const long size : {0L, -1L, LONG_MIN}) {
        CLex empty("text", size);
        EXPECT_EQ(empty.getBufSize(), 0);
        EXPECT_STREQ(empty.getNextUnformLine(), "");
        EXPECT_EQ(empty.getNextUnformLine(), nullptr);
    }
}

TEST(Lines, ErrorTellsOfALineOf1024BytesWithItsLineFeed) {
    const struct {
        size_t chars;
        const char* end;
        CLEXERR error;
    } rows[] = {{1022, "\n", CLEXERR_NONE},       {1023, "\n", CLEXERR_LONGLINE},
                {1022, "\r\n", CLEXERR_LONGLINE}, {1023, "", CLEXERR_NONE},
                {1024, "", CLEXERR_LONGLINE},     {3, "\n", CLEXERR_NONE},
                {5000, "\nb", CLEXERR_LONGLINE}};
    for (const auto& row : rows) {
        const std::string text = "first\n" + std::string(row.chars, 'x') + row.end;
        EXPECT_EQ(lexOver(text).GetLastError(), row.error) << row.chars;
    }
}

TEST(Lines, LongerThanTheBufferAreWholeInTheTextAndCutInCopies) {
    const std::string text = "  " + std::string(3000, 'x') + "\n" + std::string(3000, 'y');
    CLex lex = lexOver(text);
    EXPECT_EQ(lex.GetMaxLineSize(), 1024);
    EXPECT_EQ(lex.getNextUnformLine(), text.data());
    EXPECT_EQ(lex.getLineLen(), 3002);
    EXPECT_EQ(lex.getNextUnformLine(), std::string(1024, 'y'));
    EXPECT_EQ(lex.getLineLen(), 1024);
    lex.setPosAtLine(0);
    EXPECT_THAT(formatted(lex), ElementsAre(std::string(1024, 'x'), std::string(1024, 'y')));
    lex.setPosAtLine(0);
    EXPECT_EQ(lex.searchToLine("xx"), std::string(1024, 'x'));
    EXPECT_EQ(lex.getLineLen(), 1024);

    // The last line is cut first, and its leading blanks go afterwards, except where it is searched for.
    const std::string indented = "   " + std::string(3000, 'z'), blank = std::string(1024, ' ') + "z";
    CLex last = lexOver(indented), cutAway = lexOver(blank);
    EXPECT_EQ(last.getNextLine(), std::string(1021, 'z'));
    last.setPosAtLine(0);
    EXPECT_EQ(last.searchToLine("z"), std::string(1024, 'z'));
    EXPECT_EQ(cutAway.getNextLine(), nullptr);
}

TEST(Lines, FormattedOnesAreTrimmedInFrontAndNeverEmptyOrComments) {
    const std::string text = "\n  \t\n// no\n\t //no\n \tone \n/ two\r\n\r\nthree // kept\n//";
    CLex lex = lexOver(text);
    EXPECT_THAT(formatted(lex), ElementsAre("one ", "/ two\r", "\r", "three // kept"));
    EXPECT_EQ(lex.getNextLine(), nullptr);

    CLex last("a\nb\r\r", 5);
    EXPECT_THAT(formatted(last), ElementsAre("a", "b"));
    CLex slash("//", 1);  // what follows the text is none of it
    EXPECT_THAT(formatted(slash), ElementsAre("/"));
}

TEST(Lines, PositionsFollowTheWalk) {
    const std::string text = "ab\r\ncd\nef";
    CLex lex = lexOver(text);
    EXPECT_EQ(lex.getCurrLine(), -1);
    EXPECT_EQ(lex.getCurrLinePos(), nullptr);
    EXPECT_EQ(lex.getPos(), 0);
    lex.getNextUnformLine();
    EXPECT_EQ(lex.getCurrLine(), 0);
    EXPECT_EQ(lex.getLineNum(), 1);
    EXPECT_EQ(lex.getPos(), 4);
    EXPECT_EQ(lex.getCurrLinePos(), text.data());
    lex.getNextUnformLine();
    lex.getNextUnformLine();
    EXPECT_EQ(lex.getCurrLinePos(), text.data() + 7);  // in the text, although the line itself is a copy
    EXPECT_EQ(lex.getPos(), 9);
    EXPECT_EQ(lex.getNextUnformLine(), nullptr);
    EXPECT_EQ(lex.getCurrLine(), 2);
    EXPECT_EQ(lex.getLineLen(), 2);

    EXPECT_EQ(lex.setPosAtLine(1), 1);
    EXPECT_EQ(lex.getLineNum(), 1);
    for (const int outside : {-1, 3, INT_MIN, INT_MAX}) {
        EXPECT_EQ(lex.setPosAtLine(outside), 0);
    }
    EXPECT_EQ(std::string(lex.getNextUnformLine(), 2), "cd");
    EXPECT_EQ(lex.getBuf(), text.data());
    EXPECT_EQ(lex.getBufSize(), 9);
}

TEST(Search, FindsTheNextLineThatBeginsWithTheTextAndGoesRound) {
    const std::string text = "zero\n \tOne x\ntwo\n\tone y\nfour\nfive\n";
    CLex lex = lexOver(text);
    const struct {
        int from;
        const char *wanted, *found;
        int at;
    } rows[] = {
        {0, "one", "One x", 1},
        {1, "ONE", "One x", 1},
        {2, "one", "one y", 3},
        {4, "one", "One x", 1},
        {4, "zero", "zero", 0},
        {3, "two", "two", 2},
        {0, "one y", "one y", 3},
        {5, "nothing", nullptr, 4},
        {0, "nothing", nullptr, -1},
        {0, "fourth", nullptr, -1},
        {5, "one x and more", nullptr, 4},
        {2, "", "two", 2},
    };
    for (const auto& row : rows) {
        lex.setPosAtLine(row.from);
        EXPECT_STREQ(lex.searchToLine(row.wanted), row.found) << row.wanted << " from " << row.from;
        EXPECT_EQ(lex.getCurrLine(), row.at) << row.wanted << " from " << row.from;
        if (row.found) {
            EXPECT_EQ(lex.getLineLen(), static_cast<int>(std::string(row.found).size()));
        }
    }
    lex.setPosAtLine(0);
    EXPECT_STREQ(lex.search_to_line("two and more", 3), "two");
    EXPECT_EQ(lex.search_to_line("two", -1), nullptr);
    EXPECT_EQ(lex.search_to_line(nullptr, 0), nullptr);
    EXPECT_EQ(lex.searchToLine(nullptr), nullptr);
    EXPECT_EQ(lex.searchToLineEx(nullptr), nullptr);
    while (lex.getNextUnformLine()) {
    }
    EXPECT_STREQ(lex.searchToLine("zero"), "zero");  // from the very end
}

TEST(Search, ForWholeWordsEndsAfterOneRound) {
    const std::string text = "actions\r\naction_x\r\n action\r\nACTION\tfog\r\nact";
    CLex lex = lexOver(text);
    EXPECT_STREQ(lex.searchToLineEx("action"), "action\r");
    EXPECT_STREQ(lex.searchToLineEx("action"), "ACTION\tfog\r");
    EXPECT_STREQ(lex.searchToLineEx("action"), "action\r");
    EXPECT_STREQ(lex.searchToLineEx("act"), "act");
    EXPECT_EQ(lex.searchToLineEx("action_"), nullptr);
    EXPECT_EQ(lex.getCurrLine(), 4);
}

TEST(Search, MayTakeItsTextFromTheLineLastDelivered) {
    const std::string text = "alpha\nbeta\nal\nalpha two\n";
    CLex lex = lexOver(text);
    EXPECT_STREQ(lex.searchToLine(lex.getNextLine()), "alpha two");
}

TEST(LineIndex, ChecksItsRange) {
    const std::string text = "a\nb";
    const zoka::LineIndex index(text.data(), text.size());
    EXPECT_EQ(index.at(1), text.data() + 2);
    EXPECT_EQ(index.at(2), nullptr);
    EXPECT_THROW(index.at(3), std::out_of_range);
    EXPECT_THROW(index.at(SIZE_MAX), std::out_of_range);
    EXPECT_EQ(zoka::LineIndex().at(0), nullptr);
}

TEST(LineIndex, FindsLineFeedsAtEveryPlaceOfABlock) {
    // Runs of one line feed, of all and of all but one, long enough for the counters of 8 bits to overflow.
    for (const size_t size : {1u, 63u, 64u, 65u, 127u, 128u, 200u, 64u * 64u + 5u}) {
        for (size_t place = 0; place<size; place += size> 200 ? 61 : 1) {
            std::string one(size, 'x'), allButOne(size, '\n');
            one[place] = '\n';
            allButOne[place] = '\x8a';  // a LF but for its top bit
            const zoka::LineIndex sparse(one.data(), size);
            ASSERT_EQ(sparse.lines(), 2u);
            ASSERT_EQ(sparse.at(1), one.data() + place + 1);
            const zoka::LineIndex dense(allButOne.data(), size);
            ASSERT_EQ(dense.lines(), size);
            for (size_t i = 1; i < size; ++i) {
                ASSERT_EQ(dense.at(i), allButOne.data() + (i <= place ? i : i + 1));
            }
        }
    }
    const std::string feeds(100'000, '\n');
    EXPECT_EQ(zoka::LineIndex(feeds.data(), feeds.size()).lines(), 100'001u);
}

}  // namespace
