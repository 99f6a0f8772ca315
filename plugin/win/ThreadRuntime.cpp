#include "plugin/win/ThreadRuntime.h"

#include <windows.h>

#include <pthread.h>

#include <ios>
#include <new>

#include "plugin/win/PanelWindow.h"

// The callbacks through which the loader tells the runtime of threads that come and go.
extern "C" const IMAGE_TLS_DIRECTORY _tls_used;
extern "C" BOOL WINAPI DllMainCRTStartup(HINSTANCE instance, DWORD reason, LPVOID processEnds);

namespace zoka {

void freeThreadRuntime() {
    for (auto callback = reinterpret_cast<const PIMAGE_TLS_CALLBACK*>(_tls_used.AddressOfCallBacks);
         callback && *callback; ++callback) {
        (*callback)(moduleInstance(), DLL_THREAD_DETACH, nullptr);
    }
}

namespace {

// The runtime's thread library takes a slot of thread-local storage at its first use and never gives it back.
// A process has some 1,080 of them, and the thread library ends the process when it finds none: a host that
// loads and unloads the plug-in often enough would die of it. So the slot is found out at the start and freed
// at the end.
DWORD g_runtimeSlot = TLS_OUT_OF_INDEXES;

// The thread library's first use takes the lowest free slot; that it did so shows in its having put something
// in. Where another thread came in between, the slot stays unknown and is lost, which does no harm.
void findRuntimeSlot() {
    const DWORD lowest = TlsAlloc();
    if (lowest == TLS_OUT_OF_INDEXES) {
        return;
    }
    TlsFree(lowest);
    pthread_self();
    if (TlsGetValue(lowest)) {
        g_runtimeSlot = lowest;
    }
}

// Where any of our libraries brings in the standard streams, the last one to leave them flushes them at the unload.
// That makes the thread library set up its keys, whose two semaphores are never closed. Nothing here writes to those
// streams, so one user of them is made that never leaves.
void leaveStreamsUnflushed() {
    alignas(std::ios_base::Init) static unsigned char user[sizeof(std::ios_base::Init)];
    new (user) std::ios_base::Init;
}

}  // namespace
}  // namespace zoka

// The library's entry point: it stands around the runtime's own start and end, before its first and after its
// last use of threads. The loader's lock is held.
extern "C" BOOL WINAPI ZokaEntry(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_ATTACH) {
        zoka::findRuntimeSlot();
    }
    const BOOL result = DllMainCRTStartup(instance, reason, processEnds);
    if (reason == DLL_PROCESS_ATTACH && result) {
        zoka::leaveStreamsUnflushed();
    }
    if (reason == DLL_PROCESS_DETACH && !processEnds) {
        zoka::freeThreadRuntime();
        if (zoka::g_runtimeSlot != TLS_OUT_OF_INDEXES) {
            TlsFree(zoka::g_runtimeSlot);
        }
    }
    return result;
}
