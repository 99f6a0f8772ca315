// Names compared without regard to case. Internal to this folder.
//
// Every name in a tree carries a key: its first eight bytes with A to Z folded to lower case, the first one
// lowest, zeros where the name is shorter. A name that doesn't match is told by one compare; a name of up to
// seven bytes that does, too.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "xml/XMLEncoding.h"

namespace zoka {

// Bytes that begin a two-byte character in the process's character set: the trail byte is never folded. Null
// where the set has none.
const bool* xmlLeadBytes();

// The key of a 0-terminated name.
std::uint64_t xmlNameKey(const char* name);
// The same of a name of `length` bytes in a text that may be read eight bytes from its start.
std::uint64_t xmlNameKey(const char* name, std::size_t length);
// Whether two names are equal behind their first eight bytes, which are.
bool xmlSameTail(const char* a, const char* b);

// A name to look for.
struct XMLName {
    explicit XMLName(const char* text) : key(xmlNameKey(text)), name(text) {}
    // `otherName` is null for the document node, which no name matches.
    bool matches(std::uint64_t otherKey, const char* otherName) const {
        if (otherKey != key || !otherName) return false;
        return key >> 56 == 0 || xmlSameTail(otherName, name);
    }
    std::uint64_t key;
    const char* name;
};

}  // namespace zoka
