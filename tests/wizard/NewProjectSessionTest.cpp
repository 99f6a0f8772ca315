// The new-project dialog without its window.
#include "J8ProjectWizard/NewProjectSession.h"

#include <algorithm>

#include "tests/support/FaultyOsFiles.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/wizard/Suite.h"

namespace {

using namespace zoka;
using namespace zoka::test;
using Texts = std::vector<std::string>;

class NewProjectSessionTest : public testing::Test {
protected:
    void SetUp() override { addFullWizard(suite); }

    void fill(NewProjectSession& session) const {
        session.setText(NewProjectField::Name, "Game");
        session.setText(NewProjectField::Path, suite.folder.path("games"));
        session.setText(NewProjectField::FolderName, "g");
    }
    static void look(NewProjectSession& session) {
        for (const std::string& path : session.toLookAt()) {
            session.seen(lookAt(path));
        }
    }
    static std::optional<NewProject> ok(NewProjectSession& session) {
        return session.ok([](const WizardJob& job) { job(nullptr); });
    }

    Suite suite;
    ScriptedPrompt prompt;
};

TEST_F(NewProjectSessionTest, SaysWhatIsMissingInItsOrder) {
    suite.wizard("full.xml", "<Desc>d</Desc><Defaults/>");
    std::filesystem::remove_all(suite.folder.native("templates/xml"));
    NewProjectSession session(prompt);
    EXPECT_EQ(session.state(), "Choose a wizard.");
    EXPECT_FALSE(ok(session));
    session.select(0);
    const std::pair<NewProjectField, const char*> steps[] = {
        {NewProjectField::Name, "Enter a Project Name."},
        {NewProjectField::Path, "Enter a Project Path."},
        {NewProjectField::FolderName, "Enter a Project Folder Name."}};
    Texts expected = {"Select a Wizard."};
    for (const auto& [field, message] : steps) {
        EXPECT_FALSE(ok(session));
        expected.push_back(message);
        EXPECT_EQ(session.asked(), field);
        session.setText(field, suite.folder.path("games"));
    }
    EXPECT_FALSE(ok(session));
    expected.push_back("Error: Bad LevelMap name.");
    EXPECT_TRUE(session.state().starts_with("This wizard names no level map"));
    suite.wizard("full.xml", "<Desc>d</Desc><Defaults><LevelMap>m</LevelMap></Defaults>");
    session.select(0);
    fill(session);
    EXPECT_FALSE(ok(session));
    expected.push_back("Enter a J8 Templates Path.");
    EXPECT_EQ(prompt.texts(), expected);
    EXPECT_EQ(session.asked(), NewProjectField::TemplatesPath);
    EXPECT_EQ(session.state(), "Still needed: a J8 templates path.");
    // A folder that isn't there is no hindrance, but wrong.
    const std::string gone = suite.folder.path("nowhere");
    session.setText(NewProjectField::TemplatesPath, gone);
    EXPECT_FALSE(session.isWrong()) << "nobody has looked yet";
    look(session);
    EXPECT_TRUE(session.state().starts_with("There is no J8 templates folder " + gone + ". OK makes "))
        << session.state();
    EXPECT_TRUE(session.isWrong());
    session.setText(NewProjectField::TemplatesPath, suite.folder.path("games"));
    EXPECT_FALSE(session.isWrong());
}

TEST_F(NewProjectSessionTest, FillsTheFieldsAndRemembersWhatWasTyped) {
    suite.wizard(
        "full.xml",
        "<Title>A</Title><Desc>one&#10;two</Desc><Defaults><Name>NA</Name><Docs>D1&#10;D2</Docs></Defaults>");
    suite.wizard("plain.xml", "<Title>B</Title>");
    NewProjectSession session(prompt);
    const int a = session.title(0) == "A" ? 0 : 1;
    session.select(a);
    EXPECT_EQ(session.description(), "one\r\ntwo");
    EXPECT_EQ(session.text(NewProjectField::Name), "NA");
    EXPECT_EQ(session.text(NewProjectField::Docs), "D1\r\nD2");
    EXPECT_EQ(session.text(NewProjectField::TemplatesPath),
              systemFiles().currentFolder() + "\\templates\\xml\\");
    session.setText(NewProjectField::Name, "Typed");
    session.setText(NewProjectField::Path, "C:\\games");
    session.setText(NewProjectField::FolderName, "f");
    session.select(1 - a);
    EXPECT_EQ(session.description(), "<none>");
    session.select(5);
    EXPECT_EQ(session.description(), "<bad path>");
    session.select(a);
    EXPECT_EQ(session.text(NewProjectField::Name), "Typed");
    EXPECT_EQ(session.text(NewProjectField::FolderName), "f");
    EXPECT_EQ(session.rowName(0), "f\\");
    EXPECT_EQ(session.rowNote(0), "in C:\\games");
}

// On a slow disk: what is typed before the wizard is read stays, and is no other wizard's.
TEST_F(NewProjectSessionTest, KeepsWhatIsTypedWhileAWizardIsRead) {
    suite.wizard("full.xml",
                 "<Title>A</Title><Desc>a</Desc><Defaults><Name>NA</Name><Docs>DA</Docs></Defaults>");
    suite.wizard("other.xml",
                 "<Title>B</Title><Desc>b</Desc><Defaults><Name>NB</Name><Docs>DB</Docs></Defaults>");
    NewProjectSession session(prompt);
    const int a = session.title(0) == "A" ? 0 : 1;
    const auto texts = [&] {
        return session.text(NewProjectField::Name) + '|' + session.text(NewProjectField::Docs) + '|' +
               session.text(NewProjectField::Path);
    };
    session.choose(a);
    EXPECT_TRUE(session.isReading());
    EXPECT_EQ(session.state(), "Reading the wizard...");
    EXPECT_FALSE(session.isWrong());
    session.setText(NewProjectField::Name, "Early");
    session.setText(NewProjectField::Path, "C:\\g");
    session.opened(session.read(a));
    EXPECT_FALSE(session.isReading());
    EXPECT_EQ(texts(), "Early|DA|C:\\g");
    EXPECT_EQ(session.description(), "a");
    // Left before it is read.
    session.choose(1 - a);
    session.setText(NewProjectField::Docs, "B's");
    session.choose(a);
    session.opened(session.read(a));
    EXPECT_EQ(texts(), "Early|DA|C:\\g");
    session.choose(1 - a);
    session.setText(NewProjectField::Name, "B");
    session.choose(a);
    session.select(1 - a);
    EXPECT_EQ(texts(), "B|B's|C:\\g");
    session.setText(NewProjectField::Docs, "later");
    session.select(a);
    session.select(1 - a);
    EXPECT_EQ(texts(), "B|later|C:\\g");
    // OK reads it.
    session.choose(a);
    session.setText(NewProjectField::FolderName, "g");
    EXPECT_FALSE(ok(session));
    EXPECT_FALSE(session.isReading());
    EXPECT_EQ(session.description(), "a");
}

TEST_F(NewProjectSessionTest, MakesWhatItShows) {
    NewProjectSession session(prompt);
    session.select(0);
    fill(session);
    for (const std::string& path : session.toLookAt()) {
        EXPECT_TRUE(session.state().ends_with(" so far...")) << session.state();
        session.seen(lookAt(path));
    }
    EXPECT_EQ(session.state(), "OK makes 3 folders and 8 files, 149 bytes.");
    std::string rows;
    for (size_t i = 0; i < session.tree().rows().size(); ++i) {
        rows +=
            std::string(static_cast<size_t>(session.tree().rows()[i].depth), ' ') + session.rowName(i) + "|";
    }
    EXPECT_EQ(rows,
              "g\\| c.txt| one.txt| maps\\|  deep\\|   two.txt| harbour.zlm| harbour.zlb| harbour.zun| "
              "main.c| main.kez| main.xml|");
    const auto made = ok(session);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->folder, suite.folder.path("games") + "\\g\\");
    EXPECT_EQ(made->level, "harbour");
    EXPECT_EQ(suite.tree("games/g").size(), 10u);
    EXPECT_EQ(prompt.texts(), Texts());
}

TEST_F(NewProjectSessionTest, TellsOfHindrancesBeforeOk) {
    suite.write("games/there/x", "");
    NewProjectSession session(prompt);
    session.select(0);
    fill(session);
    const std::pair<const char*, const char*> rows[] = {
        {"there", "There is a folder or file of that name already: "},
        {"con", "The folder name \"con\" is a device of the system."},
        {"a.", "The folder name \"a.\" ends with a dot or a blank, which the system would drop."},
        {"a:b", "The folder name \"a:b\" leads to a drive."},
        {"", "Still needed: a project folder name."},
        {"fine", "OK makes "},
    };
    for (const auto& [name, text] : rows) {
        session.setText(NewProjectField::FolderName, name);
        look(session);
        EXPECT_TRUE(session.state().starts_with(text)) << session.state();
    }
    // OK holds to it, and makes nothing beside the path or under another name.
    for (const char* name : {"con", "nul.txt", "x.", "x ", "a*b", "..\\x", "\\x"}) {
        session.setText(NewProjectField::FolderName, name);
        look(session);
        EXPECT_FALSE(ok(session)) << name;
        EXPECT_EQ(prompt.texts(), Texts{session.state()}) << name;
        EXPECT_EQ(session.asked(), NewProjectField::FolderName) << name;
        prompt.asked.clear();
    }
    EXPECT_EQ(suite.tree("games").size(), 2u);
    session.setText(NewProjectField::FolderName, "con");
    EXPECT_EQ(session.rowNote(0), session.state());
    EXPECT_EQ(session.rowNote(1), "only looked for");
    session.setText(NewProjectField::FolderName, std::string(250, 'x'));
    EXPECT_NE(session.state().find("the system takes 259"), std::string::npos) << session.state();
    std::filesystem::remove(suite.folder.native("templates/a/one.txt"));
    std::filesystem::remove(suite.folder.native("templates/a/lev.zlb"));
    session.select(0);
    session.setText(NewProjectField::FolderName, "g");
    look(session);
    EXPECT_EQ(session.state(), "Missing file: .\\templates\\a\\one.txt");
    // No keystroke touches the disk.
    FaultyOsFiles files(FaultyOsFiles::never());
    session.setText(NewProjectField::FolderName, "typed");
    session.setText(NewProjectField::Path, "C:\\else");
    session.state();
    session.rowNote(3);
    EXPECT_EQ(files.operations(), 0);
}

TEST_F(NewProjectSessionTest, ShowsBothTextsOfAFailedRunAndTakesBackWhatItMade) {
    suite.write("games/there/kept", "");
    NewProjectSession session(prompt);
    session.select(0);
    fill(session);
    for (const char* name : {"there", "there\\", "there//"}) {  // a separator behind the name is none of it
        session.setText(NewProjectField::FolderName, name);
        EXPECT_EQ(session.rowName(0), "there\\") << name;
        EXPECT_FALSE(ok(session));
        EXPECT_EQ(prompt.texts(),
                  (Texts{"Could not overwrite a file/folder (make sure folder doesn't already exist).",
                         suite.folder.path("games") + "\\there"}))
            << name;
        EXPECT_EQ(session.text(NewProjectField::Path), suite.folder.path("games"));
        prompt.asked.clear();
    }

    prompt.answers = {PromptAnswer::Yes};
    session.setText(NewProjectField::FolderName, "g");
    {
        FaultyOsFiles files([](int, std::string_view op, const std::string& path) {
            return op == "makeFolders" && path.ends_with("deep");
        });
        EXPECT_FALSE(ok(session));
    }
    EXPECT_EQ(prompt.texts(),
              (Texts{"Could not create a directory (make sure folder doesn't already exist).",
                     suite.folder.path("games") + "\\g\\maps\\deep",
                     "The project is not complete.\n\nRemove what was made of it (1 folder and 1 "
                     "file)?"}));
    EXPECT_FALSE(suite.has("games/g"));
    EXPECT_TRUE(ok(session)) << "so the second try can succeed";
}

TEST_F(NewProjectSessionTest, CancelStopsBetweenTwoFiles) {
    constexpr int kLooks = 3;  // for templates, before the first copy
    // It serves both jobs, the making and the taking back, and the user cancels once.
    class StopAt : public JobProgress {
    public:
        explicit StopAt(int at) : m_at(at) {}
        int removed() const { return std::max(m_at - kLooks, 0); }
        bool step(size_t done, size_t total, const std::string& what) override {
            if (m_steps > m_at) {
                EXPECT_TRUE(what.starts_with("Removing ")) << what;
                EXPECT_EQ(total, static_cast<size_t>(removed()));
                EXPECT_EQ(done, static_cast<size_t>(m_steps - m_at - 1));
            } else {
                EXPECT_EQ(total, m_steps < kLooks ? 3u : 8u);
            }
            return m_steps++ != m_at;
        }
        int m_at, m_steps = 0;
    };
    for (const int at : {0, 2, 3, 4, 7, 10}) {
        SCOPED_TRACE(at);
        prompt.asked.clear();
        NewProjectSession session(prompt);
        session.select(0);
        fill(session);
        prompt.answers = {PromptAnswer::Yes};
        StopAt progress(at);
        EXPECT_FALSE(session.ok([&](const WizardJob& job) { job(&progress); }));
        EXPECT_EQ(progress.m_steps, at + 1 + progress.removed());
        EXPECT_EQ(suite.tree("games"), Texts());
        ASSERT_EQ(prompt.asked.size(), at < kLooks ? 0u : 1u);
        if (at >= kLooks) {
            EXPECT_TRUE(
                prompt.asked.back().text.starts_with("Creating the project was cancelled.\n\nRemove"));
            EXPECT_TRUE(suite.reportKeys().ends_with(" Cancelled"));
        }
    }
}

// However slow the disk is: one read of a file when a wizard is chosen, none per keystroke, and after a Cancel no
// further work in the project folder, neither of the making nor of the removing.
TEST_F(NewProjectSessionTest, TouchesTheDiskAsLittleAsItCan) {
    std::vector<std::string> operations;
    bool isCancelled = false, isUnsaved = false;
    const FaultyOsFiles files([&](int, std::string_view op, const std::string& path) {
        EXPECT_FALSE(isCancelled && path.find("\\games\\") != path.npos) << op << ' ' << path;
        operations.push_back(std::string(op));
        return isUnsaved && op == "flush";
    });
    // The user cancels when two files of a job are done.
    class Canceller : public JobProgress {
    public:
        explicit Canceller(bool& cancelled) : m_cancelled(cancelled) {}
        bool step(size_t done, size_t, const std::string& what) override {
            m_cancelled = done == 2 && !what.starts_with("Looking");
            return !m_cancelled;
        }
        bool& m_cancelled;
    };
    NewProjectSession session(prompt);
    operations.clear();
    session.select(0);
    EXPECT_EQ(operations, Texts{"readWhole"});
    operations.clear();
    fill(session);
    for (const char* name : {"a", "ab", "abc"}) {
        session.setText(NewProjectField::FolderName, name);
        session.state();
        for (size_t row = 0; row < session.tree().rows().size(); ++row) {
            session.rowNote(row);
            session.rowSize(row);
            session.isRowHarmed(row);
        }
        session.toLookAt();
    }
    EXPECT_EQ(operations, Texts());
    prompt.answers = {PromptAnswer::Yes};
    std::vector<bool> cancelled;  // by job
    const auto run = [&](const WizardJob& job) {
        Canceller progress(isCancelled);
        job(&progress);
        cancelled.push_back(isCancelled);
        isCancelled = false;
    };
    // The making is cancelled. Two files are removed then: nothing is left to be stopped.
    EXPECT_FALSE(session.ok(run));
    EXPECT_EQ(cancelled, (std::vector<bool>{true, false}));
    EXPECT_EQ(suite.tree("games"), Texts());
    // Of a project of which only the saving fails there is more to remove, and that is cancelled between two.
    prompt.answers = {PromptAnswer::Yes};
    session.setText(NewProjectField::TemplatesPath, "?");
    cancelled.clear();
    isUnsaved = true;
    int jobs = 0;
    EXPECT_FALSE(session.ok([&](const WizardJob& job) {
        if (++jobs == 1) {
            job(nullptr);
        } else {
            operations.clear();
            run(job);
        }
    }));
    EXPECT_EQ(std::ranges::count(operations, "deleteFile"), 2);
    EXPECT_EQ(cancelled, std::vector<bool>{true});
    EXPECT_EQ(prompt.asked.back().text, "Removing was stopped. This is left:\n\n" +
                                            suite.folder.path("games") + "\\abc\\harbour.zlm\nand 8 more");
    EXPECT_FALSE(suite.has("games/abc/one.txt"));
    EXPECT_TRUE(suite.has("games/abc/main.kez"));
}

TEST_F(NewProjectSessionTest, ChoosersStartNearAndMakeFoldersOnRequest) {
    const std::string games = suite.folder.path("games");
    NewProjectSession session(prompt);
    session.select(0);
    session.setText(NewProjectField::Path, games + "\\none\\deeper");
    const struct {
        const char* chosen;
        std::deque<PromptAnswer> answers;
        bool takes;
    } rows[] = {{nullptr, {}, false},
                {"", {}, true},
                {"\\new\\one", {PromptAnswer::No}, false},
                {"\\new\\one", {PromptAnswer::Yes}, true}};
    for (const auto& row : rows) {
        prompt.paths = {row.chosen ? std::optional(games + row.chosen) : std::nullopt};
        prompt.answers = row.answers;
        EXPECT_EQ(session.browse(NewProjectField::Path), row.takes);
    }
    EXPECT_EQ(prompt.requests[0].startFolder, games);
    EXPECT_EQ(prompt.requests[0].title, "Select a folder...");
    EXPECT_EQ(prompt.requests[0].text, "Where do you want to create this project?");
    EXPECT_EQ(
        prompt.asked[0].text,
        "The folder:\n\n" + games + "\\new\\one\n\ndoes not exist. Do you want the folder to be created?");
    EXPECT_EQ(session.text(NewProjectField::Path), games + "\\new\\one");
    EXPECT_TRUE(suite.has("games/new/one"));

    suite.write("games/file", "");
    prompt.paths = {games + "\\file\\x"};
    prompt.answers = {PromptAnswer::Yes};
    EXPECT_FALSE(session.browse(NewProjectField::TemplatesPath));
    EXPECT_EQ(prompt.requests.back().text, "Find you J8 Templates Path");
    EXPECT_EQ(prompt.asked.back().text,
              "The folder:\n\n" + games + "\\file\\x\n\ncan not be created. Please double check.");
    // An empty field: where the last chooser was confirmed.
    NewProjectSession next(prompt);
    prompt.paths = {std::nullopt};
    next.browse(NewProjectField::Path);
    EXPECT_EQ(prompt.requests.back().startFolder, games + "\\new\\one");
}

}  // namespace
