// What the Project Manager decides: edits, undo, what is found.
#include <algorithm>
#include <chrono>
#include <random>

#include "tests/project/SessionFixture.h"
#include "tests/support/FaultyOsFiles.h"

using testing::ElementsAre;
using testing::HasSubstr;
using zoka::ProjectField;
using zoka::ProjectSession;
using zoka::PromptAnswer;
using zoka::SaveResult;
using Kind = zoka::ProjectField::Kind;

namespace {

TEST_F(ProjectSessionTest, SetsSeveralValuesOrNone) {
    const auto field = [this](const char* address) { return *zoka::fieldAt(manager, address); };
    const ProjectField doc = field("level/harbour/doc"),
                       mass = field("level/harbour/entity/guard/component/body/mass");
    ASSERT_TRUE(set("level/harbour/doc", "undone"));
    session.undo();
    const std::string before = all();
    EXPECT_FALSE(session.setValues({{doc, "by the lake"}, {mass, "heavy"}}));
    EXPECT_EQ(all(), before);
    EXPECT_TRUE(session.canRedo());  // what was undone, not what was refused
    EXPECT_TRUE(session.setValues({{doc, "by the lake"}, {mass, "8"}}));
    EXPECT_EQ(get("level/harbour/doc"), "by the lake");
    EXPECT_EQ(session.editsDone(), 1U);
    session.undo();
    EXPECT_EQ(all(), before);
}

// A window may ask about rows that have gone meanwhile.
TEST_F(ProjectSessionTest, MovesOnlyEntitiesThatAreThere) {
    const std::string before = all();
    const size_t places[][2] = {{0, 2}, {1, 0}, {2, 0}, {7, 0}};  // the second level is empty
    for (const auto& [level, entity] : places) {
        EXPECT_FALSE(session.moveEntity(level, entity, 0)) << level << " " << entity;
    }
    EXPECT_FALSE(session.hasChanges());
    EXPECT_TRUE(session.moveEntity(0, 0, 9));
    EXPECT_TRUE(session.hasChanges());
    session.undo();
    EXPECT_EQ(all(), before);
}

// A window that is closed while its project loads leaves no lines about files that nothing is wrong with.
TEST_F(ProjectSessionTest, LogsNothingOfALoadFromWhereItIsStopped) {
    folder.write("game.xml",
                 "<Project name='Game'>" + paths + kElements + "<Behavior proj_file='none.xml'/></Project>");
    const auto logged = [this](size_t stopAt, size_t& asked) {
        zoka::closeDebugLog();
        folder.write("log.xml", "");
        asked = 0;
        const ProjectSession::Loaded loaded =
            ProjectSession::read(path, [&](size_t, size_t) { return ++asked != stopAt; });
        EXPECT_EQ(bool(loaded.usable), stopAt == 0) << stopAt;
        zoka::closeDebugLog();
        return folder.read("log.xml").empty() ? "" : log();
    };
    size_t calls = 0, asked = 0;
    const std::string whole = logged(0, calls);
    ASSERT_GE(calls, 3U) << "the project, its behaviours, their components";
    ASSERT_NE(whole, "");
    for (size_t stopAt = 1; stopAt <= calls; ++stopAt) {
        const std::string stopped = logged(stopAt, asked);
        EXPECT_EQ(asked, stopAt);
        EXPECT_LT(stopped.size(), whole.size());
        EXPECT_EQ(stopped, whole.substr(0, stopped.size())) << "stopped at " << stopAt;
    }
    EXPECT_EQ(logged(1, asked), "");
}

TEST_F(ProjectSessionTest, AddressesNameEveryValue) {
    EXPECT_THAT(all(), HasSubstr("level/harbour/entity/guard/skill/1=5\n"
                                 "level/harbour/entity/guard/component/body/mass=7\n"
                                 "level/harbour/entity/guard#2/name=guard\n"));
    EXPECT_THAT(all(), HasSubstr("level/a%2Fb%231%3D%25/name=a/b#1=%\n"));
    zoka::forEachField(
        manager, [&](const ProjectField& field, const std::string& address, const auto& value) {
            EXPECT_EQ(zoka::addressOf(manager, field), address);
            EXPECT_EQ(zoka::fieldValue(manager, field), value) << address;
            const auto found = zoka::fieldAt(manager, address);
            EXPECT_TRUE(found && zoka::fieldValue(manager, *found) == zoka::fieldValue(manager, field))
                << address;
        });
    for (const char* bad : {"", "level", "level/", "level/none/name", "level/harbour", "level/harbour#3/name",
                            "level/harbour#x/name", "level/harbour/entity/guard/skill/x", "section/sky",
                            "level/harbour/entity/guard/component/body", "level/harbour/entity//name"}) {
        EXPECT_NE(zoka::fieldAt(manager, bad).why(), "") << bad;
    }
}

TEST_F(ProjectSessionTest, EditsAreRefusedTakenAndUndone) {
    const std::string before = all();
    const struct {
        const char* address;
        const char* value;
        const char* why;
    } refused[] = {
        {"level/harbour/entity/guard/skill/1", "11", "outside its limits (min 0, max 10)"},
        {"level/harbour/entity/guard/skill/1", "1.5", "a whole number is needed"},
        {"level/harbour/entity/guard/skill/1", " 9",
         "No blank may stand in front of the number or behind it."},
        {"level/harbour/entity/guard/skill/2", "x", "one of these is needed: t, f"},
        {"level/harbour/entity/guard/component/body/solid", "maybe", "true or false is needed"},
        {"level/harbour/name", "", "A name is needed"},
        {"name", "", "Enter a Project Name."},
        {"section/UI", "ui.xml", "must stand in front"},
        {"level/harbour/name", nullptr, "A name is needed"},
        {"level/harbour/entity/guard/name", nullptr, "A name is needed"},
        {"name", nullptr, "no parent gives one"},
        {"paths/project", nullptr, "no parent gives one"},
        {"name", "a\x01z", "can't hold control character 1"},
        {"level/harbour/doc", "caf\xE9", "no UTF-8"},
    };
    for (const auto& row : refused) {
        EXPECT_FALSE(set(row.address, row.value ? std::optional<std::string>(row.value) : std::nullopt))
            << row.address;
        EXPECT_THAT(why, HasSubstr(row.why));
        EXPECT_EQ(all(), before);
        EXPECT_FALSE(session.hasChanges());
    }
    EXPECT_TRUE(set("level/harbour/entity/guard/skill/2", "f"));
    EXPECT_TRUE(set("level/harbour/entity/guard/skill/1", std::nullopt)) << "back to the parent's";
    EXPECT_TRUE(set("section/UI", "proj:b.xml"));
    EXPECT_EQ(manager.section(zoka::J8Section::UI).m_type, CJ8File::kProjFile) << "found on the disk";
    {
        const zoka::test::FaultyOsFiles disk(zoka::test::FaultyOsFiles::never());
        EXPECT_TRUE(set("section/UI", "proj:b.xm", true));
        EXPECT_TRUE(set("section/UI", "proj:b.xml", true));
        EXPECT_EQ(disk.operations(), 0) << "looked for while it is typed, and given up";
    }
    EXPECT_TRUE(session.leaveField());
    EXPECT_EQ(manager.section(zoka::J8Section::UI).m_type, CJ8File::kProjFile);
    EXPECT_EQ(get("level/harbour/entity/guard/skill/1"), "<none>");
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(session.undo());
    }
    EXPECT_FALSE(session.undo());
    EXPECT_EQ(all(), before);
    EXPECT_FALSE(session.hasChanges());
    for (const std::optional<std::string>& typed : {std::optional<std::string>("t"), {"f"}, {}}) {
        EXPECT_TRUE(set("level/harbour/entity/guard/skill/2", typed, true));
    }
    EXPECT_FALSE(session.canUndo()) << "what was typed was given up";
    EXPECT_FALSE(session.hasChanges());
    EXPECT_EQ(all(), before);
    for (const char* typed : {"h", "ha", "har"}) {
        EXPECT_TRUE(set("name", typed, true));
    }
    EXPECT_TRUE(session.undo());
    EXPECT_EQ(get("name"), "Game") << "typing is one step";
}

TEST_F(ProjectSessionTest, LevelsAndEntitiesMoveAndComeBack) {
    const std::string before = session.text();
    std::mt19937 random(20);
    const auto below = [&](size_t n) { return n ? random() % n : 0; };
    for (int i = 0; i < 400; ++i) {
        const size_t levels = manager.m_apLevels.size(), level = below(levels);
        const size_t entities = levels ? manager.m_apLevels[level].m_entities.size() : 0;
        switch (random() % 9) {
            case 0:
                session.addLevel(below(levels + 1), "new");
                break;
            case 1:
                levels ? session.duplicateLevel(level) : (void)0;
                break;
            case 2:
                levels > 3 ? session.removeLevel(level) : (void)0;
                break;
            case 3:
                levels ? session.moveLevel(level, below(levels)) : (void)0;
                break;
            case 4:
                levels ? session.addEntity(level, below(entities + 1), "e", "g") : (void)0;
                break;
            case 5:
                entities ? session.duplicateEntity(level, below(entities)) : (void)0;
                break;
            case 6:
                entities ? session.removeEntity(level, below(entities)) : (void)0;
                break;
            case 7:
                entities ? (void)session.moveEntity(level, below(entities), below(entities)) : (void)0;
                break;
            default:
                if (entities) {
                    ProjectField field;
                    field.kind = Kind::EntitySkill;
                    field.level = level;
                    field.entity = below(entities);
                    field.num = 1 + static_cast<int>(below(3));
                    static_cast<void>(session.setValue(
                        field, random() % 3 ? std::optional<std::string>("1") : std::nullopt));
                }
        }
    }
    const std::string after = all();
    while (session.undo()) {
    }
    const auto withoutDate = [](std::string text) { return text.erase(text.find("date="), 17); };
    EXPECT_EQ(withoutDate(session.text()), withoutDate(before));
    while (session.redo()) {
    }
    EXPECT_EQ(all(), after);
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(all(), after);
    while (session.undo()) {
    }
    EXPECT_EQ(withoutDate(session.text()), withoutDate(before)) << "undo goes on after a save";
}

TEST_F(ProjectSessionTest, RowsOfAnEntityTakeItsParentsWords) {
    std::string text;
    for (const zoka::ProjectRow& row : session.entityRows(0, 0)) {
        text += row.facts.label + "|" + row.facts.value + "|" + row.inherited.value_or("-") + "|" +
                (row.isOwn ? "own" : "") + (row.differs() ? " differs" : "") +
                (row.hasField && !row.editable ? " shown" : "") + "\n";
    }
    EXPECT_EQ(text,
              "Name|guard|-|own differs\nParent|g|-|own differs\nSkills||-|\nHealth|5|9|own differs\n"
              "Side|Town|t|\nbody||-|\nmass|7|3|own differs\nsolid|0|FALSE|\nfixed|x|x| shown\n");
    const std::vector<zoka::ProjectRow> rows = session.entityRows(0, 0);
    EXPECT_EQ(rows[3].facts.field, zoka::EntryField::Slider);
    EXPECT_THAT(rows[4].facts.options, ElementsAre("Town", "Fort"));
    EXPECT_EQ(rows[4].stored("Fort"), "f");
    EXPECT_EQ(rows[7].stored("1"), "true") << "in the words of the file";
    EXPECT_EQ(zoka::extrasOf(rows[3].facts).standard, "9");
}

// Everything has a place of its own: elements without attributes, comments and texts too.
TEST_F(ProjectSessionTest, WhatIsFoundStandsWhereItSays) {
    const struct {
        const char* file;
        std::vector<std::string> lost;
    } rows[] = {
        {"<!-- first --><Project name='x'/>", {"1:1: the comment \"first\""}},
        {"<Project name='n' date='1' vers='8'>\n<Paths proj_file='' j8_file=''/>\n<!-- a -->\n<Level "
         "name='l'>\n"
         "<Doc>d\n <!-- c --></Doc>\n stray\n<!-- a --></Level>\n<Foo/><Foo/></Project>\n<!-- e -->",
         {"3:1: the comment \"a\"", "6:2: the comment \"c\"", "7:2: the text \"stray\"",
          "8:1: the comment \"a\"", "9:1: <Foo>", "9:7: <Foo>", "10:1: the comment \"e\""}},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(session.open(folder.write("places.xml", row.file)));
        std::vector<std::string> lost;
        for (const zoka::ProjectProblem& loss : session.losses()) {
            lost.push_back(std::to_string(loss.line) + ":" + std::to_string(loss.column) + ": " +
                           loss.text.substr(21));
        }
        EXPECT_EQ(lost, row.lost);
    }
    ASSERT_TRUE(session.open(folder.write("places.xml", "<Project>\n<Level/>\n <Display/></Project>")));
    const std::string text = ProjectSession::problemsText(session.problems());
    EXPECT_THAT(text,
                HasSubstr("places.xml:2:1: warning: Warning (LoadBehavior)  :Level found without name"));
    EXPECT_THAT(text, HasSubstr("places.xml:3:2: error: This element names no file"));
    EXPECT_THAT(text, HasSubstr("places.xml:1:1: warning: (LoadFromXML): No Vers."));
}

TEST_F(ProjectSessionTest, TheCheckNamesThePlaceOfEachValue) {
    folder.write("c.xml",
                 "<Components>\n<Component name='body'><Property name='fixed' type='int' value='1'>\n"
                 "<Constraint type='max' value='abc'/></Property></Component></Components>");
    folder.write("b.xml",
                 "<Behaviors><Component proj_file='c.xml'/>\n<Behavior name='g' class='c' group='g'>\n"
                 "<Doc>d</Doc>\n<Skill num='1' name='s' type='int' value='1'><Constraint type='step' "
                 "value='x'/></Skill>\n<Component name='nope'/>\n<Component name='body'>\n<Edit name='zz' "
                 "value='1'/></Component></Behavior></Behaviors>");
    ASSERT_TRUE(session.open(folder.write(
        "places.xml", "<Project name='n' date='1' vers='8'>\n<Paths proj_file='" + folder.path("") +
                          "' j8_file=''/>\n<Behavior proj_file='b.xml'/>\n<Level name='l'><Entity "
                          "name='e' parent='g'>\n<Component name='body'>\n<Edit name='fixed' value='5'/>\n"
                          "<Edit name='zz' value='1'/></Component></Entity></Level></Project>")));
    const std::string text = ProjectSession::problemsText(session.problems());
    for (const char* found :
         {"c.xml:2:24: warning: limit max of property \"fixed\" of component \"body\" is \"abc\"",
          "b.xml:4:1: warning: limit step of skill 1 (s) of behavior \"g\" is \"x\": a number is needed",
          "b.xml:5:1: warning: component \"nope\" of behavior \"g\" is in no components file",
          "b.xml:7:1: warning: \"zz\" of component \"body\" of behavior \"g\" is no property",
          "places.xml:6:1: warning: \"fixed\" of component \"body\" of entity \"e\": the component does not "
          "let entities change it",
          "places.xml:7:1: warning: \"zz\" of component \"body\" of entity \"e\" is no property"}) {
        EXPECT_THAT(text, HasSubstr(found));
    }
}

TEST_F(ProjectSessionTest, AFileKeepsTheKindThatItWasGiven) {
    const std::string elsewhere = folder.write("c.xml", "<UI/>");
    ASSERT_TRUE(set("section/UI", "file:" + elsewhere));
    ASSERT_TRUE(set("section/UI", "proj:" + elsewhere));
    EXPECT_EQ(get("section/UI"), "proj:" + elsewhere) << "although there is a file of that name";
    EXPECT_EQ(manager.section(zoka::J8Section::UI).m_type, CJ8File::kNotValid);
}

// Of a long file on one line too.
TEST_F(ProjectSessionTest, ProblemsOfALongLineTakeNoLongerThanOfShortOnes) {
    std::string text = "<Project name='n' date='1' vers='8'><Paths proj_file='' j8_file=''/>";
    const size_t first = text.size();
    const std::string level = "<Level name='\xC3\xA4' sky='blue'><Doc>d</Doc></Level>";
    for (int i = 0; i < 20000; ++i) {
        text += level;
    }
    ASSERT_TRUE(session.open(folder.write("long.xml", text + "</Project>")));
    const auto start = std::chrono::steady_clock::now();
    const std::vector<zoka::ProjectProblem> lost = session.losses();
    const std::vector<zoka::ProjectProblem> all = session.problems();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    ASSERT_EQ(lost.size(), 20000u);
    EXPECT_EQ(lost.back().column, static_cast<int>(first + 19999 * (level.size() - 1) + 1));
    EXPECT_EQ(all.size(), 20000u * 3 + 1)
        << "lost, no map, all but one a second time; two sections are missing";
}

TEST_F(ProjectSessionTest, LongListsOfChoicesAreReadOnce) {
    std::string list, edits;
    for (int i = 0; i < 20000; ++i) {
        list += (i > 0 ? "," : "") + std::to_string(i);
        edits += "<Entity name='e" + std::to_string(i) + "' parent='g'><Skill num='1' value='" +
                 std::to_string(19999 + i % 2) + "'/></Entity>";
    }
    folder.write(
        "b.xml",
        "<Behaviors><Behavior name='g'><Skill num='1' name='s' type='int'><Constraint type='list' value='" +
            list + "'/></Skill></Behavior></Behaviors>");
    ASSERT_TRUE(session.open(project("<Behavior proj_file='b.xml'/><Level name='l'>" + edits + "</Level>")));
    const auto start = std::chrono::steady_clock::now();
    size_t refused = 0;
    for (const zoka::ProjectProblem& problem : session.problems()) {
        refused += problem.text.find("is needed: 0, 1, ") != std::string::npos;
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(refused, 10000u);
}

// Texts are UTF-8, paths and what the user is told in the system's set, whatever set the process reads files in.
TEST_F(ProjectSessionTest, CharactersBeyondAscii) {
    const std::string cafe = "Caf\xC3\xA9", inFile = zoka::pathFromXml(cafe);
    folder.write(inFile + ".xml", "<Behaviors><Behavior name='" + cafe + "'/></Behaviors>");
    const std::string file =
        folder.write(inFile, "<!--" + cafe + "-->\n<Project name='" + cafe + "' date='1' vers='8'>" + paths +
                                 "<Behavior proj_file='" + cafe + ".xml'/><Level name='" + cafe + "' x='" +
                                 cafe + "'><Doc>a</Doc></Level></Project>");
    for (const XMLCharset set : {XMLCharset::Platform, XMLCharset::Utf8}) {
        zoka::setXmlCharset(set);
        EXPECT_TRUE(session.open(file));
        EXPECT_EQ(get("name"), cafe);
        EXPECT_EQ(get("level/" + cafe + "/doc"), "a");
        const std::string text = ProjectSession::problemsText(session.problems());
        EXPECT_THAT(text, HasSubstr("\\" + cafe + ":2:"));
        EXPECT_THAT(text, HasSubstr("\\" + cafe + ".xml:1:12: warning: Warning (LoadBehavior) " + cafe));
        EXPECT_TRUE(session.setValue(*zoka::fieldAt(manager, "level/" + cafe + "/doc"), cafe));
        EXPECT_THAT(session.changesText(), HasSubstr("<Doc>" + cafe + "</Doc>"));
    }
    prompt.answers = {PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(prompt.texts().back(), HasSubstr("\"" + inFile + "\""));
    EXPECT_THAT(folder.read(inFile), HasSubstr("<Doc>" + cafe + "</Doc>"));
    EXPECT_THAT(session.changesText(), testing::Not(HasSubstr("\xEF\xBB\xBF"))) << "no window shows a mark";
}

}  // namespace
