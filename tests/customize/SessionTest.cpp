#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "customize/CustomizeSession.h"
#include "customize/ValueUpdate.h"
#include "plugin/FolderHost.h"
#include "tests/customize/Edits.h"
#include "tests/customize/Samples.h"
#include "tests/support/FakeEditor.h"
#include "tests/support/FaultyOsFiles.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TempFolder.h"

using namespace zoka;
using namespace zoka::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// A project beside a suite, with every call noted that changes something.
class NotingHost : public FolderHost {
public:
    using FolderHost::FolderHost;
    void MainScriptChanged() override { calls += "changed "; }
    void EndListUpdate() override { calls += "endlist "; }
    bool CopyFileToFolder(const std::string& source, const std::string& folder) override {
        const std::string all = calls + "copy ";
        const bool copied = !refuses && FolderHost::CopyFileToFolder(source, folder);
        calls = all;  // how the folder host does it is its own affair
        return copied;
    }
    bool CopyFileWithSubstitutions(const std::string& source, const std::string& destination,
                                   std::span<const std::pair<std::string, std::string>> pairs) override {
        calls += "over ";
        return !refuses && FolderHost::CopyFileWithSubstitutions(source, destination, pairs);
    }
    std::string calls;
    bool refuses = false;
};

class NotingView : public CustomizeView {
public:
    void bringToFront() override { calls += "front "; }
    void raiseOnce() override { calls += "raise "; }
    void rowsReplaced() override { calls += "rows "; }
    std::string calls;
};

constexpr char kOld[] =
    "// ver: 1\r\n// section: First\r\n// entry: Range\r\n// id: 1\r\n// cntl: spin 0 200 1\r\nvar range = "
    "10;\r\n\r\n"
    "// enable: Lamp\r\n// id: 2\r\n//define LAMP;\r\n\r\n// section: Second\r\n// entry: Gone\r\n// id: "
    "3\r\n"
    "string gone = \"a\";\r\n\r\n// entry: Free\r\nvar free = 5;\r\n\r\n// entry_entity: Who\r\n// id: 5\r\n"
    "string who = \"me\";\r\n";
constexpr char kNew[] =
    "// ver: 2\r\n// entry: Range\r\n// id: 1\r\n// cntl: spin 0 100 1\r\nvar range = 20;\r\n\r\n"
    "// enable: Lamp\r\n// id: 2\r\ndefine LAMP;\r\n\r\n// entry: Free\r\nvar free = 5;\r\n\r\n"
    "// entry_entity: Who\r\n// id: 5\r\nstring who = \"you\";\r\n";

struct Session : testing::Test {
    Session() {
        std::filesystem::create_directories(suite.native("templates"));
        host.setListItems({"me", "lamp_1", "lamp_1", "lamp_2"});
    }
    void open(const std::string& text = kOld) {
        ASSERT_TRUE(session.open(project.write("s.kez", text)));
        view.calls.clear();
        host.calls.clear();
    }
    void makeTemplate(const std::string& text, const char* name = "templates/s.kez") {
        suite.write(name, text);
        host.setChosenFile(suite.path("templates\\s.kez"));
    }
    size_t rowOf(const std::string& label) {
        for (size_t i = 0; i < session.size(); ++i)
            if (session.entry(i).label == label) return i;
        ADD_FAILURE() << label;
        return 0;
    }
    std::string value(const std::string& label) { return session.row(rowOf(label)).value(); }
    void set(const std::string& label, const std::string& text) {
        std::string why;
        EXPECT_TRUE(session.setValue(rowOf(label), text, &why)) << why;
    }

    TempFolder project, suite;
    ScriptedPrompt prompt;
    NotingHost host{FolderHost::Folders{.project = project.path(), .suite = suite.path()}};
    NotingView view;
    CustomizeSession session{host, prompt, &view};
};

TEST_F(Session, OpensTheMainScriptWithoutAName) {
    EXPECT_FALSE(session.open());
    EXPECT_FALSE(session.open(project.path("none.kez")));
    EXPECT_THAT(session.problem(), HasSubstr("none.kez"));
    project.write("main.kez", kOld);
    ASSERT_TRUE(session.open());
    EXPECT_EQ(session.script().scriptPath, project.path("main.kez"));
    EXPECT_EQ(host.calls, "endlist ");
    const EntryFacts& who = session.row(rowOf("Who")).facts();
    ASSERT_TRUE(who.hostNames);
    EXPECT_THAT(*who.hostNames, ElementsAre("me", "lamp_1", "lamp_2"));
    EXPECT_THAT(prompt.texts(), IsEmpty());
}

TEST_F(Session, SaveWithoutChangesWritesNothing) {
    open();
    FaultyOsFiles disk(FaultyOsFiles::never());
    EXPECT_EQ(session.save(), SaveResult::NothingToSave);
    EXPECT_EQ(disk.operations(), 0);
    set("Range", "11");
    set("Range", "10");
    EXPECT_EQ(session.save(), SaveResult::NothingToSave);
    EXPECT_THAT(project.names(), ElementsAre("s.kez"));
    EXPECT_EQ(host.calls, "");
}

TEST_F(Session, SaveWritesTheSpansThenTheValueFileAndReadsTheScriptAgain) {
    open();
    set("Range", "123");
    set("Lamp", "1");
    EXPECT_EQ(session.changesText(),
              "line 6\r\n- var range = 10;\r\n+ var range = 123;\r\nline 10\r\n- //define LAMP;\r\n+ define "
              "LAMP;\r\n");
    ASSERT_EQ(session.save(), SaveResult::Saved);
    std::string expected = kOld;
    expected.replace(expected.find("10;"), 2, "123");
    expected.erase(expected.find("//define"), 2);
    EXPECT_EQ(project.read("s.kez"), expected);
    EXPECT_EQ(project.read("s.kez.zoka"), "1\n1\n0\n\n1\n11\n123\n\n2\n8\n1\n\n3\n14\na\n\n5\n15\nme\n\n");
    EXPECT_EQ(session.changedCount(), 0u);
    EXPECT_TRUE(session.close());
    // The spans are those of the new text, and what was done before saving can still be undone.
    ASSERT_TRUE(session.undo());
    ASSERT_TRUE(session.undo());
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(project.read("s.kez"), kOld);
    EXPECT_THAT(prompt.texts(), IsEmpty());
    EXPECT_EQ(host.calls.find("changed"), std::string::npos);
}

TEST_F(Session, AnEmptyScriptSavesItsValueFileAlone) {
    open("");
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(project.read("s.kez"), "");
    EXPECT_EQ(project.read("s.kez.zoka"), "1\n0\n0\n\n");
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

TEST_F(Session, AScriptOfTheTemplateFolderIsCopiedIntoTheProject) {
    const std::string path = suite.write("templates/t.kez", kOld);
    ASSERT_TRUE(session.open(path));
    set("Range", "11");
    host.calls.clear();
    host.refuses = true;
    EXPECT_EQ(session.save(), SaveResult::Failed);
    host.refuses = false;
    EXPECT_EQ(session.script().scriptPath, path);
    host.calls.clear();
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(host.calls, "copy changed endlist ");
    EXPECT_EQ(suite.read("templates/t.kez"), kOld);
    EXPECT_THAT(project.read("t.kez"), HasSubstr("range = 11;"));
    EXPECT_THAT(project.names(), ElementsAre("t.kez", "t.kez.zoka"));
    EXPECT_EQ(session.script().scriptPath, project.path("t.kez"));
    // Another script of that name in the project is not overwritten unasked.
    ASSERT_TRUE(session.open(path));
    set("Range", "12");
    prompt.answers = {PromptAnswer::No};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_THAT(project.read("t.kez"), HasSubstr("range = 11;"));
}

// What a user meets: the message to the letter where there is one, both files as they were or as they will be,
// and a panel that does its work once the reason is gone.
TEST_F(Session, FaultsAreToldLeaveWholeFilesAndTheNextTryWorks) {
    enum Action { Save, Restore, Update };
    const std::string mine = std::string(kOld).replace(std::string(kOld).find("10;"), 2, "11");
    const auto onScript = [](std::string_view name) {
        return [=](int, std::string_view op, const std::string& path) {
            return op == name && path.ends_with("\\s.kez") && path.find("templates") == path.npos;
        };
    };
    const auto onValues = [](std::string_view name) {
        return [=](int, std::string_view op, const std::string& path) {
            return op == name && path.ends_with(".zoka");
        };
    };
    const auto always = [](std::string_view name) {
        return [=](int, std::string_view op, const std::string&) { return op == name; };
    };
    constexpr char kNoScript[] = "Error open file to write";
    constexpr char kNoValues[] = "Error open file to write\n(Code 2701)";
    constexpr char kNoCopy[] = "Copy error (1128).\nNo Update.";
    const struct {
        const char* what;
        Action action;
        FaultyOsFiles::Rule rule;
        const char* message;  // how the last one begins
        bool newScript;
    } rows[] = {
        {"read-only", Save, onScript("openExisting"), kNoScript, false},
        {"full", Save, always("write"), "Can't write '", false},
        {"full at the flush", Save, always("flush"), "Can't write '", false},
        {"full at the close", Save, always("close"), "Can't write '", false},
        {"locked", Save, onScript("replaceFile"), "Can't write '", false},
        {"link that can't be followed", Save, onScript("resolveLinks"), "Can't follow the link '", false},
        {"value file read-only", Save, onValues("openExisting"), kNoValues, true},
        {"value file locked", Save, onValues("replaceFile"), kNoValues, true},
        {"read-only", Restore, onScript("openExisting"), kNoCopy, false},
        {"full", Restore, always("write"), kNoCopy, false},
        {"locked", Restore, onScript("replaceFile"), kNoCopy, false},
        {"unreadable afterwards", Restore, onScript("readWhole"), "Can't read '", true},
        {"value file read-only", Update, onValues("openExisting"), kNoValues, false},
        {"full", Update, always("write"), kNoValues, false},
        {"script read-only", Update, onScript("openExisting"), kNoCopy, false},
        {"script locked", Update, onScript("replaceFile"), kNoCopy, false},
        {"unreadable afterwards", Update, onScript("readWhole"), "Can't read '", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.what) + " at " + "SRU"[row.action]);
        project.write("s.kez.zoka", "old values");
        makeTemplate(kNew);
        open();
        set("Range", "11");
        const auto act = [&] {
            if (row.action != Save) prompt.answers = {PromptAnswer::Yes};
            return row.action == Save      ? session.save() == SaveResult::Saved
                   : row.action == Restore ? session.restore()
                                           : session.update();
        };
        prompt.asked.clear();
        {
            FaultyOsFiles disk(row.rule);
            EXPECT_FALSE(act());
        }
        EXPECT_TRUE(prompt.asked.back().text.starts_with(row.message)) << prompt.asked.back().text;
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
        for (const std::string& name : project.names()) EXPECT_FALSE(name.ends_with(".tmp")) << name;
        if (row.action == Save && row.newScript) set("Range", "12");
        EXPECT_TRUE(act()) << session.problem();
        EXPECT_TRUE(project.read("s.kez.zoka").starts_with("1\n") || row.action == Restore);
    }
}

TEST_F(Session, AFolderOrAScriptThatIsGoneIsToldOrWrittenAnew) {
    open();
    set("Range", "11");
    std::filesystem::remove(project.native("s.kez"));
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("s.kez"), HasSubstr("range = 11;"));
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
                EXPECT_EQ(prompt.asked.size(), 1u) << failing;
                EXPECT_NE(session.problem(), "") << failing;
            }
            for (const std::string& name : project.names()) EXPECT_FALSE(name.ends_with(".tmp")) << name;
        }
    }
}

// The host refuses each of its calls in turn: nothing is lost and nothing hangs.
TEST_F(Session, AHostThatRefusesEverythingLosesNothing) {
    suite.write("templates/s.kez", kOld);
    const std::string path = suite.path("templates\\s.kez");
    FakeEditor editor;
    editor.projectFolder = project.path();
    editor.chosenFile = suite.path("other\\s.kez");
    editor.listItems = {"me"};
    for (const char* call : {"GetMainScriptPath", "GetListItemName", "ChooseFile", "GetProjectFolder",
                             "CopyFileToFolder", "CopyFileWithSubstitutions", "QueryFolder"}) {
        SCOPED_TRACE(call);
        editor.failing = {call};
        CustomizeSession panel(editor, prompt);
        ASSERT_TRUE(panel.open(path));
        std::string why;
        ASSERT_TRUE(panel.setValue(1, "11", &why)) << why;
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

TEST_F(Session, ChangesFromOutsideAreSettledBeforeSaving) {
    std::string other = kOld;
    other.replace(other.find("string gone = \"a\""), 17, "string gone = \"theirs\"");
    open();
    set("Range", "11");
    project.write("s.kez", other);
    prompt.answers = {PromptAnswer::Cancel, PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_EQ(project.read("s.kez"), other);
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("s.kez"), HasSubstr("range = 11;"));
    EXPECT_THAT(project.read("s.kez"), HasSubstr("\"theirs\""));
    // Overwriting leaves the script as it was loaded, with the changes.
    set("Range", "12");
    project.write("s.kez", "other");
    prompt.answers = {PromptAnswer::No};
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("s.kez"), HasSubstr("range = 12;"));
    // A value without a place in the new text stops the saving.
    set("Range", "13");
    project.write("s.kez", "// entry: Other\nvar x = 1;\n");
    prompt.answers = {PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Failed);
    ASSERT_EQ(session.unplaced().size(), 1u);
    EXPECT_EQ(session.unplaced()[0].kept.value, "13");
    EXPECT_EQ(project.read("s.kez"), "// entry: Other\nvar x = 1;\n");
    EXPECT_THAT(project.read("s.kez.zoka.old"), HasSubstr("\n1\n11\n13\n\n"));
}

TEST_F(Session, AnEmptiedValueIsSavedOnlyAfterAQuestion) {
    open();
    set("Gone", "");
    prompt.answers = {PromptAnswer::No, PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_THAT(prompt.asked[0].text, HasSubstr("\"Gone\" (line 13)"));
    EXPECT_EQ(project.read("s.kez"), kOld);
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("s.kez"), HasSubstr("gone = \"\";"));
    EXPECT_FALSE(session.canUndo());  // the rows are others now
}

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
    EXPECT_THAT(project.names(), ElementsAre("s.kez"));
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
        host.refuses = row.refuses;
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
    EXPECT_EQ(value("Words"), "first\r\nsecond");
    EXPECT_EQ(session.row(1).value(), "0");
    EXPECT_EQ(session.row(2).value(), "1");
    EXPECT_EQ(value("Count"), "6");
    EXPECT_THAT(session.unplaced(), IsEmpty());
    EXPECT_EQ(prompt.asked.size(), 1u);
}

TEST_F(Session, UpdateStopsWhenTheValuesCannotBeStoredFirst) {
    open();
    makeTemplate(kNew);
    prompt.answers = {PromptAnswer::Yes};
    FaultyOsFiles disk([](int, std::string_view op, const std::string&) { return op == "write"; });
    EXPECT_FALSE(session.update());
    EXPECT_EQ(prompt.asked.back().text, "Error open file to write\n(Code 2701)");
    EXPECT_EQ(project.read("s.kez"), kOld);
    EXPECT_EQ(host.calls, "");
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
    EXPECT_EQ(value("Range"), "20");
    EXPECT_EQ(session.resetSection(rowOf("First"), ResetTo::Loaded), 2u);
    EXPECT_EQ(value("Range"), "10");
    EXPECT_EQ(value("Lamp"), "0");
    EXPECT_EQ(value("Gone"), "b");
    EXPECT_EQ(session.resetAll(ResetTo::Default), 3u);
    EXPECT_EQ(value("Who"), "you");
    session.undo();
    EXPECT_EQ(value("Who"), "me");
    session.undo();
    EXPECT_EQ(value("Lamp"), "1");
    session.redo();
    EXPECT_EQ(value("Lamp"), "0");
    EXPECT_EQ(session.tooltip(rowOf("Range")), "Range\r\ndefault: 20\r\nallowed: 0 to 200\r\nid 1\r\nline 3");
    EXPECT_EQ(session.placeInScript(rowOf("Range")), project.path("s.kez") + ":3");
    EXPECT_EQ(session.helpText(rowOf("Range")), "No Help");
}

TEST_F(Session, NumberedCopiesHaveTheirTemplatesDefaults) {
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
        for (size_t i = 0; i < rows.size(); ++i)
            if (rows[i]) labels += session.entry(i).label + " ";
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

TEST_F(Session, RandomEditsThroughThePanelSaveReadBackAndReverse) {
    std::minstd_rand random(3);
    for (const auto& [name, bytes] : sampleScripts()) {
        SCOPED_TRACE(name);
        open(bytes);
        for (size_t i = 0; i < session.size(); ++i)
            if (session.entry(i).hasValue()) session.setValue(i, otherValue(session.row(i), random));
        if (session.changedCount() == 0) continue;
        std::vector<std::string> values;
        for (size_t i = 0; i < session.size(); ++i) values.push_back(session.row(i).value());
        ASSERT_EQ(session.save(), SaveResult::Saved);
        CustomizeSession other(host, prompt);
        ASSERT_TRUE(other.open(project.path("s.kez")));
        ASSERT_EQ(other.size(), values.size());
        for (size_t i = 0; i < values.size(); ++i) ASSERT_EQ(other.row(i).value(), values[i]);
        while (session.undo()) {
        }
        ASSERT_EQ(session.save(), SaveResult::Saved);
        ASSERT_EQ(project.read("s.kez"), bytes);
    }
    EXPECT_THAT(prompt.texts(), IsEmpty());
}

TEST_F(Session, UpdatingWithoutAPanelKeepsValuesOrLeavesTheScript) {
    std::string mine = kOld;
    mine.replace(mine.find("10;"), 2, "55");
    const std::string original = suite.write("templates/s.kez", kNew);
    std::string expected = kNew;
    expected.replace(expected.find("20;"), 2, "55").insert(expected.find("define"), "//");
    expected.replace(expected.find("you"), 3, "me");
    bool done = false;
    for (int failing = 1; !done; ++failing) {
        ASSERT_LT(failing, 100);
        for (const std::string& name : project.names()) std::filesystem::remove(project.native(name));
        const std::string path = project.write("s.kez", mine);
        std::string why;
        FaultyOsFiles disk(FaultyOsFiles::nth(failing));
        const bool updated = updateKeepingValues(path, original, why);
        done = disk.operations() < failing;
        EXPECT_EQ(project.read("s.kez"), updated ? expected : mine) << failing;
        EXPECT_EQ(why.empty(), updated) << why;
    }
    EXPECT_EQ(project.read("s.kez.zoka"), "1\n2\n0\n\n1\n11\n55\n\n2\n8\n0\n\n5\n15\nme\n\n");
    EXPECT_THAT(project.read("s.kez.zoka.old"), HasSubstr("\n3\n14\na\n\n"));
}

TEST_F(Session, ASwitchThatBecameAListGivesItsValueBack) {
    const auto samples = sampleScripts();
    std::string why;
    const std::string path = project.write("weapon_pistol.kez", samples.at("weapon_pistol"));
    std::vector<UnplacedValue> unplaced;
    ASSERT_TRUE(updateKeepingValues(path, suite.write("weapon_pistol.kez", samples.at("newer/weapon_pistol")),
                                    why, &unplaced));
    ASSERT_EQ(unplaced.size(), 1u);
    EXPECT_EQ(unplaced[0].kept.id, 9);
    EXPECT_THAT(unplaced[0].reason, HasSubstr("not one of its choices"));
}

}  // namespace
