// The suite's paths on a system with slashes and one root.
#pragma once

#include <string>
#include <string_view>

namespace zoka {

// A suite path as the native one that the system calls take. A drive letter is dropped: there is one root,
// and it serves as every drive ("C:\a\b" is "/a/b", "C:a" is "a"). Backslashes become slashes. Where that
// name does not exist, each part that isn't there is looked for without regard to case (the first match in
// the order of bytes); parts that are found in no spelling stay as given, for what is yet to be made. In a folder
// of many files, one that another program makes under another spelling may be seen fifty times as late as reading the
// folder takes, 0.2 s at most. [any thread]
std::string toNativePath(std::string_view path);
// The same for a file that is about to be made, one of many perhaps: as few looks at its folder as can be. What another
// program made there under the very same name in the meantime may be missed; making a new file refuses that.
struct FoundPath {
    std::string native;
    bool exists;
};
FoundPath pathForNew(std::string_view path);
// The same for a file that is about to be made under a name of the program's own, which nobody else uses in any
// spelling: only its folder is looked for.
std::string pathForOwn(std::string_view path);
// Drops what is kept of folders that were read. [any thread]
void forgetFolders();
// A path as it is spelled, with slashes, without a look at the disk.
std::string withSlashes(std::string_view path);

// The other way: backslashes, and "C:" in front of a path from the root.
std::string fromNativePath(std::string_view nativePath);

}  // namespace zoka
