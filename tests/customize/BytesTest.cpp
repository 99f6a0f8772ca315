// Saving changes the values' spans and not one byte else: on every sample, in every form, and on random text.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "customize/EntriesText.h"
#include "customize/ScriptRows.h"
#include "customize/ValueFile.h"
#include "customize/WriteBack.h"
#include "tests/customize/Checks.h"
#include "tests/customize/Edits.h"
#include "tests/customize/Samples.h"

using namespace zoka;
using namespace zoka::test;

namespace {

ScriptRows panelOf(const std::string& text) {
    ScriptRows panel;
    parseCustomText(text, panel.script);
    panel.makeRows();
    return panel;
}

std::string savedText(const ScriptRows& panel) {
    const std::vector<ScriptEdit> edits = editsOf(panel.script);
    EXPECT_EQ(editFault(panel.script, edits), "");
    return editedText(panel.script.fileText(), edits);
}

TEST(Bytes, RandomEditsOfEverySampleReadBackAndReverse) {
    const auto samples = sampleScripts();
    ASSERT_GE(samples.size(), 60u);
    std::minstd_rand random(7);
    size_t edited = 0, certain[2] = {0, 0};
    for (const auto& [name, bytes] : samples) {
        for (const std::string& form : formsOf(bytes)) {
            SCOPED_TRACE(name);
            ScriptRows first = panelOf(form);
            for (size_t i = 0; i < first.size(); ++i) {
                if (!first.script.entries[i].hasValue() || random() % 4 == 0) {
                    continue;
                }
                EXPECT_EQ(first.row(i).edit(otherValue(first.row(i), random)).why(), "");
            }
            const std::vector<ScriptEdit> edits = editsOf(first.script);
            edited += edits.size();
            for (const ScriptEdit& edit : edits) {
                if (keepsEntries(first.script, {edit})) {
                    ++certain[first.script.entries[edit.entry].kind == kEnable];
                }
            }
            ASSERT_EQ(scriptFault(form, static_cast<unsigned>(edited)), "");
            ScriptRows second = panelOf(savedText(first));
            ASSERT_EQ(second.size(), first.size());
            ASSERT_TRUE(notReadBack(first.script, second.script).empty());
            for (size_t i = 0; i < first.size(); ++i) {
                ASSERT_TRUE(second.row(i).SetValueFromText(first.row(i).loadedValue()));
            }
            ASSERT_EQ(savedText(second), form);
        }
    }
    EXPECT_GT(edited, 2000u);
    // Most edits need no second reading, switches among them; scriptFault has compared the two.
    EXPECT_GT(certain[0], edited / 2);
    EXPECT_GT(certain[1], 100u);
}

// All of it takes the better part of an hour. A run takes one part of kParts, which ZOKA_PART chooses (from 0
// on; "all" takes every one).
constexpr size_t kParts = 1000;

bool isTaken(size_t number) {
    static const char* const chosen = std::getenv("ZOKA_PART");
    static const bool all = chosen && std::string_view(chosen) == "all";
    static const size_t part = chosen && !all ? std::strtoul(chosen, nullptr, 10) : 0;
    return all || number % kParts == part;
}

// Calls `fault` with each prefix and with each one-byte change.
void breakEveryByte(const std::string& whole,
                    const std::function<std::string(const std::string&, unsigned)>& fault) {
    size_t number = 0;
    for (size_t length = 0; length < whole.size(); ++length) {
        if (!isTaken(number += 20)) {
            continue;
        }
        ASSERT_EQ(fault(whole.substr(0, length), static_cast<unsigned>(length)), "") << length;
    }
    std::string changed = whole;
    for (size_t at = 0; at < whole.size(); ++at) {
        for (int value = 0; value < 256; ++value) {
            if (!isTaken(++number)) {
                continue;
            }
            changed[at] = static_cast<char>(value);
            ASSERT_EQ(fault(changed, static_cast<unsigned>(number)), "") << at << " as " << value;
        }
        changed[at] = whole[at];
    }
}

TEST(Bytes, EveryPrefixAndEveryByteChangedOfTheSamplesIsTaken) {
    for (const auto& [name, bytes] : sampleScripts()) {
        SCOPED_TRACE(name);
        breakEveryByte(bytes, scriptFault);
        CustomScript script;
        parseCustomText(bytes, script);
        breakEveryByte(valueFileText(script, false),
                       [](const std::string& changed, unsigned) { return valueFileFault(changed); });
    }
}

TEST(Bytes, SeedsAndFindingsOfTheFuzzerHold) {
    size_t files = 0;
    for (const char* folder : {"seeds", "regressions"}) {
        for (const bool script : {true, false}) {
            const auto path = zoka::test::sourceDir() / "fuzz" / folder / (script ? "markup" : "valuefile");
            if (!std::filesystem::exists(path)) {
                continue;
            }
            for (const auto& file : std::filesystem::directory_iterator(path)) {
                const std::string bytes = readNative(file.path());
                EXPECT_EQ(script ? scriptFault(bytes, 1) : valueFileFault(bytes), "") << file.path();
                ++files;
            }
        }
    }
    EXPECT_GT(files, 5u);
}

TEST(WriteBack, SwitchesPutTwoSlashesAtTheLineStartAndTakeTheTwoThatTheyFind) {
    const struct {
        const char* before;
        const char* after;
    } rows[] = {
        {"// enable: A\r\n  define X;", "// enable: A\r\n//  define X;"},
        {"// enable: A\n  //define X;\n", "// enable: A\n  define X;\n"},
        {"// enable: A\n// define X;\n//Y;\n", "// enable: A\n define X;\nY;\n"},
    };
    for (const auto& row : rows) {
        ScriptRows panel = panelOf(row.before);
        for (size_t i = 0; i < panel.size(); ++i) {
            EXPECT_TRUE(panel.row(i).edit(panel.row(i).isOn() ? "0" : "1"));
        }
        EXPECT_EQ(savedText(panel), row.after);
    }
}

TEST(WriteBack, OverlappingAndBackwardSpansAreRefused) {
    ScriptRows panel = panelOf("// entry: A\nvar x = 10;\n// entry: B\nvar y = 20;\n");
    EXPECT_TRUE(panel.row(0).edit("1"));
    EXPECT_TRUE(panel.row(1).edit("2"));
    panel.script.entries[1].valueStart = panel.script.entries[0].valueStart + 1;
    EXPECT_EQ(editFault(panel.script, editsOf(panel.script)),
              "The value of \"B\" (line 3) lies within what another change replaces.");
    panel.script.entries[1].valueStart = panel.script.fileLength - 1;
    EXPECT_EQ(editFault(panel.script, editsOf(panel.script)),
              "The value of \"B\" (line 3) lies behind the script's end.");
}

TEST(WriteBack, LineChangesShowWholeLinesOnce) {
    ScriptRows panel = panelOf(
        "// entry: A\r\nvar x = 1; // one\r\n// enable: B\r\n//define B;\r\n// entry_text: 3, 90, C\r\ns = "
        "\"a\r\nb\";\r\n"
        "// entry: D\r\nvar d = 4;");
    EXPECT_TRUE(panel.row(0).edit("2"));
    EXPECT_TRUE(panel.row(1).edit("1"));
    EXPECT_TRUE(panel.row(2).edit("c"));
    EXPECT_TRUE(panel.row(3).edit("5"));
    std::string text;
    for (const LineChange& one : lineChanges(panel.script.fileText(), editsOf(panel.script))) {
        text += std::to_string(one.line) + '{' + one.before + "}{" + one.after + '}';
    }
    EXPECT_EQ(text,
              "2{var x = 1; // one}{var x = 2; // one}4{//define B;}{define B;}6{s = \"a\r\nb\";}{s = \"c\";}"
              "9{var d = 4;}{var d = 5;}");
}

TEST(Golden, TheEntriesOfEverySampleAreThoseApproved) {
    for (const auto& [name, bytes] : sampleScripts()) {
        CustomScript script;
        parseCustomText(bytes, script);
        const auto path = zoka::test::sourceDir() / "tests/customize/golden" / (name + ".golden");
        EXPECT_EQ(entriesText(script), readNative(path))
            << "docs/customize-markup.md tells how to approve a change";
    }
}

}  // namespace
