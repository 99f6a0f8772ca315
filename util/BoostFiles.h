// What Boost.Filesystem does for the disk, in both builds. Internal to this folder: OsFiles is the door.
#pragma once

#include <string>
#include <vector>

#include "util/OsFiles.h"

namespace zoka {

// Paths are the system's own. Each gives 0 or the system's number of the error, and never throws. What they do
// stands at the operations of the same names in OsFiles.

int boostKindOf(const std::string& path, OsKind& kind);
int boostListFolder(const std::string& folder, std::vector<OsListed>& entries);
int boostMakeFolders(const std::string& path);
// Nothing stands at `to`, as far as the caller knows. The copy's mode is the source's.
int boostCopyNew(const std::string& from, const std::string& to);

}  // namespace zoka
