// Paths, folders and times of file_t.
#include <gtest/gtest.h>

#include "tests/support/FaultyOsFiles.h"
#include "tests/support/TempFolder.h"
#include "util/File.h"

namespace {

using zoka::FileTime;
using zoka::test::FaultyOsFiles, zoka::test::TempFolder;

class FolderAt : public FaultyOsFiles {
public:
    explicit FolderAt(std::string folder) : FaultyOsFiles(never()), m_folder(std::move(folder)) {}
    std::string currentFolder() override { return m_folder; }
    bool makeFolder(const std::string& path) override {
        made.push_back(path);
        return false;
    }
    std::vector<std::string> made;

private:
    std::string m_folder;
};

TEST(AbsPath, FollowsTheRulesForEveryForm) {
    const struct {
        const char *folder, *name, *expected;
    } rows[] = {
        {"C:\\a\\b", "x.kez", "C:\\a\\b\\x.kez"},
        {"C:\\a\\b", "", "C:\\a\\b\\"},
        {"C:\\a\\b", "D:\\x", "D:\\x"},
        {"C:\\a\\b", "d:x", "d:x"},
        {"C:\\a\\b", "\\x\\y", "C:\\x\\y"},
        {"C:\\a\\b", "..\\x", "C:\\a\\..\\x"},
        {"C:\\a\\b", "..\\..\\x", "C:\\..\\..\\x"},
        {"C:\\a\\b", "..\\..\\..\\x", "..\\..\\..\\x"},  // nothing left to cut
        {"C:\\a\\b", "..", "C:\\a\\b\\.."},
        {"C:\\a\\b", "x\\..\\y", "C:\\a\\b\\x\\..\\y"},
        {"C:\\", "x", "C:\\x"},
        {"C:\\", "..\\x", "..\\x"},
        {"\\\\server\\share", "\\x", "\\x"},
    };
    for (const auto& row : rows) {
        const FolderAt disk(row.folder);
        EXPECT_EQ(file_t::AbsPath(row.name), row.expected) << row.name << " in " << row.folder;
    }
    const FolderAt deep("C:\\" + std::string(400, 'd'));
    EXPECT_EQ(file_t::AbsPath("x").size(), 259u + 2u);
}

TEST(MakeDir, MakesEveryPrefixOnce) {
    const struct {
        const char* path;
        std::vector<std::string> made;
    } rows[] = {
        {"qq\\b\\c", {"qq", "qq\\b", "qq\\b\\c"}},
        {"Q:\\qq\\b", {"Q:\\qq", "Q:\\qq\\b"}},
        {"qq\\b\\", {"qq", "qq\\b\\"}},
        {"\\qq\\b", {"\\qq", "\\qq\\b"}},
        {"Q:qq", {}},  // a drive and nothing to begin after
        {"qq", {"qq"}},
        {"", {}},
    };
    for (const auto& row : rows) {
        FolderAt disk("C:\\");
        file_t::MakeDir(row.path);
        EXPECT_EQ(disk.made, row.made) << row.path;
    }
    const TempFolder folder;
    file_t::MakeDir(folder.path("one\\two\\three").c_str());
    EXPECT_TRUE(std::filesystem::is_directory(folder.native("one/two/three")));
    FolderAt disk("C:\\");
    file_t::MakeDir(folder.path("one\\two").c_str());
    EXPECT_EQ(disk.made.size(), 0u) << "it exists";
}

TEST(FileExist, TellsNameTimeAndSize) {
    const TempFolder folder;
    const std::string path = folder.write("Name.KEZ", "12345");
    fileinfo_t info;
    info.sizeHigh = 7;
    ASSERT_TRUE(file_t::FileExist(path.c_str(), &info));
    EXPECT_EQ(info.name, path);
    EXPECT_EQ(info.sizeLow, 5u);
    EXPECT_EQ(info.sizeHigh, 0u);
    FileTime time;
    ASSERT_TRUE(file_t::get_file_time(path.c_str(), &time));
    EXPECT_EQ(info.lastWrite, time);
    EXPECT_TRUE(file_t::FileExist(folder.path("nAME.kez").c_str(), nullptr)) << "case doesn't count";
    EXPECT_TRUE(file_t::FileExist(folder.path("*.kez").c_str(), nullptr)) << "it is a search";
    EXPECT_TRUE(file_t::FileExist(folder.path().c_str(), nullptr)) << "which finds folders too";
    EXPECT_FALSE(file_t::FileExist(folder.path("none").c_str(), &info));
    EXPECT_FALSE(file_t::FileExist(nullptr, &info));

    EXPECT_TRUE(file_t::DirExist(folder.path().c_str()));
    EXPECT_FALSE(file_t::DirExist((folder.path() + "\\").c_str()));
    EXPECT_FALSE(file_t::DirExist(path.c_str()));
    EXPECT_FALSE(file_t::DirExist(""));
    EXPECT_FALSE(file_t::DirExist("."));
    EXPECT_FALSE(file_t::DirExist((folder.path() + "\\.").c_str()));
    EXPECT_TRUE(file_t::DirExist(".."));
}

TEST(FileTimes, AreSetAndRead) {
    const TempFolder folder;
    const std::string path = folder.write("a", "x");
    const FileTime time = FileTime::fromTicks(130'000'000'000'000'000);  // in 2012
    EXPECT_TRUE(file_t::set_file_time(path.c_str(), &time));
    FileTime read;
    EXPECT_TRUE(file_t::get_file_time(path.c_str(), &read));
    EXPECT_EQ(read, time);
    EXPECT_TRUE(file_t::get_file_time(path.c_str(), nullptr));
    file_t file;
    ASSERT_TRUE(file.OpenRead(path.c_str()));
    EXPECT_EQ(*file.GetDatum(), time);

    EXPECT_FALSE(file_t::set_file_time(nullptr, &time));
    EXPECT_FALSE(file_t::set_file_time(path.c_str(), nullptr));
    EXPECT_FALSE(file_t::set_file_time(folder.path("none").c_str(), &time));
    EXPECT_FALSE(file_t::get_file_time(folder.path("none").c_str(), &read));
    EXPECT_FALSE(file_t::get_file_time(folder.path().c_str(), &read)) << "a folder is no file";
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
}

TEST(FileTimes, PrintThroughTheDosForm) {
    constexpr std::uint64_t second = 10'000'000, day = 86'400 * second;
    constexpr std::uint64_t y1980 = 138'426 * day, y2000 = 145'731 * day, y2108 = 185'177 * day;
    const struct {
        std::uint64_t ticks;
        const char* text;
    } rows[] = {
        {y1980, "01.01.1980  00:00"},
        {y1980 - 1, "01.01.1980  00:00"},
        {0, "01.01.1980  00:00"},
        {y2000 + 59 * day, "29.02.2000  00:00"},
        {y2000 + 60 * day + 13 * 3600 * second + 59 * 60 * second + 59 * second, "01.03.2000  13:59"},
        {y2108 - 1, "31.12.2107  23:59"},
        {y2108, "01.01.1980  00:00"},
        {~0ull, "01.01.1980  00:00"},
    };
    for (const auto& row : rows) {
        const FileTime time = FileTime::fromTicks(row.ticks);
        EXPECT_EQ(file_t::ConvertFileTime(&time), row.text) << row.ticks;
    }
}

}  // namespace
