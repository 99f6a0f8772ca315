// Names compared without regard to case. Internal to this folder.
//
// Every name in a tree carries a key: its first eight bytes with A to Z folded to lower case, the first one
// lowest, zeros where the name is shorter. A name that doesn't match is told by one compare; a name of up to
// seven bytes that does, too.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "util/Fold.h"
#include "xml/XMLEncoding.h"

namespace zoka {

// 256 flags, by byte: whether it begins a two-byte character in a tree's character set; the byte behind it belongs
// to it, whatever it looks like. Null where the set has none.
using XMLLeads = const bool*;

// Those of the platform's set. Fixed but for tests.
extern XMLLeads g_xmlPlatformLeads;
inline XMLLeads xmlLeads(XMLCharset charset) {
    return charset == XMLCharset::Platform ? g_xmlPlatformLeads : nullptr;
}

// Length of the character at `p`, which is not the terminator, in the platform's set.
inline unsigned platformCharacter(const char* p, XMLLeads leads) {
    return leads && leads[static_cast<unsigned char>(*p)] && p[1] ? 2 : 1;
}

// The forms for sets with two-byte characters; `length` as below.
std::uint64_t xmlNameKeyWithLeads(const char* name, size_t length, XMLLeads leads);

// The key of a 0-terminated name.
inline std::uint64_t xmlNameKey(const char* name, XMLLeads leads) {
    if (leads) {
        return xmlNameKeyWithLeads(name, SIZE_MAX, leads);
    }
    std::uint64_t bytes = 0;
    for (unsigned i = 0; i < 64 && *name; i += 8) {
        bytes |= std::uint64_t{static_cast<unsigned char>(*name++)} << i;
    }
    return foldCase(bytes);
}

// The same of a name of `length` bytes in a text that may be read eight bytes from its start.
inline std::uint64_t xmlNameKey(const char* name, size_t length, XMLLeads leads) {
    if (leads) {
        return xmlNameKeyWithLeads(name, length, leads);
    }
    std::uint64_t bytes = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&bytes, name, 8);
    } else {
        for (unsigned i = 0; i < 8; ++i) {
            bytes |= std::uint64_t{static_cast<unsigned char>(name[i])} << (8 * i);
        }
    }
    if (length < 8) {
        bytes &= (std::uint64_t{1} << (8 * length)) - 1;
    }
    return foldCase(bytes);
}

// Whether two names are equal behind their first eight bytes, which are.
bool xmlSameTail(const char* a, const char* b, XMLLeads leads);

// A name to look for in a tree whose character set has these leads.
struct XMLName {
    XMLName(const char* text, XMLLeads treeLeads)
        : key(xmlNameKey(text, treeLeads)), name(text), leads(treeLeads) {}
    // `otherName` is null for the document node, which no name matches.
    bool matches(std::uint64_t otherKey, const char* otherName) const {
        if (otherKey != key || !otherName) {
            return false;
        }
        if (key >> 56 == 0) {
            return true;
        }
        // Mostly the case is the same too.
        for (const char *a = otherName + 8, *b = name + 8; *a == *b; ++a, ++b) {
            if (*a == 0) {
                return true;
            }
        }
        return xmlSameTail(otherName, name, leads);
    }
    // The same of a name without a key.
    bool matches(const char* otherName) const {
        for (const char *a = otherName, *b = name; *a == *b; ++a, ++b) {
            if (*a == 0) {
                return true;
            }
        }
        return matches(xmlNameKey(otherName, leads), otherName);
    }
    std::uint64_t key;
    const char* name;
    XMLLeads leads;
};

}  // namespace zoka
