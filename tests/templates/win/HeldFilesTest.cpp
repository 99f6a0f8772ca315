// What the project's operations do when another program holds the file that they need: say so, and change nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "templates/ScriptAdding.h"
#include "templates/ScriptRestore.h"
#include "templates/ScriptUpdate.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/templates/Project.h"

using namespace zoka;
using test::Names;
using test::Project;
using test::ScriptedPrompt;

namespace {

const char* const kMain = "include <fog.kez>;\r\n\r\n";
const char* const kCopy = "// ver: 1\r\n";

// Each tells what it said: to the user or to its caller.
std::string add(Project& project, ScriptedPrompt& prompt) {
    ScriptAdding adding(project.host, prompt);
    EXPECT_FALSE(adding.AddScriptToProject(project.templatePath("camera_.kez")) && adding.error().empty());
    EXPECT_FALSE(adding.changed());
    return adding.error();
}
std::string remove(Project& project, ScriptedPrompt&) {
    return RemoveInclude(project.host, "fog.kez").why();
}
std::string update(Project& project, ScriptedPrompt& prompt) {
    CTemplateData catalogue;
    catalogue.AddScript(test::script("Fog", "fog.kez"));
    ScriptUpdate run(project.host, catalogue, prompt);
    run.FillUpdateList(true);
    run.UpdateSelected(0);
    EXPECT_TRUE(run.updated().empty());
    return prompt.asked.empty() ? "" : prompt.asked[0].text;
}
std::string restore(Project& project, ScriptedPrompt& prompt) {
    EXPECT_FALSE(RestoreFromTemplate(project.host, "rain.kez", prompt));
    return prompt.asked.empty() ? "" : prompt.asked[0].text;
}

}  // namespace

TEST(HeldFiles, AreLeftAloneAndNamed) {
    constexpr DWORD kNothing = 0, kReading = FILE_SHARE_READ;
    struct Row {
        std::string (*operation)(Project&, ScriptedPrompt&);
        const char* held;
        DWORD allowed;  // what the other program lets others do
        const char* said;
        bool savesValues = false;  // what the script holds, in the value file beside it
    };
    for (const Row& row :
         {Row{add, "main.kez", kNothing, "main.kez"}, Row{add, "main.kez", kReading, "main.kez"},
          Row{remove, "main.kez", kNothing, "main.kez"}, Row{remove, "main.kez", kReading, "main.kez"},
          Row{update, "fog.kez", kNothing, "Not updated:\nfog.kez: "},
          Row{update, "fog.kez", kReading, "Not updated:\nfog.kez: ", true},
          Row{restore, "template", kNothing, "Copy error (1128).\nNo Update."}}) {
        SCOPED_TRACE(std::string(row.held) + " " + row.said);
        Project project(kMain);
        project.folder.write("fog.kez", kCopy);
        for (const char* name : {"fog.kez", "rain.kez", "camera_.kez"}) {
            project.addTemplate(name, "// ver: 2\r\n");
        }
        const std::string held = row.held == std::string("template") ? project.templatePath("rain.kez")
                                                                     : project.folder.path(row.held);
        const HANDLE other =
            CreateFileA(held.c_str(), GENERIC_READ, row.allowed, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(other, INVALID_HANDLE_VALUE);
        ScriptedPrompt prompt;
        EXPECT_THAT(row.operation(project, prompt), testing::HasSubstr(row.said));
        CloseHandle(other);
        EXPECT_EQ(project.main(), kMain);
        EXPECT_EQ(project.folder.read("fog.kez"), kCopy);
        EXPECT_EQ(project.folder.names(), row.savesValues ? (Names{"fog.kez", "fog.kez.zoka", "main.kez"})
                                                          : (Names{"fog.kez", "main.kez"}));
    }
}
