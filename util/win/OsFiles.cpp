#include "util/OsFiles.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "util/BoostFiles.h"
#include "util/OwnFiles.h"
#include "util/PathRules.h"
#include "util/SystemError.h"

namespace zoka {
namespace {

FileTime fromSystem(const FILETIME& time) {
    return {time.dwLowDateTime, time.dwHighDateTime};
}

// Closes itself and leaves the thread's last error alone, so that a failure's
// reason outlives the cleaning-up.
class Handle {
public:
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { close(); }
    HANDLE get() const { return m_handle; }
    bool isOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    bool hold(HANDLE handle) {
        m_handle = handle;
        return isOpen();
    }
    bool close() {
        if (!isOpen()) {
            return false;
        }
        const DWORD before = GetLastError();
        const bool closed = CloseHandle(m_handle) != 0;
        m_handle = INVALID_HANDLE_VALUE;
        if (closed) {
            SetLastError(before);
        }
        return closed;
    }

private:
    HANDLE m_handle;
};

constexpr DWORD kPatienceMs = 1000;
constexpr DWORD kRetryMs = 20;

bool isHeldByOther(DWORD error) {
    return faultOf(error) == OsFault::InUse;
}
// A file that another program has open is refused as if it were forbidden when another is moved to its place.
bool isTargetHeldByOther(DWORD error) {
    return error == ERROR_ACCESS_DENIED || isHeldByOther(error);
}

// Does it again for a second while another program holds the file: virus scanners look into fresh ones.
// `failed` says whether the last try did.
template <class Try, class Failed>
auto patiently(const Try& attempt, const Failed& failed, bool (*isHeld)(DWORD error) = isHeldByOther) {
    const DWORD start = GetTickCount();
    auto result = attempt();
    while (failed(result) && isHeld(GetLastError()) && GetTickCount() - start < kPatienceMs) {
        Sleep(kRetryMs);
        result = attempt();
    }
    return result;
}

std::string fullPathOf(const std::string& path) {
    std::string full(GetFullPathNameA(path.c_str(), 0, nullptr, nullptr), '\0');
    const DWORD size = GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (size == 0 || size >= full.size()) {
        return path;
    }
    full.resize(size);
    return full;
}

std::wstring wide(const std::string& text) {
    const auto size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), size, nullptr, 0);
    std::wstring made(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), size, made.data(), length);
    return made;
}

std::string narrow(const wchar_t* text) {
    const int length = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string made(length > 0 ? static_cast<size_t>(length) : 1, '\0');
    WideCharToMultiByte(CP_ACP, 0, text, -1, made.data(), length, nullptr, nullptr);
    made.pop_back();
    return made;
}

// The path as system calls take it, in the form without a limit of 260 where it is that long: the suite's own
// paths aren't, but those of files beside them can be. The calls for 8-bit paths know no such form.
std::wstring nativePath(const std::string& path) {
    if (path.size() < MAX_PATH - 12 || path.starts_with("\\\\?\\")) {
        return wide(path);
    }
    const std::string full = fullPathOf(path);
    return wide(full.starts_with("\\\\") ? "\\\\?\\UNC" + full.substr(1) : "\\\\?\\" + full);
}

HANDLE openPatiently(const std::string& path, DWORD access, DWORD share, DWORD disposition, DWORD flags) {
    const std::wstring native = nativePath(path);
    return patiently(
        [&] { return CreateFileW(native.c_str(), access, share, nullptr, disposition, flags, nullptr); },
        [](HANDLE file) { return file == INVALID_HANDLE_VALUE; });
}

class FindHandle {
public:
    FindHandle(const std::string& pattern, WIN32_FIND_DATAW& data)
        : m_handle(FindFirstFileW(nativePath(pattern).c_str(), &data)) {}
    FindHandle(const FindHandle&) = delete;
    FindHandle& operator=(const FindHandle&) = delete;
    ~FindHandle() {
        if (isOpen()) {
            FindClose(m_handle);
        }
    }
    bool isOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    bool next(WIN32_FIND_DATAW& data) { return FindNextFileW(m_handle, &data) != 0; }

private:
    HANDLE m_handle;
};

OsEntry describe(const WIN32_FIND_DATAW& data) {
    return {narrow(data.cFileName), (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
            fromSystem(data.ftLastWriteTime), (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow};
}

class WinOutFile : public OsOutFile {
public:
    explicit WinOutFile(HANDLE handle) : m_file(handle) {}
    // For one that was made without a file.
    bool hold(HANDLE handle) { return m_file.hold(handle); }
    bool write(std::string_view bytes) override {
        while (!bytes.empty()) {
            const auto size = static_cast<DWORD>(std::min<size_t>(bytes.size(), 1u << 30));
            DWORD written = 0;
            if (!WriteFile(m_file.get(), bytes.data(), size, &written, nullptr) || written == 0) {
                return false;
            }
            bytes.remove_prefix(written);
        }
        return true;
    }
    bool rewind() override {
        return SetFilePointer(m_file.get(), 0, nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER;
    }
    bool cutHere() override { return SetEndOfFile(m_file.get()) != 0; }
    bool flush() override {
        if (FlushFileBuffers(m_file.get())) {
            return true;
        }
        // What cannot be synchronised (a pipe, some network shares) is as safe as it gets.
        const DWORD why = GetLastError();
        return why == ERROR_INVALID_FUNCTION || why == ERROR_NOT_SUPPORTED || why == ERROR_INVALID_PARAMETER;
    }
    bool close() override { return m_file.close(); }

private:
    Handle m_file;
};

// Both do what the system allows: neither is worth a refusal.
void setCreationTime(const std::wstring& path, const FILETIME& time) {
    const Handle file(CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, 0, nullptr));
    if (file.isOpen()) {
        SetFileTime(file.get(), &time, nullptr, nullptr);
    }
}

// A file's access list, as far as the system lets us have it.
class AccessRights {
public:
    explicit AccessRights(const std::wstring& path) {
        DWORD size = 0;
        if (!path.empty()) {
            GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
        }
        m_list.resize(size / sizeof(std::uint64_t) + 1);  // aligned as the system wants it
        m_known = size > 0 &&
                  GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, m_list.data(), size, &size) != 0;
    }
    void giveTo(const std::wstring& path) const {
        if (m_known) {
            SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION,
                             const_cast<std::uint64_t*>(m_list.data()));
        }
    }

private:
    std::vector<std::uint64_t> m_list;
    bool m_known = false;
};

// A name of the system's for a file's lock: the same in all programs, so its hash has no key. Two files that share one
// only wait for each other.
std::wstring mutexName(const std::wstring& path) {
    std::uint64_t hash = 0xcbf29ce484222325;  // FNV-1a
    for (const wchar_t letter : path) {
        hash = (hash ^ letter) * 0x100000001b3;
    }
    return L"Local\\zoka-lock-" + std::to_wstring(hash);
}

// The system removes the file with the last handle, also when the process is killed. Nobody else can open it before, so
// it keeps apart programs of every session and of every machine that shares the folder.
//
// The mutex is for the programs of one session: when several wait, Wine tells one now and then of a file left behind
// that was another's and is just being removed. The mutex comes first and goes last.
// There is none for all sessions ("Global\"): its access list would have to let every user of the machine in, and then
// any of them could keep all others waiting. A mutex belongs to its thread: a lock is freed on the thread that took it.
class WinLock : public OsLock {
public:
    ~WinLock() override {
        m_file.close();
        if (m_owns) {
            ReleaseMutex(m_mutex.get());
        }
    }
    // False while another program of this session has the lock. Where no mutex can be made the file serves alone.
    bool take(const std::wstring& path) {
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, mutexName(path).c_str());
        if (!mutex) {
            return true;
        }
        m_mutex.hold(mutex);
        const DWORD got = WaitForSingleObject(mutex, 0);
        m_owns = got == WAIT_OBJECT_0 || got == WAIT_ABANDONED;
        return m_owns;
    }
    bool hold(HANDLE file) { return m_file.hold(file); }

private:
    Handle m_mutex{INVALID_HANDLE_VALUE};
    Handle m_file{INVALID_HANDLE_VALUE};
    bool m_owns = false;
};

class WinFiles : public OsFiles {
public:
    std::optional<OsEntry> search(const std::string& path) override {
        WIN32_FIND_DATAW data;
        // The system would look for a folder's first entry here.
        if (path.empty() || isSeparator(path.back())) {
            return std::nullopt;
        }
        const FindHandle find(path, data);
        return find.isOpen() ? std::optional(describe(data)) : std::nullopt;
    }

    std::vector<OsEntry> list(const std::string& pattern, OsListing* left) override {
        // Everything is listed and matched by our own rule: the system's one also takes the short names of
        // old, by which "*.htm" finds "a.html".
        const std::string_view wildcard = fileNameOf(pattern);
        std::vector<OsEntry> found;
        WIN32_FIND_DATAW data;
        FindHandle find(pattern.substr(0, pattern.size() - wildcard.size()) + "*", data);
        for (bool more = find.isOpen(); more; more = find.next(data)) {
            const std::string name = narrow(data.cFileName);
            if (name != "." && name != ".." && matchesWildcard(wildcard, name)) {
                found.push_back(describe(data));
            }
        }
        const DWORD why = GetLastError();
        if (left && why != ERROR_NO_MORE_FILES && why != ERROR_FILE_NOT_FOUND) {
            left->error = describeError(why);
        }
        std::ranges::sort(found,
                          [](const OsEntry& a, const OsEntry& b) { return lessNoCase(a.name, b.name); });
        return found;
    }

    bool readTime(const std::string& path, FileTime* time) override {
        const Handle file(CreateFileW(nativePath(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
        FILETIME lastWrite;
        if (file.isOpen() && time && GetFileTime(file.get(), nullptr, nullptr, &lastWrite)) {
            *time = fromSystem(lastWrite);
        }
        return file.isOpen();
    }

    bool setTimes(const std::string& path, FileTime time) override {
        const Handle file(
            openPatiently(path, GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
        if (!file.isOpen()) {
            return false;
        }
        const FILETIME all = {time.dwLowDateTime, time.dwHighDateTime};
        SetFileTime(file.get(), &all, &all, &all);
        return true;
    }

    std::string currentFolder() override {
        char folder[MAX_PATH];
        const DWORD size = GetCurrentDirectoryA(sizeof folder, folder);
        return size < sizeof folder ? std::string(folder, size) : std::string();
    }
    bool setCurrentFolder(const std::string& path) override {
        return SetCurrentDirectoryA(path.c_str()) != 0;
    }

    std::string fullPath(const std::string& path) override { return fullPathOf(path); }

    bool makeFolder(const std::string& path) override {
        return CreateDirectoryW(nativePath(path).c_str(), nullptr) != 0;
    }
    bool deleteFile(const std::string& path) override {
        const std::wstring native = nativePath(path);
        const bool deleted =
            patiently([&] { return DeleteFileW(native.c_str()) != 0; }, [](bool done) { return !done; });
        if (deleted) {
            forgetOwnFile(path);
        }
        return deleted;
    }
    bool deleteFolder(const std::string& path) override {
        const std::wstring native = nativePath(path);
        return patiently([&] { return RemoveDirectoryW(native.c_str()) != 0; },
                         [](bool done) { return !done; });
    }

    OsKind kindOf(const std::string& path) override {
        OsKind kind;
        told(boostKindOf(path, kind));
        return kind;
    }
    bool listFolder(const std::string& path, std::vector<OsListed>& entries) override {
        return told(boostListFolder(path, entries));
    }
    bool makeFolders(const std::string& path) override { return told(boostMakeFolders(path)); }
    std::optional<OsEntry> copyNew(const std::string& from, const std::string& to) override {
        const std::wstring target = nativePath(to);
        if (GetFileAttributesW(target.c_str()) != INVALID_FILE_ATTRIBUTES) {
            told(ERROR_FILE_EXISTS);
            return std::nullopt;
        }
        WIN32_FIND_DATAW data;
        if (!told(boostCopyNew(from, to)) || !FindHandle(to, data).isOpen()) {
            return std::nullopt;
        }
        if (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) {
            SetFileAttributesW(target.c_str(), data.dwFileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
        }
        return describe(data);
    }

    std::FILE* openStream(const std::string& path, const char* mode) override {
        return _wfopen(nativePath(path).c_str(), wide(mode).c_str());
    }

    std::optional<std::string> readWhole(const std::string& path) override {
        const Handle file(openPatiently(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN));
        LARGE_INTEGER size;
        if (!file.isOpen() || !GetFileSizeEx(file.get(), &size)) {
            return std::nullopt;
        }
        if (size.QuadPart > 0x7fffffff) {
            SetLastError(ERROR_FILE_TOO_LARGE);
            return std::nullopt;
        }
        std::string content(static_cast<size_t>(size.QuadPart), '\0');
        DWORD used = 0;
        while (used < content.size()) {
            DWORD got = 0;
            if (!ReadFile(file.get(), content.data() + used, static_cast<DWORD>(content.size()) - used, &got,
                          nullptr)) {
                return std::nullopt;
            }
            if (got == 0) {
                break;
            }
            used += got;
        }
        content.resize(used);
        return content;
    }

    std::optional<bool> holds(const std::string& path, std::string_view bytes) override {
        const Handle file(openPatiently(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN));
        if (!file.isOpen()) {
            return std::nullopt;
        }
        std::vector<char> piece(kComparedAtOnce);
        while (true) {
            DWORD got = 0;
            if (!ReadFile(file.get(), piece.data(), static_cast<DWORD>(piece.size()), &got, nullptr)) {
                return std::nullopt;
            }
            const std::string_view next(piece.data(), got);
            if (next.empty() || !bytes.starts_with(next)) {
                return next.empty() && bytes.empty();
            }
            bytes.remove_prefix(next.size());
        }
    }

    std::unique_ptr<OsOutFile> openForWriting(const std::string& path, OsOpen how) override {
        const DWORD disposition = how == OsOpen::Existing ? OPEN_EXISTING
                                  : how == OsOpen::New    ? CREATE_NEW
                                                          : CREATE_ALWAYS;
        const DWORD attributes = GetFileAttributesW(nativePath(path).c_str());
        if (how == OsOpen::Existing && attributes != INVALID_FILE_ATTRIBUTES &&
            (attributes & FILE_ATTRIBUTE_READONLY)) {  // which not every system that runs us minds
            SetLastError(ERROR_ACCESS_DENIED);
            return nullptr;
        }
        const HANDLE file =
            openPatiently(path, GENERIC_WRITE, FILE_SHARE_READ, disposition, FILE_ATTRIBUTE_NORMAL);
        return file != INVALID_HANDLE_VALUE ? std::make_unique<WinOutFile>(file) : nullptr;
    }

    std::unique_ptr<OsOutFile> openSibling(const std::string& path, const std::string& like) override {
        const std::wstring native = nativePath(path);
        // Others may delete it, so that a console's end can.
        const std::wstring model = like.empty() ? std::wstring() : nativePath(like);
        // All memory is taken before the file is there.
        auto file = std::make_unique<WinOutFile>(INVALID_HANDLE_VALUE);
        const AccessRights rights(model);
        if (!file->hold(CreateFileW(native.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                    nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr))) {
            return nullptr;
        }
        noteOwnFile(path);
        rights.giveTo(native);
        return file;
    }

    // The system refuses while a program has it open, since none lets others delete it but us.
    void deleteAbandoned(const std::string& path) override {
        const Handle file(CreateFileW(nativePath(path).c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    }

    std::unique_ptr<OsLock> tryLock(const std::string& path, OsLockState& state) override {
        const std::wstring native = nativePath(path);
        auto lock = std::make_unique<WinLock>();
        std::wstring folded = native;
        CharLowerBuffW(folded.data(), static_cast<DWORD>(folded.size()));
        if (!lock->take(folded)) {
            state = OsLockState::Held;
            return nullptr;
        }
        // One that is just being removed is refused as if it were forbidden; where it is gone by the next look, the
        // next try shows whether the folder takes any.
        constexpr int kTries = 3;
        DWORD why = ERROR_SUCCESS;
        bool there = false;
        for (int i = 0; i < kTries && !there; ++i) {
            const bool made =
                lock->hold(CreateFileW(native.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
                                       FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
            why = GetLastError();
            if (made) {
                state = why == ERROR_ALREADY_EXISTS ? OsLockState::TakenOver : OsLockState::Taken;
                return lock;
            }
            there = why != ERROR_ACCESS_DENIED ||
                    GetFileAttributesW(native.c_str()) != INVALID_FILE_ATTRIBUTES ||
                    (GetLastError() != ERROR_FILE_NOT_FOUND && GetLastError() != ERROR_PATH_NOT_FOUND);
        }
        state = why == ERROR_SHARING_VIOLATION || why == ERROR_DELETE_PENDING ||
                        (why == ERROR_ACCESS_DENIED && there)
                    ? OsLockState::Held
                    : OsLockState::Impossible;
        SetLastError(why);
        return nullptr;
    }

    bool isLink(const std::string& path) override {
        const DWORD attributes = GetFileAttributesW(nativePath(path).c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
    }

    std::optional<std::string> resolveLinks(const std::string& path) override {
        const std::string full = fullPath(path);
        const DWORD attributes = GetFileAttributesW(nativePath(full).c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
            return full;
        }
        const Handle file(CreateFileW(nativePath(full).c_str(), 0,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        char target[1024];
        const DWORD size =
            file.isOpen() ? GetFinalPathNameByHandleA(file.get(), target, sizeof target, FILE_NAME_NORMALIZED)
                          : 0;
        if (size == 0 || size >= sizeof target) {
            return std::nullopt;
        }
        const std::string found(target, size);
        if (found.starts_with("\\\\?\\UNC\\")) {
            return std::string("\\").append(found, 7);
        }
        return found.starts_with("\\\\?\\") ? found.substr(4) : found;
    }

    // Moved over, in one step. ReplaceFile would carry over by itself what belongs to the target, but there can
    // be a moment in which the target is gone, and a process that ends then leaves none.
    bool replaceFile(const std::string& target, const std::string& replacement) override {
        constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                                FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
        const std::wstring to = nativePath(target), from = nativePath(replacement);
        WIN32_FILE_ATTRIBUTE_DATA old;
        if (!GetFileAttributesExW(to.c_str(), GetFileExInfoStandard, &old)) {
            return false;
        }
        setCreationTime(from, old.ftCreationTime);
        const DWORD attributes = old.dwFileAttributes & kKept;
        SetFileAttributesW(from.c_str(), attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL);
        return moveFile(replacement, from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    }

    bool renameNew(const std::string& from, const std::string& to) override {
        return moveFile(from, nativePath(from), nativePath(to), MOVEFILE_WRITE_THROUGH);
    }
    void flushFolder(const std::string&) override {}  // the file system's own log keeps the order

    std::string lastError() override { return describeError(GetLastError()); }
    OsFault lastFault() override { return faultOf(GetLastError()); }

private:
    static bool moveFile(const std::string& own, const std::wstring& from, const std::wstring& to,
                         DWORD how) {
        const bool moved = patiently([&] { return MoveFileExW(from.c_str(), to.c_str(), how) != 0; },
                                     [](bool done) { return !done; }, isTargetHeldByOther);
        if (moved) {
            forgetOwnFile(own);
        }
        return moved;
    }

    // Keeps the number of an error for lastError.
    static bool told(int error) {
        SetLastError(static_cast<DWORD>(error));
        return error == 0;
    }
};

BOOL WINAPI removeAtConsoleEnd(DWORD) noexcept {
    removeOwnFiles([](const char* path) { DeleteFileA(path); });
    return FALSE;  // the next handler ends the process
}

}  // namespace

void removeOwnFilesAtSignals() {
    SetConsoleCtrlHandler(removeAtConsoleEnd, TRUE);
}

OsFiles& systemFiles() {
    static WinFiles files;
    return files;
}

}  // namespace zoka
