// Numbered copies of a file, kept beside it before something else takes its place: "fog.kez.1.bak".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zoka {

// How many copies of one file are kept; the oldest ones make room.
inline constexpr size_t kMostBackups = 10;

struct BackupResult {
    std::string path;   // of the copy that holds the bytes; empty when there is none
    std::string error;  // why there is none, in words for the user; else empty

    explicit operator bool() const { return error.empty(); }
};

// Keeps `bytes`, what the file at `path` holds or held, in "PATH.N.bak", where N is one above the highest
// number there. When the newest copy holds these bytes already, it is the copy. A copy that can't be deleted
// to make room stays. A file that can't be written gets none, since nothing will take its place: the error says so.
BackupResult keepBackup(const std::string& path, std::string_view bytes);

}  // namespace zoka
