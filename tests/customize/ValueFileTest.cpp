#include "customize/ValueFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "customize/CarryValues.h"
#include "customize/ScriptRows.h"
#include "tests/customize/Samples.h"
#include "tests/support/FaultyOsFiles.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TempFolder.h"

using namespace zoka;
using namespace zoka::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char kScript[] =
    "// ver: 3\n// date: 260801\n// entry: A\n// id: 4\nvar a = 5;\n// entry: B\n// id: 7\nstring b = "
    "\"x\";\n"
    "// entry: No id\nvar c = 1;\n// entry: Twice\n// id: 4\nvar d = 6;\n";

struct ValueFile : testing::Test {
    void load(const std::string& text) {
        parseCustomText(text, panel.script);
        panel.script.scriptPath = folder.path("s.kez");
        panel.makeRows();
    }
    std::string values() const {
        std::string all;
        for (size_t i = 0; i < panel.size(); ++i) {
            all += (i ? "|" : "") + panel.row(i).value();
        }
        return all;
    }

    TempFolder folder;
    ScriptedPrompt prompt;
    ScriptRows panel;
};

TEST_F(ValueFile, HoldsTheRecordsOfEntriesWithAnId) {
    load(kScript);
    EXPECT_TRUE(panel.row(0).edit("8"));
    ASSERT_TRUE(WriteValueFile(panel.script, false, prompt));
    EXPECT_EQ(folder.read("s.kez.zoka"), "1\n3\n260801\n\n4\n11\n5\n\n7\n14\nx\n\n4\n11\n6\n\n");
    ASSERT_TRUE(WriteValueFile(panel.script, true, prompt));
    EXPECT_EQ(folder.read("s.kez.zoka"), "1\n3\n260801\n\n4\n11\n8\n\n7\n14\nx\n\n4\n11\n6\n\n");
    load("// entry: No id\nvar c = 1;\n");
    ASSERT_TRUE(WriteValueFile(panel.script, true, prompt));
    EXPECT_EQ(folder.read("s.kez.zoka"), "1\n0\n0\n\n");
}

TEST_F(ValueFile, ReadingFollowsTheLines) {
    const std::string longValue(600, 'v');
    const std::string warning = "Warning: No match found for value";
    const struct {
        std::string bytes;
        const char* values;  // of the script's four entries
        std::vector<std::string> messages;
    } rows[] = {
        {"", "5|x|1|6", {"Error reading file.\n(Code 2802)"}},
        {"1\n", "5|x|1|6", {"Error reading file.\n(Code 2803)"}},
        {"1\n3\n", "5|x|1|6", {"Error reading file.\n(Code 2804)"}},
        {"1\n3\n0\n", "5|x|1|6", {}},
        {"1\n3\n0", "5|x|1|6", {}},
        {"1\n3\n0\n\n", "5|x|1|6", {}},
        {"1\n3\n0\n\n4\n", "5|x|1|6", {"Error reading file (no type).\n(Code 2807)"}},
        {"1\n3\n0\n\n4\n11\n", "5|x|1|6", {"Error reading file (no type).\n(Code 2808)"}},
        {"1\n3\n0\n\n4\n11\n9", "9|x|1|6", {}},
        {"1\n3\n0\n\n4\n11\n9\n\n7\n14\n", "9|x|1|6", {"Error reading file (no type).\n(Code 2808)"}},
        // Only the first of two entries with one id, which both records reach.
        {"1\n3\n0\n\n4\n11\n8\n\n4\n11\n9\n\n", "9|x|1|6", {}},
        // The kind plays no part; CR LF is accepted.
        {"1\r\n3\r\n0\r\n\r\n7\r\n99\r\nhello\r\n\r\n", "5|hello|1|6", {}},
        {"1\n3\n0\n\n5\n11\n8\n\n7\n14\ny\n\n", "5|y|1|6", {warning}},
        // After an id of 0 one line alone is passed over: "7", and in the next row "9", are then read as ids.
        {"1\n3\n0\n\n0\n11\n7\n14\nz\n\n", "5|z|1|6", {}},
        {"1\n3\n0\n\n0\n11\n9\n\n7\n14\nz\n\n", "5|x|1|6", {warning}},
        // A long line counts as two: its rest is taken for the empty line.
        {"1\n3\n0\n\n7\n14\n" + longValue + "\n\n4\n11\n9\n\n", "", {}},
    };
    for (const auto& row : rows) {
        load(kScript);
        folder.write("s.kez.zoka", row.bytes);
        prompt.asked.clear();
        const bool error = !row.messages.empty() && row.messages.back().starts_with("Error");
        EXPECT_EQ(ReadValueFile(panel.script, prompt), !error) << row.bytes;
        if (*row.values) {
            EXPECT_EQ(values(), row.values) << row.bytes;
            EXPECT_EQ(prompt.texts(), row.messages) << row.bytes;
            for (const auto& box : prompt.asked) {
                EXPECT_EQ(box.icon, box.text == warning ? PromptIcon::Warning : PromptIcon::Error);
            }
        } else {
            EXPECT_EQ(panel.row(1).value(), longValue.substr(0, 511));
        }
    }
}

TEST_F(ValueFile, MissingAndUnwritableFilesHaveTheirMessages) {
    load(kScript);
    EXPECT_FALSE(ReadValueFile(panel.script, prompt));
    folder.write("s.kez.zoka", "old");
    {
        FaultyOsFiles disk([](int, std::string_view op, const std::string&) { return op == "write"; });
        EXPECT_THAT(WriteValueFile(panel.script, true, prompt).why(), testing::HasSubstr("injected fault"));
    }
    EXPECT_EQ(folder.read("s.kez.zoka"), "old");
    EXPECT_THAT(prompt.texts(),
                ElementsAre("Error open file to read\n(Code 2801)", "Error open file to write\n(Code 2701)"));
}

TEST_F(ValueFile, KnowsWhatItCannotCarry) {
    const auto text = [](size_t length) {
        return "// entry: A\n// id: 1\ns = \"" + std::string(length, 'x') + "\";\n";
    };
    const struct {
        std::string script;
        bool carried;
    } rows[] = {{kScript, false},  // an id twice
                {"// entry_text: 3, 900, A\n// id: 1\ns = \"a\nb\";\n", false},
                {text(511), false},
                {text(510), true}};
    for (const auto& row : rows) {
        load(row.script);
        EXPECT_EQ(valueFileCarriesAll(panel.script, true), row.carried) << row.script;
    }
    folder.write("s.kez.zoka", valueFileText(panel.script, true));
    load("// entry: A\n// id: 1\ns = \"y\";\n");
    EXPECT_TRUE(ReadValueFile(panel.script, prompt));
    EXPECT_EQ(panel.row(0).value().size(), 510u);
}

TEST_F(ValueFile, OldValuesAddUpAndReadersPassOverThoseWithoutAnId) {
    load(kScript);
    const auto old = [](int id, const char* label, const char* value) {
        return UnplacedValue{{id, 11, label, value}, "why"};
    };
    ASSERT_TRUE(keepOldValues(panel.script, {}));
    EXPECT_THAT(folder.names(), IsEmpty());
    ASSERT_TRUE(keepOldValues(panel.script, {old(9, "N", "1"), old(-1, "L", "a\r\nb")}));
    EXPECT_EQ(folder.read("s.kez.zoka.old"), "1\n3\n260801\n\n9\n11\n1\n\n0\nL\ta\\nb\n");
    ASSERT_TRUE(keepOldValues(panel.script, {old(9, "N", "2"), old(8, "M", "3"), old(-1, "K", "c")}));
    ASSERT_TRUE(keepOldValues(panel.script, {old(5, "O", "4")}));
    const std::string text = folder.read("s.kez.zoka.old");
    EXPECT_EQ(text, "1\n3\n260801\n\n5\n11\n4\n\n9\n11\n2\n\n8\n11\n3\n\n0\nK\tc\n0\nL\ta\\nb\n");
    const ValueRecords records = parseValueFile(text);
    EXPECT_TRUE(records.whole);
    ASSERT_EQ(records.records.size(), 3u);
    EXPECT_EQ(records.records[2].value, "3");
    // Long values, and what a user wrote there, keep readers in step.
    const std::string letters = std::string(250, 'a') + std::string(250, 'b') + std::string(100, 'c');
    folder.write("s.kez.zoka.old", "1\n3\n0\n\n4\n11\n" + std::string(520, '7') + "\n\nmine\n9\n11\n2\n\n");
    ASSERT_TRUE(keepOldValues(panel.script, {old(7, "Words", letters.c_str())}));
    ASSERT_TRUE(keepOldValues(panel.script, {old(7, "Words", letters.c_str())}));
    EXPECT_EQ(folder.read("s.kez.zoka.old"),
              "1\n3\n260801\n\n9\n11\n2\n\n0\nWords (id 7)\t" + std::string(250, 'a') +
                  "\n0\nWords (id 7)\t" + std::string(250, 'b') + "\n0\nWords (id 7)\t" +
                  std::string(100, 'c') + "\n0\n4\n0\n11\n0\n" + std::string(510, '7') + "\n0\n" +
                  std::string(10, '7') + "\n0\nmine\n");
    // A file that can't be read is not written over.
    {
        FaultyOsFiles disk([](int, std::string_view op, const std::string&) { return op == "readWhole"; });
        EXPECT_FALSE(keepOldValues(panel.script, {old(5, "O", "4")}));
    }
    EXPECT_THAT(folder.read("s.kez.zoka.old"), testing::HasSubstr("mine"));
}

}  // namespace
