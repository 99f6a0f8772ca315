// Memory that runs out while files are read or a project is made: the caller learns of it, nothing leaks, and the
// next try works.
#include <functional>
#include <new>

#include "J8ProjectManager/ProjectSession.h"
#include "J8ProjectWizard/WizardFindings.h"
#include "templates/CatalogueXml.h"
#include "tests/memory/posix/FailingAllocations.h"
#include "tests/memory/posix/SilentPrompt.h"
#include "tests/wizard/Suite.h"
#include "util/Doors.h"
#include "util/posix/NativePath.h"

namespace {

using namespace zoka;
using zoka::test::g_countdown, zoka::test::g_live, zoka::test::kEveryOne, zoka::test::SilentPrompt,
    zoka::test::Suite;

struct Row {
    const char* what;
    // True when all went well; else the user or a finding says so, or it throws.
    std::function<bool(const Suite&)> work;
};

const Row kRows[] = {
    {"catalogue",
     [](const Suite& suite) {
         CTemplateData catalogue;
         XMLResults results;
         const bool loaded = loadCatalogue(catalogue, suite.folder.path("cat.xml"), &results);
         EXPECT_TRUE(loaded || results.outOfMemory);
         return loaded && catalogue.script(1).m_needs.size() == 2;
     }},
    {"XML document",
     [](const Suite& suite) {
         XMLResults results;
         const XMLNode root = XMLNode::parseFile(suite.folder.path("p.xml").c_str(), nullptr, &results);
         EXPECT_TRUE(!root.isEmpty() || results.outOfMemory);
         return !root.isEmpty() && bool(root.toFileBytes(nullptr, true));
     }},
    {"project",
     [](const Suite& suite) {
         CJ8ProjectManager project;
         const bool loaded = project.LoadFromXML(suite.folder.path("p.xml"), false);
         return loaded && project.m_apLevels.size() == 1 && project.m_apBehavior.size() == 1;
     }},
    {"project's session",
     [](const Suite& suite) {
         CJ8ProjectManager project;
         ProjectSession session(project, userPrompt());
         const Outcome opened = session.open(suite.folder.path("p.xml"));
         EXPECT_NE(bool(opened), !opened.why().empty());
         return bool(opened);
     }},
    {"wizard",
     [](const Suite& suite) {
         const CJ8Wizard wizards;
         CJ8WizardUserData data = suite.data("g");
         return wizards.paths().size() == 1 && wizards.Run(data, 0) == 0;
     }},
    {"wizard's check",
     [](const Suite& suite) {
         const std::string path = suite.folder.path("templates/wizards/full.xml");
         EXPECT_TRUE(CJ8Wizard::IsWizardFile(path));
         const std::vector<WizardFinding> found = wizardFindings(path);
         for (const WizardFinding& finding : found) {
             EXPECT_TRUE(finding.text == outOfMemoryText(path) ||
                         finding.text.ends_with("can't be looked at: Cannot allocate memory"))
                 << finding.text;
         }
         return found.empty();
     }},
};

TEST(Allocations, EachThatFailsWhileLoadingIsAResult) {
    SilentPrompt prompt;
    const Suite suite;
    test::addFullWizard(suite);
    suite.write(
        "cat.xml",
        "<TavrixTemplate name='n' type='full'><EngineReq vers='6'/><Script name='A script of the sea' "
        "filename='sea.kez' vers='1'><class>Water and what lies below it</class></Script><Script "
        "name='B' filename='b.kez'><need>sea.kez</need><need>some_other_script.kez</need>"
        "<desc>&lt;A text that is longer than a string has room for&gt;</desc></Script></TavrixTemplate>");
    suite.write(
        "p.xml",
        "<Project name='A project with a name' date='1' vers='8.0303'><Paths proj_file='' j8_file=''/>"
        "<Behavior proj_file='beh.xml'/><Level name='l' mapfile='m'><Entity "
        "name='guard of the northern gate'><Component name='body'><Edit name='mass' value='2'/>"
        "</Component></Entity></Level></Project>");
    suite.write("beh.xml",
                "<Behaviors><Behavior name='guard of a gate' class='c' group='g'><Component name='the body'>"
                "<Edit name='mass' value='2'/></Component></Behavior></Behaviors>");
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.what);
        int failures = 0;
        bool done = false;
        for (long failing = -1; !done; failing += failing < 1 || kEveryOne ? 1 : 1 + failing / 40) {
            SCOPED_TRACE(failing);
            std::filesystem::remove_all(suite.folder.native("games/g"));
            forgetFolders();
            const long before = g_live;
            bool well = false;
            g_countdown = std::max(failing, 0L);
            keepInside([&] { well = row.work(suite); });
            done = failing > 0 && g_countdown > 0;
            g_countdown = 0;
            failures += !well;
            EXPECT_TRUE(well || (failing > 0 && !done));
            closeDebugLog();
            forgetFolders();
            if (failing >= 0) {  // the first time fills what is kept for the process
                EXPECT_LE(g_live - before, 8) << "leaked";
            }
        }
        EXPECT_GT(failures, 10);
    }
}

TEST(Allocations, AProjectsTextOrTreeThatFailsIsAStepOfTheReport) {
    CJ8ProjectManager project;
    CJ8LevelData& level = project.m_apLevels.emplace_back();
    level.m_name = "harbour";
    level.m_entities.push_back({"guard", "a parent with a long name", 0, {{1, 0, "5"}}, {}});
    for (const bool asTree : {false, true}) {
        int failed = 0;
        for (long failing = 1;; ++failing) {
            SCOPED_TRACE(failing);
            const StepReport report = StepReport::start("Save", "SaveProjectXML");
            g_countdown = failing;
            const bool made = asTree ? !project.createXMLTopNode(report, "1").isEmpty()
                                     : bool(project.fileText(report, "1"));
            g_countdown = 0;
            const XMLNode step = report.node().firstChild("createXMLTopNode").firstChild("ErrProject");
            EXPECT_EQ(made, step.isEmpty());
            if (made) {
                break;
            }
            ++failed;
        }
        EXPECT_GT(failed, 2);
    }
}

}  // namespace
