// Finding, copying, adding and removing scripts in a project, with the disk failing at every step.
#include "templates/ScriptAdding.h"

#include <gtest/gtest.h>

#include "tests/support/ScriptedPrompt.h"
#include "tests/templates/Project.h"

using namespace zoka;
using test::includes;
using test::Names;
using test::Project;
using test::ScriptedPrompt;

namespace {

const char* const kRest = "// main\r\n\r\nfunction main()\r\n{\r\n}\r\n";

// The main script of the fixture with these includes in it.
std::string mainWith(const Names& names) {
    return "// main\r\n" + includes(names) + "\r\nfunction main()\r\n{\r\n}\r\n";
}

struct Fixture {
    explicit Fixture(const std::string& mainScript = kRest) : project(mainScript) {}
    bool add(const std::string& name) { return adding.AddScriptToProject(project.templatePath(name)); }
    Project project;
    ScriptedPrompt prompt;
    ScriptAdding adding{project.host, prompt};
};

}  // namespace

TEST(ScriptFolders, LocatesInTheProjectFirst) {
    Project project;
    project.folder.write("both.kez", "// ver: 1\n");
    project.addTemplate("both.kez", "// ver: 2\n// date: 5\n");
    project.addTemplate("fog.kez", "// ver: 3\n");
    project.suite.write("outside.kez", "x");
    std::filesystem::create_directory(project.suite.native("template_6/sub"));
    project.addTemplate("sub/deep.kez", "x");
    std::filesystem::create_directory(project.folder.native("dir.kez"));
    for (const bool listed : {false, true}) {
        ScriptFolders folders(project.host);
        if (listed) {
            folders.listOnce();
        }
        std::string path = "untouched";
        EXPECT_EQ(folders.LocateScript("BOTH.kez", path), ScriptPlace::Project);
        EXPECT_EQ(path, project.folder.path("BOTH.kez"));
        EXPECT_EQ(folders.LocateScript("fog.kez", path), ScriptPlace::Template);
        EXPECT_EQ(path, project.templatePath("fog.kez"));
        path = "untouched";
        for (const char* name :
             {"none.kez", "dir.kez", "..\\outside.kez", "../outside.kez", "", ".", "*.kez",
              "sub\\..\\fog.kez", "C:fog.kez", "\\fog.kez", "fog.kez.", "fog.kez ", "conin$", "fog.kez:x"}) {
            EXPECT_EQ(folders.LocateScript(name, path), ScriptPlace::NotFound) << name;
        }
        EXPECT_EQ(path, "untouched");

        for (const char* name : {".\\fog.kez", "sub\\deep.kez", "sub/deep.kez", ".\\sub\\.\\deep.kez"}) {
            EXPECT_EQ(folders.LocateScript(name), ScriptPlace::Template) << name;
        }

        const auto facts = [&folders](const char* name, bool fromTemplate) {
            std::string version, date;
            const bool read = folders.ReadVersionAndDate(name, version, date, fromTemplate);
            return (read ? "" : "no: ") + version + " " + date;
        };
        EXPECT_EQ(facts("both.kez", false), "1 -1");
        EXPECT_EQ(facts("both.kez", true), "2 5");
        EXPECT_EQ(facts("fog.kez", false), "3 -1") << "falls back to the template";
        EXPECT_EQ(facts("none.kez", false), "no: -1 -1");
        EXPECT_EQ(facts("..\\outside.kez", true), "no: -1 -1");
    }
    EXPECT_EQ(placeProblem("..\\outside.kez"),
              "\"..\\outside.kez\" is no file name that stays in the project or template folder.");
    EXPECT_EQ(placeProblem("sub\\none.kez"),
              "sub\\none.kez is neither in the project folder nor in the template folder.");
    EXPECT_EQ(placeProblem(""), "The catalogue names no file for this script.");
    const ScriptFolders folders(project.host);
    EXPECT_FALSE(folders.DeleteProjectScript("fog.kez"));
    EXPECT_FALSE(folders.DeleteProjectScript("dir.kez"));
    EXPECT_FALSE(folders.DeleteProjectScript("..\\x.kez"));
    EXPECT_TRUE(folders.DeleteProjectScript("both.kez"));
    EXPECT_EQ(project.folder.read("both.kez"), "<missing>");
}

TEST(ScriptAdding, KnowsNumberedTemplates) {
    for (const char* path : {"camera_.kez", "C:\\x\\_.KEZ"}) {
        EXPECT_TRUE(IsNumberedTemplate(path)) << path;
    }
    for (const char* path :
         {"camera.kez", "camera_.txt", "camera_", "camera_0.kez", "x_\\a.kez", "", "camera_.kez.kez"}) {
        EXPECT_FALSE(IsNumberedTemplate(path)) << path;
    }
}

TEST(ScriptAdding, ANumberedTemplateThreeTimes) {
    Fixture f;
    auto& [project, prompt, adding] = f;
    project.addTemplate("camera_.kez", "// needs: base.kez\r\nvar speed%_% = 1; // %_%%_%\r\n");
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(f.add("camera_.kez"));
    }
    EXPECT_EQ(project.folder.names(), (Names{"camera_0.kez", "camera_1.kez", "camera_2.kez", "main.kez"}));
    for (int i = 0; i < 3; ++i) {
        const std::string mark = "_" + std::to_string(i);
        EXPECT_EQ(project.folder.read("camera" + mark + ".kez"),
                  "// needs: base.kez\r\nvar speed" + mark + " = 1; // " + mark + mark + "\r\n");
    }
    EXPECT_EQ(project.main(), mainWith({"base.kez", "camera_0.kez", "camera_1.kez", "camera_2.kez"}));
    EXPECT_EQ(project.host.calls, (Names{"substitute %_%=_0", "changed", "substitute %_%=_1", "changed",
                                         "substitute %_%=_2", "changed"}));
    EXPECT_TRUE(prompt.asked.empty());
}

TEST(ScriptAdding, NeedsComeFirstAndOnlyWhatIsMissing) {
    Fixture f;
    auto& [project, prompt, adding] = f;
    project.addTemplate("fog.kez", "// needs: weather.kez, noise.kez\r\n");
    project.addTemplate("weather.kez", "// needs: base.kez\r\n");
    project.addTemplate("base.kez", "// needs: maths.kez fog.kez\r\n");
    project.addTemplate("maths.kez", "x");
    project.addTemplate("rain.kez", "// needs: WEATHER.kez\r\n");

    const std::string fog = project.templatePath("fog.kez");
    const AddPlan plan = adding.plan(std::span(&fog, 1));
    EXPECT_EQ(plan.summary(), "adds fog.kez; needs maths.kez, base.kez, weather.kez, noise.kez (not found)");
    EXPECT_EQ(plan.main.before, kRest);
    EXPECT_EQ(project.main(), kRest) << "a plan changes nothing";

    EXPECT_TRUE(adding.AddScriptToProject(fog));
    EXPECT_EQ(project.main(), mainWith({"maths.kez", "base.kez", "weather.kez", "noise.kez", "fog.kez"}));
    EXPECT_EQ(plan.main.after, project.main());

    project.host.calls.clear();
    EXPECT_TRUE(adding.AddScriptToProject(fog)) << "also when nothing has to change";
    EXPECT_FALSE(adding.changed());
    EXPECT_TRUE(project.host.calls.empty());
    EXPECT_TRUE(f.add("rain.kez"));
    EXPECT_EQ(project.main(),
              mainWith({"maths.kez", "base.kez", "weather.kez", "noise.kez", "fog.kez", "rain.kez"}));
    EXPECT_EQ(adding.plan(std::span(&fog, 1)).summary(), "fog.kez is already included; nothing to add");
    EXPECT_EQ(project.folder.names(), Names{"main.kez"}) << "scripts without number are not copied";
}

TEST(ScriptAdding, AnIncludedScriptBringsTheNeedsThatAreMissing) {
    Fixture f(includes({"fog.kez", "there.kez"}) + kRest);
    auto& [project, prompt, adding] = f;
    project.addTemplate("fog.kez", "\xEF\xBB\xBF// needs: there.kez, gone.kez, sub\\lib.kez\r\n");
    project.addTemplate("gone.kez", "// needs: deep.kez\r\n");
    project.addTemplate("there.kez", "// needs: other.kez\r\n");
    EXPECT_TRUE(f.add("fog.kez"));
    EXPECT_EQ(project.main(),
              includes({"fog.kez", "there.kez", "deep.kez", "gone.kez", "sub\\lib.kez"}) + kRest);
}

TEST(ScriptAdding, SeveralScriptsAreOneRewrite) {
    Fixture f;
    auto& [project, prompt, adding] = f;
    project.addTemplate("a.kez", "// needs: c.kez\n");
    project.addTemplate("b.kez", "// needs: c.kez a.kez\n");
    project.addTemplate("n_.kez", "// needs: n%_%.lib\n%_%");
    const Names paths = {project.templatePath("n_.kez"), project.templatePath("b.kez"),
                         project.templatePath("a.kez"), project.templatePath("n_.kez")};
    const AddPlan plan = adding.plan(paths);
    EXPECT_TRUE(adding.AddScriptsToProject(paths));
    EXPECT_EQ(project.host.calls, (Names{"substitute %_%=_0", "substitute %_%=_1", "changed"}));
    EXPECT_EQ(project.main(),
              mainWith({"n_0.lib", "n_0.kez", "c.kez", "a.kez", "b.kez", "n_1.lib", "n_1.kez"}));
    EXPECT_EQ(plan.main.after, project.main());
    EXPECT_EQ(plan.summary(),
              "adds n_0.kez, a.kez, b.kez, n_1.kez; needs n_0.lib (not found), c.kez (not found), n_1.lib "
              "(not found); "
              "copies n_.kez as n_0.kez, n_.kez as n_1.kez");
}

TEST(ScriptAdding, ANeedThatLeavesTheFolderIsRefused) {
    for (const std::string& need :
         {std::string("..\\x.kez"), std::string("lib/../../x.kez"), std::string(300, 'x')}) {
        Fixture f;
        auto& [project, prompt, adding] = f;
        project.addTemplate("bad_.kez", "// needs: good.kez, " + need + "\n");
        EXPECT_FALSE(f.add("bad_.kez"));
        EXPECT_EQ(adding.error(),
                  "bad_0.kez needs \"" + need + "\": this is not a file name that can be included.");
        EXPECT_EQ(project.main(), kRest);
        EXPECT_EQ(project.folder.names(), Names{"main.kez"}) << "nothing is copied";
    }
}

TEST(ScriptAdding, TheMainScriptItself) {
    struct Row {
        const char *what, *main;
        bool added;
        const char* expected;
    };
    for (const Row& row :
         {Row{"empty: stays so", "", true, ""}, Row{"one byte", "x", true, "include <a.kez>;\r\nx"},
          Row{"UTF-16", "\xFF\xFEx", false, "\xFF\xFEx"},
          Row{"LF alone", "// c\n\nx\n", true, "// c\ninclude <a.kez>;\r\n\nx\n"},
          Row{"includes alone", "include <z>;", true, "include <a.kez>;\r\ninclude <z>;"}}) {
        Fixture f(row.main);
        auto& [project, prompt, adding] = f;
        project.addTemplate("a.kez", "x");
        EXPECT_EQ(f.add("a.kez"), row.added) << row.what;
        EXPECT_EQ(project.main(), row.expected) << row.what;
        EXPECT_EQ(adding.error().empty(), project.main() != row.main) << row.what;
        EXPECT_EQ(adding.AddScriptToProject(project.folder.path("main.kez")), row.added) << row.what;
        EXPECT_EQ(project.main(), row.expected) << "never includes itself";
    }
    Fixture f;
    const std::string own = f.project.folder.path("main.kez");
    EXPECT_EQ(f.adding.plan(std::span(&own, 1)).summary(), "nothing: the main script never includes itself");
    Fixture empty("");
    empty.project.addTemplate("a_.kez", "x");
    EXPECT_TRUE(empty.add("a_.kez"));
    EXPECT_EQ(empty.project.folder.names(), Names{"main.kez"}) << "a copy that nothing includes";
}

TEST(ScriptAdding, AMainScriptElsewhereIsCopiedFirst) {
    Project project;
    const std::string outside = project.suite.write("level.kez", "// level\r\n\r\n");
    project.addTemplate("a.kez", "x");
    test::RecordingHost host(
        FolderHost::Folders{project.folder.path(), project.suite.path(), "template_6", outside});
    ScriptedPrompt prompt;
    ScriptAdding adding(host, prompt);
    EXPECT_TRUE(adding.AddScriptToProject(project.templatePath("a.kez")));
    EXPECT_EQ(project.folder.read("level.kez"), "// level\r\ninclude <a.kez>;\r\n\r\n");
    EXPECT_EQ(project.suite.read("level.kez"), "// level\r\n\r\n");

    // Now it exists: the user is asked, and may decline.
    prompt.answers = {PromptAnswer::Cancel};
    EXPECT_FALSE(adding.AddScriptToProject(project.templatePath("a.kez")));
    ASSERT_EQ(prompt.texts(), Names{project.folder.path("level.kez") + "\nFile exist! Overwrite?"});
    EXPECT_EQ(prompt.asked[0].buttons, PromptButtons::OkCancel);
    host.refuseCopies(true);
    prompt.answers = {PromptAnswer::Ok};
    EXPECT_FALSE(adding.AddScriptToProject(project.templatePath("a.kez")));
    host.refuseCopies(false);
    prompt.answers = {PromptAnswer::Ok};
    const test::FaultyOsFiles disk(test::FaultyOsFiles::every("replaceFile"));
    EXPECT_FALSE(adding.AddScriptToProject(project.templatePath("a.kez")));
    const std::string copy = project.folder.path("level.kez");
    EXPECT_EQ(adding.error(),
              "Can't copy '" + outside + "' to '" + copy + "': Can't write '" + copy + "': injected fault");
}

// It says yes and copies nothing.
TEST(ScriptAdding, AHostThatFeignsItsCopiesIsFoundOut) {
    Project project;
    project.addTemplate("a.kez", "x");
    project.addTemplate("camera_.kez", "x");
    project.host.feigned = {"CopyFileWithSubstitutions"};
    const std::string before = project.main();
    ScriptedPrompt prompt;
    ScriptAdding adding(project.host, prompt);
    EXPECT_FALSE(adding.AddScriptToProject(project.templatePath("camera_.kez")));
    EXPECT_EQ(adding.error(), "Can't copy '" + project.templatePath("camera_.kez") + "' to '" +
                                  project.folder.path("camera_0.kez") +
                                  "': There is no script after the copying.");
    EXPECT_TRUE(adding.copies().empty());
    EXPECT_EQ(project.main(), before);
    EXPECT_EQ(project.folder.names(), Names{"main.kez"});

    project.host.folders().mainScript = project.suite.write("main.kez", "// newer\r\n\r\n");
    prompt.answers = {PromptAnswer::Ok};
    EXPECT_FALSE(adding.AddScriptToProject(project.templatePath("a.kez")));
    EXPECT_EQ(adding.error(), "Can't copy '" + project.suite.path("main.kez") + "' to '" +
                                  project.folder.path("main.kez") +
                                  "': The script is as it was before the copying.");
    EXPECT_EQ(project.main(), before);
    EXPECT_EQ(project.suite.read("main.kez"), "// newer\r\n\r\n");
}

TEST(ScriptAdding, WithoutMainScriptTheEditorIsAskedToMakeOne) {
    Project project;
    project.addTemplate("a.kez", "x");
    std::filesystem::remove(project.folder.native("main.kez"));
    test::RecordingHost none(FolderHost::Folders{project.folder.path(), project.suite.path(), "template_6"});
    ScriptedPrompt prompt;
    ScriptAdding adding(none, prompt);
    EXPECT_FALSE(adding.AddScriptToProject(project.templatePath("a.kez")));
    EXPECT_EQ(none.calls, Names{"create"});
    none.mainScriptMade = project.folder.write("made.txt", "x");
    EXPECT_TRUE(adding.AddScriptToProject(project.templatePath("a.kez")));
    EXPECT_EQ(none.calls, (Names{"create", "create", "changed"}));
    EXPECT_EQ(project.folder.read("made.txt"), "include <a.kez>;\r\nx");
}

TEST(ScriptAdding, ATooLongPathIsRefusedAndTheResultNeverOverruns) {
    Fixture f;
    auto& [project, prompt, adding] = f;
    project.addTemplate("a_.kez", "x");
    std::string dest = "untouched";
    EXPECT_FALSE(adding.CopyTemplateScript(project.templatePath("a_.kez"), dest, 260, std::string(253, 'd')));
    EXPECT_FALSE(
        adding.CopyTemplateScript(project.templatePath("none.kez"), dest, 260, project.folder.path()));
    EXPECT_EQ(dest, "untouched");
    EXPECT_TRUE(adding.CopyTemplateScript(project.templatePath("a_.kez"), dest, 6, project.folder.path()));
    EXPECT_EQ(dest, project.folder.path().substr(0, 5)) << "the caller's buffer is never overrun";
    EXPECT_EQ(project.folder.read("a_0.kez"), "x");
}

TEST(ScriptAdding, EveryFailureOfTheDiskLeavesWholeFiles) {
    test::withEachFault([](int n) {
        Fixture f;
        auto& [project, prompt, adding] = f;
        project.addTemplate("camera_.kez", "// needs: base.kez\r\nvar x%_%;");
        project.addTemplate("base.kez", "x");
        const bool added = f.add("camera_.kez") && adding.changed();
        EXPECT_EQ(adding.error().empty(), added) << n;
        const std::string text = project.main();
        if (added) {
            EXPECT_NE(text.find("include <camera_0.kez>;\r\n"), std::string::npos) << n;
        } else {
            EXPECT_EQ(text, kRest) << n;
        }
        for (const std::string& name : project.folder.names()) {
            EXPECT_TRUE(name == "main.kez" || name == "camera_0.kez") << n << " " << name;
        }
    });
}

TEST(ScriptAdding, RemovingAnIncludeTellsTheEditor) {
    Project project(mainWith({"a.kez", "b.kez", "A.kez"}));
    EXPECT_TRUE(RemoveInclude(project.host, "A.KEZ"));
    EXPECT_EQ(project.main(), mainWith({"b.kez", "A.kez"}));
    EXPECT_FALSE(RemoveInclude(project.host, "none.kez"));
    EXPECT_EQ(project.host.calls, Names{"changed"});
    Project empty("");
    EXPECT_THROW(RemoveInclude(empty.host, "a.kez"), EmptyScriptError);
    test::withEachFault([](int n) {
        Project broken(mainWith({"a.kez", "b.kez"}));
        const bool removed = bool(RemoveInclude(broken.host, "a.kez"));
        EXPECT_EQ(broken.main(), mainWith(removed ? Names{"b.kez"} : Names{"a.kez", "b.kez"})) << n;
        EXPECT_EQ(broken.folder.names(), Names{"main.kez"}) << n;
    });
}
