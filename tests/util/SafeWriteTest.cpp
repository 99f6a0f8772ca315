// Saving leaves the old content or the new one, whatever fails.
#include "util/SafeWrite.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/FaultyOsFiles.h"
#include "tests/support/TempFolder.h"

namespace {

using zoka::safeWrite;
using zoka::SafeWriteResult;
using zoka::test::FaultyOsFiles;
using zoka::test::TempFolder;

using Names = std::vector<std::string>;

bool noSibling(std::string_view op) {
    return op == "openNew";
}

TEST(SafeWrite, WritesNewAndExistingFiles) {
    for (const bool inPlace : {false, true}) {
        const TempFolder folder;
        const FaultyOsFiles disk(
            [inPlace](int, std::string_view op, const std::string&) { return inPlace && noSibling(op); });
        folder.write("a", "before");
        for (const std::string& content : {std::string(), std::string("new"), std::string(200'000, '\0')}) {
            EXPECT_EQ(safeWrite(folder.path("a"), content).error, "");
            EXPECT_EQ(folder.read("a"), content);
        }
        EXPECT_EQ(static_cast<bool>(safeWrite(folder.path("b"), "made")), !inPlace)
            << "a folder that takes no sibling takes no new file either";
        EXPECT_EQ(folder.names(), inPlace ? Names{"a"} : (Names{"a", "b"}));
    }
}

// Every operation fails once in turn.
TEST(SafeWrite, SurvivesAnySingleFault) {
    struct Row {
        bool inPlace, exists;
        int fewestFaults;  // how many of the saves must have failed
    };
    for (const Row row : {Row{false, true, 6}, Row{false, false, 5}, Row{true, true, 8}}) {
        int faults = 0;
        bool failed = true;  // whether an operation was left to fail
        for (int failing = 1; failed; ++failing) {
            const TempFolder folder;
            const std::string path = folder.path("a.kez");
            const std::string old(5000, 'o'), fresh(7000, 'n');
            if (row.exists) {
                folder.write("a.kez", old);
            }
            FaultyOsFiles disk([&](int n, std::string_view op, const std::string&) {
                return n == failing || (row.inPlace && noSibling(op));
            });
            const SafeWriteResult result = safeWrite(path, fresh);
            failed = failing <= disk.operations();
            const std::string content = folder.read("a.kez");
            EXPECT_EQ(content == fresh, static_cast<bool>(result)) << failing << ": " << result.error;
            if (!result) {
                ++faults;
                EXPECT_EQ(content == old, row.exists) << failing;
                EXPECT_NE(result.error.find("a.kez"), std::string::npos) << result.error;
            }
            EXPECT_EQ(folder.names(), row.exists || result ? Names{"a.kez"} : Names{}) << failing;
        }
        EXPECT_GE(faults, row.fewestFaults) << "too few operations had their turn";
    }
}

// Of several files the first ones have their new content and all others the old one, whatever fails.
TEST(SafeWrite, SeveralFilesEndAtTheFirstThatFails) {
    const std::string old(5000, 'o'), fresh(7000, 'n');
    for (const bool inPlace : {false, true}) {
        std::set<std::size_t> counts;
        bool failed = true;
        for (int failing = 1; failed; ++failing) {
            const TempFolder folder;
            const zoka::FileContent files[] = {{folder.write("a", old), fresh},
                                               {folder.path("b"), inPlace ? old : fresh},
                                               {folder.write("c", old), fresh}};
            if (inPlace) {
                folder.write("b", old);
            }
            FaultyOsFiles disk([&](int n, std::string_view op, const std::string&) {
                return n == failing || (inPlace && noSibling(op));
            });
            const SafeWriteResult result = safeWrite(files);
            failed = failing <= disk.operations();
            counts.insert(result.written);
            EXPECT_EQ(result.error.empty(), result.written == 3) << failing << ": " << result.error;
            EXPECT_EQ(folder.read("a"), result.written >= 1 ? fresh : old) << failing;
            EXPECT_EQ(folder.read("b"), inPlace ? old : result.written >= 2 ? fresh : "<missing>") << failing;
            EXPECT_EQ(folder.read("c"), result.written >= 3 ? fresh : old) << failing;
            for (const std::string& name : folder.names()) {
                EXPECT_EQ(name.size(), 1u) << name;
            }
        }
        EXPECT_EQ(counts, (std::set<std::size_t>{0, 1, 2, 3}));
    }
}

// A disk that stays broken from some operation on: what is left of the old or new content is whole.
TEST(SafeWrite, SurvivesADiskThatStaysBroken) {
    bool failed = true;
    for (int failing = 1; failed; ++failing) {
        const TempFolder folder;
        const std::string old(5000, 'o'), fresh(7000, 'n');
        const std::string path = folder.write("a", old);
        FaultyOsFiles disk([failing](int n, std::string_view, const std::string&) { return n >= failing; });
        const bool done = static_cast<bool>(safeWrite(path, fresh));
        failed = failing <= disk.operations();
        EXPECT_EQ(folder.read("a"), done ? fresh : old) << failing;
    }
}

TEST(SafeWrite, SaysWhatIsWrong) {
    const TempFolder folder;
    const std::string path = folder.write("a.kez", "old");
    struct Row {
        const char *op, *beginning, *end;
    };
    const Row rows[] = {
        {"resolveLinks", "Can't follow the link", "injected fault"},
        {"openExisting", "Can't write", "injected fault"},
        {"write", "Can't write", "injected fault"},
        {"flush", "Can't write", "injected fault"},
        {"replaceFile", "Can't write", "injected fault"},
    };
    for (const Row& row : rows) {
        const FaultyOsFiles disk([&](int, std::string_view op, const std::string&) { return op == row.op; });
        const std::string error = safeWrite(path, "new").error;
        EXPECT_TRUE(error.starts_with(row.beginning)) << error;
        EXPECT_TRUE(error.ends_with(row.end)) << error;
        EXPECT_EQ(folder.read("a.kez"), "old");
        EXPECT_EQ(folder.names(), Names{"a.kez"});
    }
    // Written in place on a disk that takes no byte any more: half of the new content
    // is there, and it says so.
    const FaultyOsFiles disk(
        [](int, std::string_view op, const std::string&) { return noSibling(op) || op == "cutHere"; });
    EXPECT_NE(safeWrite(path, "new").error.find("could not be put back"), std::string::npos);
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
        EXPECT_EQ(safeWrite(path, "new").error, "");
        EXPECT_EQ(folder.read("a"), "new");
    }
    const Disk disk([](int, std::string_view op, const std::string&) { return op == "renameNew"; });
    const std::string error = safeWrite(path, "newest").error;
    ASSERT_EQ(folder.names().size(), 1u);
    EXPECT_EQ(folder.read(folder.names()[0]), "newest");
    EXPECT_NE(error.find(folder.names()[0]), std::string::npos) << error;
}

}  // namespace
