// Writing a file so that a crash, a full disk or a refused access leaves the old content or the new one.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "util/Outcome.h"

namespace zoka {

// The reason has the file's name; the old content is then untouched, unless it says where else that or the new one
// lies.
struct SafeWriteResult : Outcome {
    // Of several files, how many have their new content: always the first ones.
    size_t written = 0;
    // Nothing was written because a file held something else than FileContent::expected: whoever changes it
    // reads it again and starts anew.
    bool changedMeanwhile = false;
};

enum class FileKind {
    Named,      // the user named it: where it is a link, the file that the link leads to is written
    Generated,  // made by the program (value files, catalogues, pages, copies, reports): a link is refused
};

struct FileContent {
    std::string path;
    std::string_view bytes = {};
    FileKind kind = FileKind::Named;
    // What the file was when it was read and must still be when it is replaced. The file's lock (see
    // FileLock) is held from the look to the replacing.
    std::optional<std::string_view> expected = std::nullopt;
    // The file whose mode and access rights a new file gets; empty: those of any new file. An existing one
    // keeps its own.
    std::string like = {};
    // Where set, makes the content in the place of `bytes`: once the files in front are written, so that it takes its
    // time while the disk takes its own.
    std::function<std::string()> made = {};
    // False for one of many that are made again just as well: the disk is not waited for, so a power failure may leave
    // it cut or empty, though nothing else can.
    bool flushed = true;
};

// Gives the file `path` the content `bytes`; makes it when it doesn't exist (its folder must). What can't be
// opened for writing is refused before anything happens. The new content goes into a sibling file, which has
// the target's mode from its first byte and takes the target's place in one step; mode, attributes and access
// rights stay. Where the folder gives no permission for a sibling, the file is written in place if InPlace
// allows it, and put back when that fails; where a sibling can't be made for another reason (no room, too
// long a path) nothing is written. No other file is left behind. All disk access is through osFiles();
// `bytes` may come from the very file. [any thread]
SafeWriteResult safeWrite(const std::string& path, std::string_view bytes, FileKind kind = FileKind::Named);

// The same for several files, each in its turn: the first that can't be written ends it, and those behind it
// stay as they are. Faster than one after the other, because the disk is waited for once: all siblings are
// written, then flushed, then put into place, and each folder is flushed a single time. Hence the files in
// front may be there already when the power fails. No path may stand there twice.
SafeWriteResult safeWrite(std::span<const FileContent> files);

// What becomes of an existing file whose folder gives no permission for a sibling: a crash in the middle of
// writing in place damages the file.
enum class InPlace { Ask, Allowed, Refused };
// For the whole process; Ask at first, which asks the userPrompt(). Set at start.
void setInPlace(InPlace choice);

}  // namespace zoka
