// What only a system with slashes, modes and symbolic links has.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <iterator>
#include <limits>
#include <optional>
#include <set>
#include <thread>

#include "tests/support/FaultyOsFiles.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TempFolder.h"
#include "util/Backups.h"
#include "util/File.h"
#include "util/FileLock.h"
#include "util/SafeWrite.h"
#include "util/posix/NativePath.h"

// In place of the system library's, so that a signal can be played that interrupts a call; only calls to a pipe or
// the like really end so.
namespace {
thread_local int g_interrupts = 0;  // of the next reads and writes of this thread
thread_local int g_noFlush = 0;     // the error of every flush of this thread

ssize_t interruptible(long call, int file, void* buffer, size_t size) {
    if (g_interrupts > 0) {
        --g_interrupts;
        errno = EINTR;
        return -1;
    }
    return syscall(call, file, buffer, size);
}
}  // namespace

extern "C" int fsync(int file) {
    errno = g_noFlush;
    return g_noFlush != 0 ? -1 : static_cast<int>(syscall(SYS_fsync, file));
}
extern "C" ssize_t read(int file, void* buffer, size_t size) {
    return interruptible(SYS_read, file, buffer, size);
}
extern "C" ssize_t write(int file, const void* buffer, size_t size) {
    return interruptible(SYS_write, file, const_cast<void*>(buffer), size);
}

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

// Reading the folder for each name would take a thousand times as long.
TEST(NativePath, MissingNamesInALargeFolderAreFoundMissingInNoTime) {
    const TempFolder folder;
    constexpr int kFiles = 1500;
    for (int i = 0; i < kFiles; ++i) {
        folder.write("file" + std::to_string(i), "");
    }
    const auto timed = [](const auto& work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::steady_clock::now() - start;
    };
    const auto one =
        timed([&] { EXPECT_GE(std::ranges::distance(fs::directory_iterator(folder.native(""))), kFiles); });
    const auto all = timed([&] {
        for (int i = 0; i < kFiles; ++i) {
            const std::string name = "New" + std::to_string(i);
            ASSERT_EQ(toNativePath(folder.path(name)), folder.native(name));
        }
    });
    EXPECT_LT(all, one * (kFiles / 8));

    const fs::path made = toNativePath(folder.path("Made"));
    folder.write("Made", "");
    EXPECT_EQ(toNativePath(folder.path("MADE")), made) << "made since the folder was read";
    EXPECT_EQ(toNativePath(folder.path("FILE7")), folder.native("file7"));
    fs::remove(folder.native("file7"));
    EXPECT_EQ(toNativePath(folder.path("FILE7")), folder.native("FILE7")) << "gone since";
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
    const std::string error = safeWrite("\\dev\\null", "x").why();
    EXPECT_TRUE(error.ends_with("Operation not supported")) << error;
}

TEST(OsFiles, InterruptedReadsAndWritesGoOn) {
    const TempFolder folder;
    const std::string path = folder.path("a.kez");
    const auto file = systemFiles().openForWriting(path, OsOpen::New);
    ASSERT_TRUE(file);
    g_interrupts = 3;
    EXPECT_TRUE(file->write("text") && file->close());
    EXPECT_EQ(g_interrupts, 0) << "the calls are ours";
    g_interrupts = 3;
    EXPECT_EQ(systemFiles().readWhole(path), "text");
    EXPECT_EQ(g_interrupts, 0);
    g_interrupts = 3;
    EXPECT_EQ(systemFiles().holds(path, "text"), true);
    EXPECT_EQ(g_interrupts, 0);
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

    EXPECT_EQ(safeWrite(folder.path("two"), "new").why(), "");
    EXPECT_TRUE(fs::is_symlink(folder.native("one")) && fs::is_symlink(folder.native("two")));
    EXPECT_EQ(folder.read("real/a"), "new");
    struct stat info;
    ASSERT_EQ(stat(folder.native("real/a").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0641u);
    EXPECT_EQ(safeWrite(folder.path("dangling"), "made").why(), "");
    EXPECT_EQ(folder.read("real/later"), "made");
    EXPECT_TRUE(fs::is_symlink(folder.native("dangling")));
    EXPECT_FALSE(safeWrite(folder.path("loop"), "x"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.native("real")), {}), 2) << "no sibling is left";
}

// Whoever could read the new content may have read the old one, at no moment others. What a program makes for
// itself never goes through a link.
TEST(SafeWrite, NewContentHasTheOldModeFromItsFirstByteAndGeneratedFilesFollowNoLink) {
    const TempFolder folder;
    folder.write("secret", "old");
    ASSERT_EQ(chmod(folder.native("secret").c_str(), 0600), 0);
    const bool hasAttributes = setxattr(folder.native("secret").c_str(), "user.note", "kept", 4, 0) == 0;
    std::set<mode_t> modes;
    const FaultyOsFiles disk([&](int, std::string_view op, const std::string& path) {
        struct stat info;
        if (op == "write" && stat(toNativePath(path).c_str(), &info) == 0) {
            modes.insert(info.st_mode & 07777);
        }
        return false;
    });
    const FileContent files[] = {
        {folder.path("secret"), "new"},
        {folder.path("secret.zoka"), "values", FileKind::Generated, std::nullopt, folder.path("secret")}};
    EXPECT_EQ(safeWrite(files).why(), "");
    EXPECT_TRUE(zoka::keepBackup(folder.path("secret"), "old"));
    EXPECT_EQ(modes, std::set<mode_t>{0600});
    char note[5] = "";
    EXPECT_TRUE(!hasAttributes || getxattr(folder.native("secret").c_str(), "user.note", note, 4) == 4);

    folder.write("outside", "precious");
    for (const char* target : {"outside", "nothing"}) {
        fs::create_symlink(target, folder.native("page.htm"));
        const std::string error = safeWrite(folder.path("page.htm"), "x", FileKind::Generated).why();
        EXPECT_TRUE(error.ends_with("a link stands in its place")) << error;
        EXPECT_TRUE(fs::is_symlink(folder.native("page.htm")));
        fs::remove(folder.native("page.htm"));
    }
    EXPECT_EQ(folder.read("outside"), "precious");
    EXPECT_EQ(folder.read("nothing"), "<missing>");
}

// Programs that add a line each to one file, at the same time and as fast as they can, lose none; the second
// way of theirs is to take no lock for reading and to start again when the file is another one.
TEST(FileLock, WritersAtOnceLoseNothing) {
    constexpr int kWriters = 4, kLines = 8;
    for (const bool locks : {true, false}) {
        const TempFolder folder;
        const std::string path = folder.write("main.kez", "");
        for (int writer = 0; writer < kWriters; ++writer) {
            if (fork() == 0) {
                for (int line = 0; line < kLines;) {
                    std::optional<FileLock> lock;
                    if (locks) {
                        lock.emplace(path);
                    }
                    const auto before = systemFiles().readWhole(path);
                    const std::string after = *before + std::to_string(writer) + "\n";
                    const FileContent file{path, after, FileKind::Named, before};
                    const SafeWriteResult result = safeWrite({&file, 1});
                    if (!result && !result.changedMeanwhile) {
                        _exit(1);
                    }
                    line += result ? 1 : 0;
                }
                _exit(0);
            }
        }
        for (int writer = 0; writer < kWriters; ++writer) {
            int status = 0;
            ASSERT_GT(wait(&status), 0);
            EXPECT_EQ(status, 0);
        }
        EXPECT_EQ(folder.read("main.kez").size(), size_t{kWriters * kLines * 2}) << locks;
        EXPECT_EQ(folder.names(), std::vector<std::string>{"main.kez"});
    }
}

TEST(FileLock, WaitsForItsHolderAndOutlivesOneThatIsGone) {
    const TempFolder folder;
    const std::string path = folder.write("main.kez", "x"), link = folder.path("link.kez");
    fs::create_symlink("main.kez", folder.native("link.kez"));
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        const FileLock held(path);
        EXPECT_EQ(write(ready[1], "x", 1), 1);
        pause();
    }
    char byte;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    const std::string refusal = FileLock(link, std::chrono::milliseconds(30)).why();
    EXPECT_NE(refusal.find("main.kez': another program is changing it"), std::string::npos) << refusal;
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    // Whoever looks at the message keeps no other program waiting.
    struct Slow : zoka::test::ScriptedPrompt {
        PromptAnswer ask(const std::string& text, const std::string& title, PromptButtons buttons,
                         PromptIcon icon) override {
            std::thread([this] { othersCan = bool(FileLock(wanted, std::chrono::milliseconds(0))); }).join();
            return ScriptedPrompt::ask(text, title, buttons, icon);
        }
        std::string wanted;
        bool othersCan = false;
    } prompt;
    prompt.wanted = path;
    {
        const FileLock taken(path), again(link);
        EXPECT_TRUE(taken && again);
    }
    EXPECT_TRUE(prompt.othersCan);
    // Whoever holds the lock by a link's name saves the file that the link leads to, also out of a folder that is
    // itself reached by a link.
    fs::create_directories(folder.native("away/deep"));
    fs::create_directory_symlink("away/deep", folder.native("sub"));
    fs::create_symlink("../up.kez", folder.native("away/deep/up.kez"));
    folder.write("away/up.kez", "old");
    for (const char* name : {"away/deep/up.kez", "sub/up.kez"}) {
        const FileLock held(folder.path(name), std::chrono::milliseconds(0));
        const zoka::FileContent content{.path = folder.path(name), .bytes = "new", .expected = "old"};
        EXPECT_EQ(zoka::safeWrite({&content, 1}).why(), "");
        EXPECT_EQ(folder.read("away/up.kez"), "new");
        folder.write("away/up.kez", "old");
    }
    fs::remove_all(folder.native("away"));
    fs::remove(folder.native("sub"));
    ASSERT_EQ(prompt.texts().size(), 1u);
    EXPECT_NE(prompt.texts()[0].find("~zk-main.kez.lock"), std::string::npos);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"link.kez", "main.kez"}));
    // A folder that takes no lock file stops nobody.
    const FaultyOsFiles disk(FaultyOsFiles::every("tryLock"));
    EXPECT_TRUE(FileLock(path));
    close(ready[0]);
    close(ready[1]);
}

// What a share refuses to flush is as safe as it gets; what the disk can't write is not.
TEST(SafeWrite, BearsARefusedFlushAlone) {
    const TempFolder folder;
    const std::string path = folder.write("a", "old");
    for (const auto& [error, saved] :
         {std::pair(EINVAL, true), std::pair(EROFS, true), std::pair(EIO, false), std::pair(ENOSPC, false)}) {
        folder.write("a", "old");
        g_noFlush = error;
        const std::string why = safeWrite(path, "new").why();
        g_noFlush = 0;
        EXPECT_EQ(why.empty(), saved) << why;
        EXPECT_EQ(why.ends_with("; make room and try again"), error == ENOSPC) << why;
        EXPECT_EQ(folder.read("a"), saved ? "new" : "old");
        EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
    }
}

// What an ended program leaves: nothing after a signal, and what is old goes with the next save.
TEST(SafeWrite, TemporaryFilesGo) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        const TempFolder folder;
        const std::string path = folder.write("a", "old");
        const pid_t child = fork();
        if (child == 0) {
            removeOwnFilesAtSignals();
            const FaultyOsFiles disk([&](int, std::string_view op, const std::string&) {
                return op == "flush" && raise(number) == 0;
            });
            safeWrite(path, "new");
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number);
        EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
    }
    const TempFolder folder;
    const time_t now = time(nullptr);
    for (const auto& [name, age] :
         {std::pair("~zk00000001.tmp", 90'000), std::pair("~zk00000002.tmp", 80'000),
          std::pair("~zk-a.lock", 90'000), std::pair("~zkother", 90'000)}) {
        folder.write(name, "x");
        const timespec times[2] = {{now - age, 0}, {now - age, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, folder.native(name).c_str(), times, 0), 0);
    }
    // As old as the first, but its maker still works on it.
    const auto held = systemFiles().openSibling(folder.path("~zk00000003.tmp"), "");
    ASSERT_TRUE(held);
    const timespec old[2] = {{now - 90'000, 0}, {now - 90'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, folder.native("~zk00000003.tmp").c_str(), old, 0), 0);
    EXPECT_EQ(safeWrite(folder.path("a"), "x").why(), "");
    EXPECT_EQ(folder.names(),
              (std::vector<std::string>{"a", "~zk00000002.tmp", "~zk00000003.tmp", "~zkother"}));
}

TEST(OsFiles, NamesWithABackslashAreNoPaths) {
    const TempFolder folder;
    folder.write("a.kez", "");
    folder.write("..\\b.kez", "");
    OsListing left;
    EXPECT_EQ(systemFiles().list(folder.path("*"), &left).size(), 1u);
    EXPECT_EQ(left.skipped, std::vector<std::string>{"..\\b.kez"});
    EXPECT_EQ(left.error, "");
    systemFiles().list(folder.path("none\\*"), &left);
    EXPECT_EQ(left.error, "No such file or directory");
}

// The superuser may write everything, so the tests of refused access run as nobody.
class AsNobody {
public:
    AsNobody() { EXPECT_TRUE(m_before != 0 || seteuid(65534) == 0); }
    ~AsNobody() { EXPECT_EQ(seteuid(m_before), 0); }

private:
    const uid_t m_before = geteuid();
};

const std::string kDenied = "Permission denied";

// Folders that may be passed but not listed, or not even be passed.
TEST(OsFiles, MakesFoldersBelowOnesThatAreNotToBeLookedAt) {
    const TempFolder folder;
    fs::create_directories(folder.native("closed/open"));
    fs::permissions(folder.native(""), fs::perms::all);
    fs::permissions(folder.native("closed/open"), fs::perms::all);
    const fs::path before = fs::current_path();
    const auto made = [&](const std::string& path) {
        const AsNobody nobody;
        return systemFiles().makeFolders(path);
    };
    fs::permissions(folder.native("closed"), fs::perms(0311));
    EXPECT_TRUE(made(folder.path("closed\\open\\a\\b"))) << systemFiles().lastError();
    EXPECT_TRUE(made(folder.path("closed\\open\\a\\b"))) << "there already";
    EXPECT_FALSE(made(folder.path("closed\\c\\d")));
    EXPECT_EQ(systemFiles().lastError(), kDenied);
    fs::current_path(folder.native("closed/open"));
    fs::permissions(folder.native("closed"), fs::perms(0));
    EXPECT_TRUE(made("e\\f")) << systemFiles().lastError();
    for (const char* path : {"closed\\open\\g\\h", "closed\\open", "closed\\i"}) {
        EXPECT_FALSE(made(folder.path(path))) << path;
        EXPECT_EQ(systemFiles().lastFault(), OsFault::NoPermission) << path;
    }
    fs::current_path(before);
    fs::permissions(folder.native("closed"), fs::perms::all);
    std::vector<std::string> all;
    for (const auto& entry : fs::recursive_directory_iterator(folder.native(""))) {
        all.push_back(entry.path().lexically_relative(folder.native("")).string());
    }
    EXPECT_THAT(all, testing::UnorderedElementsAre("closed", "closed/open", "closed/open/a",
                                                   "closed/open/a/b", "closed/open/e", "closed/open/e/f"));
}

TEST(SafeWrite, RespectsRefusedAccess) {
    const TempFolder folder;
    folder.write("readonly", "old");
    folder.write("writable", "old content");
    fs::permissions(folder.native(""), fs::perms::all);
    fs::permissions(folder.native("readonly"), fs::perms(0444));
    fs::permissions(folder.native("writable"), fs::perms(0666));
    {
        const AsNobody nobody;
        const std::string error = safeWrite(folder.path("readonly"), "new").why();
        EXPECT_TRUE(error.ends_with(kDenied)) << error;
    }
    EXPECT_EQ(folder.read("readonly"), "old") << "though the folder would let it be replaced";

    fs::permissions(folder.native(""), fs::perms(0555));
    {
        const AsNobody nobody;
        // In place only by the user's choice.
        zoka::test::ScriptedPrompt prompt;
        prompt.answers = {PromptAnswer::No, PromptAnswer::Yes};
        EXPECT_TRUE(safeWrite(folder.path("writable"), "new").why().ends_with("not written in place"));
        EXPECT_EQ(folder.read("writable"), "old content");
        EXPECT_EQ(safeWrite(folder.path("writable"), "new").why(), "") << "written in place";
        ASSERT_EQ(prompt.asked.size(), 2u);
        for (const auto& asked : prompt.asked) {
            EXPECT_EQ(asked.buttons, PromptButtons::YesNo);
            EXPECT_EQ(asked.text,
                      "The folder of '" + folder.path("writable") + "' takes no new file (" + kDenied +
                          "), so the file can't be replaced "
                          "in one step.\n\nWrite it in place? If the computer stops in the middle "
                          "of it, the file is damaged.");
        }
        setInPlace(InPlace::Refused);
        EXPECT_NE(safeWrite(folder.path("writable"), "newer").why(), "");
        setInPlace(InPlace::Ask);
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
        EXPECT_TRUE(result.why().ends_with("File too large")) << result.why();
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
