#include "util/KeyedHash.h"

#include <bit>
#include <chrono>
#include <cstring>
#include <exception>
#include <random>

#include "util/Fold.h"

namespace zoka {
namespace {

struct Key {
    std::uint64_t first, second;
};

Key randomKey() {
    try {
        std::random_device random;
        const auto word = [&] { return std::uint64_t{random()} << 32 | random(); };
        const std::uint64_t first = word();
        return {first, word()};
    } catch (const std::exception&) {
        // No source of random numbers: what nobody can know exactly when writing a file has to do.
        static const char here = 0;
        const auto now = std::chrono::high_resolution_clock::now().time_since_epoch().count();
        return {static_cast<std::uint64_t>(now) * 0x9e3779b97f4a7c15,
                reinterpret_cast<std::uintptr_t>(&here)};
    }
}

// Aumasson's and Bernstein's SipHash with one round a word and three at the end.
class Sip {
public:
    explicit Sip(const Key& key)
        : m_v0(key.first ^ 0x736f6d6570736575),
          m_v1(key.second ^ 0x646f72616e646f6d),
          m_v2(key.first ^ 0x6c7967656e657261),
          m_v3(key.second ^ 0x7465646279746573) {}
    void word(std::uint64_t word) {
        m_v3 ^= word;
        round();
        m_v0 ^= word;
    }
    std::uint64_t finish() {
        m_v2 ^= 0xff;
        round();
        round();
        round();
        return m_v0 ^ m_v1 ^ m_v2 ^ m_v3;
    }

private:
    void round() {
        m_v0 += m_v1;
        m_v1 = std::rotl(m_v1, 13) ^ m_v0;
        m_v0 = std::rotl(m_v0, 32);
        m_v2 += m_v3;
        m_v3 = std::rotl(m_v3, 16) ^ m_v2;
        m_v0 += m_v3;
        m_v3 = std::rotl(m_v3, 21) ^ m_v0;
        m_v2 += m_v1;
        m_v1 = std::rotl(m_v1, 17) ^ m_v2;
        m_v2 = std::rotl(m_v2, 32);
    }
    std::uint64_t m_v0, m_v1, m_v2, m_v3;
};

// Words are taken in the machine's byte order: a hash never leaves the process.
template <bool NoCase>
std::uint64_t hashOf(std::string_view bytes) {
    static const Key key = randomKey();
    Sip sip(key);
    const auto fold = [](std::uint64_t word) { return NoCase ? foldCase(word) : word; };
    const char* p = bytes.data();
    size_t left = bytes.size();
    for (; left >= sizeof(std::uint64_t); left -= sizeof(std::uint64_t), p += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, p, sizeof word);
        sip.word(fold(word));
    }
    std::uint64_t rest = 0;
    if (left > 0) {
        std::memcpy(&rest, p, left);
    }
    sip.word(fold(rest));
    sip.word(bytes.size());
    return sip.finish();
}

}  // namespace

std::uint64_t keyedHash(std::string_view bytes) {
    return hashOf<false>(bytes);
}
std::uint64_t keyedHashNoCase(std::string_view bytes) {
    return hashOf<true>(bytes);
}

}  // namespace zoka
