#include "plugin/Procedures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/plugin/FakeSeams.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TempFolder.h"
#include "util/DebugLog.h"

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty, testing::Not;
using zoka::g_procDefs;

namespace zoka::test {
namespace {

enum { kCustomize, kAddScript, kBehavior, kWizard };

class Procedures : public testing::Test {
protected:
    Procedures() { app.editor = this; }

    std::int32_t run(int index, std::int32_t* word, HostContext* context = nullptr) {
        return g_procDefs[index].execute(&g_procDefs[index], context, word);
    }
    std::int32_t run(int index) { return run(index, &busy); }
    std::int32_t terminate(int index) { return g_procDefs[index].terminate(); }

    ScriptedPrompt prompt;
    FakeSeams seams;
    AppInterface app{};
    std::int32_t busy = 7;  // neither of the values that the procedures write
};

struct Initialised : Procedures {
    Initialised() { EXPECT_EQ(PIInitialize(&app), 1); }
};

TEST_F(Procedures, NothingIsHandedOutBeforeInitialisation) {
    for (const int index : {-1, 0, 3, 4}) {
        EXPECT_EQ(PIGetProcDef(index), nullptr) << index;
    }
    EXPECT_EQ(PIInitialize(nullptr), 0);
    EXPECT_EQ(PIGetProcDef(0), nullptr);
    EXPECT_THAT(prompt.texts(), ElementsAre("No AppInterface (ec11-1)"));
}

TEST_F(Initialised, RecordsAreTheFourOfTheTable) {
    const struct {
        unsigned flags, kind, id;
        const char *name, *menuPath;
        bool terminates;
    } rows[] = {{0, 2, 0x84, "KEZ Customize", nullptr, true},
                {0, 1, 0x85, "Add Script", nullptr, false},
                {0, 2, 0x8b, "Entity Behavior", nullptr, true},
                {0x80000, 5, 0, "Project Wizard", "File\\Project Wizard", false}};
    for (int i = 0; i < 4; ++i) {
        const PluginProcDef* const record = PIGetProcDef(i);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record, PIGetProcDef(0) + i);
        EXPECT_EQ(record->flags, rows[i].flags);
        EXPECT_EQ(record->kind, rows[i].kind);
        EXPECT_EQ(record->id, rows[i].id);
        EXPECT_STREQ(record->name, rows[i].name);
        EXPECT_STREQ(record->menuPath, rows[i].menuPath);
        EXPECT_EQ(record->self, record);
        EXPECT_NE(record->execute, nullptr);
        EXPECT_EQ(record->terminate != nullptr, rows[i].terminates);
        // The host reads words, by position.
        const auto* const words = reinterpret_cast<const std::uintptr_t*>(record);
        EXPECT_EQ(words[8], reinterpret_cast<std::uintptr_t>(record));
        for (const int reserved : {5, 6, 7, 11, 12}) {
            EXPECT_EQ(words[reserved], 0u) << reserved;
        }
    }
    EXPECT_EQ(PIGetProcDef(-1), nullptr);
    EXPECT_EQ(PIGetProcDef(4), nullptr);
}

TEST_F(Procedures, InitialisesOnceAndKeepsTheFirstInterface) {
    AppInterface other{};
    other.editor = &other;
    EXPECT_EQ(PIInitialize(&app), 1);
    EXPECT_EQ(PIInitialize(&other), 0);
    EXPECT_EQ(PIInitialize(nullptr), 0);
    EXPECT_EQ(g_appInterface, &app);
    EXPECT_THAT(prompt.texts(), IsEmpty());
}

TEST_F(Procedures, RefusesAnInterfaceWithoutEditorButKeepsIt) {
    app.editor = nullptr;
    EXPECT_EQ(PIInitialize(&app), 0);
    EXPECT_EQ(g_appInterface, &app);
    EXPECT_NE(PIGetProcDef(0), nullptr);
    EXPECT_THAT(prompt.texts(), ElementsAre("Invalid Zun Interface (ec11-2)"));
}

TEST_F(Procedures, InfoWordsAreFixed) {
    std::uint32_t a = 9, b = 9, c = 9;
    EXPECT_EQ(PIGetPIInfo(&a, &b, &c), 0);
    EXPECT_EQ(a, 0u);
    EXPECT_EQ(b, 0x20001u);
    EXPECT_EQ(c, 0x40000002u);
    EXPECT_EQ(PIGetPIInfo(nullptr, nullptr, nullptr), 0);
}

TEST_F(Procedures, MissingPreconditionsChangeNothing) {
    enum Missing { kFlags, kApp, kEditor };
    struct Row {
        int index;
        Missing missing;
        std::vector<std::string> texts;
    };
    std::vector<Row> rows = {{kCustomize, kFlags, {"Execute Flags (ec12-1)"}},
                             {kCustomize, kApp, {"No AppInterface (ec12-2)"}},
                             {kCustomize, kEditor, {"Invalid Zun Interface (ec11-2)"}},
                             {kAddScript, kApp, {"No AppInterface (ec10-1)"}},
                             {kAddScript, kEditor, {"Invalid Zun Interface (ec10-2)"}}};
    for (const int silent : {kBehavior, kWizard}) {
        for (const Missing missing : {kFlags, kApp, kEditor}) {
            rows.push_back({silent, missing, {}});
        }
    }
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << g_procDefs[row.index].name << " missing " << row.missing);
        prompt.asked.clear();
        g_appInterface = row.missing == kApp ? nullptr : &app;
        app.editor = row.missing == kEditor ? nullptr : this;
        EXPECT_EQ(run(row.index, row.missing == kFlags ? nullptr : &busy), 0);
        EXPECT_EQ(busy, 7);
        EXPECT_EQ(prompt.texts(), row.texts);
        EXPECT_THAT(seams.log.take(), IsEmpty());
    }
}

TEST_F(Initialised, TerminateReturnsWhenThePanelIsGone) {
    for (const int index : {kCustomize, kBehavior}) {
        SCOPED_TRACE(g_procDefs[index].name);
        EXPECT_EQ(terminate(index), 1);  // idle
        EXPECT_EQ(run(index), 0);
        EXPECT_EQ(busy, 1);
        EXPECT_EQ(terminate(index), 1);
        EXPECT_EQ(busy, 0);
        EXPECT_EQ(terminate(index), 1);  // twice
    }
    EXPECT_THAT(seams.log.take(), ElementsAre("start customize 1001", "closed customize 1001",
                                              "start plain  1001", "closed plain  1001", "free plain "));
    EXPECT_EQ(g_behaviorDialog, nullptr);
}

TEST_F(Initialised, PanelClosedByTheUserCanBeOpenedAgain) {
    for (const int index : {kCustomize, kBehavior}) {
        run(index);
        seams.closeByUser();
        run(index);  // waits for the closing panel
        EXPECT_EQ(busy, 1);
        terminate(index);
    }
    EXPECT_THAT(seams.log.take(),
                ElementsAre("start customize 1001", "closed customize 1001", "free customize",
                            "start customize 1001", "closed customize 1001",  //
                            "start plain  1001", "closed plain  1001", "free plain ", "start plain  1001",
                            "closed plain  1001", "free plain "));
}

TEST_F(Initialised, SecondExecuteBringsTheOpenPanelToTheFront) {
    run(kCustomize);
    for (const std::int32_t word : {1, 0}) {  // the host may have cleared the open panel's word
        busy = word;
        run(kCustomize);
        EXPECT_EQ(busy, 1);
    }
    std::int32_t other = 7;
    run(kCustomize, &other);
    EXPECT_EQ(other, 0);  // that call is done; the panel keeps the first word
    EXPECT_EQ(busy, 1);
    terminate(kCustomize);
    EXPECT_EQ(busy, 0);
    EXPECT_THAT(seams.log.take(),
                ElementsAre("start customize 1001", "front customize 1001", "front customize 1001",
                            "front customize 1001", "closed customize 1001"));
}

TEST_F(Initialised, ThreadThatCannotStartLeavesNothingBusy) {
    seams.threadStarts = false;
    for (const int index : {kCustomize, kBehavior}) {
        EXPECT_EQ(run(index), 0);
        EXPECT_EQ(busy, 0);
        EXPECT_EQ(terminate(index), 1);
    }
    EXPECT_EQ(prompt.asked.size(), 2u);
}

TEST_F(Initialised, BehaviorPanelNeedsAProjectThatDefinesIt) {
    const TempFolder folder;
    const struct {
        bool projectFile, defined, context;
        const char* dialog;
    } rows[] = {{true, true, true, "start panel Opens Door17 1001"},
                {false, true, true, "start plain Door17 1001"},
                {true, false, true, "start plain Door17 1001"},
                {true, true, false, "start plain  1001"}};
    for (const auto& row : rows) {
        const std::string script = folder.path(row.projectFile ? "with.kez" : "without.kez");
        folder.write("with.xml", "<Project/>");
        seams.prepareEditor = [&](RecordingHost& editor) {
            EXPECT_EQ(busy, 1);  // before the editor is asked anything
            editor.folders().mainScript = script;
        };
        seams.definesBehavior = row.defined;
        HostContext context{0, "Door17", nullptr};
        run(kBehavior, &busy, row.context ? &context : nullptr);
        EXPECT_EQ(context.taken, std::string(row.dialog).find("panel") == std::string::npos ? 0 : 1);
        EXPECT_EQ(seams.log.take().front(), row.dialog);
        terminate(kBehavior);
        seams.log.take();
    }
}

TEST_F(Initialised, AddScriptChecksBeforeItOpensItsDialog) {
    const TempFolder folder;
    const std::string withProject = folder.path("with.kez"), without = folder.path("main.kez");
    const std::string project = folder.write("with.xml", "<Project/>");
    folder.write("template_6.xml", "");
    const std::string suite = folder.path() + "\\.", catalogue = suite + "\\.\\template_6.xml";
    const struct {
        std::string mainScript, subfolder;
        std::vector<std::string> texts, events;
    } rows[] = {
        {"", ".", {"No Main Script (ec10-3)"}, {}},
        {withProject, "nowhere", {}, {"project " + project}},
        {without, "nowhere", {"File missing: template_6.xml (ec10-4)"}, {}},
        {without, ".", {}, {"scripts " + without + " C:\\project " + catalogue}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mainScript);
        prompt.asked.clear();
        busy = 7;
        seams.prepareEditor = [&](RecordingHost& editor) {
            editor.folders().mainScript = row.mainScript;
            editor.folders().suite = suite;
            editor.folders().templateSubfolder = row.subfolder;
        };
        seams.whileModal = [&] {
            EXPECT_EQ(busy, 1);
            std::int32_t other = 7;  // a message that comes meanwhile runs it again
            EXPECT_EQ(run(kAddScript, &other), 0);
            EXPECT_EQ(other, 7);
        };
        EXPECT_EQ(run(kAddScript), 0);
        EXPECT_EQ(busy, 0);
        EXPECT_EQ(prompt.texts(), row.texts);
        EXPECT_EQ(seams.log.take(), row.events);
    }
    seams.whileModal = [] {};
    EXPECT_EQ(run(kAddScript, nullptr), 0);  // no busy word
    EXPECT_EQ(seams.log.take().size(), 1u);
}

TEST_F(Initialised, WizardOpensTheNewMap) {
    const std::string folder = "C:\\games\\";
    const std::string fits(256 - folder.size(), 'm'), tooLong = fits + "m";
    const struct {
        std::optional<NewProjectChoice> choice;
        std::int32_t result;
        std::vector<std::string> texts, events;
    } rows[] = {
        {std::nullopt, 1, {}, {"new project"}},
        {{{folder, ""}}, 1, {}, {"new project", "open C:\\games\\map.zlm"}},
        {{{folder, "cave"}}, 1, {}, {"new project", "open C:\\games\\cave.zlm"}},
        {{{folder, fits}}, 1, {}, {"new project", "open " + folder + fits + ".zlm"}},
        {{{folder, tooLong}}, 0, {"Pathname to long (ec11-1)"}, {"new project"}},
    };
    for (const auto& row : rows) {
        prompt.asked.clear();
        busy = 7;
        seams.choice = row.choice;
        seams.whileModal = [&] { EXPECT_EQ(busy, 1); };
        EXPECT_EQ(run(kWizard), row.result);
        EXPECT_EQ(busy, 0);
        EXPECT_EQ(prompt.texts(), row.texts);
        EXPECT_EQ(seams.log.take(), row.events);
    }
}

TEST_F(Initialised, ShutdownClosesBothPanelsAndForgetsTheHost) {
    std::int32_t other = 0;
    run(kCustomize);
    run(kBehavior, &other);
    shutDownPlugin();
    EXPECT_EQ(busy, 0);
    EXPECT_EQ(other, 0);
    EXPECT_THAT(seams.log.take(),
                ElementsAre("start customize 1001", "start plain  1001", "unload customize 1001",
                            "closed customize 1001", "unload plain  1001", "closed plain  1001",
                            "free plain ", "free customize"));
    EXPECT_EQ(PIGetProcDef(0), nullptr);
    EXPECT_EQ(PIInitialize(&app), 1);
}

TEST_F(Initialised, NothingIsThrownThroughTheHost) {
    for (const int index : {kCustomize, kAddScript, kBehavior, kWizard}) {
        SCOPED_TRACE(g_procDefs[index].name);
        prompt.asked.clear();
        busy = 0;
        seams.prepareEditor = [](RecordingHost&) { throw std::bad_alloc(); };
        EXPECT_EQ(run(index), 0);
        EXPECT_EQ(busy, 0);
        EXPECT_THAT(prompt.texts(), ElementsAre("There is not enough memory for this."));
        // Nothing stays marked as running.
        bool asked = false;
        seams.prepareEditor = [&](RecordingHost&) { asked = true; };
        run(index);
        EXPECT_TRUE(asked);
    }
}

// A host that handles messages while the plug-in asks it something can get back into the procedure.
TEST_F(Initialised, ReentryWhileAPanelOpensMakesNoSecondOne) {
    for (const int index : {kCustomize, kBehavior}) {
        int deep = 0;
        seams.prepareEditor = [&](RecordingHost&) {
            EXPECT_EQ(busy, 1) << "before the host is asked anything";
            if (++deep == 1) {
                EXPECT_EQ(run(index), 0);
            }
        };
        busy = 0;
        run(index);
        EXPECT_EQ(deep, 1);
        EXPECT_EQ(busy, 1);
        terminate(index);
        EXPECT_EQ(busy, 0);
    }
    EXPECT_THAT(seams.log.take(), ElementsAre("start customize 1001", "closed customize 1001",
                                              "start plain  1001", "closed plain  1001", "free plain "));
}

TEST_F(Procedures, ShutdownClosesTheDebugLog) {
    const TempFolder folder;
    debugLogFileName() = folder.path("log.xml");
    debugLog("a", 1, "f", "first", 1);
    shutDownPlugin();
    debugLog("a", 1, "f", "second", 1);
    EXPECT_THAT(folder.read("log.xml"), Not(HasSubstr("first"))) << "a new start is a new log";
    closeDebugLog();
    debugLogFileName() = "debugLogOut.xml";
}

TEST_F(Procedures, LibraryRefusesToLoadWithoutItsToolkit) {
    EXPECT_TRUE(startLibrary([] { return true; }));
    EXPECT_THAT(prompt.texts(), IsEmpty());
    EXPECT_FALSE(startLibrary([] { return false; }));
    EXPECT_THAT(prompt.texts(), ElementsAre("InitInstance error!(ec13-1)"));
}

TEST(ProjectFile, ReplacesFourCharactersFromTheLastDot) {
    const struct {
        const char* script;
        std::optional<std::string> project;
    } rows[] = {{"C:\\a.b\\main.kez", "C:\\a.b\\main.xml"},
                {"main.k", "main.xml"},
                {"main.kez2", "main.xml2"},
                {"main.", "main.xml"},
                {"main", std::nullopt},
                {"", std::nullopt}};
    for (const auto& row : rows) {
        EXPECT_EQ(projectFileOf(row.script), row.project) << row.script;
    }
}

}  // namespace
}  // namespace zoka::test
