#include "customize/BehaviorPanel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>

#include "plugin/host/HostAbi.h"
#include "tests/customize/Samples.h"
#include "util/OsFiles.h"

namespace zoka {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

BehaviorPanel panelOf(const std::string& script) {
    BehaviorPanel panel;
    panel.blockLength = static_cast<std::int32_t>(script.size());
    readBehaviorMarkup(script, panel);
    return panel;
}

// "kind id label=value (help)", a row each.
std::vector<std::string> rowsOf(const BehaviorPanel& panel) {
    std::vector<std::string> rows;
    for (const CustomEntry& row : panel.rows) {
        char id[16];
        std::snprintf(id, sizeof id, row.id < 0 ? "%d" : "0x%x", static_cast<unsigned>(row.id));
        rows.push_back(std::to_string(row.kind) + ' ' + id + ' ' + row.label + '=' + row.value +
                       (row.help.empty() ? "" : " (" + row.help + ')'));
    }
    return rows;
}

const std::vector<std::string> kGuidance = {"21 -1 No Behavior Panel Defined.=0.0",
                                            "21 -1 Use \"Properties\" to change values.=0.0"};

TEST(BehaviorPanel, readsTheRowsOfABlock) {
    const struct {
        const char* block;
        std::vector<std::string> rows;
        int declared;
    } rows[] = {
        {"// flag3: Asleep", {"22 0x1603 Asleep=0"}, 1},
        {"action a {\r\n\t// SKILL20:Speed 3.5 more\r\n}", {"31 0x1f14 Speed=3.5"}, 1},
        {"// skill1", {"31 0x1f01 =0"}, 1},
        {"// skill1: A\r2", {"31 0x1f01 A=0"}, 1},  // the line's tokens end there
        {"//\tFlag8 :: A:b,c\t7\tx", {"22 0x1608 A:b,c=7"}, 1},
        {"// skill1: A\n// entry: B\nvar b = 1;\n// id: 4\n// enable: C\n// ver: 2\n// help: h",
         {"31 0x1f01 A=0 (h)"},
         1},
        {"// section: S\n/// T\n// flag1: A\n", {"3 -1 S=", "3 -1 T=", "22 0x1601 A=0"}, 1},
        {"// flag1: A 1\n// help: one\n// entry_help: two\n// skill2: B",
         {"22 0x1601 A=1 (one\r\ntwo)", "31 0x1f02 B=0"},
         2},
        {"// desc: Walks\n/// and waits.\n// flag1: A", {"21 -1 Walks and waits.=", "22 0x1601 A=0"}, 1},
        {"// flag1: A\n/// B 1", {"22 0x1601 A=0", "22 0x1601 B=1"}, 2},
        {"// flag1: A\n// an ordinary comment\n/// B", {"22 0x1601 A=0"}, 1},
        {"// skill1: A\n// help: x\n/// y", {"31 0x1f01 A=0 (x\r\ny)"}, 1},
        {"/// flag1: A\nx = 1; // flag2: B\n//// flag3: C\n// flag4: D", {"22 0x1604 D=0"}, 1},
        {"// help: x\n// cntl: spin 0 1\n// title: T\n// image: p.bmp\n// text: t\n// section: S\n// flag1: "
         "A",
         {"0 -1 T=", "1 -1 p.bmp=", "2 -1 t=", "3 -1 S=", "22 0x1601 A=0"},
         1},
        {"// skill: A\n// flag: B\n// behavior: C\n// cmp_edit: D 1\n// skill21: E\n// flag9: F\n// skill0: "
         "G",
         kGuidance, 0},
        {"x = 1;", kGuidance, 0},
    };
    for (const auto& row : rows) {
        const BehaviorPanel panel = panelOf(row.block);
        EXPECT_EQ(rowsOf(panel), row.rows) << row.block;
        EXPECT_EQ(panel.declaredCount, row.declared) << row.block;
    }
}

TEST(BehaviorPanel, takesItsBlockAloneAndNothingBeyondTheScript) {
    const std::string script = "// flag1: A\n// flag2: B\n// flag3: C\n";
    const struct {
        std::int32_t start, length;
        std::vector<std::string> rows;
    } rows[] = {
        {12, 11, {"22 0x1602 B=0"}},
        {15, 8, kGuidance},  // in the middle of a line: no slashes
        {0, 35, {"22 0x1601 A=0", "22 0x1602 B=0", "22 0x1603 C=0"}},
        {24, 13, {}},
        {-1, 5, {}},
        {5, -1, {}},
        {INT32_MAX, INT32_MAX, {}},
    };
    for (const auto& row : rows) {
        BehaviorPanel panel;
        panel.blockStart = row.start;
        panel.blockLength = row.length;
        readBehaviorMarkup(script, panel);
        EXPECT_EQ(rowsOf(panel), row.rows) << row.start << '+' << row.length;
        EXPECT_EQ(panel.findings.count(), row.rows.empty() ? 1U : 0U);
    }
    BehaviorPanel panel;
    readBehaviorMarkup("", panel);
    EXPECT_TRUE(panel.rows.empty());
    panel.scriptName = "C:\\there\\is\\none.kez";
    LoadBehaviorPanel(panel);
    EXPECT_TRUE(panel.rows.empty());
}

TEST(BehaviorPanel, fallsBackOnNamesWhereNothingIsDeclared) {
    BehaviorPanel panel;
    panel.defaultSkillNames = {{2, "Speed"}, {5, "Reach"}};
    panel.defaultFlagNames = {{1, "Lit"}};
    panel.blockLength = 11;
    readBehaviorMarkup("// title: T", panel);
    EXPECT_THAT(rowsOf(panel),
                ElementsAre("0 -1 T=", "31 0x1f02 Speed=0.0", "31 0x1f05 Reach=0.0", "22 0x1601 Lit=0"));
    EXPECT_EQ(panel.declaredCount, 0);
    EXPECT_EQ(panel.caption(), "T");
    // A name that the script's own set lacks takes all texts with it.
    panel.defaultSkillNames = {{2, "\xCE\xA9"}};
    panel.blockLength = 13;
    readBehaviorMarkup("// title: T\xFCr", panel);
    EXPECT_THAT(rowsOf(panel), ElementsAre("0 -1 T\xC3\xBCr=", "31 0x1f02 \xCE\xA9=0.0", "22 0x1601 Lit=0"));
    EXPECT_EQ(panel.set, TextSet::Utf8);
}

TEST(BehaviorPanel, tellsWhatIsWrongAndWhere) {
    const struct {
        const char* block;
        int line;
        const char* what;
    } rows[] = {
        {"\n// skill21: A", 2, "there is no skill21"},
        {"// flag9: A", 1, "numbered 1 to 8"},
        {"// skill1: A\n// skill1: B", 2, "skill1 stands in line 1 already"},
        {"// skill1: A\n// cntl: slide 0 1", 2, "unknown control word"},
        {"// skill1: A 7\n\n// cntl: spin 0 5", 1, "lies outside its limits (allowed: 0 to 5)"},
        {"// skill1: A fast", 1, "is no number"},
        {"// skill1: A 1\n// cntl: drop 0 fast", 1, "no skill can hold it"},
        {"// flag1: A 2", 1, "neither 0 nor 1"},
        {"// flag1: A\n// cntl: spin 0 1", 2, "suits a skill alone"},
        {"// skil1: A", 1, "is no keyword"},
    };
    for (const auto& row : rows) {
        const BehaviorPanel panel = panelOf(row.block);
        ASSERT_EQ(panel.findings.count(), 1U) << row.block;
        EXPECT_EQ(panel.findings.kept()[0].line, row.line) << row.block;
        EXPECT_THAT(panel.findings.kept()[0].what, HasSubstr(row.what));
    }
}

// The actions of the sample scripts.
std::vector<std::string> sampleBlocks() {
    std::vector<std::string> blocks;
    for (const auto& file : std::filesystem::recursive_directory_iterator(test::sourceDir() / "samples")) {
        const std::string text = file.path().extension() == ".kez" ? test::readNative(file.path()) : "";
        for (size_t at = text.find("\naction "); at != text.npos;) {
            const size_t next = text.find("\naction ", at + 1);
            const std::string block = text.substr(at, next - at);
            if (block.find("// skill") != block.npos || block.find("// flag") != block.npos) {
                blocks.push_back(block);
            }
            at = next;
        }
    }
    return blocks;
}

TEST(BehaviorPanel, bearsEveryPrefixAndEveryChangedByte) {
    const std::string own =
        "action a {\r\n// title: T\r\n// skill1: Speed 3.5\r\n// cntl: slider 0 x 0.5\r\n// help: h\r\n"
        "// desc: d\r\n/// e\r\n// flag1: A 1\r\n// cntl: drop_list 0 1\r\n}";
    const auto look = [](const std::string& text) {
        const BehaviorPanel panel = panelOf(text);
        for (const CustomEntry& row : panel.rows) {
            const EntryFacts facts = behaviorFacts(row, panel.set);
            ASSERT_TRUE(row.kind != kSkill || (skillNumber(row) >= 1 && skillNumber(row) <= kEntitySkills));
            ASSERT_TRUE(row.kind != kFlag || (flagNumber(row) >= 1 && flagNumber(row) <= kEntityFlags));
            ASSERT_TRUE(row.kind != kTitle || facts.field == EntryField::Caption);
        }
    };
    // All of ASCII. What is beyond it is a part of words like any other, and tells the character set: of each kind that
    // UTF-8 knows one, and one that it does not.
    std::string bytes = "\x80\xC3\xE2\xF0\xFF";
    for (int value = 0; value < 0x80; ++value) {
        bytes += static_cast<char>(value);
    }
    // Where every read is checked it takes twenty times as long: every place then has some of the bytes in turn.
#ifdef __SANITIZE_ADDRESS__
    constexpr size_t step = 17;
#else
    constexpr size_t step = 1;
#endif
    std::vector<std::string> scripts = sampleBlocks();
    ASSERT_GE(scripts.size(), 3U);
    scripts.push_back(own);
    for (const std::string& script : scripts) {
        for (size_t i = 0; i <= script.size(); ++i) {
            look(script.substr(0, i));
        }
        for (size_t i = 0; i < script.size(); ++i) {
            std::string changed = script;
            for (size_t j = 0; j < bytes.size(); ++j) {
                if ((i + j) % step == 0) {
                    changed[i] = bytes[j];
                    look(changed);
                }
            }
        }
    }
}

}  // namespace
}  // namespace zoka
