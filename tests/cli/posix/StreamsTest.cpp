// Pipes, devices and a standard output without room.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/Tool.h"
#include "tests/cli/Unreadable.h"

using testing::HasSubstr;

namespace {

TEST(Streams, PipesAreReadAndDevicesAreNot) {
    ToolFolder folder;
    EXPECT_EQ(folder.run("xml check pipe", "", "mkfifo pipe; (printf '<a><b></a>' >pipe &);"),
              (ToolRun{1, "pipe:1:7: Error: Unmatched end tag\n"}));
    for (const std::string device : {"/dev/zero", "/dev/null"}) {
        EXPECT_EQ(folder.run("xml check " + device, "", "timeout 20"),
                  (ToolRun{3, "", "zoka: cannot read " + device + ": Operation not supported\n"}));
    }
    folder.write("a.xml", "<a/>");
    EXPECT_EQ(folder.run("xml format a.xml -o pipe").status, 3) << "nothing takes a pipe's place";
    EXPECT_TRUE(std::filesystem::is_fifo(folder.path("pipe")));
}

TEST(Streams, FindingsThatDoNotArriveAreAFailure) {
    ToolFolder folder;
    folder.write("bad.xml", "<a>");
    std::string manyTimes;
    for (int i = 0; i < 200; ++i) {
        manyTimes += " bad.xml";
    }
    const Unwritable full(folder.path("bad.xml"));
    const ToolRun run = folder.run("xml check" + manyTimes, "", full.before());
    EXPECT_EQ(run.status, 3);
    EXPECT_LE(run.out.size(), 1024u);
    EXPECT_THAT(run.err, HasSubstr("cannot write the standard output: File too large"));
}

}  // namespace
