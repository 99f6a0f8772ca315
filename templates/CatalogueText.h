// Writes the catalogue's file: literal text, and deliberately not the other direction of reading. Prefix, note,
// section pictures and editions are written for people but not read back, and characters that mean something in
// XML are replaced, not escaped.
#pragma once

#include <string>
#include <string_view>

#include "templates/TemplateData.h"

namespace zoka {

// The bytes of the catalogue file, with the line ends "\n". `date` is what stands as its date.
std::string catalogueText(const CTemplateData& catalogue, const std::string& date);

// Double quotes become single ones, '<' and '>' become '[' and ']', '&' becomes "and". Characters that XML can't hold,
// which would make readers refuse the file, are dropped.
std::string withoutMarkup(std::string_view text);
// How many bytes withoutMarkup drops at the beginning of a text that isn't empty: those of a control character, or of
// one of the two that UTF-8 can write and no document holds; else 0.
size_t droppedBytes(std::string_view text);

// The text as a file opened in text mode would hold it: each LF as the platform's line end, CR LF on Windows.
// A CR LF in the text counts as one line end.
std::string inTextMode(std::string_view text);

}  // namespace zoka
