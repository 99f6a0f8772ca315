// Names that the system keeps for its devices.
#pragma once

#include <string_view>

namespace zoka {

// Whether the system takes a file's or folder's name for a device, which it does in every folder and whatever
// extension it has: "con", "aux.kez", "nul .txt". `name` has no folders in front.
bool isDeviceName(std::string_view name);

}  // namespace zoka
