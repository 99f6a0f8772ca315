// The disk, as the logic sees it. Tests put a fake in its place that fails the N-th operation.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "util/FileTime.h"

namespace zoka {

// What a search finds. `name` is the entry's own name without its folder, spelled as on the disk.
struct OsEntry {
    std::string name;
    bool isFolder = false;
    FileTime lastWrite;
    std::uint64_t size = 0;

    bool operator==(const OsEntry&) const = default;
};

// What a path names, links followed.
enum class OsKind {
    Missing,
    File,
    Folder,
    Other,    // a device, a pipe, a link to nowhere
    Unknown,  // the system does not say: lastError tells why
};

// An entry of a folder.
struct OsListed {
    std::string name;
    OsKind kind = OsKind::Unknown;
};

// A file open for writing, unbuffered. Its destructor closes it silently; whoever wants to know whether the
// bytes arrived calls flush and close. False means the operation failed, and OsFiles::lastError says why.
class OsOutFile {
public:
    virtual ~OsOutFile() = default;
    // Writes all of `bytes` at the current position. After a failure any part of them may have been written.
    virtual bool write(std::string_view bytes) = 0;
    // Back to the first byte.
    virtual bool rewind() = 0;
    // Ends the file at the current position.
    virtual bool cutHere() = 0;
    // The disk may begin with the bytes written so far, so that a flush() to come waits for less. Can't fail.
    virtual void startFlush() {}
    // Returns when the bytes are on the disk.
    virtual bool flush() = 0;
    virtual bool close() = 0;
};

enum class OsOpen {
    Existing,  // the file must exist and keeps its content; the position is 0
    New,       // the file must not exist
    Truncate,  // made when missing, emptied otherwise
};

// Why an operation failed, as far as the logic tells reasons apart.
enum class OsFault { NoPermission, NoRoom, InUse, Other };

// A lock file that this process holds; its destructor removes it.
class OsLock {
public:
    virtual ~OsLock() = default;
};
enum class OsLockState {
    Taken,
    TakenOver,   // taken; the lock file was there already, and its holder is gone
    Held,        // another holds it
    Impossible,  // the folder takes no lock file
};

// What a listing left out.
struct OsListing {
    std::string error;                 // why the folder can't be read to its end; else empty
    std::vector<std::string> skipped;  // names that no path of the suite can hold (a backslash in them)
};

// Every path is the suite's own text: 8-bit, backslashes (slashes are understood too), drive letters. On
// Linux it becomes a native path here, at the last moment (see util/posix/NativePath.h). Operations may be
// called on every thread and never throw for a failure of the disk.
class OsFiles {
public:
    virtual ~OsFiles() = default;

    // The first entry that a directory search for `path` finds; the last part may hold wildcards ('*', '?').
    // A path that ends with a separator finds nothing.
    virtual std::optional<OsEntry> search(const std::string& path) = 0;
    // All entries that match the wildcard in the pattern's last part, without "." and "..", sorted by name.
    // `left` gets what is missing in them; may be null.
    virtual std::vector<OsEntry> list(const std::string& pattern, OsListing* left = nullptr) = 0;

    // False when the file cannot be opened for reading; otherwise true, with the last-write time in `time`,
    // which stays as it was in the rare case that the time of the open file can't be had. `time` may be null.
    virtual bool readTime(const std::string& path, FileTime* time) = 0;
    // Sets creation, last-access and last-write time (Linux has no creation time to set). False when the file
    // cannot be opened for writing.
    virtual bool setTimes(const std::string& path, FileTime time) = 0;

    // The process's current folder, with its drive and without a trailing backslash (but "C:\" for a root);
    // empty when it was removed.
    virtual std::string currentFolder() = 0;
    virtual bool setCurrentFolder(const std::string& path) = 0;
    // The absolute form with "." and ".." resolved by text; the entry need not exist. A relative path stays
    // as it is when there is no current folder any more.
    virtual std::string fullPath(const std::string& path) = 0;

    virtual OsKind kindOf(const std::string& path) = 0;
    // Appends a folder's entries in the order in which the system gives them; false when it can't be read, or
    // not to its end.
    virtual bool listFolder(const std::string& path, std::vector<OsListed>& entries) = 0;

    // Makes a folder and those that it lies in; true when it is there afterwards, also when it was before.
    virtual bool makeFolders(const std::string& path) = 0;
    // Copies a file's content to a new file, which is writable whatever the source is: that file's entry. Nothing when
    // something of that name exists, which stays as it is, and when a part could not be copied; no half of a copy is
    // left.
    virtual std::optional<OsEntry> copyNew(const std::string& from, const std::string& to) = 0;
    // False when the folder could not be made, also when it exists already.
    virtual bool makeFolder(const std::string& path) = 0;
    virtual bool deleteFile(const std::string& path) = 0;
    // Removes an empty folder.
    virtual bool deleteFolder(const std::string& path) = 0;

    // fopen with the suite's path. Folders, pipes and sockets can't be opened, nor devices on Linux. The
    // caller closes the stream.
    virtual std::FILE* openStream(const std::string& path, const char* mode) = 0;
    // The whole content of a regular file; nothing when it can't be read or has 2 GiB or more.
    virtual std::optional<std::string> readWhole(const std::string& path) = 0;
    // Whether such a file's content is these bytes; nothing when it can't be read. Takes no memory for a second copy.
    virtual std::optional<bool> holds(const std::string& path, std::string_view bytes) = 0;
    static constexpr size_t kComparedAtOnce = 1 << 16;
    // Null when it can't be opened that way.
    virtual std::unique_ptr<OsOutFile> openForWriting(const std::string& path, OsOpen how) = 0;

    // Makes a new file, open for writing, whose mode, owner and access rights are those of the file `like` before
    // the first byte is in it; those of any new file when `like` is empty. Nobody else uses its name. Null when it
    // can't be made.
    virtual std::unique_ptr<OsOutFile> openSibling(const std::string& path, const std::string& like) = 0;
    // Deletes a file that openSibling or tryLock has made, unless the program that made it still works on it.
    virtual void deleteAbandoned(const std::string& path) = 0;
    // Makes and holds a lock file, without waiting. Null for Held and Impossible. The lock ends with its process,
    // however that ends.
    virtual std::unique_ptr<OsLock> tryLock(const std::string& path, OsLockState& state) = 0;

    // True for a symbolic link (or another reparse point), wherever it leads.
    virtual bool isLink(const std::string& path) = 0;
    // The file that a link leads to, as an absolute path; for anything else the absolute path itself. Nothing
    // when the links run in a circle or can't be read.
    virtual std::optional<std::string> resolveLinks(const std::string& path) = 0;
    // Puts `replacement` into the place of the existing file `target`, in one step that a crash can't cut:
    // whoever looks sees the old or the new content. The target's mode, attributes and (on Windows) creation
    // time stay. Both are absolute paths in the same folder. After a failure both files are as they were.
    virtual bool replaceFile(const std::string& target, const std::string& replacement) = 0;
    // Renames a file; false when `to` exists.
    virtual bool renameNew(const std::string& from, const std::string& to) = 0;
    // Returns when what was renamed in the folder would outlast a power cut. Where a system can't be told to,
    // or does so by itself, there is nothing to do.
    virtual void flushFolder(const std::string& path) = 0;

    // Why this thread's last operation that failed did so, in the system's words, and what can be done about it.
    virtual std::string lastError() = 0;
    virtual OsFault lastFault() = 0;

    bool exists(const std::string& path) { return search(path).has_value(); }
};

// From now on a signal that ends the program (SIGINT, SIGTERM, SIGHUP; a console's end) removes the temporary
// files that it has at that moment. For programs, not for libraries.
void removeOwnFilesAtSignals();

// The running program's own disk.
OsFiles& systemFiles();
// The disk that the logic uses: systemFiles() until a test puts its fake in. Set while no other thread works;
// not owned; null goes back to systemFiles().
OsFiles& osFiles();
void setOsFiles(OsFiles* files);

}  // namespace zoka
