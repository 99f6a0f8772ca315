#include "plugin/win/ThreadRuntime.h"

#include <windows.h>

#include <pthread.h>

#include "plugin/win/PanelWindow.h"

// The callbacks through which the loader tells the runtime of threads that come and go.
extern "C" const IMAGE_TLS_DIRECTORY _tls_used;
extern "C" BOOL WINAPI DllMainCRTStartup(HINSTANCE instance, DWORD reason, LPVOID processEnds);

namespace __gnu_cxx {
// Frees the memory that the runtime keeps for exceptions when there is no other; made for leak checkers.
void __freeres();
}  // namespace __gnu_cxx

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

// At the first exception, the first thread-local object of its kind and the flush of the standard streams, whichever
// comes first, the thread library sets up its keys, whose lock has two semaphores that it never closes. So it is made
// to do that at the start, where it can be seen which ones they are, and they are closed at the end.
constexpr int kKeySemaphores = 2;
HANDLE g_semaphores[kKeySemaphores] = {};
int g_semaphoresMade = 0;
bool g_settingUpKeys = false;

HANDLE WINAPI createSemaphore(SECURITY_ATTRIBUTES* security, LONG initial, LONG most, const char*) noexcept {
    const HANDLE made = CreateSemaphoreW(security, initial, most, nullptr);
    if (g_settingUpKeys && made && g_semaphoresMade < kKeySemaphores) {
        g_semaphores[g_semaphoresMade++] = made;
    }
    return made;
}

void setUpKeys() {
    g_settingUpKeys = true;
    pthread_key_t key;
    if (pthread_key_create(&key, nullptr) == 0) {
        pthread_key_delete(key);
    }
    g_settingUpKeys = false;
}

void closeKeySemaphores() {
    while (g_semaphoresMade > 0) {
        CloseHandle(g_semaphores[--g_semaphoresMade]);
    }
}

}  // namespace
}  // namespace zoka

// Stands in for the import through which the thread library makes its semaphores, none of which has a name.
#ifdef _WIN64
#define ZOKA_SEMAPHORE_IMPORT "__imp_CreateSemaphoreA"
#else
#define ZOKA_SEMAPHORE_IMPORT "__imp__CreateSemaphoreA@16"
#endif
extern "C" {
extern decltype(&zoka::createSemaphore) zokaSemaphoreImport __asm__(ZOKA_SEMAPHORE_IMPORT);
decltype(&zoka::createSemaphore) zokaSemaphoreImport = zoka::createSemaphore;
}

// The library's entry point: it stands around the runtime's own start and end, before its first and after its
// last use of threads. The loader's lock is held. Its own frame is open while the word of guarded ones is chosen.
extern "C" __attribute__((no_stack_protector)) BOOL WINAPI ZokaEntry(HINSTANCE instance, DWORD reason,
                                                                     LPVOID processEnds) noexcept {
    if (reason == DLL_PROCESS_ATTACH) {
        zoka::findRuntimeSlot();
        zoka::setUpKeys();
    }
    const BOOL result = DllMainCRTStartup(instance, reason, processEnds);
    if (reason == DLL_PROCESS_DETACH && !processEnds) {
        zoka::freeThreadRuntime();
        __gnu_cxx::__freeres();  // nothing is thrown from here on
        zoka::closeKeySemaphores();
        if (zoka::g_runtimeSlot != TLS_OUT_OF_INDEXES) {
            TlsFree(zoka::g_runtimeSlot);
        }
    }
    return result;
}
