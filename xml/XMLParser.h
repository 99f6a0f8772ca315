// From text to tree. Internal to this folder.
#pragma once

#include <cstddef>
#include <functional>

#include "xml/XMLNode.h"
#include "xml/XMLTree.h"

namespace zoka {

// Parses `size` bytes at `text`, which lie in the document's text buffer (followed by a 0 and the padding) in
// the document's character set, into the document node `root`. Returns the top element, or null on an error.
// `results` is filled with the first error's code and place; with `tag` given and another name at the top
// that is code 13. Stopped by `watch`: null with code 0. Throws std::bad_alloc. Uses no recursion.
// `take`, where not null, is called with each child of the top element as soon as it is read; when it gives true the
// child is taken out of the tree.
using XMLTakeElement = std::function<bool(XMLElement*)>;
XMLElement* parseXml(XMLDocument& document, XMLElement* root, char* text, size_t size, const char* tag,
                     XMLResults& results, const XMLProgress& watch, const XMLTakeElement& take);

}  // namespace zoka
