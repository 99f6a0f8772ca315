#include "controls/EntryModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/Colour.h"
#include "controls/EditHistory.h"
#include "controls/EntryRules.h"

using namespace zoka;
using testing::HasSubstr;

namespace {

EntryFacts number(const char* value, double low, double high, double step, bool decimal) {
    return {.field = decimal ? EntryField::FloatField : EntryField::IntField,
            .shape = ValueShape::Bare,
            .value = value,
            .limited = true,
            .minimum = low,
            .maximum = high,
            .step = step,
            .decimal = decimal};
}

EntryFacts text(EntryField field, ValueShape shape, const char* value, int lines = 0, int maxChars = 0) {
    return {.field = field, .shape = shape, .value = value, .lines = lines, .maxChars = maxChars};
}

TEST(EntryRules, NumbersHaveNoExponentAndNoLocale) {
    const struct {
        const char* text;
        double value;
    } good[] = {{"0", 0}, {"007", 7}, {"-5", -5}, {"+2.5", 2.5}, {".5", .5}, {"5.", 5}, {"-", 0}, {"", 0}};
    for (const auto& row : good) {
        EXPECT_EQ(numberOf(row.text), row.value) << row.text;
    }
    for (const char* bad : {"1e5", "1.2.3", "--1", "1,5", " 1", "1 ", "0x1", "inf", "nan", "5-"}) {
        EXPECT_FALSE(numberOf(bad)) << bad;
    }
    EXPECT_GT(*numberOf(std::string(400, '9')), 1e300);
}

TEST(EntryRules, RefusalsNameTheReason) {
    const EntryFacts whole = number("5", 0, 100, 1, false), decimal = number("0.5", 0, 4, 0.1, true),
                     low = number("5", 1, 999999, 1, false);
    const EntryFacts bare = text(EntryField::DropList, ValueShape::Bare, "shut"),
                     quoted = text(EntryField::StringField, ValueShape::Quoted, "w", 0, 5),
                     lines = text(EntryField::StringField, ValueShape::Quoted, "w", 3),
                     file = text(EntryField::FileField, ValueShape::Bracketed, "a.wav"),
                     onOff = text(EntryField::Switch, ValueShape::Switch, "1"),
                     heading = text(EntryField::Heading, ValueShape::None, "");
    const struct {
        const EntryFacts& facts;
        std::string text;
        const char* reason;  // null: allowed
    } rows[] = {
        {whole, "0", nullptr},
        {whole, "100", nullptr},
        {whole, "101", "101 is too large (allowed: 0 to 100)."},
        {whole, "-1", "-1 is too small (allowed: 0 to 100)."},
        {whole, "2.5", "Enter a whole number such as 15"},
        {whole, "abc", "(allowed: 0 to 100)"},
        {whole, "", "A value is required here."},
        {whole, "-", "Enter a whole number such as 15"},
        {low, "0", "(allowed: 1 or more)"},
        {decimal, "2.5", nullptr},
        {decimal, "4.01", "too large (allowed: 0 to 4)"},
        {decimal, "1e1", "Enter a number such as -1.5"},
        {decimal, "0,5", "Enter a number such as -1.5"},
        {decimal, " 5", "No blank may stand in front of the number or behind it."},
        {whole, "5\t", "No blank may stand"},
        {whole, " x", "Enter a whole number such as 15"},
        {bare, "open", nullptr},
        {bare, "two words", "A blank"},
        {bare, "a;b", "\";\" is not allowed"},
        {bare, "a=b", "\"=\""},
        {bare, "a:b", "\":\""},
        {bare, "\"a\"", "can't begin with"},
        {bare, "<a>", "can't begin with"},
        {bare, "a//b", "comment"},
        {bare, "a/*b", "comment"},
        {bare, "/a", "comment"},
        {bare, "", "A value is required here."},
        {bare, "a\nb", "A line end"},
        {quoted, "", nullptr},
        {quoted, "a; b", nullptr},
        {quoted, "a\"b", "A double quote"},
        {quoted, "a\rb", "A line end"},
        {quoted, std::string("a\0b", 3), "value 0"},
        {quoted, "123456", "At most 5 characters fit here; these are 6."},
        {lines, "a\r\nb", nullptr},
        {file, "b c.wav", nullptr},
        {file, "a>b", "\">\" can't stand in a file name."},
        {file, " a", "blank"},
        {file, "a\n", "A line end"},
        {onOff, "0", nullptr},
        {onOff, "2", "A switch"},
        {heading, "x", "Nothing can be entered"},
    };
    for (const auto& row : rows) {
        const std::string said = entryRefusal(row.facts, row.text);
        EXPECT_EQ(said.empty(), !row.reason) << row.text << ": " << said;
        EXPECT_THAT(said, HasSubstr(row.reason ? row.reason : "")) << row.text;
    }
}

TEST(EntryModel, WritesWhatIsTypedInTheScriptsOwnForm) {
    EntryFacts feeds = text(EntryField::StringField, ValueShape::Quoted, "a\nb", 3), returns = feeds;
    feeds.bareFeeds = true;
    returns.value = "a\r\nb\nc";
    const EntryFacts brackets = text(EntryField::DropList, ValueShape::WithBrackets, "<a.bmp>");
    const struct {
        const EntryFacts& facts;
        std::string typed;
        const char* written;  // null: refused
    } rows[] = {
        {feeds, "x\r\ny", "x\ny"},
        {returns, "x\ny", "x\r\ny"},
        {returns, "a\nb\nc", "a\r\nb\nc"},
        {brackets, "b.bmp", "<b.bmp>"},
        {brackets, "<b c.bmp>", "<b c.bmp>"},
        {brackets, "", nullptr},
        {brackets, "<b", nullptr},
        {brackets, "<b><c>", nullptr},
        {brackets, "<b\n>", nullptr},
    };
    for (const auto& row : rows) {
        EntryModel model(row.facts);
        EXPECT_EQ(bool(model.edit(row.typed)), row.written != nullptr) << row.typed;
        EXPECT_EQ(model.value(), row.written ? row.written : row.facts.value) << row.typed;
    }
}

TEST(EntryModel, KeepsItsValueWhenAnEditIsRefused) {
    EntryModel model(number("5", 0, 10, 1, false));
    EXPECT_THAT(model.edit("11").why(), HasSubstr("allowed: 0 to 10"));
    EXPECT_EQ(model.GetValueText(), "5");
    EXPECT_FALSE(model.HasChanged());
    EXPECT_TRUE(model.edit("7"));
    EXPECT_TRUE(model.HasChanged());
    // The same number as the one loaded is that one, however it was typed.
    EXPECT_TRUE(model.edit("05"));
    EXPECT_EQ(model.GetValueText(), "5");
    EXPECT_FALSE(model.HasChanged());
}

TEST(EntryModel, TakesStoredValuesOutsideTheLimitsButNoneThatBreakTheDefinition) {
    EntryModel model(number("5", 0, 10, 1, false));
    EXPECT_TRUE(model.SetValueFromText("150\r"));
    EXPECT_EQ(model.GetValueText(), "150");
    EXPECT_FALSE(model.SetValueFromText("loud"));
    EXPECT_EQ(model.GetValueText(), "150");
    // What was loaded comes back, whatever it is.
    EntryModel odd(number("200", 0, 10, 1, false));
    EXPECT_TRUE(odd.edit("3"));
    EXPECT_TRUE(odd.edit("200"));
}

TEST(EntryModel, AWholeNumberInADecimalFieldKeepsItsPoint) {
    EntryFacts facts = number("0.5", 0, 10, 1, true);
    facts.keepPoint = true;
    EntryModel model(facts);
    EXPECT_TRUE(model.edit("3"));
    EXPECT_EQ(model.GetValueText(), "3.0");
    EXPECT_TRUE(model.SetValueFromText("3"));  // stored texts stay as they are
    EXPECT_EQ(model.GetValueText(), "3");
}

TEST(EntryModel, StepsStayInsideTheLimitsAndWithoutRoundingTails) {
    const struct {
        EntryFacts facts;
        int steps;
        const char* value;
    } rows[] = {
        {number("5", 0, 10, 2, false), 1, "7"},     {number("5", 0, 10, 2, false), 9, "10"},
        {number("5", 0, 10, 2, false), -9, "0"},    {number("0.1", 0, 4, 0.1, true), 2, "0.3"},
        {number("0.25", 0, 4, 0, true), 1, "0.26"}, {number("7", 0, 100, 0, false), 1, "8"},
        {number("7", 0, 0, 0.4, false), 1, "0"},    {number("-0.1", -1, 1, 0.1, true), 1, "0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(EntryModel(row.facts).stepped(row.steps), row.value) << row.facts.value;
    }
}

TEST(EntryModel, SliderPositionsAndValuesAgree) {
    EntryFacts facts = number("0.5", 0, 4, 0.1, true);
    facts.field = EntryField::Slider;
    EntryModel model(facts);
    EXPECT_EQ(model.sliderRange(), 40);
    EXPECT_EQ(model.sliderPosition(), 5);
    for (int i = 0; i <= model.sliderRange(); ++i) {
        ASSERT_TRUE(model.edit(model.textAt(i))) << i;
        ASSERT_EQ(model.sliderPosition(), i);
    }
    EXPECT_EQ(model.textAt(3), "0.3");
    EXPECT_EQ(model.textAt(999), "4");
    EXPECT_TRUE(model.SetValueFromText("77"));
    EXPECT_EQ(model.sliderPosition(), 40);
    // A range of more steps than a slider has positions.
    EntryFacts wide = number("0", -999999, 999999, 0.001, true);
    wide.field = EntryField::Slider;
    EntryModel fine(wide);
    EXPECT_EQ(fine.textAt(0), "-999999");
    EXPECT_EQ(fine.textAt(fine.sliderRange()), "999999");
    // No range at all.
    EntryModel none(number("5", 3, 1, 1, false));
    EXPECT_EQ(none.sliderRange(), 0);
    EXPECT_EQ(none.sliderPosition(), 0);
}

TEST(EditHistory, JoinsKeystrokesOfOneFieldOnly) {
    EditHistory history;
    history.add({{3, "", "a"}}, true);
    history.add({{3, "a", "ab"}}, true);
    history.add({{4, "x", "y"}}, true);
    history.endJoining();
    history.add({{4, "y", "z"}}, true);
    history.add({});
    ASSERT_TRUE(history.canUndo());
    EXPECT_EQ(history.undo()[0].before, "y");
    EXPECT_EQ(history.undo()[0].before, "x");
    const EditHistory::Step& joined = history.undo();
    EXPECT_EQ(joined[0].before, "");
    EXPECT_EQ(joined[0].after, "ab");
    EXPECT_FALSE(history.canUndo());
    EXPECT_EQ(history.redo()[0].after, "ab");
    history.add({{9, "1", "2"}});
    EXPECT_FALSE(history.canRedo());
    EXPECT_EQ(history.undo()[0].entry, 9u);
    EXPECT_EQ(history.undo()[0].entry, 3u);
}

TEST(Colour, IsReadInEachFormAndWrittenInTheFilesOwn) {
    const struct {
        const char *like, *typed, *written;
    } rows[] = {{"#102030", "#A0b0C0", "#a0b0c0"},   {"#10203040", "1 2 3", "#01020340"},
                {"16 32 48", "#102031", "16 32 49"}, {"16 32 48", "#102030", "16 32 48"},
                {"255,0, 0", "0 255 0", "0,255, 0"}, {"1.0 0.5 0", "#ff0080", "1.0 0.0 0.502"},
                {"1 2 3 77", "#040506", "4 5 6 77"}, {"red", "9,8,7", "#090807"},
                {"", "255 255 255", "#ffffff"}};
    for (const auto& row : rows) {
        EntryModel model({.field = EntryField::ColourField, .value = row.like});
        EXPECT_TRUE(model.edit(row.typed)) << row.typed;
        EXPECT_EQ(model.value(), row.written) << row.typed;
    }
    for (const char* bad : {"", "#12345", "#12345g", "1 2", "1 2 3 4 5", "1,,2,3", "256 0 0", "-1 0 0",
                            "1.5 0 0", "red", "1 2 3 ,"}) {
        EXPECT_FALSE(colourOf(bad)) << bad;
    }
}

}  // namespace
