// What saving a project writes and reports.
#include <algorithm>
#include <string_view>

#include "J8ProjectManager/StepReport.h"
#include "tests/project/ProjectFiles.h"
#include "util/OsFiles.h"

using testing::HasSubstr;
using zoka::StepReport;

namespace {

class SaveTest : public zoka::test::ProjectFiles {
protected:
    // The report's steps as "key=text", one a line.
    std::string steps() {
        std::string all;
        for (XMLNode node = saveReport.node().firstChild(); !node.isEmpty(); node = node.nextSibling()) {
            EXPECT_TRUE(node.hasAttribute("line"));
            all += std::string(node.getName()) + "=" + (node.getText() ? node.getText() : "") + "\n";
        }
        return all;
    }
    // The file without what every save changes.
    std::string saved() {
        std::string text = folder.read("game.xml");
        const std::string_view opening = "date=\"";
        for (size_t at = text.find(opening); at != std::string::npos; at = text.find(opening, at)) {
            at += opening.size();
            const size_t end = std::min(text.find_first_not_of("0123456789", at), text.size());
            if (end - at >= 10 && text.substr(end, 1) == "\"") {
                text.replace(at, end - at, "now");
            }
        }
        return text;
    }
    StepReport saveReport = StepReport::start("Report", "test");
};

}  // namespace

TEST_F(SaveTest, ElementsInOrder) {
    folder.write("b.xml", "<Behaviors/>");
    folder.write("ui.xml", "");
    const std::string at = folder.path() + "\\";
    ASSERT_TRUE(
        load("<Level name='harbour'><Doc>by the sea</Doc><Entity name='guard' parent='g'>"
             "<Component name='body'><Edit name='a' value='&lt;1'/></Component>"
             "<Skill num='1' value='5'/><Skill num='2'/></Entity></Level><UserInput j8_file='keys.xml'/>"
             "<Behavior file='b.xml'/><Behavior proj_file='gone.xml'/><UI proj_file='ui.xml'/>"
             "<Level mapfile='lost'/><Level name='hill' mapfile='hill.zlb'/>"));
    ASSERT_TRUE(manager.SaveProjectXML(saveReport));
    const std::string text =
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<Project name=\"Game\" date=\"now\" vers=\"8.0303\">\n"
        "\t<Paths proj_file=\"" +
        at + "\" j8_file=\"" + at +
        "\"/>\n"
        "\t<Behavior proj_file=\"b.xml\"/>\n\t<UI proj_file=\"ui.xml\"/>\n\t<UserInput "
        "j8_file=\"keys.xml\"/>\n"
        "\t<Level name=\"harbour\">\n\t\t<Doc>by the sea</Doc>\n\t\t<Entity name=\"guard\" parent=\"g\">\n"
        "\t\t\t<Skill num=\"1\" value=\"5\"/>\n\t\t\t<Skill num=\"2\"/>\n"
        "\t\t\t<Component name=\"body\">\n\t\t\t\t<Edit name=\"a\" value=\"&lt;1\"/>\n\t\t\t</Component>\n"
        "\t\t</Entity>\n\t</Level>\n"
        "\t<Level name=\"\"/>\n\t<Level name=\"hill\" mapfile=\"hill.zlb\"/>\n</Project>";
    EXPECT_EQ(saved().substr(0, text.size()), text);
    EXPECT_EQ(steps(),
              "AddBehaviorXmls=\nAddBehavior=b.xml\nWarnBehaviorBadPathTag=gone.xml\n"
              "WarnCamera=None.\nWarnAnimationPool=None.\nWarnWepDef=None.\nWarnDisplay=None.\n"
              "AddLevel=harbour\nWarnLevel=No mapfile\nAddLevelEntity=guard\n"
              "AddLevel=\nWarnLevel=No mapfile\nAddLevel=hill\n");
    EXPECT_EQ(manager.m_vers, "8.0303");
    EXPECT_GE(manager.m_date.size(), 10u);

    // Loaded and saved again, the file is the same.
    const std::string once = saved();
    ASSERT_TRUE(manager.LoadFromXML(folder.path("game.xml"), false));
    ASSERT_TRUE(manager.SaveProjectXML(saveReport));
    EXPECT_EQ(saved(), once);
}

TEST_F(SaveTest, OwnReportWhateverComes) {
    zoka::OsFiles& files = zoka::osFiles();
    const std::string before = files.currentFolder();
    ASSERT_TRUE(files.setCurrentFolder(folder.path()));
    EXPECT_FALSE(manager.SaveProjectXML()) << "no project file is known";
    const std::string failed = folder.read("J8ProjectManagerDebug.xml");
    EXPECT_THAT(failed, HasSubstr("<J8ProjectManagerDebug action=\"SaveProjectXML\" ver=\"8.0303\">"));
    EXPECT_THAT(failed, HasSubstr("<ErrGetFilepath line="));
    manager.setProjectFile("new.xml");
    ASSERT_TRUE(files.setCurrentFolder(before));
    EXPECT_EQ(manager.projectFile(), folder.path("new.xml")) << "kept in full";
    ASSERT_TRUE(files.setCurrentFolder(folder.path()));
    EXPECT_TRUE(manager.SaveProjectXML());
    EXPECT_THAT(folder.read("J8ProjectManagerDebug.xml"),
                HasSubstr("action=\"SaveProjectXML\" ver=\"8.0303\" err=\"none\""));
    EXPECT_THAT(folder.read("new.xml"), HasSubstr("<Project name=\"\""));
    // The report is the program's own: it goes through no link, where the system has some.
    folder.write("precious", "mine");
    std::filesystem::remove(folder.native("J8ProjectManagerDebug.xml"));
    std::error_code refused;
    std::filesystem::create_symlink("precious", folder.native("J8ProjectManagerDebug.xml"), refused);
    EXPECT_TRUE(manager.SaveProjectXML());
    EXPECT_EQ(folder.read("precious"), "mine");
    manager.setProjectFile(folder.path("no\\such\\folder.xml"));
    EXPECT_FALSE(manager.SaveProjectXML(saveReport));
    ASSERT_TRUE(files.setCurrentFolder(before));
}
