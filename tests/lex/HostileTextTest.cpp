// The laws of LexCheck.h on damaged script text, on the fuzzer's seeds and on what it found before.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/lex/LexCheck.h"
#include "tests/support/SourceDir.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> filesUnder(const char* folder) {
    std::vector<fs::path> paths;
    for (const auto& entry : fs::directory_iterator(zoka::test::sourceDir() / "fuzz" / folder / "lex")) {
        if (entry.is_regular_file() && entry.path().filename() != "README.md") {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> texts;
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return texts;
}

std::string scriptText(size_t size) {
    std::string text;
    const std::vector<std::string> seeds = filesUnder("seeds");
    for (size_t i = 0; text.size() < size; ++i) {
        text += seeds[i % seeds.size()] + "\nvar n = " + std::to_string(i);
    }
    text.resize(size);
    return text;
}

TEST(HostileText, SeedsAndEarlierFindingsHold) {
    ASSERT_GE(filesUnder("seeds").size(), 4u);
    for (const char* folder : {"seeds", "regressions"}) {
        for (const std::string& text : filesUnder(folder)) {
            EXPECT_STREQ(zoka::lexcheck::fault(text), nullptr) << text;
        }
    }
}

// The index is made of the whole prefix. Of the rest only its end is walked: what stands before was walked in
// the shorter ones.
TEST(HostileText, EveryPrefixOf64KHolds) {
    const std::string text = scriptText(64 * 1024);
    size_t lines = 1, lastLine = 0;
    for (size_t size = 0; size <= text.size(); ++size) {
        if (size > 0 && text[size - 1] == '\n') {
            ++lines;
            lastLine = size;
        }
        const zoka::lexcheck::ExactCopy prefix(std::string_view(text).substr(0, size));
        const zoka::LineIndex index(prefix.bytes.get(), size);
        ASSERT_EQ(index.lines(), lines) << "cut at " << size;
        ASSERT_EQ(index.at(lines - 1), prefix.bytes.get() + lastLine) << "cut at " << size;
        const size_t from = size < 1500 ? 0 : size - 1500;
        const std::string_view end = std::string_view(text).substr(from, size - from);
        const auto whole = static_cast<size_t>(std::count(end.begin(), end.end(), '\n'));
        ASSERT_STREQ(zoka::lexcheck::fault(end, whole > 1 ? whole - 1 : 0), nullptr) << "cut at " << size;
    }
}

// A change is felt in its own line and its neighbours, so these are what is walked.
TEST(HostileText, EveryByteOf64KMayChange) {
    const std::string text = scriptText(64 * 1024);
    constexpr size_t kAround = 150;
    constexpr char kBytes[] = {'\0', '\n', '\r', '"', '{', '/', '-', '\xff'};
    for (size_t i = 0; i < text.size(); ++i) {
        const size_t from = i < kAround ? 0 : i - kAround;
        std::string part = text.substr(from, 2 * kAround);
        part[i - from] = kBytes[i % std::size(kBytes)];
        ASSERT_STREQ(zoka::lexcheck::fault(part), nullptr) << "changed at " << i;
        part[i - from] = static_cast<char>(text[i] ^ (1 << i % 8));
        ASSERT_STREQ(zoka::lexcheck::fault(part), nullptr) << "bit changed at " << i;
    }
}

}  // namespace
