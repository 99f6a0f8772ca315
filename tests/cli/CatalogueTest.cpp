// zoka catalogue, zoka help-pages and zoka scripts, as a build script would call them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/Tool.h"

using nlohmann::json;
using testing::AllOf, testing::HasSubstr, testing::StartsWith;

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

TEST(Catalogue, CirclesOfNeedsAreFound) {
    Suite suite;
    suite.addTemplate("noise", "needs: fog.kez\r\n");
    suite.run("catalogue build suite/templates");
    EXPECT_THAT(suite.run("catalogue check " + kCatalogue).out, HasSubstr("directly or not"));
    EXPECT_EQ(suite.run("scripts add" + kOptions + "fog.kez").status, 0);
    EXPECT_EQ(suite.read("game/main.kez"), suite.main({"noise.kez", "weather.kez", "fog.kez"}));
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
    for (const char* page : {"index.htm", "css.css", "template_C.htm", "Thefog.htm"}) {
        EXPECT_TRUE(std::filesystem::exists(suite.path("pages") / page)) << page;
    }
}

TEST(Scripts, AddRemoveAndWhy) {
    Suite suite;
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
              "noise.kez <- weather.kez\nnoise.kez <- camera_0.kez\nnoise.kez <- camera_1.kez\n"
              "noise.kez <- weather.kez <- fog.kez\n");

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
    EXPECT_EQ(json::parse(suite.run("scripts list" + kOptions + "--json").out)["scripts"].size(), 4U);
    EXPECT_THAT(suite.run("scripts notes" + kOptions).out,
                HasSubstr("fog.kez  (1) (-1) --> **(2) (260101)**\r\n"));

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
        EXPECT_THAT(again.err, HasSubstr("Original file still there."));
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
