// Memory files: growing, fixed and borrowed.
#include <gtest/gtest.h>

#include <limits>

#include <cstdlib>
#include <memory>
#include <new>
#include <random>

#include "tests/support/MemFileOps.h"
#include "tests/support/TempFolder.h"
#include "util/File.h"

namespace {

size_t g_allocated = 0;  // bytes asked for with the new that reports failure by null
bool g_noMemory = false;

}  // namespace

// The memory files allocate with this form alone, so a test sees and refuses what they ask for.
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    if (g_noMemory) {
        return nullptr;
    }
    g_allocated += size;
    return operator new[](size);
}

namespace {

using zoka::test::TempFolder;

std::string contentOf(dmemfile_t& file) {
    return {static_cast<const char*>(file.GetMemPtr()), static_cast<size_t>(file.GetLen())};
}

TEST(MemFile, GrowsByTheStepsLaidDown) {
    const struct {
        size_t before;  // bytes written one by one
        size_t size, n;
        std::int32_t alloc;
    } rows[] = {
        {0, 1023, 1, 1024},  {0, 1024, 1, 2048},  // equal grows too
        {0, 0, 9, 1024},     {0, 1025, 1, 1024 + 1040},  {0, 1040, 1, 1024 + 1056}, {1000, 12, 2, 2048},
        {1000, 1, 23, 1024}, {0, 5000, 2, 1024 + 10016}, {1024, 1, 1, 2048},
    };
    for (const auto& row : rows) {
        dmemfile_t file;
        for (size_t i = 0; i < row.before; ++i) {
            file.Putc('p');
        }
        const std::string bytes(row.size * row.n, 'w');
        EXPECT_EQ(file.Write(bytes.data(), row.size, row.n), row.size ? row.n : 0);
        EXPECT_EQ(dmemfile_peek::alloc(file), row.alloc) << row.before << " + " << row.size << " * " << row.n;
        EXPECT_EQ(contentOf(file), std::string(row.before, 'p') + bytes);
    }
    dmemfile_t file;
    for (int i = 0; i < 1024; ++i) {
        EXPECT_EQ(file.Putc(i), i);
    }
    EXPECT_EQ(dmemfile_peek::alloc(file), 1024) << "Putc fills the buffer to its end";
    file.Putc('x');
    EXPECT_EQ(dmemfile_peek::alloc(file), 2048);
}

// What is allocated bounds what is copied, and no clock is needed to see that it stays linear.
TEST(MemFile, ManySmallWritesStayLinear) {
    constexpr size_t kCount = 3'000'000;
    for (const bool byPutc : {true, false}) {
        g_allocated = 0;
        dmemfile_t file;
        for (size_t i = 0; i < kCount; ++i) {
            if (byPutc) {
                file.Putc(static_cast<int>(i % 251));
            } else {
                file.Write("z", 1, 1);
            }
        }
        EXPECT_EQ(file.GetLen(), static_cast<long>(kCount));
        EXPECT_EQ(dmemfile_peek::alloc(file), 3'000'320);
        EXPECT_LT(g_allocated, 8 * kCount);
    }
    for (size_t size = 0; size <= 0x7fffffff; size += size / 3 + 1) {
        const size_t block = dmemfile_peek::blockSize(static_cast<std::int32_t>(size));
        EXPECT_GE(block, size);
        EXPECT_LE(block, size + size / 4 + 1);
    }
}

TEST(MemFile, KeepsItsContentWhenMemoryRunsOut) {
    dmemfile_t file;
    const std::string first(1000, 'a');
    ASSERT_EQ(file.Write(first.data(), first.size(), 1), 1u);
    g_noMemory = true;
    EXPECT_EQ(file.Write(first.data(), 24, 1), 0u);
    EXPECT_EQ(file.Puts("a text of more than twenty-four bytes"), 0);
    unsigned char* text;
    long size;
    file.GetText(&text, size);
    smemfile_t fixed(100);
    dmemfile_t none;
    EXPECT_EQ(none.Putc('a'), 0);
    EXPECT_EQ(none.Getc(), -1);
    g_noMemory = false;
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(fixed.GetLen(), 0);
    EXPECT_EQ(contentOf(file), first);
    EXPECT_EQ(file.Tell(), 1000);
    // More than a 32-bit length holds is refused before a byte is looked at.
    EXPECT_EQ(file.Write("x", 0x40000000, 4), 0u);
    EXPECT_EQ(file.Write("x", 0x7fffffff, 1), 0u);
    EXPECT_EQ(file.Write("x", static_cast<size_t>(-1), 2), 0u);
    EXPECT_EQ(contentOf(file), first);
}

TEST(MemFile, EndsLines) {
    const struct {
        std::string data;
        int n;
        std::vector<std::string> lines;
    } rows[] = {
        {"a\r\nb", 10, {"a\r\n", "b"}},
        {"a\n\rb", 10, {"a\n\r", "b"}},
        {"a\rb", 10, {"a\r", "b"}},
        {"a\nb\n", 10, {"a\n", "b\n"}},
        {"\n\n\r\r", 10, {"\n", "\n\r", "\r"}},
        {"abcd", 3, {"ab", "cd"}},
        {"a\r\nb", 3, {"a\r\n", "b"}},  // completed past n - 1
        {"ab\r\n", 3, {"ab", "\r\n"}},
        {"a\r", 3, {"a\r"}},
        {"ab", 1, {}},  // no room for a byte
    };
    for (const auto& row : rows) {
        dmemfile_t file;
        file.Write(row.data.data(), row.data.size(), 1);
        file.Seek(0, SEEK_SET);
        std::vector<std::string> lines;
        std::vector<char> buffer(static_cast<size_t>(row.n) + 1);
        while (const char* line = file.Gets(buffer.data(), row.n)) {
            lines.push_back(line);
        }
        EXPECT_EQ(lines, row.lines) << testing::PrintToString(row.data) << " by " << row.n;
    }
}

TEST(MemFile, SeeksWithinItsLength) {
    const struct {
        long off;
        int whence;
        long pos;  // -1: fails
    } rows[] = {{0, 0, 0},  {10, 0, 10}, {11, 0, -1},         {-1, 0, -1},
                {5, 1, 9},  {-4, 1, 0},  {-5, 1, -1},         {7, 1, -1},
                {0, 2, 10}, {-10, 2, 0}, {-11, 2, -1},        {5, 2, -1},
                {0, 3, -1}, {0, -1, -1}, {0x7fffffff, 1, -1}, {-0x7fffffff - 1, 2, -1}};
    for (const auto& row : rows) {
        dmemfile_t file;
        file.Write("0123456789", 10, 1);
        file.Seek(4, SEEK_SET);
        EXPECT_EQ(file.Seek(row.off, row.whence), row.pos < 0 ? -1 : 0) << row.off << ", " << row.whence;
        EXPECT_EQ(file.Tell(), row.pos < 0 ? 4 : row.pos);
    }
}

TEST(MemFile, OddEnds) {
    dmemfile_t file;
    EXPECT_EQ(file.Eof(), 0) << "an empty file never reports its end";
    file.Write("0123456789", 10, 1);
    EXPECT_EQ(file.Eof(), 10);
    char buffer[12] = {};
    file.Seek(0, SEEK_SET);
    EXPECT_EQ(file.Read(buffer, 4, 3), 2u);
    EXPECT_STREQ(buffer, "0123456789");
    EXPECT_EQ(file.Tell(), 10);
    EXPECT_EQ(file.Read(buffer, 4, 0), 0u);
    EXPECT_FALSE(file.OpenWrite("x"));
    EXPECT_FALSE(file.IsLodEntry());
    EXPECT_EQ(file.GetLen(), 10) << "refusing to open for writing keeps the content";

    unsigned char* text;
    long size;
    file.Seek(3, SEEK_SET);
    file.GetText(&text, size);
    const std::unique_ptr<unsigned char[]> owner(text);
    EXPECT_NE(static_cast<void*>(text), file.GetMemPtr());
    EXPECT_EQ(size, 10);
    EXPECT_EQ(file.Tell(), 10);

    file.Close();
    EXPECT_EQ(file.GetMemPtr(), nullptr);
    EXPECT_EQ(dmemfile_peek::alloc(file), 0);
    file.Puts("again");
    EXPECT_EQ(contentOf(file), "again");

    // Its own memory as the source of a write that moves that memory.
    file.Seek(0, SEEK_END);
    for (int i = 0; i < 12; ++i) {
        file.Write(file.GetMemPtr(), static_cast<size_t>(file.GetLen()), 1);
    }
    EXPECT_EQ(file.GetLen(), 5 << 12);
    EXPECT_EQ(contentOf(file).substr((5 << 12) - 10), "againagain");
}

TEST(MemFile, OpensDiskFilesThatAreNotEmpty) {
    const TempFolder folder;
    dmemfile_t file;
    EXPECT_TRUE(file.OpenRead(folder.write("full", "content").c_str()));
    EXPECT_EQ(contentOf(file), "content");
    EXPECT_EQ(dmemfile_peek::alloc(file), 7);
    EXPECT_TRUE(file.OpenRead(file.GetName()));
    file.Seek(0, SEEK_END);
    file.Puts("!");  // reaches the buffer's end at once
    EXPECT_EQ(dmemfile_peek::alloc(file), 7 + 1024);
    EXPECT_EQ(contentOf(file), "content!");

    for (const std::string& path : {folder.write("empty", ""), folder.path("none"), folder.path()}) {
        EXPECT_TRUE(file.OpenRead(folder.path("full").c_str()));
        EXPECT_FALSE(file.OpenRead(path.c_str())) << path;
        EXPECT_STREQ(file.GetName(), "");
        EXPECT_EQ(file.GetLen(), 0);
        EXPECT_EQ(file.GetMemPtr(), nullptr);
    }
}

TEST(MemFile, ClosesAStreamHandedOver) {
    const TempFolder folder;
    const std::string path = folder.path("a");
    {
        dmemfile_t file;
        std::FILE* stream = std::fopen(folder.native("a").string().c_str(), "wb");
        std::fputs("buffered", stream);
        file.SetFp(stream);
        file.Close();
        EXPECT_EQ(folder.read("a"), "") << "not before the file goes";
    }
    EXPECT_EQ(folder.read("a"), "buffered");
}

TEST(FixedMemFile, OwnsOrBorrowsItsBlock) {
    smemfile_t zeros(5);
    EXPECT_EQ(contentOf(zeros), std::string(5, '\0'));
    EXPECT_EQ(zeros.Putc('a'), 0);
    EXPECT_EQ(zeros.Puts("a"), 0);
    EXPECT_EQ(zeros.Write("a", 1, 1), 0u);
    EXPECT_EQ(smemfile_t().GetMemPtr(), nullptr);
    EXPECT_EQ(smemfile_t(-5).GetLen(), 0);

    unsigned char block[4] = {'a', 'b', 'c', 'd'};
    {
        smemfile_t borrowed("name", block, 4, true);
        EXPECT_EQ(borrowed.Getc(), 'a');
        borrowed.Close();
        EXPECT_EQ(borrowed.Getc(), -1);
        const TempFolder folder;
        EXPECT_TRUE(borrowed.OpenRead(folder.write("x", "own").c_str()));  // freed: the leak check watches
        EXPECT_EQ(contentOf(borrowed), "own");
    }
    EXPECT_EQ(block[0], 'a');
    smemfile_t owned("name", new unsigned char[4]{}, 4, false);
    EXPECT_EQ(owned.GetLen(), 4);
    EXPECT_STREQ(smemfile_t("name", block, 0, true).GetName(), "") << "no block, no name";
    EXPECT_STREQ(smemfile_t("name", nullptr, 4, true).GetName(), "");
}

TEST(FixedMemFile, ViewsStayInside) {
    dmemfile_t file;
    file.Puts("0123456789");
    const struct {
        long len, offset;
        const char* content;  // null: refused
    } rows[] = {{-1, 0, "0123456789"}, {3, 7, "789"},    {0, 10, ""},      {4, 7, nullptr},
                {-1, 1, nullptr},      {3, -1, nullptr}, {-2, 0, nullptr}, {0x7fffffff, 0x7fffffff, nullptr}};
    for (const auto& row : rows) {
        const std::unique_ptr<file_t> view(file.create_part("v", row.len, row.offset));
        ASSERT_EQ(view != nullptr, row.content != nullptr) << row.len << " at " << row.offset;
        if (view) {
            EXPECT_EQ(contentOf(static_cast<dmemfile_t&>(*view)), row.content);
        }
    }
    EXPECT_EQ(file.Seek(4, SEEK_SET), 0);
    dmemfile_t target;
    EXPECT_EQ(file.WriteToFile(&target, 100), 6) << "no more than there is";
    EXPECT_EQ(contentOf(target), "456789");
    smemfile_t readOnly(10);
    file.Seek(4, SEEK_SET);
    EXPECT_EQ(file.WriteToFile(&readOnly, 3), 0);
    EXPECT_EQ(file.Tell(), 7) << "advances though nothing was written";
}

TEST(MemFile, AgreesWithItsModel) {
    std::mt19937 random(42);
    for (int round = 0; round < 400; ++round) {
        std::vector<std::uint8_t> operations(random() % 600);
        for (auto& byte : operations) {
            byte = static_cast<std::uint8_t>(random());
        }
        // Small numbers half of the time: a large one in every second operation rarely meets a limit.
        for (size_t i = 2; round % 2 && i < operations.size(); i += 3) {
            operations[i] = 0;
        }
        ASSERT_EQ(zoka::test::runMemFileOps(operations.data(), operations.size()), "") << "round " << round;
    }
}

// Numbers far outside of the content: refused, nothing moves, nothing overflows.
TEST(MemFile, RefusesCountsAndPlacesThatNoContentHas) {
    unsigned char block[] = "0123456789";
    smemfile_t file("block", block, 10, true);
    file.Seek(4, SEEK_SET);
    char buffer[16] = {};
    for (const long n : {0L, -1L, -5L, std::numeric_limits<long>::min()}) {
        EXPECT_EQ(file.Read(buffer, 1, static_cast<size_t>(n)), 0u) << n;
        EXPECT_EQ(file.Read(buffer, 0, static_cast<size_t>(n)), 0u) << n;
    }
    for (const long off :
         {std::numeric_limits<long>::max(), std::numeric_limits<long>::min(), 1L << 30, -(1L << 30)}) {
        for (const int whence : {SEEK_SET, SEEK_CUR, SEEK_END}) {
            EXPECT_EQ(file.Seek(off, whence), -1) << off << " " << whence;
        }
        EXPECT_EQ(file.create_part("part", 4, off), nullptr) << off;
        EXPECT_EQ(file.create_part("part", off, 4), nullptr) << off;
    }
    EXPECT_EQ(file.Tell(), 4);
    EXPECT_EQ(buffer[0], 0);
}

}  // namespace
