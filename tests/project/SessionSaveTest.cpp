// Saving a project: what it asks and keeps, and what others have written meanwhile.
#include <algorithm>

#include "tests/project/SessionFixture.h"
#include "tests/support/FaultyOsFiles.h"

using testing::ElementsAre;
using testing::HasSubstr;
using zoka::PromptAnswer;
using zoka::SaveResult;

namespace {

// What the window that has to go asks, and where the edits are when the project can't be written.
TEST_F(ProjectSessionTest, OffersEditsWhereTheWindowHasToGo) {
    const std::string old = folder.read("game.xml");
    session.offerUnsaved();
    ASSERT_TRUE(set("level/harbour/doc", "one"));
    prompt.answers = {PromptAnswer::No};
    session.offerUnsaved();
    EXPECT_THAT(prompt.texts(), ElementsAre("The window has to close, and an edit of 'game.xml' is not "
                                            "saved.\n\nKeep it?"));
    EXPECT_EQ(folder.read("game.xml"), old);

    ASSERT_TRUE(set("level/harbour/doc", "by\nthe = sea " + std::string(100, 'x')));
    ASSERT_TRUE(set("level/harbour/entity/guard/skill/1", std::nullopt));
    session.addLevel(0, "pier");
    for (const bool both : {true, false}) {
        const zoka::test::FaultyOsFiles faulty([&](int, std::string_view op, const std::string& file) {
            return op == "replaceFile" || (both && op == "renameNew" && file.ends_with(".zoka.old"));
        });
        prompt.asked.clear();
        prompt.answers = {PromptAnswer::Yes};
        session.offerUnsaved();
        const auto texts = prompt.texts();
        ASSERT_EQ(texts.size(), 3u);
        EXPECT_EQ(texts[0],
                  "The window has to close, and 3 edits of 'game.xml' are not saved.\n\nKeep them?");
        EXPECT_THAT(texts[1], HasSubstr("injected fault"));
        EXPECT_EQ(texts[2].starts_with(both ? "The edits could not be kept: Can't write '"
                                            : "The edits are in 'game.xml.zoka.old', beside the project"),
                  true)
            << texts[2];
        EXPECT_EQ(folder.read("game.xml"), old);
        EXPECT_EQ(folder.read("game.xml.zoka.old"),
                  both ? "<missing>"
                       : "level/harbour/doc = by\\nthe = sea " + std::string(100, 'x') +
                             "\nlevel/harbour/entity/guard/skill/1 without a value\nlevel/pier added\n");
    }
    prompt.answers = {PromptAnswer::Yes};
    session.offerUnsaved();
    EXPECT_FALSE(session.hasChanges());
    EXPECT_THAT(folder.read("game.xml"), HasSubstr("the = sea"));
    // What was saved and taken back is an edit too.
    session.undo();
    ASSERT_TRUE(session.redo() && session.undo() && session.undo());
    {
        const zoka::test::FaultyOsFiles faulty(zoka::test::FaultyOsFiles::every("replaceFile"));
        std::filesystem::remove(folder.native("game.xml.zoka.old"));
        prompt.answers = {PromptAnswer::Yes};
        session.offerUnsaved();
    }
    EXPECT_EQ(folder.read("game.xml.zoka.old"),
              "level/pier added, taken back\nlevel/harbour/entity/guard/skill/1 = 5\n");
}

TEST_F(ProjectSessionTest, SaveTellsWhatItLosesAndKeepsACopy) {
    const std::string with =
        project(std::string("<!-- mine -->") + kElements + "\n\t<Level name='c' sky='blue'/>\n" +
                "\t<Fog depth='2'><Color/></Fog>\n\t<Behavior proj_file='gone.xml'/>");
    ASSERT_TRUE(session.open(with));
    const std::string old = folder.read("game.xml");
    std::vector<std::string> lost;
    for (const zoka::ProjectProblem& loss : session.losses()) {
        lost.push_back(std::to_string(loss.line) + ": " + loss.text.substr(21));
    }
    EXPECT_THAT(lost, ElementsAre("3: the comment \"mine\"",
                                  "15: the attribute sky=\"blue\" of <Level name=\"c\" sky=\"blue\">",
                                  "16: <Fog depth=\"2\"> and what is in it",
                                  "17: <Behavior proj_file=\"gone.xml\">"));
    EXPECT_EQ(session.save(), SaveResult::NothingToSave);
    ASSERT_TRUE(set("name", "New"));
    prompt.answers = {PromptAnswer::No};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_EQ(folder.read("game.xml"), old);
    prompt.answers = {PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(prompt.asked.back().text, HasSubstr("line 16: <Fog depth=\"2\"> and what is in it\n"));
    EXPECT_EQ(folder.read("game.xml.1.bak"), old);
    EXPECT_TRUE(session.losses().empty());
    ASSERT_TRUE(set("name", "Newer"));
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(folder.read("game.xml.2.bak"), "<missing>") << "nothing was lost";
}

TEST_F(ProjectSessionTest, ChangesFromOutside) {
    const auto touch = [&] {
        std::string text = folder.read("game.xml");
        folder.write("game.xml", text.insert(text.find("<Level"), "<Level name='theirs'/>"));
    };
    ASSERT_TRUE(set("level/harbour/doc", "mine"));
    ASSERT_TRUE(set("name", "Redone"));
    ASSERT_TRUE(set("level/harbour/mapfile", "redone.zlb"));
    ASSERT_TRUE(session.undo());
    ASSERT_TRUE(session.undo());
    touch();
    const std::string theirs = folder.read("game.xml");
    prompt.answers = {PromptAnswer::Cancel, PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_EQ(folder.read("game.xml"), theirs);
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(get("level/harbour/doc"), "mine");
    EXPECT_EQ(manager.m_apLevels[0].m_name, "theirs");
    EXPECT_EQ(get("name"), "Game");
    EXPECT_TRUE(session.redo());
    EXPECT_EQ(get("name"), "Redone");
    EXPECT_TRUE(session.redo());
    EXPECT_EQ(get("level/harbour/mapfile"), "redone.zlb");
    EXPECT_FALSE(session.canRedo());
    EXPECT_TRUE(session.undo());
    EXPECT_TRUE(session.undo());
    EXPECT_EQ(get("name"), "Game");
    EXPECT_FALSE(session.hasChanges());
    EXPECT_TRUE(session.undo());
    EXPECT_EQ(get("level/harbour/doc"), "by the sea");

    ASSERT_TRUE(set("level/harbour/doc", "again"));
    touch();
    const std::string lost = folder.read("game.xml");
    prompt.answers = {PromptAnswer::No};
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(folder.read("game.xml.1.bak"), lost) << "what is overwritten is kept";

    ASSERT_TRUE(set("level/harbour/doc", "third"));
    folder.write("game.xml", "<Project><Level name='other'/></Project>");
    prompt.answers = {PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Failed);
    EXPECT_THAT(prompt.asked.back().text,
                HasSubstr("project file as it is now:\n\nlevel/harbour/doc = third\n"));
    EXPECT_EQ(get("level/harbour/doc"), "third") << "what finds no place is not lost";
    folder.write("game.xml", "<Project");
    ASSERT_TRUE(set("name", "x"));
    prompt.answers = {PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Failed);
    EXPECT_EQ(get("name"), "x") << "a broken file costs no edits";
}

TEST_F(ProjectSessionTest, LevelsAndEntitiesFindTheirPlaceInAChangedFile) {
    const auto shape = [&] {
        std::string text;
        for (const CJ8LevelData& level : manager.m_apLevels) {
            text += level.m_name + "(";
            for (const zoka::J8LevelEntity& entity : level.m_entities) {
                text += ' ' + entity.name;
            }
            text += ")";
        }
        return text;
    };
    using Edit = void (*)(zoka::ProjectSession&);
    const struct {
        Edit edit;
        const char* shape;
    } rows[] = {
        {[](auto& all) { all.removeLevel(1); }, "theirs()harbour( guard guard)"},
        {[](auto& all) { all.moveLevel(1, 0); }, "a/b#1=%()theirs()harbour( guard guard)"},
        {[](auto& all) { all.removeEntity(0, 0); }, "theirs()harbour( guard)a/b#1=%()"},
        {[](auto& all) { all.addEntity(0, 0, "new", ""); }, "theirs()harbour( new guard guard)a/b#1=%()"},
        {[](auto& all) {
             all.addEntity(0, 0, "new", "");
             all.moveEntity(0, 0, 2);
         },
         "theirs()harbour( guard guard new)a/b#1=%()"},
    };
    const std::string old = folder.read("game.xml");
    for (const auto& row : rows) {
        folder.write("game.xml", old);
        ASSERT_TRUE(session.open(path));
        row.edit(session);
        std::string theirs = old;
        folder.write("game.xml", theirs.insert(theirs.find("<Level"), "<Level name='theirs'/>"));
        prompt.answers = {PromptAnswer::Yes};
        EXPECT_EQ(session.save(), SaveResult::Saved);
        EXPECT_EQ(shape(), row.shape);
        while (session.undo()) {
        }
        EXPECT_EQ(shape(), "theirs()harbour( guard guard)a/b#1=%()");
    }
}

TEST_F(ProjectSessionTest, OverwritingAnothersFileTellsWhatThatOneLoses) {
    ASSERT_TRUE(session.open(project(std::string("<!-- mine -->") + kElements)));
    ASSERT_TRUE(set("name", "x"));
    std::string theirs = "<!-- theirs -->";
    for (int i = 0; i < 12; ++i) {
        theirs += "\n\t<Fog/>";
    }
    project(theirs + kElements);
    prompt.answers = {PromptAnswer::No, PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Saved);
    const std::string& text = prompt.asked.back().text;
    EXPECT_THAT(text, HasSubstr("line 3: the comment \"theirs\"\nline 4: <Fog>"));
    EXPECT_THAT(text, Not(HasSubstr("mine")));
    EXPECT_THAT(text, HasSubstr("and 3 more\nAll are listed under Problems and by zoka project check.\n"));
    EXPECT_THAT(folder.read("game.xml.1.bak"), HasSubstr("theirs"));
    // What is no project has nothing to tell line by line.
    ASSERT_TRUE(set("name", "y"));
    folder.write("game.xml", "no project");
    prompt.answers = {PromptAnswer::No};
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(folder.read("game.xml.2.bak"), "no project");
}

TEST_F(ProjectSessionTest, WhatIsWrittenWhileAQuestionStandsIsAskedAbout) {
    ASSERT_TRUE(session.open(project(std::string("<!-- mine -->") + kElements)));
    ASSERT_TRUE(set("name", "x"));
    const std::string theirs = folder.read("game.xml") + "<!-- theirs -->";
    prompt.whenAsked = [&] { folder.write("game.xml", theirs); };
    prompt.answers = {PromptAnswer::Yes, PromptAnswer::Cancel};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_EQ(folder.read("game.xml"), theirs);
    EXPECT_THAT(prompt.asked.back().text, HasSubstr("The project file was changed on the disk "));

    prompt.whenAsked = nullptr;
    session.asksAboutOthersChanges = false;
    prompt.answers = {PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(prompt.asked.back().text, HasSubstr("the comment \"theirs\"")) << "taken over unasked";
}

TEST_F(ProjectSessionTest, PagesHearOfANewModelBeforeAnythingIsAsked) {
    std::vector<size_t> asked;
    session.modelReplaced = [&] { asked.push_back(prompt.asked.size()); };
    ASSERT_TRUE(session.open(project(std::string("<!-- mine -->") + kElements)));
    ASSERT_TRUE(set("name", "x"));
    folder.write("game.xml", folder.read("game.xml") + "\n");
    prompt.answers = {PromptAnswer::Yes, PromptAnswer::No};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_THAT(asked, ElementsAre(0, 1)) << "by open, and between the two questions";
    EXPECT_EQ(get("name"), "x");
}

// Half a window that shows the new model is no window to go on with.
TEST_F(ProjectSessionTest, MemoryThatRunsOutWhileTheNewModelIsShownIsTold) {
    ASSERT_TRUE(set("name", "x"));
    session.modelReplaced = [] { throw std::bad_alloc(); };
    EXPECT_THROW(static_cast<void>(session.save()), std::bad_alloc);
    EXPECT_FALSE(session.hasChanges()) << "it is saved";
    EXPECT_THAT(folder.read("game.xml"), HasSubstr("name=\"x\""));
}

TEST_F(ProjectSessionTest, AFileThatIsGoneIsSavedAnewOnlyAfterAQuestion) {
    ASSERT_TRUE(set("level/harbour/doc", "mine"));
    std::filesystem::remove(folder.native("game.xml"));
    prompt.answers = {PromptAnswer::No, PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_EQ(folder.read("game.xml"), "<missing>");
    EXPECT_TRUE(session.hasChanges());
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(folder.read("game.xml"), HasSubstr("mine"));
    EXPECT_THAT(prompt.texts()[0], testing::StartsWith("The project file is gone: "));
}

TEST_F(ProjectSessionTest, AFailedReloadLeavesEverything) {
    ASSERT_TRUE(set("level/harbour/doc", "mine"));
    const std::string before = all();
    const struct {
        const char* file;  // null: none
        const char* why;
    } rows[] = {{nullptr, "Can't read"},
                {"<Project", "game.xml:1:"},
                {"<Other/>", "game.xml:1:1: Error: First Tag not found."}};
    for (const auto& row : rows) {
        std::filesystem::remove(folder.native("game.xml"));
        if (row.file) {
            folder.write("game.xml", row.file);
        }
        prompt.answers = {PromptAnswer::Yes};
        const zoka::Outcome failed = session.reload();
        EXPECT_FALSE(failed);
        EXPECT_THAT(failed.why(), HasSubstr(row.why));
        EXPECT_EQ(all(), before);
        prompt.answers = {PromptAnswer::No};
        const zoka::Outcome declined = session.reload();
        EXPECT_FALSE(declined);
        EXPECT_EQ(declined.why(), "") << "nothing failed: the user kept the changes";
    }
    EXPECT_TRUE(session.undo());
    EXPECT_EQ(get("level/harbour/doc"), "by the sea");
}

TEST_F(ProjectSessionTest, CloseAndReloadAsk) {
    EXPECT_TRUE(session.close());
    ASSERT_TRUE(set("name", "x"));
    prompt.answers = {PromptAnswer::Cancel, PromptAnswer::No, PromptAnswer::No, PromptAnswer::Yes};
    EXPECT_FALSE(session.close());
    EXPECT_TRUE(session.close());
    EXPECT_FALSE(session.reload());
    EXPECT_EQ(get("name"), "x");
    EXPECT_TRUE(session.reload());
    EXPECT_EQ(get("name"), "Game");
    ASSERT_TRUE(set("name", "x"));
    folder.write("game.xml", "<Project");
    prompt.answers = {PromptAnswer::Yes};
    EXPECT_THAT(session.reload().why(), HasSubstr("game.xml:1:"));
    EXPECT_EQ(get("name"), "x") << "a broken file costs no edits";
}

TEST_F(ProjectSessionTest, FaultsAtEveryStepOfASave) {
    project(std::string("<!-- kept in the copy -->") + kElements);
    ASSERT_TRUE(session.open(path));
    const std::string old = folder.read("game.xml");
    for (int failing = 1;; ++failing) {
        folder.write("game.xml", old);
        ASSERT_TRUE(session.open(path));
        ASSERT_TRUE(set("name", "x"));
        prompt.answers = {PromptAnswer::Yes};
        prompt.asked.clear();
        zoka::test::FaultyOsFiles faulty(zoka::test::FaultyOsFiles::nth(failing));
        const SaveResult saved = session.save();
        prompt.answers.clear();
        const std::string now = folder.read("game.xml");
        if (faulty.operations() < failing) {
            EXPECT_EQ(saved, SaveResult::Saved);
            break;
        }
        EXPECT_TRUE(now == old || now.find("name=\"x\"") != now.npos) << failing << "\n" << now;
        ASSERT_FALSE(prompt.asked.empty()) << failing;
        EXPECT_TRUE(saved == SaveResult::Saved || prompt.asked.back().buttons == zoka::PromptButtons::Ok)
            << failing;
        EXPECT_EQ(get("name"), "x") << "operation " << failing << " cost the edit";
        EXPECT_TRUE(session.undo());
        EXPECT_EQ(get("name"), "Game") << failing;
        ASSERT_LT(failing, 200);
    }
}

TEST_F(ProjectSessionTest, AFileThatCannotBeWrittenGetsNoCopy) {
    ASSERT_TRUE(session.open(project(std::string("<!-- mine -->") + kElements)));
    ASSERT_TRUE(set("name", "x"));
    prompt.answers = {PromptAnswer::Yes};
    {
        zoka::test::FaultyOsFiles faulty([&](int, std::string_view op, const std::string& file) {
            return op == "openExisting" && file == path;
        });
        EXPECT_EQ(session.save(), SaveResult::Failed);
        EXPECT_THAT(prompt.asked.back().text, HasSubstr("Can't write '" + path + "'"));
    }
    EXPECT_EQ(folder.read("game.xml.1.bak"), "<missing>");
}

}  // namespace
