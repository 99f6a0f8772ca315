// What a failed parse tells the user: where, and in which words.
#pragma once

#include <string>
#include <string_view>

#include "xml/XMLRead.h"

namespace zoka {

// Where in the file the error is: its first place where none can be named, and nowhere in a file that wasn't read.
XMLPlace xmlErrorPlace(const XMLResults& results);
// The error in words; where memory ran out, they name `file`. `root` is the top element that was asked for, empty where
// it is not to be told.
std::string xmlErrorMessage(const XMLResults& results, std::string_view root, std::string_view file);

}  // namespace zoka
