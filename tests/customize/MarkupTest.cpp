#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "customize/CustomMarkup.h"
#include "customize/CustomScript.h"
#include "customize/MarkupLine.h"
#include "tests/support/TempFolder.h"

using namespace zoka;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

CustomScript parsed(const std::string& text) {
    CustomScript script;
    parseCustomText(text, script);
    return script;
}

// "kind value" of each entry, with the span where it isn't the value itself.
std::string entriesOf(const CustomScript& script) {
    std::string all;
    for (const CustomEntry& entry : script.entries) {
        const std::string span = script.text.substr(entry.valueStart, entry.valueLength);
        all += (all.empty() ? "" : "|") + std::to_string(entry.kind);
        if (entry.hasValue()) {
            all += ' ' + entry.value;
        }
        if (entry.hasValue() && span != entry.value) {
            all += " [" + span + "]";
        }
    }
    return all;
}

TEST(Keywords, AreWholeWordsInAnyCase) {
    EXPECT_EQ(LookupCustomKeyword("title"), 0);
    EXPECT_EQ(LookupCustomKeyword("ENTRY_NUMEDITF"), 12);
    EXPECT_EQ(LookupCustomKeyword("Skill20"), 51);
    EXPECT_EQ(LookupCustomKeyword("cmp_edit"), 53);
    for (int i = 0; i < kKeywordCount; ++i) {
        EXPECT_EQ(LookupCustomKeyword(customKeywordName(i)), i);
    }
    for (const char* word :
         {"", "t", "titl", "titles", "skill21", "skill0", "flag9", "entry_", "entry_numEditFF"}) {
        EXPECT_EQ(LookupCustomKeyword(word), -1) << word;
    }
}

TEST(Keywords, SlipsAreOneEditAwayAndNoHeaderWords) {
    const struct {
        const char* word;
        int keyword;
    } rows[] = {{"titel", kTitle},     {"entri", kEntry}, {"entrys", kEntry}, {"enabel", kEnable},
                {"sectoin", kSection}, {"hlep", kHelp},   {"CNTRL", kCntl},   {"entry", -1},
                {"data", -1},          {"note", -1},      {"type", -1},       {"tx", -1},
                {"sections2", -1},     {"idd", -1},       {"next", -1},       {"Test", -1},
                {"texts", -1},         {"titles", -1},    {"tile", -1},       {"skil", kSkill}};
    for (const auto& row : rows) {
        EXPECT_EQ(nearCustomKeyword(row.word), row.keyword) << row.word;
    }
}

TEST(Markup, KindsComeFromTheValue) {
    const struct {
        const char* text;
        const char* entries;
    } rows[] = {
        {"// entry: A\nvar count = 10;", "11 10"},
        {"// entry: A\nvar gain = 0.5;", "12 0.5"},
        {"// entry: A\nvar dir = -1;", "12 -1"},
        {"// entry: A\nvar dir = -;", "12 -"},
        {"// entry: A\nstring s = \"a b\";", "14 a b"},
        {"// entry: A\nbmap p = < x.bmp >;", "13 x.bmp [ x.bmp ]"},
        {"// entry: A\nvar x = y;", ""},
        {"// entry: A\nvar x = 1.2.3;", ""},
        {"// entry: A\nvar x = \"\";", ""},
        {"// entry: A\nvar x = < >;", ""},
        {"// entry_drop: A\nvar x = off;", "17 off"},
        {"// entry_path: A\nstring s = \"p 1\";", "16 p 1"},
        {"// entry_entity: A\nx = <e>;", "15 <e>"},
        {"// entry_text: A\nx = \"\";", ""},
        {"// title: T\n// image: a.bmp\n// text: x\n// section: S\n", "0|1|2|3"},
        {"//ENTRY:A\nvar x = 1;", "11 1"},
        {"//entry A\nvar x = 1;", "11 1"},
        {"// entry : A\nvar x = 1;", "11 1"},
        {"//: entry: A\nvar x = 1;", "11 1"},
        {"/ / entry: A\nvar x = 1;", ""},
        {"// entries: A\nvar x = 1;", ""},
        {"// entry_numEdit: A\nvar x = 1;", ""},
        // Where a definition's value is looked for.
        {"// entry: A\nvar x=5;", "11 5"},
        {"// entry: A\nstring s \"a;b\";", "14 a;b"},
        {"// entry: A\nvar v\n = \r\n\t-1.5 ;", "12 -1.5"},
        {"// entry: A\ns = \"one\r\ntwo\";", "14 one\r\ntwo"},
        {"// entry_drop: A\nx = 5//c", "17 5//c"},
        {"// entry_drop: A\na : b , c = d;", "17 d"},
        {"// entry_drop: A\n= 5;", ""},
        {"// entry_drop: A\nvar x; y = 5;", ""},
        {"// entry_drop: A\nvar x = ;", ""},
        {"// entry_drop: A\nvar x == 5;", ""},
        {"// entry_drop: A\nvar x", ""},
        {"// entry_drop: A\n/x = 5;", ""},
        {"// entry_drop: A\nvar x // = 5;", ""},
        {"// entry_drop: A\nx = <a\nb>;", ""},
        // What stands between an entry and its definition.
        {"// entry: A\n\nvar x = 1;", ""},
        {"// entry: A\n// help: h\n// note\n// ver: 3\nvar x = 1;", "11 1"},
        {"// entry: A\n// entry: B\nvar x = 1;\nvar y = 2;", "11 1"},
        {"// entry: A\n// section: B\nvar x = 1;", "3"},
        {"// help: h\nvar x = 1;", ""},
        // A definition that stops at a comment leaves the comment to be read.
        {"// entry: A\nvar x\n// entry: B\nvar y = 2;", "11 2"},
        {"// entry: A\ns = \"open\n// entry: B\nvar y = 2;", "11 2"},
        {"// entry: A\ns = <open\n// entry: B\nvar y = 2;", "11 2"},
        {"// entry: A\ns = \"one\n// entry: no\nvar y = 3;\ntwo\";\n// entry: B\nvar y = 2;",
         "14 one\n// entry: no\nvar y = 3;\ntwo|11 2"},
        // Actions are skipped up to their own line or a blank one.
        {"// action: a\n// entry: A\nvar x = 1;\naction a\n// entry: B\nvar y = 2;", "11 2"},
        {"// action: a\n// entry: A\nvar x = 1;\n\n// entry: B\nvar y = 2;", "11 2"},
        {"// action: a\nACTIONS\n// entry: B\nvar y = 2;", "11 2"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(entriesOf(parsed(row.text)), row.entries) << row.text;
    }
}

TEST(Markup, SwitchesPointAtTheSlashesOrTheLine) {
    const struct {
        const char* text;
        const char* entries;
        size_t firstStart;
    } rows[] = {
        {"// enable: A\n  define X;", "8 1 []", 13},
        {"// enable: A\n  //define X;", "8 0 [//]", 15},
        {"// enable: A\n// define X;\n//define Y;\ndefine Z;", "8 0 [//]|8 0 [//]|8 1 []", 13},
        {"// enable: A\n//X;\n\n//Y;", "8 0 [//]", 13},
        {"// enable: A\n// skill: x\ndefine Z;", "8 1 []", 25},
        {"// enable: A\n//\ndefine Z;", "8 1 []", 16},
    };
    for (const auto& row : rows) {
        const CustomScript script = parsed(row.text);
        EXPECT_EQ(entriesOf(script), row.entries) << row.text;
        ASSERT_FALSE(script.entries.empty());
        EXPECT_EQ(script.entries[0].valueStart, row.firstStart) << row.text;
    }
}

TEST(Markup, LabelsHelpIdsAndNumbers) {
    const CustomScript script = parsed(
        "// ver: 12\n// date: 260801\n"
        "// entry_text: 3, 180, Words: all\n// help: one\n// entry_help:two\n// id: 7\r\n \tstring s = "
        "\"x\";\n"
        "// entry_text: 3, Words\nstring s = \"x\";\n"
        "// entry: \t Lone \t\r\n// id: 2147483648\nvar x = 1;");
    EXPECT_EQ(script.version, 12);
    EXPECT_EQ(script.date, 260801);
    std::string all;
    for (const CustomEntry& one : script.entries) {
        all += std::to_string(one.line) + '{' + one.label + '}' + one.help + '#' + std::to_string(one.id) +
               ' ' + std::to_string(one.textParam1) + ' ' + std::to_string(one.textParam2) + '\n';
    }
    EXPECT_EQ(all, "3{Words: all}one\r\ntwo#7 3 180\n8{3, Words}#-1 0 0\n10{Lone}#-1 0 0\n");
}

TEST(Markup, ControlsAndTheirLimits) {
    const struct {
        const char* text;
        int kind;
        double low, high, step;
    } rows[] = {
        {"spin 0 10 0.5", 0, 0, 10, 0.5},  {"SPIN x 5", 0, -999999, 5, 0},
        {"slider 1 X x", 3, 1, 999999, 1}, {"slider", 3, -999999, 999999, 0},
        {"spin 1e3", 0, 1, 999999, 0},     {"drop_pair", 2, 0, 0, 0},
        {"spin 0 5 x", 0, 0, 5, 0},        {"drop a b", 1, 0, 0, 0},
        {"slide 1 2 3", -1, 0, 0, 0},      {"", -1, 0, 0, 0},
    };
    for (const auto& row : rows) {
        CustomEntry entry;
        EXPECT_EQ(readControl(row.text, entry, nullptr), row.kind >= 0) << row.text;
        EXPECT_EQ(entry.controlKind, row.kind) << row.text;
        EXPECT_EQ(entry.minimum, row.low) << row.text;
        EXPECT_EQ(entry.maximum, row.high) << row.text;
        EXPECT_EQ(entry.step, row.step) << row.text;
    }
    CustomEntry list;
    readControl("drop_list a b", list, nullptr);
    readControl("drop c\t d", list, nullptr);
    EXPECT_THAT(list.options, ElementsAre("c", "d"));
}

// A limit of 80,000 digits took six seconds.
TEST(Markup, LimitsOfManyCharactersTakeNoTime) {
    for (const char character : {'1', ' ', 'x'}) {
        CustomEntry entry;
        const auto start = std::chrono::steady_clock::now();
        readControl("spin " + std::string(800000, character) + " 5", entry, nullptr);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)) << character;
        EXPECT_EQ(entry.controlKind, 0);
    }
}

TEST(Markup, APairBelongsToItsValueAndIsWrittenLikeIt) {
    const struct {
        const char* value;
        std::vector<std::string> pair;
    } rows[] = {{"no", {"yes", "no"}},   {"On", {"On", "Off"}}, {"FALSE", {"TRUE", "FALSE"}},
                {"1", {"1", "0"}},       {"0", {"1", "0"}},     {"other", {"on", "off"}},
                {"<No>", {"Yes", "No"}}, {"", {"on", "off"}}};
    for (const auto& row : rows) {
        EXPECT_EQ(dropPairOf(row.value), row.pair) << row.value;
    }
}

TEST(Markup, CompletesTheLastLineInMemoryOnly) {
    for (const char* end : {"", "\n", "\r", "\r\n"}) {
        const std::string text = std::string("// entry: A\r\nvar x = 5") + end;
        const CustomScript script = parsed(text);
        EXPECT_EQ(entriesOf(script), "11 5");
        EXPECT_TRUE(script.text.ends_with("\r\n"));
        EXPECT_EQ(script.fileText(), text);
    }
}

// A script of millions of entries is refused before an editor of 32 bits has no memory left.
TEST(Markup, AScriptWithTooManyEntriesIsRefused) {
    std::string text;
    for (int i = 0; i < 1'200'000; ++i) {
        text += "// entry: A\nv=1;\n";
    }
    const test::TempFolder folder;
    CustomScript script;
    const std::string why = LoadCustomScript(folder.write("a.kez", text), script).why();
    EXPECT_TRUE(why.starts_with("it is too large to be customized: more than ")) << why;
    EXPECT_TRUE(script.entries.empty());
}

TEST(Markup, FindingsTellLineFaultAndWhatWasDone) {
    const struct {
        const char* text;
        int line;
        const char* what;
    } rows[] = {
        {"\n// entry: A\n\nvar x = 1;", 2, "\"A\" found no value: a blank line follows; it was left out"},
        {"// entry: A\nvar x;", 1, "the definition ends without one"},
        {"// entry: A\nvar x = y;", 1, "\"y\" is neither a number"},
        {"// entry: A\n// id: 1\nvar x = 1;\n// entry: B\n// id: 1\nvar y = 1;", 4,
         "is that of \"A\" in line 1"},
        {"// entry: A\n// cntl: spin 0 10 1\nvar x = 11;", 1, "lies outside its limits (allowed: 0 to 10)"},
        {"// entry: A\n// cntl: spinn 0 10 1\nvar x = 11;", 2, "unknown control word"},
        {"// entri: A\nvar x = 11;", 1, "is \"entry\" meant?"},
        {"// action: a\n// skil1: A\naction a", 2, "is \"skill\" meant?"},
        {"// entry_drop: A\n// cntl: drop a b\nvar x = c;", 1, "is not among its choices"},
        {"// entry_drop: A\n// cntl: drop_pair\nvar x = maybe;", 1, "is not among its choices"},
        {"// entry: A\nvar x = 5; var y = 6; // z", 2, "\"var y = 6; // z\" follows the value of \"A\""},
        {"// entry: A\nvar x = 5 + 3;", 2, "\"+ 3;\" follows"},
        {"// entry: A\n// id: 0\nvar x = 5;", 2, "is no number from 1"},
        {"// entry: A\n// id: -7\nvar x = 5;", 2, "is no number from 1"},
        {"// entry: A\n// id: 2147483648\nvar x = 5;", 2, "is no number from 1"},
        {"// id: 4\nvar x = 5;", 1, "\"id\" belongs to no entry"},
        {"// enable: A\n//x;\n//y;\n", 3, "several commented lines"},
        {"// enable: A\ntext = 5;\n", 1, "begins with the keyword \"text\""},
        {"// entry: A\n// cntl: slider 0 ten 1\nvar x = 0;", 2, "\"ten\" in the limits"},
        {"// entry: A\n// cntl: slider 9 1 1\nvar x = 5;", 2, "above its maximum"},
        {"// entry: A\ns = \"open;\n", 1, "never closed"},
        {"// entry: A\n// cntl: drop_list a b\nvar x = 5;", 1, "a list of choices is no control for \"A\""},
        {"// entry_text: A\n// cntl: slider 0 9 1\nx = \"t\";", 1,
         "a spin or slider is no control for \"A\""},
        {"// entry_drop: A\n// cntl: drop_list a, b, c\nx = c;", 2, "the comma of \"a,\""},
        {"// entry_text: 3, A\nx = \"t\";", 1, "\"3, A\" begins with one number"},
        {"\xFF\xFE/", 1, "UTF-16"},
    };
    for (const auto& row : rows) {
        const CustomScript script = parsed(row.text);
        ASSERT_EQ(script.findings.count(), 1u) << row.text;
        EXPECT_EQ(script.findings.kept()[0].line, row.line) << row.text;
        EXPECT_THAT(script.findings.kept()[0].what, HasSubstr(row.what)) << row.text;
    }
    for (const char* good :
         {"// next: B", "// entry_drop: A\n// cntl: drop_list <a> <b>\nx = <b>;",
          "// entry_drop: A\n// cntl: drop_list a b\nx = <b>;",
          "// entry_drop: A\n// cntl: drop_pair\nx = <Yes>;", "\xEF\xBB\xBF// entry: A\nvar x = 5;\n",
          "// data: weather.kez", "// test of things", "// date: 1", "// enable: A\n//x;\n\n",
          "// entry: A\nvar x = 5; // five\n", "// entry: A\nvar x = 1, y = 2;",
          "// skill1: Speed 3\n// cntl: spin 1 2 1\n// help: h\naction a"}) {
        EXPECT_THAT(parsed(good).findings.kept(), IsEmpty()) << good;
    }
}

}  // namespace
