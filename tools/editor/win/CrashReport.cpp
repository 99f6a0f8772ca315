#include "tools/editor/win/CrashReport.h"

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace zoka {

namespace {

// The thread may have little left that works: no allocation, no locks of the runtime.
LONG WINAPI report(EXCEPTION_POINTERS* fault) {
    const auto* const record = fault->ExceptionRecord;
    const auto address = reinterpret_cast<std::uintptr_t>(record->ExceptionAddress);
    HMODULE module = nullptr;
    char path[MAX_PATH] = "";
    constexpr DWORD kByAddress =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (GetModuleHandleExA(kByAddress, reinterpret_cast<const char*>(address), &module)) {
        GetModuleFileNameA(module, path, sizeof path - 1);
    }
    const char* const separator = std::strrchr(path, '\\');
    const char* const name = separator ? separator + 1 : module ? path : "no module";
    char line[MAX_PATH + 128];
    const int length =
        std::snprintf(line, sizeof line, "zunhost: unhandled exception %lx at %s+%llx (thread %lu)\n",
                      record->ExceptionCode, name,
                      static_cast<unsigned long long>(address - reinterpret_cast<std::uintptr_t>(module)),
                      GetCurrentThreadId());
    DWORD written;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), line, static_cast<DWORD>(length), &written, nullptr);
    return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void reportCrashes() {
    SetUnhandledExceptionFilter(report);
}

}  // namespace zoka
