#include "customize/EntityComponents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "tests/customize/BehaviorFixture.h"
#include "tests/support/ScriptedPrompt.h"
#include "util/DebugLog.h"
#include "util/OsFiles.h"

namespace zoka {
namespace {

using test::BehaviorSessionTest;
using test::wander;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char kComponents[] =
    "<Components><Component name='body'><Property name='mass' type='float' value='75' edit='true'>"
    "<Constraint type='min' value='0'/><Constraint type='max' value='100'/></Property>"
    "<Property name='solid' type='bool' value='true' edit='true'/>"
    "<Property name='stuff' type='string' value='wool'/></Component>"
    "<Component name='light'><Property name='color' type='color' value='#ffffff' edit='true'/></Component>"
    "</Components>";
constexpr char kBehaviors[] =
    "<Behaviors><Component proj_file='c.xml'/>"
    "<Behavior name='walker'><Skill num='2' name='Health'/><Skill num='30' name='None'/>"
    "<Component name='body'><Edit name='mass' value='80'/></Component><Component name='light'/></Behavior>"
    "<Behavior name='boat'><Skill num='7' name='Draught'/><Component name='body'/></Behavior></Behaviors>";
constexpr char kLevels[] =
    "<Level name='other' mapfile='other.zlb'><Entity name='a' parent='boat'/><Entity name='far' "
    "parent='boat'/>"
    "</Level><Level name='open' mapfile='MAIN.zlb'>"
    "<Entity name='a' parent='walker'><Component name='body'><Edit name='mass' "
    "value='90'/></Component></Entity>"
    "<Entity name='b' parent='walker'/>"
    "<Entity name='c'><Component name='body'/><Component name='sail'><Edit name='size' "
    "value='3'/></Component>"
    "</Entity><Entity name='boat' parent='boat'/><Entity name='lost' parent='nobody'/></Level>";

class BehaviorComponentsTest : public BehaviorSessionTest {
protected:
    BehaviorComponentsTest() {
        closeDebugLog();
        debugLogFileName() = m_folder.path("log.xml");
        m_folder.write("c.xml", kComponents);
        m_folder.write("b.xml", kBehaviors);
        m_file = m_folder.write(
            "main.xml", "<Project name='Game' date='1' vers='8'>\n<Paths proj_file='" + m_folder.path() +
                            "' j8_file=''/>\n<Behavior proj_file='b.xml'/>" + kLevels + "</Project>\n");
        std::filesystem::current_path(m_folder.native(""));  // a save leaves its report there
        m_panel.open();
    }
    ~BehaviorComponentsTest() override {
        std::filesystem::current_path(m_before);
        closeDebugLog();
        debugLogFileName() = "debugLogOut.xml";
    }

    static std::unique_ptr<EntityComponents> components(const std::string& file, UserPrompt& prompt) {
        return std::make_unique<EntityComponents>(file, prompt);
    }
    BehaviorSession& panel() override { return m_panel; }
    size_t rowOf(const std::string& label) const {
        for (size_t i = 0; i < m_panel.size(); ++i) {
            if (m_panel.row(i).facts().label == label) {
                return i;
            }
        }
        ADD_FAILURE() << "no row " << label;
        return 0;
    }
    std::string saved() { return m_folder.read("main.xml"); }

    std::filesystem::path m_before = std::filesystem::current_path();
    std::string m_file = m_folder.path("main.xml");
    test::ScriptedPrompt m_prompt;
    BehaviorSession m_panel{&m_entities, m_host, components(m_file, m_prompt), "a"};
};

TEST_F(BehaviorComponentsTest, isDefinedForAnEntityOfTheOpenLevelWhoseParentIsLoaded) {
    EXPECT_EQ(definedBehavior(m_file, "a"), "walker");
    EXPECT_EQ(definedBehavior(m_file, "boat"), "boat");
    for (const char* name : {"c", "lost", "far", "nobody", ""}) {
        EXPECT_EQ(definedBehavior(m_file, name), std::nullopt) << name;
    }
    EXPECT_EQ(definedBehavior(m_folder.path("gone.xml"), "a"), std::nullopt);
    // No map of the project is the open one: the first level that has the entity.
    const std::string elsewhere = m_folder.write("street.xml", saved());
    EXPECT_EQ(definedBehavior(elsewhere, "a"), "boat");
    EXPECT_EQ(definedBehavior(elsewhere, "b"), "walker");
}

TEST_F(BehaviorComponentsTest, showsTheEntitysEditsOverTheBehaviorsOverTheDefaults) {
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=3", "Lit=0", "body", "mass=90 changed", "solid=1",
                                     "stuff=wool blocked", "light", "color=#ffffff"));
    EXPECT_THAT(m_panel.tooltip(4), HasSubstr("Value from the entity"));
    EXPECT_THAT(m_panel.tooltip(4), HasSubstr("Default: 75\r\nBefore: 80"));
    follow({"b"});
    EXPECT_THAT(shown()[4], "mass=80");
    EXPECT_THAT(m_panel.tooltip(4), HasSubstr("Value from the behavior walker"));
    EXPECT_THAT(m_panel.helpText(5), HasSubstr("Value from the component's default."));
    // What can't be shown says so.
    follow({"c"});
    EXPECT_THAT(shown(), ElementsAre("Speed=5", "Time=0", "No Parent Behavior", "body", "mass=75", "solid=1",
                                     "stuff=wool blocked", "sail", "COULD NOT FIND CMP DATA!", "size=3"));
    m_entities.entities["lost"] = m_entities.entities["stranger"] = m_entities.entities["c"];
    follow({"lost"});
    EXPECT_THAT(shown(), ElementsAre("Speed=5", "Time=0", "No Parent Behavior"));
    follow({"stranger"});
    EXPECT_THAT(shown(), ElementsAre("Speed=5", "Time=0", "COULD NOT FIND CMP DATA!"));
    // Names that stand in for those which the action does not declare.
    follow({"boat"});
    EXPECT_THAT(shown(), ElementsAre("Draught=0", "body", "mass=75", "solid=1", "stuff=wool blocked"));
}

TEST_F(BehaviorComponentsTest, editsReachTheProjectAndGoBackInTheirOrder) {
    EXPECT_NE(m_panel.setValue(4, "101").why(), "");
    EXPECT_TRUE(m_panel.setValue(4, "9", true));
    EXPECT_TRUE(m_panel.setValue(4, "95", true));
    EXPECT_TRUE(m_panel.setValue(1, "7"));
    EXPECT_TRUE(m_panel.setValue(5, "0"));
    EXPECT_TRUE(m_panel.hasUnsaved());
    const std::vector<std::string> edited = shown();
    EXPECT_EQ(edited[4], "mass=95 changed");
    EXPECT_TRUE(m_panel.undo());
    EXPECT_TRUE(m_panel.undo());
    EXPECT_EQ(skill("a", 1), 3.0F);
    EXPECT_TRUE(m_panel.undo());
    EXPECT_EQ(shown()[4], "mass=90 changed");
    EXPECT_FALSE(m_panel.hasUnsaved());
    while (m_panel.redo()) {
    }
    EXPECT_EQ(shown(), edited);
    // The behaviour's value takes the entity's own away; the component's default is one of its own.
    EXPECT_EQ(m_panel.resetRow(4, ResetTo::Loaded), 1U);
    EXPECT_EQ(shown()[4], "mass=80");
    EXPECT_EQ(m_panel.resetAll(ResetTo::Default), 4U);
    EXPECT_EQ(shown()[4], "mass=75 changed");
    EXPECT_TRUE(m_panel.undo());
    EXPECT_EQ(shown()[4], "mass=80");
    EXPECT_EQ(m_panel.copyText(0, m_panel.size()),
              "skill1 Speed = 7\r\nflag1 Lit = 0\r\nbody.mass = 80\r\nbody.solid = 0\r\nbody.stuff = wool\r\n"
              "light.color = #ffffff\r\n");
    const PasteResult pasted = m_panel.paste("body.mass = 60\r\nlight.range = 3\r\nbody.stuff = silk");
    EXPECT_EQ(pasted.taken, 1U);
    EXPECT_THAT(pasted.refused, ElementsAre(HasSubstr("no such value"), HasSubstr("does not offer")));
}

// The project's texts are shown and taken as they are, whatever the system's own set is; the editor's names are in
// that.
TEST_F(BehaviorComponentsTest, showsAndTakesAllCharacters) {
    std::string text = saved();
    for (const auto& [from, to] : {std::pair("name='b' parent='walker'", "name='\xC3\xA4' parent='\xCE\xA9'"),
                                   {"parent='nobody'", "parent='\xCE\xA9'"}}) {
        text.replace(text.find(from), std::string(from).size(), to);
    }
    m_folder.write("main.xml", text);
    m_folder.write(
        "c.xml",
        "<Components><Component name='\xCF\x83\xCF\x8E\xCE\xBC\xCE\xB1'><Property name='\xCF\x87' "
        "type='string' value='\xCE\xB2\xCE\xB1\xCF\x81\xCF\x8D' edit='true'/></Component></Components>");
    m_folder.write("b.xml",
                   "<Behaviors><Component proj_file='c.xml'/><Behavior name='\xCE\xA9'><Skill num='4' "
                   "name='\xCE\xB6\xCF\x89\xCE\xAE'/><Component name='\xCF\x83\xCF\x8E\xCE\xBC\xCE\xB1'/>"
                   "</Behavior></Behaviors>");
    m_entities.entities["\xE4"] = {};
    m_entities.entities["lost"] = {};
    select({"\xE4"});
    m_panel.open();
    EXPECT_EQ(definedBehavior(m_file, "\xE4"), "\xCE\xA9");
    const std::string life = "\xCE\xB6\xCF\x89\xCE\xAE", heavy = "\xCE\xB2\xCE\xB1\xCF\x81\xCF\x8D";
    EXPECT_THAT(shown(), ElementsAre(life + "=0", "\xCF\x83\xCF\x8E\xCE\xBC\xCE\xB1", "\xCF\x87=" + heavy));
    EXPECT_EQ(m_panel.row(0).facts().set, TextSet::Utf8);
    EXPECT_EQ(m_panel.row(2).facts().set, TextSet::Utf8);
    EXPECT_THAT(m_panel.tooltip(2), HasSubstr("Value from the component's default"));
    ASSERT_TRUE(m_panel.setValue(2, "\xE2\x82\xAC\xCE\xA9"));
    EXPECT_EQ(m_panel.copyText(2, 3), "\xCF\x83\xCF\x8E\xCE\xBC\xCE\xB1.\xCF\x87 = \xE2\x82\xAC\xCE\xA9\r\n");
    EXPECT_EQ(m_panel.paste("\xCF\x83\xCF\x8E\xCE\xBC\xCE\xB1.\xCF\x87 = \xCE\xA9\xCE\xA9").taken, 1U);
    EXPECT_EQ(m_panel.save(), SaveResult::Saved);
    EXPECT_THAT(saved(), HasSubstr("value=\"\xCE\xA9\xCE\xA9\""));
    select({"\xE4", "lost"});
    m_panel.refresh(true);
    EXPECT_THAT(shown(),
                ElementsAre(life + "=0", "\xCF\x83\xCF\x8E\xCE\xBC\xCE\xB1", "\xCF\x87=(different) changed"));
    // What says so of an entity that is gone is in the row's own set, and in the system's where a box shows it.
    select({"\xE4"});
    m_panel.refresh(true);
    ASSERT_TRUE(m_panel.setValue(2, "\xCE\xA9"));
    m_entities.entities.erase("\xE4");
    select({});
    m_panel.refresh(true);
    EXPECT_EQ(m_panel.row(2).blocked(), "\xC3\xA4 is gone from the level.");
    EXPECT_EQ(m_panel.undo().why(), "\xE4 is gone from the level.");
}

TEST_F(BehaviorComponentsTest, severalEntitiesGetTheValueAndEachItsOwnBack) {
    follow({"a", "b", "c"});
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=(different)", "No Parent Behavior", "body",
                                     "mass=(different) changed", "solid=1", "stuff=wool blocked"));
    EXPECT_TRUE(m_panel.setValue(4, "80"));
    EXPECT_EQ(shown()[4], "mass=80 changed");
    EXPECT_TRUE(m_panel.undo());
    EXPECT_EQ(shown()[4], "mass=(different) changed");
    EXPECT_FALSE(m_panel.hasUnsaved());
    EXPECT_TRUE(m_panel.redo());
    EXPECT_EQ(m_panel.save(), SaveResult::Saved);
    // The two that inherit it have no edit of their own.
    const std::string text = saved();
    EXPECT_EQ(text.find("value=\"80\""), text.rfind("value=\"80\""));
    EXPECT_EQ(text.find("value=\"90\""), text.npos);
    follow({"a"});
    EXPECT_EQ(shown()[4], "mass=80");
}

// A row whose entities differ is marked once they are not what they were, and reset to each one's own.
TEST_F(BehaviorComponentsTest, marksAndResetsRowsThatDiffer) {
    m_entities.entities["c"].action = m_entities.entities["a"].action;
    follow({"a", "b", "c"});
    EXPECT_EQ(shown()[1], "Speed=(different)");
    m_entities.entities["b"].skills[0] = 6;
    ++m_entities.count;
    m_panel.refresh(false);
    EXPECT_EQ(shown()[1], "Speed=(different) changed");
    EXPECT_EQ(m_panel.resetRow(1, ResetTo::Loaded), 1U);
    EXPECT_EQ(shown()[1], "Speed=(different)");
    EXPECT_EQ(skill("b", 1), 4.25F);
    EXPECT_TRUE(m_panel.undo());
    EXPECT_EQ(skill("b", 1), 6.0F);
    EXPECT_TRUE(m_panel.setValue(1, "7"));
    EXPECT_EQ(m_panel.resetRow(1, ResetTo::Loaded), 1U);
    EXPECT_EQ(skill("a", 1) + skill("b", 1) + skill("c", 1), 3 + 4.25F + 5);
    // What the behaviour gives the one and the component the other, before and after.
    const size_t mass = rowOf("mass");
    EXPECT_EQ(shown()[mass], "mass=(different) changed");
    EXPECT_EQ(m_panel.resetRow(mass, ResetTo::Loaded), 1U);
    EXPECT_EQ(shown()[mass], "mass=(different)");
    EXPECT_FALSE(m_panel.canReset(mass, mass + 1, ResetTo::Loaded));
    follow({"a"});
    EXPECT_EQ(shown()[rowOf("mass")], "mass=80");
}

TEST_F(BehaviorComponentsTest, goesBackAndForthThroughAllEditsAndSavesThem) {
    follow({"a", "b", "c"});
    const std::vector<std::string> before = shown();
    wander(m_panel, 20260304, 1000, [&](std::mt19937& random) {
        if (random() % 50 == 0) {
            EXPECT_NE(m_panel.save(), SaveResult::Cancelled);
        }
    });
    const std::vector<std::string> after = shown();
    EXPECT_NE(after, before);
    while (m_panel.undo()) {
    }
    EXPECT_EQ(shown(), before);
    while (m_panel.redo()) {
    }
    EXPECT_EQ(shown(), after);
    m_panel.save();
    for (const char* name : {"a", "b", "c"}) {
        follow({name});
        const std::vector<std::string> own = shown();
        BehaviorSession fresh(&m_entities, m_host, components(m_file, m_prompt), name);
        fresh.open();
        ASSERT_EQ(fresh.size(), own.size());
        for (size_t i = 0; i < fresh.size(); ++i) {
            EXPECT_EQ(fresh.row(i).value(), m_panel.row(i).value()) << own[i];
        }
    }
}

TEST_F(BehaviorComponentsTest, savingKeepsUndoAndClosingAsks) {
    EXPECT_EQ(m_panel.save(), SaveResult::NothingToSave);
    EXPECT_TRUE(m_panel.close());
    EXPECT_TRUE(m_panel.setValue(4, "50"));
    EXPECT_TRUE(m_panel.setValue(1, "8"));
    EXPECT_EQ(m_panel.save(), SaveResult::Saved);
    EXPECT_FALSE(m_panel.hasUnsaved());
    EXPECT_THAT(saved(), HasSubstr("value=\"50\""));
    EXPECT_EQ(shown()[4], "mass=50 changed");
    EXPECT_TRUE(m_panel.undo());
    EXPECT_TRUE(m_panel.undo());
    EXPECT_EQ(shown()[4], "mass=90 changed");
    EXPECT_EQ(skill("a", 1), 3.0F);
    EXPECT_TRUE(m_panel.hasUnsaved());
    m_prompt.answers.push_back(PromptAnswer::Cancel);
    EXPECT_FALSE(m_panel.close());
    m_prompt.answers.push_back(PromptAnswer::No);
    EXPECT_TRUE(m_panel.close());
    EXPECT_THAT(saved(), HasSubstr("value=\"50\""));
    m_prompt.answers.push_back(PromptAnswer::Yes);
    EXPECT_TRUE(m_panel.close());
    EXPECT_THAT(saved(), HasSubstr("value=\"90\""));
}

// Nothing of a project that is closed stands below entities of the open one, and nothing gets into a file unasked.
TEST_F(BehaviorComponentsTest, goesOnToAnotherProjectAndAsksWhatBecomesOfEdits) {
    std::optional<std::string> open = m_file;
    class : public FolderHost {
    public:
        using FolderHost::FolderHost;
        std::string GetProjectFolder() override { return project; }
        std::string project = "C:\\open";
    } host({.project = m_folder.path(), .suite = m_folder.path()});
    const auto panelFor = [&] {
        open = m_file;
        auto panel = std::make_unique<BehaviorSession>(&m_entities, host, components(m_file, m_prompt), "a",
                                                       [&open] { return open; });
        panel->open();
        return panel;
    };
    const auto lastRow = [](const BehaviorSession& panel) {
        const EntryModel& row = panel.row(panel.size() - 1);
        return row.facts().label + '=' + row.value();
    };
    std::string text = saved();
    std::filesystem::create_directories(m_folder.native("other"));
    const std::string other = m_folder.write("other/main.xml", text.replace(text.find("'90'"), 4, "'33'"));
    auto panel = panelFor();
    open = other;
    panel->refresh(false);  // whether or not the host counts it
    EXPECT_FALSE(panel->otherProjectOpen());
    EXPECT_EQ(panel->row(4).value(), "33");
    open = "";  // none
    panel->refresh(false);
    EXPECT_EQ(lastRow(*panel), "Lit=0");
    open = m_file;
    panel->refresh(false);
    EXPECT_EQ(panel->row(4).value(), "90");
    open.reset();  // the host doesn't say
    panel->refresh(false);
    EXPECT_EQ(panel->row(4).value(), "90");

    using enum PromptAnswer;
    const struct {
        bool closes;
        PromptAnswer answer;
        bool goesOn, isWritten;
    } rows[] = {{false, Cancel, false, false}, {false, No, true, false}, {false, Yes, true, true},
                {true, Cancel, false, false},  {true, No, true, false},  {true, Yes, true, true}};
    const std::string first = saved();
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.closes) + std::to_string(static_cast<int>(row.answer)));
        m_folder.write("main.xml", first);
        panel = panelFor();
        ASSERT_TRUE(panel->setValue(4, "50"));
        open = other;
        if (!row.closes) {
            // Back in the project of the edits they are there, and nobody asks.
            panel->refresh(false);
            EXPECT_TRUE(panel->otherProjectOpen());
            EXPECT_THAT(lastRow(*panel), HasSubstr("are not saved"));
            open = m_file;
            panel->refresh(false);
            EXPECT_FALSE(panel->otherProjectOpen());
            EXPECT_EQ(panel->row(4).value(), "50");
            open = other;  // seen by save() itself
        } else {
            panel->refresh(false);
        }
        m_prompt.answers.push_back(row.answer);
        m_prompt.asked.clear();
        if (row.closes) {
            EXPECT_EQ(panel->close(), row.goesOn);
        } else {
            EXPECT_EQ(panel->save() != SaveResult::Cancelled, row.goesOn);
            EXPECT_EQ(panel->otherProjectOpen(), !row.goesOn);
            EXPECT_EQ(panel->hasUnsaved(), !row.goesOn);
            if (row.goesOn) {
                EXPECT_EQ(panel->row(4).value(), "33");
            }
        }
        ASSERT_EQ(m_prompt.asked.size(), 1U);
        EXPECT_THAT(m_prompt.asked[0].text, HasSubstr('\'' + m_file + '\''));
        EXPECT_EQ(saved().find("value=\"50\"") != std::string::npos, row.isWritten);
        EXPECT_THAT(m_folder.read("other/main.xml"), HasSubstr("'33'"));
    }
    // None is open, or one without a main script.
    panel = panelFor();
    ASSERT_TRUE(panel->setValue(4, "40"));
    EXPECT_STREQ(panel->whereabouts(), "");
    // The main script is not named, though the project is the panel's own.
    open.reset();
    panel->refresh(false);
    EXPECT_STREQ(panel->whereabouts(), "");
    EXPECT_EQ(panel->row(4).value(), "40");
    EXPECT_TRUE(panel->hasUnsaved());
    host.project.clear();
    panel->refresh(false);
    EXPECT_STREQ(panel->whereabouts(), " (no project is open)");
    m_prompt.answers.push_back(Cancel);
    EXPECT_FALSE(panel->close());
    EXPECT_THAT(m_prompt.asked.back().text, HasSubstr("The editor has closed the project since"));
    host.project = m_folder.path("other");
    panel->refresh(false);
    EXPECT_STREQ(panel->whereabouts(), " (another project is open)");
    m_prompt.answers.push_back(Cancel);
    EXPECT_FALSE(panel->close());
    EXPECT_THAT(m_prompt.asked.back().text, HasSubstr("The editor has opened another project since"));
    open = other;
    panel->refresh(false);
    EXPECT_STREQ(panel->whereabouts(), " (another project is open)");
}

TEST_F(BehaviorComponentsTest, showsWhatAnotherProgramWroteAndAsksWhereBothDid) {
    const auto writeMass = [&](const std::string& value) {
        std::string text = saved();
        const size_t at = text.find("'90'") + 1;
        m_folder.write("main.xml", text.replace(at, 2, value) + "\n");
        osFiles().setTimes(m_file, FileTime::fromTicks(130000000000000000ULL + std::stoul(value)));
    };
    writeMass("44");
    m_panel.refresh(true);
    EXPECT_EQ(shown()[4], "mass=44 changed");
    EXPECT_TRUE(m_panel.setValue(5, "0"));
    m_folder.write("main.xml", "<!-- new -->" + saved());
    m_panel.refresh(true);
    EXPECT_EQ(shown()[5], "solid=0 changed");
    m_prompt.answers.push_back(PromptAnswer::Cancel);
    EXPECT_EQ(m_panel.save(), SaveResult::Cancelled);
    EXPECT_TRUE(m_panel.hasUnsaved());
    // Closing asks, too. Given up when the other's project is loaded already, it leaves a panel of that one.
    std::string declared = kComponents;
    m_folder.write("c.xml", declared.replace(declared.find("'75'"), 4, "'70'"));
    m_prompt.answers = {PromptAnswer::Yes, PromptAnswer::Yes, PromptAnswer::No};
    std::string whileAsked;
    m_prompt.whenAsked = [&] { whileAsked += m_panel.tooltip(4) + m_panel.helpText(4) + m_panel.nameOf(4); };
    EXPECT_FALSE(m_panel.close());
    m_prompt.whenAsked = nullptr;
    EXPECT_THAT(m_prompt.asked.back().text, HasSubstr("A save does not keep"));
    EXPECT_THAT(m_panel.tooltip(4), HasSubstr("Default: 70"));
    EXPECT_EQ(shown()[5], "solid=0 changed");
    EXPECT_TRUE(m_panel.hasUnsaved());
    // An entity that is gone takes no edits.
    m_entities.entities.erase("a");
    follow({});
    EXPECT_THAT(shown()[5], HasSubstr("blocked"));
    // A project that is gone.
    BehaviorSession panel(nullptr, m_host, components(m_folder.path("gone.xml"), m_prompt), "a");
    panel.open();
    EXPECT_EQ(panel.row(panel.size() - 1).facts().label, "COULD NOT FIND CMP DATA!");
}

// A host that tells nothing of its entities: the skills of the behavior are shown, and nothing can be written.
TEST_F(BehaviorComponentsTest, takesNoSkillsWhereTheHostHasNoEntities) {
    BehaviorSession panel(nullptr, m_host, components(m_file, m_prompt), "a");
    panel.open();
    size_t skills = 0;
    for (size_t i = 0; i < panel.size(); ++i) {
        if (panel.details(i).starts_with("skill")) {
            ++skills;
            EXPECT_EQ(panel.setValue(i, "5").why(), "The editor tells nothing of its entities.");
        }
    }
    EXPECT_GT(skills, 0U);
    EXPECT_EQ(panel.paste("skill2 = 5\n").taken, 0U);
}

}  // namespace
}  // namespace zoka
