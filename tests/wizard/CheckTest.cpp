// Wizards are found, read and checked before anything is made.
#include "J8ProjectWizard/PlanTree.h"
#include "J8ProjectWizard/WizardFindings.h"
#include "J8ProjectWizard/WizardNames.h"
#include "tests/support/FaultyOsFiles.h"
#include "tests/wizard/Suite.h"

namespace {

using namespace zoka;
using namespace zoka::test;

TEST(WizardNames, StayInTheirFolder) {
    for (const char* name : {"a.kez", ".", ".\\a.kez", "maps", "maps/deep\\x.zlm", "a..b", ".hidden",
                             "console.kez", "com0.txt", "com", "a b.c", "caf\xe9.txt", ""}) {
        EXPECT_EQ(nameRefusal(name), "") << name;
    }
    for (const char* name : {"..",
                             "..\\a",
                             "maps\\..\\..\\a",
                             "a/../../b",
                             "\\a",
                             "/a",
                             "\\\\server\\share",
                             "c:\\a",
                             "c:a",
                             "a.txt:s",
                             "con",
                             "CON.txt",
                             "maps\\aux.kez",
                             "nul .x",
                             "com1",
                             "LPT9.c",
                             "com\xb2",
                             "lpt\xc2\xb9.txt",
                             "conin$",
                             "a.",
                             "maps.\\a",
                             "a ",
                             "a\x01"
                             "b",
                             "a?",
                             "a*b",
                             "\"a",
                             "a|b",
                             "<a"}) {
        EXPECT_NE(nameRefusal(name), "") << name;
    }
    EXPECT_NE(nameRefusal(std::string(260, 'a')), "");
    EXPECT_NE(plainNameRefusal("maps\\a"), "");
    EXPECT_NE(plainNameRefusal("."), "");
    EXPECT_EQ(plainNameRefusal("harbour"), "");
}

TEST(Wizard, ListsTheWizardsOfItsFolder) {
    Suite suite;
    suite.wizard("titled.xml", "<Title>Titled</Title>");
    suite.wizard("untitled.xml", "<Title></Title>");
    suite.write("templates/wizards/other.xml", "<Project/>");
    suite.write("templates/wizards/broken.xml", "<Wizard><Title>x</Wizard>");
    suite.write("templates/wizards/sub/in.xml", "<Wizard/>");
    const CJ8Wizard wizards;
    ASSERT_EQ(wizards.titles().size(), 2u);
    const size_t titled = wizards.titles()[0] == "Titled" ? 0 : 1;
    EXPECT_EQ(wizards.titles()[titled], "Titled");
    EXPECT_EQ(wizards.titles()[1 - titled], wizards.paths()[1 - titled]);
    EXPECT_EQ(wizards.paths()[titled], systemFiles().currentFolder() + "\\templates\\wizards\\titled.xml");
    EXPECT_FALSE(CJ8Wizard::IsWizardFile(".\\templates\\wizards\\other.xml"));
    EXPECT_FALSE(CJ8Wizard::IsWizardFile(".\\templates\\wizards\\none.xml"));
    EXPECT_EQ(CJ8Wizard::GetWizardTitle(".\\templates\\wizards\\none.xml"), "");
    EXPECT_EQ(suite.logged(), "");
}

TEST(Wizard, EmptyAndMissingFoldersAreLoggedOnce) {
    Suite suite;
    std::string message = "as it was";
    EXPECT_EQ(CJ8Wizard().Check(message, 0), -7);
    EXPECT_EQ(message, "as it was");
    EXPECT_EQ(suite.logged(), "Path not found|");
    std::filesystem::remove_all(suite.folder.native("templates"));
    EXPECT_EQ(CJ8Wizard().titles().size(), 0u);
    EXPECT_EQ(CJ8WizardUserData().m_strTemplatesPath, "");
    EXPECT_EQ(suite.logged(), "Path not found|Path not found|");
}

TEST(Wizard, GivesDescriptionAndDefaults) {
    Suite suite;
    suite.wizard("a.xml",
                 "<Desc>Says</Desc><Defaults><Name>N</Name><LevelDocs>LD</LevelDocs><Docs/></Defaults>");
    const CJ8Wizard wizards;
    std::string text = "old";
    EXPECT_TRUE(CJ8Wizard::GetWizardDesc(text, wizards.paths()[0]));
    EXPECT_EQ(text, "Says");
    EXPECT_FALSE(CJ8Wizard::GetWizardDesc(text, "none.xml"));
    EXPECT_EQ(text, "Says");
    CJ8WizardUserData data;
    EXPECT_EQ(data.m_strTemplatesPath, systemFiles().currentFolder() + "\\templates\\xml\\");
    data.m_strDocs = "kept";
    EXPECT_TRUE(wizards.LoadDefaults(data, 0));
    EXPECT_FALSE(wizards.LoadDefaults(data, 1));
    EXPECT_EQ(data.m_strName + data.m_strDocs + data.m_strLevelDocs + data.m_strLevelMap, "NkeptLD");
    // A text may be a CDATA section, or have a comment in its middle.
    suite.wizard("a.xml",
                 "<Title><![CDATA[Tom & Jerry]]></Title><Desc>one<!-- c -->two</Desc><Defaults><LevelMap>"
                 "<![CDATA[lm]]></LevelMap></Defaults>");
    const CJ8Wizard both;
    EXPECT_EQ(both.titles()[0], "Tom & Jerry");
    EXPECT_TRUE(CJ8Wizard::GetWizardDesc(text, both.paths()[0]));
    EXPECT_TRUE(both.LoadDefaults(data, 0));
    EXPECT_EQ(text + data.m_strLevelMap, "onetwolm");
    const std::vector<WizardFinding> found = wizardFindings(both.paths()[0]);
    ASSERT_EQ(found.size(), 1u) << "nothing is wrong with the texts";
    EXPECT_TRUE(found[0].text.starts_with("There is no Level"));
}

TEST(Wizard, ChecksNamesAndFiles) {
    const struct {
        const char* content;
        int code;
        const char* message;
        const char* logged;
    } rows[] = {
        {"", 0, "", ""},
        {"<Folder name='.'><File name='a' folder='in'/><Check name='a' folder='in'/></Folder>", 0, "", ""},
        {"<Folder/>", -1, "Empty folder name!", "Empty folder name|"},
        {"<Folder name=''/>", -1, "Empty folder name!", "Empty folder name|"},
        {"<Folder name='x'><File folder='in'/></Folder>", -2, "Empty filename.",
         "Empty filename|CheckFiles error|"},
        {"<Folder name='x'><File name='a'/></Folder>", -1, "Empty foldername.",
         "Empty foldername|CheckFiles error|"},
        {"<Folder name='x'><File name='q' folder='in'/><Check name='p' folder='in'/></Folder><Folder/>", -2,
         "Missing file: .\\templates\\in\\p\r\nMissing file: .\\templates\\in\\q\r\n", "CheckFiles error|"},
        {"<Folder name='..\\x'/>", -1, "The folder name \"..\\x\" leads out of its folder.",
         "The folder name \"..\\x\" leads out of its folder.|"},
        {"<Folder name='x'><File name='..\\..\\a' folder='in'/></Folder>", -1,
         "The file name \"..\\..\\a\" leads out of its folder.",
         "The file name \"..\\..\\a\" leads out of its folder.|CheckFiles error|"},
        {"<Folder name='x'><Check name='a' folder='c:\\'/></Folder>", -1,
         "The folder name \"c:\\\" leads to a drive.",
         "The folder name \"c:\\\" leads to a drive.|CheckFiles error|"},
        {"<Folder name='x'><File name='.' folder='in'/></Folder>", -1,
         "The file name \".\" is no name of a file.",
         "The file name \".\" is no name of a file.|CheckFiles error|"},
        {"<Folder name='x'><Check name='in\\' folder='.'/></Folder>", -1,
         "The file name \"in\\\" is no name of a file.",
         "The file name \"in\\\" is no name of a file.|CheckFiles error|"},
        {"<J8ProjectFiles><File name='in/.' folder='.'/></J8ProjectFiles>", -1,
         "The file name \"in/.\" is no name of a file.", "The file name \"in/.\" is no name of a file.|"},
        {"<Level><File name='..\\a'/></Level>", -1, "The file name \"..\\a\" leads out of its folder.",
         "The file name \"..\\a\" leads out of its folder.|"},
        {"<J8ProjectFiles><File name='a' folder='..'/></J8ProjectFiles>", -1,
         "The folder name \"..\" leads out of its folder.",
         "The folder name \"..\" leads out of its folder.|"},
        {"<Defaults><LevelMap>..\\a</LevelMap></Defaults>", -1,
         "The level map's name \"..\\a\" holds a separator of folders.",
         "The level map's name \"..\\a\" holds a separator of folders.|"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.content);
        Suite suite;
        suite.write("templates/in/a", "");
        suite.wizard("a.xml", row.content);
        const CJ8Wizard wizards;
        std::string message;
        EXPECT_EQ(wizards.Check(message, 0), row.code);
        EXPECT_EQ(message, row.message);
        EXPECT_EQ(suite.logged(), row.logged);
    }
}

TEST(Wizard, ChecksWhatBecameOfTheFile) {
    Suite suite;
    suite.wizard("a.xml", "");
    const CJ8Wizard wizards;
    std::string message;
    {
        // The first look finds a wizard, the second one none.
        int opened = 0;
        FaultyOsFiles files([&](int, std::string_view op, const std::string& path) {
            return op == "readWhole" && path.ends_with("a.xml") && ++opened == 2;
        });
        EXPECT_EQ(wizards.Check(message, 0), -2);
        EXPECT_EQ(message, "Bad Wizard Xml: " + wizards.paths()[0]);
    }
    suite.write("templates/wizards/a.xml", "<Project/>");
    EXPECT_EQ(wizards.Check(message, 0), -2);
    EXPECT_EQ(message, "Bad Wizard File: " + wizards.paths()[0]);
    EXPECT_EQ(suite.logged(),
              "Bad Wizard Xml: " + wizards.paths()[0] + "|Bad Wizard File: " + wizards.paths()[0] + "|");
}

TEST(Wizard, GoesOnWhereTheSystemDoesNotTell) {
    Suite suite;
    suite.wizard("a.xml",
                 "<Folder name='x'><File name='a' folder='in'/><File name='b' folder='in'/></Folder>");
    const CJ8Wizard wizards;
    std::string message;
    FaultyOsFiles files([](int, std::string_view op, const std::string& path) {
        return op == "kindOf" && path.ends_with("\\a");
    });
    EXPECT_EQ(wizards.Check(message, 0), -2);
    EXPECT_EQ(message, "Missing file: .\\templates\\in\\b\r\n");
    EXPECT_EQ(suite.logged(), "Throw checking source: .\\templates\\in\\a|CheckFiles error|");
}

TEST(Wizard, ChecksTheTargets) {
    Suite suite;
    addFullWizard(suite);
    const CJ8Wizard wizards;
    CJ8WizardUserData data = suite.data("x");
    std::string message;
    EXPECT_EQ(wizards.Check(message, 0, data), 0);
    const std::string longest = "\\maps\\deep\\two.txt";
    data.m_strProjectFolder.append(259 - data.m_strProjectFolder.size() - longest.size(), 'x');
    EXPECT_EQ(wizards.Check(message, 0, data), 0) << message;
    data.m_strProjectFolder += 'x';
    EXPECT_EQ(wizards.Check(message, 0, data), -1);
    EXPECT_TRUE(message.starts_with("The path has 260 characters; ")) << message;
    EXPECT_NE(message.find("two.txt\"."), message.npos) << message;
    data.m_strLevelMap = "nul";
    EXPECT_EQ(wizards.Check(message, 0, data), -1);
    for (const char* folder : {"x.", "con", "a*b\\"}) {
        data = suite.data(folder);
        EXPECT_EQ(wizards.Check(message, 0, data), -1) << folder;
        EXPECT_TRUE(message.starts_with("The folder name \"")) << message;
    }
}

// No file of the level is copied, and still the editor must be able to open its map.
TEST(Wizard, ChecksThePathOfTheMap) {
    Suite suite;
    suite.wizard("a.xml", "<J8ProjectFiles><File name='p' folder='a'/></J8ProjectFiles>");
    const CJ8Wizard wizards;
    CJ8WizardUserData data = suite.data("x");
    std::string message;
    data.m_strLevelMap.assign(256 - data.m_strProjectFolder.size() - 1, 'm');
    EXPECT_EQ(wizards.Check(message, 0, data), 0) << message;
    data.m_strLevelMap += 'm';
    EXPECT_EQ(wizards.Check(message, 0, data), -1);
    EXPECT_TRUE(message.starts_with("The path of the level's map has 257 characters; ")) << message;
}

// What a plan shows and check tells beforehand, each because the run leaves it out.
TEST(Wizard, TellsOfWhatIsNotMade) {
    const std::string sub =
        "Can't be copied, because no folder before makes the one that it lies in: sub\\one";
    const std::string taken = "The file can't be made: a folder of that name is made before: ";
    const std::string before = "Something of that name is made before: pro.c";
    const std::string noMap = "There is no Level: no map is copied that the editor could open.";
    const struct {
        std::string content, rows;
        std::vector<std::string> findings;
    } wizards[] = {
        {"<Folder name='.'><File name='sub\\one' folder='.'/></Folder><Folder name='sub'><File "
         "name='.\\one' folder='sub'/></Folder>",
         ": |sub\\one: " + sub + "|sub\\: |one: |m.xml: |",
         {noMap, sub}},
        {"<Folder name='m.xml'/>", ": |m.xml\\: |m.xml: " + taken + "m.xml|", {noMap, taken + "m.xml"}},
        {"<Folder name='M.zlm'/><Level><File name='pro' folder='sub'/></Level>",
         ": |M.zlm\\: |m.zlm: " + taken + "m.zlm|m.zlb: |m.zun: |m.xml: |",
         {taken + "m.zlm"}},
        {"<Folder name='.'><File name='pro.c' folder='sub'/></Folder><J8ProjectFiles><File name='pro' "
         "folder='sub'/></J8ProjectFiles>",
         ": |pro.c: |pro.c: something of that name is made before|pro.kez: |pro.xml: |",
         {noMap, before}},
        {"<Levle/><Folder name='x'><Fiel/></Folder>",
         ": |x\\: |m.xml: |",
         {noMap, "Unknown element Levle in Wizard: it is passed over.",
          "Unknown element Fiel in Folder: it is passed over."}},
    };
    for (const auto& [content, rows, findings] : wizards) {
        Suite suite;
        suite.write("templates/sub/one", "3");
        for (const char* file : {"pro.c", "pro.kez", "pro.xml", "pro.zlm", "pro.zlb", "pro.zun"}) {
            suite.write(std::string("templates/sub/") + file, "<Project/>");
        }
        suite.wizard("a.xml",
                     "<Title>t</Title><Desc>d</Desc><Defaults><LevelMap>m</LevelMap></Defaults>" + content);
        const CJ8Wizard wizard;
        PlanTree tree(*wizard.plan(0, "m"));
        tree.lookAtAll();
        std::string shown;
        for (const PlanRow& row : tree.rows()) {
            shown += row.name + ": " + tree.problem(row, "g") + "|";
        }
        EXPECT_EQ(shown, rows);
        std::vector<std::string> told;
        for (const WizardFinding& finding : wizardFindings(wizard.paths()[0])) {
            told.push_back(finding.text);
        }
        EXPECT_EQ(told, findings) << content;
        // What is shown without a word is there afterwards.
        CJ8WizardUserData data = suite.data("g");
        data.m_strLevelMap = "m";
        wizard.Run(data, 0);
        for (const PlanRow& row : tree.rows()) {
            std::string path = "games/g/" + row.target;
            std::ranges::replace(path, '\\', '/');
            EXPECT_TRUE(suite.has(path) || !tree.problem(row, "g").empty()) << content << row.target;
        }
    }
}

}  // namespace
