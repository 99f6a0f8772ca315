// What a user can do about a failure of the disk: said behind the system's words for it, where there is something to do
// that they leave open.
#pragma once

namespace zoka {

inline constexpr const char* kNoRoomRemedy = "; make room and try again";
inline constexpr const char* kInUseRemedy = "; close the program that uses it and try again";

}  // namespace zoka
