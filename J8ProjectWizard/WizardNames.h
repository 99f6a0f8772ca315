// Which names a wizard may use for files and folders. A wizard is a file that may come from anywhere.
#pragma once

#include <string>
#include <string_view>

namespace zoka {

// Why a name, with folders in front of it or not, is not used: it leads out of the folder that it belongs to
// (upwards, to a drive, to a server), means a device or a stream of a file, or is none that the system would
// keep as it is. In words that go on after the name: "leads out of its folder". Empty when nothing is wrong;
// "." and ".\" are fine.
std::string nameRefusal(std::string_view name);
// The same for a file's name: "maps\" and "." name none.
std::string fileNameRefusal(std::string_view name);
// The same for a name that may have no folders in front, as the user types it.
std::string plainNameRefusal(std::string_view name);

// The longest path that the system and the editor take, in bytes.
inline constexpr size_t kLongestPath = 259;
// The longest path of a level's map, without its extension, that the editor opens.
inline constexpr size_t kLongestMapPath = 256;

}  // namespace zoka
