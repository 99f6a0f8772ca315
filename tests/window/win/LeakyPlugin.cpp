// A plug-in that does wrong on purpose: each procedure leaves something behind, so that the tests know that
// the editor's counts would notice.
#include <windows.h>

#include "plugin/EntryPoints.h"
#include "plugin/win/PanelWindow.h"

namespace {

std::int32_t leakHandle(PluginProcDef*, HostContext*, std::int32_t*) {
    return CreateEventA(nullptr, FALSE, FALSE, nullptr) != nullptr;
}
std::int32_t leakGdi(PluginProcDef*, HostContext*, std::int32_t*) {
    return CreateSolidBrush(RGB(9, 8, 7)) != nullptr;
}
std::int32_t leakUser(PluginProcDef*, HostContext*, std::int32_t*) {
    return CreatePopupMenu() != nullptr;
}
std::int32_t leakWindow(PluginProcDef*, HostContext*, std::int32_t*) {
    return CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr) !=
           nullptr;
}
DWORD WINAPI sleepForEver(void*) {
    Sleep(INFINITE);
    return 0;
}
std::int32_t leakThread(PluginProcDef*, HostContext*, std::int32_t*) {
    const HANDLE thread = CreateThread(nullptr, 0, sleepForEver, nullptr, 0, nullptr);
    return thread && CloseHandle(thread);
}
std::int32_t leakMemory(PluginProcDef*, HostContext*, std::int32_t*) {
    return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 40'000) != nullptr;
}
std::int32_t hang(PluginProcDef*, HostContext*, std::int32_t*) {
    Sleep(INFINITE);
    return 0;
}
std::int32_t crash(PluginProcDef*, HostContext*, std::int32_t*) {
    __builtin_trap();
}
std::int32_t throwCaught(PluginProcDef*, HostContext*, std::int32_t*) {
    try {
        throw 1;
    } catch (int value) {
        return value;
    }
}

#define RECORD(index, name, function) \
    { 0, 1, index, name, nullptr, 0, 0, 0, &g_records[index], function, nullptr, 0, 0 }
PluginProcDef g_records[] = {
    RECORD(0, "Leak handles", leakHandle),
    RECORD(1, "Leak gdi", leakGdi),
    RECORD(2, "Leak user", leakUser),
    RECORD(3, "Leak windows", leakWindow),
    RECORD(4, "Leak threads", leakThread),
    RECORD(5, "Hang", hang),
    RECORD(6, "Crash", crash),
    RECORD(7, "Throw", throwCaught),
    RECORD(8, "Leak memory", leakMemory),
};

}  // namespace

extern "C" const IMAGE_DOS_HEADER __ImageBase;
HINSTANCE zoka::moduleInstance() {
    return reinterpret_cast<HINSTANCE>(const_cast<IMAGE_DOS_HEADER*>(&__ImageBase));
}

std::int32_t PIInitialize(AppInterface*) {
    return 1;
}
std::int32_t PIGetPIInfo(std::uint32_t*, std::uint32_t*, std::uint32_t*) {
    return 0;
}
PluginProcDef* PIGetProcDef(std::int32_t index) {
    return index >= 0 && index < static_cast<std::int32_t>(sizeof g_records / sizeof g_records[0])
               ? &g_records[index]
               : nullptr;
}
