// The comment header of a script: line classes, values, blocks.
#include <gtest/gtest.h>

#include "templates/HeaderLine.h"
#include "templates/ScriptHeader.h"

using namespace zoka;

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
    if (errors) *errors = report;
    return script;
}

}  // namespace

TEST(HeaderLine, IsClassifiedByItsKeyword) {
    struct Row {
        const char* line;
        int code;
        HeaderGroup group;
    };
    const Row rows[] = {
        {"// action: x", 0, HeaderGroup::Block},
        {"//Enable:", 1, HeaderGroup::Block},
        {"//\tENTRY\t: x", 2, HeaderGroup::Block},
        {"// function : a: b", 3, HeaderGroup::Block},
        {"// section:", 4, HeaderGroup::Block},
        {"// class: c", 6, HeaderGroup::Field},
        {"// data:", 7, HeaderGroup::Field},
        {"// date:", 8, HeaderGroup::Field},
        {"// desc:", 9, HeaderGroup::Field},
        {"// EngineReq: 6", 10, HeaderGroup::Field},
        {"// help:", 11, HeaderGroup::Field},
        {"// idcode:", 12, HeaderGroup::Field},
        {"// image:", 13, HeaderGroup::Field},
        {"// needs:", 14, HeaderGroup::Field},
        {"// note:", 15, HeaderGroup::Field},
        {"// prefix:", 16, HeaderGroup::Field},
        {"// title:", 17, HeaderGroup::Field},
        {"// type:", 18, HeaderGroup::Field},
        {"// ver:", 19, HeaderGroup::Field},
        {"/// ver: 2", 21, HeaderGroup::None},
        {"//ENDHEADER", 22, HeaderGroup::None},
        {"//  endheader and more", 22, HeaderGroup::None},
        {"// EndHeader: x", 22, HeaderGroup::None},
        {"// endheader x: y", 22, HeaderGroup::None},
        {"// endheaders", -1, HeaderGroup::None},
        {"// version: 2", -1, HeaderGroup::None},
        {"// ver", -1, HeaderGroup::None},
        {" // ver: 2", -1, HeaderGroup::None},
        {"ver: 2", -1, HeaderGroup::None},
        {"//", -1, HeaderGroup::None},
        {"/", -1, HeaderGroup::None},
        {"", -1, HeaderGroup::None},
    };
    for (const Row& row : rows) {
        const HeaderCode code = classifyHeaderLine(row.line);
        EXPECT_EQ(static_cast<int>(code), row.code) << row.line;
        EXPECT_EQ(groupOf(code), row.group) << row.line;
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
    std::string errors;
    const CScriptElm script = parse(kFullHeader, &errors);
    EXPECT_EQ(errors, "");
    EXPECT_EQ(script.m_id, "CAM01");
    EXPECT_EQ(script.m_prefix, "cam_");
    EXPECT_EQ(script.m_directory, "code");
    EXPECT_EQ(script.m_filename, "x.kez");
    EXPECT_EQ(script.m_name, "Chase camera, far");
    EXPECT_EQ(script.m_type, "USER");
    EXPECT_EQ(script.m_class, "Camera");
    EXPECT_EQ(script.m_vers, "1.2");
    EXPECT_EQ(script.m_date, "1 May 26");
    EXPECT_EQ(script.m_engreq.vers, "6.1");
    EXPECT_EQ(script.m_engreq.edition, "pro");
    EXPECT_EQ(script.m_desc, "Follows the player.\nKeep: it smooth.\n");
    EXPECT_EQ(script.m_note, "First.Second.");
    EXPECT_EQ(script.m_needs, (std::vector<std::string>{"a.kez", "b.kez", "c.kez"}));
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
          Row{"6.1 6.2 PRO STD", "6.1", "PRO"}, Row{"", "", ""}}) {
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
    EXPECT_EQ(first.m_actions[0].m_name, "cutscene_zone");
    EXPECT_EQ(first.m_actions[0].m_filename, "x.kez");
    EXPECT_EQ(first.m_actions[0].m_desc,
              "Cutscene zone\nPlays the scene. Once.\nskill1 Play radius: Metres.\nflag1 Only once");
    ASSERT_EQ(script.m_sections[1].m_actions.size(), 1U);
    const CScriptAction& second = script.m_sections[1].m_actions[0];
    EXPECT_EQ(second.m_name, "plain{");
    EXPECT_EQ(second.m_desc, "Title alone");
    EXPECT_EQ(second.m_filename, "other.kez");
    EXPECT_EQ(second.m_engreq.AsText(), "6 PRO");
}

TEST(ScriptHeader, AnUnfinishedActionIsReportedAndKept) {
    std::string errors;
    const CScriptElm script = parse("// action: lonely\n// desc: No definition.\nvar x;\n", &errors);
    EXPECT_TRUE(errors.starts_with("**Action not complete: lonely\ndesc: No definition.\n")) << errors;
    ASSERT_EQ(script.m_sections.size(), 1U);
    ASSERT_EQ(script.m_sections[0].m_actions.size(), 1U);
    EXPECT_EQ(script.m_sections[0].m_actions[0].m_name, "lonely");
    EXPECT_EQ(script.m_sections[0].m_actions[0].m_desc, "No definition.");
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
