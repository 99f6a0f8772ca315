// What only Windows has: attributes and creation times.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <thread>

#include "tests/support/TempFolder.h"
#include "util/File.h"
#include "util/OsFiles.h"
#include "util/SafeWrite.h"

// Stands in for the import through which files are flushed.
namespace {
DWORD g_noFlush = 0;  // the error of every flush

BOOL WINAPI flushOrNot(HANDLE file) {
    if (g_noFlush != 0) {
        SetLastError(g_noFlush);
        return FALSE;
    }
    const FARPROC found = GetProcAddress(GetModuleHandleA("kernel32"), "FlushFileBuffers");
    BOOL(WINAPI * own)(HANDLE);
    std::memcpy(&own, &found, sizeof own);
    return own(file);
}
}  // namespace
extern "C" {
extern decltype(&flushOrNot) zokaFlushImport __asm__("__imp__FlushFileBuffers@4");
decltype(&flushOrNot) zokaFlushImport = flushOrNot;
}

namespace {

using testing::EndsWith;
using zoka::safeWrite;
using zoka::test::TempFolder;

struct Times {
    FILETIME creation = {}, access = {}, write = {};
};

Times timesOf(const std::string& path) {
    Times times;
    HANDLE file =
        CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(GetFileTime(file, &times.creation, &times.access, &times.write));
    CloseHandle(file);
    return times;
}

bool operator==(const FILETIME& a, const FILETIME& b) {
    return a.dwLowDateTime == b.dwLowDateTime && a.dwHighDateTime == b.dwHighDateTime;
}

// Not every system that runs Windows programs keeps creation times; where one does, the save must too.
TEST(SafeWrite, KeepsAttributesAndCreationTime) {
    const TempFolder folder;
    const std::string path = folder.write("a.kez", "old");
    constexpr FILETIME in2000 = {0, 0x01c00000};
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_TRUE(SetFileTime(file, &in2000, nullptr, nullptr));
    CloseHandle(file);
    const bool keepsCreation = timesOf(path).creation == in2000;
    ASSERT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_HIDDEN));
    EXPECT_EQ(safeWrite(path, "new").why(), "");
    EXPECT_EQ(folder.read("a.kez"), "new");
    EXPECT_TRUE(GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(timesOf(path).creation == in2000, keepsCreation);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.kez"});
}

// Who may do what with a file, as the system writes it down.
std::string accessListOf(const std::string& path) {
    DWORD size = 0;
    GetFileSecurityA(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::string list(size, '\0');
    EXPECT_TRUE(GetFileSecurityA(path.c_str(), DACL_SECURITY_INFORMATION, list.data(), size, &size));
    return list;
}

TEST(SafeWrite, KeepsTheAccessList) {
    const TempFolder folder;
    const std::string path = folder.write("a.kez", "old"), other = folder.write("b.kez", "other");
    SECURITY_DESCRIPTOR everybody;
    ASSERT_TRUE(InitializeSecurityDescriptor(&everybody, SECURITY_DESCRIPTOR_REVISION));
    std::string sid(SECURITY_MAX_SID_SIZE, '\0'), list(200, '\0');
    auto size = static_cast<DWORD>(sid.size());
    ASSERT_TRUE(CreateWellKnownSid(WinWorldSid, nullptr, sid.data(), &size));
    auto* const entries = reinterpret_cast<ACL*>(list.data());
    ASSERT_TRUE(InitializeAcl(entries, static_cast<DWORD>(list.size()), ACL_REVISION));
    ASSERT_TRUE(AddAccessAllowedAce(entries, ACL_REVISION, FILE_ALL_ACCESS, sid.data()));
    ASSERT_TRUE(SetSecurityDescriptorDacl(&everybody, TRUE, entries, FALSE));
    ASSERT_TRUE(SetFileSecurityA(path.c_str(), DACL_SECURITY_INFORMATION, &everybody));
    const std::string before = accessListOf(path);
    ASSERT_NE(before, accessListOf(other));
    EXPECT_EQ(safeWrite(path, "new").why(), "");
    EXPECT_EQ(folder.read("a.kez"), "new");
    EXPECT_EQ(accessListOf(path), before);
}

// The same of links: where none can be made, a file leads to itself at least.
TEST(SafeWrite, WritesWhatALinkLeadsTo) {
    const TempFolder folder;
    const std::string target = folder.write("target.kez", "old"), link = folder.path("link.kez");
    EXPECT_EQ(zoka::osFiles().resolveLinks(target), target);
    constexpr DWORD kForEveryUser = 2;  // where the system is set up for developers
    CreateSymbolicLinkA(link.c_str(), target.c_str(), kForEveryUser);
    const DWORD attributes = GetFileAttributesA(link.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
        EXPECT_EQ(safeWrite(link, "new").why(), "");
        EXPECT_EQ(folder.read("target.kez"), "new");
        EXPECT_TRUE(GetFileAttributesA(link.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT);
    }
}

TEST(SafeWrite, RefusesAFileThatIsReadOnlyOrThatAnotherProgramHolds) {
    const TempFolder folder;
    const std::string path = folder.write("a.kez", "old");
    ASSERT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_NE(safeWrite(path, "new").why(), "");
    ASSERT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL));
    HANDLE other =
        CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    EXPECT_THAT(safeWrite(path, "new").why(), EndsWith("; close the program that uses it and try again"));
    CloseHandle(other);
    EXPECT_EQ(folder.read("a.kez"), "old");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.kez"});
}

// A virus scanner looks into what was just written. One that lets others write is in the way of the move alone.
TEST(SafeWrite, WaitsForAProgramThatHoldsTheFileForAMoment) {
    for (const DWORD share : {0ul, static_cast<DWORD>(FILE_SHARE_READ | FILE_SHARE_WRITE)}) {
        const TempFolder folder;
        const std::string path = folder.write("a.kez", "old");
        HANDLE other = CreateFileA(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(other, INVALID_HANDLE_VALUE);
        std::thread scanner([other] {
            Sleep(200);
            CloseHandle(other);
        });
        EXPECT_EQ(safeWrite(path, "new").why(), "") << share;
        scanner.join();
        EXPECT_EQ(folder.read("a.kez"), "new");
    }
}

// Also a folder that a program looks into just then.
TEST(OsFiles, WaitsForAProgramThatHoldsTheFolderForAMoment) {
    const TempFolder folder;
    const std::string path = folder.path("sub");
    ASSERT_TRUE(zoka::systemFiles().makeFolder(path));
    const HANDLE other = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                     OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(RemoveDirectoryA(path.c_str()));
    std::thread scanner([other] {
        Sleep(200);
        CloseHandle(other);
    });
    EXPECT_TRUE(zoka::systemFiles().deleteFolder(path)) << zoka::systemFiles().lastError();
    scanner.join();
    EXPECT_TRUE(folder.names().empty());
}

// The suite's longest path leaves no room for the name of a sibling.
TEST(SafeWrite, TakesTheLongestPath) {
    const TempFolder folder;
    std::string path = folder.path();
    while (path.size() + 60 < 255) {
        path += "\\" + std::string(50, 'f');
        ASSERT_TRUE(zoka::systemFiles().makeFolder(path));
    }
    path += "\\" + std::string(254 - path.size(), 'f') + ".kez";
    ASSERT_EQ(path.size(), 259u);
    EXPECT_EQ(safeWrite(path, "new").why(), "");
    EXPECT_EQ(safeWrite(path, "newer").why(), "");
    EXPECT_EQ(zoka::systemFiles().readWhole(path), "newer");
}

// What a share refuses to flush is as safe as it gets; what the disk can't write is not.
TEST(SafeWrite, BearsARefusedFlushAlone) {
    const TempFolder folder;
    const std::string path = folder.write("a", "old");
    for (const auto& [error, saved] :
         {std::pair<DWORD, bool>(ERROR_INVALID_FUNCTION, true),
          std::pair<DWORD, bool>(ERROR_NOT_SUPPORTED, true), std::pair<DWORD, bool>(ERROR_WRITE_FAULT, false),
          std::pair<DWORD, bool>(ERROR_DISK_FULL, false)}) {
        folder.write("a", "old");
        g_noFlush = error;
        const std::string why = safeWrite(path, "new").why();
        g_noFlush = 0;
        EXPECT_EQ(why.empty(), saved) << why;
        EXPECT_EQ(why.ends_with("; make room and try again"), error == ERROR_DISK_FULL) << why;
        EXPECT_EQ(folder.read("a"), saved ? "new" : "old");
        EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
    }
}

TEST(FileTimes, SetAllThree) {
    const TempFolder folder;
    const std::string path = folder.write("a", "x");
    const zoka::FileTime time = zoka::FileTime::fromTicks(130'000'000'000'000'000);
    ASSERT_TRUE(file_t::set_file_time(path.c_str(), &time));
    const Times times = timesOf(path);
    const FILETIME expected = {time.dwLowDateTime, time.dwHighDateTime};
    EXPECT_TRUE(times.write == expected);
    EXPECT_TRUE(times.access == expected);
    EXPECT_TRUE(times.creation == expected);
}

}  // namespace
