// From tree to text. Internal to this folder.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "xml/XMLTree.h"

namespace zoka {

struct XMLFree {
    void operator()(char* text) const { std::free(text); }
};

struct XMLText {
    std::unique_ptr<char, XMLFree> bytes;  // 0-terminated; null when memory ran out
    size_t length = 0;
};

// The subtree of `top` as text in the tree's character set. With `declaredEncoding` not null, that stands
// in the place of the encoding that a declaration in the tree names. Uses no recursion.
XMLText writeXml(const XMLElement* top, bool formatted, const char* declaredEncoding = nullptr);

}  // namespace zoka
