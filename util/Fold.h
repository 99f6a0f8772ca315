// Upper and lower case where the locale has no say: the letters A to Z alone.
#pragma once

#include <bit>
#include <cstdint>

namespace zoka {

constexpr char foldCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// Eight bytes at once.
constexpr std::uint64_t foldCase(std::uint64_t bytes) {
    // The high bit of each byte of `upper`: whether that byte is a letter A to Z.
    constexpr std::uint64_t ones = 0x0101010101010101;
    const std::uint64_t low = bytes & (0x7f * ones);
    const std::uint64_t upper =
        (low + (0x80 - 'A') * ones) & ~(low + (0x7f - 'Z') * ones) & ~bytes & (0x80 * ones);
    return bytes | (upper >> 2);
}

}  // namespace zoka
