#include "customize/EntriesText.h"
#include "tests/customize/SessionFixture.h"
#include "util/JobProgress.h"

using namespace zoka;
using namespace zoka::test;

namespace {

TEST_F(Session, OpensTheMainScriptWithoutAName) {
    EXPECT_FALSE(session.open());
    {
        FaultyOsFiles disk(FaultyOsFiles::never());
        EXPECT_EQ(session.save(), SaveResult::NothingToSave);
        EXPECT_FALSE(session.restore() || session.update());
        EXPECT_EQ(disk.operations(), 0);
    }
    EXPECT_THAT(session.open(project.path("none.kez")).why(), HasSubstr("none.kez"));
    EXPECT_THAT(session.emptyText(), HasSubstr("none.kez"));
    project.write("main.kez", kOld);
    ASSERT_TRUE(session.open());
    EXPECT_EQ(session.script().scriptPath, project.path("main.kez"));
    EXPECT_THAT(host.calls, ElementsAre("endlist"));
    const EntryFacts& who = session.row(rowOf("Who")).facts();
    ASSERT_TRUE(who.hostNames);
    EXPECT_THAT(*who.hostNames, ElementsAre("me", "lamp_1", "lamp_2"));
    EXPECT_THAT(prompt.texts(), IsEmpty());
}

// Of the script that is opened, not of the one that was open.
TEST_F(Session, TellsOfPicturesThatAreMissing) {
    ASSERT_TRUE(session.open(project.write("a.kez", "// image: none.bmp\n// entry: A\nvar a = 1;\n")));
    EXPECT_THAT(findingsText(session.script()),
                HasSubstr("a.kez:1: the picture \"none.bmp\" can't be shown"));
    ASSERT_TRUE(session.open(project.write("b.kez", "// entry: B\nvar b = 1;\n")));
    EXPECT_EQ(findingsText(session.script()), "");
}

// Each line below a switch is an entry with its label and help: those are copies, and have a bound.
TEST_F(Session, ManyLinesBelowOneLongSwitchAreRefusedBeforeTheyFillTheMemory) {
    const auto script = [](size_t label, int lines) {
        std::string text = "// enable: " + std::string(label, 'L') + "\r\n// id: 1\r\n";
        for (int i = 0; i < lines; ++i) {
            text += "//define A" + std::to_string(i) + ";\r\n";
        }
        return text;
    };
    EXPECT_TRUE(session.open(project.write("many.kez", script(40, 6000))));
    EXPECT_EQ(session.size(), 6000u);
    EXPECT_THAT(session.open(project.write("large.kez", script(90000, 6000))).why(),
                HasSubstr("it is too large to be customized: more than "));
    EXPECT_EQ(session.size(), 6000u) << "the script before stays";
}

// A panel that is to leave stops at any step, with what it showed before.
TEST_F(Session, OpeningCanBeStoppedAtEachStep) {
    struct Stop : JobProgress {
        int left = 100;
        bool step(size_t, size_t, const std::string&) override { return left-- > 0; }
    };
    Stop stop;
    CustomizeSession panel(host, prompt, &view, &stop);
    ASSERT_TRUE(panel.open(project.write("a.kez", "// entry: A\nvar a = 1;\n")));
    std::string large = kOld;  // of more than one step
    large.append(3 << 20, '\n');
    const std::string path = project.write("s.kez", large);
    int steps = 0;
    for (bool opened = false; !opened && steps < 100; ++steps) {
        stop.left = steps;
        opened = bool(panel.open(path));
        EXPECT_EQ(panel.script().scriptPath, opened ? path : project.path("a.kez"));
        EXPECT_EQ(panel.size(), opened ? 7u : 1u);
        EXPECT_EQ(panel.row(panel.size() - 1).value(), opened ? "me" : "1");
    }
    EXPECT_GE(steps, 10);
    EXPECT_LT(steps, 100);
}

TEST_F(Session, CloseAsksAboutChangesAndStaysOpenWhenTheyCannotBeSaved) {
    open();
    EXPECT_TRUE(session.close());
    set("Range", "11");
    prompt.answers = {PromptAnswer::Cancel, PromptAnswer::Yes, PromptAnswer::No};
    EXPECT_FALSE(session.close());
    {
        FaultyOsFiles disk([](int, std::string_view op, const std::string& path) {
            return op == "openExisting" && path.ends_with("s.kez");
        });
        EXPECT_FALSE(session.close());
    }
    EXPECT_EQ(project.read("s.kez"), kOld);
    EXPECT_EQ(session.changedCount(), 1u);
    EXPECT_TRUE(session.close());
    EXPECT_THAT(prompt.texts(),
                ElementsAre("Save Changes?", "Save Changes?", "Error open file to write", "Save Changes?"));
    EXPECT_EQ(prompt.asked[0].buttons, PromptButtons::YesNoCancel);
    EXPECT_EQ(project.read("s.kez"), kOld);
}

TEST_F(Session, SwitchingTellsOnceWhyItFailed) {
    open();
    set("Range", "11");
    const std::string other = project.write("other.kez", kNew);
    prompt.answers = {PromptAnswer::Yes, PromptAnswer::Cancel, PromptAnswer::No};
    {
        FaultyOsFiles disk(FaultyOsFiles::every("write"));
        EXPECT_FALSE(session.switchTo(other));
    }
    EXPECT_FALSE(session.switchTo(other));
    EXPECT_FALSE(session.switchTo(project.path("none.kez")));
    EXPECT_THAT(prompt.texts(), ElementsAre("Save Changes?", HasSubstr("Can't write"), "Save Changes?",
                                            "Save Changes?", HasSubstr("none.kez")));
    EXPECT_EQ(value("Range"), "11");
}

TEST_F(Session, ResetsGoToTheValueLoadedOrTheTemplates) {
    makeTemplate(kNew);
    open();
    set("Range", "50");
    set("Lamp", "1");
    set("Gone", "b");
    EXPECT_EQ(session.defaultOf(rowOf("Range")), "20");
    EXPECT_EQ(session.defaultOf(rowOf("Gone")), std::nullopt);
    EXPECT_EQ(session.resetRow(rowOf("Range"), ResetTo::Default), 1u);
    EXPECT_FALSE(session.canReset(rowOf("Range"), rowOf("Range") + 1, ResetTo::Default));
    EXPECT_TRUE(session.canReset(rowOf("First"), session.sectionEnd(rowOf("First")), ResetTo::Loaded));
    EXPECT_EQ(value("Range"), "20");
    EXPECT_EQ(session.resetSection(rowOf("First"), ResetTo::Loaded), 2u);
    EXPECT_EQ(value("Range"), "10");
    EXPECT_EQ(value("Lamp"), "0");
    EXPECT_EQ(value("Gone"), "b");
    EXPECT_EQ(session.resetAll(ResetTo::Default), 3u);
    EXPECT_EQ(value("Who"), "you");
    EXPECT_TRUE(session.undo());
    EXPECT_EQ(value("Who"), "me");
    EXPECT_TRUE(session.undo());
    EXPECT_EQ(value("Lamp"), "1");
    EXPECT_TRUE(session.redo());
    EXPECT_EQ(value("Lamp"), "0");
    EXPECT_EQ(session.tooltip(rowOf("Range")), "Range\r\nDefault: 20\r\nallowed: 0 to 200\r\nid 1\r\nline 3");
    EXPECT_EQ(placeText(session.script(), session.entry(rowOf("Range"))), project.path("s.kez") + ":3");
    EXPECT_EQ(session.helpText(rowOf("Range")), "No Help");
    // A numbered copy has those of the template that it was made of.
    suite.write("templates/lift_.kez", "// entry: Tag\n// id: 1\nstring tag%_% = \"lift%_%\";\n");
    ASSERT_TRUE(
        session.open(project.write("lift_12.kez", "// entry: Tag\n// id: 1\nstring tag_12 = \"x\";\n")));
    EXPECT_EQ(session.defaultOf(0), "lift_12");
}

TEST_F(Session, SearchAndChangesDecideWhatIsShown) {
    open();
    const auto shown = [&] {
        std::string labels;
        const std::vector<bool> rows = session.visibleRows();
        for (size_t i = 0; i < rows.size(); ++i) {
            if (rows[i]) {
                labels += session.entry(i).label + " ";
            }
        }
        return labels;
    };
    EXPECT_EQ(shown(), "First Range Lamp Second Gone Free Who ");
    session.filter.search = "second";
    EXPECT_EQ(shown(), "Second Gone Free Who ");
    session.filter.search = "";
    session.filter.changedOnly = true;
    EXPECT_EQ(shown(), "");
    set("Lamp", "1");
    EXPECT_EQ(shown(), "First Lamp ");
}

TEST_F(Session, NumbersGoByTheStepOfTheirOwnMarkup) {
    open(
        "// entry: Glow\r\n// cntl: slider 0 1 0.25\r\nvar glow = 0.5;\r\n\r\n"
        "// entry: Haze\r\n// cntl: slider 0 1\r\nvar haze = 0.5;\r\n\r\n"
        "// entry: Birds\r\n// cntl: spin 0 20 4\r\nvar birds = 8;\r\n");
    EXPECT_EQ(session.row(0).stepped(1), "0.75");
    EXPECT_EQ(session.row(1).stepped(1), "0.51") << "a hundredth of the range, not the step of another";
    EXPECT_EQ(session.row(2).stepped(1), "12");
}

TEST_F(Session, WholeNumbersStayWholeOnTheirWayThroughNegativeOnes) {
    open(
        "// entry: Depth\r\n// id: 1\r\nvar depth = 14;\r\n\r\n"
        "// entry: Old\r\n// id: 2\r\n// cntl: spin 0 10 1\r\nvar old = 99;\r\n");
    set("Depth", "-3");
    set("Old", "5");
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(session.row(0).step(), 1);
    EXPECT_EQ(session.row(0).stepped(5), "2");
    EXPECT_TRUE(session.undo());
    EXPECT_TRUE(session.undo());
    EXPECT_EQ(value("Depth"), "14");
    EXPECT_EQ(value("Old"), "99");  // undone, though only loading allowed it
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("s.kez"), HasSubstr("var depth = 14;\r\n"));
}

TEST_F(Session, LinesBelowOneSwitchAreToldApart) {
    open("// enable: Lamps\r\n//define NORTH;\r\n//  define SOUTH;\r\ndefine WEST;\r\n");
    EXPECT_EQ(session.row(0).facts().label, "Lamps: define NORTH;");
    EXPECT_EQ(session.row(1).facts().label, "Lamps: define SOUTH;");
    EXPECT_EQ(session.row(2).facts().label, "Lamps: define WEST;");
    EXPECT_EQ(session.entry(1).label, "Lamps");
}

}  // namespace
