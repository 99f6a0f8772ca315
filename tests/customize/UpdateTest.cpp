#include "customize/ValueUpdate.h"
#include "tests/customize/Samples.h"
#include "tests/customize/SessionFixture.h"

using namespace zoka;
using namespace zoka::test;

namespace {

TEST_F(Session, RestoreLoadsTheTemplatesCopy) {
    open();
    set("Range", "11");
    makeTemplate(kNew);
    prompt.answers = {PromptAnswer::No, PromptAnswer::Yes};
    EXPECT_FALSE(session.restore());
    EXPECT_EQ(project.read("s.kez"), kOld);
    EXPECT_TRUE(session.restore());
    EXPECT_EQ(project.read("s.kez"), kNew);
    EXPECT_EQ(value("Range"), "20");
    EXPECT_EQ(session.changedCount(), 0u);
    EXPECT_THAT(prompt.texts(), ElementsAre("Restore values to default??", "Restore values to default??"));
    EXPECT_EQ(view.calls, "raise rows front ");
    EXPECT_THAT(host.calls, ElementsAre("substitute", "endlist"));
    EXPECT_THAT(project.names(), ElementsAre("s.kez", "s.kez.1.bak"));
    EXPECT_EQ(project.read("s.kez.1.bak"), kOld) << "it held lines that the template lacks";
}

TEST_F(Session, FetchingACopyRefusesWhatIsNoCopyOfTheScript) {
    open();
    makeTemplate(kNew);
    const struct {
        std::string chosen;
        bool refuses;
        const char* message;  // null: none
    } rows[] = {
        {"", false, nullptr},
        {project.path("S.KEZ"), false, "Same File!\nNo Update."},
        {"s.kez", false, "Org. filename error (1127).\nNo Update."},
        {suite.path("templates\\other.kez"), false, "Script name are not the same.\nNo Update."},
        {suite.path("templates\\s.kez"), true, "Copy error (1128).\nNo Update."},
    };
    for (const auto& row : rows) {
        host.setChosenFile(row.chosen);
        host.refuseCopies(row.refuses);
        prompt.asked.clear();
        prompt.answers = {PromptAnswer::Yes};
        EXPECT_FALSE(session.restore());
        EXPECT_EQ(prompt.asked.size(), row.message ? 2u : 1u);
        if (row.message) {
            EXPECT_EQ(prompt.asked.back().text, row.message);
        }
        EXPECT_EQ(project.read("s.kez"), kOld);
        EXPECT_EQ(value("Range"), "10");
    }
}

TEST_F(Session, UpdateMovesTheValuesIntoTheNewVersion) {
    open();
    set("Range", "150");
    set("Lamp", "0");
    set("Gone", "mine");
    set("Free", "7");
    set("Who", "lamp_2");
    makeTemplate(kNew);
    prompt.answers = {PromptAnswer::Yes};
    ASSERT_TRUE(session.update());
    EXPECT_THAT(
        prompt.texts(),
        ElementsAre(
            "Update the script?\n\nThis will transfer your current values into an updated KEZ script.\n"
            "(Some values may be lost or overwriten)",
            "Warning: No match found for value"));
    EXPECT_EQ(project.read("s.kez"), kNew);  // the values are in the controls alone
    EXPECT_EQ(value("Who"), "lamp_2");
    EXPECT_EQ(value("Lamp"), "0");
    EXPECT_EQ(value("Range"), "20");
    EXPECT_EQ(session.changedCount(), 2u);
    EXPECT_EQ(unplacedText(session.unplaced()),
              "Range (id 1): 150 - 150 is too large (allowed: 0 to 100).\r\n"
              "Gone (id 3): mine - the script has no entry for it\r\n"
              "Free: 7 - entries without an id are not kept\r\n");
    EXPECT_EQ(project.read("s.kez.zoka.old"), "1\n2\n0\n\n1\n11\n150\n\n3\n14\nmine\n\n0\nFree\t7\n");
    EXPECT_EQ(view.calls, "raise rows front ");
    ASSERT_EQ(session.save(), SaveResult::Saved);
    std::string expected = kNew;
    expected.replace(expected.find("you"), 3, "lamp_2").insert(expected.find("define"), "//");
    EXPECT_EQ(project.read("s.kez"), expected);
}

TEST_F(Session, UpdateCarriesWhatTheValueFileCannot) {
    const std::string lines =
        "// entry_text: 3, 900, Words\n// id: 1\nstring words = \"one\ntwo\";\n// enable: Parts\n// id: "
        "2\n//A;\n//B;\n\n"
        "// entry: Count\n// id: 14\nvar count = 5;\n";
    open(lines);
    set("Words", "first\r\nsecond");
    ASSERT_TRUE(session.setValue(2, "1"));
    set("Count", "6");
    makeTemplate("// ver: 9\n" + lines);
    prompt.answers = {PromptAnswer::Yes};
    ASSERT_TRUE(session.update());
    EXPECT_EQ(value("Words"), "first\nsecond");  // with the script's own line ends
    EXPECT_EQ(session.row(1).value(), "0");
    EXPECT_EQ(session.row(2).value(), "1");
    EXPECT_EQ(value("Count"), "6");
    EXPECT_THAT(session.unplaced(), IsEmpty());
    EXPECT_EQ(prompt.asked.size(), 1u);
}

TEST_F(Session, UpdatingWithoutAPanelKeepsValuesOrLeavesTheScript) {
    std::string mine = kOld;
    mine.replace(mine.find("10;"), 2, "55");
    const std::string original = suite.write("templates/s.kez", kNew);
    std::string expected = kNew;
    expected.replace(expected.find("20;"), 2, "55").insert(expected.find("define"), "//");
    expected.replace(expected.find("you"), 3, "me");
    bool done = false;
    int valueFileFaults = 0;
    for (int failing = 1; !done; ++failing) {
        ASSERT_LT(failing, 100);
        for (const std::string& name : project.names()) {
            std::filesystem::remove(project.native(name));
        }
        const std::string path = project.write("s.kez", mine);
        FaultyOsFiles disk(FaultyOsFiles::nth(failing));
        const auto plan = planValueUpdate(path, original);
        const auto updated = plan ? updateKeepingValues(*plan) : Refusal{plan.why()};
        const std::string why = updated ? *updated : updated.why();
        done = disk.operations() < failing;
        EXPECT_EQ(project.read("s.kez"), updated ? expected : mine) << failing;
        EXPECT_TRUE(updated
                        ? why.empty() || why.starts_with("the value file is still that of the old script: ")
                        : !why.empty())
            << why;
        valueFileFaults += updated && !updated->empty();
    }
    EXPECT_GE(valueFileFaults, 3) << "its sibling, its bytes, its replacing";
    EXPECT_EQ(project.read("s.kez.zoka"), "1\n2\n0\n\n1\n11\n55\n\n2\n8\n0\n\n5\n15\nme\n\n");
    EXPECT_THAT(project.read("s.kez.zoka.old"), HasSubstr("\n3\n14\na\n\n"));
}

TEST_F(Session, ASwitchThatBecameAListGivesItsValueBack) {
    const auto samples = sampleScripts();
    const std::string path = project.write("weapon_pistol.kez", samples.at("weapon_pistol"));
    const auto plan =
        planValueUpdate(path, suite.write("weapon_pistol.kez", samples.at("newer/weapon_pistol")));
    ASSERT_TRUE(plan);
    ASSERT_EQ(plan->unplaced.size(), 1u);
    EXPECT_EQ(plan->unplaced[0].kept.id, 9);
    EXPECT_THAT(plan->unplaced[0].reason, HasSubstr("not one of its choices"));
}

TEST(ValueUpdate, CountsTheLinesThatTheNewVersionLacks) {
    struct Row {
        const char *before, *after;
        size_t lost;
    };
    for (const Row& row : {Row{"", "a\n", 0}, Row{"a\nb", "b\r\na  \r\n", 0}, Row{"a\na\na", "a\n", 2},
                           Row{"\r\n \n", "", 0}, Row{"// ver: 1\n//DATE: 5\n// date;", "", 0},
                           Row{"// verse: 1\n//\nver: 1\n// mine", "", 4}, Row{"x", "X", 1}}) {
        EXPECT_EQ(linesLost(row.before, row.after), row.lost) << row.before;
    }
}

TEST_F(Session, AScriptWithLinesOfItsOwnIsKeptBesideTheNewOne) {
    std::string mine = kOld;
    mine += "function mine() {}\n";
    const std::string original = suite.write("templates/s.kez", kNew), path = project.write("s.kez", mine);
    const auto plan = planValueUpdate(path, original);
    ASSERT_TRUE(plan);
    EXPECT_GE(plan->ownLines, 1u);
    // One that was changed since it was planned for is left alone.
    project.write("s.kez", mine + "// later\n");
    EXPECT_THAT(updateKeepingValues(*plan).why(), HasSubstr("changed on the disk"));
    EXPECT_EQ(project.names(), std::vector<std::string>{"s.kez"});
    project.write("s.kez", mine);
    {
        // Without the copy nothing is replaced.
        const FaultyOsFiles full(FaultyOsFiles::every("write"));
        EXPECT_THAT(updateKeepingValues(*plan).why(), HasSubstr("s.kez.1.bak"));
    }
    EXPECT_EQ(project.read("s.kez"), mine);
    EXPECT_TRUE(updateKeepingValues(*plan));
    EXPECT_EQ(project.read("s.kez.1.bak"), mine);
    EXPECT_EQ(project.read("s.kez"), plan->after);
}

}  // namespace
