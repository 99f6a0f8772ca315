#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/Tool.h"

using testing::AllOf, testing::HasSubstr, testing::StartsWith;

namespace {

TEST(Usage, VersionIsOneLine) {
    EXPECT_EQ(ToolFolder().run("--version"), (ToolRun{0, "zoka " ZOKA_VERSION "\n"}));
}

TEST(Usage, EveryCommandHasHelpWithAnExampleAndTheExitCodes) {
    const auto expectHelp = [](const std::string& arguments, const std::string& example) {
        const ToolRun run = ToolFolder().run(arguments);
        EXPECT_EQ(run, (ToolRun{0, run.out})) << arguments;
        EXPECT_THAT(run.out, HasSubstr("Example:\n  zoka " + example)) << arguments;
        EXPECT_THAT(run.out, HasSubstr("Exit codes:\n  0  done\n")) << arguments;
    };
    for (const char* all : {"--help", "-h", "xml --help"}) {
        expectHelp(all, "xml check ");
    }
    for (const std::string command :
         {"xml check", "xml format", "catalogue", "catalogue build", "catalogue check", "catalogue list",
          "catalogue show", "help-pages", "scripts", "scripts list", "scripts add", "scripts remove",
          "scripts update", "scripts restore", "scripts notes", "scripts why"}) {
        expectHelp(command + " --help", command);
    }
}

TEST(Usage, ErrorsNameTheMistakeAndDoNothing) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "a command is missing: xml, catalogue, "},
        {"xml", "a command is missing after xml: check, format"},
        {"project", "a command is missing after project: check, "},
        {"wizard", "a command is missing after wizard: list, show, check"},
        {"catalogue", "a command is missing after catalogue: build, "},
        {"behavior check \"\"", "SCRIPT: is empty"},
        {"project check \"\"", "PATH: is empty"},
        {"wizard list \"\"", "FOLDER: is empty"},
        {"catalogue build . -o \"\"", "--output: is empty"},
        {"scripts list -p \"\" -t .", "--project: is empty"},
        {"frobnicate", "frobnicate"},
        {"xml chekc a.xml", "chekc"},
        {"xml check", "FILE is required"},
        {"xml check --shiny a.xml", "--shiny"},
        {"xml format", "FILE is required"},
        {"xml format a.xml a.xml", "--in-place only"},
        {"xml format --in-place -o b.xml a.xml", "excludes"},
        {"xml format --in-place -", "standard input"},
        {"xml format a.xml -o", "output"},
    };
    ToolFolder folder;
    folder.write("a.xml", "<a><b/></a>");
    for (const auto& [arguments, message] : rows) {
        const ToolRun run = folder.run(arguments);
        EXPECT_EQ(run, (ToolRun{2, "", run.err})) << arguments;
        EXPECT_THAT(run.err, AllOf(StartsWith("zoka: "), HasSubstr(message), HasSubstr("--help")))
            << arguments;
    }
    EXPECT_EQ(folder.fileCount(), 1u);
    EXPECT_EQ(folder.read("a.xml"), "<a><b/></a>");
}

}  // namespace
