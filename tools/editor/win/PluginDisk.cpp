#include "tools/editor/win/PluginDisk.h"

#include <cstring>
#include <mutex>

#include "tools/editor/win/SlimLock.h"
#include "tools/editor/win/WindowSearch.h"

namespace zoka {
namespace {

SlimLock g_lock;  // of what follows
std::wstring g_slowPart;
DWORD g_ms = 0;
std::wstring g_heldPart;  // empty: nothing is held
std::wstring g_fullPart;  // empty: nothing is full
unsigned g_room = 0;      // operations that it has room for

bool isHeld(const std::wstring& path) {
    const std::lock_guard lock(g_lock);
    return !g_heldPart.empty() && path.find(g_heldPart) != path.npos;
}

void waitFor(LPCWSTR name) {
    constexpr DWORD kBetweenLooks = 4;
    const std::wstring path = name ? name : L"";
    while (isHeld(path)) {
        Sleep(kBetweenLooks);
    }
    DWORD ms = 0;
    {
        const std::lock_guard lock(g_lock);
        ms = name && path.find(g_slowPart) != path.npos ? g_ms : 0;
    }
    if (ms > 0) {
        Sleep(ms);
    }
}

// Whether an operation that takes room there has none; the error is set then.
bool isFull(const std::wstring& path) {
    const std::lock_guard lock(g_lock);
    if (g_fullPart.empty() || path.find(g_fullPart) == path.npos) {
        return false;
    }
    if (g_room > 0) {
        --g_room;
        return false;
    }
    SetLastError(ERROR_DISK_FULL);
    return true;
}
bool isFull(LPCWSTR path) {
    return path && isFull(std::wstring(path));
}
bool isFull(HANDLE file) {
    std::wstring path(1024, L'\0');
    const DWORD size = GetFinalPathNameByHandleW(file, path.data(), static_cast<DWORD>(path.size()), 0);
    path.resize(size < path.size() ? size : 0);
    return isFull(path);
}

HANDLE WINAPI createFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD how,
                         DWORD flags, HANDLE like) {
    waitFor(path);
    const bool makes = how != OPEN_EXISTING && how != TRUNCATE_EXISTING;
    if (makes && isFull(path)) {
        return INVALID_HANDLE_VALUE;
    }
    return CreateFileW(path, access, share, security, how, flags, like);
}

HANDLE WINAPI findFirstFile(LPCWSTR path, LPWIN32_FIND_DATAW found) {
    waitFor(path);
    return FindFirstFileW(path, found);
}

DWORD WINAPI getFileAttributes(LPCWSTR path) {
    waitFor(path);
    return GetFileAttributesW(path);
}

BOOL WINAPI getFileAttributesEx(LPCWSTR path, GET_FILEEX_INFO_LEVELS level, LPVOID info) {
    waitFor(path);
    return GetFileAttributesExW(path, level, info);
}

BOOL WINAPI copyFileEx(LPCWSTR from, LPCWSTR to, LPPROGRESS_ROUTINE progress, LPVOID data, LPBOOL cancel,
                       DWORD flags) {
    waitFor(from);
    waitFor(to);
    return !isFull(to) && CopyFileExW(from, to, progress, data, cancel, flags);
}

BOOL WINAPI deleteFile(LPCWSTR path) {
    waitFor(path);
    return DeleteFileW(path);
}

BOOL WINAPI createDirectory(LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
    return !isFull(path) && CreateDirectoryW(path, security);
}

BOOL WINAPI moveFileEx(LPCWSTR from, LPCWSTR to, DWORD how) {
    return !isFull(to) && MoveFileExW(from, to, how);
}

BOOL WINAPI writeFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
    if (!isFull(file)) {
        return WriteFile(file, bytes, size, written, overlapped);
    }
    WriteFile(file, bytes, size / 2, written, overlapped);
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

template <class Function>
ULONG_PTR addressOf(Function function) {
    ULONG_PTR address = 0;
    static_assert(sizeof address == sizeof function);
    std::memcpy(&address, &function, sizeof address);
    return address;
}

// What the plug-in calls now, and is to call.
struct Detour {
    ULONG_PTR from, to;
};

void lead(IMAGE_THUNK_DATA* thunk, const Detour& detour) {
    DWORD before = 0;
    if (thunk->u1.Function == detour.from &&
        VirtualProtect(&thunk->u1.Function, sizeof thunk->u1.Function, PAGE_READWRITE, &before)) {
        thunk->u1.Function = detour.to;
        VirtualProtect(&thunk->u1.Function, sizeof thunk->u1.Function, before, &before);
    }
}

void leadCalls(HMODULE plugin) {
    const HMODULE system = GetModuleHandleA("kernel32.dll");
    const auto named = [system](const char* name) { return addressOf(GetProcAddress(system, name)); };
    const Detour detours[] = {
        {named("CreateFileW"), addressOf(createFile)},
        {named("FindFirstFileW"), addressOf(findFirstFile)},
        {named("GetFileAttributesW"), addressOf(getFileAttributes)},
        {named("GetFileAttributesExW"), addressOf(getFileAttributesEx)},
        {named("CopyFileExW"), addressOf(copyFileEx)},
        {named("DeleteFileW"), addressOf(deleteFile)},
        {named("CreateDirectoryW"), addressOf(createDirectory)},
        {named("MoveFileExW"), addressOf(moveFileEx)},
        {named("WriteFile"), addressOf(writeFile)},
    };
    auto* const base = reinterpret_cast<std::uint8_t*>(plugin);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports);
         library->FirstThunk != 0; ++library) {
        for (auto* thunk = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
             thunk->u1.Function != 0; ++thunk) {
            for (const Detour& detour : detours) {
                lead(thunk, detour);
            }
        }
    }
}

}  // namespace

void slowDisk(HMODULE plugin, const std::string& part, unsigned ms) {
    {
        const std::lock_guard lock(g_lock);
        g_slowPart = wideText(part);
        g_ms = ms;
    }
    leadCalls(plugin);
}

void holdDisk(HMODULE plugin, const std::string& part) {
    {
        const std::lock_guard lock(g_lock);
        g_heldPart = wideText(part);
    }
    leadCalls(plugin);
}

void releaseDisk() {
    const std::lock_guard lock(g_lock);
    g_heldPart.clear();
}

void fillDisk(HMODULE plugin, const std::string& part, unsigned operations) {
    {
        const std::lock_guard lock(g_lock);
        g_fullPart = wideText(part);
        g_room = operations;
    }
    leadCalls(plugin);
}

}  // namespace zoka
