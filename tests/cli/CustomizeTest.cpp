#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/cli/Tool.h"

using nlohmann::json;
using testing::HasSubstr;

namespace {

constexpr char kScript[] =
    "// ver: 2\r\n// section: Range\r\n// entry: Far end\r\n// id: 4\r\n// cntl: spin 0 100 1\r\nvar far_end "
    "= 10;\r\n\r\n"
    "// enable: Lamp\r\n// id: 5\r\n//define LAMP;\r\n\r\n// entry: Name\r\nstring name = \"caf\xE9\";\r\n";

struct Customize : testing::Test {
    Customize() { folder.write("s.kez", kScript); }
    std::string with(const std::string& from, const std::string& to) const {
        std::string text = kScript;
        return text.replace(text.find(from), from.size(), to);
    }
    ToolFolder folder;
};

TEST_F(Customize, ListsAndGetsValues) {
    EXPECT_EQ(
        folder.run("customize list s.kez"),
        (ToolRun{0, "\nRange\n4\tFar end = 10\t(allowed: 0 to 100)\n5\tLamp = 0\n-\tName = caf\xE9\n"}));
    EXPECT_EQ(folder.run("customize get s.kez \"far END\" 5 name"), (ToolRun{0, "10\n0\ncaf\xE9\n"}));
    const json all = json::parse(folder.run("customize list s.kez --json").out);
    EXPECT_EQ(all["version"], 2);
    EXPECT_EQ(all["entries"][1]["maximum"], 100);
    EXPECT_EQ(all["entries"][3]["value"], "caf\xC3\xA9");
}

TEST_F(Customize, SetsValuesAllOrNone) {
    const struct {
        const char* arguments;
        int status;
        const char* complaint;
    } refused[] = {
        {"4=11 5=2", 1, "\"Lamp\": A switch is either"},
        {"4=101", 1, "101 is too large (allowed: 0 to 100)."},
        {"4=11 nothing=1", 2, "no entry has the id or label \"nothing\""},
        {"4=11 5", 2, "not of the form name=value"},
    };
    for (const auto& row : refused) {
        const ToolRun run = folder.run(std::string("customize set s.kez ") + row.arguments);
        EXPECT_EQ(run.status, row.status) << row.arguments;
        EXPECT_THAT(run.err, HasSubstr(row.complaint)) << row.arguments;
        EXPECT_EQ(folder.read("s.kez"), kScript);
    }
    ToolRun run = folder.run("customize set s.kez 4=11 lamp=1 --dry-run");
    EXPECT_EQ(run.status, 0);
    for (const char* line : {"-var far_end = 10;", "+var far_end = 11;", "+define LAMP;"}) {
        EXPECT_THAT(run.out, HasSubstr(line));
    }
    EXPECT_EQ(folder.read("s.kez"), kScript);
    run = folder.run("customize set s.kez 4=11");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(folder.read("s.kez"), with("= 10", "= 11"));
    EXPECT_EQ(folder.read("s.kez.zoka"), "1\n2\n0\n\n4\n11\n11\n\n5\n8\n0\n\n");
}

TEST_F(Customize, ComparesResetsAndUpdatesByTheTemplate) {
    std::filesystem::create_directory(folder.path("t"));
    folder.write("t/s.kez", with("= 10", "= 20"));
    EXPECT_EQ(folder.run("customize diff s.kez -t t"), (ToolRun{1, "4\tFar end: 10 (there 20)\n"}));
    EXPECT_EQ(folder.run("customize diff s.kez -t s.kez").status, 0);
    ToolRun run = folder.run("customize update s.kez -t t");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(folder.read("s.kez"), kScript);  // the value was kept
    run = folder.run("customize reset s.kez 4 -t t");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(folder.read("s.kez"), with("= 10", "= 20"));
    folder.write("t/s.kez", with("// id: 4", "// id: 6"));
    run = folder.run("customize update s.kez -t t");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("Far end (id 4): 20 - the script has no entry for it\n"));
    EXPECT_EQ(folder.read("s.kez"), with("// id: 4", "// id: 6"));
    EXPECT_THAT(folder.read("s.kez.zoka.old"), HasSubstr("\n4\n11\n20\n"));
    folder.write("t.kez", kScript);
    for (const auto& [original, status] :
         {std::pair("none", 2), {"t.kez", 2}, {"none/s.kez", 3}, {"s.kez", 3}}) {
        run = folder.run(std::string("customize update s.kez -t ") + original);
        EXPECT_EQ(run.status, status) << original;
        EXPECT_EQ(folder.read("s.kez"), with("// id: 4", "// id: 6")) << original;
    }
}

TEST_F(Customize, ExportsAndImportsValueFiles) {
    EXPECT_EQ(folder.run("customize export s.kez -o -").out, "1\n2\n0\n\n4\n11\n10\n\n5\n8\n0\n\n");
    EXPECT_EQ(folder.run("customize export s.kez -o ./S.KEZ").status, 2);
    EXPECT_EQ(folder.read("s.kez"), kScript);
    const ToolRun run = folder.run("customize import s.kez -i -", "1\n2\n0\n\n4\n11\n33\n\n9\n8\n0\n\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("id 9"));
    EXPECT_EQ(folder.read("s.kez"), with("= 10", "= 33"));
    for (const char* broken : {"1\n2\n", "", kScript}) {
        EXPECT_EQ(folder.run("customize import s.kez -i -", broken).status, 1) << broken;
        EXPECT_EQ(folder.read("s.kez"), with("= 10", "= 33"));
    }
    EXPECT_EQ(folder.run("customize import none.kez").status, 3);
}

TEST_F(Customize, ChecksWholeFolders) {
    folder.write("bad.kez", "// entri: A\r\nvar x = 1;\r\n");
    const ToolRun run = folder.run("customize check .");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("bad.kez:1: \"entri\" is no keyword; is \"entry\" meant?"));
    EXPECT_EQ(json::parse(folder.run("customize check . --json").out).size(), 1u);
    EXPECT_EQ(folder.run("customize check s.kez"), (ToolRun{0}));
    EXPECT_EQ(folder.run("customize check s.kez none.kez").status, 3);
}

}  // namespace
