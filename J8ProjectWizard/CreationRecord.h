// What a run of creation made, so that it can be taken back.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "util/FileTime.h"
#include "util/JobProgress.h"

namespace zoka {

class CreationRecord {
public:
    // Makes a folder with those that it lies in and notes the new ones; true when it is there afterwards.
    bool makeFolders(const std::string& path);
    // The same for a folder that must not be there: false when it is, also where another program was quicker.
    bool makeNewFolder(const std::string& path);
    // Copies a file to a new one; false when that fails, which is noted, too.
    bool copyFile(const std::string& from, const std::string& to);
    // Notes a file that was written, anew or for the first time.
    void fileWritten(const std::string& path);

    size_t folders() const { return m_folders.size(); }
    size_t files() const { return m_files.size(); }
    // Targets that could not be copied to.
    const std::vector<std::string>& failedCopies() const { return m_failed; }
    bool isEmpty() const { return m_folders.empty() && m_files.empty(); }
    // What is left, because it was changed or could not be deleted, or because the user stopped it: full paths.
    struct Removal {
        std::vector<std::string> left;
        bool isStopped = false;
    };
    // Deletes the files that are as they were noted, then the folders that hold nothing any more, and forgets
    // all. Stops between two files.
    Removal remove(JobProgress* progress = nullptr);

private:
    struct File {
        std::string path;
        std::uint64_t size;
        FileTime time;
    };
    std::vector<std::string> m_folders;  // each behind the one that it lies in
    std::vector<File> m_files;
    std::vector<std::string> m_failed;
};

}  // namespace zoka
