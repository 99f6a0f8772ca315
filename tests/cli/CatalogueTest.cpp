// zoka catalogue, zoka help-pages and zoka scripts, as a build script would call them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/cli/Tool.h"
#include "tests/cli/Unreadable.h"

using nlohmann::json;
using testing::AllOf, testing::ContainsRegex, testing::HasSubstr, testing::Not, testing::StartsWith;

namespace {

const std::string kCatalogue = "suite/templates/template_6.xml ";
const std::string kOptions = " -p game -t suite/templates -m game/main.kez ";

// A project, and a template set of four scripts with its catalogue.
struct Suite : ToolFolder {
    Suite() {
        for (const char* folder : {"game", "suite", "suite/templates"}) {
            std::filesystem::create_directory(path(folder));
        }
        addTemplate("fog", "needs: weather.kez\r\n");
        addTemplate("weather", "needs: noise.kez\r\n");
        addTemplate("noise", "note: caf\xE9\r\n");
        addTemplate("camera_", "needs: noise.kez\r\n// image: x%_%.bmp\r\n");
        write("game/main.kez", main({}));
        EXPECT_EQ(run("catalogue build suite/templates").status, 0);
    }
    void addTemplate(const std::string& name, const std::string& more) {
        write("suite/templates/" + name + ".kez",
              "// title: The " + name +
                  "\r\n// idcode: X\r\n// prefix: x\r\n// type: USER\r\n// class: C\r\n// ver: 2\r\n"
                  "// date: 260101\r\n// enginereq: 6\r\n// desc: About " +
                  name + " \xE9.\r\n// " + more + "// ENDHEADER\r\n");
    }
    static std::string main(const std::vector<std::string>& names) {
        std::string text = "// main\r\n";
        for (const std::string& name : names) {
            text += "include <" + name + ">;\r\n";
        }
        return text + "\r\nfunction main() {}";
    }
};

}  // namespace

TEST(Catalogue, AScriptThatCannotBeReadDoesNotStopIt) {
    Suite suite;
    const std::string build = "catalogue build suite/templates";
    const std::string catalogue = "suite/templates/template_6.xml";
    std::filesystem::remove(suite.path("suite/templates/fog.kez"));
    const Unreadable fog(suite.path("suite/templates/fog.kez")), lamp(suite.path("suite/templates/lamp.kez"));
    suite.addTemplate("late", "ver: 1\r\n");
    const ToolRun run = suite.run(build);
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err,
                AllOf(ContainsRegex("Can't read 'suite/templates.fog.kez': .*; it stays as it was\n"),
                      ContainsRegex("Can't read 'suite/templates.lamp.kez': .*; it is left out\n")));
    EXPECT_THAT(suite.read(catalogue),
                AllOf(HasSubstr("\"fog.kez\""), HasSubstr("\"late.kez\""), Not(HasSubstr("lamp"))));

    std::filesystem::create_directory(suite.path("dark"));
    const Unreadable alone(suite.path("dark/lamp.kez"));
    const ToolRun none = suite.run("catalogue build dark");
    EXPECT_EQ(none.status, 3);
    EXPECT_THAT(none.err, HasSubstr("no script of dark can be read. Nothing was written."));
    EXPECT_FALSE(std::filesystem::exists(suite.path("dark/template_6.xml")));
}

TEST(Catalogue, BuildTellsWhatHeadersLack) {
    Suite suite;
    const std::string check = "catalogue check " + kCatalogue, build = "catalogue build suite/templates ";
    EXPECT_EQ(suite.run(check + "--templates suite/templates").out, "");
    suite.write("suite/templates/odd.kez",
                "// ver: 3\r\n// needs: none.kez, ..\\x.kez, odd.kez\r\n// action: open\r\n");
    const json dry = json::parse(suite.run(build + "--dry-run --json").out);
    EXPECT_EQ(dry["findings"][0]["script"], "odd.kez");
    const ToolRun built = suite.run(build);
    EXPECT_EQ(built.status, 1);
    EXPECT_THAT(built.out,
                AllOf(HasSubstr("odd.kez: ***No ID\n"), HasSubstr("odd.kez: **Action not complete: open\n")));
    suite.write("suite/templates/fog.kez", "// ver: 9\r\n");
    std::filesystem::remove(suite.path("suite/templates/noise.kez"));
    const ToolRun checked = suite.run(check + "--templates suite/templates");
    EXPECT_EQ(checked.status, 1);
    for (const char* finding : {"odd.kez: needs none.kez, which is not in the catalogue",
                                "which is not a file name that can be included", "odd.kez: needs itself",
                                "fog.kez: the file is of version 9, the catalogue says 2",
                                "noise.kez: the file is missing in the template folder"}) {
        EXPECT_THAT(checked.out, HasSubstr(finding));
    }
    EXPECT_GT(json::parse(suite.run(check + "--json").out)["findings"].size(), 5U);
}

TEST(Catalogue, ADamagedOneIsReportedWithItsPlace) {
    Suite suite;
    suite.write("bad.xml", "<TavrixTemplate>\n  <Script name=\"x>\n</TavrixTemplate>");
    for (const char* command :
         {"catalogue check bad.xml", "catalogue list bad.xml", "catalogue show bad.xml x",
          "help-pages bad.xml", "scripts list -p game -t suite/templates -c bad.xml"}) {
        const ToolRun run = suite.run(command);
        EXPECT_EQ(run.status, 1) << command;
        EXPECT_THAT(run.out, StartsWith("bad.xml:3:1: Error: Unexpected token found\n")) << command;
    }
    EXPECT_EQ(suite.run("catalogue check none.xml").status, 3);
    EXPECT_EQ(suite.run("catalogue build game/none").status, 3);
    EXPECT_EQ(suite.run("catalogue show " + kCatalogue + "none").status, 2);
}

// By its file name a script may lie in a folder below the template folder, nowhere else.
TEST(Catalogue, FileNamesStayInTheTemplateFolder) {
    Suite suite;
    std::filesystem::create_directory(suite.path("suite/templates/sub"));
    suite.write("suite/templates/sub/c.kez", "// ver: 1\r\n");
    suite.write("suite/outside.kez", "x");
    suite.write(
        "own.xml",
        "<TavrixTemplate><Script name='In' filename='sub\\c.kez'/><Script name='Dot' filename='.\\fog.kez'/>"
        "<Script name='Out' filename='..\\outside.kez'/></TavrixTemplate>");
    const std::string out = suite.run("catalogue check own.xml --templates suite/templates").out;
    const std::string finding = "its file name is none that stays in the template folder";
    EXPECT_THAT(out, HasSubstr("..\\outside.kez: " + finding + "\n"));
    EXPECT_EQ(out.find(finding), out.rfind(finding)) << out;
    EXPECT_EQ(out.find("missing in the template folder"), out.npos) << out;
    const ToolRun refused = suite.run("scripts add" + kOptions + "-c own.xml Out");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err,
                HasSubstr("zoka: \"..\\outside.kez\" is no file name that stays in the project"));
    EXPECT_EQ(suite.run("scripts add" + kOptions + "-c own.xml In Dot").status, 0);
    EXPECT_EQ(suite.read("game/main.kez"), suite.main({"c.kez", "noise.kez", "weather.kez", "fog.kez"}));
}

TEST(Catalogue, CirclesOfNeedsAreFound) {
    Suite suite;
    suite.addTemplate("noise", "needs: fog.kez\r\n");
    suite.run("catalogue build suite/templates");
    EXPECT_THAT(suite.run("catalogue check " + kCatalogue).out, HasSubstr("directly or not"));
    EXPECT_EQ(suite.run("scripts add" + kOptions + "fog.kez").status, 0);
    EXPECT_EQ(suite.read("game/main.kez"), suite.main({"noise.kez", "weather.kez", "fog.kez"}));

    suite.write("twice.xml",
                "<TavrixTemplate><Script filename='a.kez'><need>b.kez</need></Script>"
                "<Script filename='b.kez'><need>a.kez</need><need>A.kez</need></Script></TavrixTemplate>");
    const std::string twice = suite.run("catalogue check twice.xml").out;
    EXPECT_THAT(twice, HasSubstr("b.kez: its need a.kez needs this script, directly or not"));
    EXPECT_EQ(twice.find("directly or not"), twice.rfind("directly or not")) << twice;
}

TEST(Catalogue, ListAndShowAsJson) {
    Suite suite;
    const json all = json::parse(suite.run("catalogue list " + kCatalogue + "--json").out);
    ASSERT_EQ(all["scripts"].size(), 4U);
    EXPECT_EQ(all["scripts"][0]["filename"], "camera_.kez");
    EXPECT_EQ(all["scripts"][0]["description"], "About camera_ \xC3\xA9.");
    EXPECT_THAT(suite.run("catalogue list " + kCatalogue + "--search \"about FOG\"").out,
                StartsWith("fog.kez\t2\t260101\tC\tThe fog\n"));
    const json one = json::parse(suite.run("catalogue show " + kCatalogue + "fog.kez --json").out);
    EXPECT_EQ(one["needs"][0], "weather.kez");
}

TEST(Catalogue, HelpPagesAreWrittenIntoANewFolder) {
    Suite suite;
    const std::string command = "help-pages " + kCatalogue + "-o pages";
    EXPECT_THAT(suite.run(command + " --dry-run").out, HasSubstr("\n+<h2>The fog</h2>\n"));
    EXPECT_FALSE(std::filesystem::exists(suite.path("pages")));
    EXPECT_EQ(suite.run(command).status, 0);
    EXPECT_EQ(suite.run(command + " --dry-run").out, "");
    const std::string style = suite.read("pages/css.css");
    for (const std::string& found : {std::string("body { color: navy; }\n"), style + "p {}\n"}) {
        suite.write("pages/css.css", found);
        EXPECT_EQ(suite.run(command + " --dry-run").out, "");
        EXPECT_EQ(suite.run(command).status, 0);
        EXPECT_EQ(suite.read("pages/css.css"), found) << "the user's own";
    }
    suite.write("pages/css.css", style.substr(0, 100));
    EXPECT_EQ(suite.run(command).status, 0);
    EXPECT_EQ(suite.read("pages/css.css"), style);
    for (const char* page : {"index.htm", "css.css", "template_C.htm", "Thefog.htm"}) {
        EXPECT_TRUE(std::filesystem::exists(suite.path("pages") / page)) << page;
    }
}

TEST(Scripts, AddRemoveAndWhy) {
    Suite suite;
    const json asked = json::parse(suite.run("scripts add" + kOptions + "-n --json camera_.kez").out);
    // Below the folder as it was given, with the system's separators.
    EXPECT_EQ(asked["copies"][0]["destination"],
              "game" + std::string(1, std::filesystem::path::preferred_separator) + "camera_0.kez");
    const ToolRun dry = suite.run("scripts add" + kOptions + "--dry-run \"The fog\" camera_.kez");
    EXPECT_EQ(dry.status, 0);
    EXPECT_THAT(dry.out, StartsWith("adds fog.kez, camera_0.kez; needs noise.kez, weather.kez; "
                                    "copies camera_.kez as camera_0.kez\ncopy "));
    EXPECT_THAT(dry.out,
                HasSubstr("\n // main\n+include <noise.kez>;\n+include <weather.kez>;\n+include <fog.kez>;\n"
                          "+include <camera_0.kez>;\n"));
    EXPECT_EQ(suite.read("game/main.kez"), suite.main({}));

    EXPECT_EQ(suite.run("scripts add" + kOptions + "fog.kez camera_.kez").status, 0);
    EXPECT_EQ(suite.run("scripts add" + kOptions + "camera_.kez").status, 0);
    const std::vector<std::string> all = {"noise.kez", "weather.kez", "fog.kez", "camera_0.kez",
                                          "camera_1.kez"};
    EXPECT_EQ(suite.read("game/main.kez"), suite.main(all));
    EXPECT_THAT(suite.read("game/camera_1.kez"), HasSubstr("// image: x_1.bmp\r\n"));
    EXPECT_EQ(suite.run("scripts why" + kOptions + "noise.kez").out,
              "noise.kez\n  weather.kez\n    fog.kez\n  camera_0.kez\n  camera_1.kez\n");
    const json reasons = json::parse(suite.run("scripts why" + kOptions + "noise.kez --json").out);
    EXPECT_EQ(reasons["neededBy"], json::array({"weather.kez", "fog.kez", "camera_0.kez", "camera_1.kez"}));
    EXPECT_EQ(reasons["tree"][1], (json{{"filename", "fog.kez"}, {"needs", "weather.kez"}}));

    const ToolRun refused = suite.run("scripts remove" + kOptions + "weather.kez");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, HasSubstr("The following scripts must be removed first: \n\nThe fog"));
    EXPECT_EQ(suite.run("scripts remove" + kOptions + "--dry-run fog.kez").status, 0);
    EXPECT_EQ(suite.read("game/main.kez"), suite.main(all));
    // All or none; what needs each other goes together, in any order.
    EXPECT_EQ(suite.run("scripts remove" + kOptions + "fog.kez noise.kez").status, 1);
    EXPECT_EQ(suite.run("scripts remove" + kOptions + "fog.kez none.kez").status, 2);
    EXPECT_EQ(suite.read("game/main.kez"), suite.main(all));
    EXPECT_EQ(suite.run("scripts remove" + kOptions + "weather.kez fog.kez camera_0.kez fog.kez").status, 0);
    EXPECT_EQ(suite.read("game/main.kez"), suite.main({"noise.kez", "camera_1.kez"}));
    EXPECT_EQ(suite.run("scripts remove" + kOptions + "fog.kez").status, 2);
    EXPECT_EQ(suite.run("scripts add" + kOptions + "none.kez").status, 2);
    EXPECT_EQ(suite.run("scripts add -p game -t suite/templates -m game/none.kez fog.kez").status, 2);
}

TEST(Scripts, ListNotesUpdateAndRestore) {
    Suite suite;
    suite.write("game/main.kez", suite.main({"mine.kez", "noise.kez", "fog.kez", "camera_7.kez"}));
    suite.write("game/fog.kez", "// ver: 1\r\n");
    suite.write("game/mine.kez", "x");
    EXPECT_EQ(suite.run("scripts list" + kOptions).out,
              "mine.kez\tproject\t-1\t-1\t(USER)\n"
              "noise.kez\ttemplate\t2\t260101\tThe noise\tneeded by The camera_ (camera_7.kez)\n"
              "fog.kez\tproject\t1\t-1\tThe fog\n"
              "camera_7.kez\tmissing\t-1\t-1\tThe camera_ (camera_7.kez)\n");
    const json listed = json::parse(suite.run("scripts list" + kOptions + "--json").out)["scripts"];
    ASSERT_EQ(listed.size(), 4U);
    EXPECT_EQ(listed[0]["neededBy"], json::array());
    EXPECT_EQ(listed[1]["neededBy"], json::array({"camera_7.kez"}));
    EXPECT_THAT(
        suite.run("scripts notes" + kOptions).out,
        AllOf(HasSubstr("fog.kez  (1) (-1) --> **(2) (260101)**\r\n"), HasSubstr("\r\nMain Script: game")));

    const ToolRun dry = suite.run("scripts update" + kOptions + "--dry-run");
    EXPECT_EQ(dry.status, 1);
    EXPECT_THAT(dry.out,
                StartsWith("The fog--Is missing the following Needs: \nweather.kez\n"
                           "The fog--[Local ver: 1 date: -1 --> Template ver: 2 date: 260101]\n--- "));
    EXPECT_THAT(dry.out, HasSubstr("\n-// ver: 1\n"));
    EXPECT_THAT(dry.out, HasSubstr("\n+include <weather.kez>;\n"));
    EXPECT_EQ(json::parse(suite.run("scripts update" + kOptions + "--dry-run --json").out)["updates"].size(),
              2U);
    EXPECT_EQ(suite.run("scripts update" + kOptions + "--dry-run mine.kez").out, "");
    EXPECT_THAT(suite.read("game/fog.kez"), HasSubstr("// ver: 1\r\n"));

    const ToolRun done = suite.run("--yes scripts update" + kOptions + "--json");
    EXPECT_EQ(done.status, 0);
    EXPECT_EQ(json::parse(done.out)["updates"].size(), 2U);
    EXPECT_THAT(suite.read("game/fog.kez"), HasSubstr("// ver: 2\r\n"));
    EXPECT_THAT(suite.read("game/main.kez"), HasSubstr("include <weather.kez>;\r\n"));
    EXPECT_EQ(suite.run("scripts update" + kOptions + "--dry-run").status, 0);

    EXPECT_EQ(suite.run("scripts restore" + kOptions + "noise.kez").status, 0);
    EXPECT_TRUE(std::filesystem::exists(suite.path("game/noise.kez")));
    for (const char* how : {"--dry-run ", ""}) {
        EXPECT_FALSE(std::filesystem::exists(suite.path("game/weather.kez"))) << how;
        const ToolRun again = suite.run("scripts restore" + kOptions + how + "noise.kez weather.kez");
        EXPECT_EQ(again.status, 1);
        EXPECT_EQ(again.err, "zoka: noise.kez: Original file still there.\n");
        EXPECT_EQ(again.out.empty(), *how == 0);
    }
    EXPECT_TRUE(std::filesystem::exists(suite.path("game/weather.kez"))) << "goes on after one that fails";
    // What the dry run doesn't list is left alone.
    const std::string edited = suite.read("game/noise.kez") + "// mine\r\n";
    suite.write("game/noise.kez", edited);
    EXPECT_THAT(suite.run("--yes scripts update" + kOptions).err, HasSubstr("Everything Up-to-Date."));
    EXPECT_EQ(suite.read("game/noise.kez"), edited);
    suite.write("game/noise.kez", "// ver: 1\r\n");
    suite.write("game/weather.kez", "// ver: 1\r\n");
    EXPECT_EQ(suite.run("scripts update" + kOptions + "\"The noise\" FOG.kez weather.kez").out,
              "fog.kez: nothing to update\nUpdated: noise.kez, weather.kez\n");
    EXPECT_EQ(suite.run("scripts update" + kOptions + "--dry-run").status, 0);
}

TEST(Scripts, ValuesWithoutAPlaceAreNamedWithExitCode1) {
    Suite suite;
    const std::string own =
        "// ver: 1\r\n\r\n// section: Depth\r\n// entry: Depth\r\n// id: 1\r\nvar depth = 77;\r\n";
    suite.write("game/main.kez", suite.main({"noise.kez", "weather.kez", "fog.kez"}));
    suite.write("game/fog.kez", own);
    const ToolRun run = suite.run("--yes scripts update" + kOptions);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err,
                AllOf(HasSubstr("no place for these values"), HasSubstr("fog.kez\n"), HasSubstr("77")));
    EXPECT_THAT(suite.read("game/fog.kez"), HasSubstr("// ver: 2\r\n"));
    EXPECT_EQ(suite.run("--yes scripts update" + kOptions).status, 0) << "told once";
}

TEST(Scripts, ExitCodesSayWhatWentWrong) {
    Suite suite;
    suite.write("game/main.kez", suite.main({"noise.kez", "fog.kez"}));
    suite.write("game/noise.kez", "// ver: 1\r\n");
    suite.write("outside.kez", "x");
    struct Row {
        const char* command;
        int status;
        const char* says;
    };
    for (const Row& row :
         {Row{"scripts list -p nosuch -t suite/templates", 2, "zoka: there is no folder nosuch"},
          Row{"scripts list -p game -t nosuch", 2, "zoka: there is no folder nosuch"},
          Row{"scripts list -p game -t suite/templates -m game/none.kez", 2,
              "zoka: there is no main script game/none.kez"},
          Row{"scripts list -p game -t suite/templates -m outside.kez", 2,
              "is not in the project folder game"},
          Row{"scripts update -p game -t suite/templates -m game/main.kez", 1,
              "declined; nothing was updated"},
          Row{"scripts lst -p game", 2, "zoka: unknown command lst; did you mean list?"},
          Row{"scirpts list", 2, "zoka: unknown command scirpts; did you mean scripts?"},
          Row{"quite-another", 2, "zoka: unknown command quite-another\n"}}) {
        const ToolRun run = suite.run(row.command);
        EXPECT_EQ(run.status, row.status) << row.command;
        EXPECT_THAT(run.err, HasSubstr(row.says)) << row.command;
    }
    EXPECT_EQ(suite.read("game/noise.kez"), "// ver: 1\r\n");
    std::filesystem::remove(suite.path("suite/templates/noise.kez"));
    for (const char* command : {"scripts update -n", "--yes scripts update"}) {
        const ToolRun gone = suite.run(command + kOptions);
        EXPECT_EQ(gone.status, 3) << command;
        EXPECT_THAT(gone.err, HasSubstr("noise.kez: the template folder has no such script")) << command;
    }
    EXPECT_EQ(suite.read("game/noise.kez"), "// ver: 1\r\n");
    std::filesystem::remove(suite.path("game/main.kez"));
    const Unreadable main(suite.path("game/main.kez"));
    for (const char* command : {"list", "add fog.kez", "remove fog.kez", "update", "notes", "why fog.kez"}) {
        const ToolRun run = suite.run(std::string("scripts ") + command + kOptions);
        EXPECT_EQ(run.status, 3) << command;
        EXPECT_THAT(run.err, StartsWith("zoka: Can't read 'game/main.kez': ")) << command;
    }
}

TEST(Scripts, ADryRunShowsWhatTheRunDoes) {
    Suite suite;
    const std::string entry = "\r\n// entry: Depth\r\n// id: 1\r\nvar depth = ";
    suite.write("game/main.kez", suite.main({"noise.kez"}));
    suite.write("game/noise.kez", "// ver: 1\r\n" + entry + "77;\r\nfunction mine() {}\r\n");
    suite.write("suite/templates/noise.kez", "// ver: 2\r\n" + entry + "5;\r\n");
    const ToolRun dry = suite.run("scripts update" + kOptions + "-n");
    EXPECT_EQ(dry.status, 1);
    EXPECT_THAT(dry.out, AllOf(HasSubstr("\n-function mine() {}\n"), HasSubstr("\n var depth = 77;\n")))
        << "the value is kept";
    EXPECT_THAT(dry.out, HasSubstr("--- game")) << "the path as it was given";
    EXPECT_THAT(dry.err, HasSubstr("noise.kez: lines that the template lacks: 1;"));
    EXPECT_EQ(suite.run("--yes scripts update" + kOptions).status, 0);
    EXPECT_EQ(suite.read("game/noise.kez"), "// ver: 2\r\n" + entry + "77;\r\n");
    EXPECT_THAT(suite.read("game/noise.kez.1.bak"), HasSubstr("function mine() {}"));
}

TEST(Scripts, WhyStaysShortOnALongChain) {
    Suite suite;
    std::vector<std::string> names;
    for (int i = 0; i < 300; ++i) {
        const std::string name = "s" + std::to_string(i);
        suite.addTemplate(name, i == 0 ? "" : "needs: s" + std::to_string(i - 1) + ".kez\r\n");
        names.push_back(name + ".kez");
    }
    suite.write("game/main.kez", suite.main(names));
    suite.run("catalogue build suite/templates");
    const std::string out = suite.run("scripts why" + kOptions + "s0.kez").out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 300);
    EXPECT_LT(out.size(), 300U * 90);
    EXPECT_THAT(out, HasSubstr("s299.kez (level 299, needs s298.kez)\n"));
}

TEST(Catalogue, BuildingAnewKeepsWhatItIsNotTold) {
    Suite suite;
    const std::string build = "catalogue build suite/templates ";
    EXPECT_EQ(suite.run(build + "--name Harbour --vers 6.2 --enginereq \"6.1 GOLD\"").status, 0);
    EXPECT_EQ(suite.run(build + "--enginereq \"6.1 PRO\"").status, 0);
    EXPECT_EQ(suite.run(build).status, 0);
    EXPECT_THAT(suite.read("suite/templates/template_6.xml"), HasSubstr("vers =\"6.1\" edition =\"PRO\""));
    EXPECT_EQ(suite.run(build + "--enginereq \"6.1 GOLD\"").status, 0);
    std::string text = suite.read("suite/templates/template_6.xml");
    text.insert(text.find("<Directory"), "<Directory type=\"art\" path=\".\\art\"/>\n");
    suite.write("suite/templates/template_6.xml", text);
    suite.addTemplate("rain", "note: \x01 odd\r\n");
    suite.addTemplate("snow", "note: a\xEF\xBF\xBE\r\n");
    const ToolRun run = suite.run(build + "--vers 6.3");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("rain.kez: its note holds the control character 1"));
    EXPECT_THAT(run.out, HasSubstr("snow.kez: its note holds a character that no text has"));
    const std::string built = suite.read("suite/templates/template_6.xml");
    for (const char* part :
         {"name=\"Harbour\"", "version=\"6.3\"", "vers =\"6.1 GOLD\"", "type=\"art\"", "rain.kez"}) {
        EXPECT_THAT(built, HasSubstr(part));
    }
    EXPECT_EQ(suite.run("catalogue check " + kCatalogue).status, 0) << "what is written can be read";
    // A name that the replaced markup would change is one that no file has.
    text = suite.read("suite/templates/template_6.xml");
    text.replace(text.find(".\\art"), 5, ".\\art &amp; co");
    suite.write("suite/templates/template_6.xml", text);
    suite.addTemplate("hill&dale", "needs: sun&moon.kez\r\n");
    const std::string out = suite.run(build).out;
    for (const char* name : {"the folder \".\\art & co\"", "hill&dale.kez: its file name \"hill&dale.kez\"",
                             "hill&dale.kez: its need \"sun&moon.kez\""}) {
        EXPECT_THAT(out, HasSubstr(name + std::string(" stands in the catalogue as")));
    }
    for (const char* file : {"-", "suite/templates"}) {
        EXPECT_EQ(suite.run(std::string("catalogue list ") + file).status, 2) << file;
    }
}

TEST(Catalogue, PagesOfScriptsThatAreGoneArePruned) {
    Suite suite;
    const std::string command = "help-pages " + kCatalogue + "-o pages";
    EXPECT_EQ(suite.run(command).status, 0);
    suite.write("pages/own.htm", "<html>mine</html>");
    std::filesystem::remove(suite.path("suite/templates/fog.kez"));
    suite.run("catalogue build suite/templates");
    EXPECT_THAT(suite.run(command).err,
                HasSubstr("1 page is of a script that is gone; --prune deletes them"));
    EXPECT_THAT(suite.run(command + " -n --prune").out, HasSubstr("delete Thefog.htm\n"));
    EXPECT_TRUE(std::filesystem::exists(suite.path("pages/Thefog.htm")));
    EXPECT_EQ(suite.run(command + " --prune").err, "");
    EXPECT_FALSE(std::filesystem::exists(suite.path("pages/Thefog.htm")));
    EXPECT_TRUE(std::filesystem::exists(suite.path("pages/own.htm")));
}
