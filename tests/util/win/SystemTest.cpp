// What only Windows has: attributes and creation times.
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/support/TempFolder.h"
#include "util/File.h"
#include "util/SafeWrite.h"

namespace {

using zoka::safeWrite;
using zoka::test::TempFolder;

struct Times {
    FILETIME creation, access, write;
};

Times timesOf(const std::string& path) {
    Times times = {};
    HANDLE file =
        CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(GetFileTime(file, &times.creation, &times.access, &times.write));
    CloseHandle(file);
    return times;
}

TEST(SafeWrite, KeepsAttributes) {
    const TempFolder folder;
    const std::string path = folder.write("a.kez", "old");
    ASSERT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_HIDDEN));
    EXPECT_EQ(safeWrite(path, "new").error, "");
    EXPECT_EQ(folder.read("a.kez"), "new");
    EXPECT_TRUE(GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.kez"});
}

TEST(SafeWrite, RefusesAReadOnlyFile) {
    const TempFolder folder;
    const std::string path = folder.write("a.kez", "old");
    ASSERT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY));
    const std::string error = safeWrite(path, "new").error;
    EXPECT_NE(error, "");
    EXPECT_EQ(folder.read("a.kez"), "old");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.kez"});
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(SafeWrite, RefusesAFileThatAnotherProgramHolds) {
    const TempFolder folder;
    const std::string path = folder.write("a.kez", "old");
    HANDLE other =
        CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(safeWrite(path, "new"));
    CloseHandle(other);
    EXPECT_EQ(folder.read("a.kez"), "old");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.kez"});
}

TEST(FileTimes, SetTheAccessTimeToo) {
    const TempFolder folder;
    const std::string path = folder.write("a", "x");
    const zoka::FileTime time = zoka::FileTime::fromTicks(130'000'000'000'000'000);
    ASSERT_TRUE(file_t::set_file_time(path.c_str(), &time));
    const Times times = timesOf(path);
    EXPECT_EQ(times.write.dwLowDateTime, time.dwLowDateTime);
    EXPECT_EQ(times.write.dwHighDateTime, time.dwHighDateTime);
    EXPECT_EQ(times.access.dwLowDateTime, time.dwLowDateTime);
}

}  // namespace
