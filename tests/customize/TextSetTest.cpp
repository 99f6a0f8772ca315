// Scripts in UTF-8 and in the system's set, which is Windows-1252 in these tests.
#include "controls/TextSet.h"

#include <string>

#include "customize/ValueUpdate.h"
#include "tests/customize/SessionFixture.h"

namespace {

using namespace zoka;
using namespace zoka::test;

#define UE "\xC3\xBC"     // in UTF-8
#define OMEGA "\xCE\xA9"  // likewise
#define MARK "\xEF\xBB\xBF"

TEST(TextSet, GoesByTheMarkOrByValidSequences) {
    const struct {
        std::string bytes;
        TextSet set;
    } rows[] = {
        {"", TextSet::System},
        {"plain", TextSet::System},
        {MARK, TextSet::Utf8},
        {UE, TextSet::Utf8},
        {MARK "plain", TextSet::Utf8},
        {"\xFC", TextSet::System},
        {UE "\xFC", TextSet::System},
        {"\xC3", TextSet::System},
        {MARK "\xFC", TextSet::System},
        {"\xED\xA0\x80", TextSet::System},
        {std::string("\0" UE, 3), TextSet::Utf8},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(textSetOf(row.bytes), row.set) << row.bytes;
    }
}

TEST(TextSet, ConvertsAndFoldsInBothSets) {
    EXPECT_EQ(*convertText("M" UE "ller", TextSet::Utf8, TextSet::System), "M\xFCller");
    EXPECT_EQ(*convertText("\x80 \xFC", TextSet::System, TextSet::Utf8), "\xE2\x82\xAC " UE);
    EXPECT_EQ(convertText("a" OMEGA, TextSet::Utf8, TextSet::System).why(),
              "\"" OMEGA "\" is not in this file's character set; save the file as UTF-8 to use it.");
    EXPECT_EQ(beginningOf("ab" UE, 3), "ab");
    EXPECT_EQ(beginningOf("ab" UE, 4), "ab" UE);
    const struct {
        const char *text, *folded;
        TextSet set;
    } rows[] = {
        {"GR\xD6\xDF"
         "E",
         "gr\xC3\xB6\xC3\x9F"
         "e",
         TextSet::System},
        {"GR\xC3\x96\xC3\x9F"
         "E \xC3\x97",
         "gr\xC3\xB6\xC3\x9F"
         "e \xC3\x97",
         TextSet::Utf8},
        {"\xC4\x8C\xC5\xBD\xC5\xB8", "\xC4\x8D\xC5\xBE\xC3\xBF", TextSet::Utf8},  // Č Ž Ÿ
        {"\xCE\x86\xCE\x88" OMEGA, "\xCE\xAC\xCE\xAD\xCF\x89", TextSet::Utf8},    // Ά Έ Ω
        {"\xD0\x81\xD0\x96\xD0\xAF", "\xD1\x91\xD0\xB6\xD1\x8F", TextSet::Utf8},  // Ё Ж Я
    };
    for (const auto& row : rows) {
        EXPECT_EQ(foldedText(row.text, row.set), row.folded) << row.text;
    }
}

TEST_F(Session, EachScriptIsWrittenInItsOwnCharacterSet) {
    const auto script = [](const std::string& name, const std::string& value) {
        return "// entry: " + name + "\r\n// id: 1\r\nstring a = \"" + value + "\";\r\n";
    };
    const struct {
        std::string before, typed, after;  // typed in the script's set; an empty `after`: refused
    } rows[] = {
        {MARK + script("Name", "x"), UE OMEGA, MARK + script("Name", UE OMEGA)},
        {script("Gr" UE "n", "x"), "y" UE, script("Gr" UE "n", "y" UE)},
        {script("Gr\xFCn", "x"), "y\xFC", script("Gr\xFCn", "y\xFC")},
        {script("Gr" UE "n", "x"), "y\xFC", ""},
    };
    for (const auto& row : rows) {
        open(row.before);
        ASSERT_EQ(session.size(), 1u) << row.before;
        const Outcome set = session.setValue(0, row.typed);
        const bool taken = !row.after.empty();
        EXPECT_EQ(bool(set), taken) << row.before;
        session.save();
        EXPECT_EQ(project.read("s.kez"), taken ? row.after : row.before);
        EXPECT_EQ(set.why(), taken ? "" : "The text is no UTF-8, in which this script is written.");
        for (const char* search : {"GR\xC3\x9CN", "gr\xFCn"}) {  // both as it's typed here and there
            session.filter.search = search;
            EXPECT_EQ(session.visibleRows()[0], row.before.find("Name") == std::string::npos) << search;
        }
        session.filter.search.clear();
    }
    open(MARK "// entry_text: 1, 3, A\r\nstring a = \"x\";\r\n");
    EXPECT_TRUE(session.setValue(0, UE UE UE)) << "characters count, not bytes";
    EXPECT_FALSE(session.setValue(0, UE UE UE UE));
}

TEST_F(Session, AnUpdateCarriesValuesIntoATemplateInAnotherSet) {
    const std::string other = "// entry: Gr" UE "n\r\nstring b = \"b\";\r\n";
    open(
        "// entry: Name\r\n// id: 1\r\nstring a = \"M\xFCller\";\r\n\r\n// entry: Gr\xFCn\r\nstring b = "
        "\"b\";\r\n");
    makeTemplate("// entry: Name\r\n// id: 1\r\nstring a = \"x\";\r\n\r\n" + other);
    const auto plan = planValueUpdate(project.path("s.kez"), suite.path("templates\\s.kez"));
    ASSERT_TRUE(plan) << plan.why();
    EXPECT_EQ(plan->after, "// entry: Name\r\n// id: 1\r\nstring a = \"M" UE "ller\";\r\n\r\n" + other);
    EXPECT_TRUE(plan->unplaced.empty());
    prompt.answers = {PromptAnswer::Yes};
    ASSERT_TRUE(session.update());
    EXPECT_EQ(value("Name"), "M" UE "ller");
    EXPECT_EQ(session.defaultOf(0), "x");

    open("// entry: Name\r\n// id: 1\r\nstring a = \"" OMEGA "\";\r\n");
    makeTemplate("// entry: Name\r\n// id: 1\r\nstring a = \"\xFC\";\r\n");
    prompt.answers = {PromptAnswer::Yes};
    ASSERT_TRUE(session.update());
    EXPECT_EQ(value("Name"), "\xFC");
    ASSERT_EQ(session.unplaced().size(), 1u);
    EXPECT_THAT(session.unplaced()[0].reason, HasSubstr("is not in this file's character set"));
}

}  // namespace
