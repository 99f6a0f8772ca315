// The sample project cut off at every byte, and with every byte changed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "J8ProjectManager/J8ProjectManager.h"
#include "tests/project/Checks.h"
#include "tests/support/SourceDir.h"
#include "tests/support/TempFolder.h"
#include "util/DebugLog.h"
#include "util/OsFiles.h"

namespace {

std::string sample(const char* name) {
    return zoka::test::readNative(zoka::test::sourceDir() / "samples" / "j8project" / name);
}

// A project whose references find the two files beside it.
std::string sampleFiles() {
    std::string project = sample("main.xml");
    const auto replace = [&](const std::string& from, const std::string& to) {
        const size_t at = project.find(from);
        ASSERT_NE(at, project.npos) << from;
        project.replace(at, from.size(), to);
    };
    replace("proj_file=\"j8project\\\"", "proj_file=\"\"");
    replace("enemies.xml", "b.xml");
    std::string behaviors = sample("enemies.xml");
    behaviors.replace(behaviors.find("components.xml"), 14, "c.xml");
    return project + "\n---\n" + behaviors + "\n---\n" + sample("components.xml");
}

class ProjectBytes : public testing::Test {
protected:
    ProjectBytes() : m_before(zoka::osFiles().currentFolder()) {
        zoka::closeDebugLog();
        zoka::debugLogFileName().clear();
        zoka::osFiles().setCurrentFolder(folder.path());
    }
    ~ProjectBytes() override {
        zoka::osFiles().setCurrentFolder(m_before);
        zoka::debugLogFileName() = "debugLogOut.xml";
    }
    std::string fault(const std::string& files) {
        const std::string found = zoka::test::loadFault(files, folder.path());
        return found.empty() ? zoka::test::saveFault(files, folder.path()) : found;
    }
    zoka::test::TempFolder folder;

private:
    std::string m_before;
};

// All of it takes long; a run takes one part of kParts, which ZOKA_PART chooses (from 0 on; "all": every one).
constexpr size_t kParts = 20000;

bool isTaken(size_t number) {
    static const char* const chosen = std::getenv("ZOKA_PART");
    static const bool all = chosen && std::string_view(chosen) == "all";
    static const size_t part = chosen && !all ? std::strtoul(chosen, nullptr, 10) : 0;
    return all || number % kParts == part;
}

}  // namespace

TEST_F(ProjectBytes, TheWholeSampleReadsBackEqual) {
    const std::string files = sampleFiles();
    EXPECT_EQ(fault(files), "");
    CJ8ProjectManager project;
    folder.write("game.xml", files.substr(0, files.find("\n---\n")));
    ASSERT_TRUE(project.LoadFromXML(folder.path("game.xml"), false));
    EXPECT_EQ(project.m_apBehavior.size(), 4u);
    EXPECT_EQ(project.m_apComponents.size(), 9u);
}

TEST_F(ProjectBytes, EveryPrefixAndEveryByteChanged) {
    const std::string whole = sampleFiles();
    size_t number = 0, taken = 0;
    for (size_t length = 0; length < whole.size(); ++length) {
        if (isTaken(number += 70)) {
            ++taken;
            ASSERT_EQ(fault(whole.substr(0, length)), "") << length;
        }
    }
    std::string changed = whole;
    for (size_t at = 0; at < whole.size(); ++at) {
        for (int value = 0; value < 256; ++value) {
            if (isTaken(++number)) {
                ++taken;
                changed[at] = static_cast<char>(value);
                ASSERT_EQ(fault(changed), "") << at << " as " << value;
            }
        }
        changed[at] = whole[at];
    }
    EXPECT_GT(taken, 100u);
}

TEST_F(ProjectBytes, HostileFiles) {
    const std::string far(10000, 'x');
    std::string many = "<Project><Paths proj_file='' j8_file=''/><Level name='l'>";
    for (int i = 0; i < 20000; ++i) {
        many += "<Entity name='e' parent='a'><Skill num='1' value='1'/></Entity>";
    }
    many += "</Level></Project>\n---\n<Behaviors/>";
    const std::string circle =
        "<Project><Paths proj_file='' j8_file=''/><Behavior file='game.xml'/><Behavior file='b.xml'/>"
        "<Behavior file='b.xml'/><UI file='b.xml'/></Project>\n---\n"
        "<Behaviors><Component proj_file='b.xml'/><Behavior name='a'/></Behaviors>";
    std::string characters = "<Project name='&#9;&#10;&#13; ";
    for (char c = ' '; c < '\x7F'; ++c) {
        const bool isMarkup = c == '<' || c == '&' || c == '\'';
        characters += isMarkup ? "&#" + std::to_string(c) + ";" : std::string(1, c);
    }
    characters +=
        "'><Paths proj_file='' j8_file=' '/><Level name='' mapfile=' '><Doc>&#13;&lt;b>&#32;</Doc>"
        "<Entity name='' parent=''><Skill num='-1' value=''/><Component name=''><Edit name='' value=''/>"
        "</Component></Entity></Level><Level name='l'><Doc/><Entity name=";
    for (
        const std::string& files :
        {"<Project><Paths proj_file='" + far + "' j8_file='\\\\server\\share'/><Camera proj_file='" + far +
             "'/><UI file='..\\..\\..\\x'/><Display j8_file='*'/><UserInput file='NUL'/></Project>",
         many, circle,
         std::string("<Project><Level name='l'><Doc>&#32;<![CDATA[ a ]]></Doc></Level></Project>"),
         // Every character that a value may hold, in UTF-8 and in the system's own set; texts that are empty or blank.
         characters + "'\xC3\xA9\xE3\x83\x84\xF0\x9F\x98\x80'/></Level></Project>",
         characters + "'\xE9\x80\xFF'/></Level></Project>"}) {
        EXPECT_EQ(fault(files), "") << files.substr(0, 100);
    }
}

// More than anybody has: it is loaded whole, and what a save writes holds all of it.
TEST_F(ProjectBytes, AMillionEntities) {
    constexpr size_t kEntities = 1'000'000;
    const std::string entity = "<Entity name=\"e\"/>";
    std::string text = "<Project><Level name=\"l\">";
    text.reserve(kEntities * entity.size() + 100);
    for (size_t i = 0; i < kEntities; ++i) {
        text += entity;
    }
    CJ8ProjectManager project;
    ASSERT_TRUE(project.LoadFromXML(folder.write("many.xml", text + "</Level></Project>"), false));
    ASSERT_EQ(project.m_apLevels.size(), 1u);
    EXPECT_EQ(project.m_apLevels[0].m_entities.size(), kEntities);
    text = project.fileText({}, "1").view();
    size_t written = 0;
    for (size_t at = text.find(entity); at != text.npos; at = text.find(entity, at + entity.size())) {
        ++written;
    }
    EXPECT_EQ(written, kEntities);
}
