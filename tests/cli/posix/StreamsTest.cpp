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
                  (ToolRun{3, "", "zoka: Can't read '" + device + "': Operation not supported\n"}));
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
    EXPECT_THAT(run.err, HasSubstr("Can't write the standard output: File too large"));
}

// A name that would recolour the terminal or move its cursor is shown; JSON and value files hold it as it is.
TEST(Streams, ControlCharactersAreShown) {
    ToolFolder folder;
    folder.write("a.kez", "// entry: Re\x1b[31md\xc2\x9b\r\nx = 5;\r\n");
    folder.write("b\x1b.xml", "<a>");
    const std::string list = folder.run("customize list a.kez").out;
    EXPECT_THAT(list, HasSubstr("\\x1b[31m"));
    EXPECT_EQ(list.find('\x1b'), list.npos);
    EXPECT_THAT(folder.run("customize list --json a.kez").out, HasSubstr("\\u001b[31m"));
    folder.write("c.zlm", std::string("level 1\nentity a\0\xfc"
                                      "b\nend\n",
                                      24));
    EXPECT_THAT(folder.run("level list c.zlm --json").out, HasSubstr("\"a\\u0000\xc3\xbc"
                                                                     "b\""));
    EXPECT_THAT(folder.run("xml check b\x1b.xml").out, HasSubstr("b\\x1b.xml:1:"));
    EXPECT_THAT(folder.run("customize list none\x1b.kez").err, HasSubstr("none\\x1b.kez"));
}

// What is written in place could be damaged: only by the user's word.
TEST(Streams, AFolderThatTakesNoFileNeedsTheUsersWord) {
    ToolFolder folder;
    std::filesystem::create_directory(folder.path("locked"));
    folder.write("locked/a.xml", "<a/>");
    const std::string asNobody =
        "chmod 666 locked/a.xml; chmod 777 .; chmod 555 locked; "
        "run() { if [ $(id -u) = 0 ]; then setpriv --reuid 65534 --clear-groups \"$@\"; else \"$@\"; fi; }; "
        "run ";
    const ToolRun refused = folder.run("xml format locked/a.xml -o locked/a.xml", "", asNobody);
    EXPECT_EQ(refused.status, 3) << refused;
    EXPECT_THAT(refused.err, HasSubstr("not written in place"));
    EXPECT_EQ(folder.read("locked/a.xml"), "<a/>");
    EXPECT_EQ(folder.run("--in-place-if-needed xml format locked/a.xml -o locked/a.xml", "", asNobody).status,
              0);
    EXPECT_NE(folder.read("locked/a.xml"), "<a/>");
    std::filesystem::permissions(folder.path("locked"), std::filesystem::perms::all);
}

// A folder whose names can't be read is not an empty one, and a name that would be a path is not looked at.
TEST(Streams, AFolderThatCannotBeListedIsNotEmpty) {
    ToolFolder folder;
    std::filesystem::create_directory(folder.path("closed"));
    folder.write("closed/a.kez", "// ver: 1\n");
    folder.write("closed/b\\c.kez", "// ver: 1\n");
    const std::string asNobody =
        "chmod 777 .; chmod $mode closed; "
        "run() { if [ $(id -u) = 0 ]; then setpriv --reuid 65534 --clear-groups \"$@\"; else \"$@\"; fi; }; "
        "run ";
    for (const char* command :
         {"customize check closed", "behavior check closed", "catalogue build closed -n"}) {
        const ToolRun refused = folder.run(command, "", "mode=333; " + asNobody);
        EXPECT_EQ(refused.status, 3) << command << refused;
        EXPECT_THAT(refused.err, HasSubstr("Can't read 'closed': ")) << command;
        EXPECT_THAT(folder.run(command, "", "mode=777; " + asNobody).err, HasSubstr("b\\c.kez is skipped"));
    }
}

}  // namespace

#ifndef __SANITIZE_ADDRESS__  // which takes more address space itself than the limit below
// Memory that runs out is told with the file that took it, whichever command reads it.
TEST(Streams, MemoryThatRunsOutIsToldWithTheFile) {
    constexpr int kPieces = 1'500'000;
    std::string xml = "<a>", script;
    for (int i = 0; i < kPieces; ++i) {
        xml += "<b c='d'/>";
        script += "// entry: e\nx=1;\n";
    }
    ToolFolder folder;
    folder.write("big.xml", xml + "</a>");
    folder.write("big.kez", script);
    for (const std::string command :
         {"xml check big.xml", "xml format -n big.xml", "catalogue check big.xml", "project check big.xml",
          "customize check big.kez", "customize list big.kez"}) {
        const std::string file = command.substr(command.find("big"));
        EXPECT_EQ(folder.run(command, "", "ulimit -v 80000;"),
                  (ToolRun{3, "", "zoka: There is not enough memory for '" + file + "'.\n"}))
            << command;
    }
}
#endif

// Each sets a value of its own in one project, at the same moment.
TEST(TwoWriters, LoseNothingOfEachOther) {
    const struct {
        const char *file, *content, *set, *other, *get, *both;
    } rows[] = {
        {"two.xml",
         "<Project name='n' date='1' vers='8.0303'><Paths proj_file='' j8_file=''/>"
         "<Level name='l' mapfile='m'><Entity name='a'/><Entity name='b'/></Level></Project>",
         "project set --undeclared two.xml level/l/entity/a/parent=of_a",
         "project set --undeclared two.xml level/l/entity/b/parent=of_b",
         "project get two.xml level/l/entity/a/parent level/l/entity/b/parent", "of_a\nof_b\n"},
        {"two.zlm", "level 1\nentity a\n    skill 1 0\nend\nentity b\n    skill 1 0\nend\n",
         "level set two.zlm a skill1=3", "level set two.zlm b skill1=4", "level diff base two.zlm",
         "a\tskill1: 0 -> 3\nb\tskill1: 0 -> 4\n"},
    };
    const std::string tool = "'" ZOKA_CLI "' ";
    for (const auto& row : rows) {
        for (int round = 0; round < 12; ++round) {
            ToolFolder folder;
            folder.write(row.file, row.content);
            folder.write("base", row.content);
            folder.write("ended", "");
            EXPECT_EQ(
                folder.run(row.set, "", "{ (" + tool + row.other + " >>ended 2>&1; echo $? >>ended) & } ;"),
                (ToolRun{0, "", ""}));
            EXPECT_EQ(folder.run(row.get, "", "while [ ! -s ended ]; do sleep 0.01; done;").out, row.both);
            EXPECT_EQ(folder.read("ended"), "0\n");
        }
    }
}
