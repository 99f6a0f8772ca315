// From tree to text. Internal to this folder.
#pragma once

#include <string_view>

#include "xml/XMLNode.h"
#include "xml/XMLTree.h"

namespace zoka {

// The subtree of `top` as text in the tree's character set, behind `head`. With `declaredEncoding` not null, that
// stands in the place of the encoding that a declaration in the tree names. Uses no recursion.
XMLText writeXml(const XMLElement* top, bool formatted, std::string_view head = {},
                 const char* declaredEncoding = nullptr);
// `head` and `body` in one.
XMLText joinXml(std::string_view head, std::string_view body);

}  // namespace zoka
