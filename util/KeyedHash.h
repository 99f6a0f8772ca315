// Hashing of what comes from files. The hash depends on a random key of the process, so that nobody can write a file
// whose names all fall into one place of a table.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "util/PathRules.h"

namespace zoka {

// SipHash-1-3 of the bytes, with the process's key. The same bytes have another hash in the next run. [any thread]
std::uint64_t keyedHash(std::string_view bytes);
// The same of bytes with A to Z folded to lower case.
std::uint64_t keyedHashNoCase(std::string_view bytes);

// For the tables of the standard library, over texts and numbers.
struct KeyedHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return static_cast<size_t>(keyedHash(text)); }
    size_t operator()(std::integral auto number) const {
        return (*this)(std::string_view(reinterpret_cast<const char*>(&number), sizeof number));
    }
};
// The same where A to Z are their small letters.
struct KeyedHashNoCase {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return static_cast<size_t>(keyedHashNoCase(text)); }
};
struct EqualNoCase {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return equalNoCase(a, b); }
};
template <class Key>
using KeyedSet = std::unordered_set<Key, KeyedHash, std::equal_to<>>;
template <class Key>
using KeyedMultiset = std::unordered_multiset<Key, KeyedHash, std::equal_to<>>;
template <class Key>
using KeyedMultisetNoCase = std::unordered_multiset<Key, KeyedHashNoCase, EqualNoCase>;
template <class Key, class Value>
using KeyedMap = std::unordered_map<Key, Value, KeyedHash, std::equal_to<>>;

}  // namespace zoka
