// Character sets: guessing, files with and without marks, the platform's set.
#include <gtest/gtest.h>

#include <array>
#include <future>
#include <string>

#include "tests/support/TempFolder.h"
#include "tests/xml/XmlText.h"
#include "xml/XMLNames.h"

using zoka::guessUtf8;
using namespace zoka::test;

namespace {

constexpr char kMark[] = "\xEF\xBB\xBF";

std::string utf16(const std::u16string& text, bool bigEndian) {
    std::string bytes;
    for (const char16_t unit : u"\xFEFF" + text) {
        const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}

std::string readBytes(std::string_view bytes) {
    XMLResults results;
    const XMLNode node = XMLNode::parseBytes(bytes, nullptr, &results);
    return node.isEmpty() ? verdict(node, results) : orNull(node.getChild("a").getText());
}

TEST(Charset, GuessesUtf8) {
    const std::string fill(30, ' ');
    const std::string far(195, ' ');
    const std::string utf8[] = {
        // by its bytes
        std::string(25, 'x'), kMark + fill, kMark + fill + "\xFF",
        fill + "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", far + "xxxx\xE2\x82\xAC", far + "xxxx\xE2zz",
        far + "xxxxx\xFF",
        // by what it says
        "<?xml version='1.0' encoding='utf-8'?>", "<?xml version='1.0' encoding \t\r\n= \n\"UTF8-x'?>",
        "<?xml version='1.0' encoding=utf-7 ?>", "<?xml version='1.0' encoding utf-7 ?>",
        "<?xml version='1.0' encoding      =   ", far + "encoding='x'"};
    const std::string others[] = {
        // by its bytes
        "<a/>", std::string(24, 'x'), std::string(kMark) + "<a/>", "\xFF\xFE" + fill, "\xFE\xFF" + fill,
        std::string("<\0a\0", 4) + fill, fill + "\xE9 ", fill + "\xA9", fill + "\xE2\x82",
        fill + "\xFC\x80\x80\x80\x80\x80",
        // by what it says
        "<?xml version='1.0' encoding='iso-8859-1'?>", "<?xml version='1.0' encoding=''?>     ",
        "<?xml version='1.0' encoding='utf"};
    for (const std::string& bytes : utf8) {
        EXPECT_TRUE(guessUtf8(bytes)) << bytes;
    }
    for (const std::string& bytes : others) {
        EXPECT_FALSE(guessUtf8(bytes)) << bytes;
    }
}

TEST(Charset, FilesBecomeUtf8) {
    const std::u16string wide = u"<a>\u00E9\u20AC\U0001F600</a>";
    const std::string text = "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
    const struct {
        std::string bytes, result;
    } rows[] = {
        {"<a>" + text + "</a>", text},
        {kMark + ("<a>" + text + "</a>"), text},
        {kMark + ("<?xml version='1.0' encoding='utf-8'?><a>" + text + "</a>"), text},
        {utf16(wide, false), text},
        {utf16(wide, true), text},
        {utf16(u"<?xml version='1.0' encoding='UTF-16'?><a>x</a>", true), "x"},
        {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9\x80</a>", "\xC3\xA9\xC2\x80"},
        {"<?xml version='1.0' encoding='windows-1252'?><a>\xE9\x80</a>", "\xC3\xA9\xE2\x82\xAC"},
        {"<?xml version='1.0' encoding='x-unknown'?><a>x</a>", "x"},
        // what isn't as it says: a mark counts more than a declaration, the bytes more than both
        {utf16(u"<?xml version='1.0' encoding='utf-8'?><a>\u00E9</a>", false), "\xC3\xA9"},
        {std::string(kMark) + "<?xml version='1.0' encoding='iso-8859-1'?><a>\xC3\xA9</a>", "\xC3\xA9"},
        {"<?xml version='1.0' encoding='UTF-16'?><a>\xC3\xA9</a>", "\xC3\xA9"},
        {"<a>" + std::string(300, 'x') + "\xE9</a>", std::string(300, 'x') + "\xC3\xA9"},
        {"<a>\xC3\xA9 \x80</a>", "\xC3\x83\xC2\xA9 \xE2\x82\xAC"},
        {"<?xml version='1.0' encoding='utf-8'?><a>\xE9</a>", "\xC3\xA9"},
        {"<?xml version='1.0' encoding='x-unknown'?><a>\n\xE9</a>", "\xC3\xA9"},
        {kMark + std::string("<a>\xE9</a>"), "\xC3\xA9"},
        {"<!--\xE9--><a b='\xE9'>x</a>", "x"},
        {"<a>x\xE9</b>", "7 1:6"},
        // what can't be converted
        {utf16(u"<a>\n<", false) + "x", "15 2:2"},
        {utf16(u"<a>\xD800</a>", false), "15 1:4"},
        {utf16(u"<a>x\xDC00</a>", true), "15 1:5"},
        {utf16(u"<a>\xD800", true), "15 1:4"},
        {kMark, "2 0:0"},
        {"\xFF\xFE", "2 0:0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(readBytes(row.bytes), row.result) << row.bytes;
    }
    EXPECT_EQ(textOf(XMLNode::parseText("\xEF\xBB\xBF<a/>")), "<a/>");
}

TEST(Charset, WithoutGuessingBytesAreTakenAsTheyAre) {
    zoka::setXmlCharsetGuessing(false);
    EXPECT_EQ(readBytes(std::string(kMark) + "<a>x</a>"), "3 1:1");
    EXPECT_EQ(readBytes(utf16(u"<a>x</a>", false)), "3 1:1");
    EXPECT_EQ(readBytes("<a>x</a>"), "x");
    zoka::setXmlCharsetGuessing(true);
}

TEST(Charset, InThePlatformsSetHighBytesAreCharacters) {
    const WithCharset with(XMLCharset::Platform);
    EXPECT_EQ(readBytes("<a>\xE9\x80\xFF</a>"), "\xE9\x80\xFF");
    EXPECT_EQ(readBytes("<a>&#233;</a>"), "\xE9");
    EXPECT_EQ(readBytes("<a>&#x20AC;</a>"), "\x80");
    EXPECT_EQ(readBytes("<a>x &#x4E2D;</a>"), "15 1:6");
    EXPECT_EQ(readBytes(utf16(u"<a>\u00E9\u20AC</a>", false)), "\xE9\x80");
    EXPECT_EQ(readBytes(utf16(u"<a>\u00E9\u4E2D</a>", false)), "15 1:5");
    EXPECT_EQ(readBytes(std::string(kMark) + "<a>\xC3\xA9</a>"), "\xE9");
    EXPECT_EQ(readBytes("<?xml version='1.0' encoding='utf-8'?><a>\xC3\xA9</a>"), "\xE9");
    EXPECT_EQ(readBytes("<?xml version='1.0' encoding='windows-1250'?><a>\xC3\xA9</a>"), "\xC3\xA9");
    const XMLNode node = XMLNode::parseText("<\xE9l\xE9ve \xFC='1'>x</\xE9l\xE9ve>");
    EXPECT_STREQ(node.getChild("\xE9L\xE9VE").getAttribute("\xFC"), "1");
    EXPECT_EQ(verdict("<a>\xE9\x01</a>"), "9 1:5");
}

// In a set with two-byte characters the second byte may look like a letter or a bracket; it is neither.
TEST(Charset, TwoByteCharactersAreWhole) {
    const WithCharset with(XMLCharset::Platform);
    static const std::array<bool, 256> leads = [] {
        std::array<bool, 256> flags{};
        for (int byte = 0x81; byte < 0xA0; ++byte) {
            flags[static_cast<size_t>(byte)] = true;
        }
        return flags;
    }();
    struct Restore {
        zoka::XMLLeads before = zoka::g_xmlPlatformLeads;
        ~Restore() { zoka::g_xmlPlatformLeads = before; }
    } const restore;
    zoka::g_xmlPlatformLeads = leads.data();
    const std::string text = "<\x83[x\x83K><b \x83K=\"1\" \x83k=\"2\"/></\x83[x\x83K>";
    const XMLNode document = XMLNode::parseText(text.c_str());
    EXPECT_EQ(textOf(document), text);
    EXPECT_FALSE(document.getChild("\x83[X\x83K").isEmpty());
    EXPECT_TRUE(document.getChild("\x83[x\x83k").isEmpty());
    EXPECT_STREQ(document.getChild(0).getChild("B").getAttribute("\x83k"), "2");
    // Behind the first eight bytes, too; a lead byte may be the eighth.
    const XMLNode tails = XMLNode::parseText("<a><n234567\x83K/><n23456789\x83K/></a>", "a");
    EXPECT_FALSE(tails.getChild("N234567\x83K").isEmpty());
    EXPECT_TRUE(tails.getChild("n234567\x83k").isEmpty());
    EXPECT_FALSE(tails.getChild("N23456789\x83K").isEmpty());
    EXPECT_TRUE(tails.getChild("n23456789\x83k").isEmpty());
    // Columns count characters, also behind what was decoded in place.
    EXPECT_EQ(verdict("<a \x83K='\x83[&amp;\x83]'>\x83K&lt;\x83K</b>"), "7 1:22");
    // A lead byte without a second one is a character of its own.
    EXPECT_EQ(verdict("<a\x83"), "10 1:4");
}

// Each tree keeps its own set: neither the process's choice nor another tree's changes it.
TEST(Charset, TreesInDifferentSetsLiveSideBySide) {
    TempFolder folder;
    const std::string latin = folder.write("latin.xml", "<a>" + std::string(300, ' ') + "\xE9</a>");
    const std::string utf8 = folder.write("utf8.xml", "<a>" + std::string(30, ' ') + "\xC3\xA9</a>");
    const XMLNode own = XMLNode::parseFileInItsSet(latin.c_str(), "a");
    EXPECT_EQ(own.charset(), XMLCharset::Platform);
    EXPECT_STREQ(own.getText(), "\xE9");
    EXPECT_EQ(XMLNode::parseFileInItsSet(utf8.c_str()).charset(), XMLCharset::Utf8);
    EXPECT_EQ(zoka::xmlCharset(), XMLCharset::Utf8);
    EXPECT_STREQ(XMLNode::parseFile(latin.c_str(), "a").getText(), "\xC3\xA9");
    EXPECT_STREQ(XMLNode::parseFile(utf8.c_str(), "a", nullptr, {}, XMLCharset::Platform).getText(),
                 "\xC3\xA9");
    XMLNode made = XMLNode::createTop("a", false, XMLCharset::Platform);
    made.addText("\xE9");
    EXPECT_EQ(made.writeFile(latin.c_str(), "windows-1252", false), 0);
    EXPECT_EQ(folder.read("latin.xml"), "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n<a>\xE9</a>");
}

// Two threads read and write files in different sets at once.
TEST(Charset, ThreadsReadInDifferentSetsAtOnce) {
    TempFolder folder;
    const std::string path = folder.write("a.xml", "<a>" + std::string(300, 'x') + "\xE9&#233;</a>");
    const auto read = [&](XMLCharset charset, const std::string& end) {
        int wrong = 0;
        for (int round = 0; round < 200; ++round) {
            const XMLNode node = XMLNode::parseFile(path.c_str(), "A", nullptr, {}, charset);
            wrong += node.charset() != charset || !orNull(node.getText()).ends_with("x" + end + end);
        }
        return wrong;
    };
    auto platform = std::async(std::launch::async, read, XMLCharset::Platform, "\xE9");
    EXPECT_EQ(read(XMLCharset::Utf8, "\xC3\xA9"), 0);
    EXPECT_EQ(platform.get(), 0);
}

// What a file says of its encoding is true, whatever set the texts are in.
TEST(Charset, FilesSayWhatTheyAre) {
    TempFolder folder;
    const std::string path = folder.path("out.xml");
    const std::string declared = "<?xml version=\"1.0\" encoding=\"";
    const auto written = [&](const char* text, const char* encoding) {
        EXPECT_EQ(XMLNode::parseText(text).writeFile(path.c_str(), encoding, false), 0);
        return folder.read("out.xml");
    };
    const std::string utf8 = kMark + declared + "utf-8\"?>\n";
    EXPECT_EQ(written("<a/>", nullptr), utf8 + "<a/>");
    EXPECT_EQ(written("<a/>", "windows-1252"), utf8 + "<a/>");
    EXPECT_EQ(written("<?xml version='1.0'?><a/>", nullptr),
              kMark + std::string("<?xml version=\"1.0\"?><a/>"));
    EXPECT_EQ(written("<?xml version='1.0' encoding='UTF-8'?><a/>", "x"), kMark + declared + "UTF-8\"?><a/>");
    EXPECT_EQ(written("<?xml version='1.0' encoding='utf-16'?><a/>", "x"),
              kMark + declared + "utf-8\"?><a/>");
    EXPECT_EQ(written("<?p encoding='x'?><a/>", nullptr), utf8 + "<?p encoding='x'?><a/>");

    const WithCharset with(XMLCharset::Platform);
    EXPECT_EQ(written("<a>\xE9</a>", "windows-1252"), declared + "windows-1252\"?>\n<a>\xE9</a>");
    EXPECT_EQ(written("<a>\xE9\x80</a>", nullptr), utf8 + "<a>\xC3\xA9\xE2\x82\xAC</a>");
    EXPECT_EQ(written("<a>\xE9</a>", "UTF-8"), declared + "UTF-8\"?>\n<a>\xC3\xA9</a>");
    EXPECT_EQ(written("<a>\xE9</a>", "utf-16"), declared + "utf-8\"?>\n<a>\xC3\xA9</a>");
    EXPECT_EQ(written("<?xml version='1.0' encoding='iso-8859-1'?><a>\xE9</a>", nullptr),
              declared + "iso-8859-1\"?><a>\xE9</a>");
    EXPECT_EQ(written("<?xml version='1.0' encoding='utf-8'?><a>\xE9</a>", nullptr),
              declared + "utf-8\"?><a>\xC3\xA9</a>");
    EXPECT_EQ(written("<?xml version='1.0' encoding='utf-16'?><a>\xE9</a>", nullptr),
              declared + "utf-8\"?><a>\xC3\xA9</a>");
    EXPECT_EQ(written("<?xml version='1.0'?><a>\xE9</a>", "x"), "<?xml version=\"1.0\"?><a>\xC3\xA9</a>");
}

}  // namespace
