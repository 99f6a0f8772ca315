// The one growing buffer that XML is written into. Internal to this folder.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include "xml/XMLScan.h"
#include "xml/XMLWriter.h"

namespace zoka {

// All of these throw std::bad_alloc. "Padded" strings are the tree's own, which may be read past their end.
class XMLOutput {
public:
    void put(std::string_view text) {
        if (text.empty()) {
            return;
        }
        make(text.size());
        if (text.size() > 16) {
            std::memcpy(m_at, text.data(), text.size());
        } else {
            copyShort(text.data(), text.size(), [](auto...) { return true; });
        }
        m_at += text.size();
    }
    void put(char c) {
        make(1);
        *m_at++ = c;
    }
    void putTabs(size_t count) {
        constexpr char few[] = "\t\t\t\t\t\t\t";
        make(std::max(count, sizeof few));
        std::memcpy(m_at, few, sizeof few);
        if (count >= sizeof few) {
            std::memset(m_at, '\t', count);
        }
        m_at += count;
    }
    // A padded name, or anything else that stands as it is.
    void putRaw(const char* text) {
        copy(text, [](auto v) { return stopsRaw(v); });
    }
    // An attribute's padded value, between its quotes.
    void putValue(const char* text) {
        for (;; ++text) {
            text = copy(text, [](auto v) { return stopsValue(v); });
            if (*text == 0) {
                return;
            }
            putReference(*text);
        }
    }
    // A value that may be followed by anything, if it is ASCII of which nothing is to be replaced; else false, with
    // nothing put.
    bool putPlainValue(std::string_view value) {
        make(value.size());
        if (!copyPlain(value.data(), value.size())) {
            return false;
        }
        m_at += value.size();
        return true;
    }
    // An element's padded text. White space at its ends is written as references, or readers would drop it.
    void putText(const char* text) {
        if (isXmlBlank(*text)) {
            putReference(*text++);
        }
        const size_t start = size();
        for (;; ++text) {
            text = copy(text, [](auto v) { return stopsText(v); });
            if (*text == 0) {
                break;
            }
            putReference(*text);
        }
        if (size() > start && isXmlBlank(m_at[-1])) {
            putReference(*--m_at);
        }
    }

    size_t size() const { return static_cast<size_t>(m_at - m_buffer.get()); }

    // Ends the text and hands it out; without what was asked for in vain.
    XMLText take() {
        put('\0');
        XMLText result;
        result.length = size() - 1;
        char* fitted = static_cast<char*>(std::realloc(m_buffer.get(), size()));
        if (!fitted) {
            fitted = m_buffer.get();
        }
        (void)m_buffer.release();
        result.bytes.reset(fitted);
        m_at = m_limit = nullptr;
        return result;
    }

private:
    static constexpr size_t kFirst = 1024;

#if defined(__SSE2__)
    static __m128i stopsRaw(__m128i v) {
        return scan::equal(v, 0);
    }
    static __m128i stopsValue(__m128i v) {
        using namespace scan;
        const __m128i controls = odd<false>(v);  // the end, and tab, LF and CR: the tree holds no other
        return either(either(controls, equal(v, '"')), either(equal(v, '<'), equal(v, '&')));
    }
    static __m128i stopsText(__m128i v) {
        using namespace scan;
        const __m128i markup = either(either(equal(v, '<'), equal(v, '>')), equal(v, '&'));
        return either(markup, either(equal(v, 0), equal(v, '\r')));
    }
    // Copies a text to m_at; false when not all of it is plain.
    bool copyPlain(const char* text, size_t size) {
        const auto isPlain = [](__m128i v) {
            using namespace scan;
            const __m128i quote = either(odd<true>(v), equal(v, '"'));
            return _mm_movemask_epi8(either(quote, either(equal(v, '<'), equal(v, '&')))) == 0;
        };
        if (size < 16) {
            return copyShort(text, size, [&](auto first, auto last) {
                if constexpr (sizeof first == 8) {
                    return isPlain(_mm_set_epi64x(last, first));
                } else if constexpr (sizeof first == 4) {
                    return isPlain(_mm_set_epi32(last, first, last, first));
                } else {
                    return isPlainByte(first);
                }
            });
        }
        for (size_t at = 0;; at = std::min(at + 16, size - 16)) {
            const __m128i bytes = scan::load(text + at);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(m_at + at), bytes);
            if (!isPlain(bytes) || at == size - 16) {
                return isPlain(bytes);
            }
        }
    }
    // Copies up to where `stops` says so; gives that place.
    template <class Stops>
    const char* copy(const char* text, Stops stops) {
        for (;;) {
            make(16);
            const __m128i bytes = scan::load(text);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(m_at), bytes);
            const auto mask = static_cast<unsigned>(_mm_movemask_epi8(stops(bytes)));
            const int length = mask ? std::countr_zero(mask) : 16;
            m_at += length;
            text += length;
            if (mask) {
                return text;
            }
        }
    }
#else
    static bool stopsRaw(char c) {
        return c == 0;
    }
    static bool stopsValue(char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '<' || c == '&';
    }
    bool copyPlain(const char* text, size_t size) {
        for (size_t i = 0; i < size; ++i) {
            if (!isPlainByte(text[i])) return false;
        }
        std::memcpy(m_at, text, size);
        return true;
    }
    static bool stopsText(char c) {
        return c == 0 || c == '\r' || c == '<' || c == '>' || c == '&';
    }
    template <class Stops>
    const char* copy(const char* text, Stops stops) {
        const char* end = text;
        while (!stops(*end)) ++end;
        put({text, static_cast<size_t>(end - text)});
        return end;
    }
#endif

    static bool isPlainByte(char c) {
        return static_cast<signed char>(c) >= ' ' && c != '"' && c != '<' && c != '&';
    }
    // Copies up to 16 bytes to m_at: as two halves that overlap, so that nothing behind them is read. False as soon as
    // `isFine(first half, last half)` is, of which the last bytes go one by one.
    template <class IsFine>
    bool copyShort(const char* text, size_t size, IsFine isFine) {
        const auto halves = [&]<class Half>(Half first, Half last) {
            std::memcpy(&first, text, sizeof first);
            std::memcpy(&last, text + size - sizeof last, sizeof last);
            std::memcpy(m_at, &first, sizeof first);
            std::memcpy(m_at + size - sizeof last, &last, sizeof last);
            return isFine(first, last);
        };
        if (size >= 8) {
            return halves(std::int64_t{}, std::int64_t{});
        }
        if (size >= 4) {
            return halves(std::int32_t{}, std::int32_t{});
        }
        for (size_t i = 0; i < size; ++i) {
            if (!isFine(text[i], text[i])) {
                return false;
            }
            m_at[i] = text[i];
        }
        return true;
    }
    void putReference(char c) {
        switch (c) {
            case '<':
                return put("&lt;");
            case '>':
                return put("&gt;");
            case '&':
                return put("&amp;");
            case '"':
                return put("&quot;");
            case '\t':
                return put("&#9;");
            case '\n':
                return put("&#10;");
            case '\r':
                return put("&#13;");
            default:
                return put("&#32;");
        }
    }
    void make(size_t bytes) {
        if (static_cast<size_t>(m_limit - m_at) < bytes) {
            grow(bytes);
        }
    }
    void grow(size_t bytes) {
        const size_t used = size();
        size_t room = static_cast<size_t>(m_limit - m_buffer.get());
        room = room ? room * 2 : kFirst;
        if (room < used + bytes) {
            room = used + bytes;
        }
        auto* larger = static_cast<char*>(std::realloc(m_buffer.get(), room));
        if (!larger) {
            throw std::bad_alloc();
        }
        (void)m_buffer.release();
        m_buffer.reset(larger);
        m_at = larger + used;
        m_limit = larger + room;
    }

    std::unique_ptr<char, XMLText::Free> m_buffer;
    char* m_at = nullptr;
    char* m_limit = nullptr;
};

}  // namespace zoka
