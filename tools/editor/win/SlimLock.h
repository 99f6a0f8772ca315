// A lock for std::lock_guard that makes no kernel object. The standard library's makes an event the first time that a
// thread has to wait for it, which looks like a handle that the plug-in left behind.
#pragma once

#include <windows.h>

namespace zoka {

class SlimLock {
public:
    SlimLock() = default;
    SlimLock(const SlimLock&) = delete;
    SlimLock& operator=(const SlimLock&) = delete;

    void lock() { AcquireSRWLockExclusive(&m_lock); }
    void unlock() { ReleaseSRWLockExclusive(&m_lock); }

private:
    SRWLOCK m_lock = SRWLOCK_INIT;
};

}  // namespace zoka
