#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/cli/Tool.h"

using nlohmann::json;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

struct WizardTool : testing::Test {
    WizardTool() {
        for (const char* name : {"suite/templates/wizards", "suite/templates/xml", "suite/templates/a"}) {
            fs::create_directories(folder.path(name));
        }
        folder.write("suite/templates/a/one.txt", "1");
        folder.write("suite/templates/a/main.zlm", "level 1\n");
        write(
            "<Folder name='.'><File name='one.txt' folder='a'/></Folder><Level><File name='main' "
            "folder='a'/></Level>");
    }
    void write(const std::string& content) {
        folder.write(
            "suite/templates/wizards/w.xml",
            "<Wizard>\n<Title>Wiz</Title><Desc>D</Desc><Defaults><Name>N</Name><LevelMap>m</LevelMap>"
            "</Defaults>\n" +
                content + "</Wizard>");
    }
    ToolFolder folder;
};

TEST_F(WizardTool, ListsAndShows) {
    EXPECT_THAT(folder.run("wizard list suite").out, testing::StartsWith("Wiz\t"));
    EXPECT_EQ(json::parse(folder.run("wizard list suite --json").out)[0]["title"], "Wiz");
    EXPECT_THAT(folder.run("wizard show w suite").out,
                HasSubstr("  one.txt  (from templates\\a\\one.txt, 1 byte)"));
    EXPECT_EQ(folder.run("wizard show none suite").status, 2);
    EXPECT_EQ(folder.run("wizard list nowhere").status, 3);
    EXPECT_EQ(folder.run("wizard list suite/templates").status, 1);
}

TEST_F(WizardTool, ChecksWithPlaces) {
    EXPECT_EQ(folder.run("wizard check suite"), (ToolRun{0, "", ""}));
    write("<Folder name='..'>\n  <File name='none' folder='a'/></Folder>");
    folder.write("suite/templates/wizards/broken.xml", "<Wizard>\n<Folder></Wizard>");
    const ToolRun run = folder.run("wizard check suite");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("w.xml:3:1: The folder name \"..\" leads out of its folder."));
    EXPECT_THAT(run.out, HasSubstr("w.xml:4:3: Missing file: .\\templates\\a\\none"));
    EXPECT_THAT(run.out, HasSubstr("broken.xml:2:"));
    EXPECT_EQ(json::parse(folder.run("wizard check suite --json").out)[2]["line"], 3);
    // One form for a file without anything in it, whichever command reads it.
    folder.write("suite/templates/wizards/broken.xml", "");
    EXPECT_THAT(folder.run("wizard check suite").out, HasSubstr("broken.xml:1:1: Error: No XML data\n"));
    // The editor is to open the map; a folder's file can be one.
    const std::string noMap = "w.xml:1:1: There is no Level: no map is copied that the editor could open.\n";
    EXPECT_THAT(run.out, HasSubstr(noMap));
    folder.write("suite/templates/a/m.zlm", "level 1\n");
    write("<Folder name='.'><File name='m.zlm' folder='a'/></Folder>");
    EXPECT_THAT(folder.run("wizard check suite").out, testing::Not(HasSubstr(noMap)));
}

TEST_F(WizardTool, ChecksWhatIsListed) {
    folder.write("suite/templates/wizards/other.xml", "<Project/>");
    EXPECT_EQ(folder.run("wizard check suite").status, 0);
    folder.write("suite/templates/wizards/twin.txt", "<Wizard><Title>Wiz</Title></Wizard>");
    const ToolRun run = folder.run("wizard check suite");
    EXPECT_THAT(run.out, HasSubstr("twin.txt:1:1: There is no Desc"));
    EXPECT_EQ(folder.run("wizard show Wiz suite").status, 2) << "two are called that";
    EXPECT_EQ(folder.run("wizard show twin.txt suite").status, 0);
    EXPECT_THAT(run.out, HasSubstr("The same title as that of "));
    fs::remove(folder.path("suite/templates/wizards/twin.txt"));
    fs::create_directories(folder.path("suite/templates/a/sub"));
    write(
        "<Folder name='.'><File name='one.txt' folder='a'/><File name='sub' folder='a'/></Folder>"
        "<Folder name='one.txt'/>");
    EXPECT_THAT(folder.run("wizard check suite").out,
                testing::AllOf(HasSubstr("sub is no file"), HasSubstr("The folder can't be made")));
}

TEST_F(WizardTool, MakesProjects) {
    const ToolRun dry = folder.run("project new Wiz --suite suite --folder g/new --dry-run");
    EXPECT_EQ(dry.status, 0) << dry;
    EXPECT_THAT(dry.out, HasSubstr("one.txt"));
    EXPECT_FALSE(fs::exists(folder.path("g")));
    const ToolRun made = folder.run("project new Wiz --suite suite --folder g/new --name Mine");
    EXPECT_EQ(made.status, 0) << made;
    EXPECT_THAT(made.out, HasSubstr("made 2 folders and 3 files"));
    EXPECT_EQ(folder.read("g/new/one.txt"), "1");
    EXPECT_THAT(folder.read("g/new/m.xml"), HasSubstr("name=\"Mine\""));
    fs::remove(folder.path("suite/wizardDebug.xml"));
    const ToolRun again = folder.run("project new Wiz --suite suite --folder g/new");
    EXPECT_THAT(folder.read("suite/wizardDebug.xml"), HasSubstr("<ErrOverwrite"));
    EXPECT_EQ(folder.run("project new Wiz --suite suite --folder g/new -n").err, again.err);
    EXPECT_EQ(again.status, 1);
    EXPECT_THAT(again.err, HasSubstr("already"));
    write("<Folder name='.'><File name='none.txt' folder='a'/></Folder>");
    fs::remove(folder.path("suite/debugLogOut.xml"));
    EXPECT_EQ(folder.run("project new Wiz --suite suite --folder g/other -n").status, 1);
    EXPECT_FALSE(fs::exists(folder.path("suite/debugLogOut.xml"))) << "a dry run makes nothing";
    EXPECT_EQ(folder.run("project new Wiz --suite suite --folder g/other --name \"\"").status, 2);
    write("<Folder name='../up'/>");
    EXPECT_EQ(folder.run("project new Wiz --suite suite --folder g/other").status, 1);
    EXPECT_FALSE(fs::exists(folder.path("g/other")));
    // A colon names a drive or a stream, whatever the system at hand takes.
    write("");
    for (const auto& [given, status, why] :
         {std::tuple("a:b", 2, "\"a:b\" is relative to a drive"),
          {"C:", 2, "relative to a drive"},
          {"g/a:b", 1, "a:b\" holds a colon, which means a stream of a file.\nNothing was made."},
          {"g/ab:c/d", 1, "d\" holds a colon, which means a stream of a file.\nNothing was made."}}) {
        const ToolRun run = folder.run(std::string("project new Wiz --suite suite --folder ") + given);
        EXPECT_EQ(run.status, status) << given;
        EXPECT_THAT(run.err, HasSubstr(why));
    }
    for (const char* name : {"b", "a:b", "g/a:b", "g/ab:c"}) {
        EXPECT_FALSE(fs::exists(folder.path(name))) << name;
    }
    // What could not be copied is named, but for files that may be missing.
    write("<Folder name='.'><File name='one.txt' folder='a'/></Folder><Level><File name='a/none'/></Level>");
    const ToolRun partly = folder.run("project new Wiz --suite suite --folder g/partly");
    EXPECT_EQ(partly.status, 3);
    EXPECT_THAT(partly.err, HasSubstr("Can't copy 'templates\\a\\none.zlm' to '"));
    EXPECT_EQ(partly.err.find(".zlb"), std::string::npos);
    // A project file that isn't there is made empty, and counts as made.
    write("<J8ProjectFiles><File name='pro' folder='a'/></J8ProjectFiles>");
    EXPECT_THAT(
        folder.run("project new Wiz --suite suite --folder g/empty -n").out,
        testing::AllOf(HasSubstr("pro.xml; an empty project is made\n"), HasSubstr("1 folder and 1 file, ")));
    EXPECT_THAT(folder.run("project new Wiz --suite suite --folder g/empty").out,
                HasSubstr("made 1 folder and 1 file in "));
    // What a failed run made goes on request.
    write("<Folder name='.'><File name='one.txt' folder='a'/></Folder><Folder name='one.txt'/>");
    const ToolRun failed = folder.run("--yes project new Wiz --suite suite --folder g/other");
    EXPECT_EQ(failed.status, 3);
    EXPECT_THAT(failed.err, HasSubstr("Could not create a directory"));
    EXPECT_FALSE(fs::exists(folder.path("g/other")));
}

TEST_F(WizardTool, SaysInJsonWhyNothingWasMade) {
    const auto made = [&](const std::string& arguments) {
        return folder.run("project new Wiz --json --suite suite --folder " + arguments);
    };
    ASSERT_EQ(made("g").status, 0);
    for (const char* dry : {"", " -n"}) {
        ToolRun run = made(std::string("g") + dry);
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(std::string(json::parse(run.out)["refused"]),
                    HasSubstr("Could not overwrite a file/folder"));
        run = made(std::string("new --map a:b") + dry);
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(std::string(json::parse(run.out)["refused"]), HasSubstr("The level map's name \"a:b\""));
    }
    write("<Folder name='.'><File name='one.txt' folder='a'/></Folder><Folder name='one.txt'/>");
    EXPECT_THAT(std::string(json::parse(made("new -n").out)["problem"]),
                HasSubstr("The folder can't be made"));
    const ToolRun failed = made("new");
    EXPECT_EQ(failed.status, 3);
    EXPECT_THAT(std::string(json::parse(failed.out)["failed"]), HasSubstr("Could not create a directory"));
}

TEST_F(WizardTool, TellsOfALevelThatNothingTakes) {
    const std::string lost = "has no level, so --level and --level-docs count for nothing";
    write("<J8ProjectFiles><File name='pro' folder='a'/></J8ProjectFiles>");
    for (const auto& [project, arguments, isTold] :
         {std::tuple("<Project/>", "--level L", true),
          {"<Project/>", "--level-docs D", true},
          {"<Project/>", "", false},
          {"<Project><Level name='x'/></Project>", "--level L", false}}) {
        folder.write("suite/templates/a/pro.xml", project);
        for (const char* dry : {" -n", ""}) {
            const ToolRun run =
                folder.run(std::string("project new Wiz --suite suite --folder g ") + arguments + dry);
            EXPECT_EQ(run.status, 0) << run;
            EXPECT_EQ(run.err.find(lost) != std::string::npos, isTold) << project << arguments << dry;
        }
        fs::remove_all(folder.path("g"));
    }
}

}  // namespace
