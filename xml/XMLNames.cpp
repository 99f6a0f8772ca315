#include "xml/XMLNames.h"

namespace zoka {
namespace {

unsigned char fold(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + 32) : c;
}

// Length-limited form of the key for sets with two-byte characters; `length` bytes at least are there.
std::uint64_t keyWithLeadBytes(const char* name, std::size_t length, const bool* leads) {
    std::uint64_t key = 0;
    bool trail = false;
    for (std::size_t i = 0; i < 8 && i < length && name[i]; ++i) {
        const auto c = static_cast<unsigned char>(name[i]);
        key |= std::uint64_t{trail ? c : fold(c)} << (8 * i);
        trail = !trail && leads[c];
    }
    return key;
}

}  // namespace

std::uint64_t xmlNameKey(const char* name) {
    if (const bool* leads = xmlLeadBytes()) return keyWithLeadBytes(name, SIZE_MAX, leads);
    std::uint64_t key = 0;
    for (unsigned i = 0; i < 64 && *name; i += 8)
        key |= std::uint64_t{fold(static_cast<unsigned char>(*name++))} << i;
    return key;
}

std::uint64_t xmlNameKey(const char* name, std::size_t length) {
    if (const bool* leads = xmlLeadBytes()) return keyWithLeadBytes(name, length, leads);
    std::uint64_t bytes = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&bytes, name, 8);
    } else {
        for (unsigned i = 0; i < 8; ++i)
            bytes |= std::uint64_t{static_cast<unsigned char>(name[i])} << (8 * i);
    }
    if (length < 8) bytes &= (std::uint64_t{1} << (8 * length)) - 1;
    // The high bit of each byte of `upper`: whether that byte is a letter A to Z.
    constexpr std::uint64_t ones = 0x0101010101010101;
    const std::uint64_t low = bytes & (0x7f * ones);
    const std::uint64_t upper =
        (low + (0x80 - 'A') * ones) & ~(low + (0x7f - 'Z') * ones) & ~bytes & (0x80 * ones);
    return bytes | (upper >> 2);
}

bool xmlSameTail(const char* a, const char* b) {
    // Whether the ninth byte is a trail byte follows from the first eight alone.
    const bool* leads = xmlLeadBytes();
    bool trail = false;
    if (leads)
        for (int i = 0; i < 8; ++i) trail = !trail && leads[static_cast<unsigned char>(a[i])];
    for (a += 8, b += 8;; ++a, ++b) {
        const auto x = static_cast<unsigned char>(*a), y = static_cast<unsigned char>(*b);
        if (x != y && (trail || fold(x) != fold(y))) return false;
        if (x == 0) return true;
        trail = leads && !trail && leads[x];
    }
}

}  // namespace zoka
