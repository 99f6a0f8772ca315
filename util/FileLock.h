// The lock of a file that is changed: whoever reads a file, changes it and replaces it holds the file's lock
// meanwhile, so that of two programs, or of two panels, neither writes over what the other has just put there.
#pragma once

#include <chrono>
#include <string>

namespace zoka {

// How long another holder is waited for. Nobody holds a lock while a user thinks.
inline constexpr std::chrono::milliseconds kLockPatience{10'000};

// Holds the lock from its construction to its destruction, on the same thread; a thread that has a file's
// lock may take it again. [any thread]
//     const FileLock lock(path);
//     if (!lock) return Refusal{lock.why()};
//     ... read, change, safeWrite ...
// Where the folder takes no lock file (it is read-only, say) there is nothing to hold and the work goes on:
// FileContent::expected still notices what another has written. The lock file stands beside the file that
// the path leads to, is named "~zk-NAME.lock" and goes with the lock; one whose holder is gone is taken over
// and the user is told, once the lock is released: others need not wait for an answer.
class FileLock {
public:
    explicit FileLock(const std::string& path, std::chrono::milliseconds patience = kLockPatience);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // False when another still held it when the patience was over; `why` says so, in words for the user.
    explicit operator bool() const { return m_why.empty(); }
    const std::string& why() const { return m_why; }

private:
    std::string m_key;        // empty: nothing is held
    std::string m_takenOver;  // the lock file, when one was left behind
    std::string m_why;
};

}  // namespace zoka
