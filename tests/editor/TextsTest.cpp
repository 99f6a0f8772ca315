#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/editor/DriveScript.h"
#include "tools/editor/LevelEdit.h"
#include "tools/editor/LevelMap.h"

namespace zoka {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

TEST(LevelMap, readsWhatIsNamedAndWritesItBackEqual) {
    const auto level = readLevelMap(
        "// a level\r\nlevel 1\r\nentity a\r\n  //the  first \r\n action s.kez walk\r\n position 1 -2.5 "
        "3\r\n skill 1 0.1\r\n "
        "skill 20 7\n"
        " flag 8\n flag 1\nend\n// then\nentity b\nend\n//");
    ASSERT_TRUE(level) << level.why();
    ASSERT_EQ(level->entities.size(), 2U);
    const LevelEntity& a = level->entities[0];
    EXPECT_EQ(a.script + " " + a.action, "s.kez walk");
    EXPECT_THAT(a.position, ElementsAre(1.0F, -2.5F, 3.0F));
    EXPECT_EQ(a.skills[0], 0.1F);
    EXPECT_EQ(a.skills[19], 7.0F);
    EXPECT_EQ(a.flags, 0x81U);
    EXPECT_EQ(level->entities[1].flags, 0U);

    const std::string written = writeLevelMap(*level);
    const auto again = readLevelMap(written);
    ASSERT_TRUE(again) << again.why();
    EXPECT_EQ(again->entities[0].skills, a.skills);
    EXPECT_THAT(written, StartsWith("level 1\r\n\r\n// a level\r\n//the  first\r\nentity a\r\n"));
    EXPECT_THAT(written,
                EndsWith("end\r\n\r\n// then\r\nentity b\r\n    position 0 0 0\r\nend\r\n\r\n//\r\n"));
    EXPECT_EQ(writeLevelMap(*again), written);
}

TEST(LevelMap, saysWhatIsWrongAndWhere) {
    const struct {
        const char* text;
        const char* error;
    } rows[] = {
        {"", "line 1: a level begins with \"level 1\""},
        {"level 2", "line 1: a level begins with \"level 1\""},
        {"level 1\nentity a b", "line 2: expected \"entity NAME\""},
        {"level 1\nskill 1 2", "line 2: expected \"entity NAME\""},
        {"level 1\nentity a\n", "line 2: the entity \"a\" has no end"},
        {"level 1\nentity a\naction s.kez", "line 3: action needs a script file and an action's name"},
        {"level 1\nentity a\nposition 1 2", "line 3: position needs three numbers"},
        {"level 1\nentity a\nposition 1 2 nan", "line 3: position needs three numbers"},
        {"level 1\nentity a\nskill 21 1", "line 3: skill needs a number from 1 to 20 and a value"},
        {"level 1\nentity a\nskill 1 x", "line 3: skill needs a number from 1 to 20 and a value"},
        {"level 1\nentity a\nflag 0", "line 3: flag needs a number from 1 to 8"},
        {"level 1\nentity a\nflag 1 2", "line 3: too many words after flag"},
        {"level 1\nentity a\nsize 3", "line 3: unknown word \"size\""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(readLevelMap(row.text).why(), row.error) << row.text;
    }
}

TEST(LevelMap, findsAnActionsTextPastCommentsAndQuotes) {
    const struct {
        const char* script;
        const char* action;
        const char* block;  // null: none
    } rows[] = {
        {"action a { x; }\naction b { y; }", "b", "action b { y; }"},
        {"ACTION A\r\n{ {1} {2} } rest", "a", "ACTION A\r\n{ {1} {2} }"},
        {"action a { // }\n s = \"}\"; /* } */ }!", "a", "action a { // }\n s = \"}\"; /* } */ }"},
        {"// action a { }\naction a { 1 }", "a", "action a { 1 }"},
        {"action a { open", "a", "action a { open"},
        {"x;\n// old\n  //  Action : A\n// skill1: x\naction a { }", "a",
         "  //  Action : A\n// skill1: x\naction a { }"},
        {"// action: b\n\n// action: a\nx; action a { }", "a", "action a { }"},
        {"// action: ab\naction a { }", "a", "action a { }"},
        {"// action: a\n\n// note\naction a { }", "a", "action a { }"},
        {"action ab { }", "a", nullptr},
        {"reaction a { }", "a", nullptr},
        {"action", "a", nullptr},
        {"action a; action b { x }", "a", "action a;"},
        {"action a; action b { x; } action A { y; }", "a", "action A { y; }"},
        {"action a { action b { } } x", "a", "action a { action b { } }"},
    };
    for (const auto& row : rows) {
        const std::string script = row.script;
        const auto block = findActionBlock(script, row.action);
        ASSERT_EQ(block.has_value(), row.block != nullptr) << script;
        if (block) {
            EXPECT_EQ(script.substr(block->start, block->length), row.block);
        }
    }
}

TEST(LevelMap, namesTheActionsOfAScript) {
    std::vector<std::string> names;
    for (const ScriptAction& one : actionsOf("// action no { }\naction a { }\nACTION b\n{ action = 1; "
                                             "}\naction A; action { } action c { {}")) {
        names.push_back(one.name + (one.hasBody ? " body" : "") + (one.isClosed ? " closed" : ""));
    }
    EXPECT_THAT(names, ElementsAre("a body closed", "b body closed", "A closed", "c body"));
}

TEST(LevelEdit, changesOneValueAndNoOtherByte) {
    const std::string text =
        "level 1\r\n// c\r\nentity a\r\n\tskill\t1  2 \r\n\tflag 2\r\n // x\r\nend\r\nentity b\nend";
    const struct {
        LevelValue change;
        const char* from;  // what is replaced in the text
        const char* to;
    } rows[] = {
        {{"a", true, 1, 0.5F}, "1  2 ", "1  0.5 "},
        {{"a", true, 3, 4}, " // x\r\n", " // x\r\n\tskill    3 4\r\n"},
        {{"a", true, 3, 0}, "", ""},
        {{"a", false, 2, 0}, "\tflag 2\r\n", ""},
        {{"a", false, 2, 1}, "", ""},
        {{"a", false, 8, 1}, " // x\r\n", " // x\r\n\tflag     8\r\n"},
        {{"b", true, 20, -1}, "entity b\n", "entity b\n    skill    20 -1\n"},
    };
    for (const auto& row : rows) {
        std::string expected = text;
        const std::string from = row.from;
        expected.replace(expected.find(from), from.size(), row.to);
        const auto edited = withLevelValue(text, row.change);
        ASSERT_TRUE(edited);
        EXPECT_EQ(*edited, expected);
        EXPECT_TRUE(readLevelMap(*edited)) << readLevelMap(*edited).why();
    }
    EXPECT_FALSE(withLevelValue(text, {"c", true, 1, 1}));
}

TEST(DriveScript, splitsWordsAndPutsInValues) {
    const auto read = readDriveScript(
        "# comment\n\n click \"a \"\"b\"\" c\"\tx#y\r\nopen ${DIR}\\s\nprint \"\"", {{"DIR", "C:\\a b"}});
    ASSERT_TRUE(read) << read.why();
    const DriveScript& script = *read;
    ASSERT_EQ(script.lines.size(), 3U);
    EXPECT_EQ(script.lines[0].number, 3);
    EXPECT_THAT(script.lines[0].words, ElementsAre("click", "a \"b\" c", "x#y"));
    EXPECT_THAT(script.lines[1].words, ElementsAre("open", "C:\\a b\\s"));
    EXPECT_THAT(script.lines[2].words, ElementsAre("print", ""));
}

TEST(DriveScript, pairsNestedRepeats) {
    const auto read = readDriveScript("repeat 2\nrepeat 3\nclick a\nend\nend", {});
    ASSERT_TRUE(read) << read.why();
    const DriveScript& script = *read;
    EXPECT_EQ(script.lines[0].times, 2);
    EXPECT_EQ(script.lines[0].partner, 4U);
    EXPECT_EQ(script.lines[3].partner, 1U);
    EXPECT_EQ(script.lines[4].partner, 0U);
}

TEST(DriveScript, saysWhatIsWrongAndWhere) {
    const struct {
        const char* text;
        const char* error;
    } rows[] = {
        {"a\nclick \"b", "2: a quoted word has no end"},
        {"open ${NO}", "1: no value for ${NO} (give it with --set NAME=VALUE)"},
        {"open ${", "1: no value for ${ (give it with --set NAME=VALUE)"},
        {"repeat", "1: repeat needs a count of 1 or more"},
        {"repeat 0\nend", "1: repeat needs a count of 1 or more"},
        {"repeat 2x\nend", "1: repeat needs a count of 1 or more"},
        {"a\nrepeat 2\n", "2: repeat without end"},
        {"end", "1: end without repeat"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(readDriveScript(row.text, {}).why(), row.error) << row.text;
    }
}

}  // namespace
}  // namespace zoka
