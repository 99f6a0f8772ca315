// What only a system with slashes, modes and symbolic links has.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <limits>

#include "tests/support/FaultyOsFiles.h"
#include "tests/support/TempFolder.h"
#include "util/File.h"
#include "util/SafeWrite.h"
#include "util/posix/NativePath.h"

namespace {

using namespace zoka;
using zoka::test::FaultyOsFiles;
using zoka::test::TempFolder;
namespace fs = std::filesystem;

TEST(NativePath, FindsNamesWithoutRegardToCase) {
    const TempFolder folder;
    fs::create_directories(folder.native("Sub/Inner"));
    folder.write("Sub/File.kez", "");
    folder.write("same", "");
    folder.write("SAME", "");
    const std::string root = folder.native("").string();
    const struct {
        const char *path, *native;
    } rows[] = {
        {"Sub\\File.kez", "Sub/File.kez"},
        {"sub/FILE.KEZ", "Sub/File.kez"},
        {"SUB\\inner\\", "Sub/Inner/"},
        {"sub\\new.kez", "Sub/new.kez"},
        {"new\\File.kez", "new/File.kez"},
        {"Same", "SAME"},
        {"same", "same"},
        {"sub\\..\\sAMe", "Sub/../SAME"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(toNativePath(folder.path(row.path)), root + row.native) << row.path;
    }
    EXPECT_EQ(toNativePath("Q:\\none\\x"), "/none/x") << "one root serves as every drive";
    EXPECT_EQ(toNativePath("Q:none"), "none");
    EXPECT_EQ(toNativePath(""), "");
    EXPECT_EQ(fromNativePath("/a/b"), "C:\\a\\b");
    EXPECT_EQ(fromNativePath("a/b"), "a\\b");
}

// A pipe would wait; a device may never end, and saving would put a file into its place.
TEST(OsFiles, PipesAndDevicesAreNoFiles) {
    const TempFolder folder;
    ASSERT_EQ(mkfifo(folder.native("pipe").c_str(), 0600), 0);
    file_t file;
    EXPECT_FALSE(file.OpenRead(folder.path("pipe").c_str()));
    EXPECT_FALSE(file.OpenWrite(folder.path("pipe").c_str()));
    EXPECT_FALSE(file.OpenRead("\\dev\\zero"));
    EXPECT_EQ(systemFiles().readWhole("\\dev\\zero"), std::nullopt);
    EXPECT_EQ(systemFiles().lastError(), "Operation not supported");
    // Takes no sibling: /dev keeps what it holds even if this fails.
    const FaultyOsFiles disk(FaultyOsFiles::every("openNew"));
    const std::string error = safeWrite("\\dev\\null", "x").error;
    EXPECT_TRUE(error.ends_with("Operation not supported")) << error;
}

TEST(OsFiles, ReadsNothingOfWhatIsTooLarge) {
    const TempFolder folder;
    const std::string path = folder.write("sparse", "x");
    fs::resize_file(folder.native("sparse"), 0x80000000u);
    EXPECT_EQ(systemFiles().readWhole(path), std::nullopt);
    EXPECT_EQ(systemFiles().lastError(), "File too large");
    EXPECT_FALSE(file_t().OpenRead(path.c_str()));
}

TEST(OsFiles, ARemovedCurrentFolderNamesNothing) {
    const TempFolder folder;
    OsFiles& files = systemFiles();
    const std::string before = files.currentFolder();
    fs::create_directory(folder.native("gone"));
    ASSERT_TRUE(files.setCurrentFolder(folder.path("gone")));
    fs::remove(folder.native("gone"));
    EXPECT_EQ(files.fullPath("a.kez"), "a.kez") << "not a file of the root's";
    EXPECT_EQ(file_t::AbsPath("a.kez"), "a.kez");
    EXPECT_FALSE(safeWrite("a.kez", "x"));
    ASSERT_TRUE(files.setCurrentFolder(before));
}

TEST(FileTimes, BeyondWhatIsCountedAreTheFirstOrTheLast) {
    const TempFolder folder;
    const std::string path = folder.write("a", "x");
    for (const time_t seconds : {time_t{-12'000'000'000}, std::numeric_limits<time_t>::max()}) {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, folder.native("a").c_str(), times, 0), 0);
        struct stat kept;  // file systems cut what they can't hold
        ASSERT_EQ(stat(folder.native("a").c_str(), &kept), 0);
        FileTime time;
        ASSERT_TRUE(file_t::get_file_time(path.c_str(), &time));
        if (kept.st_mtim.tv_sec < -11'644'473'600) {
            EXPECT_EQ(time.ticks(), 0u);
        } else if (kept.st_mtim.tv_sec > 2'000'000'000'000) {
            EXPECT_GT(time.ticks(), ~0ull - 20'000'000);
        } else {
            EXPECT_EQ(time.ticks() / 10'000'000,
                      static_cast<std::uint64_t>(kept.st_mtim.tv_sec + 11'644'473'600));
        }
    }
}

TEST(SafeWrite, KeepsTheModeAndTheLink) {
    const TempFolder folder;
    fs::create_directory(folder.native("real"));
    folder.write("real/a", "old");
    ASSERT_EQ(chmod(folder.native("real/a").c_str(), 0641), 0);
    fs::create_symlink("real/a", folder.native("one"));
    fs::create_symlink(folder.native("one"), folder.native("two"));
    fs::create_symlink("real/later", folder.native("dangling"));
    fs::create_symlink("loop", folder.native("loop"));

    EXPECT_EQ(safeWrite(folder.path("two"), "new").error, "");
    EXPECT_TRUE(fs::is_symlink(folder.native("one")) && fs::is_symlink(folder.native("two")));
    EXPECT_EQ(folder.read("real/a"), "new");
    struct stat info;
    ASSERT_EQ(stat(folder.native("real/a").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0641u);
    EXPECT_EQ(safeWrite(folder.path("dangling"), "made").error, "");
    EXPECT_EQ(folder.read("real/later"), "made");
    EXPECT_TRUE(fs::is_symlink(folder.native("dangling")));
    EXPECT_FALSE(safeWrite(folder.path("loop"), "x"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.native("real")), {}), 2) << "no sibling is left";
}

// The superuser may write everything, so the tests of refused access run as nobody.
class AsNobody {
public:
    AsNobody() { EXPECT_TRUE(m_before != 0 || seteuid(65534) == 0); }
    ~AsNobody() { EXPECT_EQ(seteuid(m_before), 0); }

private:
    const uid_t m_before = geteuid();
};

TEST(SafeWrite, RespectsRefusedAccess) {
    const TempFolder folder;
    folder.write("readonly", "old");
    folder.write("writable", "old content");
    fs::permissions(folder.native(""), fs::perms::all);
    fs::permissions(folder.native("readonly"), fs::perms(0444));
    fs::permissions(folder.native("writable"), fs::perms(0666));
    {
        const AsNobody nobody;
        const std::string error = safeWrite(folder.path("readonly"), "new").error;
        EXPECT_TRUE(error.ends_with("Permission denied")) << error;
    }
    EXPECT_EQ(folder.read("readonly"), "old") << "though the folder would let it be replaced";

    fs::permissions(folder.native(""), fs::perms(0555));
    {
        const AsNobody nobody;
        EXPECT_EQ(safeWrite(folder.path("writable"), "new").error, "") << "written in place";
        EXPECT_FALSE(safeWrite(folder.path("another"), "new"));
    }
    EXPECT_EQ(folder.read("writable"), "new");
    fs::permissions(folder.native(""), fs::perms::all);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"readonly", "writable"}));
}

// A real write that the system stops half-way.
TEST(SafeWrite, SurvivesADiskWithoutRoom) {
    const TempFolder folder;
    const std::string old(500, 'o');
    const std::string path = folder.write("a", old);
    rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    for (const bool inPlace : {false, true}) {
        const FaultyOsFiles disk(inPlace ? FaultyOsFiles::every("openNew") : FaultyOsFiles::never());
        const rlimit small = {1000, before.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        const auto result = safeWrite(path, std::string(100'000, 'n'));
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
        EXPECT_TRUE(result.error.ends_with("File too large")) << result.error;
        EXPECT_EQ(folder.read("a"), old);
        EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
    }
    signal(SIGXFSZ, handler);
}

// The process dies before every operation, of one file and of two at once.
TEST(SafeWrite, SurvivesACrash) {
    const TempFolder folder;
    const std::string old(5000, 'o'), fresh(7000, 'n');
    for (const bool both : {false, true}) {
        const zoka::FileContent files[] = {{folder.path("a"), fresh}, {folder.path("b"), fresh}};
        const std::span<const zoka::FileContent> written(files, both ? 2 : 1);
        int crashes = 0;
        for (bool finished = false; !finished; ++crashes) {
            folder.write("a", old);
            folder.write("b", old);
            const pid_t child = fork();
            ASSERT_GE(child, 0);
            if (child == 0) {
                const FaultyOsFiles disk([crashes](int n, std::string_view, const std::string&) {
                    return n > crashes ? _exit(1), false : false;
                });
                _exit(safeWrite(written) ? 0 : 2);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 2);
            finished = WEXITSTATUS(status) == 0;
            const bool newA = folder.read("a") == fresh, newB = folder.read("b") == fresh;
            EXPECT_TRUE((newA || folder.read("a") == old) && (newB || folder.read("b") == old)) << crashes;
            EXPECT_GE(newA, newB) << "the first one comes first";
            EXPECT_TRUE(!finished || (newA && newB == both));
        }
        EXPECT_GE(crashes, both ? 14 : 8);
    }
}

}  // namespace
