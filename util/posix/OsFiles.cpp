#include "util/OsFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

#include "util/BoostFiles.h"
#include "util/OwnFiles.h"
#include "util/PathRules.h"
#include "util/SystemError.h"
#include "util/posix/NativePath.h"

namespace zoka {
namespace {

constexpr std::uint64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;
constexpr std::int64_t kLastSecond =  // counted from 1970
    static_cast<std::int64_t>(~std::uint64_t{0} / kTicksPerSecond) - 1 - kSecondsFrom1601To1970;
constexpr size_t kMostBytes = 0x7fffffff;  // that a file read whole may have
constexpr int kMostLinks = 40;

// A file system may hold times that the suite can't count: those become its first or last second.
FileTime toFileTime(const timespec& time) {
    const std::int64_t seconds =
        std::clamp<std::int64_t>(time.tv_sec, -kSecondsFrom1601To1970, kLastSecond) + kSecondsFrom1601To1970;
    return FileTime::fromTicks(static_cast<std::uint64_t>(seconds) * kTicksPerSecond +
                               static_cast<std::uint64_t>(time.tv_nsec) / 100);
}

timespec toTimespec(FileTime time) {
    const std::uint64_t ticks = time.ticks();
    return {static_cast<time_t>(static_cast<std::int64_t>(ticks / kTicksPerSecond) - kSecondsFrom1601To1970),
            static_cast<long>(ticks % kTicksPerSecond * 100)};
}

// A file descriptor that closes itself and leaves errno alone, so that a failure's
// reason outlives the cleaning-up.
class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    ~Descriptor() { close(); }
    int get() const { return m_fd; }
    bool isOpen() const { return m_fd >= 0; }
    bool close() {
        const int before = errno;
        const bool closed = m_fd >= 0 && ::close(m_fd) == 0;
        m_fd = -1;
        if (closed) {
            errno = before;
        }
        return closed;
    }

private:
    int m_fd;
};

class PosixOutFile : public OsOutFile {
public:
    explicit PosixOutFile(Descriptor file) : m_file(std::move(file)) {}
    bool write(std::string_view bytes) override {
        while (!bytes.empty()) {
            const ssize_t written = ::write(m_file.get(), bytes.data(), bytes.size());
            if (written > 0) {
                bytes.remove_prefix(static_cast<size_t>(written));
            } else if (written == 0 || errno != EINTR) {
                return false;
            }
        }
        return true;
    }
    bool rewind() override { return lseek(m_file.get(), 0, SEEK_SET) == 0; }
    bool cutHere() override {
        const off_t here = lseek(m_file.get(), 0, SEEK_CUR);
        return here >= 0 && ftruncate(m_file.get(), here) == 0;
    }
    void startFlush() override {
#ifdef SYNC_FILE_RANGE_WRITE
        sync_file_range(m_file.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
#endif
    }
    bool flush() override {
        // What cannot be synchronised (a pipe, some network shares) is as safe as it gets.
        return fsync(m_file.get()) == 0 || errno == EINVAL || errno == EROFS;
    }
    bool close() override {
        return m_file.close();
    }

private:
    Descriptor m_file;
};

// Opens regular files alone. A pipe would wait for another program, a device may never end, and neither can
// be saved: a new file would take its place.
int openFile(const std::string& path, int flags) {
    const std::string native = toNativePath(path);
    struct stat info;
    if (stat(native.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        errno = S_ISDIR(info.st_mode) ? EISDIR : ENOTSUP;
        return -1;
    }
    return open(native.c_str(), flags | O_CLOEXEC, 0666);
}

// What the system lets us copy; the rest is not worth a refusal. Access lists are among them.
void copyExtendedAttributes(int from, int to) {
    const ssize_t size = flistxattr(from, nullptr, 0);
    std::string names(size > 0 ? static_cast<size_t>(size) : 0, '\0');
    const ssize_t used = names.empty() ? 0 : flistxattr(from, names.data(), names.size());
    names.resize(used > 0 ? static_cast<size_t>(used) : 0);
    std::string value;
    for (size_t at = 0; at < names.size();) {
        const char* const name = names.c_str() + at;
        at += std::strlen(name) + 1;
        const ssize_t length = fgetxattr(from, name, nullptr, 0);
        value.resize(length > 0 ? static_cast<size_t>(length) : 0);
        const ssize_t got = length >= 0 ? fgetxattr(from, name, value.data(), value.size()) : -1;
        if (got >= 0) {
            fsetxattr(to, name, value.data(), static_cast<size_t>(got), 0);
        }
    }
}

// Deletes a file that was just made, unless its maker came to the end; takes no memory for it.
class OwnFile {
public:
    explicit OwnFile(const std::string& native) : m_native(&native) {}
    ~OwnFile() {
        if (m_native) {
            const int before = errno;
            unlink(m_native->c_str());
            forgetOwnFile(*m_native);
            errno = before;
        }
    }
    OwnFile(const OwnFile&) = delete;
    OwnFile& operator=(const OwnFile&) = delete;
    void keep() { m_native = nullptr; }

private:
    const std::string* m_native;
};

// Removed while it is held, so that nobody can take a file that is about to go.
class PosixLock : public OsLock {
public:
    PosixLock(Descriptor file, std::string native) : m_file(std::move(file)), m_native(std::move(native)) {}
    PosixLock(const PosixLock&) = delete;
    PosixLock& operator=(const PosixLock&) = delete;
    ~PosixLock() override {
        const int before = errno;
        unlink(m_native.c_str());
        forgetOwnFile(m_native);
        errno = before;
    }

private:
    Descriptor m_file;
    std::string m_native;
};

OsEntry describe(const std::string& name, const struct stat& info) {
    return {name, S_ISDIR(info.st_mode), toFileTime(info.st_mtim), static_cast<std::uint64_t>(info.st_size)};
}

bool statEntry(const std::string& native, struct stat& info) {
    return stat(native.c_str(), &info) == 0 || lstat(native.c_str(), &info) == 0;
}

class PosixFiles : public OsFiles {
public:
    std::optional<OsEntry> search(const std::string& path) override {
        if (path.empty() || isSeparator(path.back())) {
            return std::nullopt;
        }
        if (hasWildcard(fileNameOf(path))) {
            const auto all = matches(path, true);
            return all.empty() ? std::nullopt : std::optional(all.front());
        }
        std::string native = withSlashes(path);
        struct stat info;
        // As few questions as can be about what is there as it is spelled.
        if (stat(native.c_str(), &info) != 0) {
            native = toNativePath(path);
            if (native.empty() || !statEntry(native, info)) {
                return std::nullopt;
            }
        }
        return describe(native.substr(native.rfind('/') + 1), info);
    }

    std::vector<OsEntry> list(const std::string& pattern, OsListing* left) override {
        return matches(pattern, false, left);
    }

    bool readTime(const std::string& path, FileTime* time) override {
        const Descriptor file(openFile(path, O_RDONLY));
        struct stat info;
        if (file.isOpen() && time && fstat(file.get(), &info) == 0) {
            *time = toFileTime(info.st_mtim);
        }
        return file.isOpen();
    }

    bool setTimes(const std::string& path, FileTime time) override {
        const Descriptor file(openFile(path, O_WRONLY));
        if (!file.isOpen()) {
            return false;
        }
        const timespec both[2] = {toTimespec(time), toTimespec(time)};
        futimens(file.get(), both);
        return true;
    }

    std::string currentFolder() override {
        char native[PATH_MAX];
        return getcwd(native, sizeof native) ? fromNativePath(native) : std::string();
    }
    bool setCurrentFolder(const std::string& path) override { return chdir(toNativePath(path).c_str()) == 0; }

    std::string fullPath(const std::string& path) override {
        if (isAbsolute(path)) {
            return normalizePath(path);
        }
        const bool hasDrive = path.size() > 1 && path[1] == ':';
        const std::string drive = hasDrive ? path.substr(0, 2) : "C:";
        const std::string rest = hasDrive ? path.substr(2) : path;
        if (!rest.empty() && isSeparator(rest.front())) {
            return normalizePath(drive + rest);
        }
        const std::string folder = currentFolder();
        // Empty when the current folder was removed: nothing in it can be named then.
        return folder.empty() ? path : normalizePath(joinPath(drive + folder.substr(2), rest));
    }

    OsKind kindOf(const std::string& path) override {
        OsKind kind;
        told(boostKindOf(toNativePath(path), kind));
        return kind;
    }
    bool listFolder(const std::string& path, std::vector<OsListed>& entries) override {
        return told(boostListFolder(toNativePath(path), entries));
    }
    bool makeFolders(const std::string& path) override { return told(boostMakeFolders(toNativePath(path))); }
    std::optional<OsEntry> copyNew(const std::string& from, const std::string& to) override {
        // As few questions as can be: a project of thousands of files is made of these.
        const FoundPath found = pathForNew(to);
        const std::string& target = found.native;
        const auto copied = [&target](const std::string& source) {
            return told(boostCopyNew(source, target));
        };
        if (found.exists) {
            told(EEXIST);
            return std::nullopt;
        }
        struct stat info;
        if ((!copied(withSlashes(from)) && (errno != ENOENT || !copied(toNativePath(from)))) ||
            stat(target.c_str(), &info) != 0) {
            return std::nullopt;
        }
        if ((info.st_mode & S_IWUSR) == 0) {
            chmod(target.c_str(), (info.st_mode & 07777) | S_IWUSR);
        }
        return describe(target.substr(target.rfind('/') + 1), info);
    }

    bool makeFolder(const std::string& path) override { return mkdir(toNativePath(path).c_str(), 0777) == 0; }
    bool deleteFile(const std::string& path) override {
        const std::string native = toNativePath(path);
        if (unlink(native.c_str()) != 0) {
            return false;
        }
        forgetOwnFile(native);
        return true;
    }
    bool deleteFolder(const std::string& path) override { return rmdir(toNativePath(path).c_str()) == 0; }

    std::FILE* openStream(const std::string& path, const char* mode) override {
        const bool update = std::strchr(mode, '+');
        int flags = update ? O_RDWR : mode[0] == 'r' ? O_RDONLY : O_WRONLY;
        flags |= mode[0] == 'w' ? O_CREAT | O_TRUNC : mode[0] == 'a' ? O_CREAT | O_APPEND : 0;
        const int fd = openFile(path, flags);
        std::FILE* stream = fd >= 0 ? fdopen(fd, mode) : nullptr;
        if (fd >= 0 && !stream) {
            ::close(fd);
        }
        return stream;
    }

    std::optional<std::string> readWhole(const std::string& path) override {
        const Descriptor file(openFile(path, O_RDONLY));
        if (!file.isOpen()) {
            return std::nullopt;
        }
        struct stat info;
        if (fstat(file.get(), &info) != 0) {
            return std::nullopt;
        }
        if (static_cast<size_t>(info.st_size) > kMostBytes) {
            errno = EFBIG;
            return std::nullopt;
        }
        std::string content;
        size_t used = 0;
        // One byte more than it should have, so that the end is met without growing.
        content.resize(static_cast<size_t>(info.st_size) + 1);
        while (true) {
            const ssize_t got = ::read(file.get(), content.data() + used, content.size() - used);
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got < 0) {
                return std::nullopt;
            }
            used += static_cast<size_t>(got);
            if (got == 0) {
                break;
            }
            if (used > kMostBytes) {
                errno = EFBIG;
                return std::nullopt;
            }
            if (used == content.size()) {
                content.resize(std::min(used * 2, kMostBytes + 1));
            }
        }
        content.resize(used);
        return content;
    }

    std::optional<bool> holds(const std::string& path, std::string_view bytes) override {
        const Descriptor file(openFile(path, O_RDONLY));
        if (!file.isOpen()) {
            return std::nullopt;
        }
        std::vector<char> piece(kComparedAtOnce);
        while (true) {
            const ssize_t got = ::read(file.get(), piece.data(), piece.size());
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got < 0) {
                return std::nullopt;
            }
            const std::string_view next(piece.data(), static_cast<size_t>(got));
            if (next.empty() || !bytes.starts_with(next)) {
                return next.empty() && bytes.empty();
            }
            bytes.remove_prefix(next.size());
        }
    }

    std::unique_ptr<OsOutFile> openForWriting(const std::string& path, OsOpen how) override {
        const int flags = how == OsOpen::Existing ? 0
                          : how == OsOpen::New    ? O_CREAT | O_EXCL
                                                  : O_CREAT | O_TRUNC;
        const int fd = openFile(path, O_WRONLY | flags);
        Descriptor file(fd);
        return fd >= 0 ? std::make_unique<PosixOutFile>(std::move(file)) : nullptr;
    }

    std::unique_ptr<OsOutFile> openSibling(const std::string& path, const std::string& like) override {
        struct stat info;
        const Descriptor model(like.empty() ? -1 : open(toNativePath(like).c_str(), O_RDONLY | O_CLOEXEC));
        const bool known = model.isOpen() ? fstat(model.get(), &info) == 0
                                          : !like.empty() && stat(toNativePath(like).c_str(), &info) == 0;
        const std::string native = pathForOwn(path);
        Descriptor made(open(native.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, known ? 0600 : 0666));
        if (!made.isOpen()) {
            return nullptr;
        }
        noteOwnFile(native);
        OwnFile own(native);
        flock(made.get(), LOCK_EX | LOCK_NB);  // so that nobody takes it for abandoned
        if (known) {
            // The owner first: changing it clears bits of the mode. Only the superuser may give files away.
            const bool owned = fchown(made.get(), info.st_uid, info.st_gid) == 0 || errno == EPERM;
            if (model.isOpen()) {
                copyExtendedAttributes(model.get(), made.get());
            }
            if (!owned || fchmod(made.get(), info.st_mode & 07777) != 0) {
                return nullptr;
            }
        }
        auto file = std::make_unique<PosixOutFile>(std::move(made));
        own.keep();
        return file;
    }

    void deleteAbandoned(const std::string& path) override {
        const std::string native = toNativePath(path);
        const Descriptor file(open(native.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (file.isOpen() && flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
            unlink(native.c_str());
        }
    }

    std::unique_ptr<OsLock> tryLock(const std::string& path, OsLockState& state) override {
        const std::string native = pathForOwn(path);
        state = OsLockState::Impossible;
        while (true) {
            Descriptor file(open(native.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0666));
            if (!file.isOpen()) {
                return nullptr;
            }
            if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
                state = errno == EWOULDBLOCK ? OsLockState::Held : OsLockState::Impossible;
                return nullptr;
            }
            struct stat ours, there;
            if (fstat(file.get(), &ours) != 0) {
                return nullptr;
            }
            if (stat(native.c_str(), &there) != 0 || there.st_ino != ours.st_ino ||
                there.st_dev != ours.st_dev) {
                continue;  // its holder has just removed it
            }
            // Whoever holds it writes its number; a file that has one already was left behind.
            state = ours.st_size > 0 ? OsLockState::TakenOver : OsLockState::Taken;
            const std::string number = std::to_string(getpid()) + "\n";
            if ((ours.st_size > 0 && ftruncate(file.get(), 0) != 0) ||
                ::write(file.get(), number.data(), number.size()) < 0) {
                // A full disk: the lock holds without the number.
            }
            noteOwnFile(native);
            OwnFile own(native);
            auto lock = std::make_unique<PosixLock>(std::move(file), native);
            own.keep();
            return lock;
        }
    }

    bool isLink(const std::string& path) override {
        struct stat info;
        return lstat(toNativePath(path).c_str(), &info) == 0 && S_ISLNK(info.st_mode);
    }

    std::optional<std::string> resolveLinks(const std::string& path) override {
        std::string native = toNativePath(fullPath(path));
        for (int i = 0; i < kMostLinks; ++i) {
            char target[PATH_MAX];
            const ssize_t size = readlink(native.c_str(), target, sizeof target);
            if (size < 0) {
                // What is no link, or isn't there yet, leads to itself.
                return errno == EINVAL || errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG
                           ? std::optional(fromNativePath(native))
                           : std::nullopt;
            }
            const std::string_view link(target, static_cast<size_t>(size));
            native = link.starts_with('/') ? std::string(link)
                                           : native.substr(0, native.rfind('/') + 1).append(link);
            // Without ".." and links in its folder, so that a file has one name however it was come to: "link/.."
            // is not what its letters say.
            const size_t name = native.rfind('/') + 1;
            char folder[PATH_MAX];
            if (realpath(native.substr(0, name).c_str(), folder)) {
                native = (std::strcmp(folder, "/") == 0 ? "" : folder) + native.substr(name - 1);
            }
        }
        errno = ELOOP;
        return std::nullopt;
    }

    // The replacement has the target's mode and owner from its making.
    bool replaceFile(const std::string& target, const std::string& replacement) override {
        const std::string from = toNativePath(replacement), to = toNativePath(target);
        struct stat info;
        if (stat(to.c_str(), &info) != 0 || rename(from.c_str(), to.c_str()) != 0) {
            return false;
        }
        forgetOwnFile(from);
        return true;
    }

    bool renameNew(const std::string& from, const std::string& to) override {
        const std::string nativeFrom = toNativePath(from);
        const std::string nativeTo = toNativePath(to);
        // link refuses an existing name, rename would replace it; where links can't be made, look and rename.
        if (link(nativeFrom.c_str(), nativeTo.c_str()) == 0) {
            unlink(nativeFrom.c_str());
        } else {
            struct stat info;
            if (errno == EEXIST || lstat(nativeTo.c_str(), &info) == 0) {
                errno = EEXIST;
                return false;
            }
            if (rename(nativeFrom.c_str(), nativeTo.c_str()) != 0) {
                return false;
            }
        }
        forgetOwnFile(nativeFrom);
        return true;
    }

    void flushFolder(const std::string& path) override {
        const Descriptor folder(open(toNativePath(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (folder.isOpen()) {
            fsync(folder.get());
        }
    }

    std::string lastError() override { return describeError(lastNumber()); }
    OsFault lastFault() override { return faultOf(lastNumber()); }

private:
    static SystemErrorNumber lastNumber() { return static_cast<SystemErrorNumber>(errno); }

    // Keeps the number of an error for lastError.
    static bool told(int error) {
        errno = error;
        return error == 0;
    }

    static std::vector<OsEntry> matches(const std::string& pattern, bool withDots,
                                        OsListing* left = nullptr) {
        std::vector<OsEntry> found;
        const std::string_view wildcard = fileNameOf(pattern);
        std::string folder =
            toNativePath(std::string_view(pattern).substr(0, pattern.size() - wildcard.size()));
        if (folder.empty()) {
            folder = "./";
        }
        const std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(folder.c_str()), closedir);
        errno = dir ? 0 : errno;
        while (const dirent* entry = dir ? readdir(dir.get()) : nullptr) {
            const std::string_view name = entry->d_name;
            struct stat info;
            if ((withDots || (name != "." && name != "..")) && matchesWildcard(wildcard, name)) {
                // As a path such a name would be another file's, in a folder.
                if (name.find('\\') != name.npos) {
                    if (left) {
                        left->skipped.emplace_back(name);
                    }
                } else if (statEntry(folder + entry->d_name, info)) {
                    found.push_back(describe(entry->d_name, info));
                }
            }
            errno = 0;
        }
        if (left && errno != 0) {
            left->error = describeError(lastNumber());
        }
        std::ranges::sort(found,
                          [](const OsEntry& a, const OsEntry& b) { return lessNoCase(a.name, b.name); });
        return found;
    }
};

extern "C" void removeAndEnd(int number) {
    removeOwnFiles([](const char* path) { unlink(path); });
    signal(number, SIG_DFL);
    raise(number);
}

}  // namespace

void removeOwnFilesAtSignals() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction now;
        // One that is ignored (nohup) stays so.
        if (sigaction(number, nullptr, &now) == 0 && now.sa_handler == SIG_DFL) {
            signal(number, removeAndEnd);
        }
    }
}

OsFiles& systemFiles() {
    static PosixFiles files;
    return files;
}

}  // namespace zoka
