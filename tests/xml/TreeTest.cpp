// Trees in memory: what reading makes of a text, lookups, handles, trees made by a program.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "tests/xml/XmlText.h"

using namespace zoka::test;

namespace {

TEST(Tree, ValuesAndTextsAreNormalised) {
    const struct {
        const char* text;
        const char* value;  // of the attribute v
        const char* content;
    } rows[] = {
        {"<a v=''></a>", "", "<null>"},
        {"<a v='  x '>  x \n</a>", "  x ", "x"},
        {"<a v='1\t2\n3\r\n4\r5'>1\t2\n3\r\n4\r5</a>", "1 2 3 4 5", "1\t2\n3\n4\n5"},
        {"<a v='&#9;&#10;&#13;&#32;'>&#9;&#10;&#13;&#32;</a>", "\t\n\r ", "\t\n\r "},
        {"<a v='&lt;&gt;&amp;&quot;&apos;'>&lt;&gt;&amp;&quot;&apos;</a>", "<>&\"'", "<>&\"'"},
        {"<a v='&amp;lt;&#38;lt;'>&amp;lt;&#38;lt;</a>", "&lt;&lt;", "&lt;&lt;"},
        {"<a v='&#233;&#x20AC;&#x1F600;'>&#233;&#x20AC;&#x1F600;</a>", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
         "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
        {"<a v='\"'> \n &#32; x &#32;\n </a>", "\"", "  x  "},
        {"<a v=\"'\"> \t\n</a>", "'", "<null>"},
        {"<a v=''>x&amp;\r\n</a>", "", "x&"},
    };
    for (const auto& row : rows) {
        const XMLNode node = XMLNode::parseText(row.text, "a");
        EXPECT_EQ(orNull(node.getAttribute("v")), row.value) << row.text;
        EXPECT_EQ(orNull(node.getText()), row.content) << row.text;
    }
}

TEST(Tree, ContentInDocumentOrder) {
    const XMLNode document = XMLNode::parseText(
        "<?xml version='1.0' encoding='utf-8'?>\n<!-- one -->\n<!DOCTYPE a [<!ENTITY e 'x'>]>\n<?go for it ?>"
        "<a x='1' y='2'> first <b/> second <!-- c --> third <![CDATA[ <raw> ]]><B/></a>");
    EXPECT_EQ(
        dumpXml(document),
        "<null?'xml' @'version'='1.0' @'encoding'='utf-8'>\n C'<!--'' one ''-->' C'<!DOCTYPE'' a [<!ENTITY e "
        "'x'>]''>'?'go' T'for it '>\n<'a' @'x'='1' @'y'='2' T'first'<'b'>\n T'second' C'<!--'' c ''-->' "
        "T'third' C'<![CDATA['' <raw> '']]>'<'B'>\n>\n>\n");

    const XMLNode a = document.getChild("A");
    EXPECT_EQ(a.order(), (std::vector<int>{0 * 4 + kXmlAttribute, 1 * 4 + kXmlAttribute, 0 * 4 + kXmlText,
                                           0 * 4 + kXmlChild, 1 * 4 + kXmlText, 0 * 4 + kXmlClear,
                                           2 * 4 + kXmlText, 1 * 4 + kXmlClear, 1 * 4 + kXmlChild}));
    EXPECT_EQ(a.textCount(), 3);
    EXPECT_EQ(a.getText(3), nullptr);
    EXPECT_EQ(a.clearCount(), 2);
    EXPECT_EQ(a.getClear(2).value, nullptr);
    EXPECT_EQ(a.attributeCount(), 2);
    EXPECT_EQ(a.getAttributeAt(2).name, nullptr);
    EXPECT_EQ(a.getParent(), document);
    EXPECT_TRUE(document.getParent().isEmpty());
}

TEST(Tree, NamesAreFoundWithoutRegardToCase) {
    const XMLNode a = XMLNode::parseText(
        "<a Name='1' DIRECTORY='2' directoryX='3'><Script n='0'/><Other/><SCRIPT n='1'/><Scripts/></a>", "A");
    EXPECT_STREQ(a.getChild("script", 1).getAttribute("N"), "1");
    EXPECT_TRUE(a.getChild("script", 2).isEmpty());
    EXPECT_TRUE(a.getChild("script", -1).isEmpty());
    EXPECT_EQ(a.childCount("sCRIPT"), 2);
    EXPECT_EQ(a.childCount(), 4);
    EXPECT_STREQ(a.getChild(3).getName(), "Scripts");
    EXPECT_STREQ(a.getAttribute("name"), "1");
    EXPECT_STREQ(a.getAttribute("Directory"), "2");
    EXPECT_STREQ(a.getAttribute("DIRECTORYx"), "3");
    for (const char* none : {"directoryXY", "nam", ""}) {
        EXPECT_EQ(a.getAttribute(none), nullptr) << none;
    }
    EXPECT_TRUE(a.hasAttribute("NAME"));
    EXPECT_FALSE(a.hasAttribute("names"));
    // Neighbours of the letters in the character table are no letters.
    const XMLNode b = XMLNode::parseText("<b a_='1'/>", "b");
    EXPECT_EQ(b.getAttribute("A\x7F"), nullptr);
    EXPECT_TRUE(XMLNode::parseText("<\xC3\x84/>").getChild("\xC3\xA4").isEmpty());
    // An attribute holds half a key of its name: of these both have the same.
    const XMLNode c = XMLNode::parseText("<c aaaap = '1' iaaaq='2'/>", "c");
    EXPECT_STREQ(c.getAttribute("IAAAQ"), "2");
    EXPECT_STREQ(c.getAttribute("aaaap"), "1");
    const XMLNode d = XMLNode::parseText("<d aaaap='1'/>", "d");
    EXPECT_EQ(d.getAttribute("iaaaq"), nullptr);
}

TEST(Tree, IteratorsWalkOneNameOrAll) {
    const XMLNode a = XMLNode::parseText("<a><x/>text<y/><X/><!-- c --><y/><x/></a>", "a");
    const auto positions = [&](const char* tag) {
        std::string found;
        int at = 0;
        while (!a.getChild(tag, &at).isEmpty()) {
            found += std::to_string(at);
        }
        return found;
    };
    EXPECT_EQ(positions("x"), "135");
    EXPECT_EQ(positions("Y"), "24");
    EXPECT_EQ(positions("z"), "");
    EXPECT_EQ(positions(nullptr), "12345");
    std::string names;
    for (XMLNode n = a.firstChild(); !n.isEmpty(); n = n.nextSibling()) {
        names += n.getName();
    }
    EXPECT_EQ(names, "xyXyx");
    int found = 0;
    for (XMLNode n = a.firstChild("x"); !n.isEmpty(); n = n.nextSibling("x")) {
        ++found;
    }
    EXPECT_EQ(found, 3);

    XMLNode b = XMLNode::createTop("b");
    for (const char* value : {"1", "2", "3"}) {
        b.addAttribute("v", value);
    }
    b.addAttribute("w", nullptr);
    int at = 0;
    for (const char* value : {"1", "2", "3"}) {
        EXPECT_STREQ(b.getAttribute("V", &at), value);
    }
    EXPECT_EQ(b.getAttribute("V", &at), nullptr);
    EXPECT_EQ(at, 3);
    EXPECT_EQ(b.getAttribute("w"), nullptr);
    EXPECT_TRUE(b.hasAttribute("w"));
}

TEST(Tree, TheEmptyNodeAnswersEverything) {
    XMLNode empty = XMLNode::emptyNode();
    int at = 0;
    for (const XMLNode& node :
         {empty, empty.getChild("x"), empty.getChild(0), empty.getChild("x", &at), empty.firstChild(),
          empty.nextSibling(), empty.getParent(), empty.addChild("x")}) {
        EXPECT_TRUE(node.isEmpty());
    }
    empty.addText("x");
    empty.addAttribute("x", "y");
    EXPECT_EQ(empty.getName(), nullptr);
    EXPECT_EQ(empty.getText(), nullptr);
    EXPECT_EQ(empty.getAttribute("x"), nullptr);
    EXPECT_FALSE(empty.hasAttribute("x"));
    EXPECT_FALSE(empty.isDeclaration());
    EXPECT_EQ(empty.childCount() + empty.childCount("x") + empty.textCount() + empty.clearCount(), 0);
    EXPECT_EQ(empty.attributeCount(), 0);
    EXPECT_TRUE(empty.order().empty());
    EXPECT_EQ(empty.toText(), nullptr);
    EXPECT_EQ(empty.writeFile("never.xml"), kXmlCannotOpenForWriting);
    EXPECT_TRUE(XMLNode::emptyNode().isEmpty());
    const XMLNode a = XMLNode::parseText("<a/>", "a");
    EXPECT_TRUE(a.getChild(static_cast<const char*>(nullptr)).isEmpty());
    EXPECT_EQ(a.getAttribute(nullptr), nullptr);
}

TEST(Tree, TheTopTagIsAskedFor) {
    EXPECT_EQ(verdict("<Project/>", "project"), "0");
    EXPECT_EQ(verdict("<?xml version='1.0'?>\n <!-- c -->  <Wizard\n/>", "Project"), "13 2:14");
    EXPECT_EQ(verdict("<Wizard>", "Project"), "1 1:9");
    EXPECT_STREQ(XMLNode::parseText("<?xml version='1.0'?><Project/>", "PROJECT").getName(), "Project");
    EXPECT_TRUE(XMLNode::parseText(nullptr).isEmpty());
}

// Handles keep the whole tree; the address sanitizer watches.
TEST(Tree, HandlesOnChildrenOutliveTheRoot) {
    XMLNode child;
    const char* text = nullptr;
    {
        const XMLNode root = XMLNode::parseText("<a><b v='1'><c>deep text</c></b></a>", "a");
        child = root.getChild("b").getChild("c");
        text = child.getText();
    }
    EXPECT_STREQ(text, "deep text");
    EXPECT_STREQ(child.getParent().getAttribute("v"), "1");
    XMLNode copy = child;
    child = child.getParent().getParent();
    EXPECT_STREQ(child.getName(), "a");
    child = XMLNode();
    EXPECT_STREQ(copy.getName(), "c");
    XMLNode& same = copy;
    copy = same;
    EXPECT_STREQ(copy.getName(), "c");
    XMLNode moved = std::move(copy);
    copy = moved;
    EXPECT_EQ(copy, moved);
    copy = XMLNode::parseText("<z/>", "z");
    EXPECT_STREQ(copy.getName(), "z");
    EXPECT_STREQ(moved.getText(), "deep text");
}

TEST(Tree, GrowsAtEveryPlace) {
    XMLNode root = XMLNode::parseText("<a x='1'>text<b/></a>", "a");
    for (int i = 0; i < 100; ++i) {
        const std::string n = std::to_string(i);
        root.addAttribute(("n" + n).c_str(), n.c_str());
        XMLNode child = root.addChild("child");
        child.addText(n.c_str());
        child.addText(nullptr);
        child.addText("");
    }
    root.addText("end");
    EXPECT_EQ(root.attributeCount(), 101);
    EXPECT_STREQ(root.getAttribute("x"), "1");
    EXPECT_STREQ(root.getAttribute("N99"), "99");
    EXPECT_EQ(root.childCount("child"), 100);
    EXPECT_STREQ(root.getChild("child", 57).getText(), "57");
    EXPECT_EQ(root.getChild("child", 57).textCount(), 1);
    EXPECT_STREQ(root.getText(1), "end");
    EXPECT_EQ(root.order().back(), 1 * 4 + kXmlText);

    const std::string large(300000, 'x');
    XMLNode top = XMLNode::createTop("t");
    top.addChild("c").addText(large.c_str());
    top.addChild("d").addAttribute("v", large.c_str());
    EXPECT_EQ(textOf(top), "<t><c>" + large + "</c><d v=\"" + large + "\"/></t>");
}

// Each of these would take minutes if every lookup started at the first item. Loops run inside one another
// and over several names at once.
TEST(Tree, LookupsByIndexInTurnAreLinear) {
    constexpr int count = 60000;
    std::string text = "<a>";
    for (int i = 0; i < count; ++i) {
        text += "<x><i/></x>t<!---->" + std::string(i % 2 ? "<y/>" : "");
    }
    const XMLNode a = XMLNode::parseText((text + "</a>").c_str(), "a");
    int found = 0;
    for (int i = 0; !a.getChild("x", i).isEmpty(); ++i) {
        found += !a.getChild("x", i).getChild("i", 0).isEmpty();
        found += !a.getChild("Y", i / 2).isEmpty();
        found += a.getText(i) != nullptr;
        found += a.getClear(i).value != nullptr;
        found += !a.getChild(i).isEmpty();
    }
    EXPECT_EQ(found, 5 * count);
    int x = 0, y = 0, steps = 0;
    while (!a.getChild("x", &x).isEmpty()) {
        steps += a.getChild("y", &y).isEmpty() ? 1 : 2;
    }
    EXPECT_EQ(steps, count + count / 2);
    // Going back.
    EXPECT_STREQ(a.getChild("x", count - 1).getChild(0).getName(), "i");
    EXPECT_STREQ(a.getChild(2).getName(), "y");
    EXPECT_STREQ(a.getChild(10).getName(), "x");
}

// A list that is walked backwards and names that are asked for in turn are what a panel does on each repaint. Starting
// from the first child at each step would take ten thousand times as long as going on from child to child, and it
// should be far below the square root of their number, 200. It is seven to ten.
TEST(Tree, LookupsByIndexCostAFewStepsOfAWalk) {
    constexpr int count = 40000, names = 12;
    constexpr int most = 30;
    std::string text = "<a>";
    std::vector<std::string> tags;
    for (int i = 0; i < names; ++i) {
        tags.push_back("tag" + std::to_string(i));
    }
    for (int i = 0; i < count; ++i) {
        text += "<" + tags[static_cast<size_t>(i % names)] + "/>";
    }
    text += "</a>";
    // ms, the least of some rounds. The walks are timed together, because on a loaded machine what takes long is
    // interrupted more often than what takes short.
    double walks = 1e9, back = 1e9, inTurn = 1e9;
    int found = 0;
    const auto msOf = [](const auto& work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    };
    for (int round = 0; round < 5; ++round) {
        const XMLNode a = XMLNode::parseText(text.c_str(), "a"), b = XMLNode::parseText(text.c_str(), "a");
        found = 0;
        walks = std::min(walks, msOf([&] {
                             for (int walk = 0; walk < most; ++walk) {
                                 for (XMLNode child = a.firstChild(); !child.isEmpty();
                                      child = child.nextSibling()) {
                                     ++found;
                                 }
                             }
                         }));
        back = std::min(back, msOf([&] {
                            for (int i = count - 1; i >= 0; --i) {
                                found += !a.getChild(i).isEmpty();
                            }
                        }));
        inTurn = std::min(
            inTurn, msOf([&] {
                for (int i = 0; i < count; ++i) {
                    found += !b.getChild(tags[static_cast<size_t>(i % names)].c_str(), i / names).isEmpty();
                }
            }));
    }
    EXPECT_EQ(found, (most + 2) * count);
    EXPECT_LT(back, walks);
    EXPECT_LT(inTurn, walks);
}

// Each of these, too: from the end, over many names in turn, at random, counting each time, and while it grows.
TEST(Tree, LookupsByIndexInAnyOrderAreLinear) {
    constexpr int count = 60000;
    constexpr int names = 12;
    std::string text = "<a>";
    for (int i = 0; i < count; ++i) {
        const std::string name = "LongEnoughName" + std::string(1, static_cast<char>('a' + i % names));
        text += "t<" + name + " i='" + std::to_string(i) + "'/><!---->";
    }
    XMLNode a = XMLNode::parseText((text + "</a>").c_str(), "a");
    const auto number = [](const XMLNode& node) {
        const char* const value = node.getAttribute("i");
        return value ? std::atoi(value) : -1;
    };
    int wrong = 0;
    for (int i = count - 1; i >= 0; --i) {
        wrong += number(a.getChild(i)) != i;
        wrong += a.getText(i) == nullptr || a.getClear(i).value == nullptr;
    }
    int positions[names] = {};
    for (int i = 0; i < count; ++i) {
        const std::string name = "longenoughname" + std::string(1, static_cast<char>('A' + i % names));
        wrong += number(a.getChild(name.c_str(), i / names)) != i;
        wrong += number(a.getChild(name.c_str(), &positions[i % names])) != i;
        wrong += number(a.getChild(static_cast<int>(i * 7919LL % count))) != i * 7919LL % count;
        wrong += a.childCount(name.c_str()) != count / names;
        wrong += !a.getChild("longenoughname").isEmpty();
    }
    EXPECT_EQ(wrong, 0);
    for (int i = count; i < 2 * count; ++i) {
        a.addChild("new").addAttribute("i", std::to_string(i).c_str());
        wrong += number(a.getChild("New", i - count)) != i || number(a.getChild(i / 2)) != i / 2;
        wrong += a.childCount() != i + 1;
    }
    int position = count + 5;
    EXPECT_EQ(number(a.getChild("new", &position)), count + 5);
    EXPECT_EQ(position, count + 6);
    EXPECT_TRUE(a.getChild("new", count).isEmpty());
    EXPECT_TRUE(a.getChild(2 * count).isEmpty());
    EXPECT_EQ(wrong, 0);
}

}  // namespace
