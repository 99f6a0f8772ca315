#include "tests/memory/posix/FailingAllocations.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace zoka::test {

long g_countdown = 0;
long g_live = 0;
long g_bytes = 0;
long g_limit = 0;

}  // namespace zoka::test

namespace {

using zoka::test::g_countdown, zoka::test::g_live, zoka::test::g_bytes, zoka::test::g_limit;

bool fails(size_t size) {
    return (g_countdown > 0 && --g_countdown == 0) ||
           (g_limit > 0 && g_bytes + static_cast<long>(size) > g_limit);
}

// The memory counts from now on, or not any more.
void count(void* memory, long sign) {
    g_live += memory ? sign : 0;
    g_bytes += sign * static_cast<long>(malloc_usable_size(memory));
}

}  // namespace

// The C functions as the project's own code calls them: the linker puts these in their place, not in that of the
// system's libraries.
extern "C" {

void* __real_malloc(size_t size);
void* __real_realloc(void* memory, size_t size);
void __real_free(void* memory);

void* __wrap_malloc(size_t size) {
    void* const made = fails(size) ? nullptr : __real_malloc(size);
    count(made, 1);
    return made;
}

void* __wrap_realloc(void* memory, size_t size) {
    if (fails(size)) {
        return nullptr;
    }
    count(memory, -1);
    void* const made = __real_realloc(memory, size);
    count(made ? made : memory, 1);
    return made;
}

void __wrap_free(void* memory) {
    count(memory, -1);
    __real_free(memory);
}
}

void* operator new(size_t size) {
    void* const made = __wrap_malloc(size > 0 ? size : 1);
    if (!made) {
        throw std::bad_alloc();
    }
    return made;
}
void* operator new[](size_t size) {
    return operator new(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return __wrap_malloc(size > 0 ? size : 1);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return __wrap_malloc(size > 0 ? size : 1);
}
void operator delete(void* memory) noexcept {
    __wrap_free(memory);
}
void operator delete[](void* memory) noexcept {
    __wrap_free(memory);
}
void operator delete(void* memory, size_t) noexcept {
    __wrap_free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
    __wrap_free(memory);
}
