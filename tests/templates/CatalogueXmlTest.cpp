// The catalogue's file: the exact bytes written, what is read back and what is lost on purpose.
#include "templates/CatalogueCheck.h"
#include "templates/CatalogueText.h"
#include "templates/CatalogueXml.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TempFolder.h"
#include "tests/templates/Scripts.h"

using namespace zoka;
using test::fields;
using test::Names;
using test::script;
using test::TempFolder;

namespace {

CScriptElm fullScript() {
    CScriptElm elm = script("Chase", "chase.kez", "Camera", "USER", {"a.kez", "b.kez"});
    elm.m_id = "CAM01";
    elm.m_prefix = "cam_";
    elm.m_directory = "code";
    elm.m_vers = "3";
    elm.m_date = "260101";
    elm.m_engreq = {"6.1", "PRO"};
    elm.m_desc = "a & b <c> \"d\"";
    elm.m_note = "Mind the gap.";
    elm.m_sections = {
        {"Picture", "How it looks.", "view.bmp", {{"chase", "chase.kez", {"6", "PRO"}, "Runs.\n"}}},
        {"", "", "", {{"", "", {}, ""}}}};
    return elm;
}

CTemplateData fullCatalogue() {
    CTemplateData data;
    data.SetName("Set \"A\"");
    data.SetType("full");
    data.SetVers("6.2");
    data.SetDate("990101");
    data.SetEngReq("6.1 STD");
    data.AddDirectory("code", ".\\templates");
    data.AddScript(fullScript());
    return data;
}

const char* const kFullText =
    "<TavrixTemplate\n\tname=\"Set 'A'\"\n\ttype=\"full\"\n\tversion=\"6.2\"\n\tdate=\"261121\">\n"
    "\n"
    "\t<EngineReq vers =\"6.1\" edition =\"STD\" />\n"
    "<Directory\n\ttype=\"code\"\n\tpath=\".\\templates\"\n/>\n"
    "\n\n"
    "<Script\n\tid=\"CAM01\"\n\tprefix=\"cam_\"\n\tdirectory=\"code\"\n\tfilename=\"chase.kez\"\n\tname="
    "\"Chase\"\n"
    "\ttype=\"USER\"\n\tvers=\"3\"\n\tdate=\"260101\"\n>\n"
    "\t<EngineReq vers =\"6.1\" edition =\"PRO\" />\n"
    "\t<class>Camera</class>\n"
    "\t<desc>a and b [c] 'd'</desc>\n"
    "\t<note>Mind the gap.</note>\n"
    "\t<need>a.kez</need>\n\t<need>b.kez</need>\n"
    "\t<section\n\t\tname=\"Picture\"\n\t\timgfile=\"view.bmp\"\n\t\t>\n"
    "How it looks."
    "\t<action\n\t\tname=\"chase\"\n\t\tfilename=\"chase.kez\"\n\t\t>\n\t\t<EngineReq vers =\"6\" "
    "edition =\"PRO\" />\nRuns.\n\t</action>\n"
    "\nHow it looks.\t</section>\n"
    "\t<section\n\t\tname=\"\"\n\t\t>\n"
    "\t<action\n\t\tname=\"\"\n\t\tfilename=\"\"\n\t\t>\n\t</action>\n"
    "\n\t</section>\n"
    "</Script>\n"
    "\n\n</TavrixTemplate>";

}  // namespace

TEST(CatalogueXml, IsWrittenToTheLetter) {
    EXPECT_EQ(catalogueText(fullCatalogue(), "261121"), kFullText);
    EXPECT_EQ(catalogueText(CTemplateData(), "261121"),
              "<TavrixTemplate\n\tname=\"\"\n\ttype=\"\"\n\tversion=\"\"\n\tdate=\"261121\">\n\n\n\n\n\n"
              "</TavrixTemplate>");
    EXPECT_EQ(withoutMarkup("\"<&>\"\"&amp;"), "'[and]''andamp;");
}

TEST(CatalogueXml, FileHasThePlatformsLineEndsAndTodaysDate) {
#ifdef _WIN32
    EXPECT_EQ(inTextMode("a\nb\r\n\rc"), "a\r\nb\r\n\rc");
#else
    EXPECT_EQ(inTextMode("a\nb\r\n\rc"), "a\nb\n\rc");
#endif
    const TempFolder folder;
    ASSERT_TRUE(fullCatalogue().WriteXML(folder.path("template_6.xml")));
    EXPECT_EQ(folder.read("template_6.xml"),
              inTextMode(catalogueText(fullCatalogue(), CTemplateData::GetCurDate())));
    EXPECT_FALSE(fullCatalogue().WriteXML(folder.path("none\\template_6.xml")));
}

TEST(CatalogueXml, ReadsBackWithoutWhatTheFormatLoses) {
    const TempFolder folder;
    fullCatalogue().WriteXML(folder.path("t.xml"));
    CTemplateData data;
    data.AddScript(CScriptElm());
    EXPECT_TRUE(data.LoadFromXML(folder.path("t.xml")));
    EXPECT_EQ(data.GetDate(), CTemplateData::GetCurDate());
    ASSERT_EQ(data.scripts().size(), 1U);
    EXPECT_EQ(data.scripts()[0].m_sections[0].m_actions[0].m_desc, "Runs.");
    // Written again, all is there but what is lost on purpose, and the white space around a text.
    std::string expected = kFullText;
    for (const char* lost :
         {" edition =\"STD\"", "cam_", " edition =\"PRO\"", "\t<note>Mind the gap.</note>\n",
          "\t\timgfile=\"view.bmp\"\n", "How it looks.", " edition =\"PRO\"", "How it looks."}) {
        expected.erase(expected.find(lost), std::string(lost).size());
    }
    expected.erase(expected.find("Runs.\n") + 5, 1);
    EXPECT_EQ(catalogueText(data, "261121"), expected);
}

TEST(CatalogueXml, NamesAreMatchedInAnyCaseAndMissingOnesAreEmpty) {
    const TempFolder folder;
    folder.write("t.xml",
                 "<tavrixtemplate NAME='n'><script Name='one'/><other/><SCRIPT "
                 "name='two'><Need>x</Need><need/><need></need><need> </need><CLASS/>"
                 "<Desc>first<b/>second</Desc></SCRIPT></tavrixtemplate>");
    CTemplateData data;
    XMLResults results;
    ASSERT_TRUE(loadCatalogue(data, folder.path("t.xml"), &results));
    EXPECT_EQ(data.GetName(), "n");
    ASSERT_EQ(data.scripts().size(), 2U);
    CScriptElm two = script("two", "", "", "", {"x"});
    two.m_desc = "first";
    EXPECT_EQ(fields(data.scripts()[1]), fields(two));
}

TEST(CatalogueXml, EightBitCharactersFarDownAreReadBack) {
    CTemplateData data = fullCatalogue();
    CScriptElm script = fullScript();
    script.m_desc = "Caf\xE9 at 20\xB0, \xA9 \x80";
    data.AddScript(script);
    const TempFolder folder;
    data.WriteXML(folder.path("t.xml"));
    CTemplateData read;
    EXPECT_TRUE(read.LoadFromXML(folder.path("t.xml")));
    ASSERT_EQ(read.scripts().size(), 2U);
    EXPECT_EQ(read.scripts()[1].m_desc, script.m_desc);
}

TEST(CatalogueXml, Utf8IsWrittenAndReadBack) {
    CScriptElm script = fullScript();
    script.m_name = "Caf\xC3\xA9 \xCE\xA9";
    script.m_desc = "20\xC2\xB0 \xE2\x82\xAC \xF0\x9F\x98\x80";
    script.m_class =
        "Stra\xC3\x9F"
        "e";
    script.m_sections[0].m_actions[0].m_desc =
        "\xC3\xBC"
        "ber";
    CTemplateData data;
    data.SetName(
        "H\xC3\xA4"
        "fen");
    data.AddScript(script);
    const TempFolder folder;
    ASSERT_TRUE(data.WriteXML(folder.path("t.xml")));
    EXPECT_NE(folder.read("t.xml").find("name=\"" + script.m_name + "\""), std::string::npos);
    CTemplateData read;
    ASSERT_TRUE(read.LoadFromXML(folder.path("t.xml")));
    EXPECT_EQ(read.GetName(), data.GetName());
    ASSERT_EQ(read.scripts().size(), 1U);
    const CScriptElm back = read.scripts()[0];
    EXPECT_EQ(back.m_name, script.m_name);
    EXPECT_EQ(back.m_desc, script.m_desc);
    EXPECT_EQ(back.m_class, script.m_class);
    EXPECT_EQ(back.m_sections[0].m_actions[0].m_desc, script.m_sections[0].m_actions[0].m_desc);
}

// Whatever a header holds, the catalogue made of it is one that can be read: Add Script would end the editor.
TEST(CatalogueXml, WhateverIsWrittenIsRead) {
    Names texts = {"\xEF\xBF\xBE", "\xEF\xBF\xBF", "\xEF\xBB\xBF", "\xED\xA0\x80", "\xC3", "\xC3\xA9\xFF",
                   "]]>",          "--",           "<!--",         "&amp;",        "&#1;", "</desc>"};
    for (int byte = 0; byte < 256; ++byte) {
        texts.emplace_back(1, static_cast<char>(byte));
    }
    const TempFolder folder;
    for (const std::string& text : texts) {
        const std::string value = "a" + text + "z";
        CScriptElm script = test::script(value, value, value, value, {value});
        script.m_id = script.m_prefix = script.m_vers = script.m_desc = script.m_note = value;
        script.m_engreq = {value, value};
        script.m_sections = {{value, value, value, {{value, value, {value, value}, value}}}};
        CTemplateData data;
        data.SetName(value);
        data.SetEngReq(value);
        data.AddDirectory(value, value);
        data.AddScript(script);
        folder.write("t.xml", catalogueText(data, "261121"));
        CTemplateData read;
        XMLResults results;
        ASSERT_TRUE(loadCatalogue(read, folder.path("t.xml"), &results))
            << testing::PrintToString(text) << " code " << results.code << " line " << results.line;
        ASSERT_EQ(read.scripts().size(), 1U);
        if (text.find_first_of("\t\n\r") == text.npos) {  // these are white space to XML
            EXPECT_EQ(read.scripts()[0].m_name, withoutMarkup(value)) << testing::PrintToString(text);
            EXPECT_EQ(read.GetName(), withoutMarkup(value)) << testing::PrintToString(text);
        }
    }
}

// In a set whose characters may take two bytes a value's last byte can take the quote behind it; here the set is UTF-8,
// and the byte one that begins a character of three.
TEST(CatalogueXml, TheScriptIsNamedThatCantBeReadBack) {
    CTemplateData data;
    data.AddScript(test::script("Good", "good.kez", "A", "USER", {}));
    EXPECT_FALSE(findUnreadable(data, XMLCharset::Utf8));
    data.AddScript(test::script("Bad\xE3", "bad.kez", "A", "USER", {}));
    data.AddScript(test::script("Worse\xE3", "worse.kez", "A", "USER", {}));
    const auto found = findUnreadable(data, XMLCharset::Utf8);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->script, "bad.kez");
    EXPECT_TRUE(found->text.starts_with("what its header says can't be read back from a catalogue: "));
    EXPECT_FALSE(findUnreadable(data, XMLCharset::Platform)) << "there each byte is a character";
}

TEST(CatalogueXml, ABadFileIsFatalInOneWayAndTellsItsPlaceInTheOther) {
    const TempFolder folder;
    folder.write("bad.xml", "<TavrixTemplate>\n  <Script name='x'>\n</TavrixTemplate>");
    folder.write("other.xml", "<Project/>");
    CTemplateData data;
    data.SetName("kept");
    XMLResults results;
    EXPECT_FALSE(loadCatalogue(data, folder.path("bad.xml"), &results));
    EXPECT_NE(results.code, 0);
    EXPECT_GT(results.line, 0);
    EXPECT_FALSE(loadCatalogue(data, folder.path("other.xml"), &results));
    EXPECT_EQ(results.code, 13);
    EXPECT_FALSE(loadCatalogue(data, folder.path("missing.xml"), nullptr));
    EXPECT_EQ(data.GetName(), "kept");

    test::ScriptedPrompt prompt;
    for (const char* name : {"bad.xml", "other.xml", "missing.xml"}) {
        try {
            data.LoadFromXML(folder.path(name));
            ADD_FAILURE() << name;
        } catch (const test::FatalStop& stop) {
            EXPECT_EQ(stop.title, "XML Parsing error");
            EXPECT_EQ(stop.exitStatus, 255);
        }
    }
}

TEST(CatalogueXml, WritingLeavesTheOldFileOrTheNewOne) {
    const TempFolder folder;
    const std::string expected = inTextMode(catalogueText(fullCatalogue(), CTemplateData::GetCurDate()));
    test::withEachFault([&](int n) {
        folder.write("t.xml", "old");
        const bool written = fullCatalogue().WriteXML(folder.path("t.xml"));
        EXPECT_EQ(folder.read("t.xml"), written ? expected : "old") << n;
        EXPECT_EQ(folder.names(), Names{"t.xml"}) << n;
    });
}

TEST(CatalogueXml, LoadingCanBeStopped) {
    struct Stop : JobProgress {
        explicit Stop(int at) : last(at) {}
        int last, steps = 0;
        std::set<size_t> totals;
        bool step(size_t done, size_t total, const std::string&) override {
            EXPECT_LE(done, total);
            totals.insert(total);
            return ++steps < last;
        }
    };
    CTemplateData full;
    for (int i = 0; i < 3000; ++i) {
        full.AddScript(CScriptElm());
    }
    const TempFolder folder;
    full.WriteXML(folder.path("t.xml"));
    for (int at = 1;; ++at) {
        CTemplateData data = full;
        Stop stop(at);
        XMLResults results;
        const bool loaded = loadCatalogue(data, folder.path("t.xml"), &results, &stop);
        EXPECT_EQ(results.code, 0);
        EXPECT_EQ(data.scripts().size(), loaded ? 3000U : 0U) << at;
        if (loaded) {
            // While the file is parsed, in bytes, then while the scripts are taken.
            EXPECT_EQ(stop.totals, (std::set<size_t>{3000U, folder.read("t.xml").size()}));
            EXPECT_GT(stop.steps, 4);
            break;
        }
        EXPECT_EQ(stop.steps, at);
    }
}

TEST(CatalogueXml, AScriptIsLoadedFromItsHeader) {
    const TempFolder folder;
    const std::string path = folder.write("x.kez", "// title: X\r\n// ver: 4 z\r\n");
    CTemplateData data;
    std::string errors = "before\n";
    EXPECT_TRUE(data.LoadScriptFromKEZ(path, errors));
    ASSERT_EQ(data.scripts().size(), 1U);
    EXPECT_EQ(data.scripts()[0].m_filename, path);
    EXPECT_EQ(data.scripts()[0].m_vers, "4");
    EXPECT_TRUE(errors.starts_with("before\n***No ID\n")) << errors;
    folder.write("empty.kez", "");
    EXPECT_TRUE(data.LoadScriptFromKEZ(folder.path("empty.kez"), errors));
    errors = "untouched";
    EXPECT_FALSE(data.LoadScriptFromKEZ(folder.path("none.kez"), errors));
    EXPECT_EQ(errors, "untouched");
    EXPECT_EQ(data.scripts().size(), 2U);
}

TEST(CatalogueXml, WhatWasLoadedOutlivesItsSourceAndMixesWithWhatIsAdded) {
    const TempFolder folder;
    ASSERT_TRUE(fullCatalogue().WriteXML(folder.path("t.xml")));
    CTemplateData copy;
    {
        CTemplateData loaded;
        ASSERT_TRUE(loadCatalogue(loaded, folder.path("t.xml"), nullptr));
        CScriptElm added = script("Added", "added.kez", "Camera");
        added.m_note = "Mind the gap.";
        loaded.AddScript(added);
        loaded.AddScript(loaded.script(0));  // a second of the same name: the first still counts
        copy = loaded;
        loaded.Empty();
        EXPECT_EQ(copy.rows().size(), loaded.rows().size() + 3);
    }
    CTemplateData::StringList list;
    copy.GetScriptList(list, "Camera");
    EXPECT_EQ(list, (CTemplateData::StringList{"Chase", "Added", "Chase"}));
    EXPECT_EQ(copy.recordByFilenameNoCase("CHASE.kez"), 0U);
    EXPECT_EQ(copy.findByName("Chase")->m_note, "");  // read back
    EXPECT_EQ(copy.findByName("Added")->m_note, "Mind the gap.");
    EXPECT_EQ(copy.findByFilename("chase.kez")->m_needs, (Names{"a.kez", "b.kez"}));
    for (const CScriptElm& script : copy.scripts()) {
        EXPECT_EQ(script.m_class, "Camera") << script.m_name;
    }
}
