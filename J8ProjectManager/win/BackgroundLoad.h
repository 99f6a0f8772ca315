// Loads a project on a thread of its own, so that its window is there at once.
#pragma once

#include <windows.h>

#include <exception>
#include <mutex>
#include <string>

#include "J8ProjectManager/ProjectSession.h"

namespace zoka {

// Made and used by one thread.
class BackgroundLoad {
public:
    // Begins to load, or with `givesWay`, where there is one processor only, waits for resume with that: the window is
    // made first. What `before` held is freed afterwards on the same thread: of a large project that takes its time,
    // too. Where no thread can be had, all is done here.
    BackgroundLoad(std::string projectFile, CJ8ProjectManager& before, bool givesWay);
    // Waits for the thread, which stops soon.
    ~BackgroundLoad();
    BackgroundLoad(const BackgroundLoad&) = delete;
    BackgroundLoad& operator=(const BackgroundLoad&) = delete;

    // Whether it is done within that time.
    bool isDone(DWORD milliseconds) const;
    // The window gets the message once it is done, which may be at once. A null window stops the load.
    void resume(HWND window, UINT message = 0);
    // What was loaded, once; waits for it. Throws what loading has thrown.
    ProjectSession::Loaded take();

private:
    static DWORD WINAPI threadMain(void* self) noexcept;
    void work(bool waits) noexcept;

    const std::string m_projectFile;
    // The thread's until it is done.
    CJ8ProjectManager m_before;
    ProjectSession::Loaded m_loaded;
    std::exception_ptr m_fault;

    HANDLE m_thread = nullptr;
    HANDLE m_done = nullptr, m_mayResume = nullptr;  // events

    std::mutex m_lock;  // of what follows
    bool m_isDone = false, m_stops = false;
    HWND m_window = nullptr;  // to be told
    UINT m_message = 0;
};

}  // namespace zoka
