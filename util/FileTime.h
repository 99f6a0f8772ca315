// A file's time as the suite counts it, without <windows.h>.
#pragma once

#include <cstdint>

namespace zoka {

// Units of 100 ns since 1601-01-01 00:00 UTC, in two halves: the layout of the Windows FILETIME, so that the
// same eight bytes serve both (win/ sources copy them over).
struct FileTime {
    std::uint32_t dwLowDateTime = 0;
    std::uint32_t dwHighDateTime = 0;

    std::uint64_t ticks() const { return (std::uint64_t{dwHighDateTime} << 32) | dwLowDateTime; }
    static FileTime fromTicks(std::uint64_t ticks) {
        return {static_cast<std::uint32_t>(ticks), static_cast<std::uint32_t>(ticks >> 32)};
    }
    friend bool operator==(const FileTime&, const FileTime&) = default;
};
static_assert(sizeof(FileTime) == 8);

}  // namespace zoka

#ifndef _WIN32
using FILETIME = zoka::FileTime;
#endif
