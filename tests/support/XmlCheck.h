// What must hold of the XML layer for any bytes whatever; shared by the tests and the fuzz target.
#pragma once

#include <string>
#include <string_view>

#include "xml/XMLNode.h"

namespace zoka::test {

// Reads the bytes in both character sets, writes what was read in both forms and reads that again. Gives what
// is wrong, or an empty text.
std::string checkXml(std::string_view bytes);

// Everything that a tree holds, in document order: names, values, texts and clears. Equal trees give equal
// dumps.
std::string dumpXml(const XMLNode& top);

// A tree written, with its length where one asks for it; "<null>" for the empty node.
std::string textOf(const XMLNode& node, bool formatted = false, int* length = nullptr);

}  // namespace zoka::test
