// A slow disk, one that does not answer and a full one for a plug-in.
#pragma once

#include <windows.h>

#include <string>

namespace zoka {

// The plug-in, which stays loaded, is led through functions of the editor where it calls the system's for files: others
// than its own calls notice nothing. `part` is the part of a path (in the case given) whose operations are meant; one
// for each of the three in the process. [driver's thread]

// From now on each operation on such a path takes that many milliseconds longer; 0 is as fast as ever.
void slowDisk(HMODULE plugin, const std::string& part, unsigned ms);

// From now on each operation on such a path, which is not empty, waits until releaseDisk(). What slowDisk() adds comes
// then.
void holdDisk(HMODULE plugin, const std::string& part);
void releaseDisk();

// After that many operations that take room (making files and folders, writing, copying, moving) each further one on
// such a path fails as on a full disk, half of what is written being there. Empty `part`: there is room again.
void fillDisk(HMODULE plugin, const std::string& part, unsigned operations);

}  // namespace zoka
