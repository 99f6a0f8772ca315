// What a run of creation made, so that it can be taken back.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "util/FileTime.h"

namespace zoka {

class CreationRecord {
public:
    // Makes a folder with those that it lies in and notes the new ones; true when it is there afterwards.
    bool makeFolders(const std::string& path);
    // Makes one folder; false when it exists already.
    bool makeNewFolder(const std::string& path);
    // Notes a file that was just made, or written anew.
    void fileMade(const std::string& path);

    size_t folders() const { return m_folders.size(); }
    size_t files() const { return m_files.size(); }
    bool isEmpty() const { return m_folders.empty() && m_files.empty(); }
    // Deletes the files that are as they were noted, then the folders that hold nothing any more, and forgets
    // all. Gives what is left, because it was changed or could not be deleted: full paths.
    std::vector<std::string> remove();

private:
    struct File {
        std::string path;
        std::uint64_t size;
        FileTime time;
    };
    std::vector<std::string> m_folders;  // each behind the one that it lies in
    std::vector<File> m_files;
};

}  // namespace zoka
