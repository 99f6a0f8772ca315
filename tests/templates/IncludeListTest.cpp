// The include block: what is recognised, where lines go in, and that nothing else changes.
#include "templates/IncludeList.h"

#include <gtest/gtest.h>

#include "tests/templates/Scripts.h"

using namespace zoka;
using test::Names;

namespace {

const std::string kMark = "\xEF\xBB\xBF";

// A literal with zeros in it.
template <size_t N>
std::string bytes(const char (&literal)[N]) {
    return std::string(literal, N - 1);
}

CLex lexerOf(const std::string& text) {
    return CLex(text.data(), static_cast<long>(text.size()));
}

// The text with `names` included, as if no script had needs.
std::string inserted(const std::string& text, const Names& names) {
    return *applyInsertion(text, planInsertion(text, "C:\\p\\main.kez", names, {},
                                               [](const std::string&) { return ScriptFacts(); }));
}

}  // namespace

TEST(IncludeLine, IsRecognised) {
    struct Row {
        const char *line, *name;  // null: not an include line
    };
    for (const Row& row :
         {Row{"include <a.kez>;", "a.kez"}, Row{"  INCLUDE\t<A.kez>\r", "A.kez"},
          Row{"includes <a.kez>; // why", "a.kez"}, Row{"included <a>", "a"}, Row{"include <<a>>;", "a"},
          Row{"include ; <a>;", "a"}, Row{"include <>;", ""}, Row{"include <a.kez>x;", nullptr},
          Row{"include<a.kez>;", nullptr}, Row{"include < a.kez >;", nullptr},
          Row{"include \"a.kez\";", nullptr}, Row{"include", nullptr}, Row{"include\r<a>", nullptr},
          Row{"includ <a>", nullptr}, Row{"//include <a>;", nullptr}, Row{"// include <a>;", nullptr},
          Row{"", nullptr}}) {
        const auto name = includedName(row.line);
        EXPECT_EQ(name.has_value(), row.name != nullptr) << row.line;
        if (name && row.name) {
            EXPECT_EQ(*name, row.name) << row.line;
        }
    }
    EXPECT_EQ(includedName(bytes("include\0<a>")), std::nullopt);
    EXPECT_EQ(includeLine("A b"), "include <A b>;\r\n");
}

TEST(IncludeBlock, NamesAndInsertionPoint) {
    struct Row {
        std::string text;
        Names names;
        long position;
    };
    const std::string a = "include <a>;\r\n";  // 14 bytes
    for (const Row& row :
         {Row{"", {}, 0}, Row{"x", {}, 0}, Row{"// c\r\n// d\r\nvar x;\r\n", {}, 12},
          Row{"// c\r\n\r\n// d\r\n", {}, 6}, Row{"// c\n// d\n", {}, 10}, Row{"// c\n  // d", {}, 0},
          Row{a + "x", {"a"}, 14}, Row{a, {"a"}, 14}, Row{"include <a>;", {"a"}, 0},
          Row{a + "INCLUDE <B>;", {"a", "B"}, 14}, Row{"// c\r\nvar x;\r\n" + a + "\r\n" + a, {"a"}, 28},
          Row{a + "// c\r\n" + "include <b>;\r\n", {"a"}, 14}, Row{a + "short\n", {"a"}, 14},
          Row{kMark + a + "x", {"a"}, 17}, Row{kMark + "// c\r\nx", {}, 9}, Row{kMark + "// c", {}, 3}}) {
        CLex lexer = lexerOf(row.text);
        Names names;
        EXPECT_EQ(ScanIncludeBlock(lexer, names), row.position) << row.text;
        EXPECT_EQ(names, row.names) << row.text;
        Names pending = {"A", "new", "b"};
        EXPECT_EQ(FindInsertionPoint(lexer, pending), row.position);
        for (const std::string& name : row.names) {
            for (const std::string& left : pending) {
                EXPECT_NE(lowered(left), lowered(name)) << row.text;
            }
        }
        EXPECT_NE(std::find(pending.begin(), pending.end(), "new"), pending.end());
    }
    CLex nothing(nullptr, 0);
    Names names;
    EXPECT_EQ(ScanIncludeBlock(nothing, names), 0);
}

TEST(IncludeBlock, InsertionKeepsEveryOtherByte) {
    const std::string longLine(5000, 'x');
    const std::string texts[] = {
        "x",
        "// c\r\n// d\r\nvar x;",
        "// c\r\n\r\ninclude <a.kez>;\r\n\r\nfunction main()\r\n{\r\n}\r\n",
        "include <a.kez>;\ninclude <b.kez>;",
        longLine + "\ninclude <a.kez>;\r\n" + longLine,
        "include <a.kez>;" + longLine,
        bytes("var \0 x;\r\n\0\r\ninclude <a.kez>;\r\ny"),
        "\xEF\xBB\xBF// \xE4\r\n\r\n",
    };
    for (const std::string& text : texts) {
        const std::string result = inserted(text, {"n1.kez", "C:\\t\\n2.kez", "N1.KEZ", "MAIN.kez"});
        const std::string lines = "include <n1.kez>;\r\ninclude <n2.kez>;\r\n";
        const size_t at = result.find(lines);
        ASSERT_NE(at, std::string::npos) << text;
        EXPECT_EQ(result.substr(0, at) + result.substr(at + lines.size()), text);
        EXPECT_TRUE(at == 0 || result[at - 1] == '\n') << text;
        EXPECT_EQ(inserted(result, {"N2.kez", "n1.kez"}), result) << "nothing comes twice";
    }
}

TEST(IncludeBlock, RemovesTheFirstMatchingLineOfEachName) {
    struct Row {
        std::string text;
        std::vector<std::string> names;
        std::optional<std::string> rest;
    };
    for (const Row& row :
         {Row{"include <a>;\r\ninclude <b>;\r\ninclude <a>;\r\n", {"A"}, "include <b>;\r\ninclude <a>;\r\n"},
          Row{"include <a>;\n\nx\n  include <b>; // c\ny", {"b"}, "include <a>;\n\nx\ny"},
          Row{"x\ninclude <a>;", {"a"}, "x\n"}, Row{"include <a>;", {"a"}, ""},
          Row{kMark + "include <a>;\nx", {"a"}, kMark + "x"}, Row{"// include <a>;\r\n", {"a"}, std::nullopt},
          Row{"include <ab>;\r\n", {"a"}, std::nullopt},
          Row{bytes("a\0b\ninclude <a>;\r\n\0"), {"a"}, bytes("a\0b\n\0")},
          Row{"include <a>;\nx\ninclude <b>;\ninclude <A>;\ny", {"B", "a"}, "x\ninclude <A>;\ny"},
          Row{"include <a>;\nx\ninclude <b>;\ninclude <A>;\ny", {"a", "a"}, "x\ninclude <b>;\ny"},
          Row{"include <a>;\ninclude <b>;\n", {"b", "c", "a"}, std::nullopt}}) {
        EXPECT_EQ(withoutIncludes(row.text, row.names), row.rest) << row.text;
    }
    try {
        withoutIncludes("", {});
        FAIL();
    } catch (const EmptyScriptError& e) {
        EXPECT_EQ(e.code(), 3);
    }
}

TEST(IncludeBlock, AnInsertedNameIsFoundAgain) {
    for (const char* name : {"a.kez", "A_b-c(1).kez", "caf\xE9.kez", "x", ".kez", "a,b.kez", "console.kez",
                             "com.kez", "com10"}) {
        ASSERT_TRUE(isIncludableName(name)) << name;
        EXPECT_EQ(includedName(includeLine(name)), name);
    }
    const std::string tooLong(256, 'a');
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("a b.kez"),
          std::string("..\\a.kez"), std::string("a/../b.kez"), std::string("C:a.kez"), std::string("a;b"),
          std::string("<a"), std::string("a>"), std::string("a\tb"), bytes("a\0b"), std::string("*.kez"),
          std::string("CON"), std::string("nul .kez"), std::string("lpt1.a.kez"), tooLong}) {
        EXPECT_FALSE(isIncludableName(name)) << name;
    }
}

TEST(IsInFolder, ComparesTheFolderPartAlone) {
    struct Row {
        const char *folder, *path;
        bool inside;
    };
    for (const Row& row :
         {Row{"C:\\game", "c:\\GAME\\a.kez", true}, Row{"C:\\game", "C:\\a.kez", true},
          Row{"C:\\game", "C:\\game\\sub\\a.kez", false}, Row{"C:\\game", "a.kez", false},
          Row{"C:\\game\\", "C:\\game\\a.kez", true}, Row{"C:\\game", "C:\\gam\\a.kez", true},
          Row{"C:\\game", "D:\\game\\a.kez", false}, Row{"", "\\a", true}, Row{"", "", false}}) {
        EXPECT_EQ(IsInFolder(row.folder, row.path), row.inside) << row.folder << " " << row.path;
    }
}

TEST(Needs, AreCollectedDeepestFirst) {
    // What each script needs.
    const std::unordered_map<std::string, Names> needs = {
        {"a.kez", {"b.kez", "c.kez"}}, {"b.kez", {"d.kez"}},       {"c.kez", {"D.KEZ", "A.kez"}},
        {"d.kez", {"d.kez"}},          {"bad.kez", {"..\\x.kez"}}, {"m.kez", {"main.kez", "b.kez"}},
        {"old.kez", {"new.kez"}},      {"o.kez", {"old.kez"}},
    };
    std::unordered_map<std::string, int> reads;
    const auto read = [&](const std::string& path) {
        ++reads[path];
        ScriptFacts facts;
        const auto found = needs.find(lowered(path));
        if (found != needs.end()) {
            facts.needs = found->second;
        }
        return facts;
    };
    const auto locate = [](const std::string& name) { return name; };
    struct Row {
        Names scripts, names;
        size_t refused;
    };
    for (const Row& row :
         {Row{{"a.kez"}, {"d.kez", "b.kez", "c.kez", "a.kez"}, 0},
          Row{{"d.kez", "b.kez"}, {"d.kez", "b.kez"}, 0}, Row{{"m.kez"}, {"d.kez", "b.kez", "m.kez"}, 0},
          Row{{"main.kez"}, {}, 0}, Row{{"o.kez"}, {"o.kez"}, 0}, Row{{"bad.kez"}, {"bad.kez"}, 1},
          Row{{"a b.kez"}, {}, 1}}) {
        reads.clear();
        const NeededScripts result = collectNeeds(row.scripts, "MAIN.kez", {"old.kez"}, locate, read);
        EXPECT_EQ(result.names, row.names) << row.scripts[0];
        EXPECT_EQ(result.refused.size(), row.refused) << row.scripts[0];
        for (const auto& [path, count] : reads) {
            EXPECT_EQ(count, 1) << path;
        }
    }
}

TEST(Needs, AChainOfAnyDepthIsFine) {
    constexpr int kDepth = 200000;
    const auto read = [](const std::string& path) {
        ScriptFacts facts;
        const int number = std::stoi(path);
        if (number < kDepth) {
            facts.needs = {std::to_string(number + 1)};
        }
        return facts;
    };
    const Names first = {"0"};
    const NeededScripts result = collectNeeds(
        first, "main.kez", {}, [](const std::string& name) { return name; }, read);
    ASSERT_EQ(result.names.size(), kDepth + 1U);
    EXPECT_EQ(result.names.front(), std::to_string(kDepth));
    EXPECT_EQ(result.names.back(), "0");
}

TEST(ScriptFacts, AreReadFromComments) {
    struct Row {
        std::string text;
        Names needs;
        const char *version, *date;
    };
    const Row rows[] = {
        {"", {}, "-1", "-1"},
        {"// needs: a.kez, b.kez\n//x NEEDS c;d\r\n", {"a.kez", "b.kez", "c", "d"}, "-1", "-1"},
        {"// need: a.kez\n// needsx: b\n needs: c\n", {}, "-1", "-1"},
        {"//needs: a.kez\n", {}, "-1", "-1"},
        {"// ver: 2\n", {}, "2", "-1"},
        {kMark + "// ver: 2\r\n// date: 260101", {}, "2", "260101"},
        {"  // VER: 1.2, beta\r\n// date: 260101\r", {}, "1.2", "260101"},
        {"// ver: 1\n// ver: 2\n// ver\n// ver:\n", {}, "2", "-1"},
        {"// data: 5\n// dats: 6\n// dates: 7\n", {}, "-1", "6"},
        {"// ver:12\n", {}, "2", "-1"},  // counted from the keyword, whatever stands between
        {"// ver:   3 4\n", {}, "3", "-1"},
        {"var x; // ver: 2\n", {}, "-1", "-1"},
        {"code\n// date: x", {}, "-1", "x"},
    };
    for (const Row& row : rows) {
        const ScriptFacts facts = parseScriptFacts(row.text);
        EXPECT_EQ(facts.needs, row.needs) << row.text;
        EXPECT_EQ(facts.version, row.version) << row.text;
        EXPECT_EQ(facts.date, row.date) << row.text;
    }
}
