// The help pages, byte for byte, and their names and links.
#include "templates/HelpPages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "templates/CatalogueText.h"
#include "tests/support/FaultyOsFiles.h"
#include "tests/support/TempFolder.h"
#include "tests/templates/Scripts.h"
#include "util/OsFiles.h"

using namespace zoka;
using test::Names;
using test::script;
using test::TempFolder;

namespace {

const std::string kStart =
    "<!-- saved from KEZ2XML -->\n<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.01 "
    "Transitional//EN\">\n<html>\n<head>\n";
const std::string kMiddle =
    "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=iso-8859-1\">\n<link href=\"css.css\" "
    "rel=\"stylesheet\" type=\"text/css\">\n</head>\n<body>\n\n";
const std::string kEnd = "\n</body>\n</html>";

CTemplateData catalogue() {
    CTemplateData data;
    CScriptElm chase = script("Chase", "chase.kez", "Camera", "user");
    chase.m_desc = "Follows.\nSmoothly & \"<far>\".";
    chase.m_note = "Mind.";
    chase.m_needs = {"orbit.kez", "lib.kez", "Orbit.kez", "chase.kez", "none.kez"};
    chase.m_sections = {{"A", "", "", {{"first", "chase.kez", {"6", "COMM"}, "One\nTwo"}}},
                        {"B", "", "", {{"", "chase.kez", {"6", ""}, "Three"}, {"x", "y.kez", {}, ""}}}};
    data.AddScript(chase);
    data.AddScript(script("Lib", "lib.kez", "Library", "INTERNAL"));
    data.AddScript(script("", "orbit.kez", "CAMERA"));
    return data;
}

}  // namespace

TEST(HelpPages, EditionMarks) {
    std::string marks = "\n";
    const char* const rows[][2] = {{"PRO", "P"}, {"COMM", "C"}, {"Extra", "E"}, {"std", "S"}};
    for (const auto& [edition, letter] : rows) {
        marks = "<span class=\"edition\">&nbsp;" + std::string(letter) + "&nbsp;</span>" + marks;
        EXPECT_EQ(editionMarks(edition), marks);
    }
    EXPECT_EQ(editionMarks("") + editionMarks("PROF"), "");
}

TEST(HelpPages, ByClass) {
    const TempFolder folder;
    ASSERT_TRUE(writeClassPages(catalogue(), folder.path() + "\\"));
    EXPECT_EQ(folder.names(), Names{"template_Camera.htm"});
    EXPECT_EQ(folder.read("template_Camera.htm"),
              inTextMode(kStart + "<title>Template_Camera</title>\n" + kMiddle +
                         "<h1>Template class: <b>Camera</b></h1>\n\n"
                         "<h2>Chase</h2>\nFollows.<br>Smoothly &amp; \"&lt;far&gt;\"."
                         "\n<h3>Actions:</h3>\n" +
                         editionMarks("COMM") +
                         "<b>first (chase.kez)</b> - One<br>Two\n<br>\n<b>chase.kez</b> - Three\n<br>\n<b>x "
                         "(y.kez)</b> - \n<br>\n"
                         "\n<h3>Needs:</h3>\n<b>orbit.kez, lib.kez, Orbit.kez, chase.kez, "
                         "none.kez</b>\n<h3>Filename:</h3>\n<b>chase.kez</b>\n"
                         "<h3>Remarks:</h3>\nMind.<p>&nbsp;</p>\n<p>&nbsp;</p>\n"
                         "<h2>orbit.kez</h2>\n\n<h3>Actions:</h3>\n[none]\n<h3>Needs:</h3>\n<b></b>\n"
                         "<h3>Filename:</h3>\n<b>orbit.kez</b>\n<p>&nbsp;</p>\n<p>&nbsp;</p>\n" +
                         kEnd));
}

TEST(HelpPages, ByScript) {
    const TempFolder folder;
    ASSERT_TRUE(writeScriptPages(catalogue(), folder.path() + "\\"));
    EXPECT_EQ(folder.names(), (Names{"Chase.htm", "orbit.kez.htm"}));
    EXPECT_EQ(
        folder.read("orbit.kez.htm"),
        inTextMode(
            kStart + "<title>Template Script: orbit.kez</title>\n" + kMiddle +
            "<h2>orbit.kez</h2>\n\n<h3>Needs:</h3>\n<b></b>\n<h3>Filename:</h3>\n<b>orbit.kez</b>\n"
            "<h3>See also:</h3>\n<ul>\n<li><a href=\"template_Camera.htm\">Template class: Camera</a></li>\n"
            "<li><a href=\"Chase.htm\">Chase</a> - needs this script</li>\n</ul>\n" +
            kEnd));
    const std::string chase = folder.read("Chase.htm");
    EXPECT_NE(chase.find(inTextMode(
                  "<h2>Chase</h2>\nFollows.\nSmoothly &amp; \"&lt;far&gt;\".\n<h3>Actions:</h3>\n<br>\n"
                  "<span")),
              std::string::npos)
        << chase;
    // Internal scripts have no page; what is needed twice is listed once.
    EXPECT_NE(
        chase.find(inTextMode("<h3>See also:</h3>\n<ul>\n<li><a href=\"template_Camera.htm\">Template class: "
                              "Camera</a></li>\n<li><a href=\"orbit.kez.htm\">orbit.kez</a> - needed by this "
                              "script</li>\n</ul>\n")),
        std::string::npos)
        << chase;
}

TEST(HelpPages, AScriptWhoseLastSectionHasNoActionsListsNone) {
    CTemplateData data = catalogue();
    CScriptElm doors = script("Doors", "doors.kez", "Doors");
    doors.m_sections = {{"A", "", "", {{"door", "doors.kez", {}, ""}}}, {"B", "", "", {}}};
    data.AddScript(doors);
    const TempFolder folder;
    ASSERT_TRUE(writeHelp(data, folder.path() + "\\"));
    EXPECT_EQ(folder.read("Doors.htm").find("Actions"), std::string::npos);
    EXPECT_NE(folder.read("template_Doors.htm").find("<b>door (doors.kez)</b>"), std::string::npos);
    EXPECT_EQ(folder.names(), (Names{"Chase.htm", "Doors.htm", "css.css", "index.htm", "orbit.kez.htm",
                                     "template_Camera.htm", "template_Doors.htm"}));
    const std::string index = folder.read("index.htm");
    for (const char* target :
         {"Chase.htm", "Doors.htm", "orbit.kez.htm", "template_Camera.htm", "template_Doors.htm"}) {
        EXPECT_NE(index.find("href=\"" + std::string(target) + "\""), std::string::npos) << target;
    }
}

TEST(HelpPages, NamesAreFileNamesAndUnique) {
    EXPECT_EQ(scriptPageName(script("My Cam (blue)", "", "")), "MyCamblue.htm");
    EXPECT_EQ(scriptPageName(script("a\\/\"'(),#% b", "", "")), "ab.htm");
    EXPECT_EQ(scriptPageName(script("", "x.kez", "")), "x.kez.htm");
    EXPECT_EQ(scriptPageName(script("a:b*c", "", "")), "a_b_c.htm");
    EXPECT_EQ(classPageName("..\\..\\evil"), "template_.._.._evil.htm");
    CTemplateData data;
    for (const char* name : {"My Cam", "MyCam", "mycam", "MyCam_2", "index", "..\\x"}) {
        data.AddScript(script(name, "f", "C"));
    }
    const TempFolder folder;
    ASSERT_TRUE(writeScriptPages(data, folder.path() + "\\"));
    EXPECT_EQ(folder.names(),
              (Names{"..x.htm", "MyCam.htm", "MyCam_2.htm", "MyCam_2_2.htm", "index_2.htm", "mycam_3.htm"}));
}

TEST(HelpPages, StopAtThePageThatCannotBeWritten) {
    CTemplateData data;
    EXPECT_FALSE(writeHelp(CTemplateData(), TempFolder().path() + "\\none\\"));
    for (const char* name : {"a", "b", "c"}) {
        data.AddScript(script(name, "f.kez", name));
    }
    const TempFolder folder;
    std::filesystem::create_directory(folder.native("b.htm"));
    EXPECT_THAT(writeScriptPages(data, folder.path() + "\\").why(), testing::HasSubstr("b.htm"));
    EXPECT_EQ(folder.names(), (Names{"a.htm", "b.htm"}));
    data.Empty();
    data.AddScript(script("x", "x.kez", "C", "INTERNAL"));
    const TempFolder none;
    EXPECT_TRUE(writeClassPages(data, none.path() + "\\") && writeScriptPages(data, none.path() + "\\"));
    EXPECT_TRUE(none.names().empty());
}

TEST(HelpPages, TheDiskIsNotWaitedForAndOnlyPagesThatDifferAreWritten) {
    CTemplateData data;
    constexpr int count = 300;
    for (int i = 0; i < count; ++i) {
        data.AddScript(script("s" + std::to_string(i), "f.kez", "C"));
    }
    const TempFolder folder;
    int flushes = 0, files = 0;
    const test::FaultyOsFiles disk([&](int, std::string_view op, const std::string&) {
        flushes += op == "flushFolder" || op == "flush";
        files += op == "renameNew" || op == "replaceFile";
        return false;
    });
    ASSERT_TRUE(writeScriptPages(data, folder.path() + "\\"));
    EXPECT_EQ(folder.names().size(), static_cast<size_t>(count));
    EXPECT_EQ(files, count);
    EXPECT_EQ(flushes, 0);
    folder.write("s1.htm", "");
    ASSERT_TRUE(writeScriptPages(data, folder.path() + "\\"));
    EXPECT_EQ(files, count + 1);
    EXPECT_NE(folder.read("s1.htm"), "");
}

TEST(HelpPages, TheCataloguesOwnOperationsWriteBesideTheCurrentFolder) {
    const TempFolder folder;
    std::filesystem::create_directory(folder.native("work"));
    const std::string before = osFiles().currentFolder();
    ASSERT_TRUE(osFiles().setCurrentFolder(folder.path("work")));
    EXPECT_FALSE(catalogue().WriteHelpDocsByClass()) << "there is no docs folder";
    std::filesystem::create_directory(folder.native("docs"));
    EXPECT_TRUE(catalogue().WriteHelpDocsByClass());
    EXPECT_TRUE(catalogue().WriteHelpDocsByScript());
    osFiles().setCurrentFolder(before);
    EXPECT_TRUE(std::filesystem::exists(folder.native("docs/template_Camera.htm")));
    EXPECT_TRUE(std::filesystem::exists(folder.native("docs/Chase.htm")));
}

TEST(HelpPages, CharactersBeyondAsciiAreReferencesAndDevicesAreNoPages) {
    CTemplateData data;
    CScriptElm elm = script("con", "a.kez", "C");
    elm.m_desc = "caf\xE9 \x80";              // of the 8-bit set
    elm.m_note = "caf\xC3\xA9 \xE2\x82\xAC";  // UTF-8
    data.AddScript(elm);
    std::string page;
    EXPECT_TRUE(makeHelp(data, [&page](const std::string& name, const std::string& text) {
        if (name == "_con.htm") {
            page = text;
        }
        return Outcome();
    }));
    EXPECT_NE(page.find("caf&#233; &#8364;"), std::string::npos);
    EXPECT_NE(page.find(inTextMode("<h3>Remarks:</h3>\ncaf&#233; &#8364;")), std::string::npos);
    EXPECT_EQ(std::count_if(page.begin(), page.end(), [](char c) { return (c & 0x80) != 0; }), 0);
}
