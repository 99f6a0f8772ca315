// The character sets that texts of a panel are in: those of the files that they come from.
#pragma once

#include <string>
#include <string_view>

#include "util/Outcome.h"

namespace zoka {

enum class TextSet : unsigned char {
    System,  // the system's 8-bit set
    Utf8,
};

// The set of a file's bytes: UTF-8 with that mark, or where there are characters beyond ASCII and all of them are
// valid. A file of ASCII alone is in the system's set, as the editor's own texts are. Linear. [any thread]
TextSet textSetOf(const std::string& bytes);

// `text` in another set; refused, in UTF-8, where that lacks a character.
Result<std::string> convertText(std::string_view text, TextSet from, TextSet to);
// In UTF-8, whatever it holds.
std::string utf8Text(std::string_view text, TextSet set);
// Whether the bytes are a text of that set.
bool isWritten(std::string_view text, TextSet set);
// The text's first bytes, at most so many; no character of UTF-8 is cut.
std::string_view beginningOf(std::string_view text, size_t bytes);
// How many characters a text has.
size_t characterCount(std::string_view text, TextSet set);

// In UTF-8, with letters in their small form: Latin, Greek and Cyrillic ones, with and without accents. For searching
// and comparing names without regard to case.
std::string foldedText(std::string_view text, TextSet set);

}  // namespace zoka
