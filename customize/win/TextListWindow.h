// A list of lines to read and copy: the changes, the findings, the values without a place.
#pragma once

#include <windows.h>

#include <string>

namespace zoka {

// Modal over `owner`; returns when the user has closed it. `intro` stands above the text. [panel thread]
void showTextList(HWND owner, const std::string& title, const std::string& intro, const std::string& text);

}  // namespace zoka
