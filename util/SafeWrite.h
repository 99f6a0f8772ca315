// Writing a file so that a crash, a full disk or a refused access leaves the old content or the new one.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace zoka {

struct SafeWriteResult {
    // Empty when the new content is in place. Otherwise what went wrong, with the file's name, in words for
    // the user; the old content is then untouched, unless the text says where else it or the new one lies.
    std::string error;
    // Of several files, how many have their new content: always the first ones.
    size_t written = 0;

    explicit operator bool() const { return error.empty(); }
};

// Gives the file `path` the content `bytes`; makes it when it doesn't exist (its folder must). What can't be
// opened for writing is refused before anything happens. The new content goes into a sibling file, which
// takes the target's place in one step; mode and attributes stay, and a link's target is what's written.
// Where the folder takes no sibling, the file is written in place, and put back when that fails. No other
// file is left behind. All disk access is through osFiles(); `bytes` may come from the very file.
SafeWriteResult safeWrite(const std::string& path, std::string_view bytes);

struct FileContent {
    std::string path;
    std::string_view bytes;
};
// The same for several files, each in its turn: the first that can't be written ends it, and those behind it
// stay as they are. Faster than one after the other, because the disk is waited for once: all siblings are
// written, then flushed, then put into place, and each folder is flushed a single time. Hence the files in
// front may be there already when the power fails. No path may stand there twice.
SafeWriteResult safeWrite(std::span<const FileContent> files);

}  // namespace zoka
