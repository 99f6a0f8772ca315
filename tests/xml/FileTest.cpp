// Trees from and to files.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/FaultyOsFiles.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TempFolder.h"
#include "tests/xml/XmlText.h"

using namespace zoka::test;

namespace {

constexpr char kHead[] = "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

TEST(File, WritesAndReadsBack) {
    TempFolder folder;
    XMLNode top = XMLNode::createTop("Project");
    top.addChild("Level").addAttribute("name", "\xC3\xA9 < 1");
    const std::string path = folder.path("out.xml");
    EXPECT_EQ(top.writeFile(path.c_str()), 0);
    EXPECT_EQ(folder.read("out.xml"),
              kHead + std::string("<Project>\n\t<Level name=\"\xC3\xA9 &lt; 1\"/>\n</Project>\n"));
    EXPECT_EQ(top.writeFile(path.c_str(), nullptr, false), 0);
    EXPECT_EQ(folder.read("out.xml"), kHead + textOf(top));
    XMLResults results;
    const XMLNode again = XMLNode::parseFile(path.c_str(), "project", &results);
    EXPECT_EQ(results.code, 0);
    EXPECT_EQ(textOf(again), textOf(top));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"out.xml"});
}

TEST(File, LargeFilesAreReadWhole) {
    TempFolder folder;
    std::string text = "<a>";
    while (text.size() < 3000000) {
        text += "<b>some text &amp; more</b>\n";
    }
    text += "</a>";
    const std::string path = folder.write("large.xml", text);
    XMLResults results;
    const XMLNode node = XMLNode::parseFile(path.c_str(), "a", &results);
    EXPECT_EQ(results.code, 0);
    EXPECT_EQ(node.childCount("b"), static_cast<int>((text.size() - 7) / 28));
}

// Takes the children called "b"; what it was told in `taken`, a line each.
XMLNode parseTaking(const std::string& path, std::string& taken, XMLResults& results) {
    const auto take = [&](const XMLNode& child) {
        if (child.isEmpty()) {
            taken.clear();
            return false;
        }
        taken += textOf(child) + " at " + std::to_string(child.place()) + " in " +
                 child.getParent().getName() + "\n";
        return std::string_view(child.getName()) == "b";
    };
    return XMLNode::parseFileTaking(path.c_str(), "a", &results, take);
}

TEST(File, HandsOverTheChildrenOfTheTop) {
    TempFolder folder;
    const struct {
        const char *text, *taken, *left;
    } rows[] = {
        {"<a/>", "", "<a/>"},
        {"<a>t<b/>u<b>v</b></a>", "<b/> at 5 in a\n<b>v</b> at 10 in a\n", "<a>tu</a>"},
        {"<a><b/><c><b/></c><b x='1'><d/></b><!--e--></a>",
         "<b/> at 4 in a\n<c><b/></c> at 8 in a\n<b x=\"1\"><d/></b> at 24 in a\n",
         "<a><c><b/></c><!--e--></a>"},
        {"<a><c/><b/><c/>", "<c/> at 4 in a\n<b/> at 8 in a\n<c/> at 12 in a\n", nullptr},
        // Read anew in the system's set, because its last byte is no UTF-8.
        {"<a><b/><c/>\xE9</a>", "<b/> at 4 in a\n<c/> at 8 in a\n", "<a><c/>\xC3\xA9</a>"},
    };
    for (const auto& row : rows) {
        XMLResults results;
        std::string taken;
        const XMLNode top = parseTaking(folder.write("a.xml", row.text), taken, results);
        EXPECT_EQ(taken, row.taken) << row.text;
        EXPECT_EQ(top.isEmpty() ? "" : textOf(top), row.left ? row.left : "") << row.text;
        EXPECT_EQ(results.code == 0, row.left != nullptr) << row.text;
    }
}

TEST(File, MemoryOfTakenChildrenIsUsedAgain) {
    TempFolder folder;
    std::string text = "<a>", expected = "<a>";
    for (int i = 0; i < 400; ++i) {
        // Elements, attributes and runs of attributes of all sizes, so that the chunks are crossed everywhere.
        const bool taken = i % 3 != 0;
        std::string child = taken ? "<b>" : "<c>";
        for (int n = 0; n < i * 7 % 1000; ++n) {
            child += "<d x=\"" + std::to_string(n) + "\">t<e/></d>";
        }
        child += "<f";
        for (int n = 0; n < i % 50 * 20; ++n) {
            child += " x" + std::to_string(n) + "=\"\"";
        }
        child += taken ? "/></b>" : "/></c>";
        text += child;
        expected += taken ? "" : child;
    }
    XMLResults results;
    std::string taken;
    const XMLNode top = parseTaking(folder.write("a.xml", text + "</a>"), taken, results);
    EXPECT_EQ(results.code, 0);
    EXPECT_EQ(textOf(top), expected + "</a>");
}

TEST(File, WhatCannotBeReadIsCode12) {
    TempFolder folder;
    for (const std::string& path :
         {folder.path("none.xml"), folder.path(), folder.path("no\\such\\folder.xml"), std::string()}) {
        XMLResults results{1, 2, 3};
        EXPECT_TRUE(XMLNode::parseFile(path.c_str(), nullptr, &results).isEmpty());
        EXPECT_EQ(results.code, kXmlFileNotFound) << path;
        EXPECT_EQ(results.line + results.column, 0);
    }
    EXPECT_TRUE(XMLNode::parseFile(nullptr).isEmpty());
    EXPECT_STREQ(XMLNode::errorText(12), "Error: File not found");
    XMLResults results;
    XMLNode::parseFile(folder.write("empty.xml", "").c_str(), nullptr, &results);
    EXPECT_EQ(results.code, kXmlNoData);
}

TEST(File, ErrorTexts) {
    EXPECT_STREQ(XMLNode::errorText(0), "No error");
    EXPECT_STREQ(XMLNode::errorText(7), "Error: Unmatched end tag");
    EXPECT_STREQ(XMLNode::errorText(21), "Error: Base64 decode output buffer is too small");
    EXPECT_STREQ(XMLNode::errorText(22), "Unknown");
    EXPECT_STREQ(XMLNode::errorText(-1), "Unknown");
}

TEST(File, WhatCannotBeWrittenIsCode16Or17AndHarmsNothing) {
    TempFolder folder;
    const XMLNode top = XMLNode::parseText("<a>new</a>");
    EXPECT_EQ(top.writeFile(folder.path("no\\such.xml").c_str()), kXmlCannotOpenForWriting);
    EXPECT_EQ(top.writeFile(folder.path().c_str()), kXmlCannotOpenForWriting);
    EXPECT_EQ(top.writeFile(nullptr), kXmlCannotOpenForWriting);

    const std::string path = folder.write("old.xml", "old");
    for (const char* op : {"write", "flush", "close"}) {
        const FaultyOsFiles faulty(FaultyOsFiles::every(op));
        EXPECT_EQ(top.writeFile(path.c_str()), kXmlCannotWrite) << op;
        EXPECT_EQ(top.writeFile(folder.path("fresh.xml").c_str()), kXmlCannotWrite) << op;
    }
    {
        const FaultyOsFiles faulty(
            [](int, std::string_view op, const std::string&) { return op.starts_with("open"); });
        EXPECT_EQ(top.writeFile(path.c_str()), kXmlCannotOpenForWriting);
        EXPECT_EQ(top.writeFile(folder.path("fresh.xml").c_str()), kXmlCannotOpenForWriting);
    }
    EXPECT_EQ(folder.read("old.xml"), "old");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"old.xml"});
    EXPECT_EQ(top.writeFile(path.c_str()), 0);
    EXPECT_EQ(folder.read("old.xml"), kHead + std::string("<a>new</a>\n"));
}

TEST(File, TheFatalLoaderStopsWithTheWholeMessage) {
    TempFolder folder;
    ScriptedPrompt prompt;
    const auto stop = [](const std::string& path) {
        try {
            XMLNode::loadFileOrExit(path.c_str(), "TavrixTemplate");
        } catch (const FatalStop& fatal) {
            EXPECT_EQ(fatal.title, "XML Parsing error");
            EXPECT_EQ(fatal.exitStatus, 255);
            return fatal.text;
        }
        return std::string("went on");
    };
    const std::pair<std::string, const char*> rows[] = {
        {folder.path("none.xml"), "File not found\nAt line 0, column 0.\n"},
        {folder.write("bad.xml", "<TavrixTemplate>\n\t<Script>\n</TavrixTemplate>"),
         "Unmatched end tag\nAt line 3, column 1.\n"},
        {folder.write("other.xml", "<Wizard>                     </Wizard>"),
         "First Tag not found\nAt line 1, column 1.\nFirst Tag should be 'TavrixTemplate'.\n"}};
    for (const auto& [path, message] : rows) {
        EXPECT_EQ(stop(path), "XML Parsing error inside file '" + path + "'.\nError: " + message);
    }
    EXPECT_EQ(stop(folder.write("good.xml", "<tavrixtemplate/>")), "went on");
    EXPECT_TRUE(prompt.asked.empty());
}

TEST(File, TheFatalLoaderSetsTheCharacterSet) {
    TempFolder folder;
    const WithCharset with(XMLCharset::Utf8);
    const std::string latin = folder.write("latin.xml", "<a>                         \xE9</a>");
    EXPECT_STREQ(XMLNode::loadFileOrExit(latin.c_str(), "a").getText(), "\xE9");
    EXPECT_EQ(zoka::xmlCharset(), XMLCharset::Platform);
    // Also where the byte stands far behind the start.
    zoka::setXmlCharset(XMLCharset::Utf8);
    const std::string far = folder.write("far.xml", "<a>" + std::string(1000, ' ') + "\xE9</a>");
    EXPECT_STREQ(XMLNode::loadFileOrExit(far.c_str(), "a").getText(), "\xE9");
    EXPECT_EQ(zoka::xmlCharset(), XMLCharset::Platform);
    const std::string utf8 = folder.write("utf8.xml", "<a>                         \xC3\xA9</a>");
    EXPECT_STREQ(XMLNode::loadFileOrExit(utf8.c_str(), "a").getText(), "\xC3\xA9");
    EXPECT_EQ(zoka::xmlCharset(), XMLCharset::Utf8);
}

}  // namespace
