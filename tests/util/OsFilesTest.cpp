// The disk seam keeps its promises on every system.
#include "util/OsFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/TempFolder.h"

namespace {

using namespace zoka;
using zoka::test::TempFolder;

class OsFilesTest : public testing::Test {
protected:
    OsFiles& files = systemFiles();
    const TempFolder folder;
};

TEST_F(OsFilesTest, SearchesAndLists) {
    folder.write("One.kez", "123");
    folder.write("two.txt", "");
    ASSERT_TRUE(files.makeFolder(folder.path("sub")));
    EXPECT_FALSE(files.makeFolder(folder.path("sub")));

    const auto one = files.search(folder.path("one.KEZ"));
    ASSERT_TRUE(one);
    EXPECT_EQ(one->name, "One.kez") << "spelled as on the disk";
    EXPECT_EQ(one->size, 3u);
    EXPECT_FALSE(one->isFolder);
    EXPECT_TRUE(files.search(folder.path("sub"))->isFolder);
    EXPECT_EQ(files.search(folder.path("*"))->name, ".");
    EXPECT_EQ(files.search(folder.path("t*"))->name, "two.txt");
    EXPECT_FALSE(files.search(folder.path("sub\\")));
    EXPECT_FALSE(files.search(folder.path("x*")));
    EXPECT_FALSE(files.search(folder.path("none\\one.kez")));
    EXPECT_FALSE(files.search(""));

    std::vector<std::string> names;
    for (const OsEntry& entry : files.list(folder.path("*"))) {
        names.push_back(entry.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"One.kez", "sub", "two.txt"}));
    EXPECT_TRUE(files.list(folder.path("none\\*")).empty());
    EXPECT_TRUE(files.deleteFolder(folder.path("sub")));
    EXPECT_FALSE(files.deleteFolder(folder.path("sub")));
}

TEST_F(OsFilesTest, CurrentFolderAndFullPaths) {
    const std::string before = files.currentFolder();
    ASSERT_TRUE(files.setCurrentFolder(folder.path()));
    const std::string current = files.currentFolder();
    EXPECT_EQ(current.substr(1, 2), ":\\");
    EXPECT_EQ(current.substr(3), folder.path().substr(3));
    folder.write("here", "x");
    EXPECT_TRUE(files.exists("here"));
    EXPECT_TRUE(files.exists(".\\here"));
    EXPECT_EQ(files.fullPath("here"), current + "\\here");
    EXPECT_EQ(files.fullPath("a/../b"), current + "\\b");
    EXPECT_EQ(files.fullPath(current + "\\a\\..\\b"), current + "\\b");
    EXPECT_EQ(files.fullPath("\\x"), current.substr(0, 2) + "\\x");
    EXPECT_FALSE(files.setCurrentFolder(folder.path("none")));
    ASSERT_TRUE(files.setCurrentFolder(before));
}

TEST_F(OsFilesTest, WritesAndReadsWhole) {
    const std::string path = folder.path("a");
    EXPECT_EQ(files.openForWriting(path, OsOpen::Existing), nullptr);
    EXPECT_FALSE(files.lastError().empty());
    auto file = files.openForWriting(path, OsOpen::New);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->write("0123456789") && file->flush() && file->close());
    EXPECT_EQ(files.openForWriting(path, OsOpen::New), nullptr);

    file = files.openForWriting(path, OsOpen::Existing);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->write("abcdef") && file->rewind() && file->write("X") && file->close());
    EXPECT_EQ(files.readWhole(path), "Xbcdef6789");
    file = files.openForWriting(path, OsOpen::Existing);
    EXPECT_TRUE(file->write("12") && file->cutHere() && file->close());
    EXPECT_EQ(files.readWhole(path), "12");
    file = files.openForWriting(path, OsOpen::Truncate);
    EXPECT_TRUE(file->close());
    EXPECT_EQ(files.readWhole(path), "");
    EXPECT_EQ(files.holds(path, ""), true);
    EXPECT_EQ(files.holds(path, "1"), false);
    std::string big(300'000, '\0');
    folder.write("big", big);
    EXPECT_EQ(files.readWhole(folder.path("big")), big);
    EXPECT_EQ(files.holds(folder.path("big"), big), true);
    EXPECT_EQ(files.holds(folder.path("big"), big + '\0'), false);
    EXPECT_EQ(files.holds(folder.path("big"), std::string_view(big).substr(1)), false);
    big.back() = 'x';
    EXPECT_EQ(files.holds(folder.path("big"), big), false);
    for (const std::string& unreadable : {folder.path("none"), folder.path()}) {
        EXPECT_EQ(files.readWhole(unreadable), std::nullopt);
        EXPECT_EQ(files.holds(unreadable, ""), std::nullopt);
    }
    EXPECT_EQ(files.openForWriting(folder.path(), OsOpen::Existing), nullptr);
    EXPECT_EQ(files.openStream(folder.path(), "rb"), nullptr);
}

TEST_F(OsFilesTest, RenamesAndReplaces) {
    const std::string a = folder.write("a", "A"), b = folder.write("b", "B");
    EXPECT_FALSE(files.renameNew(a, b)) << "never over an existing file";
    EXPECT_EQ(folder.read("b"), "B");
    EXPECT_TRUE(files.renameNew(a, folder.path("c")));
    EXPECT_FALSE(files.replaceFile(folder.path("none"), b)) << "there must be a target";
    EXPECT_FALSE(files.replaceFile(b, folder.path("none")));
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"b", "c"}));
    EXPECT_TRUE(files.replaceFile(b, folder.path("c")));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"b"});
    EXPECT_EQ(folder.read("b"), "A");
    EXPECT_TRUE(files.deleteFile(b));
    EXPECT_FALSE(files.deleteFile(b));
}

TEST_F(OsFilesTest, TellsWhatAPathNames) {
    folder.write("One.kez", "123");
    ASSERT_TRUE(files.makeFolder(folder.path("sub")));
    EXPECT_EQ(files.kindOf(folder.path("one.KEZ")), OsKind::File);
    EXPECT_EQ(files.kindOf(folder.path("sub")), OsKind::Folder);
    EXPECT_EQ(files.kindOf(folder.path("sub\\")), OsKind::Folder);
    EXPECT_EQ(files.kindOf(folder.path("none")), OsKind::Missing);
    EXPECT_EQ(files.kindOf(folder.path("none\\sub")), OsKind::Missing);

    std::vector<OsListed> found;
    ASSERT_TRUE(files.listFolder(folder.path(), found));
    std::ranges::sort(found, {}, &OsListed::name);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].name, "One.kez");
    EXPECT_EQ(found[0].kind, OsKind::File);
    EXPECT_EQ(found[1].kind, OsKind::Folder);
    EXPECT_FALSE(files.listFolder(folder.path("none"), found));
    EXPECT_FALSE(files.lastError().empty());
}

TEST_F(OsFilesTest, MakesFoldersAndCopiesFilesToNewNamesAlone) {
    EXPECT_TRUE(files.makeFolders(folder.path("a\\b\\c\\")));
    EXPECT_TRUE(files.makeFolders(folder.path("a\\b\\c"))) << "it is there";
    EXPECT_EQ(files.kindOf(folder.path("a\\b\\c")), OsKind::Folder);
    const std::string from = folder.write("from", std::string("new\r\n\x1a\0", 6));
    EXPECT_FALSE(files.makeFolders(folder.path("from\\x"))) << "in the place of a file";
    EXPECT_FALSE(files.makeFolders(from));

    EXPECT_TRUE(files.copyNew(from, folder.path("a\\to")));
    EXPECT_EQ(files.readWhole(folder.path("a\\to")), files.readWhole(from));
    folder.write("kept", "old");
    for (const std::string& source : {from, folder.path("none"), folder.path("a")}) {
        EXPECT_FALSE(files.copyNew(source, folder.path("kept"))) << source;
        EXPECT_EQ(folder.read("kept"), "old") << source;
        EXPECT_FALSE(files.lastError().empty());
    }
    // Also while it is known what is in the folder: an entry of that name may come from elsewhere at any time.
    for (int i = 0; i < 3; ++i) {
        const std::string name = "copy" + std::to_string(i);
        const auto copied = files.copyNew(from, folder.path(name)), found = files.search(folder.path(name));
        ASSERT_TRUE(copied && found);
        EXPECT_EQ(copied->name, name);
        EXPECT_EQ(copied->size, 6u);
        EXPECT_EQ(copied->lastWrite, found->lastWrite);
        EXPECT_FALSE(files.copyNew(from, folder.path("COPY" + std::to_string(i)))) << "however it is spelled";
        folder.write("other" + std::to_string(i), "old");
        EXPECT_FALSE(files.copyNew(from, folder.path("other" + std::to_string(i))));
        EXPECT_EQ(folder.read("other" + std::to_string(i)), "old");
        files.deleteFile(folder.path(name));
        files.deleteFile(folder.path("other" + std::to_string(i)));
    }
    EXPECT_FALSE(files.copyNew(folder.path("none"), folder.path("n")));
    EXPECT_FALSE(files.copyNew(from, folder.path("none\\n")));
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a", "from", "kept"}));
}

TEST_F(OsFilesTest, CopiesOfReadOnlyFilesCanBeWritten) {
    const std::string from = folder.write("from", "x");
    std::filesystem::permissions(folder.native("from"), std::filesystem::perms::owner_read);
    ASSERT_TRUE(files.copyNew(from, folder.path("to")));
    const auto mode = std::filesystem::status(folder.native("to")).permissions();
    EXPECT_NE(mode & std::filesystem::perms::owner_write, std::filesystem::perms::none);
    std::filesystem::permissions(folder.native("from"), std::filesystem::perms::owner_all);
}

TEST_F(OsFilesTest, ALockHasOneHolder) {
    OsLockState state = OsLockState::Impossible;
    {
        const auto lock = files.tryLock(folder.path("l"), state);
        EXPECT_TRUE(lock && state == OsLockState::Taken);
        EXPECT_EQ(files.tryLock(folder.path("l"), state), nullptr);
        EXPECT_EQ(state, OsLockState::Held);
    }
    EXPECT_TRUE(folder.names().empty());
    EXPECT_TRUE(files.tryLock(folder.path("l"), state));
    EXPECT_EQ(files.tryLock(folder.path("none\\l"), state), nullptr);
    EXPECT_EQ(state, OsLockState::Impossible);
}

}  // namespace
