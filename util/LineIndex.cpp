#include "util/LineIndex.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <stdexcept>

#if defined(__SSE2__) || defined(__i386__)
#include <emmintrin.h>
#define ZOKA_SSE2 1
#endif

// The 32-bit build is not compiled for SSE2 as a whole (every machine that runs the editor has it), and
// callers there keep the stack aligned to 4 bytes only.
#if defined(__i386__)
#define ZOKA_WIDE __attribute__((target("sse2"), force_align_arg_pointer))
#else
#define ZOKA_WIDE
#endif

namespace zoka {

namespace {

constexpr size_t kBlock = 64;  // bytes looked at together, one bit of a mask each

#if ZOKA_SSE2

ZOKA_WIDE size_t countLineFeedsInBlocks(const char* text, size_t blocks) {
    const __m128i lf = _mm_set1_epi8('\n');
    size_t count = 0;
    while (blocks > 0) {
        // A byte of `sum` grows by at most 4 a block, so 63 blocks cannot overflow it.
        const size_t run = std::min<size_t>(blocks, 63);
        __m128i sum = _mm_setzero_si128();
        for (const char* end = text + run * kBlock; text != end; text += kBlock) {
            const __m128i* p = reinterpret_cast<const __m128i*>(text);
            for (int i = 0; i < 4; ++i) {
                sum = _mm_sub_epi8(sum, _mm_cmpeq_epi8(_mm_loadu_si128(p + i), lf));
            }
        }
        const __m128i halves = _mm_sad_epu8(sum, _mm_setzero_si128());
        count += static_cast<size_t>(_mm_cvtsi128_si32(halves)) +
                 static_cast<size_t>(_mm_cvtsi128_si32(_mm_srli_si128(halves, 8)));
        blocks -= run;
    }
    return count;
}

// A bit for each of 64 bytes, set where it is a LF, lowest address in the lowest bit.
ZOKA_WIDE inline uint64_t lineFeedMask(const char* text) {
    const __m128i lf = _mm_set1_epi8('\n');
    const __m128i* p = reinterpret_cast<const __m128i*>(text);
    uint64_t mask = 0;
    for (int i = 0; i < 4; ++i) {
        const int bits = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(p + i), lf));
        mask |= static_cast<uint64_t>(static_cast<uint32_t>(bits)) << i * 16;
    }
    return mask;
}

#else

size_t countLineFeedsInBlocks(const char* text, size_t blocks) {
    return static_cast<size_t>(std::count(text, text + blocks * kBlock, '\n'));
}

uint64_t lineFeedMask(const char* text) {
    uint64_t mask = 0;
    for (size_t i = 0; i < kBlock; ++i) mask |= uint64_t{text[i] == '\n'} << i;
    return mask;
}

#endif

size_t countLineFeeds(const char* text, size_t size) {
    const size_t blocks = size / kBlock;
    return countLineFeedsInBlocks(text, blocks) +
           static_cast<size_t>(std::count(text + blocks * kBlock, text + size, '\n'));
}

// Writes the address after every LF to `out` and returns the length of the longest line, LF included.
ZOKA_WIDE size_t writeStarts(const char* text, size_t size, const char** out) {
    const char* start = text;
    size_t longest = 0;
    const auto add = [&](const char* next) {
        longest = std::max(longest, static_cast<size_t>(next - start));
        *out++ = start = next;
    };
    const char* p = text;
    const char* const end = text + size;
    for (; static_cast<size_t>(end - p) >= kBlock; p += kBlock) {
        for (uint64_t bits = lineFeedMask(p); bits != 0; bits &= bits - 1) {
            add(p + std::countr_zero(bits) + 1);
        }
    }
    for (; p != end; ++p) {
        if (*p == '\n') {
            add(p + 1);
        }
    }
    return std::max(longest, static_cast<size_t>(end - start));
}

}  // namespace

LineIndex::LineIndex(const char* text, size_t size)
    : m_lines(text ? countLineFeeds(text, size) + 1 : 0),
      m_longest(0),
      m_starts(std::make_unique_for_overwrite<const char*[]>(m_lines + 1)) {
    if (text) {
        m_starts[0] = text;
        m_longest = writeStarts(text, size, &m_starts[1]);
    }
    m_starts[m_lines] = nullptr;
}

const char* LineIndex::at(size_t index) const {
    if (index > m_lines) {
        throw std::out_of_range("line index outside the text");
    }
    return m_starts[index];
}

}  // namespace zoka
