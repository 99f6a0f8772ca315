// Pictures of what stands on the screen.
#pragma once

#include <windows.h>

#include <string>

#include "util/Outcome.h"

namespace zoka {

// The part of the screen that holds all visible windows of this process.
RECT windowsArea();
RECT screenArea();

// Writes that part of the screen as a PNG, once two looks at it in a row are the same (that is: once
// everything is drawn), or after `patience` ms.
Outcome takePicture(const RECT& area, const std::string& path, unsigned patience);

}  // namespace zoka
