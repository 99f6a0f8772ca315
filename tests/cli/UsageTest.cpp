#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/Tool.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {

TEST(Usage, VersionIsOneLine) {
    const ToolRun run = ToolFolder().run("--version");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "zoka " ZOKA_VERSION "\n");
    EXPECT_EQ(run.err, "");
}

TEST(Usage, EveryCommandHasHelpWithAnExampleAndTheExitCodes) {
    const struct {
        const char* arguments;
        const char* example;
    } rows[] = {
        {"--help", "zoka xml check "},
        {"-h", "zoka xml check "},
        {"xml --help", "zoka xml check "},
        {"xml check --help", "zoka xml check "},
        {"xml format --help", "zoka xml format "},
    };
    for (const auto& row : rows) {
        const ToolRun run = ToolFolder().run(row.arguments);
        EXPECT_EQ(run.status, 0) << row.arguments;
        EXPECT_EQ(run.err, "") << row.arguments;
        EXPECT_THAT(run.out, HasSubstr(std::string("Example:\n  ") + row.example)) << row.arguments;
        EXPECT_THAT(run.out, HasSubstr("Exit codes:\n  0  done\n")) << row.arguments;
    }
}

TEST(Usage, ErrorsNameTheMistakeAndDoNothing) {
    const struct {
        const char* arguments;
        const char* message;
    } rows[] = {
        {"", "a command is missing"},
        {"xml", "a command is missing"},
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
    for (const auto& row : rows) {
        const ToolRun run = folder.run(row.arguments);
        EXPECT_EQ(run.status, 2) << row.arguments;
        EXPECT_EQ(run.out, "") << row.arguments;
        EXPECT_THAT(run.err, StartsWith("zoka: ")) << row.arguments;
        EXPECT_THAT(run.err, HasSubstr(row.message)) << row.arguments;
        EXPECT_THAT(run.err, HasSubstr("--help")) << row.arguments;
    }
    EXPECT_EQ(folder.fileCount(), 1u);
    EXPECT_EQ(folder.read("a.xml"), "<a><b/></a>");
}

}  // namespace
