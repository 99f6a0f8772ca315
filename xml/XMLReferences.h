// Character references, and values and texts decoded in place. Internal to this folder.
#pragma once

namespace zoka {

// Past the reference whose '&' is at `p`; its character goes to `c`. Null when it is none of the five and no
// reference to a character that XML allows.
char* xmlReference(char* p, char32_t& c);

// Whether the platform's character set has the character.
bool xmlPlatformHas(char32_t c);

struct XMLDecodedRange {
    char* end;             // behind the last character
    char* afterReference;  // behind the last character that came from a reference; the start when none did
};
// Decodes the bytes from `first` to `last`, which the parser has checked: references become their characters,
// CR LF and CR become LF; in an attribute value white space becomes a blank. The result is never longer; no 0
// is put.
// `utf8`: they are UTF-8, otherwise in the platform's set.
XMLDecodedRange xmlDecode(char* first, char* last, bool isValue, bool utf8);

}  // namespace zoka
