// Saving leaves the old content or the new one, whatever fails.
#include "util/SafeWrite.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/FaultyOsFiles.h"
#include "tests/support/TempFolder.h"

namespace {

using zoka::safeWrite, zoka::SafeWriteResult;
using zoka::test::FaultyOsFiles, zoka::test::TempFolder;

using Names = std::vector<std::string>;

const std::string kOld(5000, 'o'), kFresh(7000, 'n');

// In a folder that takes no sibling a file is written in place.
constexpr char kSibling[] = "openNew";

// Runs `save` in a folder of its own each time, with the first operation failing, then the second, and so on
// until none is left to fail; with `forGood` those behind it fail as well.
template <typename Save>
void failEachOperation(bool inPlace, bool forGood, const Save& save) {
    bool failed = true;
    for (int failing = 1; failed; ++failing) {
        SCOPED_TRACE(failing);
        const TempFolder folder;
        const FaultyOsFiles disk([&](int n, std::string_view op, const std::string&) {
            return n == failing || (forGood && n > failing) || (inPlace && op == kSibling);
        });
        save(folder);
        failed = failing <= disk.operations();
    }
}

TEST(SafeWrite, WritesNewAndExistingFiles) {
    for (const bool inPlace : {false, true}) {
        const TempFolder folder;
        const FaultyOsFiles disk(inPlace ? FaultyOsFiles::every(kSibling) : FaultyOsFiles::never());
        folder.write("a", "before");
        for (const std::string& content : {std::string(), std::string("new"), std::string(200'000, '\0')}) {
            EXPECT_EQ(safeWrite(folder.path("a"), content).why(), "");
            EXPECT_EQ(folder.read("a"), content);
        }
        EXPECT_EQ(static_cast<bool>(safeWrite(folder.path("b"), "made")), !inPlace)
            << "a folder that takes no sibling takes no new file either";
        EXPECT_EQ(folder.names(), inPlace ? Names{"a"} : (Names{"a", "b"}));
    }
}

// Every operation fails in turn, once or for good: the content is the old one or the new one, whole.
TEST(SafeWrite, SurvivesAnyFault) {
    const struct {
        bool inPlace, exists, forGood;
        int fewestFaults;  // how many of the saves must have failed
    } rows[] = {
        {false, true, false, 6}, {false, false, false, 5}, {true, true, false, 8}, {false, true, true, 7}};
    for (const auto& row : rows) {
        int faults = 0;
        failEachOperation(row.inPlace, row.forGood, [&](const TempFolder& folder) {
            if (row.exists) {
                folder.write("a.kez", kOld);
            }
            const SafeWriteResult result = safeWrite(folder.path("a.kez"), kFresh);
            EXPECT_EQ(folder.read("a.kez"), result ? kFresh : row.exists ? kOld : "<missing>");
            EXPECT_EQ(result.why().find("a.kez") == std::string::npos, static_cast<bool>(result));
            faults += !result;
            // A disk that is broken for good keeps the sibling too.
            if (row.forGood) {
                return;
            }
            EXPECT_EQ(folder.names(), row.exists || result ? Names{"a.kez"} : Names{});
        });
        EXPECT_GE(faults, row.fewestFaults) << "too few operations had their turn";
    }
}

// Of several files the first ones have their new content and all others the old one, whatever fails.
TEST(SafeWrite, SeveralFilesEndAtTheFirstThatFails) {
    for (const bool inPlace : {false, true}) {
        std::set<size_t> counts;
        failEachOperation(inPlace, false, [&](const TempFolder& folder) {
            const zoka::FileContent files[] = {
                {folder.write("a", kOld), kFresh},
                {folder.path("b"), inPlace ? kOld : kFresh},
                {.path = folder.write("c", kOld), .made = [] { return std::string(kFresh); }}};
            if (inPlace) {
                folder.write("b", kOld);
            }
            const SafeWriteResult result = safeWrite(files);
            counts.insert(result.written);
            EXPECT_EQ(result.why().empty(), result.written == 3) << result.why();
            EXPECT_EQ(folder.read("a"), result.written >= 1 ? kFresh : kOld);
            EXPECT_EQ(folder.read("b"), inPlace ? kOld : result.written >= 2 ? kFresh : "<missing>");
            EXPECT_EQ(folder.read("c"), result.written >= 3 ? kFresh : kOld);
            for (const std::string& name : folder.names()) {
                EXPECT_EQ(name.size(), 1u) << name;
            }
        });
        EXPECT_EQ(counts, (std::set<size_t>{0, 1, 2, 3}));
    }
    const TempFolder folder;
    const zoka::FileContent files[] = {
        {folder.write("a", kOld), kFresh},
        {.path = folder.path("b"), .made = []() -> std::string { throw std::bad_alloc(); }}};
    EXPECT_THROW(safeWrite(files), std::bad_alloc);
    EXPECT_THAT(folder.names(), testing::ElementsAre("a"));
    EXPECT_EQ(folder.read("a"), kOld);
}

TEST(SafeWrite, SaysWhatIsWrong) {
    const TempFolder folder;
    const std::string path = folder.write("a.kez", "old");
    const std::pair<const char*, const char*> rows[] = {{"resolveLinks", "Can't follow the link"},
                                                        {"openExisting", "Can't write"},
                                                        {"write", "Can't write"},
                                                        {"flush", "Can't write"},
                                                        {"replaceFile", "Can't write"}};
    for (const auto& [op, beginning] : rows) {
        const FaultyOsFiles disk(FaultyOsFiles::every(op));
        const std::string error = safeWrite(path, "new").why();
        EXPECT_TRUE(error.starts_with(beginning)) << error;
        EXPECT_TRUE(error.ends_with("injected fault")) << error;
        EXPECT_EQ(folder.read("a.kez"), "old");
        EXPECT_EQ(folder.names(), Names{"a.kez"});
    }
    // Written in place on a disk that takes no byte any more: half of the new content
    // is there, and it says so.
    const FaultyOsFiles disk(
        [](int, std::string_view op, const std::string&) { return op == kSibling || op == "cutHere"; });
    EXPECT_NE(safeWrite(path, "new").why().find("could not be put back"), std::string::npos);
}

// Only a folder without permission is a reason to write in place.
TEST(SafeWrite, WritesNothingWithoutRoomForASibling) {
    for (const zoka::OsFault fault : {zoka::OsFault::NoRoom, zoka::OsFault::Other}) {
        const TempFolder folder;
        const std::string path = folder.write("a", "old");
        FaultyOsFiles disk(FaultyOsFiles::every(kSibling));
        disk.injectedFault = fault;
        EXPECT_TRUE(safeWrite(path, "new").why().ends_with("injected fault"));
        EXPECT_EQ(folder.read("a"), "old");
    }
}

TEST(SafeWrite, NoticesWhatAnotherHasWritten) {
    const TempFolder folder;
    const std::string a = folder.write("a", "read"), b = folder.write("b", "other");
    const zoka::FileContent files[] = {{a, "new", zoka::FileKind::Named, "read"},
                                       {b, "new", zoka::FileKind::Named, "read"},
                                       {folder.path("c"), "new"}};
    const SafeWriteResult result = safeWrite(files);
    EXPECT_TRUE(result.changedMeanwhile);
    EXPECT_NE(result.why().find("was changed on the disk meanwhile"), std::string::npos);
    EXPECT_EQ(folder.names(), (Names{"a", "b"}));
    EXPECT_EQ(folder.read("a") + folder.read("b"), "readother") << "of several files none is written";
    EXPECT_EQ(safeWrite({files, 1}).why(), "");
    // What can't be read now may be another's, also where nothing was read before.
    const std::string held = folder.write("held", "theirs"), gone = folder.path("gone");
    const FaultyOsFiles disk(FaultyOsFiles::every("readWhole"));
    EXPECT_TRUE(
        safeWrite(std::vector<zoka::FileContent>{{held, "new", zoka::FileKind::Named, ""}}).changedMeanwhile);
    EXPECT_EQ(folder.read("held"), "theirs");
    EXPECT_TRUE(safeWrite(std::vector<zoka::FileContent>{{gone, "new", zoka::FileKind::Named, ""}}));
}

TEST(SafeWrite, RefusesWhatIsNoFile) {
    const TempFolder folder;
    EXPECT_FALSE(safeWrite(folder.path(), "x"));
    EXPECT_FALSE(safeWrite(folder.path("none\\a"), "x"));
    EXPECT_FALSE(safeWrite(folder.path(std::string(300, 'n')), "x")) << "longer than a name can be";
    EXPECT_FALSE(safeWrite("", "x"));
    EXPECT_EQ(folder.names(), Names{});
}

// A system that takes the old file away and then can't put the new one there.
TEST(SafeWrite, NeverLosesTheOnlyCopy) {
    class Disk : public FaultyOsFiles {
    public:
        using FaultyOsFiles::FaultyOsFiles;
        bool replaceFile(const std::string& target, const std::string&) override {
            deleteFile(target);
            return false;
        }
    };
    const TempFolder folder;
    const std::string path = folder.write("a", "old");
    {
        const Disk disk(FaultyOsFiles::never());
        EXPECT_EQ(safeWrite(path, "new").why(), "");
        EXPECT_EQ(folder.read("a"), "new");
    }
    const Disk disk(FaultyOsFiles::every("renameNew"));
    const std::string error = safeWrite(path, "newest").why();
    ASSERT_EQ(folder.names().size(), 1u);
    EXPECT_EQ(folder.read(folder.names()[0]), "newest");
    EXPECT_NE(error.find(folder.names()[0]), std::string::npos) << error;
}

}  // namespace
