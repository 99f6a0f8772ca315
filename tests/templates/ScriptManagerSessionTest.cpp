// The Project Manager dialog without its window: what the pages show and what the buttons do.
#include "templates/ScriptManagerSession.h"

#include <gtest/gtest.h>

#include "templates/CatalogueXml.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/templates/Project.h"

using namespace zoka;
using test::includes;
using test::Names;
using test::Project;

namespace {

CScriptElm script(const std::string& title, const std::string& file, const Names& needs = {}) {
    CScriptElm elm = test::script(title, file, "Weather", "", needs);
    elm.m_desc = "First.\nSecond.\n";
    elm.m_engreq = {"6.1", ""};
    elm.m_sections = {{"S", "", "", {{"act", file, {}, "Does.\nThings."}, {"bare", file, {}, ""}}}};
    return elm;
}

struct Fixture {
    Fixture() {
        catalogue.AddScript(script("Fog", "fog.kez", {"noise.kez"}));         // 0
        catalogue.AddScript(script("Noise", "noise.kez"));                    // 1
        catalogue.AddScript(script("Camera", "camera_.kez", {"noise.kez"}));  // 2
        catalogue.AddScript(script("Fog", "fog2.kez"));                       // 3: the title of another
        catalogue.AddScript(script("Lost", "lost.kez"));                      // 4: no file anywhere
        catalogue.AddScript(script("Nameless", ""));                          // 5
        project.addTemplate("fog.kez", "// needs: noise.kez\r\n// ver: 2\r\n");
        project.addTemplate("noise.kez", "x");
        project.addTemplate("camera_.kez", "// needs: noise.kez\r\n%_%");
        project.addTemplate("fog2.kez", "x");
        session.open();
    }
    void include(const Names& names) {
        project.folder.write("main.kez", includes(names));
        session.refresh();
    }
    Names included() const {
        Names texts;
        for (const IncludedScript& entry : session.included()) {
            texts.push_back(entry.text);
        }
        return texts;
    }
    Project project;
    CTemplateData catalogue;
    test::ScriptedPrompt prompt;
    ScriptManagerSession session{project.host, catalogue, [](CTemplateData&, JobProgress*) { return false; },
                                 prompt};
};

}  // namespace

TEST(ScriptManagerSession, AddPageShowsAndAdds) {
    Fixture f;
    EXPECT_EQ(f.session.classes(), (Names{"<ALL>", "Weather"}));
    EXPECT_EQ(f.session.search("<ALL>", "fog").size(), 2U);
    EXPECT_EQ(f.session.lastAdded(), "<none>");
    EXPECT_FALSE(f.session.isIncluded(0));
    const ScriptDetails details = f.session.details(0);
    EXPECT_EQ(details.engineReq, "6.1");
    EXPECT_EQ(details.description, "First.\r\nSecond.\r\n");
    EXPECT_EQ(details.actions, "act - Does.\r\nThings.\r\nbare");
    EXPECT_EQ(f.session.plan(0).summary(), "adds fog.kez; needs noise.kez");

    EXPECT_FALSE(f.session.add(std::nullopt));
    EXPECT_TRUE(f.session.add(0));
    EXPECT_EQ(f.session.lastAdded(), "Fog");
    EXPECT_EQ(f.session.status(), "Added: Fog");
    EXPECT_EQ(f.included(), (Names{"Noise", "Fog"}));
    EXPECT_TRUE(f.session.isIncluded(0));
    EXPECT_FALSE(f.session.isIncluded(2));
    EXPECT_TRUE(f.session.add(2));
    EXPECT_TRUE(f.session.isIncluded(2)) << "through its copy";
    EXPECT_EQ(f.session.plan(2).summary(),
              "adds camera_1.kez; needs noise.kez (already included); copies camera_.kez as camera_1.kez");
    EXPECT_TRUE(f.session.add(0));
    EXPECT_EQ(f.session.status(), "fog.kez is already included; nothing to add");
    EXPECT_TRUE(f.prompt.asked.empty());

    for (const std::uint32_t record : {4U, 5U}) {
        EXPECT_FALSE(f.session.plan(record).problem.empty());
        EXPECT_FALSE(f.session.add(record));
        EXPECT_EQ(f.prompt.texts().back(), "Can't find script file (1129).\nFile not added.");
        EXPECT_EQ(f.session.lastAdded(), "<none>");
    }
    f.project.host.refuseCopies(true);
    EXPECT_FALSE(f.session.add(2));
    EXPECT_TRUE(f.session.status().starts_with("Not added: ")) << f.session.status();
}

TEST(ScriptManagerSession, RemovePageRefusesWhatIsNeeded) {
    Fixture f;
    f.include({"mine.kez", "noise.kez", "fog.kez", "camera_4.kez", "fog2.kez", "odd_x.kez"});
    EXPECT_EQ(f.included(),
              (Names{"mine.kez", "Noise", "Fog", "Camera (camera_4.kez)", "Fog (fog2.kez)", "odd_x.kez"}));
    EXPECT_EQ(f.session.neededBy(1), "Fog, Camera (camera_4.kez)");
    EXPECT_EQ(f.session.neededBy(2), "");
    const std::string before = f.project.main();

    EXPECT_FALSE(f.session.remove(-1));
    EXPECT_FALSE(f.session.remove(99));
    EXPECT_TRUE(f.prompt.asked.empty());
    EXPECT_FALSE(f.session.remove(1));
    ASSERT_EQ(f.prompt.asked.size(), 1U);
    EXPECT_EQ(f.prompt.asked[0].title, "Can't Remove Script");
    EXPECT_EQ(f.prompt.asked[0].icon, PromptIcon::Error);
    EXPECT_EQ(f.prompt.asked[0].text,
              "The following scripts must be removed first: \n\nFog\n\nCamera (camera_4.kez)");
    EXPECT_FALSE(f.session.remove(0));
    EXPECT_EQ(f.prompt.texts().back(), "The script mine.kez is not in the template catalogue.");
    EXPECT_EQ(f.project.main(), before);

    // The second script of one title, the copy, then the first: each is the one that the entry stands for.
    for (const int index : {4, 3, 2, 1}) {
        EXPECT_TRUE(f.session.remove(index)) << index;
    }
    EXPECT_EQ(f.project.main(), includes({"mine.kez", "odd_x.kez"}));
    EXPECT_EQ(f.session.status(), "Removed: Noise");
}

TEST(ScriptManagerSession, DependentsByTitle) {
    Fixture f;
    f.include({"noise.kez", "fog.kez"});
    Names titles;
    EXPECT_TRUE(f.session.FindDependents("Noise", titles));
    EXPECT_EQ(titles, Names{"Fog"});
    EXPECT_FALSE(f.session.FindDependents("Fog", titles));
    EXPECT_TRUE(titles.empty());
    EXPECT_FALSE(f.session.FindDependents("Camera", titles)) << "in the catalogue, not included";
    try {
        f.session.FindDependents("none", titles);
        ADD_FAILURE();
    } catch (const PageError& error) {
        EXPECT_EQ(error.code(), PageError::ScriptNotInCatalogue);
    }
}

TEST(ScriptManagerSession, ACatalogueThatCannotBeLoadedIsPageErrorOne) {
    Fixture f;
    CTemplateData none;
    int loads = 0;
    ScriptManagerSession session(
        f.project.host, none, [&loads](CTemplateData&, JobProgress*) { return ++loads, false; }, f.prompt);
    EXPECT_FALSE(session.open());
    EXPECT_EQ(f.prompt.texts().back(), "The template catalogue can't be loaded.");
    EXPECT_EQ(session.notes(), "Project Manager: 2.1\r\n");
    EXPECT_EQ(f.prompt.texts(), Names(2, "The template catalogue can't be loaded.")) << "told each time";
    Names titles;
    EXPECT_THROW(session.FindDependents("Fog", titles), PageError);
    EXPECT_EQ(loads, 3) << "tried again each time";
}

TEST(ScriptManagerSession, UpdatePageShowsDifferencesAndRestores) {
    Fixture f;
    f.project.folder.write("fog.kez", "// needs: noise.kez\r\n// ver: 1\r\n");
    f.include({"noise.kez", "fog.kez"});
    ASSERT_EQ(f.session.updates().size(), 1U);
    const UpdatePlan plan = f.session.updatePlan(0);
    ASSERT_EQ(plan.scripts.size(), 1U);
    EXPECT_EQ(plan.scripts[0].change.after, "// needs: noise.kez\r\n// ver: 2\r\n");
    EXPECT_EQ(f.session.restorable(), Names{"noise.kez"});
    f.session.updateSelected(0);
    EXPECT_EQ(f.session.status(), "Updated: fog.kez");
    EXPECT_TRUE(f.session.updates().empty());
    EXPECT_TRUE(f.session.restore("noise.kez"));
    EXPECT_TRUE(f.session.restorable().empty());
    f.prompt.answers = {PromptAnswer::Yes};
    f.project.folder.write("fog.kez", "// needs: noise.kez\r\n// ver: 1\r\n");
    f.session.updateAll();
    EXPECT_EQ(f.session.status(), "Updated: fog.kez");
    EXPECT_TRUE(f.session.updates().empty());
}

TEST(ScriptManagerSession, AScriptOfTheTemplateFolderIsCopiedIntoTheProject) {
    Fixture f;
    f.project.folder.write("mine.kez", "x");
    f.include({"mine.kez", "fog.kez", "gone.kez"});
    const bool used[] = {false, true, false};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(f.session.isUsedFromTemplates(i), used[i]) << i;
    }
    f.project.host.refuseCopies(true);
    EXPECT_FALSE(f.session.copyIntoProject(1));
    EXPECT_TRUE(f.prompt.texts().back().starts_with("Copy error (1128).")) << f.prompt.texts().back();
    EXPECT_EQ(f.session.status(), "");
    f.project.host.refuseCopies(false);
    EXPECT_TRUE(f.session.copyIntoProject(1));
    EXPECT_EQ(f.session.status(), "Copied into the project: fog.kez");
    EXPECT_FALSE(f.session.isUsedFromTemplates(1));
    EXPECT_FALSE(f.session.copyIntoProject(1)) << "there is one";
    EXPECT_EQ(f.project.folder.read("fog.kez"), "// needs: noise.kez\r\n// ver: 2\r\n");
    EXPECT_FALSE(f.session.copyIntoProject(2));
}

TEST(ScriptManagerSession, ADamagedCatalogueIsAskedAboutBeforeItEndsTheEditor) {
    test::ScriptedPrompt prompt;
    prompt.answers = {PromptAnswer::Yes, PromptAnswer::No};
    XMLResults results;
    XMLNode::parseText("<TavrixTemplate>\n<x></TavrixTemplate>", "TavrixTemplate", &results);
    ASSERT_NE(results.line, 0);
    EXPECT_TRUE(leavesDamagedCatalogue(prompt, "C:\\t.xml", results));
    EXPECT_FALSE(leavesDamagedCatalogue(prompt, "C:\\t.xml", results));
    EXPECT_NE(prompt.asked[0].text.find("C:\\t.xml, line " + std::to_string(results.line) + ", column "),
              std::string::npos);
    EXPECT_NE(prompt.asked[0].text.find(XMLNode::errorText(results.code)), std::string::npos);
    EXPECT_EQ(prompt.asked[0].buttons, PromptButtons::YesNo) << "Enter leaves";
}

TEST(ScriptManagerSession, RemoveAndWhyAgreeOnWhoNeedsWhom) {
    Fixture f;
    f.project.folder.write("mine.kez", "// needs: fog.kez\r\n");
    f.include({"mine.kez", "noise.kez", "fog.kez"});
    EXPECT_EQ(f.session.neededBy(2), "mine.kez") << "the user's own script";
    EXPECT_EQ(f.session.removalProblem(1), "Can't be removed yet: needed by Fog");
    EXPECT_EQ(f.session.removalProblem(0),
              "Not a template script: delete its include line from the main script yourself.");
    EXPECT_FALSE(f.session.remove(2));
    EXPECT_EQ(f.prompt.asked.back().text, "The following scripts must be removed first: \n\nmine.kez");
    const auto needs = f.session.includedScripts().allThatNeed(1);
    ASSERT_EQ(needs.size(), 2U);
    EXPECT_EQ(f.included()[needs[0].script], "Fog");
    EXPECT_EQ(f.included()[needs[1].script], "mine.kez");
    EXPECT_EQ(needs[1].depth, 2U);
}
