// What is kept beside a file for its user: numbered copies of it, made before something else takes its place
// ("fog.kez.1.bak"), and what it could not take.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "util/Outcome.h"

namespace zoka {

// Of the file beside a script or a project, added to its full name, with what the user typed and it could not take:
// values that an update has no place for (in the form of a value file, where a later one takes the place of an earlier
// one of its id), edits of a project that could not be saved (in UTF-8, a line for each, later ones added).
inline constexpr const char* kLeftOverEnding = ".zoka.old";

// How many copies of one file are kept; the oldest ones make room.
inline constexpr size_t kMostBackups = 10;

// Keeps `bytes`, what the file at `path` holds or held, in "PATH.N.bak", where N is one above the highest
// number there. When the newest copy holds these bytes already, it is the copy. A copy that can't be deleted
// to make room stays. A file that can't be written gets none, since nothing will take its place: the reason says so.
// The path of the copy that holds the bytes.
Result<std::string> keepBackup(const std::string& path, std::string_view bytes);

}  // namespace zoka
