// A slow disk for a plug-in.
#pragma once

#include <windows.h>

#include <string>

namespace zoka {

// From now on each file operation of the plug-in, which stays loaded, on a path that holds `part` (in the case given)
// takes that many milliseconds longer; 0 is as fast as ever. One path and one delay for the process. The plug-in's
// imports of the system are led through functions of the editor: others than the plug-in's own calls notice nothing.
// [driver's thread]
void slowDisk(HMODULE plugin, const std::string& part, unsigned ms);

}  // namespace zoka
