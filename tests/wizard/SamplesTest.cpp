// The wizards that come with the suite are sound and make projects that load.
#include "J8ProjectWizard/PlanTree.h"
#include "tests/support/SourceDir.h"
#include "tests/wizard/Checks.h"
#include "tests/wizard/Suite.h"

namespace {

using namespace zoka;
using namespace zoka::test;

class WizardSamples : public testing::Test {
protected:
    void SetUp() override {
        // Entry by entry: the library's recursive copy takes a folder that is there for an error on Windows.
        const auto from = sourceDir() / "samples" / "templates";
        const std::filesystem::path to = suite.folder.native("templates");
        std::filesystem::create_directories(to);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(from)) {
            const auto target = to / entry.path().lexically_relative(from);
            if (entry.is_directory()) {
                std::filesystem::create_directories(target);
            } else {
                std::filesystem::copy_file(entry.path(), target,
                                           std::filesystem::copy_options::overwrite_existing);
            }
        }
    }
    Suite suite;
};

TEST_F(WizardSamples, MakeProjects) {
    const CJ8Wizard wizards;
    ASSERT_EQ(wizards.titles().size(), 4u);
    for (unsigned i = 0; i < 4; ++i) {
        SCOPED_TRACE(wizards.titles()[i]);
        CJ8WizardUserData data;
        ASSERT_TRUE(wizards.LoadDefaults(data, i));
        data.m_strProjectFolder = suite.folder.path("games") + "\\game" + std::to_string(i);
        ASSERT_EQ(wizards.Check(data.m_strMessage, i, data), 0) << data.m_strMessage;
        const auto plan = wizards.plan(i, data.m_strLevelMap);
        ASSERT_TRUE(plan);
        PlanTree tree(*plan);
        tree.lookAtAll();
        EXPECT_EQ(tree.firstProblem(data.m_strProjectFolder), "");
        ASSERT_EQ(wizards.Run(data, i), 0) << data.m_strMessage;

        // What is there is what the plan said.
        std::vector<std::string> planned;
        for (const PlanRow& row : tree.rows()) {
            if (row.depth > 0 && !row.isOnlyChecked) {
                std::string name = row.target;
                std::replace(name.begin(), name.end(), '\\', '/');
                planned.push_back(name);
            }
        }
        std::sort(planned.begin(), planned.end());
        EXPECT_EQ(suite.tree("games/game" + std::to_string(i)), planned);

        CJ8ProjectManager project;
        EXPECT_TRUE(project.LoadFromXML(data.m_strProjectFolder + "\\main.xml", false));
        EXPECT_EQ(project.m_name, data.m_strName);
        ASSERT_FALSE(project.m_apLevels.empty());
        EXPECT_EQ(project.m_apLevels[0].m_name, data.m_strLevelName);
        EXPECT_EQ(project.m_apLostBehaviorFiles.size(), 0u) << project.m_report;
        EXPECT_TRUE(systemFiles().exists(data.m_strProjectFolder + "\\main.zlm"));
    }
    EXPECT_EQ(suite.logged(), "");
}

// Cut off anywhere or with any byte changed, a wizard is none, or one whose plan stays in its folders.
TEST_F(WizardSamples, PlanNothingElsewhereWhateverIsCutOrChanged) {
    // What separates in XML and in names, what names may not hold, and a few that they may.
    constexpr std::string_view bytes("\0\n <>&\"'=/\\.:?x\x80\xC3\xFF", 18);
    // Where every read is checked it takes twenty times as long: every place then has some of the bytes in turn.
#ifdef __SANITIZE_ADDRESS__
    constexpr size_t step = 7;
#else
    constexpr size_t step = 1;
#endif
    size_t files = 0, plans = 0;
    const auto breakAll = [&](const std::filesystem::path& folder) {
        for (const auto& file : std::filesystem::directory_iterator(folder)) {
            SCOPED_TRACE(file.path().string());
            const std::string whole = readNative(file.path());
            ASSERT_EQ(planFault(whole, &plans), "");
            for (size_t length = 0; length < whole.size(); ++length) {
                ASSERT_EQ(planFault(std::string_view(whole).substr(0, length), &plans), "") << length;
            }
            std::string changed = whole;
            for (size_t at = 0; at < whole.size(); ++at) {
                for (size_t j = 0; j < bytes.size(); ++j) {
                    if ((at + j) % step == 0) {
                        changed[at] = bytes[j];
                        ASSERT_EQ(planFault(changed, &plans), "") << at << " as " << int{bytes[j]};
                    }
                }
                changed[at] = whole[at];
            }
            ++files;
        }
    };
    breakAll(sourceDir() / "samples" / "templates" / "wizards");
    breakAll(sourceDir() / "fuzz" / "seeds" / "wizard");
    breakAll(sourceDir() / "fuzz" / "regressions" / "wizard");
    EXPECT_GE(files, 8U);
    EXPECT_GT(plans, 0U);
}

// What the test above relies on: it would see such a plan.
TEST(WizardPlans, OneThatLeavesItsFoldersIsSeen) {
    const struct {
        const char* folder;
        const char* source;
        const char* target;
        const char* fault;
    } rows[] = {
        {"g", "a.zlm", "g\\a.zlm", ""},
        {"..\\h", "a.zlm", "g\\a.zlm", "leaves C:\\games\\g\\: ..\\h"},
        {"..\\g", "a.zlm", "g\\a.zlm", "leaves C:\\games\\g\\: ..\\g"},
        {"g", "a.zlm", "..\\a.zlm", "leaves C:\\games\\g\\: ..\\a.zlm"},
        {"g", "..\\a.zlm", "g\\a.zlm", "leaves C:\\suite\\templates\\: ..\\a.zlm"},
        {"g", "a.zlm", "g\\a.zlm:x", "leaves C:\\games\\g\\: g\\a.zlm:x"},
    };
    for (const auto& row : rows) {
        CreationPlan plan;
        PlannedFile file;
        file.source = std::string(kTemplatesRoot) + row.source;
        file.target = row.target;
        plan.folders.emplace_back().name = row.folder;
        plan.folders[0].files.push_back(file);
        EXPECT_EQ(planFault(plan), row.fault);
    }
}

// The same through Run, on the disk, for some places of each: nothing is made beside the project folder.
TEST_F(WizardSamples, SurviveCutsAndChanges) {
    struct Sample {
        std::string whole;
        size_t step;
        int enough;  // more than that many can be made
    };
    std::vector<Sample> samples;
    for (const auto& file : std::filesystem::directory_iterator(suite.folder.native("templates/wizards"))) {
        const bool isTour = file.path().filename() == "guided_tour.xml";  // the one with the most in it
        samples.push_back({readNative(file.path()), isTour ? 31U : 61U, isTour ? 5 : 3});
    }
    std::filesystem::remove_all(suite.folder.native("templates/wizards"));
    suite.write("templates/wizards/x.xml", samples.front().whole);
    const CJ8Wizard wizards;
    ASSERT_EQ(wizards.titles().size(), 1u);
    const auto before = suite.tree("templates");
    for (const auto& [whole, step, enough] : samples) {
        int made = 0;
        for (size_t i = 0; i < 2 * whole.size(); i += step) {
            std::string changed = whole.substr(0, i < whole.size() ? i : whole.size());
            if (i >= whole.size()) {
                changed[i - whole.size()] = static_cast<char>("\\./:<\"\0 x"[i % 9]);
            }
            suite.folder.write("templates/wizards/x.xml", changed);
            CJ8WizardUserData data;
            wizards.LoadDefaults(data, 0);
            data.m_strProjectFolder = suite.folder.path("games") + "\\g";
            made += wizards.Run(data, 0) == 0;
            std::filesystem::remove_all(suite.folder.native("games/g"));
        }
        EXPECT_GT(made, enough);
        EXPECT_EQ(suite.tree("templates"), before);
        EXPECT_EQ(suite.tree("games"), std::vector<std::string>());
    }
}

}  // namespace
