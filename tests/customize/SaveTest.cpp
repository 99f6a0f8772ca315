#include "customize/EntriesText.h"
#include "tests/customize/Edits.h"
#include "tests/customize/Samples.h"
#include "tests/customize/SessionFixture.h"
#include "tests/support/FaultyOsFiles.h"

using namespace zoka;
using namespace zoka::test;
using testing::Contains;
using testing::Not;

namespace {

TEST_F(Session, SaveWithoutChangesWritesNothing) {
    open();
    FaultyOsFiles disk(FaultyOsFiles::never());
    EXPECT_EQ(session.save(), SaveResult::NothingToSave);
    EXPECT_EQ(disk.operations(), 0);
    set("Range", "11");
    set("Range", "10");
    EXPECT_EQ(session.save(), SaveResult::NothingToSave);
    EXPECT_THAT(project.names(), ElementsAre("s.kez"));
    EXPECT_THAT(host.calls, IsEmpty());
    open("");  // an empty script has its value file alone
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(project.read("s.kez"), "");
    EXPECT_EQ(project.read("s.kez.zoka"), "1\n0\n0\n\n");
}

TEST_F(Session, SaveWritesTheSpansThenTheValueFileAndReadsTheScriptAgain) {
    open();
    set("Range", "123");
    set("Lamp", "1");
    EXPECT_EQ(changesText(lineChanges(session.script())),
              "line 6\r\n- var range = 10;\r\n+ var range = 123;\r\nline 10\r\n- //define LAMP;\r\n+ define "
              "LAMP;\r\n");
    ASSERT_EQ(session.save(), SaveResult::Saved);
    std::string expected = kOld;
    expected.replace(expected.find("10;"), 2, "123");
    expected.erase(expected.find("//define"), 2);
    EXPECT_EQ(project.read("s.kez"), expected);
    EXPECT_EQ(project.read("s.kez.zoka"), "1\n1\n0\n\n1\n11\n123\n\n2\n8\n1\n\n3\n14\na\n\n5\n15\nme\n\n");
    EXPECT_EQ(session.changedCount(), 0u);
    EXPECT_TRUE(session.close());
    // The spans are those of the new text, and what was done before saving can still be undone.
    ASSERT_TRUE(session.undo());
    ASSERT_TRUE(session.undo());
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(project.read("s.kez"), kOld);
    EXPECT_THAT(prompt.texts(), IsEmpty());
    EXPECT_THAT(host.calls, Not(Contains("changed")));
}

// They may have changed since the script was opened, also for rows that hold no change.
TEST_F(Session, AfterSavingTheRowsOfferTheHostsNamesOfNow) {
    open(std::string(kOld) + "\r\n// entry_path: Way\r\n// id: 6\r\nstring way = \"me\";\r\n");
    set("Range", "11");
    host.setListItems({"gate"});
    ASSERT_EQ(session.save(), SaveResult::Saved);
    for (const char* const label : {"Who", "Way"}) {
        const EntryFacts& facts = session.row(rowOf(label)).facts();
        ASSERT_TRUE(facts.hostNames) << label;
        EXPECT_THAT(*facts.hostNames, ElementsAre("gate")) << label;
    }
    EXPECT_FALSE(session.row(rowOf("Gone")).facts().hostNames) << "a plain text";
}

TEST_F(Session, AScriptInAFolderOfTheProjectIsSavedWhereItStands) {
    std::filesystem::create_directory(project.native("lib"));
    ASSERT_TRUE(session.open(project.write("lib/s.kez", kOld)));
    set("Range", "11");
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("lib/s.kez"), HasSubstr("range = 11;"));
    EXPECT_NE(project.read("lib/s.kez.zoka"), "<missing>");
    EXPECT_EQ(project.read("s.kez"), "<missing>");
    EXPECT_THAT(prompt.texts(), IsEmpty());
}

TEST_F(Session, AScriptOfTheTemplateFolderIsCopiedIntoTheProject) {
    const std::string path = suite.write("templates/t.kez", kOld);
    ASSERT_TRUE(session.open(path));
    set("Range", "11");
    host.calls.clear();
    host.refuseCopies(true);
    EXPECT_EQ(session.save(), SaveResult::Failed);
    host.refuseCopies(false);
    EXPECT_EQ(session.script().scriptPath, path);
    host.calls.clear();
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(host.calls, ElementsAre("copy", "changed", "endlist"));
    EXPECT_EQ(suite.read("templates/t.kez"), kOld);
    EXPECT_THAT(project.read("t.kez"), HasSubstr("range = 11;"));
    EXPECT_THAT(project.names(), ElementsAre("t.kez", "t.kez.zoka"));
    EXPECT_EQ(session.script().scriptPath, project.path("t.kez"));
    // Another script of that name in the project is not overwritten unasked.
    ASSERT_TRUE(session.open(path));
    set("Range", "12");
    prompt.answers = {PromptAnswer::No};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_THAT(project.read("t.kez"), HasSubstr("range = 11;"));
    // What another has made of the template stays there, so no copy of it is needed.
    const std::string theirs = suite.read("templates/t.kez") + "// theirs\r\n";
    suite.write("templates/t.kez", theirs);
    prompt.answers = {PromptAnswer::No, PromptAnswer::Yes};
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_EQ(suite.read("templates/t.kez"), theirs);
    EXPECT_THAT(project.read("t.kez"), HasSubstr("range = 12;"));
    EXPECT_THAT(project.names(), ElementsAre("t.kez", "t.kez.zoka"));
}

// The editor goes on to another project while the panel is open: nothing gets there unasked.
TEST_F(Session, SaveAsksWhereToOnceAnotherProjectIsOpen) {
    using enum PromptAnswer;
    constexpr auto Saved = SaveResult::Saved, Cancelled = SaveResult::Cancelled;
    const struct {
        const char*
            script;  // "p" the project's, "t" the template folder's, "b" of a list older than the project
        const char* before;  // the projects open when it was loaded and when it is saved; "-" none
        const char* after;
        std::vector<PromptAnswer> answers;
        SaveResult result;
        const char* written;            // the project that has the value now; "" none
        bool other;                     // another project is open, as before the save
        std::vector<std::string> told;  // the host's part: making a copy, learning of it
    } rows[] = {
        {"p", "1", "1", {}, Saved, "1", false, {}},
        {"p", "1", "2", {Cancel}, Cancelled, "", true, {}},
        {"p", "1", "2", {Yes}, Saved, "1", true, {}},
        {"p", "1", "2", {No}, Saved, "2", false, {"copy", "changed"}},
        {"p",
         "1",
         "3",
         {No, No},
         Cancelled,
         "",
         true,
         {}},  // a script of that name is there: not overwritten
        {"p", "1", "3", {No, Yes}, Saved, "3", false, {"copy", "changed"}},
        {"t", "1", "2", {Yes}, Saved, "1", true, {"copy"}},
        {"t", "1", "2", {No}, Saved, "2", false, {"copy", "changed"}},
        {"b", "1", "2", {Cancel}, Cancelled, "", true, {}},
        {"p", "1", "-", {No}, Cancelled, "", true, {}},
        {"p", "1", "-", {Yes}, Saved, "1", true, {}},
        {"t", "-", "2", {No}, Cancelled, "", true, {}},
        {"t", "-", "2", {Yes}, Saved, "2", false, {"copy", "changed"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.script) + row.before + row.after + row.written);
        TempFolder projects;
        for (const char* name : {"1", "2", "3"}) {
            std::filesystem::create_directories(projects.native(name));
        }
        projects.write("3/s.kez", kNew);
        const auto folder = [&](const char* name) {
            return *name == '-' ? std::string() : projects.path(name) + (*name == '2' ? "\\" : "");
        };
        const std::string path =
            *row.script == 't' ? suite.write("templates/s.kez", kOld) : projects.write("1/s.kez", kOld);
        RecordingHost editor({.project = folder(row.before), .suite = suite.path()});
        CustomizeSession panel(editor, prompt);
        if (*row.script == 'b') {
            panel.offerScripts({path});
            editor.folders().project = folder(row.after);
        }
        ASSERT_TRUE(panel.open(path));
        ASSERT_TRUE(panel.setValue(1, "11"));
        editor.folders().project = folder(row.after);
        panel.lookAtProject();
        EXPECT_EQ(panel.otherProjectOpen(), row.before != std::string(row.after));
        EXPECT_STREQ(panel.whereabouts(), !panel.otherProjectOpen()          ? ""
                                          : editor.folders().project.empty() ? " (no project is open)"
                                                                             : " (another project is open)");
        EXPECT_FALSE(panel.lookAtProject());  // no news
        prompt.answers.assign(row.answers.begin(), row.answers.end());
        prompt.asked.clear();
        editor.calls.clear();
        EXPECT_EQ(panel.save(), row.result);
        EXPECT_EQ(panel.otherProjectOpen(), row.other);
        std::erase(editor.calls, "endlist");  // the names read again with the script
        EXPECT_EQ(editor.calls, row.told);
        EXPECT_EQ(panel.changedCount(), row.result == Saved ? 0u : 1u);
        if (*row.script == 't') {
            EXPECT_EQ(suite.read("templates/s.kez"), kOld);
        }
        for (const char* name : {"1", "2", "3"}) {
            const std::string script = projects.read(std::string(name) + "/s.kez");
            EXPECT_EQ(script.find("range = 11;") != script.npos, name == std::string(row.written)) << name;
        }
        if (row.result == Saved) {
            // The next save goes there too, without a question where that is the open one.
            ASSERT_TRUE(panel.setValue(1, "12"));
            if (row.other) {
                prompt.answers = {Yes};
            }
            EXPECT_EQ(panel.save(), Saved);
            EXPECT_THAT(projects.read(std::string(row.written) + "/s.kez"), HasSubstr("range = 12;"));
        }
        std::filesystem::remove(suite.native("templates/s.kez"));
    }
}

TEST_F(Session, ChangesFromOutsideAreSettledBeforeSaving) {
    open();
    // The second change is one that neither the file's size nor its time shows.
    for (const std::string was : {"a", "theirs"}) {
        const bool isSeen = was == "a";
        const std::string theirs = isSeen ? "theirs" : "others", range = isSeen ? "11" : "21";
        const auto file = osFiles().search(project.path("s.kez"));
        set("Range", range);
        std::string other = project.read("s.kez");
        other.replace(other.find('"' + was + '"') + 1, was.size(), theirs);
        project.write("s.kez", other);
        if (!isSeen) {
            ASSERT_TRUE(osFiles().setTimes(project.path("s.kez"), file->lastWrite));
            ASSERT_EQ(osFiles().search(project.path("s.kez")), file);
        }
        prompt.answers = {PromptAnswer::Cancel, PromptAnswer::Yes};
        EXPECT_EQ(session.save(), SaveResult::Cancelled);
        EXPECT_EQ(project.read("s.kez"), other);
        ASSERT_EQ(session.save(), SaveResult::Saved);
        EXPECT_THAT(project.read("s.kez"), HasSubstr("range = " + range + ";"));
        EXPECT_THAT(project.read("s.kez"), HasSubstr('"' + theirs + '"'));
    }
    EXPECT_EQ(prompt.texts().size(), 4u);
    // Overwriting leaves the script as it was loaded, with the changes.
    set("Range", "12");
    project.write("s.kez", "other");
    prompt.answers = {PromptAnswer::No, PromptAnswer::No};
    {
        const FaultyOsFiles disk(
            [](int, std::string_view, const std::string& path) { return path.ends_with(".bak"); });
        EXPECT_EQ(session.save(), SaveResult::Failed);
    }
    EXPECT_THAT(prompt.asked.back().text, HasSubstr("\nThe script was not saved."));
    EXPECT_EQ(project.read("s.kez"), "other") << "what has no copy is not overwritten";
    ASSERT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("s.kez"), HasSubstr("range = 12;"));
    EXPECT_EQ(project.read("s.kez.1.bak"), "other");
    // A value without a place in the new text stops the saving.
    set("Range", "13");
    project.write("s.kez", "// entry: Other\nvar x = 1;\n");
    prompt.answers = {PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Failed);
    ASSERT_EQ(session.unplaced().size(), 1u);
    EXPECT_EQ(session.unplaced()[0].kept.value, "13");
    EXPECT_EQ(project.read("s.kez"), "// entry: Other\nvar x = 1;\n");
    EXPECT_THAT(project.read("s.kez.zoka.old"), HasSubstr("\n1\n11\n13\n\n"));
}

// Another script under the name: an id alone doesn't make its entry the same one.
TEST_F(Session, ValuesGoIntoAChangedFileByIdWhereLabelOrVariableStays) {
    struct {
        std::string label, entry;
        bool taken;
    } const rows[] = {{"Range", "// entry: Radius\n// id: 1\nvar rain_radius = 14;\n", false},
                      {"Range", "// entry: Reach\n// id: 1\nvar range = 14;\n", true},
                      {"Range", "// entry: Range\n// id: 1\nvar lamp_range = 14;\n", true},
                      {"L\xE4nge", "// entry: L\xC3\xA4nge\n// id: 1\nvar lamp_range = 14;\n", true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.entry);
        open("// entry: " + row.label + "\n// id: 1\nvar range = 10;\n");
        set(row.label, "15");
        project.write("s.kez", row.entry);
        prompt.answers = {PromptAnswer::Yes};
        EXPECT_EQ(session.save(), row.taken ? SaveResult::Saved : SaveResult::Failed);
        EXPECT_THAT(project.read("s.kez"), HasSubstr(row.taken ? " = 15;" : " = 14;"));
        EXPECT_EQ(
            unplacedText(session.unplaced()),
            row.taken ? "" : "Range (id 1): 15 - the entry of this id is another one now, \"Radius\"\r\n");
    }
}

TEST_F(Session, ValuesThatNoFileTakesAreTold) {
    open();
    set("Range", "15");
    project.write("s.kez", "// entry: Radius\n// id: 77\nvar radius = 14;\n");
    project.write("s.kez.zoka.old", "earlier values");
    prompt.answers = {PromptAnswer::Yes};
    {
        const FaultyOsFiles disk([](int, std::string_view op, const std::string& path) {
            return op == "readWhole" && path.ends_with(".zoka.old");
        });
        EXPECT_EQ(session.save(), SaveResult::Failed);
    }
    EXPECT_FALSE(session.unplacedAreKept());
    EXPECT_THAT(prompt.texts()[1],
                HasSubstr("could not be written into a file either:\n\nRange (id 1): 15 - "));
    EXPECT_EQ(project.read("s.kez.zoka.old"), "earlier values");
}

TEST_F(Session, AScriptThatIsGoneIsSavedAnewOnlyAfterAQuestion) {
    open();
    set("Range", "11");
    std::filesystem::remove(project.native("s.kez"));
    prompt.answers = {PromptAnswer::No, PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_FALSE(std::filesystem::exists(project.native("s.kez")));
    EXPECT_EQ(session.changedCount(), 1u);
    std::filesystem::create_directory(project.native("s.kez"));
    EXPECT_EQ(session.save(), SaveResult::Failed) << "nothing can be saved over a folder";
    std::filesystem::remove(project.native("s.kez"));
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("s.kez"), HasSubstr("range = 11;"));
    EXPECT_THAT(prompt.texts(),
                testing::ElementsAre(testing::StartsWith("The script is gone: "), "Error open file to write",
                                     testing::StartsWith("The script is gone: ")));
}

TEST_F(Session, AnEmptiedValueIsSavedOnlyAfterAQuestion) {
    open();
    set("Gone", "");
    prompt.answers = {PromptAnswer::No, PromptAnswer::Yes};
    EXPECT_EQ(session.save(), SaveResult::Cancelled);
    EXPECT_THAT(prompt.asked[0].text,
                testing::StartsWith("After saving, these entries will disappear from this panel "));
    EXPECT_THAT(prompt.asked[0].text, HasSubstr("\"Gone\" (line 13)"));
    EXPECT_EQ(project.read("s.kez"), kOld);
    EXPECT_EQ(session.save(), SaveResult::Saved);
    EXPECT_THAT(project.read("s.kez"), HasSubstr("gone = \"\";"));
    EXPECT_FALSE(session.canUndo());  // the rows are others now
}

TEST_F(Session, RandomEditsThroughThePanelSaveReadBackAndReverse) {
    std::minstd_rand random(3);
    for (const auto& [name, bytes] : sampleScripts()) {
        SCOPED_TRACE(name);
        open(bytes);
        for (size_t i = 0; i < session.size(); ++i) {
            if (session.entry(i).hasValue()) {
                static_cast<void>(session.setValue(i, otherValue(session.row(i), random)));
            }
        }
        if (session.changedCount() == 0) {
            continue;
        }
        std::vector<std::string> values;
        for (size_t i = 0; i < session.size(); ++i) {
            values.push_back(session.row(i).value());
        }
        ASSERT_EQ(session.save(), SaveResult::Saved);
        CustomizeSession other(host, prompt);
        ASSERT_TRUE(other.open(project.path("s.kez")));
        ASSERT_EQ(other.size(), values.size());
        for (size_t i = 0; i < values.size(); ++i) {
            ASSERT_EQ(other.row(i).value(), values[i]);
        }
        while (session.undo()) {
        }
        ASSERT_EQ(session.save(), SaveResult::Saved);
        ASSERT_EQ(project.read("s.kez"), bytes);
    }
    EXPECT_THAT(prompt.texts(), IsEmpty());
}

}  // namespace
