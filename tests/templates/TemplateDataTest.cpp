// The catalogue's queries, and that none of them takes quadratic time.
#include "templates/TemplateData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <utility>

#include "tests/templates/Scripts.h"

namespace {

using List = CTemplateData::StringList;
using zoka::test::script;

CTemplateData sample() {
    CTemplateData data;
    CScriptElm chase = script("Chase", "chase.kez", "Camera");
    chase.m_desc = "the first";
    data.AddScript(chase);
    data.AddScript(script("Orbit", "orbit.kez", "camera", "USER"));
    CScriptElm gun = script("Gun", "gun.kez", "Weapon");
    gun.m_directory = "nowhere";
    gun.m_vers = "1";
    gun.m_date = "260101";
    data.AddScript(gun);
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
    List list = {"left over"};
    const auto got = [&list](bool answered) {
        EXPECT_TRUE(answered);
        return std::exchange(list, {"left over"});
    };
    const List all = {"Chase", "Orbit", "Gun", "Maths", "Chase", "Doors"};
    EXPECT_EQ(got(data.GetClassList(list)), (List{"<ALL>", "Camera", "Weapon", "Library", ""}));
    EXPECT_EQ(got(data.GetClassListOfType(list, "USER")), (List{"<ALL>", "Camera", "camera", "Weapon"}));
    EXPECT_EQ(got(data.GetClassListOfType(list, "User")), List{"<ALL>"}) << "case regarded";
    CTemplateData odd;
    odd.AddScript(script("A", "a.kez", "<all>", "USER"));
    odd.AddScript(script("B", "b.kez", "<ALL>", "USER"));
    EXPECT_EQ(got(odd.GetClassList(list)), List{"<ALL>"}) << "it is in the list already";
    EXPECT_EQ(got(odd.GetClassListOfType(list, "USER")), (List{"<ALL>", "<all>"}));
    EXPECT_EQ(got(data.GetScriptList(list)), all);
    EXPECT_EQ(got(data.GetScriptList(list, "<ALL>")), all);
    EXPECT_EQ(got(data.GetScriptList(list, "<all>")), all);
    EXPECT_EQ(got(data.GetScriptList(list, "Weapon")), (List{"Gun", "Chase"}));
    EXPECT_EQ(got(data.GetScriptList(list, "camera")), List{"Orbit"}) << "case regarded";
    EXPECT_EQ(got(data.GetScriptList(list, "x")), List{});
    EXPECT_EQ(got(data.GetScriptListOfType(list, "INTERNAL")), (List{"Maths", "Chase"}));
    EXPECT_EQ(got(data.GetScriptListOfType(list, "USER", "Weapon")), List{"Gun"});
    EXPECT_EQ(got(data.GetScriptListOfType(list, "INTERNAL", "<All>")), (List{"Maths", "Chase"}));
    EXPECT_EQ(got(data.GetScriptActionNames(list, "Doors")), (List{"door", "gate", "door"}));
    EXPECT_EQ(got(data.GetScriptActionNames(list, "doors")), List{});
}

TEST(TemplateData, ValueQueriesTakeTheFirstMatch) {
    const CTemplateData data = sample();
    std::string value = "untouched";
    const auto got = [&value](bool found) {
        return (found ? "" : "no: ") + std::exchange(value, "untouched");
    };
    EXPECT_EQ(got(data.GetScriptDesc(value, "Chase")), "the first");
    EXPECT_EQ(got(data.GetScriptActionDesc(value, "Doors", "door")), "opens");
    EXPECT_EQ(got(data.GetScriptVers(value, "Gun")), "1");
    EXPECT_EQ(got(data.GetScriptDate(value, "Gun")), "260101");
    EXPECT_EQ(got(data.GetNameFromFilename(value, "Math.kez")), "Maths");
    for (const bool found :
         {data.GetScriptDesc(value, "chase"), data.GetScriptVers(value, ""), data.GetScriptDate(value, "x"),
          data.GetNameFromFilename(value, "math.kez"), data.GetScriptActionDesc(value, "Doors", "x"),
          data.GetScriptActionDesc(value, "x", "door")}) {
        EXPECT_EQ(got(found), "no: untouched");
    }
    CScriptElm elm;
    EXPECT_TRUE(data.GetScriptElmFromName(elm, "Chase"));
    EXPECT_EQ(elm.m_class, "Camera");
    EXPECT_TRUE(data.GetScriptElmFromFilename(elm, "orbit.kez"));
    EXPECT_EQ(elm.m_name, "Orbit");
    std::vector<CScriptElm> array(9);
    EXPECT_TRUE(data.GetScriptArrayOfType(array, "INTERNAL"));
    ASSERT_EQ(array.size(), 2U);
    EXPECT_EQ(array[1].m_desc, "the second");

    EXPECT_FALSE(data.GetScriptElmFromName(elm, "x"));
    EXPECT_EQ(elm.m_name, "Orbit");
    EXPECT_TRUE(data.QTemplateScript("MATH.KEZ"));
    EXPECT_FALSE(data.QTemplateScript("math"));
}

TEST(TemplateData, OfFileNamesThatDifferInCaseEachFindsItsFirst) {
    CTemplateData data;
    for (const auto& [name, file] : {std::pair("Lower", "gun.kez"), std::pair("Upper", "GUN.KEZ"),
                                     std::pair("Later", "gun.kez"), std::pair("Last", "GUN.KEZ")}) {
        data.AddScript(script(name, file));
    }
    EXPECT_EQ(data.findByFilename("gun.kez")->m_name, "Lower");
    EXPECT_EQ(data.findByFilename("GUN.KEZ")->m_name, "Upper");
    EXPECT_FALSE(data.findByFilename("Gun.kez"));
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
        CScriptElm elm = script("S", row.filename);
        elm.m_directory = "code";
        data.AddScript(elm);
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
    data.AddScript(script("New", "new.kez"));
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
        data.AddScript(script("Script " + number, "file" + number + ".kez", "Class " + number));
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
