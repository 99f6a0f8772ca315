// Runs over a text, many bytes at a time where the processor can. Internal to this folder.
//
// All of these may read up to kXmlPadding bytes past the first 0, where they stop. `Utf8` says whether bytes
// from 80 hex on are to be looked at (they stop the run) or are just characters.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#if defined(__SSE2__)
#include <emmintrin.h>

#include <bit>
#endif

namespace zoka {

enum : std::uint8_t {
    kCharBlank = 1,      // space, tab, LF, CR
    kCharNameStart = 2,  // ASCII letters, '_', ':'
    kCharName = 4,       // those, digits, '-', '.'
    kCharControl = 8,    // below 20 hex, without tab and LF
    kCharHigh = 16,      // from 80 hex on
};

inline constexpr std::array<std::uint8_t, 256> kCharClass = [] {
    std::array<std::uint8_t, 256> table{};
    const auto set = [&table](int from, int to, int bits) {
        for (int c = from; c <= to; ++c) {
            table[static_cast<size_t>(c)] = static_cast<std::uint8_t>(table[static_cast<size_t>(c)] | bits);
        }
    };
    set(0, 0x1f, kCharControl);
    table['\t'] = table['\n'] = table[' '] = kCharBlank;
    table['\r'] = kCharBlank | kCharControl;
    set('a', 'z', kCharNameStart | kCharName);
    set('A', 'Z', kCharNameStart | kCharName);
    set('_', '_', kCharNameStart | kCharName);
    set(':', ':', kCharNameStart | kCharName);
    set('0', '9', kCharName);
    set('-', '.', kCharName);
    set(0x80, 0xff, kCharHigh);
    return table;
}();

inline bool hasClass(char c, unsigned bits) {
    return (kCharClass[static_cast<unsigned char>(c)] & bits) != 0;
}
inline bool isXmlBlank(char c) {
    return hasClass(c, kCharBlank);
}

template <class Char>
Char* skipBlanks(Char* p) {
    while (isXmlBlank(*p)) {
        ++p;
    }

    return p;
}

// Stops at what is no ASCII character of a name.
inline char* scanName(char* p) {
    while (hasClass(*p, kCharName)) {
        ++p;
    }

    return p;
}

// Whether the text at `p` begins so; not read past the first difference.
template <size_t N>
bool startsWith(const char* p, const char (&text)[N]) {
    for (size_t i = 0; i + 1 < N; ++i) {
        if (p[i] != text[i]) {
            return false;
        }
    }

    return true;
}

#if defined(__SSE2__)
namespace scan {

inline __m128i load(const char* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
inline __m128i equal(__m128i bytes, char c) {
    return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c));
}
inline __m128i either(__m128i a, __m128i b) {
    return _mm_or_si128(a, b);
}
// Bytes below 20 hex; with Utf8 those from 80 hex on too, which are negative.
template <bool Utf8>
__m128i odd(__m128i bytes) {
    if constexpr (Utf8) {
        return _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20));
    }

    return _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(0x1f)), bytes);
}
template <class Stops>
char* run(char* p, Stops stops) {
    for (;; p += 16) {
        const auto mask = static_cast<unsigned>(_mm_movemask_epi8(stops(load(p))));
        if (mask) {
            return p + std::countr_zero(mask);
        }
    }
}

}  // namespace scan

// Stops at a control character (tab and LF are none, CR is), '<', '&', ']'.
template <bool Utf8>
char* scanText(char* p) {
    using namespace scan;
    return run(p, [](__m128i v) {
        const __m128i control = _mm_andnot_si128(either(equal(v, '\n'), equal(v, '\t')), odd<Utf8>(v));
        return either(either(control, equal(v, ']')), either(equal(v, '<'), equal(v, '&')));
    });
}
// Stops at `quote`, '<', '&', and every control character, tab, LF and CR too.
template <bool Utf8>
char* scanValue(char* p, char quote) {
    using namespace scan;
    return run(p, [quote](__m128i v) {
        return either(either(odd<Utf8>(v), equal(v, quote)), either(equal(v, '<'), equal(v, '&')));
    });
}
// Stops at `stop` and control characters other than tab, LF and CR.
template <bool Utf8>
char* scanTo(char* p, char stop) {
    using namespace scan;
    return run(p, [stop](__m128i v) {
        const __m128i fine = either(either(equal(v, '\n'), equal(v, '\t')), equal(v, '\r'));
        return either(_mm_andnot_si128(fine, odd<Utf8>(v)), equal(v, stop));
    });
}
// Stops at `stop`, '&' and CR; in values also at tab and LF.
inline char* scanEdits(char* p, char stop, bool isValue) {
    using namespace scan;
    const char tab = isValue ? '\t' : '\r', lf = isValue ? '\n' : '\r';
    return run(p, [=](__m128i v) {
        const __m128i blanks = either(either(equal(v, tab), equal(v, lf)), equal(v, '\r'));
        return either(blanks, either(equal(v, stop), equal(v, '&')));
    });
}
#else
inline char* scanEdits(char* p, char stop, bool isValue) {
    while (*p != stop && *p != '&' && *p != '\r' && !(isValue && (*p == '\t' || *p == '\n'))) ++p;
    return p;
}
template <bool Utf8>
char* scanText(char* p) {
    while (!hasClass(*p, kCharControl | (Utf8 ? kCharHigh : 0)) && *p != '<' && *p != '&' && *p != ']') ++p;
    return p;
}
template <bool Utf8>
char* scanValue(char* p, char quote) {
    while (*p != quote && *p != '<' && *p != '&' && *p != '\t' && *p != '\n' &&
           !hasClass(*p, kCharControl | (Utf8 ? kCharHigh : 0)))
        ++p;
    return p;
}
template <bool Utf8>
char* scanTo(char* p, char stop) {
    while (*p != stop && (*p == '\r' || !hasClass(*p, kCharControl | (Utf8 ? kCharHigh : 0)))) ++p;
    return p;
}
#endif

}  // namespace zoka
