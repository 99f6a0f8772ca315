#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "util/Lex.h"

namespace {

using Texts = std::vector<std::string>;

std::string lastToken(const char* token) {
    return {token, static_cast<size_t>(CLex::GetTokenLen())};
}

Texts tokens(const std::string& text, const char* delims = nullptr) {
    Texts found;
    const char* token = CLex::GetFirstToken(text.data(), static_cast<long>(text.size()), delims);
    for (; token; token = CLex::GetNextToken()) {
        found.push_back(lastToken(token));
    }
    return found;
}

TEST(Tokens, AreBoundedByBlanksLineEndsAndSeparators) {
    const struct {
        std::string text;
        const char* delims;
        Texts expected;
    } rows[] = {
        {"", nullptr, {}},
        {" \t ", nullptr, {}},
        {"one", nullptr, {"one"}},
        {" \tone  two\tthree ", nullptr, {"one", "two", "three"}},
        {"one two\r\nthree", nullptr, {"one", "two"}},
        {"\none", nullptr, {}},
        {std::string("one\0two", 7), nullptr, {"one"}},
        {"// entry: Label", ":", {"//", "entry", "Label"}},
        {"a,,;b=c", ",;", {"a", "b=c"}},
        {",;", ",;", {}},
        {"say \"a b\"", nullptr, {"say", "\"a", "b\""}},
        {"a\nb", "\n", {"a", "b"}},  // a LF given as a separator joins lines
        {"a,b", "", {"a,b"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(tokens(row.text, row.delims), row.expected) << row.text;
    }
}

TEST(Tokens, AreReadWithinTheLengthGiven) {
    const char text[] = "alpha beta";
    EXPECT_EQ(lastToken(CLex::GetFirstToken(text, 3)), "alp");
    EXPECT_EQ(CLex::GetNextToken(), nullptr);
    EXPECT_EQ(CLex::GetTokenLen(), 0);
    for (const long none : {0L, -1L, LONG_MIN}) {
        EXPECT_EQ(CLex::GetFirstToken(text, none), nullptr);
    }
    EXPECT_EQ(CLex::GetFirstToken(nullptr, 5), nullptr);
    EXPECT_EQ(CLex::GetNextToken(), nullptr);
    EXPECT_EQ(CLex::GetNextTokenEx(), nullptr);
}

TEST(Tokens, InQuotesAreTakenWholeWhereTheQuotesClose) {
    const struct {
        std::string text;
        Texts expected;  // after the first token, which is x
    } rows[] = {
        {"x \"a b\" c", {"a b", "c"}},   {"x \"\" c", {"", "c"}},
        {"x \"a\"b", {"a", "b"}},        {"x \"a b", {"\"a", "b"}},
        {"x y\"a b\"", {"y\"a", "b\""}}, {std::string("x \"a\0\"", 6), {"\"a"}},
    };
    for (const auto& row : rows) {
        const std::string copy = row.text;
        CLex::GetFirstToken(copy.data(), static_cast<long>(copy.size()));
        Texts found;
        while (const char* token = CLex::GetNextTokenEx()) {
            found.push_back(lastToken(token));
        }
        EXPECT_EQ(found, row.expected) << row.text;
    }
    const std::string cut = "x \"ab\"";
    CLex::GetFirstToken(cut.data(), 5);  // the closing quote lies beyond
    EXPECT_EQ(lastToken(CLex::GetNextTokenEx()), "\"ab");
}

TEST(Tokens, FirstOneCanBeMeasuredFoundAndCopied) {
    EXPECT_EQ(CLex::GetFirstTokenSize("include <a>"), 7);
    EXPECT_EQ(CLex::GetFirstTokenSize("needs:a", ":"), 5);
    EXPECT_EQ(CLex::GetFirstTokenSize(" a"), 0);
    EXPECT_EQ(CLex::GetFirstTokenSize("ab\r"), 2);
    EXPECT_EQ(CLex::GetFirstTokenSize("ab"), 2);
    EXPECT_EQ(CLex::GetFirstTokenSize(nullptr), 0);
    EXPECT_STREQ(CLex::GetTokenPos(" ;ab c", ";"), "ab c");
    EXPECT_EQ(CLex::GetTokenPos(" \r\nab"), nullptr);
    EXPECT_EQ(CLex::GetTokenPos(nullptr), nullptr);

    char* buffer = nullptr;
    int size = 0;
    const char* rest = "ab longer,x longest\ny";
    // A buffer that is large enough isn't replaced; seven bytes have no room for the 0 of the last one.
    const std::pair<const char*, int> copies[] = {{"ab", 3}, {"longer", 7}, {"x", 7}, {"longest", 8}};
    for (const auto& [copy, sizeThen] : copies) {
        const char* const kept = size == sizeThen ? buffer : nullptr;
        rest = CLex::GetToken(rest, buffer, size, ",");
        EXPECT_STREQ(buffer, copy);
        EXPECT_EQ(size, sizeThen);
        EXPECT_TRUE(!kept || buffer == kept);
    }
    EXPECT_EQ(CLex::GetToken(rest, buffer, size, ","), nullptr);
    EXPECT_STREQ(buffer, "longest");
    delete[] buffer;
}

TEST(Walkers, FindGroupsAndQuotedTexts) {
    const struct {
        const char* text;
        char open, close;
        const char* group;  // null: none
    } groups[] = {
        {" (a (b) c) d", '(', ')', "a (b) c"}, {"()", '(', ')', ""},
        {"<a.kez>;", '<', '>', "a.kez"},       {"|a|b|", '|', '|', "a"},
        {"(a\n)", '(', ')', nullptr},          {"x (a)", '(', ')', nullptr},
        {"((a)", '(', ')', nullptr},           {"", '(', ')', nullptr},
        {nullptr, '(', ')', nullptr},
    };
    for (const auto& row : groups) {
        int len = -1;
        const char* found = CLex::GetTokenGroup(row.text, row.open, row.close, len);
        ASSERT_EQ(found != nullptr, row.group != nullptr) << row.text;
        EXPECT_EQ(std::string(found ? found : "", static_cast<size_t>(len)), row.group ? row.group : "");
    }
    int len = -1;
    const char text[] = "say \"two words\" now";
    EXPECT_EQ(CLex::GetString(text, len), text + 5);
    EXPECT_EQ(len, 9);
    for (const char* none : {"say", "say \"open", "\"a\nb\"", ""}) {
        EXPECT_EQ(CLex::GetString(none, len), nullptr) << none;
        EXPECT_EQ(len, 0);
    }
    char buffer[4] = "###";
    EXPECT_STREQ(CLex::GetString(text, buffer, sizeof buffer), " now");
    EXPECT_STREQ(buffer, "two");
    EXPECT_EQ(CLex::GetString("none", buffer, sizeof buffer), nullptr);
    EXPECT_STREQ(buffer, "");
    EXPECT_STREQ(CLex::GetString(text, nullptr, 0), " now");
}

TEST(Walkers, FindCharactersAndParts) {
    const char text[] = " \tab=c\nd=//";
    EXPECT_STREQ(CLex::StrChr(text, 'd'), "d=//");
    EXPECT_EQ(CLex::LineStrChr(text, 'd'), nullptr);
    EXPECT_STREQ(CLex::LineStrChr(text, '='), "=c\nd=//");
    EXPECT_EQ(CLex::StrChr(text, 0), nullptr);
    EXPECT_STREQ(CLex::LineStrStr(text, "b="), "b=c\nd=//");
    EXPECT_EQ(CLex::LineStrStr(text, "//"), nullptr);
    EXPECT_EQ(CLex::LineStrStr(text, "c\nd"), nullptr);
    EXPECT_EQ(CLex::LineStrStr("\nab", ""), std::string("\nab"));
    EXPECT_STREQ(CLex::NextChar(text), "ab=c\nd=//");
    EXPECT_STREQ(CLex::NextChar("  \r\n"), "\r\n");
    EXPECT_EQ(CLex::NextChar(nullptr), nullptr);
}

TEST(Walkers, EditInPlace) {
    char path[] = "a/b/c";
    EXPECT_EQ(CLex::ReplaceChar(path, '/', '\\'), 2);
    EXPECT_STREQ(path, "a\\b\\c");
    EXPECT_EQ(CLex::ReplaceChar(path, 0, 'x'), 0);
    EXPECT_EQ(CLex::DeleteChar(path, '\\'), 3);
    EXPECT_STREQ(path, "abc");
    const struct {
        const char *text, *cropped;
    } rows[] = {{" \t\r\na b\r\n\t ", "a b"}, {"ab", "ab"}, {" \r\n", ""}, {"", ""}};
    for (const auto& row : rows) {
        std::string text = row.text;
        EXPECT_EQ(CLex::StringCrop(text.data()), static_cast<int>(std::strlen(row.cropped)));
        EXPECT_STREQ(text.c_str(), row.cropped);
    }
    EXPECT_EQ(CLex::StringCrop(nullptr), 0);
}

}  // namespace
