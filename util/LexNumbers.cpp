// CLex's number helpers. Digits are gathered in 32 bits, so that results are the same where long is wider.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "util/Lex.h"
#include "util/LexChars.h"

using namespace zoka::lex;

namespace {

// Reads digits of `base` (2 or 10) and moves `text` past them; returns their number.
int readDigits(const char*& text, uint32_t base, uint32_t& value) {
    int count = 0;
    value = 0;
    for (; *text >= '0' && static_cast<uint32_t>(*text - '0') < base; ++text, ++count) {
        value = value * base + static_cast<uint32_t>(*text - '0');
    }
    return count;
}

// The sign and the digits that every Scan operation begins with. False when there are none.
bool readSigned(const char*& text, uint32_t base, uint32_t& value, bool& negative) {
    text = CLex::NextChar(text);
    if (!text) {
        return false;
    }
    negative = *text == '-';
    if (negative) {
        ++text;
    }
    return readDigits(text, base, value) > 0;
}

}  // namespace

const char* CLex::ScanIntValue(const char* text, int& value) {
    uint32_t digits;
    bool negative;
    if (!readSigned(text, 10, digits, negative)) {
        return nullptr;
    }
    value = static_cast<int32_t>(negative ? 0u - digits : digits);
    return text;
}

const char* CLex::ScanDoubleValue(const char* text, double& value) {
    uint32_t integer;
    bool negative;
    if (!readSigned(text, 10, integer, negative)) {
        return nullptr;
    }
    double result = integer;
    if (*text == '.') {
        uint32_t fraction;
        double scale = 1.0;
        for (int n = readDigits(++text, 10, fraction); n > 0; --n) {
            scale *= 10.0;
        }
        result += fraction / scale;
    }
    value = negative ? -result : result;
    return text;
}

const char* CLex::ScanFloatValue(const char* text, float& value) {
    double wide;
    const char* const after = ScanDoubleValue(text, wide);
    if (after) {
        value = static_cast<float>(wide);
    }
    return after;
}

const char* CLex::ScanBinValue(const char* text, unsigned long& value) {
    uint32_t digits;
    bool negative;
    if (!readSigned(text, 2, digits, negative)) {
        return nullptr;
    }
    value = negative ? 0u - digits : digits;
    return text;
}

long CLex::BinToLong(const char* text) {
    unsigned long value = 0;
    ScanBinValue(text, value);
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

int CLex::LongToBin(char* buffer, long value) {
    char* const end = std::to_chars(buffer, buffer + 32, static_cast<uint32_t>(value), 2).ptr;
    *end = 0;
    return static_cast<int>(end - buffer);
}

bool CLex::IsDigit(const char* text, int len) {
    if (!text || len < 1) {
        return false;
    }
    return std::all_of(text + (isSign(*text) ? 1 : 0), text + len, isDecimal);
}

int CLex::FormatFloat(char* buffer, double value) {
    char* end = std::to_chars(buffer, buffer + 317, value, std::chars_format::fixed, 6).ptr;
    if (std::find(buffer, end, '.') != end) {
        while (end[-1] == '0') {
            --end;
        }
        if (end[-1] == '.') {
            --end;
        }
    }
    *end = 0;
    return static_cast<int>(end - buffer);
}

int CLex::StringCrop(char* text) {
    if (!text) {
        return 0;
    }
    const char* start = text;
    while (isSpace(*start)) {
        ++start;
    }
    int len = lengthOf(start);
    while (len > 0 && isSpace(start[len - 1])) {
        --len;
    }
    std::memmove(text, start, static_cast<size_t>(len));
    text[len] = 0;
    return len;
}

long CLex::GetDefinitionBlockSize(const char* text, long len) {
    if (!text || len < 1) {
        return -1;
    }
    const char* const end = text + len;
    long open = 0;
    for (const char* start = text; start < end;) {
        const char* const lf = std::find(start, end, '\n');
        const char* cut = start + std::min<long>(lf - start, kMaxLine);
        constexpr char kComment[] = {'/', '/'};
        cut = std::search(start, cut, std::begin(kComment), std::end(kComment));
        open += static_cast<long>(std::count(start, cut, '{'));
        const long closing = static_cast<long>(std::count(start, cut, '}'));
        if (open > 0 && closing >= open) {
            return static_cast<long>(lf - text);
        }
        if (open > 0) {
            open -= closing;
        }
        start = lf + (lf != end);
    }
    return -1;
}
