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
        (ToolRun{0, "\nRange\n4\tFar end = 10\t(allowed: 0 to 100)\n5\tLamp = 0\n@13\tName = caf\xE9\n"}));
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
        {"4=11 nothing=1", 2, "no entry has the id, label or line \"nothing\""},
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
    for (const char* line :
         {"--- s.kez\n+++ s.kez\n", "-var far_end = 10;", "+var far_end = 11;", "+define LAMP;"}) {
        EXPECT_THAT(run.out, HasSubstr(line));
    }
    EXPECT_EQ(folder.read("s.kez"), kScript);
    run = folder.run("customize set s.kez 4=11");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(folder.read("s.kez"), with("= 10", "= 11"));
    EXPECT_EQ(folder.read("s.kez.zoka"), "1\n2\n0\n\n4\n11\n11\n\n5\n8\n0\n\n");
}

TEST_F(Customize, NamesEntriesByLineAndInEitherCharacterSet) {
    folder.write("u.kez",
                 "// entry: Gr\xC3\xB6\xC3\x9F"
                 "e\nvar a = 1;\n\n// entry: A\nvar b = 2;\n\n// entry: A\nvar c = 3;\n"
                 "\n// enable: Part\n//X;\n//Y;\n\n// entry_text: 2, 99, T\nstring t = \"a\nb\";\n");
    folder.write("l.kez",
                 "// entry: Gr\xF6\xDF"
                 "e\r\nstring a = \"1\";\r\n");
    const struct {
        const char* name;
        int status;
        const char* value;  // or a part of the complaint
    } rows[] = {
        {"gr\xC3\x96\xC3\x9F"
         "e",
         0, "1\n"},
        {"@7", 0, "3\n"},
        {"@8", 0, "3\n"},
        {"a", 2, "name it by its line: @5, @8"},
        {"@99", 2, "no entry has"},
        {"@10", 2, "several entries"},
        {"@12", 0, "0\n"},
        {"\"Part: Y;\"", 0, "0\n"},
    };
    for (const auto& row : rows) {
        const ToolRun run = folder.run(std::string("customize get u.kez ") + row.name);
        EXPECT_EQ(run.status, row.status) << row.name;
        EXPECT_THAT(row.status == 0 ? run.out : run.err, HasSubstr(row.value)) << row.name;
    }
    EXPECT_EQ(folder.run("customize set u.kez \"T=1\r\n2\"").status, 0);
    EXPECT_THAT(folder.read("u.kez"), HasSubstr("\"1\n2\""));
    EXPECT_EQ(folder
                  .run("customize set l.kez gr\xC3\xB6\xC3\x9F"
                       "e=\xC3\xBC")
                  .status,
              0);
    EXPECT_THAT(folder.read("l.kez"), HasSubstr("\"\xFC\""));
    const ToolRun run = folder.run("customize set l.kez @1=\xCE\xA9");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("is not in this file's character set; save the file as UTF-8 to use it."));
}

TEST_F(Customize, TakesValuesOfOtherVersionsAsTheyStand) {
    const std::string text =
        "// entry: A\n// id: 1\n// cntl: spin 0 5 1\nvar a = 2;\n\n// entry_drop: B\n// id: 2\n"
        "// cntl: drop_list x y\nvar b = <x>;\n";
    const auto put = [&text](std::string value, std::string other) {
        std::string made = text;
        made.replace(made.find("2;"), 1, value);
        return made.replace(made.find("<x>"), 3, other);
    };
    std::filesystem::create_directory(folder.path("t"));
    for (const char* value : {"2.0", "-7", "12", "1"}) {  // of another form, outside the limits
        folder.write("s.kez", text);
        folder.write("t/s.kez", put(value, "<z>"));
        EXPECT_EQ(folder.run("customize reset s.kez -t t").status, 0) << value;
        EXPECT_EQ(folder.read("s.kez"), put(value, "<z>"));
        EXPECT_EQ(folder.run("customize diff s.kez -t t").status, 0) << value;
    }
    folder.write("s.kez", text);
    EXPECT_EQ(folder.run("customize import s.kez -i -", "1\n0\n0\n\n1\n11\n9.0\n\n2\n17\n<w>\n\n").status, 0);
    EXPECT_EQ(folder.read("s.kez"), put("9.0", "<w>"));
    folder.write("s.kez", put("2", "<mine>"));
    folder.write("t/s.kez", "// ver: 2\n" + text);
    EXPECT_EQ(folder.run("customize update s.kez -t t").status, 0);
    EXPECT_EQ(folder.read("s.kez"), "// ver: 2\n" + put("2", "<mine>"));
    folder.write("t/other.kez", text);
    EXPECT_EQ(folder.run("customize reset s.kez -t t/other.kez").status, 2);
    EXPECT_EQ(folder.read("s.kez"), "// ver: 2\n" + put("2", "<mine>"));
}

TEST_F(Customize, SaysWhatItWouldLoseOrDoesNotOffer) {
    folder.write(
        "d.kez",
        "// entry_drop: B\n// id: 2\n// cntl: drop_list x y\nvar b = x;\n\n// entry: C\nvar c = 1;\n"
        "\n// entry_text: 2, 0, D\n// id: 3\nstring d = \"a\nb\";\n\n// entry: E\n// id: 2\nvar e = 1;\n");
    const std::string before = folder.read("d.kez");
    ToolRun run = folder.run("customize set d.kez B=z");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("\"z\" is not among its choices (x, y); --force sets it all the same."));
    EXPECT_EQ(folder.read("d.kez"), before);
    EXPECT_EQ(folder.run("customize set d.kez B=y").status, 0);
    EXPECT_EQ(folder.run("customize set d.kez B=z --force").status, 0);
    run = folder.run("customize export d.kez -o v");
    EXPECT_EQ(run.status, 1);
    for (const char* line :
         {"\"C\" (line 6) can't be read back from the value file: it has no id",
          "\"D\" (line 9) can't be read back from the value file: a line end",
          "\"E\" (line 14) can't be read back from the value file: another entry has the id 2"}) {
        EXPECT_THAT(run.err, HasSubstr(line));
    }
    EXPECT_FALSE(folder.read("v").empty());
    folder.write("p.kez", std::string("BM\0x", 4));
    for (const char* command : {"list", "check"}) {
        run = folder.run(std::string("customize ") + command + " p.kez");
        EXPECT_EQ(run.status, 3) << command;
        EXPECT_THAT(run.err, HasSubstr("p.kez is no script")) << command;
    }
    folder.write("u.kez", std::string("\xFF\xFE/\0/\0", 6));
    run = folder.run("customize list u.kez");
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, HasSubstr("u.kez: This file is UTF-16; save it as"));
    // What stands beside the script is named as the script was.
    folder.write("~zk-d.kez.lock", "1\n");
    EXPECT_THAT(folder.run("customize set d.kez B=x").err,
                HasSubstr("had left the lock '~zk-d.kez.lock' behind"));
    folder.write("n.kez", "nothing\n");
    EXPECT_THAT(folder.run("customize list n.kez").err, HasSubstr("n.kez offers no values"));
    folder.write("i.kez", "// image: none.bmp\n// image: p.kez\n");
    run = folder.run("customize check i.kez");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out,
                HasSubstr("i.kez:1: the picture \"none.bmp\" can't be shown: there is no such file"));
    EXPECT_THAT(run.out, HasSubstr("i.kez:2: the picture \"p.kez\" can't be shown: it is damaged"));
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
        EXPECT_EQ(folder.run(std::string("customize reset s.kez -t ") + original).status,
                  original == std::string("s.kez") ? 0 : status)
            << original;
        EXPECT_EQ(folder.read("s.kez"), with("// id: 4", "// id: 6")) << original;
    }
    EXPECT_EQ(folder.run("customize reset s.kez -t none").err,
              "zoka: there is no template none; not reset\n");
}

TEST_F(Customize, ExportsAndImportsValueFiles) {
    EXPECT_EQ(folder.run("customize export s.kez -o -").out, "1\n2\n0\n\n4\n11\n10\n\n5\n8\n0\n\n");
    EXPECT_EQ(folder.run("customize export s.kez -o new/deep/s.zoka").status, 1) << "one has no id";
    EXPECT_EQ(folder.read("new/deep/s.zoka"), "1\n2\n0\n\n4\n11\n10\n\n5\n8\n0\n\n");
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
    const ToolRun cut = folder.run("customize import s.kez -i -",
                                   "1\n2\n0\n\n4\n11\n" + std::string(511, '7') + "\n\n5\n8\n1\n\n");
    EXPECT_EQ(cut.status, 1);
    EXPECT_EQ(cut.err,
              "zoka: line 7 of the value file is longer than 510 bytes, as much as is read; "
              "nothing was changed\n");
    EXPECT_EQ(folder.read("s.kez"), with("= 10", "= 33"));
    EXPECT_EQ(folder.run("customize import none.kez").status, 3);
}

TEST_F(Customize, ChecksWholeFolders) {
    folder.write("bad.kez", "// entri: A\r\nvar x = 1;\r\n");
    const ToolRun run = folder.run("customize check .");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, testing::StartsWith("bad.kez:1: \"entri\" is no keyword; is \"entry\" meant?"));
    EXPECT_EQ(json::parse(folder.run("customize check . --json").out).size(), 1u);
    EXPECT_EQ(folder.run("customize check s.kez"), (ToolRun{0}));
    EXPECT_EQ(folder.run("customize check s.kez none.kez").status, 3);
}

}  // namespace
