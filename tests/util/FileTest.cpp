// Disk files and the windows onto them.
#include "util/File.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>

#include "tests/support/TempFolder.h"

namespace {

using zoka::test::TempFolder;

// Other modules call by slot number. A pointer to a virtual member holds its offset in the table, plus one.
template <typename Member>
size_t slotOf(Member member) {
    size_t word = 0;
    std::memcpy(&word, &member, sizeof word);
    return (word - 1) / sizeof(void*);
}

TEST(FileFamily, KeepsItsSlotOrderAndLayout) {
    const size_t slots[] = {
        slotOf(&file_t::OpenWrite),   slotOf(&file_t::OpenRead),    slotOf(&file_t::Close),
        slotOf(&file_t::GetText),     slotOf(&file_t::Eof),         slotOf(&file_t::Seek),
        slotOf(&file_t::Tell),        slotOf(&file_t::Putc),        slotOf(&file_t::Getc),
        slotOf(&file_t::Puts),        slotOf(&file_t::Gets),        slotOf(&file_t::Read),
        slotOf(&file_t::Write),       slotOf(&file_t::IsLodEntry),  slotOf(&file_t::SetFp),
        slotOf(&file_t::create_part), slotOf(&file_t::WriteToFile), slotOf(&file_t::GetMemPtr)};
    size_t slot = 1;  // two slots for the destructor
    for (const size_t found : slots) {
        EXPECT_EQ(found, ++slot);
    }
    if (sizeof(void*) == 4) {
        EXPECT_EQ(sizeof(file_t), 284u);
        EXPECT_EQ(sizeof(partof_file_t), 288u);
        EXPECT_EQ(sizeof(dmemfile_t), 292u);
        EXPECT_EQ(sizeof(smemfile_t), 296u);
        EXPECT_EQ(sizeof(fileinfo_t), 276u);
    }
}

TEST(DiskFile, ReadsWhatItWrote) {
    const TempFolder folder;
    const std::string path = folder.path("a.txt");
    file_t file;
    ASSERT_TRUE(file.OpenWrite(path.c_str()));
    EXPECT_STREQ(file.GetName(), path.c_str());
    EXPECT_FALSE(file.IsLodEntry());
    EXPECT_GE(file.Puts("one\n"), 0);
    EXPECT_EQ(file.Putc('\r'), '\r');
    EXPECT_EQ(file.Write("abcdef", 3, 2), 2u);
    file.Close();
    EXPECT_STREQ(file.GetName(), "");
    EXPECT_TRUE(file.IsLodEntry());
    EXPECT_EQ(folder.read("a.txt"), "one\n\rabcdef");

    ASSERT_TRUE(file.OpenRead(path.c_str()));
    EXPECT_EQ(file.GetLen(), 11);
    EXPECT_EQ(file.Tell(), 0);
    EXPECT_NE(file.GetDatum()->ticks(), 0u);
    char line[20];
    EXPECT_STREQ(file.Gets(line, sizeof line), "one\n");
    EXPECT_EQ(file.Getc(), '\r');
    EXPECT_EQ(file.Read(line, 4, 3), 1u);
    EXPECT_NE(file.Eof(), 0);
    EXPECT_EQ(file.Seek(-2, SEEK_END), 0);
    EXPECT_EQ(file.Tell(), 9);

    unsigned char* text;
    long size;
    file.GetText(&text, size);
    const std::unique_ptr<unsigned char[]> owner(text);
    ASSERT_EQ(size, 11);
    EXPECT_STREQ(reinterpret_cast<char*>(text), "one\n\rabcdef");  // a 0 behind the text

    EXPECT_TRUE(file.OpenRead(file.GetName())) << "its own name is a name like any other";
    EXPECT_EQ(file.GetLen(), 11);
}

TEST(DiskFile, FailureLeavesItClosed) {
    const TempFolder folder;
    const std::string existing = folder.write("a.txt", "x");
    const std::string bad[] = {folder.path("none.txt"), folder.path("none\\a.txt"), folder.path(), "",
                               folder.path(std::string(300, 'n'))};
    for (const std::string& path : bad) {
        file_t file;
        ASSERT_TRUE(file.OpenRead(existing.c_str()));
        EXPECT_FALSE(file.OpenRead(path.c_str())) << path;
        EXPECT_STREQ(file.GetName(), "");
        EXPECT_EQ(file.GetLen(), 0);
        EXPECT_TRUE(file.IsLodEntry());
    }
    file_t closed;
    EXPECT_FALSE(closed.OpenWrite(folder.path("none\\a.txt").c_str()));
    EXPECT_FALSE(closed.OpenRead(nullptr));
    char byte;
    EXPECT_EQ(closed.Getc(), -1);
    EXPECT_EQ(closed.Putc('a'), -1);
    EXPECT_EQ(closed.Gets(&byte, 1), nullptr);
    EXPECT_EQ(closed.Read(&byte, 1, 1), 0u);
    EXPECT_EQ(closed.Write("a", 1, 1), 0u);
    EXPECT_EQ(closed.Seek(0, SEEK_SET), -1);
    EXPECT_EQ(closed.Tell(), -1);
    unsigned char* text;
    long size = 7;
    closed.GetText(&text, size);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(closed.GetMemPtr(), nullptr);
}

TEST(DiskFile, CutsLongNames) {
    const std::string name(300, 'n');
    EXPECT_EQ(std::strlen(file_t(name.c_str(), nullptr, 0, 0).GetName()), 256u);
    unsigned char block[4];
    EXPECT_EQ(std::strlen(smemfile_t(name.c_str(), block, 4, true).GetName()), 256u);

    // Where the system opens a path of 300 characters, the file is whole though the name kept is cut.
    const TempFolder folder;
    const std::string deep = std::string(150, 'a') + "\\" + std::string(150, 'b');
    file_t::MakeDir(folder.path(std::string(150, 'a')).c_str());
    file_t file;
    if (file.OpenWrite(folder.path(deep).c_str())) {
        EXPECT_EQ(std::strlen(file.GetName()), 255u);
        file.Puts("x");
        file.Close();
        ASSERT_TRUE(file.OpenRead(folder.path(deep).c_str()));
        EXPECT_EQ(file.GetLen(), 1);
    } else {
        EXPECT_STREQ(file.GetName(), "");
    }
}

TEST(DiskFile, CopiesInChunks) {
    const TempFolder folder;
    std::string content(5000, '.');
    for (size_t i = 0; i < content.size(); ++i) {
        content[i] = static_cast<char>(i * 7);
    }
    file_t file;
    ASSERT_TRUE(file.OpenRead(folder.write("a", content).c_str()));
    const auto copyOf = [&file](long count, long expected) {
        dmemfile_t target;
        EXPECT_EQ(file.WriteToFile(&target, count), expected);
        EXPECT_EQ(target.GetLen(), expected);
        return std::string(static_cast<char*>(target.GetMemPtr()), static_cast<size_t>(target.GetLen()));
    };
    EXPECT_EQ(copyOf(0, 0), "");
    EXPECT_EQ(copyOf(1500, 1500), content.substr(0, 1500));
    EXPECT_EQ(copyOf(-1, 3500), content.substr(1500));
    EXPECT_EQ(copyOf(-1, 0), "") << "all of it was copied";
    ASSERT_EQ(file.Seek(4990, SEEK_SET), 0);
    EXPECT_EQ(copyOf(100, 10), content.substr(4990)) << "from the stream's place to where the data ends";

    smemfile_t readOnly(16);
    file.Seek(0, SEEK_SET);
    EXPECT_EQ(file.WriteToFile(&readOnly, 3000), 0) << "stops at the first write that fails";
    EXPECT_EQ(file.Tell(), 1024);
}

TEST(FileWindow, ReadsItsPartOfASharedStream) {
    const TempFolder folder;
    file_t file;
    ASSERT_TRUE(file.OpenRead(folder.write("a", "0123line one\nline two\nrest").c_str()));
    const std::unique_ptr<file_t> window(file.create_part("part", 15, 4));
    const std::unique_ptr<file_t> other(file.create_part("other", -1, 0));
    ASSERT_TRUE(window && other);
    EXPECT_STREQ(window->GetName(), "part");
    EXPECT_TRUE(window->IsLodEntry());
    EXPECT_EQ(other->GetLen(), 26);

    char buffer[32];
    EXPECT_EQ(window->Getc(), 'l');
    EXPECT_EQ(other->Getc(), '0');
    EXPECT_STREQ(window->Gets(buffer, sizeof buffer), "ine one\n") << "another window moved the stream";
    EXPECT_EQ(window->Tell(), 9);
    EXPECT_STREQ(window->Gets(buffer, sizeof buffer), "line t") << "cut at the window's end";
    EXPECT_EQ(window->Eof(), 15);
    EXPECT_EQ(window->Seek(-10, SEEK_END), 0);
    EXPECT_EQ(window->Tell(), 5);
    EXPECT_EQ(window->Read(buffer, 4, 3), 2u) << "ten bytes are left";
    EXPECT_EQ(std::string(buffer, 10), "one\nline t");
    EXPECT_EQ(window->Tell(), 15);
    EXPECT_EQ(window->Seek(16, SEEK_SET), -1);

    EXPECT_EQ(window->Putc('x'), 0);
    EXPECT_EQ(window->Puts("x"), 0);
    EXPECT_EQ(window->Write("x", 1, 1), 0u);

    dmemfile_t copy;
    ASSERT_EQ(window->Seek(5, SEEK_SET), 0);
    EXPECT_EQ(window->WriteToFile(&copy, -1), 10);
    EXPECT_EQ(std::string(static_cast<char*>(copy.GetMemPtr()), 10), "one\nline t");

    unsigned char* text;
    long size;
    window->GetText(&text, size);
    const std::unique_ptr<unsigned char[]> owner(text);
    EXPECT_EQ(size, 15);
    EXPECT_STREQ(reinterpret_cast<char*>(text), "line one\nline t") << "its own part, not the stream's start";

    const std::unique_ptr<file_t> inner(window->create_part("inner", 3, 5));
    EXPECT_STREQ(inner->Gets(buffer, sizeof buffer), "one") << "counted from the window";

    window->Close();
    EXPECT_EQ(window->Getc(), -1);
    EXPECT_EQ(file.Seek(0, SEEK_SET), 0);
    EXPECT_EQ(file.Getc(), '0') << "the stream outlives its windows";
}

TEST(FileWindow, OutOfRangeIsEmptyRatherThanWrong) {
    const TempFolder folder;
    file_t file;
    ASSERT_TRUE(file.OpenRead(folder.write("a", "abc").c_str()));
    const std::pair<long, long> outside[] = {{5, 100}, {5, -100}, {-7, 0}, {0x7fffffff, 0x7fffffff}};
    for (const auto& [len, offset] : outside) {
        const std::unique_ptr<file_t> window(file.create_part("w", len, offset));
        char buffer[8];
        ASSERT_TRUE(window) << "a stream's window is not checked";
        EXPECT_EQ(window->Getc(), -1);
        EXPECT_EQ(window->Read(buffer, 1, 4), 0u);
        EXPECT_EQ(window->Gets(buffer, sizeof buffer), nullptr);
    }
    // Starts before the stream, but is read from where the stream begins.
    const std::unique_ptr<file_t> early(file.create_part("w", 10, -2));
    ASSERT_EQ(early->Seek(2, SEEK_SET), 0);
    EXPECT_EQ(early->Getc(), 'a');
    EXPECT_EQ(early->Tell(), 3);
    const std::unique_ptr<file_t> empty(file.create_part("w", 0, 0));
    EXPECT_EQ(empty->Eof(), 0) << "an empty window never reports its end";
}

// The same content on the disk, in memory, in a window and in a memory view reads the same.
TEST(FileFamily, ReadsAlikeInAllStorages) {
    std::mt19937 random(7);
    for (int round = 0; round < 30; ++round) {
        std::string content(1 + random() % 4000, ' ');
        for (char& c : content) {
            c = "abcdefgh\n"[random() % 9];  // line ends that stdio knows too
        }
        const TempFolder folder;
        const std::string path = folder.write("a", content);
        const long size = static_cast<long>(content.size());
        file_t disk, around;
        dmemfile_t memory;
        ASSERT_TRUE(disk.OpenRead(path.c_str()));
        ASSERT_TRUE(around.OpenRead(folder.write("b", "<<<" + content + ">>>").c_str()));
        ASSERT_TRUE(memory.OpenRead(path.c_str()));
        EXPECT_EQ(*memory.GetDatum(), *disk.GetDatum());
        EXPECT_STREQ(memory.GetName(), disk.GetName());
        const std::unique_ptr<file_t> window(around.create_part("w", size, 3));
        const std::unique_ptr<file_t> view(memory.create_part("v", -1, 0));
        file_t* const all[] = {&disk, &memory, window.get(), view.get()};

        for (int step = 0; step < 60; ++step) {
            const unsigned op = random() % 4;
            const auto number = static_cast<long>(random() % 300);
            const long target = static_cast<long>(random() % (content.size() + 1));
            std::string expected;
            for (file_t* file : all) {
                std::string got = std::to_string(op) + ": ";
                char buffer[1300] = {};
                if (op == 0) {
                    got += std::to_string(file->Getc());
                } else if (op == 1) {
                    got += file->Gets(buffer, static_cast<int>(number) + 2) ? buffer : "(null)";
                } else if (op == 2) {
                    got +=
                        std::to_string(file->Read(buffer, 1 + static_cast<size_t>(number % 4), 300)) + buffer;
                } else {
                    got += std::to_string(file->Seek(target, SEEK_SET));
                }
                got += " @" + std::to_string(file->Tell());
                if (expected.empty()) {
                    expected = got;
                }
                ASSERT_EQ(got, expected);
            }
        }
    }
}

}  // namespace
