// A modal window with a text to read and to copy: a report, a list of changes or of findings.
#pragma once

#include <windows.h>

#include <string>

namespace zoka {

enum class TextLook { Plain, FixedWidth };

// Returns when the user has closed the window; `owner` takes no input meanwhile. `heading` says above the text
// what it is; lines of `text` end in CR LF. [thread of `owner`]
void showTextWindow(HWND owner, const std::string& title, const std::string& heading, const std::string& text,
                    TextLook look = TextLook::Plain);

}  // namespace zoka
