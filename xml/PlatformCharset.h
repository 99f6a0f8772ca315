// The platform's 8-bit character set: the ANSI code page on Windows, Windows-1252 elsewhere. Internal to this
// folder.
#pragma once

#include <string>
#include <string_view>

namespace zoka {

// 256 flags, by byte: whether it begins a two-byte character. Null where none does.
const bool* platformLeadBytes();
// Appends the text in the platform's set; false, with `out` as it was, when a character is not in it.
// Characters are never split between two calls.
bool appendPlatform(std::string& out, std::u16string_view text);
// Appends the text in UTF-16; bytes that mean nothing in the platform's set become U+FFFD.
void appendUtf16(std::u16string& out, std::string_view platformText);

}  // namespace zoka
