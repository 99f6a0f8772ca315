#include "tools/editor/win/ResourceCount.h"

#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "tools/editor/win/WindowSearch.h"

namespace zoka {

namespace {

// The system's own list of all handles: a count, then one entry a handle. Asked for because
// GetProcessHandleCount answers 0 on some systems.
struct SystemHandle {
    ULONG process;
    BYTE type;
    BYTE flags;
    USHORT value;
    void* object;
    ULONG access;
};

// A function of the system's own library.
template <typename Function>
Function systemFunction(const char* name) {
    const FARPROC found = GetProcAddress(GetModuleHandleA("ntdll.dll"), name);
    Function function;
    std::memcpy(&function, &found, sizeof function);
    return function;
}

// The values of this process's handles; false where the system doesn't tell.
bool listHandles(std::vector<unsigned>& values) {
    using Query = LONG(WINAPI*)(ULONG, void*, ULONG, ULONG*);
    const auto query = systemFunction<Query>("NtQuerySystemInformation");
    constexpr ULONG kSystemHandleInformation = 16;
    std::vector<std::uint64_t> buffer(1U << 15);
    constexpr LONG kTooSmall = static_cast<LONG>(0xC0000004);
    LONG status;
    while ((status = query(kSystemHandleInformation, buffer.data(),
                           static_cast<ULONG>(buffer.size() * sizeof buffer[0]), nullptr)) == kTooSmall) {
        buffer.resize(buffer.size() * 2);
    }
    if (status < 0) {
        return false;
    }
    ULONG total;
    std::memcpy(&total, buffer.data(), sizeof total);
    const auto* const first = reinterpret_cast<const SystemHandle*>(
        reinterpret_cast<const char*>(buffer.data()) + alignof(SystemHandle));
    for (const SystemHandle* handle = first; handle != first + total; ++handle) {
        if (handle->process == GetCurrentProcessId()) {
            values.push_back(handle->value);
        }
    }
    return true;
}

long countHandles() {
    DWORD direct = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &direct) && direct) {
        return static_cast<long>(direct);
    }
    std::vector<unsigned> values;
    return listHandles(values) ? static_cast<long>(values.size()) : -1;
}

// What the system says of a handle's object, as text: `question` 1 asks for its name, 2 for its kind.
std::string objectText(unsigned value, ULONG question) {
    using Query = LONG(WINAPI*)(HANDLE, ULONG, void*, ULONG, ULONG*);
    static const auto query = systemFunction<Query>("NtQueryObject");
    struct {
        USHORT bytes, room;
        wchar_t* text;
        wchar_t space[512];
    } answer{};
    const HANDLE handle = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(value));
    if (query(handle, question, &answer, sizeof answer, nullptr) < 0 || !answer.text) {
        return {};
    }
    std::string text;
    for (USHORT i = 0; i < answer.bytes / sizeof(wchar_t); ++i) {
        text += static_cast<char>(answer.text[i]);
    }
    return text;
}

long countThreads() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) {
        return -1;
    }
    long count = 0;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId();
    }
    CloseHandle(snapshot);
    return count;
}

long countWindows() {
    long count = 0;
    for (const HWND window : topWindows(false)) {
        count += 1 + static_cast<long>(childWindows(window).size());
    }
    return count;
}

long countGdi() {
    const DWORD direct = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    if (direct) {
        return static_cast<long>(direct);
    }
    // Where the system doesn't tell, it knows an object by its place in the table alone.
    long count = 0;
    for (std::uintptr_t place = 1; place <= 0xFFFF; ++place) {
        count += GetObjectType(reinterpret_cast<HGDIOBJ>(place)) != 0;
    }
    return count;
}

// User objects by kind. The system knows another process's windows from here, its other objects not.
struct UserObjects {
    long windows = 0;
    long menus = 0;
    long cursors = 0;
    long rest = 0;
    long windowsOfOthers = 0;
};

std::uintptr_t placeOf(HMENU menu) {
    return reinterpret_cast<std::uintptr_t>(menu) & 0xFFFF;
}

// Object handles are places in a table, and a freed place is taken again before a new one: once enough
// menus are made to fill every gap, each place up to the last is theirs or holds an object in use.
UserObjects userObjects() {
    constexpr int kGaps = 500;
    constexpr std::uintptr_t kFirst = 0x20;
    constexpr std::uintptr_t kStep = 2;
    std::vector<HMENU> made;
    std::vector<bool> filled(0x10000);
    std::uintptr_t last = 0;
    for (int i = 0; i < kGaps; ++i) {
        made.push_back(CreateMenu());
        filled[placeOf(made.back())] = true;
        last = std::max(last, placeOf(made.back()));
    }
    UserObjects count;
    for (std::uintptr_t place = kFirst; place <= last; place += kStep) {
        DWORD owner = 0;
        ICONINFO picture{};
        if (filled[place]) {
            continue;
        }
        GetWindowThreadProcessId(reinterpret_cast<HWND>(place), &owner);
        if (owner) {
            ++(owner == GetCurrentProcessId() ? count.windows : count.windowsOfOthers);
        } else if (IsMenu(reinterpret_cast<HMENU>(place))) {
            ++count.menus;
        } else if (GetIconInfo(reinterpret_cast<HICON>(place), &picture)) {
            DeleteObject(picture.hbmMask);
            DeleteObject(picture.hbmColor);
            ++count.cursors;
        } else {
            ++count.rest;
        }
    }
    for (const HMENU menu : made) {
        DestroyMenu(menu);
    }
    return count;
}

long countUser() {
    const DWORD direct = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    if (direct) {
        return static_cast<long>(direct);
    }
    const UserObjects count = userObjects();
    return count.windows + count.menus + count.cursors + count.rest;
}

// The system rounds to pages.
long countMemory() {
    PROCESS_MEMORY_COUNTERS counters{};
    return GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) && counters.PagefileUsage
               ? static_cast<long>(counters.PagefileUsage / 1024)
               : -1;
}

}  // namespace

ResourceCount countResources() {
    return {countHandles(), countThreads(), countWindows(), countGdi(), countUser(), countMemory()};
}

std::vector<HeldHandle> heldHandles() {
    std::vector<unsigned> values;
    listHandles(values);
    std::sort(values.begin(), values.end());
    std::vector<HeldHandle> held;
    for (const unsigned value : values) {
        std::string kind = objectText(value, 2);
        // The question for the name of a pipe can wait for whoever reads from it.
        const std::string name = kind == "File" ? "" : objectText(value, 1);
        held.push_back({value, kind + (name.empty() ? "" : " " + name)});
    }
    return held;
}

std::string userObjectKinds() {
    const UserObjects count = userObjects();
    return std::to_string(count.windows) + " windows, " + std::to_string(count.menus) + " menus, " +
           std::to_string(count.cursors) + " cursors and icons, " + std::to_string(count.rest) +
           " others; and " + std::to_string(count.windowsOfOthers) + " windows of other processes";
}

long resourceField(const ResourceCount& count, const std::string& name) {
    if (name == "handles") {
        return count.handles;
    }
    if (name == "threads") {
        return count.threads;
    }
    if (name == "windows") {
        return count.windows;
    }
    if (name == "gdi") {
        return count.gdi;
    }
    if (name == "user") {
        return count.user;
    }
    if (name == "memory") {
        return count.memory;
    }
    return -1;
}

}  // namespace zoka
