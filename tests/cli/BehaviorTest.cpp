#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/cli/Tool.h"

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

namespace {

constexpr char kScript[] =
    "action walk\r\n{\r\n// skill1: Speed 2\r\n// cntl: slider 0 10 0.5\r\n// flag3: Lit 1\r\n}\r\n"
    "action wait { }\r\n";
constexpr char kLevel[] =
    "level 1\r\n// the harbour\r\nentity a\r\n    action s.kez walk\r\n    skill 1 3.5 \r\n    skill 9 "
    "1\r\nend\r\n"
    "entity b\r\nend";

struct Behavior : testing::Test {
    Behavior() {
        folder.write("s.kez", kScript);
        folder.write("l.zlm", kLevel);
    }
    ToolFolder folder;
};

TEST_F(Behavior, ListsAndChecksActions) {
    EXPECT_EQ(folder.run("behavior list s.kez"),
              (ToolRun{0, "walk\n    skill1 Speed = 2\t(allowed: 0 to 10)\n    flag3 Lit = 1\nwait\n"}));
    const json rows = json::parse(folder.run("behavior list s.kez WALK --json").out)[0]["rows"];
    EXPECT_EQ(rows[0]["maximum"], 10);
    EXPECT_EQ(rows[1]["field"], "flag3");
    EXPECT_EQ(folder.run("behavior list s.kez run").status, 2);
    EXPECT_EQ(folder.run("behavior check s.kez").status, 0);
    folder.write("t.kez", "action x {\r\n// skill21: Far\r\n}\r\n");
    const ToolRun found = folder.run("behavior check .");
    EXPECT_EQ(found.status, 1);
    EXPECT_THAT(found.out, HasSubstr("t.kez:2: there is no skill21"));
    EXPECT_EQ(folder.run("behavior check none.kez").status, 3);
    folder.write("u.kez", std::string("\xFF\xFE"
                                      "a\0",
                                      4));
    EXPECT_THAT(folder.run("behavior check u.kez").out, HasSubstr("u.kez:1: This file is UTF-16"));
    EXPECT_EQ(folder.run("behavior list u.kez").status, 3);
    folder.write("v.kez", "action a;\naction b {}\naction B {\n// skill1: A\n");
    EXPECT_EQ(folder.run("behavior list v.kez").out, "b\nB\n    skill1 A = 0\n");
    EXPECT_THAT(folder.run("behavior check v.kez").out,
                AllOf(HasSubstr("v.kez:3: there is an action \"B\" in line 2 already"),
                      HasSubstr("v.kez:3: no brace closes the body of \"B\"")));
}

// In time linear in the script: it took half a minute once.
TEST_F(Behavior, ChecksScriptsOfManyActions) {
    std::string script;
    for (int i = 0; i < 20000; ++i) {
        script += "action a" + std::to_string(i) + " {\n// skill1: A 1\n}\n";
    }
    folder.write("many.kez", script + "action last {\n// flag9: A\n}");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(folder.run("behavior check many.kez").out, HasSubstr("many.kez:60002: there is no flag9"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(Behavior, ListsGetsAndSetsTheValuesOfALevel) {
    EXPECT_EQ(folder.run("level list l.zlm"),
              (ToolRun{0,
                       "a\ts.kez walk\n    skill1 Speed = 3.5\t(allowed: 0 to 10)\n    flag3 Lit = 0\n"
                       "    skill9 = 1\t(not declared)\nb\t\n"}));
    EXPECT_EQ(folder.run("level get l.zlm a speed flag3 skill9"), (ToolRun{0, "3.5\n0\n1\n"}));
    const ToolRun dry = folder.run("level set l.zlm a Speed=4 --dry-run");
    EXPECT_THAT(dry.out, HasSubstr("+    skill 1 4 "));
    EXPECT_EQ(folder.read("l.zlm"), kLevel);
    EXPECT_EQ(folder.run("level set l.zlm a Speed=4 lit=1").status, 0);
    std::string expected = kLevel;
    expected.replace(expected.find("1 3.5 "), 6, "1 4 ");
    expected.insert(expected.find("end\r\n"), "    flag     3\r\n");
    EXPECT_EQ(folder.read("l.zlm"), expected);
    for (const char* bad : {"a Speed", "a Reach=1", "c Speed=1", "a skill21=1"}) {
        EXPECT_EQ(folder.run(std::string("level set l.zlm ") + bad).status, 2) << bad;
    }
    const std::string large = "a skill9=" + std::string(60, '9');
    for (const std::string& refused : {std::string("a Speed=11"), std::string("a lit=1 Speed=x"), large}) {
        EXPECT_EQ(folder.run("level set l.zlm " + refused).status, 1) << refused;
    }
    EXPECT_THAT(folder.run("level set l.zlm " + large).err, HasSubstr("skill9: This number is too large."));
    folder.write("d.kez", "action pick {\n// skill1: Drop 1\n// cntl: drop 1 2.0 3\n// skill2:\n}");
    folder.write("d.zlm", "level 1\nentity a\naction d.kez pick\nend");
    EXPECT_THAT(folder.run("level set d.zlm a Drop=5").err,
                HasSubstr("\"5\" is not among its choices (1, 2.0, 3); --force sets it all the same."));
    EXPECT_EQ(folder.run("level set d.zlm a Drop=5 --force").status, 0);
    const json changes = json::parse(folder.run("level set d.zlm a Drop=2 skill2=0 --json").out);
    EXPECT_EQ(changes,
              json::parse(R"([{"entity": "a", "value": "skill1 Drop", "before": "5", "after": "2"}])"));
    EXPECT_EQ(folder.run("level get d.zlm a Drop").out, "2\n");
    EXPECT_EQ(json::parse(folder.run("level set -n d.zlm a Drop=1 Drop=3 skill2=4 skill2=0 --json").out),
              json::parse(R"([{"entity": "a", "value": "skill1 Drop", "before": "2", "after": "3"}])"));
    EXPECT_EQ(folder.run("level set d.zlm a =1").status, 2);
    EXPECT_EQ(folder.run("level list l.zlm nobody").status, 2);
    EXPECT_EQ(folder.read("l.zlm"), expected);
    folder.write("old.zlm", kLevel);
    EXPECT_EQ(folder.run("level diff old.zlm l.zlm"),
              (ToolRun{1, "a\tskill1 Speed: 3.5 -> 4\na\tflag3 Lit: 0 -> 1\n"}));
    EXPECT_EQ(folder.run("level diff l.zlm l.zlm").status, 0);
    folder.write("odd.zlm",
                 "\xEF\xBB\xBFlevel 1\nentity a\naction no.kez x\nend\nentity a\naction s.kez x\nend");
    EXPECT_EQ(folder.run("level list odd.zlm").out,
              "a\tno.kez x\t(the script can't be read)\na\ts.kez x\t(the script has no such action)\n");
    EXPECT_THAT(folder.run("level set odd.zlm a skill1=1").err, HasSubstr("several entities \"a\""));
    folder.write("empty.zlm", "");
    EXPECT_THAT(folder.run("level list empty.zlm").err, HasSubstr("line 1: a level begins with \"level 1\""));
    folder.write("bad.zlm", "level 1\nentity a\nsize 3\nend");
    EXPECT_THAT(folder.run("level list bad.zlm").err, HasSubstr("line 3: unknown word \"size\""));
}

// A name with the sign between name and value, a label that reads like another value's number, and a value that is
// there.
TEST_F(Behavior, NamesAndValuesThatCouldBeTakenWrong) {
    folder.write("s.kez",
                 "action walk {\n// skill1: a=b 6\n// skill3: a 1\n// skill4: x=y 1\n// flag2: flag3\n}");
    const std::string level = "level 1\nentity e\n    action s.kez walk\n    skill 1 3.50\nend\n";
    const auto with = [&](const std::string& from, const std::string& to) {
        std::string text = level;
        return text.replace(text.find(from), from.size(), to);
    };
    const struct {
        const char* arguments;
        int status;
        std::string text, err;
    } rows[] = {
        {"a=b=3", 0, with("3.50", "3"), ""},
        {"A=B=3 a=2", 0, with("skill 1 3.50", "skill 1 3\n    skill    3 2"), ""},
        {"a=c=3", 1, level, "skill3 a: "},
        {"c=d=3", 2, level, "no value called \"c\""},
        {"X=y", 2, level, "the value is missing after the label \"X=y\""},
        {"x=z", 2, level, "no value called \"x\""},
        {"flag3=1", 0, with("end", "    flag     3\nend"),
         "warning: flag3 is taken as the number; the value labelled so is flag2"},
        {"flag2=1", 0, with("end", "    flag     2\nend"), ""},
        {"skill1=3.5", 0, level, ""},
        {"skill1=4 a=b=3.5", 0, level, ""},
        {"\"a=b= 5\"", 1, level, "No blank may stand"},
    };
    for (const auto& row : rows) {
        folder.write("n.zlm", level);
        const ToolRun run = folder.run(std::string("level set n.zlm e ") + row.arguments);
        EXPECT_EQ(run.status, row.status) << row.arguments << "\n" << run;
        EXPECT_EQ(folder.read("n.zlm"), row.text) << row.arguments;
        EXPECT_THAT(run.err, HasSubstr(row.err)) << row.arguments;
        EXPECT_EQ(run.err.empty(), row.err.empty()) << run.err;
    }
}

TEST_F(Behavior, NamesValuesInTheScriptsCharacterSet) {
    for (const char* script : {"action walk {\n// skill1: GR\xC3\x9CN\xCE\xA9 2\n}",
                               "action walk {\n// skill1: GR\xDCN\xD9 2\n}"}) {
        folder.write("s.kez", script);
        const bool isUtf8 = std::string(script).find("\xCE\xA9") != std::string::npos;
        const std::string name = isUtf8 ? "gr\xC3\xBCn\xCF\x89" : "gr\xC3\xBCn\xC3\xB9";
        EXPECT_EQ(folder.run("level get l.zlm a " + name), (ToolRun{0, "3.5\n"}));
        EXPECT_EQ(folder.run("level set l.zlm a " + name + "=3.5"), (ToolRun{0, ""}));
        const json rows = json::parse(folder.run("behavior list s.kez --json").out)[0]["rows"];
        EXPECT_EQ(rows[0]["label"], isUtf8 ? "GR\xC3\x9CN\xCE\xA9" : "GR\xC3\x9CN\xC3\x99");
    }
}

}  // namespace
