// What loading a project takes, reports and logs.
#include <gmock/gmock.h>

#include "J8ProjectManager/DeleteLogged.h"
#include "tests/project/ProjectFiles.h"
#include "util/OsFiles.h"

using testing::HasSubstr;
using zoka::J8Section;
using zoka::J8Type;

namespace {

class LoadTest : public zoka::test::ProjectFiles {};

std::string logEntry(const std::string& word, const std::string& func, const std::string& text) {
    return "<" + word + " file=\"J8ProjectManager\\J8ProjectManager\" func=\"" + func + "\" >" + text + "</" +
           word + ">\n";
}
const std::string kLoad = "CJ8ProjectManager::LoadFromXML(const std::string&)";

}  // namespace

TEST_F(LoadTest, MissingFileAndMissingRoot) {
    const std::string none = folder.path("none.xml");
    ASSERT_TRUE(load(""));
    EXPECT_FALSE(manager.LoadFromXML(none, false));
    EXPECT_EQ(manager.m_report, "(LoadFromXML): XML MISSING!\r\n");
    EXPECT_EQ(manager.m_name + manager.projectFile() + manager.m_roots.project(), "") << "all is replaced";
    EXPECT_FALSE(manager.LoadFromXML(folder.path(), false)) << "a folder is no file";
    const std::string other = folder.write("other.xml", "<Behaviors/>");
    EXPECT_FALSE(manager.LoadFromXML(other, false));
    EXPECT_EQ(manager.m_report, "(LoadFromXML): MISSING Project!\r\n");
    EXPECT_THAT(log(), HasSubstr(logEntry("Error", kLoad + "XML MISSING!", none)));
    // What is kept has no file any more, so that no save empties the one that was loaded.
    for (const std::string& failing : {none, other}) {
        ASSERT_TRUE(load(""));
        EXPECT_FALSE(manager.LoadFromXML(failing, true));
        EXPECT_EQ(manager.m_name, "Game");
        EXPECT_EQ(manager.projectFile(), "");
        EXPECT_FALSE(manager.SaveProjectXML(zoka::StepReport()));
    }
    EXPECT_THAT(log(), HasSubstr(logEntry("Error", kLoad + "Project MISSING!", other)));
}

TEST_F(LoadTest, AttributesAndRoots) {
    const std::string path = folder.write("bare.xml", "<Project/>");
    ASSERT_TRUE(manager.LoadFromXML(path, false));
    EXPECT_EQ(manager.m_report,
              "(LoadFromXML): No Name!\r\n(LoadFromXML): No Date!\r\nPATHS MISSING!\r\n\r\n"
              "Warning: Display xml tag missing.\r\nWarning: UserInput xml tag missing.\r\n");
    EXPECT_EQ(log(), logEntry("Warning", kLoad + "No Name.", path) +
                         logEntry("Warning", kLoad + "No Vers.", path) +
                         logEntry("Warning", kLoad + "No Date.", path) +
                         logEntry("Warning", kLoad, "One or more paths are MISSING!"));

    ASSERT_TRUE(manager.LoadFromXML(
        folder.write("a.xml", "<Project name='A' date='' vers='8'><Paths proj_file='p'/></Project>"), false));
    EXPECT_THAT(manager.m_report, HasSubstr("J8 Path: MISSING!\r\nProj Path: p\\\r\n\r\n"));
    EXPECT_EQ(manager.projectFile(), folder.path("a.xml"));

    // What is filled is kept, what is empty is taken.
    ASSERT_TRUE(manager.LoadFromXML(
        folder.write("b.xml",
                     "<Project name='B' date='5' vers='9'><Paths proj_file='q/' j8_file='d'/>"
                     "</Project>"),
        true));
    EXPECT_EQ(manager.m_name + manager.m_date + manager.m_vers, "A58");
    EXPECT_EQ(manager.m_roots.project() + manager.m_roots.data(), "p\\d\\");
    EXPECT_THAT(manager.m_report, HasSubstr("J8 Path: d\\\r\n"));
    ASSERT_TRUE(manager.LoadFromXML(folder.path("b.xml"), false));
    EXPECT_EQ(manager.m_name + manager.m_roots.project(), "Bq/");
}

TEST_F(LoadTest, FileReferences) {
    std::filesystem::create_directories(folder.native("data"));
    setRoots(folder.path(), folder.path("data"));
    folder.write("mine.xml", "");
    std::ofstream(folder.native("data") / "shared.xml") << "";
    const std::string local = folder.path("mine.xml");
    ASSERT_TRUE(
        load("<Camera proj_file='none.xml'/><UI file='mine.xml'/>"
             "<AnimationPool proj_file='shared.xml' file='mine.xml'/>"
             "<WeaponDefPool proj_file='" +
             local + "'/><Display/><UserInput j8_file=''/>"));
    EXPECT_EQ(report(),
              "Invalid Path!UI File: mine.xml (proj)\r\nAnimation File: shared.xml (j8)\r\n"
              "Weapon Def File: " +
                  local + " (local)\r\nDisplay File: Invalid Path!\r\nUserInput File: Invalid Path!\r\n");
    EXPECT_EQ(log(), logEntry("Warning", kLoad, "Camera File: Invalid Path!") +
                         logEntry("Error", "CJ8ProjectManager GetFilenameFromXML()",
                                  "CJ8ProjectManager GetFilenameFromXML()"));
    EXPECT_EQ(manager.section(J8Section::UI).m_type, CJ8File::kProjFile);
    EXPECT_EQ(manager.section(J8Section::UserInput).kindToWrite(), CJ8File::kJ8File);
    EXPECT_EQ(std::string(PathTag(CJ8File::kProjFile)) + PathTag(CJ8File::kInline), "proj_file");

    std::string path;
    CJ8File file;
    EXPECT_FALSE(file.GetFilepath(path, CJ8File::kFile, manager.m_roots)) << "of kind 0";
    file.Set("x", CJ8File::kCustomPath);
    file.m_base = "base\\";
    EXPECT_TRUE(file.GetFilepath(path, manager.m_roots));
    EXPECT_EQ(path, "base\\x");
    EXPECT_FALSE(file.GetFilepath(path, static_cast<CJ8File::eType>(5), manager.m_roots));
}

TEST_F(LoadTest, BehaviourFiles) {
    folder.write("cmp.xml", "<Components><Component name='body'/></Components>");
    folder.write(
        "one.xml",
        "<Behaviors><Component proj_file='cmp.xml'/><Behavior name='guard' class='c' group='g'>"
        "<Doc>stands</Doc><Skill name='sight' num='3' type='int' value='7'><Doc>far</Doc>"
        "<Constraint type='min' value='0'/><Constraint type='max'/><Enum name='far' value='9'/></Skill>"
        "<Skill name='lost'/><Skill name='odd' num='3x'/><Skill name='plain' num=' -2 ' type='entity'/>"
        "<Component name='body'><Edit name='mass' value='5'/><Edit name='size' value='6'/></Component>"
        "<Component name='mind'><Edit name='iq'/></Component></Behavior><Behavior/></Behaviors>");
    folder.write("two.xml",
                 "<Behaviors><Component proj_file='.\\CMP.xml'/><Behavior name='dog'/></Behaviors>");
    folder.write("bad.xml", "<Behaviors>");
    ASSERT_TRUE(
        load("<Behavior proj_file='one.xml'/><Behavior proj_file='two.xml'/>"
             "<Behavior j8_file='bad.xml'/><Behavior file='gone.xml'/><Display/><UserInput/>"));
    const std::string cmp = folder.path(".\\CMP.xml");  // the same file
    EXPECT_THAT(report(),
                testing::StartsWith(
                    "Behavior File: one.xml (proj)\r\nComponent File: cmp.xml (proj)\r\n"
                    "Warning (LoadBehavior) guard :Behavior Edit iq found without value. Not added.\r\n"
                    "Warning (LoadBehavior)  :Property found without name. Not added.\r\n"
                    "Behavior File: two.xml (proj)\r\nComponent File: .\\CMP.xml (proj)\r\n"
                    "Component File: Already loaded!\r\nFile \"" +
                    cmp +
                    "\" has been ignored.\r\n"
                    "Warning (LoadBehavior) dog :Behavior found without class.\r\n"
                    "Warning (LoadBehavior) dog :Behavior found without group.\r\n"
                    "Warning (LoadBehavior) dog :Behavior found without docs.\r\n"
                    "Behavior File: bad.xml (proj)\r\nLoadBehaviorXML: XML Open Error!\r\n"
                    "Problem loading Behavior:bad.xml.\r\n"
                    "Behavior File: Not Valid!\r\nLoadBehaviorXML: XML MISSING!\r\n"
                    "Problem loading Behavior:gone.xml.\r\n"));
    EXPECT_THAT(log(),
                HasSubstr(logEntry("Error", kLoad, "pBehFilename->GetFilepath(csPath) returned false.")));
    EXPECT_THAT(log(), HasSubstr(logEntry("Warning", kLoad, "LoadBehaviorXML(csPath) returned false.: ")));
    EXPECT_EQ(manager.m_apBehaviorFiles.size(), 2u);
    EXPECT_EQ(manager.m_apLostBehaviorFiles.size(), 2u);
    ASSERT_EQ(manager.m_apBehavior.size(), 3u) << "one without a name stays in the list";

    const CJ8BehaviorData* guard = manager.behavior("guard");
    ASSERT_TRUE(guard);
    EXPECT_EQ(guard->m_class + guard->m_group + guard->m_doc, "cgstands");
    ASSERT_EQ(guard->m_apSkillEdits.size(), 2u);
    const zoka::J8Skill& sight = guard->m_apSkillEdits[0];
    EXPECT_EQ(sight.num, 3);
    EXPECT_EQ(sight.type, J8Type::Int);
    EXPECT_EQ(sight.name + sight.value + sight.doc, "sight7far");
    EXPECT_EQ(sight.constraints, (std::vector<zoka::J8Constraint>{{"min", "0"}}));
    EXPECT_EQ(sight.enums, (std::vector<zoka::J8Enum>{{"far", "9", ""}}));
    EXPECT_EQ(guard->m_apSkillEdits[1].num, -2);
    EXPECT_EQ(guard->m_apSkillEdits[1].type, J8Type::Unknown);
    EXPECT_EQ(guard->m_apCMPNames, (std::vector<std::string>{"body", "mind"}));
    EXPECT_EQ(guard->m_apCMPEdits, (std::vector<zoka::J8ComponentEdit>{{"body", "mass", "5"}}));
    EXPECT_EQ(manager.sources()[guard->m_source], folder.path("one.xml"));
    CJ8BehaviorData copy = *guard;
    copy.Clear();
    EXPECT_TRUE(copy.m_apSkillEdits.empty() && copy.m_name.empty() && !guard->m_apSkillEdits.empty());
}

TEST_F(LoadTest, ComponentsOfABehaviourFile) {
    const struct {
        const char* element;
        std::string report;
    } rows[] = {
        {"", "No Component Data.\r\n\r\n"},
        {"<Component/>", "Component File Not Found.\r\n"},
        {"<Component j8_file='no.xml'/>",
         "Component File: no.xml (j8)\r\nBad Components: XML MISSING!\r\n"
         "(LoadBehaviorXML) Error loading Component Data:" +
             folder.path("no.xml") + "\r\n\r\n"},
        {"<Component proj_file='bad.xml'/>",
         "Component File: bad.xml (proj)\r\nBad Components: XML Open Error!\r\n"
         "(LoadBehaviorXML) Error loading Component Data:" +
             folder.path("bad.xml") + "\r\n\r\n"},
    };
    folder.write("bad.xml", "<Behaviors/>");
    for (const auto& row : rows) {
        folder.write("b.xml", "<Behaviors>" + std::string(row.element) + "</Behaviors>");
        ASSERT_TRUE(load("<Behavior proj_file='b.xml'/><Display file='game.xml'/>"));
        EXPECT_THAT(report(), HasSubstr("Behavior File: b.xml (proj)\r\n" + row.report + "Display"));
    }
}

TEST_F(LoadTest, Properties) {
    folder.write("cmp.xml",
                 "<Components><Component name='body'><Doc>a <![CDATA[<b>]]></Doc>"
                 "<Property name='m' type='entity' value='1' edit='TRUE' set='yes'><Doc>d</Doc>"
                 "<Constraint value='1'/><Constraint type='min'/><Constraint type='max' value='3'/>"
                 "<Enum value='1'/><Enum name='e'/><Enum name='f' value='2'><Doc>two</Doc></Enum></Property>"
                 "<Property name='bare'/><Property/></Component>"
                 "<Component/><Component name='body'><Property name='other'/></Component></Components>");
    folder.write("b.xml", "<Behaviors><Component proj_file='cmp.xml'/></Behaviors>");
    ASSERT_TRUE(load("<Behavior proj_file='b.xml'/>"));
    const std::string m = "Warning(LoadProperty): CMP(body): Property \"m\" ";
    const std::string bare = "Warning(LoadProperty): CMP(body): Property \"bare\" ";
    EXPECT_THAT(report(),
                HasSubstr(m + "using unknown type.\r\n  -->\"entity\"\r\n" + m +
                          "found constraint without value.\r\n" + m + "found enum without value.\r\n" + bare +
                          "found without type. Using Unit.\r\n" + bare + "found without value.\r\n" + bare +
                          "found without docs.\r\n"
                          "Warning (LoadProperty) \"body\" :Property found without name. Not added.\r\n"
                          "Warning (LoadCMPXML) " +
                          folder.path("cmp.xml") +
                          " :Component found without name.\r\n"
                          "Warning (LoadCMPXML): CMP with name \"body\" already added.\r\n"));
    EXPECT_THAT(log(), HasSubstr(logEntry("Warning", "LoadProperty(CJ8CMPData*, XMLNode&, std::string&)",
                                          "Property found without name. Not added.") +
                                 logEntry("Warning", "CJ8ProjectManager::LoadCMPXML()",
                                          "LoadProperty returned false.")));
    const CJ8CMPData* body = manager.component("body");
    ASSERT_TRUE(body && manager.m_apComponents.size() == 1);
    EXPECT_EQ(body->m_doc, "a<b>");
    ASSERT_EQ(body->m_properties.size(), 2u);
    const zoka::J8Property& property = body->m_properties[0];
    EXPECT_EQ(property.type, J8Type::Unknown);
    EXPECT_TRUE(property.edit && !property.set && !property.get);
    EXPECT_EQ(property.enums, (std::vector<zoka::J8Enum>{{"f", "2", "two"}}));
    EXPECT_EQ(body->m_properties[1].type, J8Type::Unit);
    EXPECT_STREQ(zoka::typeWord(J8Type::AnimGroup), "animGroup");
    EXPECT_STREQ(zoka::typeWord(static_cast<J8Type>(1)), "<bad enum>");
}

TEST_F(LoadTest, WhatDeletingThrowsIsLogged) {
    struct Throwing {
        void clear() { throw 1; }
    } list;
    zoka::deleteLogged(list, "CJ8BehaviorData::Clear()", "Throw while deleting object");
    EXPECT_EQ(log(), logEntry("Error", "CJ8BehaviorData::Clear()", "Throw while deleting object"));
}

TEST_F(LoadTest, Levels) {
    ASSERT_TRUE(
        load("<Level name='harbour' mapfile='h.zlb'><Entity name='guard' parent='g'>"
             "<Skill num='1' value='5'/><Skill value='6'/><Skill num='2'/>"
             "<Component name='body'><Edit name='a' value='1'/><Edit name='b' value='2'/><Edit name='c'/>"
             "</Component><Component name='bare'/><Component/></Entity><Entity parent='x'/></Level>"
             "<Level mapfile='x.zlb'/>"));
    EXPECT_THAT(report(),
                testing::EndsWith("Warning (LoadLevel) \"harbour\" :Level found without docs.\r\n"
                                  "Warning (LoadBehavior)  :Level found without name. Not added.\r\n"));
    EXPECT_THAT(log(), testing::EndsWith(logEntry("Error", kLoad, "LoadLevel(..) return false.")));
    ASSERT_EQ(manager.m_apLevels.size(), 2u) << "a level that failed is kept, empty";
    EXPECT_EQ(manager.m_apLevels[1].m_mapFile.m_path, "");
    const CJ8LevelData& level = manager.m_apLevels[0];
    ASSERT_EQ(level.m_entities.size(), 1u);
    const zoka::J8LevelEntity& guard = level.m_entities[0];
    ASSERT_EQ(guard.skills.size(), 2u);
    EXPECT_EQ(guard.skills[0].value, "5");
    EXPECT_EQ(guard.skills[1].value, std::nullopt);
    ASSERT_EQ(guard.components.size(), 2u);
    EXPECT_EQ(guard.components[0].edits, (std::vector<zoka::J8Edit>{{"a", "1"}, {"b", "2"}}));
    EXPECT_EQ(manager.findings().back().source, 0u);
    EXPECT_GT(manager.findings().back().place, 0u);
}
