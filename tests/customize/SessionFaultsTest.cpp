#include "customize/WriteBack.h"
#include "tests/customize/SessionFixture.h"

using namespace zoka;
using namespace zoka::test;

namespace {

// What a user meets: the message to the letter where there is one, both files as they were or as they will be,
// and a panel that does its work once the reason is gone.
TEST_F(Session, FaultsAreToldLeaveWholeFilesAndTheNextTryWorks) {
    enum Action { Save, Restore, Update };
    const std::string mine = std::string(kOld).replace(std::string(kOld).find("10;"), 2, "11");
    constexpr char kNoScript[] = "Error open file to write";
    constexpr char kNoValues[] = "Error open file to write\n(Code 2701)";
    constexpr char kNoCopy[] = "Copy error (1128).\nNo Update.";
    const struct {
        const char* what;
        Action action;
        std::string_view op, on;  // which operation fails, on files whose name ends so
        const char* message;      // how the last one begins
        bool newScript;
    } rows[] = {
        {"read-only", Save, "openExisting", "\\s.kez", kNoScript, false},
        {"full", Save, "write", "", "Can't write '", false},
        {"full at the flush", Save, "flush", "", "Can't write '", false},
        {"full at the close", Save, "close", "", "Can't write '", false},
        {"locked", Save, "replaceFile", "\\s.kez", "Can't write '", false},
        {"link that can't be followed", Save, "resolveLinks", "\\s.kez", "Can't follow the link '", false},
        {"unreadable, so perhaps changed", Save, "readWhole", "\\s.kez", "Can't read '", false},
        {"value file read-only", Save, "openExisting", ".zoka", kNoValues, true},
        {"value file locked", Save, "replaceFile", ".zoka", kNoValues, true},
        {"read-only", Restore, "openExisting", "\\s.kez", kNoCopy, false},
        {"full", Restore, "write", "", kNoCopy, false},
        {"locked", Restore, "replaceFile", "\\s.kez", kNoCopy, false},
        {"unreadable afterwards", Restore, "readWhole", "\\s.kez", "Can't read '", true},
        {"value file read-only", Update, "openExisting", ".zoka", kNoValues, false},
        {"full", Update, "write", "", kNoValues, false},
        {"script read-only", Update, "openExisting", "\\s.kez", kNoCopy, false},
        {"script locked", Update, "replaceFile", "\\s.kez", kNoCopy, false},
        {"unreadable afterwards", Update, "readWhole", "\\s.kez", "Can't read '", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.what) + " at " + "SRU"[row.action]);
        project.write("s.kez.zoka", "old values");
        makeTemplate(kNew);
        open();
        set("Range", "11");
        const auto act = [&] {
            if (row.action != Save) {
                prompt.answers = {PromptAnswer::Yes};
            }
            return row.action == Save      ? session.save() == SaveResult::Saved
                   : row.action == Restore ? session.restore()
                                           : session.update();
        };
        prompt.asked.clear();
        {
            FaultyOsFiles disk([&](int, std::string_view op, const std::string& path) {
                return op == row.op && path.ends_with(row.on) && path.find("templates") == path.npos;
            });
            EXPECT_FALSE(act());
        }
        EXPECT_TRUE(prompt.asked.back().text.starts_with(row.message)) << prompt.asked.back().text;
        if (row.message == kNoCopy) {
            EXPECT_TRUE(prompt.asked.back().text.ends_with("s.kez': injected fault"))
                << prompt.asked.back().text;
        }
        EXPECT_EQ(prompt.asked.size(), row.action == Save ? 1u : 2u);
        EXPECT_EQ(project.read("s.kez"), !row.newScript ? kOld : row.action == Save ? mine : kNew);
        // An update stores the values before it fetches the copy.
        const std::string values = project.read("s.kez.zoka");
        EXPECT_TRUE(values == "old values" ||
                    (row.action == Update && values.starts_with("1\n1\n0\n\n1\n11\n11\n")))
            << values;
        if (!row.newScript) {
            EXPECT_EQ(value("Range"), "11");
            EXPECT_EQ(session.changedCount(), 1u);
        }
        for (const std::string& name : project.names()) {
            EXPECT_FALSE(name.ends_with(".tmp")) << name;
        }
        if (row.action == Save && row.newScript) {
            set("Range", "12");
        }
        EXPECT_TRUE(act());
        EXPECT_TRUE(project.read("s.kez.zoka").starts_with("1\n") || row.action == Restore);
    }
}

// The values are still at hand when the file that has just taken them can't be read.
TEST_F(Session, AnUpdateKeepsItsValuesWithoutTheValueFile) {
    makeTemplate(kNew);
    open();
    set("Range", "11");
    set("Gone", "mine");
    prompt.answers = {PromptAnswer::Yes};
    {
        const FaultyOsFiles disk([](int, std::string_view op, const std::string& path) {
            return op == "readWhole" && path.ends_with(".zoka");
        });
        EXPECT_TRUE(session.update());
    }
    EXPECT_EQ(prompt.asked.size(), 2u);
    EXPECT_EQ(prompt.asked.back().text, "Error open file to read\n(Code 2801)");
    EXPECT_EQ(value("Range"), "11");
    ASSERT_EQ(session.unplaced().size(), 1u);
    EXPECT_EQ(session.unplaced()[0].kept.value, "mine");
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("s.kez"), HasSubstr("range = 11;"));
}

TEST_F(Session, AFolderThatIsGoneIsTold) {
    open();
    set("Range", "12");
    const std::string away = project.native("").parent_path().string() + "-away";
    std::filesystem::rename(project.native("").parent_path(), away);
    EXPECT_EQ(session.save(), SaveResult::Failed);
    EXPECT_THAT(prompt.texts(), ElementsAre("Error open file to write"));
    EXPECT_EQ(session.changedCount(), 1u);
    std::filesystem::rename(away, project.native("").parent_path());
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("s.kez"), HasSubstr("range = 12;"));
}

TEST_F(Session, EveryFaultOfTheDiskLeavesTheOldScriptOrTheNew) {
    for (const char* lamp : {"0", "1"}) {  // a switch has the script read again
        bool saved = false;
        for (int failing = 1; !saved; ++failing) {
            ASSERT_LT(failing, 60);
            open();
            std::filesystem::remove(project.native("s.kez.zoka"));
            set("Range", "11");
            set("Lamp", lamp);
            const std::string expected = editedText(session.script().fileText(), editsOf(session.script()));
            prompt.asked.clear();
            SaveResult result;
            {
                FaultyOsFiles disk(FaultyOsFiles::nth(failing));
                result = session.save();
                saved = disk.operations() < failing;
            }
            const std::string text = project.read("s.kez");
            const bool isNew = text != kOld;
            EXPECT_EQ(text, isNew ? expected : kOld);
            EXPECT_EQ(session.changedCount(), isNew ? 0u : *lamp == '1' ? 2u : 1u) << failing;
            if (result == SaveResult::Failed) {
                ASSERT_EQ(prompt.asked.size(), 1u) << failing;
                EXPECT_NE(result.notTold(), prompt.asked[0].text) << failing;
            }
            for (const std::string& name : project.names()) {
                EXPECT_FALSE(name.ends_with(".tmp")) << name;
            }
        }
    }
}

// The host refuses each of its calls in turn: nothing is lost and nothing hangs.
TEST_F(Session, AHostThatRefusesEverythingLosesNothing) {
    suite.write("templates/s.kez", kOld);
    const std::string path = suite.path("templates\\s.kez");
    std::filesystem::create_directory(suite.native("other"));
    suite.write("other/s.kez", kOld);
    RecordingHost editor({.project = project.path(), .suite = suite.path()});
    editor.setChosenFile(suite.path("other\\s.kez"));
    editor.setListItems({"me"});
    for (const char* call : {"GetMainScriptPath", "GetListItemName", "ChooseFile", "GetProjectFolder",
                             "CopyFileToFolder", "CopyFileWithSubstitutions", "QueryFolder"}) {
        SCOPED_TRACE(call);
        editor.failing = {call};
        CustomizeSession panel(editor, prompt);
        ASSERT_TRUE(panel.open(path));
        ASSERT_TRUE(panel.setValue(1, "11"));
        panel.defaultOf(1);
        prompt.asked.clear();
        prompt.answers = {PromptAnswer::Yes};
        // Of these calls saving needs two, and without them the template's own script must stay as it is.
        const bool needed =
            std::string_view(call) == "GetProjectFolder" || std::string_view(call) == "CopyFileToFolder";
        EXPECT_EQ(panel.save(), needed ? SaveResult::Failed : SaveResult::Saved);
        EXPECT_EQ(prompt.asked.size(), needed ? 1u : 0u);
        EXPECT_EQ(suite.read("templates/s.kez"), kOld);
        if (!needed) {
            EXPECT_THAT(project.read("s.kez"), HasSubstr("range = 11;"));
        }
        const bool fetched = panel.restore();
        EXPECT_EQ(fetched, std::string_view(call) != "ChooseFile" &&
                               std::string_view(call) != "CopyFileWithSubstitutions");
        EXPECT_EQ(panel.size(), 7u);
        std::filesystem::remove(project.native("s.kez"));
        std::filesystem::remove(project.native("s.kez.zoka"));
    }
}

// It says yes and copies nothing.
TEST_F(Session, AHostThatFeignsItsCopiesLosesNothing) {
    host.feigned = {"CopyFileToFolder", "CopyFileWithSubstitutions"};
    ASSERT_TRUE(session.open(suite.write("templates/s.kez", kOld)));
    set("Range", "11");
    EXPECT_EQ(session.save(), SaveResult::Saved);  // writes the whole script itself
    EXPECT_EQ(suite.read("templates/s.kez"), kOld);
    const std::string saved = project.read("s.kez");
    EXPECT_THAT(saved, HasSubstr("range = 11;"));
    EXPECT_EQ(session.script().scriptPath, project.path("s.kez"));
    makeTemplate(kNew);
    set("Range", "12");
    for (const bool restores : {true, false}) {
        SCOPED_TRACE(restores ? "restore" : "update");
        prompt.answers = {PromptAnswer::Yes};
        prompt.asked.clear();
        EXPECT_FALSE(restores ? session.restore() : session.update());
        ASSERT_EQ(prompt.asked.size(), 2u);
        EXPECT_EQ(prompt.asked[1].text,
                  "Copy error (1128).\nNo Update.\n\nThe script is as it was before the copying.");
        EXPECT_EQ(project.read("s.kez"), saved);
        EXPECT_EQ(value("Range"), "12");
        EXPECT_EQ(session.changedCount(), 1u);
    }
}

}  // namespace
