#include "customize/CustomKeywords.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

#include "util/Fold.h"
#include "util/LexChars.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

constexpr std::array<std::string_view, kKeywordCount> kNames = {"title",
                                                                "image",
                                                                "text",
                                                                "section",
                                                                "help",
                                                                "entry_help",
                                                                "id",
                                                                "cntl",
                                                                "enable",
                                                                "action",
                                                                "entry",
                                                                "entry_numEdit",
                                                                "entry_numEditF",
                                                                "entry_chooseFile",
                                                                "entry_strEdit",
                                                                "entry_entity",
                                                                "entry_path",
                                                                "entry_drop",
                                                                "entry_text",
                                                                "ver",
                                                                "date",
                                                                "desc",
                                                                "flag",
                                                                "flag1",
                                                                "flag2",
                                                                "flag3",
                                                                "flag4",
                                                                "flag5",
                                                                "flag6",
                                                                "flag7",
                                                                "flag8",
                                                                "skill",
                                                                "skill1",
                                                                "skill2",
                                                                "skill3",
                                                                "skill4",
                                                                "skill5",
                                                                "skill6",
                                                                "skill7",
                                                                "skill8",
                                                                "skill9",
                                                                "skill10",
                                                                "skill11",
                                                                "skill12",
                                                                "skill13",
                                                                "skill14",
                                                                "skill15",
                                                                "skill16",
                                                                "skill17",
                                                                "skill18",
                                                                "skill19",
                                                                "skill20",
                                                                "behavior",
                                                                "cmp_edit"};

// Of a script's header and of comments above functions: no markup, and no slips either.
constexpr std::string_view kHeaderWords[] = {"class",  "data",  "enginereq", "endheader", "function",
                                             "idcode", "needs", "note",      "prefix",    "type"};
// Words of ordinary comments that are near to a keyword.
constexpr std::string_view kOrdinaryWords[] = {"tile", "mage"};

constexpr size_t kLongest = 16;

// A word packed: those of one length that are the same have the same key. The two halves overlap in words that don't
// fill them.
struct WordKey {
    std::uint64_t front = 0, back = 0;

    bool operator==(const WordKey&) const = default;
};

template <size_t Bytes>
constexpr std::uint64_t bytesAt(const char* at) {
    std::uint64_t bytes = 0;
    if (std::is_constant_evaluated()) {
        for (size_t i = 0; i < Bytes; ++i) {
            bytes |= std::uint64_t{static_cast<unsigned char>(at[i])} << (8 * i);
        }
    } else {
        static_assert(std::endian::native == std::endian::little);
        std::memcpy(&bytes, at, Bytes);
    }
    return bytes;
}

// Of 2 to kLongest characters, letters as they are.
constexpr WordKey packed(const char* word, size_t length) {
    if (length < 4) {
        return {bytesAt<2>(word), bytesAt<2>(word + length - 2)};
    }
    if (length < 8) {
        return {bytesAt<4>(word), bytesAt<4>(word + length - 4)};
    }
    return {bytesAt<8>(word), bytesAt<8>(word + length - 8)};
}

constexpr WordKey folded(const WordKey& key) {
    return {foldCase(key.front), foldCase(key.back)};
}

struct Keyword {
    WordKey key;
    size_t length = 0;
};

constexpr auto kKeywords = [] {
    std::array<Keyword, kKeywordCount> keywords{};
    for (size_t i = 0; i < kNames.size(); ++i) {
        const std::string_view name = kNames[i];
        keywords[i] = {folded(packed(name.data(), name.size())), name.size()};
    }
    return keywords;
}();

constexpr std::uint8_t kFree = 0xFF;

// Of a word in whatever case: the bit in which the case of letters differs is set in all.
constexpr size_t slotOf(const WordKey& key, size_t length) {
    constexpr std::uint64_t caseBits = 0x2020202020202020;
    return (((key.front | caseBits) ^ (key.back | caseBits) << 5) * 0x9E3779B97F4A7C15 >> 57 ^ length) & 127u;
}

// Places in the table above; words that meet stand in the slots that follow.
constexpr auto kSlots = [] {
    std::array<std::uint8_t, 128> slots{};
    slots.fill(kFree);
    for (size_t i = 0; i < kKeywords.size(); ++i) {
        size_t slot = slotOf(kKeywords[i].key, kKeywords[i].length);
        while (slots[slot] != kFree) {
            slot = (slot + 1) & 127u;
        }
        slots[slot] = static_cast<std::uint8_t>(i);
    }
    return slots;
}();

// At most one edit apart, letters compared without their case.
bool oneSlipApart(std::string_view a, std::string_view b) {
    if (a.size() > b.size()) {
        std::swap(a, b);
    }
    if (b.size() - a.size() > 1) {
        return false;
    }
    size_t same = 0;
    while (same < a.size() && foldCase(a[same]) == foldCase(b[same])) {
        ++same;
    }
    a.remove_prefix(same);
    b.remove_prefix(same);
    if (a.size() < b.size()) {
        return equalNoCase(a, b.substr(1));
    }
    if (a.empty()) {
        return true;
    }
    if (equalNoCase(a.substr(1), b.substr(1))) {
        return true;
    }
    return a.size() > 1 && foldCase(a[0]) == foldCase(b[1]) && foldCase(a[1]) == foldCase(b[0]) &&
           equalNoCase(a.substr(2), b.substr(2));
}

// In whatever order.
bool sameLetters(std::string_view a, std::string_view b) {
    std::string one = lowered(a), other = lowered(b);
    std::ranges::sort(one);
    std::ranges::sort(other);
    return one == other;
}

}  // namespace

int LookupCustomKeyword(const char* word, size_t length) {
    if (length < 2 || length > kLongest) {
        return kNoKeyword;
    }
    const WordKey given = packed(word, length), key = folded(given);
    for (size_t slot = slotOf(given, length); kSlots[slot] != kFree; slot = (slot + 1) & 127u) {
        const Keyword& keyword = kKeywords[kSlots[slot]];
        if (keyword.length == length && keyword.key == key) {
            return kSlots[slot];
        }
    }
    return kNoKeyword;
}

std::string_view numberedKeyword(std::string_view word) {
    for (const std::string_view name : {"skill", "flag"}) {
        if (word.size() > name.size() && equalNoCase(word.substr(0, name.size()), name) &&
            isDigits(word.substr(name.size()))) {
            return name;
        }
    }
    return {};
}

const char* customKeywordName(int keyword) {
    return kNames[static_cast<size_t>(keyword)].data();
}

int nearCustomKeyword(std::string_view word) {
    if (word.size() < 3 || word.size() > kLongest + 1 || LookupCustomKeyword(word) >= 0) {
        return kNoKeyword;
    }
    for (const std::string_view known : kHeaderWords) {
        if (equalNoCase(word, known)) {
            return kNoKeyword;
        }
    }
    for (const std::string_view ordinary : kOrdinaryWords) {
        if (equalNoCase(word, ordinary)) {
            return kNoKeyword;
        }
    }
    constexpr size_t kShort =
        4;  // so many letters, one of them another one, are a word of its own: "next", "test"
    for (int i = 0; i < kKeywordCount; ++i) {
        const std::string_view name = kNames[static_cast<size_t>(i)];
        if (name.size() < 3 || !oneSlipApart(word, name)) {
            continue;
        }
        const bool plural = word.size() == name.size() + 1 && foldCase(word.back()) == 's' &&
                            name.back() != 'y' && equalNoCase(word.substr(0, name.size()), name);
        const bool otherWord =
            word.size() == name.size() && name.size() <= kShort && !sameLetters(word, name);
        if (!plural && !otherWord) {
            return i;
        }
    }
    return kNoKeyword;
}

}  // namespace zoka
