// The word that guarded stack frames hold, and what happens when one holds another: in the place of the compiler's own
// part, which asks a provider of the system's for the word. That is a library loaded while the loader's lock is held,
// and a third of the time that loading the plug-in takes.
#include <windows.h>

#include <cstdint>

// The compiler's names.
extern "C" {
BOOLEAN NTAPI SystemFunction036(void* bytes, ULONG count);  // RtlGenRandom, which loads nothing
std::uintptr_t __stack_chk_guard = 0x5a0f3b00;
[[noreturn]] void __stack_chk_fail();
}

namespace {

// Before all else of the program or library runs: no frame that is guarded may be open while the word changes.
__attribute__((constructor(101), no_stack_protector)) void chooseGuard() {
    std::uintptr_t word = 0;
    if (!SystemFunction036(&word, sizeof word) || (word & ~std::uintptr_t{0xff}) == 0) {
        LARGE_INTEGER ticks{};
        QueryPerformanceCounter(&ticks);
        word = static_cast<std::uintptr_t>(ticks.QuadPart) * 0x9e3779b1u ^
               reinterpret_cast<std::uintptr_t>(&word) ^ GetCurrentProcessId() << 8;
    }
    // A text that is copied too far can't go on behind its end.
    __stack_chk_guard = word & ~std::uintptr_t{0xff};
}

}  // namespace

// Nothing that is on the stack can be trusted any more: no handler runs, nothing is freed.
void __stack_chk_fail() {
    OutputDebugStringA("*** stack smashing detected ***\n");
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_STACK_BUFFER_OVERRUN));
    __builtin_trap();
}
