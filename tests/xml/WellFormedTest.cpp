// What is XML and what is not, and where it says so.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/xml/XmlText.h"

using namespace zoka::test;

namespace {

TEST(WellFormed, IsRead) {
    const char* const rows[] = {
        "<a/>", "<a />", "<a\r\n\t/>", "<a></a >", "<a></a\n>", " \n<a/>\t ",
        // names
        "<_/>", "<:/>", "<a:b.c-d_9/>", "<\xC3\xA9l\xC3\xA8ve \xD1\x84='1'/>",
        "<\xE4\xB8\xAD\xC2\xB7\xE6\x96\x87/>", "<a\xCC\x80\xE2\x80\xBF/>", "<\xF0\x90\x80\x80/>", "<xml/>",
        "<aVeryLongNameThatDoesNotFitEightBytes></aVeryLongNameThatDoesNotFitEightBytes>",
        // attributes
        "<a b='' c=\"\"/>", "<a b = 'it is \"quoted\"' c\n=\n\"it's\"/>", "<a b='>' c=']]>' d='--' e='/>'/>",
        "<a b='1' B='2' bb='3'/>", "<a abcdefgh1='1' abcdefgh2='2' ABCDEFGH1='3'/>", "<a b='1\t2\n3\r\n4'/>",
        "<a xml:lang='en' xmlns='x' xmlns:y='z' y:b=''/>",
        // text
        "<a>]] > ]>]</a>", "<a>x > y \" ' = / ? !</a>",
        "<a>\t\r\n\x7F\xC2\x80\xC2\x85\xEF\xBF\xBD\xF4\x8F\xBF\xBF\xED\x9F\xBF\xEE\x80\x80</a>",
        "<a>]]&gt;&#93;]></a>", "<a>\xEF\xBB\xBF</a>",
        // references
        "<a b='&lt;&gt;&amp;&quot;&apos;'>&lt;&gt;&amp;&quot;&apos;</a>",
        "<a>&#9;&#xA;&#13;&#x20;&#0065;&#x00000041;&#xD7FF;&#xE000;&#xfffd;&#x10000;&#x10FFFF;</a>",
        "<a b='&#60;&#38;'/>",
        // comments, CDATA, instructions
        "<!----><a/>", "<!-- <a> & ]]> - -> ?> \xC3\xA9 --><a/><!-- after -->",
        "<a><!-- \t\r\n --><!--->--></a>", "<a><![CDATA[]]></a>", "<a><![CDATA[<b>&x;</b> ]] ]> > ]]]]></a>",
        "<a><![CDATA[<![CDATA[]]></a>", "<?p?><a/>", "<?p d?a>?><a><?q?></a><?xml-stylesheet href='x'?>",
        "<?xmlx?><a/>",
        "<?p ?"
        "?><a/>",
        // the declaration
        "<?xml version='1.0'?><a/>", "<?xml version=\"1.0\" encoding='UTF-8'?><a/>",
        "<?xml\n version\t= '1.0'\r\nencoding = \"x-A.b_1\" standalone='no' ?>\n<a/>",
        "<?xml version='1.0' standalone=\"yes\"?><a/>",
        // DOCTYPE
        "<!DOCTYPE a><a/>", "<!-- c --><!DOCTYPE a SYSTEM 'it is > here'><a/>",
        "<!DOCTYPE a PUBLIC \"-//x//y\" \"z\" [ <!ELEMENT a (#PCDATA)> <!-- ' > ]> --> <?p ' ]> ?>\n"
        " <!ENTITY e \"]>\"> %pe; ] ><a/>"};
    for (const char* row : rows) {
        EXPECT_EQ(verdict(row), "0") << row;
    }
}

TEST(WellFormed, IsRefusedWithCodeAndPlace) {
    const struct {
        const char* verdict;
        std::vector<const char*> texts;
    } rows[] = {
        // nothing, or not this
        {"2 0:0", {"", " \r\n\t"}},
        {"11 2:7", {"<!-- c -->\n<?p?> "}},
        {"11 1:13", {"<!DOCTYPE a>"}},
        {"3 2:2", {"\n x<a/>"}},
        {"3 1:1", {"&amp;<a/>", "<![CDATA[x]]><a/>", "</a>"}},
        {"9 1:5", {"<a/>x", "<a/><![CDATA[]]>", "<a/><b/>"}},
        {"9 2:1", {"<a/>\n&#32;"}},
        {"7 1:8", {"<a></a></a>"}},
        // element tags
        {"4 1:2", {"<>", "< a/>", "<-a/>", "<.a/>", "<\xC3\x97/>", "<\xC2\xB7/>"}},
        {"4 1:5", {"<a><1/></a>"}},
        {"1 1:5", {"<a><"}},
        {"10 1:2", {"<"}},
        {"9 1:3", {"<a\xC3\x97/>", "<a\xCD\xBE/>", "<a$/>"}},
        {"9 1:4", {"<a/ >"}},
        {"9 1:5", {"<a / >"}},
        {"10 1:3", {"<a"}},
        {"10 1:9", {"<a b='1'"}},
        {"1 1:6", {"<a><b"}},
        {"9 2:1", {"<a\n<b/>"}},
        {"1 1:4", {"<a>"}},
        {"1 2:8", {"<a>\n<b>text"}},
        {"7 1:4", {"<a></b>", "<a></A>", "<a></ab>"}},
        {"7 2:5", {"<a>\n <b></a></b>"}},
        {"7 1:5", {"<ab></a>"}},
        {"5 1:6", {"<a></>", "<a></ a>"}},
        {"9 1:8", {"<a></a b='1'>"}},
        {"9 1:7", {"<a></a/>"}},
        {"1 1:7", {"<a></a"}},
        // attributes
        {"9 1:5", {"<a b/>", "<a b>"}},
        {"9 1:6", {"<a b=/>", "<a b=1/>", "<a b c='1'/>"}},
        {"9 1:4", {"<a 'b'/>", "<a ='b'/>", "<a 1b='c'/>"}},
        {"9 1:9", {"<a b='1'c='2'/>", "<a b='1\t\x02'/>"}},
        {"6 1:6", {"<a b='1\n2", "<a b=\"1'/>"}},
        {"9 1:7", {"<a b='<'/>"}},
        {"10 1:16", {"<a b='1' c='2' b='3'/>"}},
        {"10 1:30", {"<a abcdefghi='' abcdefghj='' abcdefghi=''/>"}},
        // text and references
        {"8 1:4", {"<a>]]></a>"}},
        {"8 1:5", {"<a>x]]>y</a>"}},
        {"8 1:6", {"<a>x]]]></a>"}},
        {"9 1:4", {"<a>\x01</a>", "<a>\x1F</a>", "<a>\xEF\xBF\xBE</a>", "<a>\xEF\xBF\xBF</a>"}},
        {"15 1:4",
         {"<a>\xED\xA0\x80</a>", "<a>\xC0\x80</a>", "<a>\xE0\x80\xBC</a>", "<a>\xF0\x80\x80\xBC</a>",
          "<a>\xF4\x90\x80\x80</a>", "<a>\x80</a>", "<a>\xFF</a>"}},
        {"15 1:5", {"<a>\xC3\xA9\xE2\x82</a>"}},
        {"14 1:4",
         {"<a>&</a>", "<a>& </a>", "<a>&lt</a>", "<a>&LT;</a>", "<a>&nbsp;</a>", "<a>&#;</a>", "<a>&#x;</a>",
          "<a>&#65</a>", "<a>&#X41;</a>", "<a>&#4F;</a>", "<a>&# 65;</a>", "<a>&#0;</a>", "<a>&#x1F;</a>",
          "<a>&#xD800;</a>", "<a>&#xFFFE;</a>", "<a>&#x110000;</a>", "<a>&#4294967361;</a>",
          "<a>&#x100000041;</a>"}},
        {"14 2:1", {"<a b='\n&x;'/>"}},
        // comments, CDATA, instructions
        {"8 1:4", {"<a><!-- x", "<a><!--></a>", "<a><![CDATA[ ]]</a>", "<a><?", "<a><?p", "<a><?p d"}},
        {"8 2:6", {"<a>\n<!-- -- --></a>"}},
        {"8 1:9", {"<a><!-- ---></a>"}},
        {"10 1:4", {"<a><!- x --></a>", "<a><![cdata[]]></a>", "<a><! [CDATA[]]></a>", "<a><?xml?></a>"}},
        {"9 1:9", {"<a><!-- \x02 --></a>"}},
        {"9 1:13", {"<a><![CDATA[\x02]]></a>", "<a><![CDATA[\xEF\xBF\xBF]]></a>"}},
        {"4 1:6", {"<a><? p?></a>", "<a><?1?></a>"}},
        {"9 1:7", {"<a><?p+?></a>"}},
        {"9 1:8", {"<a><?p \x02?></a>"}},
        {"10 1:1", {"<?XML version='1.0'?><a/>"}},
        {"10 1:5", {"<a/><?xMl?>"}},
        {"10 2:1", {"\n<?xml version='1.0'?><a/>"}},
        {"10 1:8", {"<!----><?xml version='1.0'?><a/>"}},
        {"10 1:22", {"<?xml version='1.0'?><?xml version='1.0'?><a/>"}},
        // the declaration
        {"10 1:6", {"<?xml?><a/>"}},
        {"10 1:7", {"<?xml ?><a/>", "<?xml encoding='utf-8'?><a/>", "<?xml Version='1.0'?><a/>"}},
        {"10 1:15", {"<?xml version=1.0?><a/>"}},
        {"10 1:16", {"<?xml version='1'?><a/>", "<?xml version='1.'?><a/>", "<?xml version='2.0'?><a/>"}},
        {"10 1:19", {"<?xml version='1.0 '?><a/>"}},
        {"10 1:20", {"<?xml version='1.0'encoding='utf-8'?><a/>", "<?xml version='1.0'><a/>"}},
        {"10 1:31",
         {"<?xml version='1.0' encoding=''?><a/>", "<?xml version='1.0' encoding='1'?><a/>",
          "<?xml version='1.0' encoding='_a'?><a/>", "<?xml version='1.0' encoding='a:b'?><a/>"}},
        {"10 1:33", {"<?xml version='1.0' standalone='Yes'?><a/>"}},
        {"10 1:38", {"<?xml version='1.0' standalone='yes' encoding='utf-8'?><a/>"}},
        {"10 1:21",
         {"<?xml version='1.0' version='1.0'?><a/>", "<?xml version='1.0' foo='x'?><a/>",
          "<?xml version='1.0' ? ><a/>"}},
        {"6 1:15", {"<?xml version='1.0"}},
        // DOCTYPE
        {"10 1:1", {"<!DOCTYPE><a/>", "<!DOCTYPEa><a/>", "<!doctype a><a/>", "<!ELEMENT a><a/>"}},
        {"9 1:11", {"<!DOCTYPE 1><a/>"}},
        {"8 1:1", {"<!DOCTYPE a [ <a/>", "<!DOCTYPE a \"><a/>"}},
        {"9 1:13", {"<!DOCTYPE a ]><a/>"}},
        {"9 1:15", {"<!DOCTYPE a [ > ]><a/>"}},
        {"10 1:13", {"<!DOCTYPE a><!DOCTYPE a><a/>"}},
        {"10 1:5", {"<a/><!DOCTYPE a>"}},
        {"10 1:4", {"<a><!DOCTYPE a></a>"}},
    };
    for (const auto& row : rows) {
        for (const char* text : row.texts) {
            EXPECT_EQ(verdict(text), row.verdict) << text;
        }
    }
}

TEST(WellFormed, AZeroInsideIsABadCharacter) {
    const std::pair<std::string_view, const char*> rows[] = {{{"<a>\0</a>", 8}, "9 1:4"},
                                                             {{"<a b='\0'/>", 10}, "9 1:7"},
                                                             {{"<a/>\0", 5}, "9 1:5"},
                                                             {{"<a><!--\0--></a>", 15}, "9 1:8"},
                                                             {{"\0<a/>", 5}, "3 1:1"}};
    for (const auto& [bytes, expected] : rows) {
        XMLResults results;
        EXPECT_EQ(verdict(XMLNode::parseBytes(bytes, nullptr, &results), results), expected) << bytes;
    }
}

// An attribute's name twice, wherever among how many, is found; and a great many take no quadratic time.
TEST(WellFormed, DoubledAttributesAmongMany) {
    for (const int count : {2, 31, 32, 33, 34, 100, 20000}) {
        std::string good = "<a";
        for (int i = 0; i < count; ++i) {
            good += " n" + std::to_string(i) + "=''";
        }
        EXPECT_EQ(verdict((good + "/>").c_str()), "0") << count;
        for (const int again : {0, count / 2, count - 1}) {
            const std::string bad = good + " n" + std::to_string(again) + "=''/>";
            EXPECT_EQ(verdict(bad.c_str()), "10 1:" + std::to_string(good.size() + 2))
                << count << " " << again;
        }
    }
}

// Reading ends and decodes names, values and texts in place; the place of an error behind them must not
// suffer.
TEST(WellFormed, PlacesAreRightBehindEverythingThatIsEdited) {
    const std::vector<std::string> pieces = {
        // elements
        "<b/>", "<b\n/>", "<b\r\n/>", "<b\r/>", "<b\nc\n=\n'1'\n/>", "<b c='1\n2'/>",
        "<b c='1\r\n2&amp;\n'/>", "<b c='&#10;' d='x\ry'/>", "<b>\n</b\n>",
        "<b\nc='\xC3\xA9&lt;'>\xC3\xA9</b>",
        // texts and what is passed over
        "text\n", "\n text\r\n\t", "a&amp;\nb\n", "a\r\nb&#10;\r\n", "\r&#10;", "\r&lt;\r\r",
        "\xC3\xA9&amp;\xC3\xA9", "\xE2\x82\xAC ", "<!--\n\r\n-->", "<![CDATA[\r]]>", "<?p\n\nd\n?>", " "};
    for (size_t i = 0; i < pieces.size(); ++i) {
        for (size_t j = 0; j < pieces.size(); ++j) {
            for (size_t k = 0; k < pieces.size(); ++k) {
                const std::string text = "<a>" + pieces[i] + pieces[j] + pieces[k];
                int line = 1, column = 1;
                for (size_t p = 0; p < text.size(); ++p) {
                    const bool ends = text[p] == '\n' || (text[p] == '\r' && text[p + 1] != '\n');
                    line += ends;
                    column = ends ? 1 : column + ((text[p] & 0xC0) != 0x80);
                }
                ASSERT_EQ(verdict((text + "</x>").c_str()),
                          "7 " + std::to_string(line) + ":" + std::to_string(column))
                    << text;
            }
        }
    }
}

}  // namespace
