// The update list, updating, restoring and the notes report, with every text to the letter.
#include "templates/ScriptUpdate.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <optional>

#include "templates/NotesReport.h"
#include "templates/ScriptFolders.h"
#include "templates/ScriptRestore.h"
#include "tests/support/FaultyOsFiles.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/templates/Project.h"

using namespace zoka;
using test::FaultyOsFiles;
using test::includes;
using test::Names;
using test::Project;
using test::script;
using test::ScriptedPrompt;

namespace {

struct Fixture {
    explicit Fixture(const Names& included) : project(includes(included) + "\r\n") {
        catalogue.AddScript(script("Fog", "fog.kez", "", "", {"noise.kez", "Weather.kez"}));
        catalogue.AddScript(script("Weather", "weather.kez"));
        catalogue.AddScript(script("Old", "old.kez"));
        catalogue.AddScript(script("Plain", "plain.kez"));
        project.addTemplate("fog.kez", "// ver: 3\r\n// date: 260101\r\n");
        project.addTemplate("weather.kez", "// ver: 1\r\n");
        project.addTemplate("old.kez", "// ver: 2, new\r\n");
        project.addTemplate("plain.kez", "var x;");
        project.folder.write("fog.kez", "// ver: 3\r\n// date: 260101\r\n");
        project.folder.write("old.kez", "// ver: 1\r\n// date: 250101\r\n");
        project.folder.write("plain.kez", "var y;");
        project.folder.write("mine.kez", "// ver: 9\r\n");
    }
    Names lines() const {
        Names all;
        for (const UpdateEntry& entry : update.entries()) {
            all.push_back(entry.line);
        }
        return all;
    }
    Project project;
    CTemplateData catalogue;
    ScriptedPrompt prompt;
    ScriptUpdate update{project.host, catalogue, prompt};
};

// Two scripts differ, and the user is about to agree.
struct TwoOld : Fixture {
    TwoOld() : Fixture({"fog.kez", "noise.kez", "weather.kez", "old.kez"}) {
        project.folder.write("weather.kez", "// ver: 0\r\n");
        update.FillUpdateList(false);
        prompt.answers = {PromptAnswer::Yes};
    }
};

const std::string kFogNeeds = "Fog--Is missing the following Needs: \nnoise.kez \nWeather.kez";
const std::string kOldDiffers = "Old--[Local ver: 1 date: 250101 --> Template ver: 2 date: -1]\n";

struct StopAfter : JobProgress {
    explicit StopAfter(size_t pieces) : m_pieces(pieces) {}
    bool step(size_t done, size_t, const std::string&) override { return done < m_pieces; }

private:
    size_t m_pieces;
};

}  // namespace

TEST(ScriptUpdate, ListsWhatDiffersAndWhatIsMissing) {
    Fixture f({"fog.kez", "OLD.kez", "plain.kez", "mine.kez", "none.kez"});
    EXPECT_EQ(f.update.FillUpdateList(false), 1);
    EXPECT_EQ(f.lines(), (Names{kFogNeeds, kOldDiffers}));
    EXPECT_EQ(f.update.entries()[1].fileName, "OLD.kez");
    EXPECT_EQ(f.update.FillUpdateList(true), 1);
    EXPECT_EQ(f.lines(), (Names{kFogNeeds, "Fog", "Old", "Plain"}));

    // A script can be there twice: for its needs and for its version.
    f.project.folder.write("fog.kez", "// ver: 2\r\n// data: x\r\n");
    f.project.folder.write("main.kez", includes({"fog.kez", "noise.kez"}) + "\r\n");
    f.update.FillUpdateList(false);
    EXPECT_EQ(f.lines(), (Names{"Fog--Is missing the following Needs: \nWeather.kez",
                                "Fog--[Local ver: 2 date: x --> Template ver: 3 date: 260101]\n"}));
    Fixture none({"plain.kez"});
    EXPECT_EQ(none.update.FillUpdateList(false), 1);
    EXPECT_TRUE(none.update.entries().empty());
    none.update.UpdateAll();
    ASSERT_EQ(none.prompt.texts(), Names{"Everything Up-to-Date."});
    EXPECT_EQ(none.prompt.asked[0].title, "Can't Update");
}

TEST(ScriptUpdate, ReadsEachFileOnce) {
    Fixture f({"fog.kez", "old.kez", "plain.kez", "weather.kez", "old.kez"});
    std::map<std::string, int> reads;
    const test::FaultyOsFiles disk([&reads](int, std::string_view op, const std::string& path) {
        if (op == "readWhole") {
            ++reads[path];
        }
        return false;
    });
    f.update.FillUpdateList(false);
    EXPECT_EQ(reads.size(), 7U) << "the main script, three copies and their templates";
    for (const auto& [path, count] : reads) {
        EXPECT_EQ(count, 1) << path;
    }
    EXPECT_LE(disk.operations(), 12) << "folders are looked into once";
}

TEST(ScriptUpdate, AllAsksThenUpdatesEachOnce) {
    Fixture f({"fog.kez", "old.kez", "weather.kez", "old.kez"});
    f.update.FillUpdateList(false);
    const std::string old = f.project.folder.read("old.kez");
    f.prompt.answers = {PromptAnswer::No, PromptAnswer::Yes};
    EXPECT_FALSE(f.update.UpdateAll());
    EXPECT_EQ(f.project.folder.read("old.kez"), old);
    EXPECT_TRUE(f.update.UpdateAll());
    EXPECT_EQ(f.prompt.texts(), (Names{"Update All Scripts Listed?", "Update All Scripts Listed?"}));
    EXPECT_EQ(f.prompt.asked[0].buttons, PromptButtons::YesNo);
    EXPECT_EQ(f.update.updated(), Names{"old.kez"}) << "not fog.kez, which is the template's already";
    EXPECT_EQ(f.project.folder.read("old.kez"), "// ver: 2, new\r\n");
    // The need that was missing came in.
    EXPECT_EQ(f.project.main(),
              includes({"fog.kez", "old.kez", "weather.kez", "old.kez", "noise.kez"}) + "\r\n");
    EXPECT_EQ(f.update.included(), Names{"noise.kez"});
    EXPECT_EQ(f.project.host.calls, Names{"changed"});
    EXPECT_TRUE(f.update.entries().empty()) << "the list is rebuilt";
}

TEST(ScriptUpdate, OnlyWhatItIncludedItselfCountsAsIncluded) {
    Fixture f({"fog.kez", "weather.kez", "plain.kez"});
    f.update.FillUpdateList(true);
    {
        const test::FaultyOsFiles disk([](int, std::string_view op, const std::string& path) {
            return op == "replaceFile" && path.ends_with("main.kez");
        });
        f.update.UpdateSelected(0);
    }
    EXPECT_EQ(f.update.problems().size(), 1U);
    EXPECT_EQ(f.update.included(), Names{});
    // Another program includes it while the user is asked about plain.kez.
    const std::string theirs = includes({"noise.kez", "fog.kez", "weather.kez", "plain.kez"});
    f.prompt.answers = {PromptAnswer::Yes, PromptAnswer::No};
    f.prompt.whenAsked = [&] {
        if (f.prompt.asked.back().text.find("plain.kez") != std::string::npos) {
            f.project.folder.write("main.kez", theirs);
        }
    };
    f.update.FillUpdateList(true);
    f.update.UpdateAll();
    EXPECT_EQ(f.update.included(), Names{});
    EXPECT_EQ(f.project.main(), theirs);
}

TEST(ScriptUpdate, SelectedUpdatesOneWithoutAsking) {
    Fixture f({"old.kez", "fog.kez"});
    f.update.FillUpdateList(true);
    f.update.UpdateSelected(-1);
    f.update.UpdateSelected(99);
    EXPECT_TRUE(f.update.updated().empty());
    f.update.UpdateSelected(0);
    EXPECT_EQ(f.update.updated(), Names{"old.kez"});
    EXPECT_TRUE(f.prompt.asked.empty());
}

TEST(ScriptUpdate, LinesThatTheTemplateLacksAreAskedForAndKept) {
    const std::string mine = "// ver: 1\r\nfunction mine() {}\r\n";
    for (const PromptAnswer answer : {PromptAnswer::No, PromptAnswer::Yes}) {
        Fixture f({"old.kez", "weather.kez", "plain.kez"});
        f.project.folder.write("old.kez", mine);
        f.project.folder.write("weather.kez", "// ver: 0\r\n");
        f.update.FillUpdateList(true);
        const UpdatePlan plan = f.update.plan(f.update.entries());
        ASSERT_EQ(plan.scripts.size(), 3U);
        EXPECT_EQ(plan.ownLines().size(), 2U);
        f.prompt.answers = {PromptAnswer::Yes, answer};
        f.update.UpdateAll();
        ASSERT_EQ(f.prompt.asked.size(), 2U);
        EXPECT_EQ(
            f.prompt.asked[1].text,
            "The template folder's version lacks lines that are in:\n\nold.kez (1 line)\nplain.kez (1 line)"
            "\n\nReplace these too? Each is kept beside the new one, as NAME.N.bak.");
        EXPECT_EQ(f.prompt.asked[1].buttons, PromptButtons::YesNoDefaultNo);
        const bool replaced = answer == PromptAnswer::Yes;
        EXPECT_EQ(f.project.folder.read("old.kez"), replaced ? plan.scripts[0].change.after : mine);
        EXPECT_EQ(f.project.folder.read("old.kez.1.bak"), replaced ? mine : "<missing>");
        EXPECT_EQ(f.project.folder.read("weather.kez"), "// ver: 1\r\n");
        EXPECT_EQ(f.project.folder.read("weather.kez.1.bak"), "<missing>") << "only its version went";
        EXPECT_EQ(f.update.leftAlone(), replaced ? Names{} : (Names{"old.kez", "plain.kez"}));
    }
}

TEST(ScriptUpdate, SaysWhetherAllIsTheTemplates) {
    Fixture f({"fog.kez", "weather.kez", "noise.kez"});
    f.update.FillUpdateList(false);
    EXPECT_TRUE(f.update.entries().empty());
    EXPECT_EQ(f.update.nothingListedText(),
              "Every template script in the project folder is as the template folder has it.")
        << "noise.kez is no template script";
    f.project.folder.write("main.kez", includes({"fog.kez", "weather.kez"}));
    f.catalogue = {};
    f.catalogue.AddScript(script("Fog", "fog.kez"));
    f.catalogue.AddScript(script("Weather", "weather.kez"));
    f.update.FillUpdateList(false);
    EXPECT_EQ(f.update.nothingListedText(),
              "Every script in the project folder is as the template folder has it.");
    f.project.folder.write("fog.kez", "// ver: 3\r\n// date: 260101\r\nfunction mine() {}\r\n");
    f.update.FillUpdateList(false);
    EXPECT_EQ(f.update.nothingListedText(),
              "Versions and dates are the template folder's, but these scripts have other lines or values: "
              "fog.kez");
}

// What can't be read is neither empty nor up to date.
TEST(ScriptUpdate, SaysWhatItCouldNotCompare) {
    for (const char* unread : {"main.kez", "fog.kez"}) {
        SCOPED_TRACE(unread);
        Fixture f({"fog.kez", "weather.kez", "noise.kez"});
        std::optional<FaultyOsFiles> disk(
            std::in_place, [&](int, std::string_view op, const std::string& path) {
                return op == "readWhole" && path == f.project.folder.path(unread);
            });
        f.update.FillUpdateList(false);
        EXPECT_EQ(f.update.nothingListedText(), "Not every script could be compared:\nCan't read '" +
                                                    f.project.folder.path(unread) + "': injected fault");
        EXPECT_FALSE(f.update.UpdateAll());
        EXPECT_EQ(f.prompt.texts(), Names{f.update.nothingListedText()});
        EXPECT_EQ(f.update.problems().size(), 1u);
        disk.reset();
        f.update.FillUpdateList(false);
        EXPECT_EQ(f.update.nothingListedText().find("could be compared"), std::string::npos) << "read by now";
    }
}

// A folder that can't be listed is looked into name by name.
TEST(ScriptFolders, AFolderThatCannotBeListedIsNotEmpty) {
    const Fixture f({});
    const FaultyOsFiles disk(FaultyOsFiles::every("list"));
    test::RecordingHost host = f.project.host;
    ScriptFolders folders(host);
    folders.listOnce();
    EXPECT_EQ(folders.LocateScript("fog.kez"), ScriptPlace::Project);
    EXPECT_EQ(folders.LocateScript("weather.kez"), ScriptPlace::Template);
    EXPECT_EQ(folders.LocateScript("none.kez"), ScriptPlace::NotFound);
}

TEST(ScriptUpdate, ANumberedCopyFollowsItsTemplate) {
    Fixture f({"camera_3.kez", "noise.kez"});
    f.catalogue.AddScript(script("Camera", "camera_.kez", "", "", {"base%_%.kez", "noise.kez"}));
    f.project.addTemplate("camera_.kez", "// ver: 2\r\nvar x%_%;\r\n");
    f.project.folder.write("camera_3.kez", "// ver: 1\r\nvar x_3;\r\n");
    f.update.FillUpdateList(false);
    EXPECT_EQ(f.lines(),
              (Names{"Camera (camera_3.kez)--Is missing the following Needs: \nbase_3.kez",
                     "Camera (camera_3.kez)--[Local ver: 1 date: -1 --> Template ver: 2 date: -1]\n"}));
    f.update.UpdateSelected(1);
    EXPECT_EQ(f.project.folder.read("camera_3.kez"), "// ver: 2\r\nvar x_3;\r\n");
    EXPECT_EQ(f.update.updated(), Names{"camera_3.kez"});
}

TEST(ScriptUpdate, ValuesWithoutAPlaceAreNamedByScript) {
    TwoOld f;
    const std::string value = "// entry: Range\r\n// id: 1\r\nvar range = 5;\r\n";
    f.project.folder.write("weather.kez", "// ver: 0\r\n\r\n" + value);
    f.project.folder.write("old.kez", "// ver: 1\r\n\r\n" + value);
    f.prompt.answers.push_back(PromptAnswer::Yes);
    f.update.UpdateAll();
    EXPECT_EQ(f.update.unplaced().find("weather.kez\r\nRange (id 1): 5"), 0U) << f.update.unplaced();
    EXPECT_NE(f.update.unplaced().find("\r\n\r\nold.kez\r\nRange"), std::string::npos);
    // Of a run that the user declines nothing is told, nor of a script that was not updated.
    f.prompt.answers = {PromptAnswer::No};
    f.project.folder.write("old.kez", "// ver: 0\r\n");
    f.update.FillUpdateList(false);
    f.update.UpdateAll();
    EXPECT_EQ(f.update.unplaced(), "");
    EXPECT_TRUE(f.update.updated().empty() && f.update.included().empty() && f.update.problems().empty());
}

TEST(ScriptUpdate, FailuresAreToldAndTheRestGoesOn) {
    TwoOld f;
    {
        const test::FaultyOsFiles disk([](int, std::string_view op, const std::string& path) {
            return op == "replaceFile" && (path.ends_with("weather.kez") || path.ends_with("old.kez.zoka"));
        });
        f.update.UpdateAll();
    }
    const std::string weather = f.project.folder.path("weather.kez"), old = f.project.folder.path("old.kez");
    EXPECT_EQ(
        f.prompt.texts().back(),
        "Not updated:\nweather.kez: Can't write '" + weather +
            "': injected fault\n\nUpdated, but not all of it:\nold.kez: the value file is still that of "
            "the old script: Can't write '" +
            old + ".zoka': injected fault");
    EXPECT_EQ(f.update.updated(), Names{"old.kez"});
    EXPECT_EQ(f.project.folder.read("weather.kez"), "// ver: 0\r\n");
    ASSERT_EQ(f.update.entries().size(), 1U);

    std::filesystem::remove(f.project.suite.native("template_6/weather.kez"));
    f.update.UpdateSelected(0);
    EXPECT_EQ(f.prompt.texts().back(), "Not updated:\nweather.kez: the template folder has no such script");
}

TEST(ScriptUpdate, WhatCannotBeReadKeepsNothingElseFromBeingUpdated) {
    TwoOld f;
    const test::FaultyOsFiles disk([](int, std::string_view op, const std::string& path) {
        return op == "readWhole" && path.ends_with("\\fog.kez");
    });
    f.update.FillUpdateList(false);
    ASSERT_FALSE(f.update.entries().empty());
    EXPECT_TRUE(f.update.UpdateAll());
    EXPECT_EQ(f.prompt.texts(), Names{"Update All Scripts Listed?"});
    EXPECT_EQ(f.update.updated(), (Names{"weather.kez", "old.kez"}));
}

TEST(ScriptUpdate, ARunTellsNothingOfTheOneBefore) {
    const auto told = [](const ScriptUpdate& update) {
        return std::array{!update.updated().empty(), !update.problems().empty(), !update.included().empty(),
                          !update.leftAlone().empty(), !update.unplaced().empty()};
    };
    using Next = void (*)(ScriptUpdate&);
    const Next all = [](ScriptUpdate& update) { update.UpdateAll(); };
    for (const Next next : {Next([](ScriptUpdate& update) { update.UpdateSelected(99); }),
                            Next([](ScriptUpdate& update) { update.UpdateEntries({}); }), all}) {
        for (const PromptAnswer answer : {PromptAnswer::Yes, PromptAnswer::No}) {
            const bool replaced = answer == PromptAnswer::Yes;
            Fixture f({"fog.kez", "weather.kez", "old.kez"});
            f.project.folder.write("weather.kez",
                                   "// ver: 0\r\n// entry: Range\r\n// id: 1\r\nvar range = 5;\r\n");
            f.update.FillUpdateList(true);
            f.prompt.answers = {answer};
            {
                const test::FaultyOsFiles disk([](int, std::string_view op, const std::string& path) {
                    return op == "replaceFile" && path.ends_with("old.kez");
                });
                f.update.UpdateEntries(f.update.entries());
            }
            EXPECT_EQ(told(f.update), (std::array{replaced, true, true, !replaced, replaced}));
            f.prompt.answers.assign(next == all ? 1 : 0, PromptAnswer::No);
            next(f.update);
            EXPECT_EQ(told(f.update), (std::array<bool, 5>{}));
        }
    }
}

TEST(ScriptUpdate, CanBeStoppedBetweenTwoScripts) {
    TwoOld f;
    StopAfter one(3);  // two are compared, one is updated
    f.update.UpdateAll(&one);
    EXPECT_EQ(f.update.updated(), Names{"weather.kez"});
    ASSERT_EQ(f.update.entries().size(), 1U);
    EXPECT_EQ(f.update.entries()[0].fileName, "old.kez");
    StopAfter soon(0);
    f.prompt.answers = {PromptAnswer::Yes};
    f.update.UpdateAll(&soon);
    EXPECT_TRUE(f.update.updated().empty());
}

TEST(ScriptUpdate, ListingCanBeStopped) {
    TwoOld f;
    f.prompt.answers.clear();
    ASSERT_EQ(f.update.entries().size(), 2U);
    StopAfter three(3), none(0);
    f.update.FillUpdateList(false, &three);
    ASSERT_EQ(f.update.entries().size(), 1U);
    EXPECT_EQ(f.update.entries()[0].fileName, "weather.kez");
    EXPECT_EQ(f.update.listedText(),
              "Scripts that differ from the template folder: 1. Stopped: not every script was compared.");
    f.update.FillUpdateList(false, &none);
    EXPECT_TRUE(f.update.entries().empty());
    EXPECT_EQ(f.update.nothingListedText(), "Stopped: not every script was compared.");
    EXPECT_FALSE(f.update.UpdateAll()) << "nobody is told that all is up to date";
    EXPECT_EQ(f.prompt.texts(), Names{"Stopped: not every script was compared."});
    {
        const test::FaultyOsFiles disk([](int, std::string_view op, const std::string& path) {
            return op == "readWhole" && path.ends_with("weather.kez");
        });
        StopAfter unread(3);
        f.update.FillUpdateList(false, &unread);
        EXPECT_TRUE(f.update.nothingListedText().starts_with("Not every script could be compared:\n"));
        EXPECT_TRUE(f.update.nothingListedText().ends_with("\nStopped: not every script was compared."))
            << f.update.nothingListedText();
    }
    f.update.FillUpdateList(false);
    EXPECT_EQ(f.update.entries().size(), 2U);
    EXPECT_EQ(f.update.listedText(), "Scripts that differ from the template folder: 2");
}

TEST(ScriptUpdate, TwoWritersOfTheMainScriptLoseNothing) {
    Project project("// main\r\n\r\n");
    const std::string path = project.folder.path("main.kez"), text = project.main();
    const auto including = [](const char* name) {
        return [name](const std::string& now) { return includeLine(name) + now; };
    };
    EXPECT_TRUE(writeMainScript({path, text, includeLine("a.kez") + text}, including("a.kez")));
    // Planned from the text before the first one came.
    EXPECT_TRUE(writeMainScript({path, text, includeLine("b.kez") + text}, including("b.kez")));
    EXPECT_EQ(project.main(), includes({"b.kez", "a.kez"}) + text);
}

TEST(ScriptUpdate, Restore) {
    struct Row {
        const char *file, *text;  // null: works
    };
    Fixture f({});
    for (const Row& row : {Row{"fog.kez", "Original file still there."},
                           Row{"none.kez", "Can't find the original in template folder."},
                           Row{"..\\main.kez", "Can't find the original in template folder."},
                           Row{"weather.kez", nullptr}, Row{"weather.kez", "Original file still there."}}) {
        f.prompt.asked.clear();
        EXPECT_EQ(RestoreFromTemplate(f.project.host, row.file), row.text == nullptr) << row.file;
        ASSERT_EQ(f.prompt.asked.size(), row.text ? 1U : 0U) << row.file;
        if (!row.text) {
            continue;
        }
        EXPECT_EQ(f.prompt.asked[0].text, row.text);
        EXPECT_EQ(f.prompt.asked[0].title, "Can't Update Script");
        EXPECT_EQ(f.prompt.asked[0].icon, PromptIcon::Error);
    }
    EXPECT_EQ(f.project.folder.read("weather.kez"), "// ver: 1\r\n");
    std::filesystem::remove(f.project.folder.native("weather.kez"));
    f.project.host.refuseCopies(true);
    EXPECT_FALSE(RestoreFromTemplate(f.project.host, "weather.kez"));
    EXPECT_EQ(f.prompt.texts().back(), "Copy error (1128).\nNo Update.");
    f.project.host.refuseCopies(false);
    f.project.host.feigned = {"CopyFileToFolder"};
    EXPECT_FALSE(RestoreFromTemplate(f.project.host, "weather.kez"));
    EXPECT_EQ(f.prompt.texts().back(),
              "Copy error (1128).\nNo Update.\n\nThere is no script after the copying.");
    f.project.host.feigned.clear();
    const FaultyOsFiles disk(FaultyOsFiles::every("openNew"));
    EXPECT_FALSE(RestoreFromTemplate(f.project.host, "weather.kez"));
    EXPECT_EQ(f.prompt.texts().back(), "Copy error (1128).\nNo Update.\n\nCan't make '" +
                                           f.project.folder.path("weather.kez") + "': injected fault");
}

TEST(NotesReport, ListsEveryInclude) {
    Fixture f({"fog.kez", "old.kez", "mine.kez", "gone.kez", "weather.kez", "lost.kez"});
    f.catalogue.AddScript(script("Lost", "lost.kez"));
    f.catalogue.SetName("Set");
    f.catalogue.SetType("full");
    f.catalogue.SetDate("260101");
    f.catalogue.SetVers("6.2");
    f.catalogue.SetEngReq("6.1 PRO");
    const std::string head =
        "Project Manager: 2.1\r\nTemplate: Set\r\n\tType: full\r\n\tDate: 260101\r\n\tVers: 6.2\r\n\tReq: "
        "6.1 PRO\r\n\r\n";
    std::string text = "left over";
    EXPECT_FALSE(BuildNotesReport(text, f.project.host, f.catalogue, ""));
    EXPECT_EQ(text, head + "No Main Script Attached to this Project\r\n");
    const std::string mainPath = f.project.folder.path("main.kez");
    EXPECT_TRUE(BuildNotesReport(text, f.project.host, f.catalogue, mainPath));
    EXPECT_EQ(text, head + "Main Script: " + mainPath +
                        "\r\n\r\n"
                        "fog.kez  (3) (260101)\r\n"
                        "old.kez  (1) (250101) --> **(2) (-1)**\r\n"
                        "mine.kez  (USER)\r\n"
                        "!gone.kez  (USER)\r\n"
                        "weather.kez  (1) (-1)\r\n"
                        "!lost.kez  (-1) (-1)\r\n");
    StopAfter one(1);
    EXPECT_FALSE(BuildNotesReport(text, f.project.host, f.catalogue, mainPath, &one));
    EXPECT_EQ(text, head + "Main Script: " + mainPath + "\r\n\r\nfog.kez  (3) (260101)\r\n" +
                        "Stopped: the scripts below this line were not looked at.\r\n");
}
