// Numbered copies of a file, kept beside it before something else takes its place: "fog.kez.1.bak".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "util/Outcome.h"

namespace zoka {

// How many copies of one file are kept; the oldest ones make room.
inline constexpr size_t kMostBackups = 10;

// Keeps `bytes`, what the file at `path` holds or held, in "PATH.N.bak", where N is one above the highest
// number there. When the newest copy holds these bytes already, it is the copy. A copy that can't be deleted
// to make room stays. A file that can't be written gets none, since nothing will take its place: the reason says so. The
// path of the copy that holds the bytes.
Result<std::string> keepBackup(const std::string& path, std::string_view bytes);

}  // namespace zoka
