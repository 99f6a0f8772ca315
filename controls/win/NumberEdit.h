// Edit fields that take numbers only.
#pragma once

#include <windows.h>

namespace zoka {

// Registers "ZT_IntEdit" and "ZT_FloatEdit": the system's edit field without any other characters than those
// of a number, typed or pasted. What is refused is told to the parent with kFieldRefused.
void registerNumberEdits(HINSTANCE instance);

}  // namespace zoka
