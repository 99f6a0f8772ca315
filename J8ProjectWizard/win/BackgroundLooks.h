// Looks at paths on a thread of its own, so that a slow disk keeps no window waiting.
#pragma once

#include <windows.h>

#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "J8ProjectWizard/PlanTree.h"

namespace zoka {

// Made and used by one thread.
class BackgroundLooks {
public:
    BackgroundLooks() = default;
    // Waits for the look that is under way.
    ~BackgroundLooks();
    BackgroundLooks(const BackgroundLooks&) = delete;
    BackgroundLooks& operator=(const BackgroundLooks&) = delete;

    // These paths are to be looked at, in that order, and no others any more.
    void ask(std::vector<std::string> paths);
    // What was seen since the last call. `more`: whether there is more to come.
    std::vector<DiskLook> take(bool& more);

private:
    static DWORD WINAPI threadMain(void* self);
    void work();

    std::mutex m_lock;  // of all but the handles
    std::deque<std::string> m_asked;
    std::vector<DiskLook> m_seen;
    bool m_isLooking = false, m_stops = false;
    HANDLE m_thread = nullptr;
    HANDLE m_wakes = nullptr;  // the thread, when there is something to do
};

}  // namespace zoka
