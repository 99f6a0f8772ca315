#include "xml/XMLNames.h"

#include "xml/PlatformCharset.h"

namespace zoka {
namespace {

unsigned char fold(unsigned char c) {
    return static_cast<unsigned char>(foldCase(static_cast<char>(c)));
}

}  // namespace

XMLLeads g_xmlPlatformLeads = platformLeadBytes();

std::uint64_t xmlNameKeyWithLeads(const char* name, size_t length, XMLLeads leads) {
    std::uint64_t key = 0;
    bool trail = false;
    for (size_t i = 0; i < 8 && i < length && name[i]; ++i) {
        const auto c = static_cast<unsigned char>(name[i]);
        key |= std::uint64_t{trail ? c : fold(c)} << (8 * i);
        trail = !trail && leads[c];
    }
    return key;
}

bool xmlSameTail(const char* a, const char* b, XMLLeads leads) {
    // Whether the ninth byte is a trail byte follows from the first eight alone.
    bool trail = false;
    if (leads) {
        for (int i = 0; i < 8; ++i) {
            trail = !trail && leads[static_cast<unsigned char>(a[i])];
        }
    }
    for (a += 8, b += 8;; ++a, ++b) {
        const auto x = static_cast<unsigned char>(*a), y = static_cast<unsigned char>(*b);
        if (x != y && (trail || fold(x) != fold(y))) {
            return false;
        }
        if (x == 0) {
            return true;
        }
        trail = leads && !trail && leads[x];
    }
}

}  // namespace zoka
