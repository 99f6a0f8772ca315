// The character sets of XML texts in memory, and which one a file is in.
#pragma once

#include <cstddef>
#include <string_view>

// Utf8: texts are UTF-8 and checked as such. Platform: the platform's 8-bit set (the ANSI code page on
// Windows, Windows-1252 elsewhere); bytes from 80 hex on are taken as characters without a check.
enum class XMLCharset { Utf8, Platform };

namespace zoka {

// The set that a tree gets whose maker names none: Utf8 until set. Each tree keeps the set that it was made with, so
// that threads may read files in different sets at once. [any thread]
XMLCharset xmlCharset();
void setXmlCharset(XMLCharset charset);

// Whether reading a file looks for marks, UTF-16 and what its declaration says. On until switched off. [any thread]
bool xmlCharsetGuessing();
void setXmlCharsetGuessing(bool on);

inline constexpr size_t kXmlGuessBytes = 200;
// Whether a file is UTF-8, by its first 200 bytes: false for less than 25 bytes, UTF-16, broken UTF-8 or a
// declared encoding that does not begin with utf-8 or utf8; true with a mark and for everything else.
bool guessUtf8(std::string_view bytes);

}  // namespace zoka
