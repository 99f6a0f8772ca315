#include "plugin/host/FolderHost.h"

#include <gtest/gtest.h>

#include "tests/support/FaultyOsFiles.h"
#include "tests/support/TempFolder.h"

namespace zoka::test {
namespace {

TEST(FolderHost, FindsTheMainScript) {
    const struct {
        std::vector<std::string> files;
        std::string given;
        std::optional<std::string> script;
    } rows[] = {
        {{}, "", std::nullopt},
        {{"a.kez"}, "", "a.kez"},
        {{"a.kez", "b.kez"}, "", std::nullopt},
        {{"a.kez", "b.kez", "b.zlm"}, "", "b.kez"},
        {{"a.kez", "b.zlm"}, "", "a.kez"},
        {{"a.kez", "b.kez", "a.zlm", "b.zlm"}, "", std::nullopt},
        {{"a.kez"}, "C:\\else\\x.kez", "C:\\else\\x.kez"},
    };
    for (const auto& row : rows) {
        const TempFolder folder;
        for (const std::string& name : row.files) {
            folder.write(name, "");
        }
        FolderHost host({.project = folder.path(), .suite = "", .mainScript = row.given});
        auto expected = row.script;
        if (expected && row.given.empty()) {
            expected = folder.path(*expected);
        }
        EXPECT_EQ(host.GetMainScriptPath(), expected) << testing::PrintToString(row.files);
    }
}

TEST(FolderHost, CopiesByteForByte) {
    const TempFolder folder;
    FolderHost host({.project = folder.path(), .suite = ""});
    const std::string bytes = std::string("one\r\ntwo\n\0", 10) + "\xff";
    const std::string source = folder.write("a.kez", bytes);
    folder.write("b.kez", "old");
    EXPECT_TRUE(host.CopyFileWithSubstitutions(source, folder.path("b.kez"), {}));
    EXPECT_EQ(folder.read("b.kez"), bytes);

    std::filesystem::create_directory(folder.native("sub"));
    EXPECT_TRUE(host.CopyFileToFolder(source, folder.path("sub")));
    EXPECT_EQ(folder.read("sub/a.kez"), bytes);
    EXPECT_TRUE(host.CopyFileToFolder(source, folder.path("sub") + "\\"));

    EXPECT_FALSE(host.CopyFileToFolder(source, folder.path()));  // onto itself
    EXPECT_FALSE(host.CopyFileToFolder(source, folder.path("missing")));
    EXPECT_FALSE(host.CopyFileToFolder(folder.path("missing.kez"), folder.path("sub")));
    EXPECT_EQ(folder.read("a.kez"), bytes);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.kez", "b.kez", "sub"}));
}

TEST(FolderHost, SubstitutesInOnePass) {
    using Pairs = std::vector<std::pair<std::string, std::string>>;
    const struct {
        std::string text;
        Pairs pairs;
        std::string result;
    } rows[] = {
        {"entity NAME_1 is NAME_1", {{"NAME_1", "Door"}}, "entity Door is Door"},
        {"aaa", {{"a", "aa"}}, "aaaaaa"},
        {"ab", {{"a", "b"}, {"b", "a"}}, "ba"},
        {"abc", {{"ab", "1"}, {"abc", "2"}}, "1c"},
        {"aab", {{"ab", "x"}}, "ax"},
        {"abc", {{"", "x"}, {"c", ""}}, "ab"},
        {"tail NAM", {{"NAME", "x"}}, "tail NAM"},
    };
    const TempFolder folder;
    FolderHost host({.project = folder.path(), .suite = ""});
    for (const auto& row : rows) {
        const std::string source = folder.write("a", row.text);
        EXPECT_TRUE(host.CopyFileWithSubstitutions(source, folder.path("b"), row.pairs));
        EXPECT_EQ(folder.read("b"), row.result);
    }
}

TEST(FolderHost, FailedCopyLeavesTheTargetAndSaysWhy) {
    const TempFolder folder;
    FolderHost host({.project = folder.path(), .suite = ""});
    const std::string source = folder.write("a", "new"), target = folder.write("b", "old");
    const struct {
        const char* failing;  // the disk's operation; empty: none
        std::string from, problem;
    } rows[] = {
        {"readWhole", source, "Can't read '" + source + "': injected fault"},
        {"write", source, "Can't write '" + target + "': injected fault"},
        {"replaceFile", source, "Can't write '" + target + "': injected fault"},
        {"", target, "'" + target + "' is not copied onto itself"},
    };
    for (const auto& row : rows) {
        {
            const FaultyOsFiles disk(FaultyOsFiles::every(row.failing));
            EXPECT_FALSE(host.CopyFileWithSubstitutions(row.from, target, {}));
        }
        EXPECT_EQ(host.copyProblem(), row.problem);
        EXPECT_EQ(folder.read("b"), "old");
    }
    EXPECT_TRUE(host.CopyFileWithSubstitutions(source, target, {}));
    EXPECT_EQ(host.copyProblem(), "");
}

TEST(FolderHost, AnswersWhatItWasGiven) {
    const TempFolder folder;
    const std::string map = folder.write("cave.zlm", "");
    FolderHost host({.project = "C:\\nowhere", .suite = "C:\\suite", .templateSubfolder = "t"});
    EXPECT_EQ(host.TemplatePath("x.kez"), "C:\\suite\\t\\x.kez");
    EXPECT_EQ(host.QueryFolder(CmdQueryPath13), "");
    EXPECT_EQ(host.GetListItemName(0), std::nullopt);
    host.setListItems({"path1", std::string(80, 'n')});
    EXPECT_EQ(host.GetListItemName(1), std::string(63, 'n'));
    EXPECT_EQ(host.GetListItemName(2), std::nullopt);
    EXPECT_EQ(host.GetListItemName(-1), std::nullopt);
    EXPECT_EQ(host.ChooseFile("a"), std::nullopt);
    host.setChosenFile("b");
    EXPECT_EQ(host.ChooseFile("a"), "b");
    EXPECT_FALSE(host.OpenMap(folder.path("missing.zlm")));
    EXPECT_EQ(host.GetProjectFolder(), "C:\\nowhere");
    EXPECT_TRUE(host.OpenMap(map));
    EXPECT_EQ(host.GetProjectFolder(), folder.path());

    // A map in a drive's root.
    struct EmptyDisk : FaultyOsFiles {
        EmptyDisk() : FaultyOsFiles(never()) {}
        std::optional<OsEntry> search(const std::string&) override {
            return OsEntry{"cave.zlm", false, {}, 0};
        }
    } const disk;
    EXPECT_TRUE(host.OpenMap("D:\\cave.zlm"));
    EXPECT_EQ(host.GetProjectFolder(), "D:\\");
    EXPECT_FALSE(host.OpenMap("cave.zlm"));
}

}  // namespace
}  // namespace zoka::test
