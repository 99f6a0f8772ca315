#include "util/KeyedHash.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

using zoka::keyedHash, zoka::keyedHashNoCase;

namespace {

TEST(KeyedHash, IsOfTheBytesAndTheirNumber) {
    const std::string texts[] = {"",         std::string(1, '\0'), "a",        "A", std::string("a\0", 2),
                                 "aaaaaaaa", "aaaaaaaaa",          "aaaaaaaab"};
    zoka::KeyedSet<std::uint64_t> hashes;
    for (const std::string& text : texts) {
        hashes.insert(keyedHash(text));
        EXPECT_EQ(keyedHash(text), keyedHash(std::string(text)));
    }
    EXPECT_EQ(hashes.size(), std::size(texts));
    EXPECT_EQ(keyedHashNoCase("Some.KEZ@[`{"), keyedHashNoCase("sOME.kez@[`{"));
    EXPECT_NE(keyedHashNoCase("@"), keyedHashNoCase("`"));
    EXPECT_NE(keyedHashNoCase("Some.kez1"), keyedHashNoCase("Some.kez2"));
    EXPECT_NE(keyedHashNoCase("\xC4"), keyedHashNoCase("\xE4"));
}

// Names alike, and numbers that a table with a known size and a plain hash puts into one place.
TEST(KeyedHash, SpreadsOverAllPlaces) {
    constexpr int count = 64'000;
    std::array<int, 64> low{}, high{}, numbers{};
    for (int i = 0; i < count; ++i) {
        const std::uint64_t hash = keyedHash("script" + std::to_string(i));
        ++low[hash % 64];
        ++high[static_cast<size_t>(hash >> 58)];
        ++numbers[zoka::KeyedHash()(i * 1024) % 64];
    }
    for (const auto& places : {low, high, numbers}) {
        const auto [least, most] = std::ranges::minmax(places);
        EXPECT_GT(least, 800);
        EXPECT_LT(most, 1200);
    }
}

}  // namespace
