// The comment header of a script: line classes, values, blocks.
#include <gtest/gtest.h>

#include "templates/HeaderLine.h"
#include "templates/ScriptHeader.h"
#include "tests/templates/Scripts.h"

using namespace zoka;
using test::fields;
using test::Names;

namespace {

const std::string kAllMissing =
    "***No ID\n***No Prefix\n***No Name\n***No Vers\n***No EngineReq\n***No Date\n***No Desc\n***No Class\n"
    "***No Type\n";

const char* const kFullHeader =
    "//-----\r\n"
    "// idcode: CAM01 rest\r\n"
    "// prefix: cam_ rest\r\n"
    "//TITLE : Chase camera, far\r\n"
    "// type: USER, rest\r\n"
    "// class: Camera  \r\n"
    "// ver: 1.2 beta\r\n"
    "// date: 1 May 26\r\n"
    "// enginereq: 6.1 pro\r\n"
    "// desc: Follows the player.\r\n"
    "/// not read here\r\n"
    "// help: Keep: it smooth.\r\n"
    "// needs: a.kez, b.kez  c.kez,\r\n"
    "// note: First.\r\n"
    "code in between\r\n"
    "// note: Second.\r\n"
    "// image: x.bmp\r\n"
    "// ENDHEADER of this\r\n"
    "// ver: 99\r\n";

CScriptElm parse(const std::string& text, std::string* errors = nullptr) {
    std::string report;
    CScriptElm script = parseScriptHeader(text, "x.kez", report);
    if (errors) {
        *errors = report;
    }
    return script;
}

}  // namespace

TEST(HeaderLine, IsClassifiedByItsKeyword) {
    // By their codes; 5 is none.
    const char* const keywords[] = {"action", "Enable", "ENTRY",  "function",  "section", nullptr,  "class",
                                    "data",   "date",   "desc",   "EngineReq", "help",    "idcode", "image",
                                    "needs",  "note",   "prefix", "title",     "type",    "ver"};
    std::vector<std::pair<std::string, int>> rows = {{"/// ver: 2", 21}};
    for (int code = 0; code < 20; ++code) {
        if (keywords[code]) {
            rows.emplace_back("//\t" + std::string(keywords[code]) + " : a: b", code);
        }
    }
    for (const char* line : {"// ver:", "//ver: x"}) {
        rows.emplace_back(line, 19);
    }
    for (const char* line :
         {"//ENDHEADER", "//  endheader and more", "// EndHeader: x", "// endheader x: y"}) {
        rows.emplace_back(line, 22);
    }
    for (const char* line :
         {"// endheaders", "// version: 2", "// ver", " // ver: 2", "ver: 2", "//", "/", ""}) {
        rows.emplace_back(line, -1);
    }
    for (const auto& [line, expected] : rows) {
        const HeaderCode code = classifyHeaderLine(line);
        EXPECT_EQ(static_cast<int>(code), expected) << line;
        const HeaderGroup group = expected < 0 || expected > 19 ? HeaderGroup::None
                                  : expected < 5                ? HeaderGroup::Block
                                                                : HeaderGroup::Field;
        EXPECT_EQ(groupOf(code), group) << line;
    }
}

TEST(HeaderLine, HasAValueAndItsTokens) {
    EXPECT_EQ(headerValue("// a: b: c \r"), "b: c");
    EXPECT_EQ(headerValue("/// a: b"), "a: b");
    EXPECT_EQ(headerValue("// a:"), "");
    EXPECT_EQ(headerTokens(" a, b,,c\td ").size(), 3U) << "a tab is no separator";
    EXPECT_EQ(headerTokens(" ,, ").size(), 0U);
    EXPECT_EQ(firstHeaderToken(",x y"), "x");
    EXPECT_EQ(firstHeaderToken(""), "");
}

TEST(ScriptHeader, FillsTheFieldsOfARecord) {
    // A byte order mark belongs to no line.
    const std::string first = std::string(kFullHeader).substr(std::string_view("//-----\r\n").size());
    ASSERT_TRUE(first.starts_with("// idcode"));
    for (const std::string& text : {std::string(kFullHeader), "\xEF\xBB\xBF" + first}) {
        std::string errors;
        const CScriptElm script = parse(text, &errors);
        EXPECT_EQ(errors, "");
        EXPECT_EQ(fields(script),
                  (Names{"CAM01", "cam_", "code", "x.kez", "Chase camera, far",
                         "Follows the player.\nKeep: it smooth.\n", "First.Second.", "Camera", "USER", "1.2",
                         "1 May 26", "6.1", "pro", "a.kez", "b.kez", "c.kez"}));
    }
}

TEST(ScriptHeader, WithoutCommentsListsWhatIsMissing) {
    for (const char* text : {"", "\n\n", "var x = 1;\n", "// nothing here\n", "/// ver: 1"}) {
        std::string errors;
        const CScriptElm script = parse(text, &errors);
        EXPECT_EQ(errors, kAllMissing) << text;
        EXPECT_EQ(script.m_directory, "code");
        EXPECT_EQ(script.m_filename, "x.kez");
    }
    std::string report;
    EXPECT_FALSE(CScriptElm().CheckComplete(report));
    EXPECT_EQ(
        report,
        "***No ID\n***No Prefix\n***No Directory\n***No Filename\n***No Name\n***No Vers\n***No EngineReq\n"
        "***No Date\n***No Desc\n***No Class\n***No Type\n");
}

TEST(ScriptHeader, EngineRequirementIsTakenApart) {
    struct Row {
        const char *value, *vers, *edition;
    };
    for (const Row& row :
         {Row{"6.1 STD", "6.1", "STD"}, Row{"Comm, 6", "6", "Comm"}, Row{"extra", "", "extra"},
          Row{"6.1 6.2 PRO STD", "6.1 6.2 STD", "PRO"}, Row{"6.1, GOLD", "6.1 GOLD", ""}, Row{"", "", ""}}) {
        CEngineReq req;
        req.SetFromText(row.value);
        EXPECT_EQ(req.vers, row.vers) << row.value;
        EXPECT_EQ(req.edition, row.edition) << row.value;
    }
}

TEST(ScriptHeader, ReadsSectionsAndActions) {
    std::string errors;
    const CScriptElm script = parse(
        "// section: Picture\n"
        "// image: view.bmp\n"
        "// text: How it looks.\n"
        "/// On every screen.\n"
        "// entry: Width\n"
        "// help: belongs to the entry\n"
        "// action: hidden by the comment run\n"
        "\n"
        "// entry: Lone\n"
        "// action: nor this\n"
        "var a = 1;\n"
        "// action: cutscene_zone\n"
        "// title: Cutscene zone\n"
        "// desc: Plays the scene.\n"
        "/// Once.\n"
        "// skill1: Play_radius 3.0\n"
        "// cntl: slider 0 1\n"
        "// help: Metres.\n"
        "// flag1: Only_once 1\n"
        "\n"
        "ACTION  cutscene_zone, {\n"
        "// section: Second\n"
        "x\n"
        "// action: Title alone\n"
        "// data: other.kez\n"
        "// enginereq: 6 PRO\n"
        "action plain{\n",
        &errors);
    EXPECT_EQ(errors, kAllMissing);
    ASSERT_EQ(script.m_sections.size(), 2U);
    const CScriptSection& first = script.m_sections[0];
    EXPECT_EQ(first.m_name, "Picture");
    EXPECT_EQ(first.m_imgfile, "view.bmp");
    EXPECT_EQ(first.m_text, "How it looks. On every screen.");
    ASSERT_EQ(first.m_actions.size(), 1U);
    EXPECT_EQ(fields(first.m_actions[0]),
              (Names{"cutscene_zone", "x.kez", "", "",
                     "Cutscene zone\nPlays the scene. Once.\nskill1 Play radius: Metres.\nflag1 Only once"}));
    ASSERT_EQ(script.m_sections[1].m_actions.size(), 1U);
    EXPECT_EQ(fields(script.m_sections[1].m_actions[0]),
              (Names{"plain{", "other.kez", "6", "PRO", "Title alone"}));
}

TEST(ScriptHeader, AnUnfinishedActionIsReportedAndKept) {
    std::string errors;
    const CScriptElm script = parse("// action: lonely\n// desc: No definition.\nvar x;\n", &errors);
    EXPECT_TRUE(errors.starts_with("**Action not complete: lonely\ndesc: No definition.\n")) << errors;
    ASSERT_EQ(script.m_sections.size(), 1U);
    ASSERT_EQ(script.m_sections[0].m_actions.size(), 1U);
    EXPECT_EQ(fields(script.m_sections[0].m_actions[0]),
              (Names{"lonely", "x.kez", "", "", "No definition."}));
}

TEST(ScriptHeader, CutAnywhereStillParses) {
    const std::string text =
        std::string(kFullHeader) +
        "// section: A\n// text: b\n\n// action: c\n// help: d\naction c\n// function: f\nx\n";
    for (size_t length = 0; length <= text.size(); ++length) {
        const CScriptElm script = parse(text.substr(0, length));
        EXPECT_EQ(script.m_filename, "x.kez");
        EXPECT_LE(script.m_needs.size(), 3U);
    }
}
