// The rows of a project as a panel edits them, and which page a change or a problem is shown on.
#include "J8ProjectManager/ProjectPanel.h"

#include <algorithm>

#include "J8ProjectManager/ProjectTargets.h"
#include "tests/project/ProjectFiles.h"
#include "tests/support/ScriptedPrompt.h"

namespace {

using namespace zoka;
using Kind = ProjectField::Kind;

constexpr char kElements[] =
    "\t<Behavior proj_file=\"b.xml\"/>\n\t<UI proj_file=\"gone.xml\"/>\n\t<Level name=\"harbour\" "
    "mapfile=\"h.zlb\">\n"
    "\t\t<Entity name=\"one\" parent=\"g\">\n\t\t\t<Skill num=\"1\" value=\"5\"/>\n\t\t</Entity>\n"
    "\t\t<Entity name=\"two\" parent=\"g\"/>\n\t\t<Entity name=\"t~ree\"/>\n\t</Level>\n\t<Level "
    "name=\"village\"/>";
constexpr char kBehaviors[] =
    "<Behaviors><Component proj_file='c.xml'/><Behavior name='g'><Skill num='1' name='Health' type='int' "
    "value='9'>"
    "<Constraint type='min' value='0'/><Constraint type='max' value='10'/></Skill>"
    "<Skill num='2' name='Side' value='t'><Enum name='Town' value='t'/><Enum name='Fort' value='f'/></Skill>"
    "<Component name='body'/></Behavior></Behaviors>";
constexpr char kComponents[] =
    "<Components><Component name='body'><Property name='mass' type='int' value='3' edit='true'/>"
    "<Property name='fixed' type='string' value='x'/></Component></Components>";

// A character set that lacks '~'.
std::string shown(const std::string& utf8) {
    std::string text = utf8;
    std::ranges::replace(text, '~', '?');
    return text;
}
std::string stored(const std::string& text) {
    return text;
}

class ProjectPanelTest : public zoka::test::ProjectFiles {
protected:
    ProjectPanelTest() {
        folder.write("b.xml", kBehaviors);
        folder.write("c.xml", kComponents);
        session.writesStepReport = false;
        const zoka::Outcome opened = session.open(project(kElements));
        EXPECT_TRUE(opened) << opened.why();
    }
    size_t rowOf(const std::string& label) {
        for (size_t i = 0; i < panel.size(); ++i) {
            if (panel.row(i).facts().label == label) {
                return i;
            }
        }
        ADD_FAILURE() << "no row " << label;
        return 0;
    }
    const J8LevelEntity& entity(size_t i) const { return session.model().m_apLevels[0].m_entities[i]; }

    test::ScriptedPrompt prompt;
    ProjectSession session{manager, prompt};
    std::string asked;
    ProjectPanel panel{session, {shown, stored}, [this](bool undo) { asked += undo ? "undo " : "redo "; }};
};

TEST_F(ProjectPanelTest, MarksWhatDiffersFromTheParentAndResetsItByTakingItAway) {
    panel.showEntity(0, 0);
    const size_t health = rowOf("Health"), side = rowOf("Side");
    EXPECT_EQ(panel.row(health).value(), "5");
    EXPECT_TRUE(panel.row(health).HasChanged());
    EXPECT_EQ(panel.defaultOf(health), "9");
    EXPECT_EQ(panel.changedCount(), 1u);
    EXPECT_EQ(panel.row(side).value(), "Town");
    EXPECT_FALSE(panel.row(side).HasChanged());

    std::string why;
    EXPECT_TRUE(panel.setValue(side, "Fort"));
    EXPECT_EQ(entity(0).skills.size(), 2u);
    EXPECT_EQ(entity(0).skills[1].value, "f");
    why = panel.setValue(health, "11").why();
    EXPECT_FALSE(why.empty());
    EXPECT_EQ(panel.resetAll(ResetTo::Default), 2u);
    EXPECT_TRUE(entity(0).skills.empty());
    EXPECT_EQ(panel.row(health).value(), "9");
    ASSERT_TRUE(session.undo());
    EXPECT_EQ(entity(0).skills.size(), 2u) << "both came back in one step";
    ASSERT_TRUE(session.redo());
    EXPECT_TRUE(entity(0).skills.empty());
    // What the component doesn't offer, and what the window's characters can't show, is not touched.
    EXPECT_FALSE(panel.row(rowOf("fixed")).blocked().empty());
    panel.showEntity(0, 2);
    EXPECT_FALSE(panel.row(rowOf("Name")).blocked().empty());
}

TEST_F(ProjectPanelTest, PropertiesOfAComponentAreOnlyToBeLookedAt) {
    panel.showComponent(0);
    const size_t mass = rowOf("mass");
    EXPECT_EQ(panel.row(mass).value(), "3");
    EXPECT_EQ(panel.row(mass).facts().field, EntryField::IntField) << "by its type";
    EXPECT_TRUE(panel.row(mass).blocked().empty()) << "the keyboard comes to its help";
    EXPECT_NE(panel.tooltip(mass).find("Declared in "), std::string::npos);
    EXPECT_EQ(panel.setValue(mass, "4").why(),
              "This is the default, from the components file, which is changed there.");
    EXPECT_EQ(panel.putValue(mass, "4").why(), panel.row(mass).readOnly());
    EXPECT_FALSE(panel.canReset(0, panel.size(), ResetTo::Default));
    EXPECT_EQ(panel.row(mass).value(), "3");
    EXPECT_FALSE(session.hasChanges());
    panel.showComponent(1);
    EXPECT_EQ(panel.size(), 0u) << "there is none";
}

TEST_F(ProjectPanelTest, KeepsTheSessionsUndoAndTellsWhichEditsAreOfOtherRows) {
    panel.showEntity(0, 1);
    ASSERT_TRUE(panel.setValue(rowOf("mass"), "4"));
    EXPECT_FALSE(panel.takeOtherRows());
    EXPECT_TRUE(panel.canUndo());
    ASSERT_TRUE(panel.setValue(rowOf("Parent"), ""));
    EXPECT_TRUE(panel.takeOtherRows());
    EXPECT_FALSE(panel.takeOtherRows());
    EXPECT_FALSE(panel.undo());
    EXPECT_FALSE(panel.redo());
    EXPECT_EQ(asked, "undo redo ");

    // What it shows may be gone.
    session.removeLevel(0);
    session.removeLevel(0);
    panel.refresh();
    EXPECT_EQ(panel.size(), 0u);
}

TEST_F(ProjectPanelTest, OwnValuesGoWhateverTheirSpelling) {
    folder.write("c.xml",
                 "<Components><Component name='body'><Property name='solid' type='bool' value='FALSE' "
                 "edit='true'/><Property name='note' type='string' value='a~b' edit='true'/></Component>"
                 "</Components>");
    ASSERT_TRUE(session.open(
        project("<Behavior proj_file='b.xml'/><Level name='l'><Entity name='e' parent='g'>"
                "<Component name='body'><Edit name='note' value='x'/></Component>"
                "<Component name='body'><Edit name='solid' value='true'/></Component></Entity></Level>")));
    panel.showEntity(0, 0);
    const size_t solid = rowOf("solid"), note = rowOf("note");
    EXPECT_EQ(panel.row(solid).value(), "1");
    ASSERT_TRUE(panel.setValue(solid, "0"));
    EXPECT_TRUE(entity(0).components[1].edits.empty()) << "FALSE is the parent's, and so is false";
    EXPECT_EQ(panel.resetAll(ResetTo::Loaded), 0u) << "what was loaded is not what the parent has";
    EXPECT_EQ(panel.resetAll(ResetTo::Default), 1u);
    EXPECT_TRUE(entity(0).components[0].edits.empty()) << "what can't be shown is still the parent's";
    EXPECT_EQ(panel.row(note).value(), "a?b");
    ASSERT_TRUE(panel.setValue(note, "y"));
    EXPECT_EQ(entity(0).components[0].edits[0].value, "y");
}

TEST_F(ProjectPanelTest, DocumentationHasLinesAndMapsLieInTheProject) {
    panel.showLevel(0);
    const size_t doc = rowOf("Documentation"), map = rowOf("Map file");
    ASSERT_TRUE(panel.setValue(doc, "one\r\ntwo"));
    EXPECT_EQ(session.model().m_apLevels[0].m_doc, "one\ntwo");
    const std::string own = session.model().m_roots.project();
    prompt.paths = {own + "maps\\a.zlb", "C:\\elsewhere\\b.zlb"};
    EXPECT_EQ(panel.browse(map), "maps\\a.zlb");
    EXPECT_EQ(panel.browse(map), std::nullopt) << "the editor would look for it in the project folder";
    EXPECT_NE(prompt.texts().back().find("must be in the project folder"), std::string::npos);
    // Choosers open on what the field names.
    ASSERT_TRUE(panel.setValue(map, "maps\\old.zlb"));
    prompt.requests.clear();
    prompt.paths = {std::nullopt};
    EXPECT_EQ(panel.browse(map), std::nullopt);
    EXPECT_EQ(prompt.requests[0].startFolder, own + "maps");
    EXPECT_EQ(prompt.requests[0].fileName, "old.zlb");
    panel.showProject();
    prompt.paths = {std::nullopt};
    EXPECT_EQ(panel.browse(rowOf("Project folder")), std::nullopt);
    EXPECT_EQ(prompt.requests[1].title, "Select a folder...");
    EXPECT_EQ(prompt.requests[1].text, "Project folder");
}

TEST_F(ProjectPanelTest, SectionsWithoutATextHaveNoFile) {
    panel.showProject();
    ProjectField field;
    field.kind = Kind::Section;
    field.section = J8Section::UI;
    const auto row = panel.rowOf(field);
    ASSERT_TRUE(row);
    EXPECT_NE(panel.helpText(*row).find("There is no such file"), std::string::npos);
    EXPECT_EQ(panel.row(*row).facts().label, "UI (missing)");
    // While a path is typed nothing is looked for.
    folder.write("there.xml", "<x/>");
    ASSERT_TRUE(panel.setValue(*row, "proj:there.xml", true));
    EXPECT_FALSE(panel.takeOtherRows());
    panel.leaveField();
    EXPECT_TRUE(panel.takeOtherRows());
    panel.refresh();
    EXPECT_EQ(panel.row(*row).facts().label, "UI");
    EXPECT_NE(panel.helpText(*row).find("(proj)"), std::string::npos);
    EXPECT_NE(panel.setValue(*row, "somewhere.xml").why(), "");
    ASSERT_TRUE(panel.setValue(*row, ""));
    EXPECT_FALSE(session.model().section(J8Section::UI).isNamed());
}

// However often the rows are made anew, and wherever the entity has gone meanwhile.
TEST_F(ProjectPanelTest, WhatDiffersFromTheFileStaysMarked) {
    panel.showEntity(0, 1);
    ASSERT_TRUE(panel.setValue(rowOf("Name"), "twelve"));
    session.addEntity(0, 0, "new", "");
    session.moveEntity(0, 2, 0);
    session.duplicateLevel(0);
    session.moveLevel(0, 2);
    session.removeLevel(0);
    panel.showEntity(1, 0);
    ASSERT_EQ(panel.row(rowOf("Name")).value(), "twelve");
    EXPECT_TRUE(panel.row(rowOf("Name")).HasChanged());
    EXPECT_EQ(panel.row(rowOf("Name")).loadedValue(), "two");
    EXPECT_FALSE(panel.row(rowOf("Parent")).HasChanged());
    panel.showEntity(1, 1);
    EXPECT_EQ(panel.row(rowOf("Name")).value(), "new");
    EXPECT_FALSE(panel.row(rowOf("Name")).HasChanged()) << "the file has none";
    panel.showLevel(1);
    EXPECT_EQ(panel.changedCount(), 0u);

    ASSERT_EQ(session.save(), SaveResult::Saved);
    panel.showEntity(1, 0);
    EXPECT_FALSE(panel.row(rowOf("Name")).HasChanged()) << "saved";
    for (int i = 0; i < 6; ++i) {
        ASSERT_TRUE(session.undo());
    }
    panel.showEntity(0, 1);
    EXPECT_EQ(panel.row(rowOf("Name")).value(), "two");
    EXPECT_TRUE(panel.row(rowOf("Name")).HasChanged()) << "the file has the other name now";
}

TEST_F(ProjectPanelTest, RefusesNamesThatAreMissingOrTaken) {
    panel.showProject();
    EXPECT_EQ(panel.setValue(rowOf("Name"), "").why(), "Enter a Project Name.");
    panel.showEntity(0, 1);
    EXPECT_EQ(panel.setValue(rowOf("Name"), "one").why(),
              "There is an entity of that name in this level already.");
    panel.showLevel(1);
    EXPECT_EQ(panel.setValue(rowOf("Name"), "harbour").why(), "There is a level of that name already.");
    EXPECT_FALSE(session.hasChanges());
    EXPECT_TRUE(panel.setValue(rowOf("Name"), "one"));
}

TEST_F(ProjectPanelTest, ProblemsAndChangesHaveTheirPlaces) {
    const auto name = [](size_t entity) {
        ProjectField field;
        field.kind = Kind::EntityName;
        field.entity = entity;
        return field;
    };
    ProjectField health = name(0);
    health.kind = Kind::EntitySkill;
    health.num = 1;
    const std::string text = folder.read("game.xml");
    const auto at = [&](const char* what) { return static_cast<std::uint32_t>(text.find(what)); };
    const struct {
        std::uint32_t source, place;
        ProjectTarget target;
    } rows[] = {
        {0, 0, {}},
        {0, at("Project"), {}},
        {0, at("parent=\"g\">"), {ProjectTab::Levels, 0, 0, name(0)}},
        {0, at("value=\"5\""), {ProjectTab::Levels, 0, 0, health}},
        {0, at("two\""), {ProjectTab::Levels, 0, 1, name(1)}},
        {0, at("</Project>"), {ProjectTab::Levels, 1, {}}},
        {1, 1000, {ProjectTab::Behaviors, 0}},
        {9, 1000, {}},
    };
    for (const auto& row : rows) {
        ProjectProblem problem;
        problem.source = row.source;
        problem.place = row.place;
        const ProjectTarget target = targetOf(session.model(), problem);
        EXPECT_TRUE(target == row.target)
            << row.place << ": " << static_cast<int>(target.tab) << ' ' << target.first;
    }
    bool isMapFound = false;
    for (const ProjectProblem& problem : session.problems()) {
        if (problem.text.find("\"h.zlb\"") != std::string::npos) {
            isMapFound = targetOf(session.model(), problem) == ProjectTarget{ProjectTab::Levels, 0, {}};
        }
    }
    EXPECT_TRUE(isMapFound);

    using ChangeKind = ProjectChange::Kind;
    ProjectField changed = name(3);
    changed.level = 2;
    const struct {
        ChangeKind kind;
        bool undone;
        ProjectTarget target;
    } changes[] = {
        {ChangeKind::Value, true, {ProjectTab::Levels, 2, 3, changed}},
        {ChangeKind::LevelAdded, true, {ProjectTab::Levels, 1, {}}},
        {ChangeKind::LevelAdded, false, {ProjectTab::Levels, 2, {}}},
        {ChangeKind::LevelMoved, false, {ProjectTab::Levels, 5, {}}},
        {ChangeKind::EntityRemoved, true, {ProjectTab::Levels, 2, 3}},
        {ChangeKind::EntityRemoved, false, {ProjectTab::Levels, 2, 2}},
        {ChangeKind::EntityMoved, false, {ProjectTab::Levels, 2, 5}},
    };
    for (const auto& row : changes) {
        ProjectChange change;
        change.kind = row.kind;
        change.field.kind = Kind::EntityName;
        change.field.level = 2;
        change.field.entity = 3;
        change.to = 5;
        EXPECT_TRUE(targetOf(change, row.undone) == row.target) << static_cast<int>(row.kind);
    }
}

}  // namespace
