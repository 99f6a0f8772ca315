// Projects are made as planned; whatever fails gives its code, its texts and its report, and harms nothing.
#include "J8ProjectManager/ProjectSession.h"
#include "customize/EntityComponents.h"
#include "tests/support/FaultyOsFiles.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/SourceDir.h"
#include "tests/wizard/Suite.h"

namespace {

using namespace zoka;
using namespace zoka::test;

const std::string kFullReport =
    "FilePath CreateDir CopyFiles CreateDir CopyFiles CopyZLM CopyZLB CopyZUN CopyC CopyKEZ CopyXml "
    "ProjectPath "
    "DataPath SaveProjectXml";
const std::vector<std::string> kFullTree = {"harbour.zlb",       "harbour.zlm", "harbour.zun", "main.c",
                                            "main.kez",          "main.xml",    "maps/",       "maps/deep/",
                                            "maps/deep/two.txt", "one.txt"};

TEST(Creation, MakesTheWholeProject) {
    Suite suite;
    addFullWizard(suite);
    const CJ8Wizard wizards;
    CJ8WizardUserData data = suite.data("new\\game");
    ASSERT_EQ(wizards.Run(data, 0), 0) << data.m_strMessage;
    EXPECT_EQ(suite.tree("games/new/game"), kFullTree);
    EXPECT_EQ(suite.read("games/new/game/harbour.zlm"), "lev.zlm");
    EXPECT_EQ(suite.reportKeys(), kFullReport + " ok");
    EXPECT_EQ(suite.logged(), "");

    const XMLNode report = XMLNode::parseFile(kWizardReport, "WizardDebug");
    EXPECT_STREQ(report.getAttribute("action"), "Run");
    EXPECT_STREQ(report.getAttribute("ver"), "8.0303");
    EXPECT_STREQ(report.getAttribute("err"), "none");
    const std::string game = suite.folder.path("games") + "\\new\\game";
    const std::string texts[] = {
        wizards.paths()[0], game, game + "\\", game + "\\maps\\deep", game + "\\maps\\deep\\",
        game + "\\harbour"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(report.getChild(i).getText(), texts[i]) << i;
        EXPECT_TRUE(report.getChild(i).hasAttribute("line"));
    }

    const XMLNode project = XMLNode::parseFile((game + "\\main.xml").c_str(), "Project");
    EXPECT_STREQ(project.getAttribute("name"), "My Game");
    EXPECT_STREQ(project.getAttribute("vers"), "8.0303");
    EXPECT_EQ(project.getChild("Paths").getAttribute("proj_file"), game + "\\");
    EXPECT_EQ(project.getChild("Paths").getAttribute("j8_file"), data.m_strTemplatesPath);
    EXPECT_STREQ(project.getChild("Level").getAttribute("name"), "Start");
    EXPECT_STREQ(project.getChild("Level").getAttribute("mapfile"), "harbour.zlb");
    EXPECT_STREQ(project.getChild("Level").getChild("Doc").getText(), "The first one");
}

TEST(Creation, GoesOnWithoutWhatAWizardLacks) {
    const struct {
        const char* content;
        const char* map;
        const char* keys;
        std::vector<std::string> tree;
    } rows[] = {
        {"",
         "m",
         "FilePath CreateDir CopyZLB J8ProjectFiles ProjectPath DataPath SaveProjectXml ok",
         {"m.xml"}},
        {"<Folder/><Level/><J8ProjectFiles><File/></J8ProjectFiles>",
         "",
         "FilePath CreateDir ProjectPath DataPath SaveProjectXml ok",
         {"map.xml"}},
        {"<Folder name='.'><Check name='one.txt' folder='a'/><File name='a\\one.txt'/><File "
         "name='none'/></Folder>"
         "<Level><File name='lev' folder='a'/></Level>",
         "",
         "FilePath CreateDir CopyFiles CopyZLM CopyZLB CopyZUN J8ProjectFiles ProjectPath DataPath "
         "SaveProjectXml ok",
         {"map.xml", "map.zlm", "map.zun"}},
        {"<J8ProjectFiles><File name='none' folder='a'/></J8ProjectFiles>",
         "m",
         "FilePath CreateDir CopyZLB CopyC CopyKEZ CopyXml ErrCopyXml ProjectPath DataPath SaveProjectXml ok",
         {"none.xml"}},
        {"<Folder name='.'><File name='one.txt' folder='a'/><File name='ONE.TXT' folder='a'/></Folder>",
         "m",
         "FilePath CreateDir CopyFiles CopyZLB J8ProjectFiles ProjectPath DataPath SaveProjectXml ok",
         {"m.xml", "one.txt"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.content);
        Suite suite;
        addFullWizard(suite);
        std::filesystem::remove(suite.folder.native("templates/a/lev.zlb"));
        suite.wizard("full.xml", row.content);
        CJ8WizardUserData data = suite.data("g");
        data.m_strLevelMap = row.map;
        EXPECT_EQ(CJ8Wizard().Run(data, 0), 0);
        EXPECT_EQ(suite.reportKeys(), row.keys);
        EXPECT_EQ(suite.tree("games/g"), row.tree);
    }
}

TEST(Creation, RefusesWithTheCodeOfEachStep) {
    const struct {
        const char* content;
        const char* folder;
        int code;
        const char* message;  // below the project folder; null: none
        const char* keys;
    } rows[] = {
        {"", "there", -3, "", "FilePath ErrOverwrite"},
        {"", "file", -3, "", "FilePath ErrOverwrite"},
        {"<Folder name='..\\x'/>", "there", -3, "", "FilePath ErrOverwrite"},
        {"", "file\\below", -3, "", "FilePath ErrOverwrite"},
        {"<Folder name='a'><File folder='a'/></Folder>", "g", -5, "\\a\\",
         "FilePath CreateDir CreateDir ErrCopyFiles"},
        {"<Folder name='one.txt'/>", "g", -4, "\\one.txt", "FilePath CreateDir CopyFiles ErrCreateDir"},
        {"<Folder name='..\\x'/>", "g", -4, "\\..\\x", "FilePath ErrCreateDir"},
        {"<Folder name='x'><File name='..\\..\\y'/></Folder>", "g", -5, "\\x\\..\\..\\y",
         "FilePath ErrCopyFiles"},
        {"<Level><File name='lev' folder='..'/></Level>", "g", -5, "\\harbour.zlm", "FilePath ErrCopyFiles"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.content + std::string(" in ") + row.folder);
        Suite suite;
        addFullWizard(suite);
        suite.write("games/there/kept", "kept");
        suite.write("games/file", "kept");
        suite.wizard("full.xml", (std::string(row.content).find("one.txt'/>") != std::string::npos
                                      ? "<Folder name='.'><File name='one.txt' folder='a'/></Folder>"
                                      : std::string()) +
                                     row.content);
        CJ8WizardUserData data = suite.data(row.folder);
        EXPECT_EQ(CJ8Wizard().Run(data, 0), row.code);
        EXPECT_EQ(data.m_strMessage, data.m_strProjectFolder + row.message);
        EXPECT_EQ(suite.reportKeys(), row.keys);
        EXPECT_EQ(suite.tree("games/there"), std::vector<std::string>{"kept"});
        EXPECT_EQ(suite.read("games/file"), "kept");
        EXPECT_EQ(suite.has("games/y") || suite.has("games/x"), false);
    }
    Suite suite;
    suite.wizard("a.xml", "");
    const CJ8Wizard wizards;
    CJ8WizardUserData data = suite.data("g");
    EXPECT_EQ(wizards.Run(data, 1), -1);
    EXPECT_EQ(suite.reportKeys(), "ErrPath");
    suite.write("templates/wizards/a.xml", "<Project/>");
    EXPECT_EQ(wizards.Run(data, 0), -2);
    EXPECT_EQ(suite.reportKeys(), "FilePath ErrFile");
}

TEST(Creation, MakesAFolderWithASeparatorBehindItsName) {
    Suite suite;
    addFullWizard(suite);
    CJ8WizardUserData data = suite.data("new\\g\\.\\");
    CreationRecord record;
    EXPECT_EQ(CJ8Wizard().Run(data, 0, {nullptr, &record}), 0);
    EXPECT_EQ(suite.tree("games/new/g"), kFullTree);
    EXPECT_TRUE(record.remove().left.empty());
    EXPECT_EQ(suite.tree("games"), std::vector<std::string>());
}

TEST(Creation, SaysWhyTheProjectCouldNotBeSaved) {
    Suite suite;
    addFullWizard(suite);
    CJ8WizardUserData data = suite.data("g");
    FaultyOsFiles files(FaultyOsFiles::every("flush"));
    EXPECT_EQ(CJ8Wizard().Run(data, 0), -9);
    EXPECT_NE(data.m_strMessage.find("main.xml"), data.m_strMessage.npos) << data.m_strMessage;
}

TEST(Creation, LeavesAnEarlierProjectAlone) {
    Suite suite;
    addFullWizard(suite);
    suite.write("games/old.xml",
                "<Project name='Old' date='1' vers='7'><Paths proj_file='o' j8_file='p'/></Project>");
    const std::string before = suite.read("games/old.xml");
    ASSERT_TRUE(CJ8ProjectManager::Instance()->LoadFromXML(suite.folder.path("games") + "\\old.xml", false));
    suite.wizard("full.xml", "");
    CJ8WizardUserData data = suite.data("g");
    EXPECT_EQ(CJ8Wizard().Run(data, 0), 0);
    EXPECT_EQ(suite.read("games/old.xml"), before);
    EXPECT_EQ(CJ8ProjectManager::Instance()->m_vers, "8.0303");
    EXPECT_EQ(CJ8ProjectManager::Instance()->m_apLevels.size(), 0u);
    EXPECT_NE(suite.read("games/g/harbour.xml").find("My Game"), std::string::npos);
}

// All that a project's object holds.
std::string contentOf(const CJ8ProjectManager& project) {
    std::string text =
        project.m_report + std::string(project.fileText({}, "1").view()) + project.projectFile();
    for (const CJ8BehaviorData& behavior : project.m_apBehavior) {
        text += "\nbehavior " + behavior.m_name;
    }
    for (const CJ8CMPData& component : project.m_apComponents) {
        text += "\ncomponent " + component.m_name;
    }
    for (const CJ8File& lost : project.m_apLostBehaviorFiles) {
        text += "\nlost " + lost.m_path;
    }
    for (const std::string& source : project.sources()) {
        text += "\nread " + source;
    }
    for (const zoka::J8Finding& finding : project.findings()) {
        text += "\nfound " + finding.text;
    }
    return text + "\nnames " + std::to_string(project.behaviorNames()->size()) +
           (project.component("patrol") ? " patrol" : "") + (project.behavior("guard") ? " guard" : "");
}

// The windows and the wizard share one object: what it holds afterwards is what a new one would hold. The behaviour
// panel leaves it alone, and is left alone by it.
TEST(Creation, NothingOfAnEarlierProjectStays) {
    Suite suite;
    addFullWizard(suite);
    for (const auto& file : std::filesystem::directory_iterator(sourceDir() / "samples" / "j8project")) {
        std::filesystem::create_directories(suite.folder.native("j8project"));
        std::filesystem::copy_file(file.path(), suite.folder.native("j8project") / file.path().filename());
    }
    suite.write("games/small.xml", "<Project name='Small'><Level name='l'/></Project>");
    const std::string town = suite.folder.path("j8project") + "\\main.xml";
    const std::string small = suite.folder.path("games") + "\\small.xml";
    ScriptedPrompt prompt;
    const auto create = [&] {
        std::filesystem::remove_all(suite.folder.native("games/g"));
        CJ8WizardUserData data = suite.data("g");
        EXPECT_EQ(CJ8Wizard().Run(data, 0), 0);
        return contentOf(*CJ8ProjectManager::Instance());
    };
    const auto open = [&](CJ8ProjectManager& project, const std::string& path) {
        ProjectSession session(project, prompt);
        EXPECT_TRUE(session.open(path));
        return contentOf(project);
    };
    const std::string created = create();
    CJ8ProjectManager ofTown, ofSmall;
    const std::string openedTown = open(ofTown, town), openedSmall = open(ofSmall, small);
    ASSERT_NE(openedTown.find("component patrol"), openedTown.npos);

    CJ8ProjectManager& one = *CJ8ProjectManager::Instance();
    EntityComponents panel(town, prompt);
    ASSERT_TRUE(panel.load());
    const auto shown = [&panel] {
        panel.show({"night guard"});
        std::string rows;
        for (size_t row = 0; row < panel.size(); ++row) {
            rows += panel.nameOf(row) + '=' + panel.modelOf(row).value() + '\n';
        }
        return rows;
    };
    const std::string panelRows = shown();
    ASSERT_NE(panelRows.find('.'), panelRows.npos);
    EXPECT_EQ(contentOf(one), created);
    EXPECT_EQ(open(one, town), openedTown);
    EXPECT_TRUE(definedBehavior(small, "nobody") == std::nullopt);
    EXPECT_EQ(contentOf(one), openedTown);
    EXPECT_EQ(shown(), panelRows);
    EXPECT_EQ(create(), created);
    EXPECT_EQ(shown(), panelRows);
    panel.moveTo(small);
    EXPECT_EQ(contentOf(one), created);
    panel.moveTo(town);
    EXPECT_EQ(shown(), panelRows);
    EXPECT_EQ(open(one, town), openedTown);
    EXPECT_EQ(open(one, small), openedSmall);
    EXPECT_EQ(open(one, town), openedTown);
    one.LoadFromXML(small, false);
    EXPECT_EQ(contentOf(one), openedSmall);
    EXPECT_FALSE(one.LoadFromXML(suite.folder.path("none.xml"), false));
    EXPECT_EQ(create(), created);
}

// Every operation of the disk fails once. The end is 0 or a code of the table; all that was there before stays, and
// nothing is made beside the project folder.
TEST(Creation, SurvivesEveryFault) {
    int operations = 1;
    for (int failing = 0; failing <= operations; ++failing) {
        SCOPED_TRACE(failing);
        Suite suite;
        addFullWizard(suite);
        const auto templates = suite.tree("templates");
        const CJ8Wizard wizards;
        CJ8WizardUserData data = suite.data("g");
        CreationRecord record;
        int code = 1;
        {
            FaultyOsFiles files(FaultyOsFiles::nth(failing));
            code = wizards.Run(data, 0, {nullptr, &record});
            operations = failing == 0 ? files.operations() : operations;
        }
        EXPECT_TRUE(code == 0 || code == -2 || code == -3 || code == -4 || code == -9) << code;
        EXPECT_EQ(suite.tree("templates"), templates);
        for (const std::string& name : suite.tree(".")) {
            EXPECT_TRUE(name.starts_with("templates/") || name == "games/" || name.starts_with("games/g/") ||
                        name == kWizardReport || name == "debugLogOut.xml")
                << name;
        }
        const XMLNode project =
            XMLNode::parseFile((data.m_strProjectFolder + "\\main.xml").c_str(), "Project");
        EXPECT_TRUE(code != 0 || !project.isEmpty());
        if (code < 0) {
            EXPECT_TRUE(record.remove().left.empty());
            EXPECT_FALSE(suite.has("games/g")) << "a second try is possible";
        }
    }
    EXPECT_GT(operations, 20);
}

TEST(Creation, TakesBackOnlyWhatItMade) {
    Suite suite;
    addFullWizard(suite);
    CreationRecord record;
    CJ8WizardUserData data = suite.data("a\\b");
    ASSERT_EQ(CJ8Wizard().Run(data, 0, {nullptr, &record}), 0);
    EXPECT_EQ(record.files(), 8u);
    EXPECT_EQ(record.folders(), 4u);
    suite.write("games/a/b/one.txt", "changed since");
    suite.write("games/a/b/maps/mine.txt", "somebody else's");
    EXPECT_EQ(
        record.remove().left,
        (std::vector<std::string>{data.m_strProjectFolder + "\\one.txt", data.m_strProjectFolder + "\\maps",
                                  data.m_strProjectFolder, suite.folder.path("games") + "\\a"}));
    EXPECT_EQ(suite.tree("games"),
              (std::vector<std::string>{"a/", "a/b/", "a/b/maps/", "a/b/maps/mine.txt", "a/b/one.txt"}));
}

TEST(Creation, CopiesTheFilesOfOneFolder) {
    Suite suite;
    addFullWizard(suite);
    const CJ8Wizard wizards;
    const XMLNode folder = XMLNode::parseText(
        "<Folder name='maps\\deep'><Check name='c.txt' folder='a'/><File name='one.txt' folder='a'/>"
        "<File name='none'/><File name='..\\up'/><File/><File name='two.txt' folder='a'/></Folder>",
        "Folder");
    const std::string target = suite.folder.path("games") + "\\";
    EXPECT_FALSE(wizards.CopyFiles(target, folder));
    EXPECT_EQ(suite.tree("games"), std::vector<std::string>{"one.txt"});
    EXPECT_EQ(suite.logged(),
              "Throw while trying to copy from: .\\templates\\none|Throw while trying to copy to: " + target +
                  "none|Throw while trying to copy from: .\\templates\\..\\up|" +
                  "Throw while trying to copy to: " + target + "..\\up|No filename!|");
}

}  // namespace
