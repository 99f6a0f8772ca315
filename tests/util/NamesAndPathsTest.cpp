#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"
#include "util/FileNames.h"
#include "util/PathRules.h"

namespace {

using namespace zoka;

TEST(PathRules, JoinsWithOneSeparator) {
    const struct {
        const char *folder, *name, *joined;
    } rows[] = {{"C:\\a", "b", "C:\\a\\b"}, {"C:\\a\\", "b", "C:\\a\\b"},
                {"C:/a/", "b", "C:/a/b"},   {"C:\\", "b", "C:\\b"},
                {"", "b", "\\b"},           {"a", "", "a\\"}};
    for (const auto& row : rows) {
        EXPECT_EQ(joinPath(row.folder, row.name), row.joined);
    }
}

TEST(PathRules, SplitsIntoPartsThatMakeThePath) {
    const struct {
        const char *path, *drive, *folder, *name, *ext, *folderOf;
    } rows[] = {
        {"C:\\a\\b.kez", "C:", "\\a\\", "b", ".kez", "C:\\a"},
        {"C:\\b.kez", "C:", "\\", "b", ".kez", "C:\\"},
        {"C:b", "C:", "", "b", "", "C:"},
        {"\\b", "", "\\", "b", "", "\\"},
        {"a/b.c.d", "", "a/", "b.c", ".d", "a"},
        {"a.b\\c", "", "a.b\\", "c", "", "a.b"},
        {"\\\\s\\h\\f", "", "\\\\s\\h\\", "f", "", "\\\\s\\h"},
        {"a\\", "", "a\\", "", "", "a"},
        {"..", "", "", "..", "", ""},
        {".hidden", "", "", "", ".hidden", ""},
        {"", "", "", "", "", ""},
        {"C:", "C:", "", "", "", "C:"},
    };
    for (const auto& row : rows) {
        const PathParts parts = splitPath(row.path);
        EXPECT_EQ(parts.drive, row.drive) << row.path;
        EXPECT_EQ(parts.folder, row.folder) << row.path;
        EXPECT_EQ(parts.name, row.name) << row.path;
        EXPECT_EQ(parts.ext, row.ext) << row.path;
        EXPECT_EQ(folderOf(row.path), row.folderOf) << row.path;
        EXPECT_EQ(std::string(parts.name) + std::string(parts.ext), fileNameOf(row.path)) << row.path;
        EXPECT_EQ(fname_t(row.path).GetPath(), row.path);
    }
}

TEST(PathRules, Normalizes) {
    const struct {
        const char *path, *normal;
        bool absolute;
    } rows[] = {
        {"C:\\a\\.\\b\\..\\c", "C:\\a\\c", true},
        {"C:/a//b/", "C:\\a\\b\\", true},
        {"C:\\..\\..\\a", "C:\\a", true},
        {"C:\\a\\..", "C:\\", true},
        {"C:\\", "C:\\", true},
        {"C:", "C:", false},
        {"C:a\\..\\b", "C:b", false},
        {"a\\..\\..\\b", "..\\b", false},
        {"\\a\\..\\b", "\\b", false},
        {"\\\\s\\h\\.\\f", "\\\\s\\h\\f", true},
        {"", "", false},
        {".", "", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(normalizePath(row.path), row.normal) << row.path;
        EXPECT_EQ(isAbsolute(row.path), row.absolute) << row.path;
    }
}

TEST(PathRules, MatchesWildcards) {
    const struct {
        const char *pattern, *name;
        bool matches;
    } rows[] = {
        {"*", "", true},
        {"*.*", "nodot", true},
        {"*.kez", "A.KEZ", true},
        {"*.kez", "a.kezx", false},
        {"?.kez", "ab.kez", false},
        {"a*b*c", "aXbYbZc", true},
        {"a*b", "aXbY", false},
        {"", "", true},
        {"", "a", false},
        {"a", "A", true},
        {"*a", "ba", true},
        {"?", "", false},
        {"a**", "a", true},
        {"\xe4", "\xc4", false},  // letters beyond A-Z depend on a locale we don't ask
    };
    for (const auto& row : rows) {
        EXPECT_EQ(matchesWildcard(row.pattern, row.name), row.matches) << row.pattern << " on " << row.name;
    }
    EXPECT_TRUE(lessNoCase("a", "B"));
    EXPECT_TRUE(lessNoCase("A", "a")) << "an order for every two names";
    EXPECT_FALSE(lessNoCase("a", "A"));
    EXPECT_TRUE(equalNoCase("Main.KEZ", "mAIN.kez"));
    EXPECT_FALSE(equalNoCase("[", "{"));
}

TEST(FileNames, PartsAreReplaced) {
    fname_t name("C:\\p\\main.kez");
    name.SetExt("zoka");
    EXPECT_EQ(name.GetPath(), "C:\\p\\main.zoka");
    name.SetName("other");
    name.SetExt("");
    EXPECT_EQ(name.GetPath(), "C:\\p\\other");
    EXPECT_EQ(name.GetFileName(), "other");
    name.SetName(nullptr);
    name.SetExt(nullptr);
    EXPECT_EQ(name.GetPath(), "C:\\p\\") << "null is an empty text";
    name.SplitPath(nullptr);
    EXPECT_EQ(name.GetPath(), "");

    dname_t folder("C:\\p");
    folder.Append("q");
    EXPECT_EQ(folder.GetFile("a"), "C:\\p\\q\\a");
    EXPECT_EQ(dname_t("C:\\p").GetFile(nullptr), "C:\\p\\");
    EXPECT_TRUE(CFName("Main.kez") == CFName("MAIN.KEZ"));
    EXPECT_TRUE(CFName("a") < CFName("B"));
}

TEST(FileNames, FinderGivesSortedMatches) {
    const zoka::test::TempFolder folder;
    for (const char* name : {"b.kez", "A.kez", "c.html", "d.htm"}) {
        folder.write(name, name);
    }
    std::filesystem::create_directory(folder.native("z.kez"));
    EXPECT_TRUE(dname_t(folder.path("z.kez").c_str()).Exist());

    std::vector<std::string> found;
    CFileFinder finder(folder.path("*.kez").c_str());
    while (finder.FindNext()) {
        found.push_back(finder.GetName() + (finder.IsDir() ? "/" : ""));
        EXPECT_EQ(finder.GetPath(), folder.path(finder.GetName()));
    }
    EXPECT_EQ(found, (std::vector<std::string>{"A.kez", "b.kez", "z.kez/"}));
    EXPECT_FALSE(finder.FindNext());

    CFileFinder pages(folder.path("*.htm").c_str());
    EXPECT_TRUE(pages.FindNext());
    EXPECT_EQ(pages.GetName(), "d.htm");
    EXPECT_FALSE(pages.FindNext()) << "not c.html, whose short name would match";
    EXPECT_FALSE(CFileFinder(folder.path("none\\*").c_str()).FindNext());
    EXPECT_FALSE(CFileFinder(nullptr).FindNext());
}

}  // namespace
