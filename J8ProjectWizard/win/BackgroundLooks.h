// Reads a wizard and looks at paths on a thread of its own, so that a slow disk keeps no window waiting.
#pragma once

#include <windows.h>

#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "J8ProjectWizard/PlanTree.h"
#include "xml/XMLNode.h"

namespace zoka {

// Made and used by one thread.
class BackgroundLooks {
public:
    BackgroundLooks() = default;
    // Waits for the look that is under way.
    ~BackgroundLooks();
    BackgroundLooks(const BackgroundLooks&) = delete;
    BackgroundLooks& operator=(const BackgroundLooks&) = delete;

    // That is to be read next, before anything is looked at, and nothing else any more.
    void read(std::function<XMLNode()> wizard);
    // Whether that is done within that time.
    bool isRead(DWORD milliseconds) const {
        return !m_thread || WaitForSingleObject(m_wasRead, milliseconds) == WAIT_OBJECT_0;
    }
    // What was read, once; waits that long for it. Throws what reading has thrown.
    std::optional<XMLNode> takeRead(DWORD milliseconds);

    // These paths are to be looked at, in that order, and no others any more.
    void ask(std::vector<std::string> paths);
    // What was seen since the last call. `more`: whether there is more to come.
    std::vector<DiskLook> take(bool& more);

private:
    static DWORD WINAPI threadMain(void* self) noexcept;
    void run() noexcept;
    void work();
    // Makes the thread, or wakes it.
    void wake();

    std::mutex m_lock;                  // of all but the handles
    std::function<XMLNode()> m_toRead;  // empty: nothing
    unsigned m_reads = 0;               // counts what was to be read
    std::optional<XMLNode> m_read;      // the last of them
    std::exception_ptr m_readFault;     // or what reading it has thrown
    std::deque<std::string> m_asked;
    std::vector<DiskLook> m_seen;
    bool m_isLooking = false, m_stops = false;
    HANDLE m_thread = nullptr;
    HANDLE m_wakes = nullptr;    // the thread, when there is something to do
    HANDLE m_wasRead = nullptr;  // when the last of them is read, or has failed
};

}  // namespace zoka
