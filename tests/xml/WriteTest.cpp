// Trees as text.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/xml/XmlText.h"
#include "xml/XMLStreamWriter.h"

using namespace zoka::test;

namespace {

TEST(Write, FormattedAndNot) {
    const struct {
        const char *text, *formatted, *plain;
    } rows[] = {
        {"<a/>", "<a/>\n", "<a/>"},
        {"<a></a>", "<a/>\n", "<a/>"},
        {"<a> </a>", "<a/>\n", "<a/>"},
        {"<a x='1' y=\"'2'\"/>", "<a x=\"1\" y=\"'2'\"/>\n", "<a x=\"1\" y=\"'2'\"/>"},
        {"<a><b><c/></b><d>t</d></a>", "<a>\n\t<b>\n\t\t<c/>\n\t</b>\n\t<d>t</d>\n</a>\n",
         "<a><b><c/></b><d>t</d></a>"},
        // no white space gets inside an element that holds text, however deep
        {"<a>t<b><c/></b></a>", "<a>t<b><c/></b></a>\n", "<a>t<b><c/></b></a>"},
        {"<a><b><c/></b>t</a>", "<a><b><c/></b>t</a>\n", "<a><b><c/></b>t</a>"},
        {"<a><b><![CDATA[ ]]><c/></b></a>", "<a>\n\t<b><![CDATA[ ]]><c/></b>\n</a>\n",
         "<a><b><![CDATA[ ]]><c/></b></a>"},
        {"<a><!-- c --><b/></a>", "<a>\n\t<!-- c -->\n\t<b/>\n</a>\n", "<a><!-- c --><b/></a>"},
        {"<?xml version='1.0'?><?p  d ?><!DOCTYPE a><a><?q?></a><!--e-->",
         "<?xml version=\"1.0\"?>\n<?p d ?>\n<!DOCTYPE a>\n<a>\n\t<?q?>\n</a>\n<!--e-->\n",
         "<?xml version=\"1.0\"?><?p d ?><!DOCTYPE a><a><?q?></a><!--e-->"},
    };
    for (const auto& row : rows) {
        const XMLNode node = XMLNode::parseText(row.text);
        EXPECT_EQ(textOf(node, true), row.formatted) << row.text;
        EXPECT_EQ(textOf(node, false), row.plain) << row.text;
        EXPECT_EQ(textOf(XMLNode::parseText(row.formatted), true), row.formatted);
    }
}

TEST(Write, EveryLevelIsATabMore) {
    constexpr size_t depth = 200;
    const XMLNode top = XMLNode::createTop("a");
    XMLNode node = top;
    std::string opened = "<a>\n", closed = "</a>\n";
    for (size_t level = 1; level < depth; ++level) {
        node = node.addChild("a");
        opened += std::string(level, '\t') + "<a>\n";
        closed.insert(0, std::string(level, '\t') + "</a>\n");
    }
    node.addChild("a");
    EXPECT_EQ(textOf(top, true), opened + std::string(depth, '\t') + "<a/>\n" + closed);
}

TEST(Write, ASubtreeAndItsLength) {
    const XMLNode node = XMLNode::parseText("<a><b><c/>\xC3\xA9</b><d/></a>").getChild("a").getChild("b");
    int length = 0;
    EXPECT_EQ(textOf(node, true, &length), "<b><c/>\xC3\xA9</b>\n");
    EXPECT_EQ(length, 14);
}

TEST(Write, ReservedCharactersAreEscaped) {
    XMLNode top = XMLNode::createTop("a");
    const char* const all = "\t <>&\"'\n]]>\r ";
    top.addAttribute("v", all);
    top.addAttribute("none", nullptr);
    top.addText(all);
    EXPECT_EQ(textOf(top),
              "<a v=\"&#9; &lt;>&amp;&quot;'&#10;]]>&#13; \" none=\"\">"
              "&#9; &lt;&gt;&amp;\"'\n]]&gt;&#13;&#32;</a>");
}

// What needs care in writing.
std::vector<std::string> awkwardTexts() {
    std::string every;
    for (int c = 1; c < 128; ++c) {
        if (c >= 32 || c == '\t' || c == '\n' || c == '\r') {
            every += static_cast<char>(c);
        }
    }
    std::vector<std::string> texts = {
        // white space
        " ", "  ", "\n", "\r\n", "\t", "\r", " a", "a ", " a b ", "\ra\r", "\n\n",
        // markup, other characters, lengths
        "]]>", "<![CDATA[x]]>", "&amp;", "&#32;", "\xC3\xA9\xF0\x9F\x98\x80", "\xEF\xBF\xBD",
        "\xC2\xA0 \xC2\x85", std::string(5000, ' '), std::string(70000, '&')};
    // Every character at every place of a block of the scanning code.
    for (int i = 0; i < 40; ++i) {
        texts.push_back(std::string(static_cast<size_t>(i), '.') + every);
    }
    return texts;
}

// Whatever a program stores comes back, from either form, in an element or a value.
TEST(Write, StoredTextsReadBackEqual) {
    for (const std::string& text : awkwardTexts()) {
        for (const bool formatted : {true, false}) {
            XMLNode top = XMLNode::createTop("a");
            XMLNode child = top.addChild("b");
            child.addAttribute("v", text.c_str());
            child.addText(text.c_str());
            top.addChild("c").addChild("d").addText(text.c_str());
            const std::string written = textOf(top, formatted);
            const XMLNode again = XMLNode::parseText(written.c_str(), "a");
            ASSERT_EQ(orNull(again.getChild("b").getAttribute("v")), text) << written;
            ASSERT_EQ(orNull(again.getChild("b").getText()), text) << written;
            ASSERT_EQ(orNull(again.getChild("c").getChild("d").getText()), text) << written;
            ASSERT_EQ(dumpXml(again), dumpXml(top));
        }
    }
}

TEST(Write, WhatXmlCannotHoldIsReplacedWhenStored) {
    const struct {
        const char *stored, *utf8, *platform;
    } rows[] = {
        {"a\x01\x1F z", "a\xEF\xBF\xBD\xEF\xBF\xBD z", "a?? z"},
        {"\xEF\xBF\xBE", "\xEF\xBF\xBD", "\xEF\xBF\xBE"},
        // no UTF-8: taken as text of the platform
        {"f\xFC"
         "nf",
         "f\xC3\xBCnf",
         "f\xFC"
         "nf"},
        {"\xC3\xBC \xFC", "\xC3\x83\xC2\xBC \xC3\xBC", "\xC3\xBC \xFC"},
        {"\xED\xA0\x80.", "\xC3\xAD\xC2\xA0\xE2\x82\xAC.", "\xED\xA0\x80."},
    };
    for (const XMLCharset charset : {XMLCharset::Utf8, XMLCharset::Platform}) {
        for (const auto& row : rows) {
            const WithCharset with(charset);
            XMLNode top = XMLNode::createTop("a");
            top.addAttribute("v", row.stored);
            top.addText(row.stored);
            const char* const expected = charset == XMLCharset::Utf8 ? row.utf8 : row.platform;
            EXPECT_STREQ(top.getAttribute("v"), expected);
            EXPECT_STREQ(top.getText(), expected);
            const XMLNode again = XMLNode::parseText(textOf(top).c_str(), "a");
            EXPECT_EQ(orNull(again.getAttribute("v")), expected);
            EXPECT_EQ(orNull(again.getText()), expected);
        }
    }
}

// What goes without a tree becomes the bytes that a tree of it becomes.
TEST(Write, StreamedLikeATree) {
    std::vector<std::string> texts = awkwardTexts();
    // What a tree doesn't take as it is, and lengths around a block of the scanning code.
    texts.insert(texts.end(), {"", std::string("a\0b", 3), "a\x01\x1F z", "\xEF\xBF\xBE", "f\xFCnf",
                               "\xC3\xBC \xFC", "\xED\xA0\x80.", "\xE3\x83"});
    for (size_t length = 1; length < 40; ++length) {
        for (const char* const last : {"x", "\"", "\x7F", "\xE9", "\xC3\xA9"}) {
            texts.push_back(std::string(length - 1, 'x') + last);
        }
    }
    for (const XMLCharset charset : {XMLCharset::Utf8, XMLCharset::Platform}) {
        const WithCharset with(charset);
        for (const std::string& text : texts) {
            XMLNode top = XMLNode::createTop("top", false, XMLCharset::Utf8);
            zoka::XMLStreamWriter stream;
            stream.open("top");
            for (const char* const name : {"none", "value"}) {
                top.addAttribute(name, *name == 'v' ? text.c_str() : "");
                stream.attribute(name, *name == 'v' ? text : "");
            }
            XMLNode node = top;
            for (int depth = 0; depth < 3; ++depth) {
                node.addChild("leaf").addText(text.c_str());
                stream.leaf("leaf", text);
                node.addChild("bare");
                stream.open("bare");
                stream.close();
                node = node.addChild("deeper");
                stream.open("deeper");
                node.addAttribute("v", text.c_str());
                stream.attribute("v", text);
            }
            for (int depth = 0; depth < 4; ++depth) {
                stream.close();
            }
            const zoka::XMLText written = stream.take();
            ASSERT_EQ(written.view(), top.toFileBytes().view());
            ASSERT_EQ(written.bytes.get()[written.length], '\0');
        }
    }
}

// It doesn't stop where it grows deep.
TEST(Write, StreamedDeep) {
    constexpr int kDepth = 10000;
    XMLNode node = XMLNode::createTop("a", false, XMLCharset::Utf8);
    const XMLNode top = node;
    zoka::XMLStreamWriter stream;
    stream.open("a");
    for (int i = 0; i < kDepth; ++i) {
        node = node.addChild("a");
        stream.open("a");
    }
    for (int i = 0; i <= kDepth; ++i) {
        stream.close();
    }
    EXPECT_EQ(stream.take().view(), top.toFileBytes().view());
}

TEST(Write, TreesMadeByAProgram) {
    XMLNode document = XMLNode::createTop(nullptr);
    EXPECT_EQ(textOf(document), "");
    XMLNode declaration = document.addChild("xml", true);
    declaration.addAttribute("version", "1.0");
    XMLNode root = document.addChild("WizardDebug");
    root.addAttribute("action", "Run");
    root.addChild("FilePath").addText("C:\\templates\\a & b.xml");
    EXPECT_EQ(textOf(document, true),
              "<?xml version=\"1.0\"?>\n<WizardDebug action=\"Run\">\n"
              "\t<FilePath>C:\\templates\\a &amp; b.xml</FilePath>\n</WizardDebug>\n");

    // What is put into a declaration stands behind it.
    XMLNode top = XMLNode::createTop("xml", true);
    top.addAttribute("version", "1.0");
    top.addChild("a").addChild("b");
    EXPECT_EQ(textOf(top, true), "<?xml version=\"1.0\"?>\n<a>\n\t<b/>\n</a>\n");
    EXPECT_EQ(textOf(top), "<?xml version=\"1.0\"?><a><b/></a>");
}

// The growing buffer and the blocks of the scanning code, at every length.
TEST(Write, EveryLength) {
    for (size_t length = 0; length < 70; ++length) {
        const std::string name = "n" + std::string(length, 'm'), value(length, 'v');
        const std::string text =
            "<" + name + " " + name + "=\"" + value + "\">" + value + "x<" + name + "/></" + name + ">";
        EXPECT_EQ(textOf(XMLNode::parseText(text.c_str())), text);
    }
}

}  // namespace
