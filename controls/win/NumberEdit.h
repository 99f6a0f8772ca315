// Edit fields for numbers.
#pragma once

#include <windows.h>

namespace zoka {

// Registers "ZT_IntEdit" and "ZT_FloatEdit": the system's edit field, which takes pasted numbers without the blanks
// around them.
void registerNumberEdits(HINSTANCE instance);

}  // namespace zoka
