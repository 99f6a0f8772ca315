#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/cli/Tool.h"
#include "tests/cli/Unreadable.h"

using testing::HasSubstr, testing::StartsWith;

namespace {

constexpr char kMessy[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?><Project name='a &amp; b'>\n"
    "<!-- kept --><Level>text</Level><Level/></Project>";

std::string utf16(const std::string& ascii, bool bigEndian) {
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : ascii) {
        if (bigEndian) {
            bytes += '\0';
        }
        bytes += c;
        if (!bigEndian) {
            bytes += '\0';
        }
    }
    return bytes;
}

struct XmlCheck : testing::Test {
    ToolFolder folder;
};
using XmlFormat = XmlCheck;

TEST_F(XmlCheck, SaysNothingOfGoodFiles) {
    // Without a declaration, bytes that are no UTF-8 are in the system's set.
    folder.write("a.xml", "<a>" + std::string(300, ' ') + "\xE9</a>");
    folder.write("b c.xml", kMessy);
    EXPECT_EQ(folder.run("xml check a.xml \"b c.xml\""), (ToolRun{0}));
}

TEST_F(XmlCheck, NamesThePlaceOfEachError) {
    const std::pair<std::string, const char*> rows[] = {
        {"<a>\n  <b x='1' y=2/>\n</a>", ":2:14: Error: Unexpected token found\n"},
        {"<a>\r\n\t<b>&nix;</b></a>", ":2:5: Error: Unknown character entity\n"},
        {"<a><b></a>", ":1:7: Error: Unmatched end tag\n"},
        {"", ":1:1: Error: No XML data\n"},
        // What a file says of its own bytes and isn't so: the mark's word, the declaration's.
        {"\xEF\xBB\xBF<a>\xC3\xA4\xFF</a>", ":1:5: Warning: the mark says UTF-8, but this is none"},
        {"<?xml version='1.0' encoding='UTF-8'?>\n<a>\xE4</a>",
         ":2:4: Warning: UTF-8 is declared, but this is none"},
        {"\xEF\xBB\xBF<?xml version='1.0' encoding='latin1'?><a/>",
         ":1:31: Warning: \"latin1\" is declared, but the file is UTF-8 by its mark\n"},
        {"<?xml version='1.0' encoding='UTF-16'?><a/>",
         ":1:31: Warning: \"UTF-16\" is declared, but the file is 8-bit text\n"},
        {std::string("\xFF\xFE<\0a\0>\0\0\xD8", 10),
         ":1:4: Error: unable to convert between UNICODE and MultiByte chars\n"},
    };
    for (const auto& [bytes, finding] : rows) {
        folder.write("bad.xml", bytes);
        const ToolRun run = folder.run("xml check bad.xml");
        EXPECT_EQ(run, (ToolRun{1, run.out})) << bytes;
        EXPECT_THAT(run.out, StartsWith(std::string("bad.xml") + finding)) << bytes;
        EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1) << bytes;
    }
}

TEST_F(XmlCheck, GoesOnAfterEveryFileAndEndsWithTheWorst) {
    folder.write("good.xml", "<a/>");
    folder.write("bad1.xml", "<a>");
    folder.write("bad2.xml", "<a></b>");
    EXPECT_EQ(
        folder.run("xml check bad1.xml good.xml bad2.xml"),
        (ToolRun{1, "bad1.xml:1:4: Warning: Unmatched end tag\nbad2.xml:1:4: Error: Unmatched end tag\n"}));
    const ToolRun run = folder.run("xml check missing.xml bad2.xml");
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.out, StartsWith("bad2.xml:1:"));
    EXPECT_THAT(run.err, StartsWith("zoka: Can't read 'missing.xml': "));
}

TEST_F(XmlCheck, ReadsTheStandardInput) {
    EXPECT_EQ(folder.run("xml check -", kMessy).status, 0);
    const ToolRun run = folder.run("xml check -", "<a>\r\n<b></a>");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, StartsWith("<stdin>:2:4: "));
}

TEST_F(XmlCheck, CannotReadWhatIsNoFileOrIsLocked) {
    std::filesystem::create_directory(folder.path("folder.xml"));
    const Unreadable locked(folder.path("locked.xml"));
    for (const char* name : {"folder.xml", "locked.xml", "folder.xml/none.xml"}) {
        for (const char* command : {"xml check ", "xml format ", "xml format --in-place "}) {
            const ToolRun run = folder.run(command + std::string(name));
            EXPECT_EQ(run, (ToolRun{3, "", run.err})) << command << name;
            // A reason follows, in the system's words.
            EXPECT_THAT(run.err, StartsWith("zoka: Can't read '" + std::string(name) + "': ")) << command;
            EXPECT_GT(run.err.size(), std::string(name).size() + 26) << run.err;
        }
    }
}

TEST_F(XmlFormat, LaysOutOneElementALine) {
    folder.write("a.xml", kMessy);
    const ToolRun run = folder.run("xml format a.xml");
    EXPECT_EQ(run, (ToolRun{0,
                            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                            "<Project name=\"a &amp; b\">\n"
                            "\t<!-- kept -->\n\t<Level>text</Level>\n\t<Level/>\n"
                            "</Project>\n"}));
    EXPECT_EQ(folder.read("a.xml"), kMessy);
    EXPECT_EQ(folder.run("xml format -", kMessy).out, run.out);
    EXPECT_EQ(folder.run("xml format -", run.out).out, run.out);
}

TEST_F(XmlFormat, KeepsTheEncoding) {
    const std::string latin = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n<a>\xE4\x80</a>\n";
    const std::string plain = "<?xml version=\"1.0\" encoding=\"utf-16\"?>\n<a>\n\t<b/>\n</a>\n";
    // Beyond 16 bits, and a character whose bytes hold those of markup.
    const std::string wide =
        utf16("<a>", false) + std::string("\x3C\x26\x3D\xD8\x00\xDE", 6) + utf16("</a>\n", false).substr(2);
    const std::string utf8 = "<a>\xC3\xA4</a>\n";
    const std::string system = "<a>\xC3\xA4\xE4</a>\n";
    const std::string lying = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<a>\xE4</a>\n";
    for (const std::string& bytes :
         {utf8, "\xEF\xBB\xBF" + utf8, latin, system, lying, utf16(plain, false), utf16(plain, true), wide}) {
        folder.write("a.xml", bytes);
        EXPECT_EQ(folder.run("xml format a.xml"), (ToolRun{0, bytes}));
    }
}

TEST_F(XmlFormat, WritesToAnotherFileOrInPlace) {
    folder.write("a.xml", kMessy);
    folder.write("b.xml", "<b><c/></b>");
    folder.write("old.xml", "something much longer that must go as a whole, not only in its first bytes");
    EXPECT_EQ(folder.run("xml format b.xml -o new.xml").status, 0);
    EXPECT_EQ(folder.read("new.xml"), "<b>\n\t<c/>\n</b>\n");
    EXPECT_EQ(folder.run("xml format b.xml --output old.xml").status, 0);
    EXPECT_EQ(folder.read("old.xml"), folder.read("new.xml"));
    EXPECT_EQ(folder.read("b.xml"), "<b><c/></b>");

    EXPECT_EQ(folder.run("xml format b.xml -o deep/er/new.xml").status, 0);
    EXPECT_EQ(folder.read("deep/er/new.xml"), folder.read("new.xml"));
    const std::string formatted = folder.run("xml format a.xml").out, before = folder.read("a.xml");
    EXPECT_THAT(folder.run("xml format -i -n a.xml").out, testing::StartsWith("--- a.xml\n+++ a.xml\n"));
    EXPECT_EQ(folder.read("a.xml"), before);
    EXPECT_EQ(folder.run("xml format --in-place a.xml b.xml"), (ToolRun{0}));
    EXPECT_EQ(folder.read("a.xml"), formatted);
    EXPECT_EQ(folder.read("b.xml"), folder.read("new.xml"));
    EXPECT_EQ(folder.fileCount(), 5u);  // nothing is left behind
}

TEST_F(XmlFormat, LeavesAFileThatNeedsNoChangeAlone) {
    folder.write("a.xml", "<a>\n\t<b/>\n</a>\n");
    std::filesystem::last_write_time(folder.path("a.xml"),
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(48));
    const auto before = std::filesystem::last_write_time(folder.path("a.xml"));
    EXPECT_EQ(folder.run("xml format -i a.xml").status, 0);
    EXPECT_EQ(std::filesystem::last_write_time(folder.path("a.xml")), before);
}

TEST_F(XmlFormat, KeepsBadFilesAsTheyAre) {
    folder.write("bad.xml", "<a>\n<b></a>");
    folder.write("good.xml", "<a><b/></a>");
    const ToolRun run = folder.run("xml format --in-place bad.xml good.xml");
    EXPECT_EQ(run, (ToolRun{1, "", run.err}));
    EXPECT_THAT(run.err, StartsWith("bad.xml:2:4: Error: "));
    EXPECT_EQ(folder.read("bad.xml"), "<a>\n<b></a>");
    EXPECT_EQ(folder.read("good.xml"), "<a>\n\t<b/>\n</a>\n");
    EXPECT_EQ(folder.run("xml format bad.xml -o good.xml").status, 1);
    EXPECT_EQ(folder.read("good.xml"), "<a>\n\t<b/>\n</a>\n");
}

TEST_F(XmlFormat, ThatCannotWriteKeepsTheOldFile) {
    folder.write("a.xml", "<a><b/></a>");
    ToolRun run = folder.run("xml format a.xml -o a.xml/b.xml");
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, HasSubstr("b.xml"));
    std::string many = "<a>";
    for (int i = 0; i < 3000; ++i) {
        many += "<b/>";
    }
    many += "</a>";
    folder.write("big.xml", many);
    const Unwritable full(folder.path("big.xml"));
    run = folder.run("xml format --in-place big.xml", "", full.before());
    EXPECT_EQ(run, (ToolRun{3, "", run.err}));
    EXPECT_THAT(run.err, HasSubstr("big.xml"));
    EXPECT_EQ(folder.read("big.xml"), many);
    EXPECT_EQ(folder.fileCount(), 2u);
}

}  // namespace
