#include "tools/editor/win/SlowDisk.h"

#include <cstring>
#include <mutex>

#include "tools/editor/win/SlimLock.h"

namespace zoka {
namespace {

SlimLock g_lock;  // of the two below
std::wstring g_part;
DWORD g_ms = 0;

void waitFor(LPCWSTR path) {
    DWORD ms = 0;
    {
        const std::lock_guard lock(g_lock);
        ms = path && std::wstring(path).find(g_part) != std::wstring::npos ? g_ms : 0;
    }
    if (ms > 0) {
        Sleep(ms);
    }
}

HANDLE WINAPI slowCreateFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                             DWORD how, DWORD flags, HANDLE like) {
    waitFor(path);
    return CreateFileW(path, access, share, security, how, flags, like);
}

HANDLE WINAPI slowFindFirstFile(LPCWSTR path, LPWIN32_FIND_DATAW found) {
    waitFor(path);
    return FindFirstFileW(path, found);
}

DWORD WINAPI slowGetFileAttributes(LPCWSTR path) {
    waitFor(path);
    return GetFileAttributesW(path);
}

BOOL WINAPI slowGetFileAttributesEx(LPCWSTR path, GET_FILEEX_INFO_LEVELS level, LPVOID info) {
    waitFor(path);
    return GetFileAttributesExW(path, level, info);
}

BOOL WINAPI slowCopyFileEx(LPCWSTR from, LPCWSTR to, LPPROGRESS_ROUTINE progress, LPVOID data, LPBOOL cancel,
                           DWORD flags) {
    waitFor(from);
    waitFor(to);
    return CopyFileExW(from, to, progress, data, cancel, flags);
}

BOOL WINAPI slowDeleteFile(LPCWSTR path) {
    waitFor(path);
    return DeleteFileW(path);
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

}  // namespace

void slowDisk(HMODULE plugin, const std::string& part, unsigned ms) {
    std::wstring wide(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, part.c_str(), -1, nullptr, 0)),
                      L'\0');
    MultiByteToWideChar(CP_ACP, 0, part.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    wide.pop_back();  // the terminator
    {
        const std::lock_guard lock(g_lock);
        g_part = std::move(wide);
        g_ms = ms;
    }
    const HMODULE system = GetModuleHandleA("kernel32.dll");
    const auto named = [system](const char* name) { return addressOf(GetProcAddress(system, name)); };
    const Detour detours[] = {
        {named("CreateFileW"), addressOf(slowCreateFile)},
        {named("FindFirstFileW"), addressOf(slowFindFirstFile)},
        {named("GetFileAttributesW"), addressOf(slowGetFileAttributes)},
        {named("GetFileAttributesExW"), addressOf(slowGetFileAttributesEx)},
        {named("CopyFileExW"), addressOf(slowCopyFileEx)},
        {named("DeleteFileW"), addressOf(slowDeleteFile)},
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

}  // namespace zoka
