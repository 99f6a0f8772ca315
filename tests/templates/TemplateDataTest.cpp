// The catalogue's queries, and that none of them takes quadratic time.
#include "templates/TemplateData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>

namespace {

using List = CTemplateData::StringList;

CScriptElm script(const char* name, const char* filename, const char* className, const char* type,
                  const char* directory = "code") {
    CScriptElm elm;
    elm.m_name = name;
    elm.m_filename = filename;
    elm.m_class = className;
    elm.m_type = type;
    elm.m_directory = directory;
    elm.m_desc = std::string("About ") + name;
    elm.m_vers = "1";
    elm.m_date = "260101";
    return elm;
}

CTemplateData sample() {
    CTemplateData data;
    data.AddScript(script("Chase", "chase.kez", "Camera", "USER"));
    data.AddScript(script("Orbit", "orbit.kez", "camera", "USER"));
    data.AddScript(script("Gun", "gun.kez", "Weapon", "USER", "nowhere"));
    data.AddScript(script("Maths", "Math.kez", "Library", "INTERNAL"));
    CScriptElm twin = script("Chase", "chase.kez", "Weapon", "INTERNAL");
    twin.m_desc = "the second";
    data.AddScript(twin);
    CScriptElm doors = script("Doors", "doors.kez", "", "user");
    doors.m_sections.resize(2);
    doors.m_sections[0].m_actions = {{"door", "doors.kez", {}, "opens"}, {"gate", "doors.kez", {}, "slides"}};
    doors.m_sections[1].m_actions = {{"door", "doors.kez", {}, "again"}};
    data.AddScript(doors);
    return data;
}

}  // namespace

TEST(TemplateData, ListQueries) {
    const CTemplateData data = sample();
    using Query = std::function<bool(List&)>;
    struct Row {
        const char* what;
        Query query;
        List expected;
    };
    const Row rows[] = {
        {"classes",
         [&](List& l) { return data.GetClassList(l); },
         {"<ALL>", "Camera", "Weapon", "Library", ""}},
        {"classes of USER",
         [&](List& l) { return data.GetClassListOfType(l, "USER"); },
         {"<ALL>", "Camera", "camera", "Weapon"}},
        {"classes of a type in the wrong case",
         [&](List& l) { return data.GetClassListOfType(l, "User"); },
         {"<ALL>"}},
        {"all",
         [&](List& l) { return data.GetScriptList(l); },
         {"Chase", "Orbit", "Gun", "Maths", "Chase", "Doors"}},
        {"<ALL>",
         [&](List& l) { return data.GetScriptList(l, "<ALL>"); },
         {"Chase", "Orbit", "Gun", "Maths", "Chase", "Doors"}},
        {"<all>",
         [&](List& l) { return data.GetScriptList(l, "<all>"); },
         {"Chase", "Orbit", "Gun", "Maths", "Chase", "Doors"}},
        {"a class", [&](List& l) { return data.GetScriptList(l, "Weapon"); }, {"Gun", "Chase"}},
        {"a class, case regarded", [&](List& l) { return data.GetScriptList(l, "camera"); }, {"Orbit"}},
        {"no class", [&](List& l) { return data.GetScriptList(l, "x"); }, {}},
        {"a type", [&](List& l) { return data.GetScriptListOfType(l, "INTERNAL"); }, {"Maths", "Chase"}},
        {"type and class", [&](List& l) { return data.GetScriptListOfType(l, "USER", "Weapon"); }, {"Gun"}},
        {"type and all classes",
         [&](List& l) { return data.GetScriptListOfType(l, "INTERNAL", "<All>"); },
         {"Maths", "Chase"}},
        {"actions", [&](List& l) { return data.GetScriptActionNames(l, "Doors"); }, {"door", "gate", "door"}},
        {"actions of nothing", [&](List& l) { return data.GetScriptActionNames(l, "doors"); }, {}},
    };
    for (const Row& row : rows) {
        List list = {"left over"};
        EXPECT_TRUE(row.query(list)) << row.what;
        EXPECT_EQ(list, row.expected) << row.what;
    }
}

TEST(TemplateData, ValueQueriesTakeTheFirstMatch) {
    const CTemplateData data = sample();
    std::string value;
    EXPECT_TRUE(data.GetScriptDesc(value, "Chase"));
    EXPECT_EQ(value, "About Chase");
    EXPECT_TRUE(data.GetScriptActionDesc(value, "Doors", "door"));
    EXPECT_EQ(value, "opens");
    EXPECT_TRUE(data.GetScriptVers(value, "Gun"));
    EXPECT_EQ(value, "1");
    EXPECT_TRUE(data.GetScriptDate(value, "Gun"));
    EXPECT_EQ(value, "260101");
    EXPECT_TRUE(data.GetNameFromFilename(value, "Math.kez"));
    EXPECT_EQ(value, "Maths");
    CScriptElm elm;
    EXPECT_TRUE(data.GetScriptElmFromName(elm, "Chase"));
    EXPECT_EQ(elm.m_class, "Camera");
    EXPECT_TRUE(data.GetScriptElmFromFilename(elm, "orbit.kez"));
    EXPECT_EQ(elm.m_name, "Orbit");
    std::vector<CScriptElm> array(9);
    EXPECT_TRUE(data.GetScriptArrayOfType(array, "INTERNAL"));
    ASSERT_EQ(array.size(), 2U);
    EXPECT_EQ(array[1].m_desc, "the second");

    value = "untouched";
    EXPECT_FALSE(data.GetScriptDesc(value, "chase"));
    EXPECT_FALSE(data.GetScriptVers(value, ""));
    EXPECT_FALSE(data.GetScriptDate(value, "x"));
    EXPECT_FALSE(data.GetNameFromFilename(value, "math.kez"));
    EXPECT_FALSE(data.GetScriptActionDesc(value, "Doors", "x"));
    EXPECT_FALSE(data.GetScriptActionDesc(value, "x", "door"));
    EXPECT_EQ(value, "untouched");
    EXPECT_FALSE(data.GetScriptElmFromName(elm, "x"));
    EXPECT_EQ(elm.m_name, "Orbit");
    EXPECT_TRUE(data.QTemplateScript("MATH.KEZ"));
    EXPECT_FALSE(data.QTemplateScript("math"));
}

TEST(TemplateData, OfFileNamesThatDifferInCaseEachFindsItsFirst) {
    CTemplateData data;
    data.AddScript(script("Lower", "gun.kez", "", ""));
    data.AddScript(script("Upper", "GUN.KEZ", "", ""));
    data.AddScript(script("Second lower", "gun.kez", "", ""));
    data.AddScript(script("Second upper", "GUN.KEZ", "", ""));
    std::string name;
    EXPECT_TRUE(data.GetNameFromFilename(name, "gun.kez"));
    EXPECT_EQ(name, "Lower");
    EXPECT_TRUE(data.GetNameFromFilename(name, "GUN.KEZ"));
    EXPECT_EQ(name, "Upper");
    EXPECT_FALSE(data.GetNameFromFilename(name, "Gun.kez"));
    EXPECT_EQ(data.findByFilenameNoCase("Gun.kez")->m_name, "Lower");
}

TEST(TemplateData, FilenameIsJoinedWithoutNormalisation) {
    struct Row {
        const char *base, *directory, *filename, *path;
    };
    for (const Row& row :
         {Row{"C:\\game\\", ".\\templates", "script.kez", "C:\\game\\\\templates\\script.kez"},
          Row{"C:\\game\\", "templates", "..\\x.kez", "C:\\game\\templates\\\\x.kez"},
          Row{"", "...", "...", "\\"}}) {
        CTemplateData data;
        data.SetBaseDirectory(row.base);
        data.AddDirectory("code", row.directory);
        data.AddDirectory("code", "second");
        data.AddScript(script("S", row.filename, "", ""));
        std::string path;
        EXPECT_TRUE(data.GetScriptFilename(path, "S", true));
        EXPECT_EQ(path, row.path);
        EXPECT_TRUE(data.GetScriptFilename(path, "S", false));
        EXPECT_EQ(path, row.filename);
    }
    const CTemplateData data = sample();
    std::string path;
    EXPECT_FALSE(data.GetScriptFilename(path, "Gun", true)) << "its directory is not in the catalogue";
    EXPECT_FALSE(data.GetScriptFilename(path, "x", false));
}

TEST(TemplateData, EmptyKeepsTheBaseDirectoryAlone) {
    CTemplateData data = sample();
    data.SetName("n");
    data.SetBaseDirectory("C:\\b\\");
    data.AddDirectory("code", "d");
    EXPECT_FALSE(data.IsEmpty());
    data.Empty();
    EXPECT_TRUE(data.IsEmpty());
    EXPECT_EQ(data.GetName(), "");
    EXPECT_EQ(data.GetBaseDirectory(), "C:\\b\\");
    EXPECT_EQ(data.findDirectory("code"), nullptr);
    EXPECT_FALSE(data.findByName("Chase"));
    EXPECT_FALSE(data.QTemplateScript("gun.kez"));
    data.AddScript(script("New", "new.kez", "", ""));
    ASSERT_TRUE(data.findByName("New"));
}

TEST(TemplateData, CurrentDateHasTwoDigitsEach) {
    const std::string date = CTemplateData::GetCurDate();
    ASSERT_EQ(date.size(), 6U);
    EXPECT_TRUE(std::all_of(date.begin(), date.end(), [](char c) { return c >= '0' && c <= '9'; }));
    const std::time_t now = std::time(nullptr);
    EXPECT_EQ(std::stoi(date.substr(0, 2)), std::localtime(&now)->tm_year % 100);
}

TEST(TemplateData, AHundredThousandScriptsAnswerAtOnce) {
    CTemplateData data;
    constexpr int kCount = 100000;
    for (int i = 0; i < kCount; ++i) {
        const std::string number = std::to_string(i);
        data.AddScript(script(("Script " + number).c_str(), ("file" + number + ".kez").c_str(),
                              ("Class " + number).c_str(), "USER"));
    }
    // A search through all records for each of these would take minutes.
    std::string value;
    List list;
    for (int i = 0; i < kCount; ++i) {
        const std::string number = std::to_string(i);
        ASSERT_TRUE(data.GetNameFromFilename(value, "file" + number + ".kez"));
        ASSERT_EQ(value, "Script " + number);
        ASSERT_TRUE(data.QTemplateScript("FILE" + number + ".KEZ"));
        ASSERT_TRUE(data.GetScriptFilename(value, "Script " + number, false));
        data.GetScriptList(list, "Class " + number);
        ASSERT_EQ(list.size(), 1U);
    }
    data.GetClassList(list);
    EXPECT_EQ(list.size(), kCount + 1U);
}
