// What a user can do about a failure of the disk: said behind the system's words for it, where there is something to do
// that they leave open.
#pragma once

namespace zoka {

inline constexpr const char* kNoRoomRemedy = "; make room and try again";
inline constexpr const char* kInUseRemedy = "; close the program that uses it and try again";
// Systems say the same of a file that may be read alone, of another user's and (Windows) of an open one.
inline constexpr const char* kNoPermissionRemedy =
    "; it may be write-protected, in use by another program, or another user's";

}  // namespace zoka
