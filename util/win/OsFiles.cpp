#include "util/OsFiles.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

#include "util/BoostFiles.h"
#include "util/PathRules.h"

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

class FindHandle {
public:
    FindHandle(const std::string& pattern, WIN32_FIND_DATAA& data)
        : m_handle(FindFirstFileA(pattern.c_str(), &data)) {}
    FindHandle(const FindHandle&) = delete;
    FindHandle& operator=(const FindHandle&) = delete;
    ~FindHandle() {
        if (isOpen()) {
            FindClose(m_handle);
        }
    }
    bool isOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    bool next(WIN32_FIND_DATAA& data) { return FindNextFileA(m_handle, &data) != 0; }

private:
    HANDLE m_handle;
};

OsEntry describe(const WIN32_FIND_DATAA& data) {
    return {data.cFileName, (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
            fromSystem(data.ftLastWriteTime), (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow};
}

class WinOutFile : public OsOutFile {
public:
    explicit WinOutFile(HANDLE handle) : m_file(handle) {}
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
    bool flush() override { return FlushFileBuffers(m_file.get()) != 0; }
    bool close() override { return m_file.close(); }

private:
    Handle m_file;
};

// Both do what the system allows: neither is worth a refusal.
void setCreationTime(const std::string& path, const FILETIME& time) {
    const Handle file(CreateFileA(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, 0, nullptr));
    if (file.isOpen()) {
        SetFileTime(file.get(), &time, nullptr, nullptr);
    }
}

void copyAccessRights(const std::string& from, const std::string& to) {
    DWORD size = 0;
    GetFileSecurityA(from.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<std::uint64_t> rights(size / sizeof(std::uint64_t) + 1);  // aligned as the system wants it
    if (size > 0 && GetFileSecurityA(from.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size)) {
        SetFileSecurityA(to.c_str(), DACL_SECURITY_INFORMATION, rights.data());
    }
}

class WinFiles : public OsFiles {
public:
    std::optional<OsEntry> search(const std::string& path) override {
        WIN32_FIND_DATAA data;
        // The system would look for a folder's first entry here.
        if (path.empty() || isSeparator(path.back())) {
            return std::nullopt;
        }
        const FindHandle find(path, data);
        return find.isOpen() ? std::optional(describe(data)) : std::nullopt;
    }

    std::vector<OsEntry> list(const std::string& pattern) override {
        // Everything is listed and matched by our own rule: the system's one also takes the short names of
        // old, by which "*.htm" finds "a.html".
        const std::string_view wildcard = fileNameOf(pattern);
        std::vector<OsEntry> found;
        WIN32_FIND_DATAA data;
        FindHandle find(pattern.substr(0, pattern.size() - wildcard.size()) + "*", data);
        for (bool more = find.isOpen(); more; more = find.next(data)) {
            const std::string_view name = data.cFileName;
            if (name != "." && name != ".." && matchesWildcard(wildcard, name)) {
                found.push_back(describe(data));
            }
        }
        std::ranges::sort(found,
                          [](const OsEntry& a, const OsEntry& b) { return lessNoCase(a.name, b.name); });
        return found;
    }

    bool readTime(const std::string& path, FileTime* time) override {
        const Handle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
        FILETIME lastWrite;
        if (file.isOpen() && time && GetFileTime(file.get(), nullptr, nullptr, &lastWrite)) {
            *time = fromSystem(lastWrite);
        }
        return file.isOpen();
    }

    bool setTimes(const std::string& path, FileTime time) override {
        const Handle file(CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
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

    std::string fullPath(const std::string& path) override {
        std::string full(GetFullPathNameA(path.c_str(), 0, nullptr, nullptr), '\0');
        const DWORD size =
            GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        if (size == 0 || size >= full.size()) {
            return path;
        }
        full.resize(size);
        return full;
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
    bool copyNew(const std::string& from, const std::string& to) override {
        return told(boostCopyNew(from, to));
    }

    bool makeFolder(const std::string& path) override { return CreateDirectoryA(path.c_str(), nullptr) != 0; }
    bool deleteFile(const std::string& path) override { return DeleteFileA(path.c_str()) != 0; }
    bool deleteFolder(const std::string& path) override { return RemoveDirectoryA(path.c_str()) != 0; }

    std::FILE* openStream(const std::string& path, const char* mode) override {
        return std::fopen(path.c_str(), mode);
    }

    std::optional<std::string> readWhole(const std::string& path) override {
        const Handle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
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

    std::unique_ptr<OsOutFile> openForWriting(const std::string& path, OsOpen how) override {
        const DWORD disposition = how == OsOpen::Existing ? OPEN_EXISTING
                                  : how == OsOpen::New    ? CREATE_NEW
                                                          : CREATE_ALWAYS;
        const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, disposition,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
        return file != INVALID_HANDLE_VALUE ? std::make_unique<WinOutFile>(file) : nullptr;
    }

    std::optional<std::string> resolveLinks(const std::string& path) override {
        const std::string full = fullPath(path);
        const DWORD attributes = GetFileAttributesA(full.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
            return full;
        }
        const Handle file(CreateFileA(full.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
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
        WIN32_FILE_ATTRIBUTE_DATA old;
        if (!GetFileAttributesExA(target.c_str(), GetFileExInfoStandard, &old)) {
            return false;
        }
        if (old.dwFileAttributes & FILE_ATTRIBUTE_READONLY) {  // which not every system that runs us minds
            SetLastError(ERROR_ACCESS_DENIED);
            return false;
        }
        copyAccessRights(target, replacement);
        setCreationTime(replacement, old.ftCreationTime);
        const DWORD attributes = old.dwFileAttributes & kKept;
        SetFileAttributesA(replacement.c_str(), attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL);
        return MoveFileExA(replacement.c_str(), target.c_str(),
                           MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
    }

    bool renameNew(const std::string& from, const std::string& to) override {
        return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
    }
    void flushFolder(const std::string&) override {}  // the file system's own log keeps the order

    std::string lastError() override {
        char text[512];
        const DWORD code = GetLastError();
        DWORD size = FormatMessageA(
            FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
            nullptr, code, 0, text, sizeof text, nullptr);
        while (size > 0 && (text[size - 1] == ' ' || text[size - 1] == '.')) {
            --size;
        }
        return size > 0 ? std::string(text, size) : "system error " + std::to_string(code);
    }

private:
    // Keeps the number of an error for lastError.
    static bool told(int error) {
        SetLastError(static_cast<DWORD>(error));
        return error == 0;
    }
};

}  // namespace

OsFiles& systemFiles() {
    static WinFiles files;
    return files;
}

}  // namespace zoka
