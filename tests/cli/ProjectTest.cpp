#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/cli/Tool.h"

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr char kProject[] =
    "<Project name=\"Game\" date=\"1\" vers=\"8.0303\">\n\t<Paths proj_file=\"\" j8_file=\"\"/>\n"
    "\t<Behavior file=\"b.xml\"/>\n\t<Level name=\"harbour\" mapfile=\"h.zlb\">\n\t\t<Doc>d</Doc>\n"
    "\t\t<Entity name=\"guard\" parent=\"g\">\n\t\t\t<Skill num=\"1\" value=\"5\"/>\n\t\t</Entity>\n"
    "\t\t<Entity name=\"lost\" parent=\"none\"/>\n\t</Level>\n</Project>\n";

struct Project : testing::Test {
    Project() {
        folder.write("game.xml", kProject);
        folder.write("h.zlb", "");
        folder.write(
            "b.xml",
            "<Behaviors><Behavior name='g' class='c' group='g'><Doc>d</Doc><Skill num='1' name='Health' "
            "type='int' value='9'><Constraint type='max' value='10'/></Skill><Skill num='2' name='Speed' "
            "type='float' value='2.5'/></Behavior></Behaviors>");
    }
    ToolFolder folder;
};

}  // namespace

TEST_F(Project, ChecksAndShows) {
    ToolRun run = folder.run("project check .");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(
        run.out,
        HasSubstr("game.xml:9:3: error: parent \"none\" of entity \"lost\" is in no behaviors file\n"));
    const json found = json::parse(folder.run("project check game.xml --json").out);
    EXPECT_EQ(found.back()["line"], 9);
    EXPECT_EQ(folder.run("project check none.xml").status, 3);
    folder.write("bad.xml", "<Project>\n<Level>");
    run = folder.run("project check bad.xml");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("bad.xml:2:8: error: "));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(json::parse(folder.run("project check bad.xml --json").out).back()["line"], 2);
    EXPECT_THAT(folder.run("project report game.xml").out, HasSubstr("Behavior File: b.xml (local)\n"));
    EXPECT_THAT(folder.run("project show game.xml").out, HasSubstr("  harbour  mapfile h.zlb  entities 2\n"));
    EXPECT_EQ(json::parse(folder.run("project show game.xml --json").out)["behaviors"][0]["skills"], 2);
}

// What loading drops without a word in its report, and which files are missing, also after an edit.
TEST_F(Project, CheckTellsWhatDoesNotCount) {
    std::filesystem::create_directory(folder.path("p"));
    folder.write("p/own.xml",
                 "<Behaviors>\n<Behavior name='g' class='c' group='x'><Doc>d</Doc>\n<Skill name='S' "
                 "value='1'/><Skill num='3'/><Skill/>\n<Skill name='T' num='25' type='odd'/>\n<Component "
                 "name='k'><Edit name='e' value='1'/>\n<Edit name='f' value='2'/><Edit value='3'/>"
                 "</Component></Behavior>\n</Behaviors>");
    folder.write(
        "game.xml",
        "<Project name='n' date='1' vers='8'><Paths proj_file='p\\' j8_file=''/>\n<Behavior "
        "proj_file='own.xml'/>"
        "\n<Behavior proj_file='OWN.XML'/>\n<Behavior proj_file='gone.xml'/>\n<Camera proj_file='nocam.xml'/>"
        "\n<Display/>\n<Level name='l' mapfile='b.xml'><Doc>d</Doc>\n<Entity name='e' parent='g'><Component "
        "name='k'>\n<Edit name='e' value='1'/>\n<Edit name='e' value='2'/></Component></Entity></Level>\n"
        "</Project>");
    const std::string found = folder.run("project check game.xml").out;
    for (const char* line :
         {"own.xml:3:1: warning: skill \"S\" of behavior \"g\" has no whole number, and is passed over\n",
          "own.xml:3:28: warning: skill 3 of behavior \"g\" has no name, and is passed over\n",
          ": a skill of behavior \"g\" has no name and no whole number, and is passed over\n",
          "own.xml:4:1: warning: skill 25 (T) of behavior \"g\": entities have the skills 1 to 20\n",
          "own.xml:4:1: warning: skill 25 (T) of behavior \"g\" has a type that is none\n",
          "own.xml:6:1: warning: component \"k\" of behavior \"g\" has more than one Edit; only the first "
          "one counts, and \"f\" is passed over\n",
          "only the first one counts, and one without a name is passed over\n",
          "game.xml:3:1: warning: behaviors file \"OWN.XML\" is named twice\n",
          "game.xml:4:1: error: Behavior: there is no file \"gone.xml\", nor one below the project path or",
          "game.xml:5:1: warning: Camera: there is no file \"nocam.xml\", nor one below",
          "game.xml:6:1: error: This element names no file",
          "game.xml:10:1: warning: \"e\" of component \"k\" of entity \"e\" is there twice; the first one "
          "counts\n"}) {
        EXPECT_THAT(found, HasSubstr(line));
    }
    EXPECT_THAT(found, Not(HasSubstr("no entity of the project uses")));
    EXPECT_THAT(found, Not(HasSubstr("Invalid Path")));
    EXPECT_THAT(found, Not(HasSubstr("MISSING")));
    const ToolRun run = folder.run("project set -n game.xml paths/project=three section/UI=proj:noui.xml");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err,
                HasSubstr("warning: behaviors file \"own.xml\" is not below the paths as they are now\n"));
    EXPECT_THAT(run.err, HasSubstr("warning: UI: there is no file \"noui.xml\""));
    EXPECT_THAT(run.err, Not(HasSubstr("nocam"))) << "that one was missing before";
}

TEST_F(Project, ListsAndGetsValues) {
    EXPECT_EQ(folder.run("project list game.xml level/harbour/entity/guard").out,
              "level/harbour/entity/guard/name = guard\nlevel/harbour/entity/guard/parent = g\n"
              "level/harbour/entity/guard/skill/1 = 5\n");
    EXPECT_EQ(folder.run("project get game.xml name level/harbour/entity/guard/skill/2"),
              (ToolRun{0, "Game\n2.5\n"}))
        << "the parent's value holds";
    EXPECT_EQ(folder.run("project get game.xml level/none/name").status, 2);
    EXPECT_EQ(json::parse(
                  folder.run("project get game.xml level/harbour/entity/guard/skill/1 --json").out)[0]["own"],
              true);
}

// An address, or a file, may be called as a command is.
TEST_F(Project, TakesAFurtherCommandsNameAsAnArgument) {
    EXPECT_THAT(folder.run("project list game.xml level").out, StartsWith("level/"));
    EXPECT_EQ(folder.run("project check game.xml format").status, 3) << "there is no such file";
    EXPECT_EQ(folder.read("game.xml"), kProject);
}

TEST_F(Project, SetsValuesAllOrNone) {
    const std::string guard = "level/harbour/entity/guard/skill/";
    ToolRun run = folder.run("project set game.xml name=New " + guard + "1=11");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("outside its limits (max 10)"));
    EXPECT_EQ(folder.read("game.xml"), kProject);
    EXPECT_EQ(folder.run("project set game.xml name").status, 2);
    run = folder.run("project set game.xml " + guard + "2=3 --dry-run");
    EXPECT_THAT(run.out, HasSubstr("+\t\t\t<Skill num=\"2\" value=\"3\"/>\n"));
    EXPECT_THAT(run.out, HasSubstr("--- game.xml\n+++ game.xml\n")) << "as it was given, for patch";
    EXPECT_THAT(run.out, HasSubstr("+\xef\xbb\xbf<")) << "the mark is a change, too";
    EXPECT_EQ(folder.read("game.xml"), kProject);
    EXPECT_EQ(folder.run("project set game.xml " + guard + "2=3 -u " + guard + "1"), (ToolRun{0}));
    EXPECT_THAT(folder.read("game.xml"), HasSubstr("<Skill num=\"2\" value=\"3\"/>"));
    EXPECT_THAT(folder.read("game.xml"), Not(HasSubstr("num=\"1\"")));
    EXPECT_EQ(folder.fileCount(), 3u) << "no logs are left behind";
}

TEST_F(Project, SaysWhatIsWrongInWhatItIsGiven) {
    folder.write("bad.xml", "<Project name='p'>\n<Level>");
    folder.write("other.xml", "<Projects><x>");
    folder.write("void.xml", "");
    folder.write("names.xml",
                 "<Project name='n' date='1'><Paths proj_file='' j8_file=''/>"
                 "<Level name='l&#10;m' mapfile='x'/><Level name='a=b' mapfile='h.zlb'/></Project>");
    folder.write("two.xml",
                 "<Project name='n' date='1' vers='8'><Level name='a'/><Level name='b'/></Project>");
    folder.write(
        "twice.xml",
        "<Project name='n' date='1' vers='8'><Level name='l'>\n"
        "<Entity name='e'><Skill num='1' value='5'/><Skill num='1' value='6'/><Component name='c'>"
        "<Edit name='p' value='7'/><Edit name='p' value='8'/></Component></Entity></Level></Project>");
    const std::string set = "project set --dry-run game.xml level/harbour/entity/guard/";
    const struct {
        std::string arguments;
        int status;
        const char *out, *err;
    } rows[] = {
        {"project check .", 1, "\nnames.xml:1:1: warning: (LoadFromXML): No Vers.\n", ""},
        {"project check .", 1, "bad.xml:2:", ""},
        {"project check none.xml", 3, "", "zoka: Can't read 'none.xml'"},
        {"project report none.xml", 3, "(LoadFromXML): XML MISSING!\n", "zoka: Can't read 'none.xml'"},
        {"project list game.xml level/nope", 2, "", "there is nothing at \"level/nope\""},
        {"project list game.xml level/har", 2, "", "there is nothing at"},
        {"project list names.xml", 0, "level/l%0Am/name = l\\nm\n", ""},
        {"project list names.xml level/l%0Am", 0, "level/l%0Am/mapfile = x\n", ""},
        {"project get names.xml level/l%0am/name", 0, "l\nm\n", ""},
        {"project set -n names.xml level/l%0Am/doc=d", 0, "+\t\t<Doc>d</Doc>\n", ""},
        {"project check void.xml", 1, "void.xml:1:1: error: Error: No XML data\n", ""},
        {"project list void.xml", 3, "", "zoka: void.xml:1:1: Error: No XML data\n"},
        {"project check b.xml", 1,
         "b.xml:1:1: error: Error: First Tag not found. First Tag should be 'Project'.\n", ""},
        {"project set -n game.xml level/harbour/mapfile=no.zlb", 0, "mapfile=\"no.zlb\"",
         "warning: map file \"no.zlb\" of level \"harbour\" is missing\n"},
        {"project set -n game.xml \"level/harbour/entity/guard/skill/2= 3\"", 1, "", "No blank may stand"},
        {"project check names.xml", 1, "level \"l\\nm\" is missing\n", ""},
        {"project set --dry-run names.xml level/a%3Db/doc=x=y", 0, "+\t\t<Doc>x=y</Doc>\n", ""},
        {"project set --dry-run game.xml -u level/harbour/name", 1, "",
         "A name is needed, by which it is told from the others."},
        {set + "skill/2=1 -u " + "level/harbour/entity/guard/skill/77", 0, "+\t\t\t<Skill num=\"2\"",
         "skill/77 has no value of its own"},
        {"project set game.xml", 2, "", "there is nothing to change"},
        {set + "skill/3=1", 1, "", "its parent \"g\" has no such skill; --undeclared"},
        {set + "parent=nobody", 1, "", "\"nobody\" is in no behaviors file"},
        {set + "component/body/mass=1", 1, "", "component \"body\" is in no components file"},
        {"project set -n two.xml level/a/name=b level/b/name=a", 0,
         "+\t<Level name=\"b\"/>\n+\t<Level name=\"a\"/>\n", ""},
        {"project set -n two.xml level/a/name=b", 0, "+\t<Level name=\"b\"/>\n",
         "warning: level/a/name: There is a level of that name already."},
        {"project set -n game.xml section/UI=proj:", 1, "", "name is missing"},
        {"project list twice.xml level", 0,
         "level/l/entity/e/skill/1 = 5\nlevel/l/entity/e/component/c/p = 7\n", ""},
        {"project set -n twice.xml -u level/l/entity/e/skill/1 -u level/l/entity/e/component/c/p", 0,
         "+\t\t<Entity name=\"e\">\n+\t\t\t<Component name=\"c\"/>\n", ""},
        {set + "skill/3=1 --undeclared", 0, "+\t\t\t<Skill num=\"3\" value=\"1\"/>\n", ""},
    };
    for (const auto& row : rows) {
        const ToolRun run = folder.run(row.arguments);
        EXPECT_EQ(run.status, row.status) << row.arguments << "\n" << run;
        EXPECT_THAT(run.out, HasSubstr(row.out)) << row.arguments;
        EXPECT_THAT(run.err, HasSubstr(row.err)) << row.arguments;
        if (!*row.err) {
            EXPECT_EQ(run.err, "") << row.arguments;
        }
    }
}

TEST_F(Project, SavesAndFormats) {
    EXPECT_EQ(folder.run("project format game.xml"), (ToolRun{0}));
    const std::string formatted = folder.read("game.xml");
    EXPECT_THAT(formatted, HasSubstr("date=\"1\""));
    folder.write("game.xml", std::string("<!-- mine -->") + kProject);
    EXPECT_EQ(folder.run("project format game.xml").status, 1);
    EXPECT_EQ(folder.run("project save game.xml").status, 1) << "nobody answered the question";
    EXPECT_THAT(folder.read("game.xml"), StartsWith("<!-- mine -->"));
    EXPECT_EQ(folder.run("project save game.xml --yes").status, 0);
    EXPECT_THAT(folder.read("game.xml.1.bak"), StartsWith("<!-- mine -->"));
}
