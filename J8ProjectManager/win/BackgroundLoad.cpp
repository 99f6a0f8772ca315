#include "J8ProjectManager/win/BackgroundLoad.h"

#include <bit>
#include <utility>

namespace zoka {

namespace {

bool hasOneProcessor() {
    DWORD_PTR own = 0, all = 0;
    return GetProcessAffinityMask(GetCurrentProcess(), &own, &all) && std::popcount(own) == 1;
}

}  // namespace

BackgroundLoad::BackgroundLoad(std::string projectFile, CJ8ProjectManager& before, bool givesWay)
    : m_projectFile(std::move(projectFile)),
      m_done(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      m_mayResume(CreateEventA(nullptr, TRUE, !givesWay || !hasOneProcessor(), nullptr)) {
    m_before = std::move(before);
    before.Clear();
    if (m_done && m_mayResume) {
        m_thread = CreateThread(nullptr, 0, threadMain, this, 0, nullptr);
    }
    if (!m_thread) {
        work(false);
    }
}

BackgroundLoad::~BackgroundLoad() {
    resume(nullptr);
    if (m_thread) {
        // The handle becomes signalled when the thread has left this library for good.
        WaitForSingleObject(m_thread, INFINITE);
        CloseHandle(m_thread);
    }
    for (const HANDLE event : {m_done, m_mayResume}) {
        if (event) {
            CloseHandle(event);
        }
    }
}

bool BackgroundLoad::isDone(DWORD milliseconds) const {
    return !m_thread || WaitForSingleObject(m_done, milliseconds) == WAIT_OBJECT_0;
}

void BackgroundLoad::resume(HWND window, UINT message) {
    const std::lock_guard lock(m_lock);
    m_window = window;
    m_message = message;
    m_stops = !window;
    if (m_isDone && m_window) {
        PostMessageA(m_window, m_message, 0, 0);
    }
    if (m_mayResume) {
        SetEvent(m_mayResume);
    }
}

ProjectSession::Loaded BackgroundLoad::take() {
    isDone(INFINITE);
    if (m_fault) {
        std::rethrow_exception(std::exchange(m_fault, nullptr));
    }
    return std::move(m_loaded);
}

DWORD WINAPI BackgroundLoad::threadMain(void* self) noexcept {
    static_cast<BackgroundLoad*>(self)->work(true);
    return 0;
}

void BackgroundLoad::work(bool waits) noexcept {
    try {
        if (waits) {
            WaitForSingleObject(m_mayResume, INFINITE);
        }
        m_loaded = ProjectSession::read(m_projectFile, [this](size_t, size_t) {
            const std::lock_guard lock(m_lock);
            return !m_stops;
        });
    } catch (...) {
        m_fault = std::current_exception();
    }
    {
        const std::lock_guard lock(m_lock);
        m_isDone = true;
        if (m_window) {
            PostMessageA(m_window, m_message, 0, 0);
        }
    }
    if (m_done) {
        SetEvent(m_done);
    }
    m_before.Clear();
}

}  // namespace zoka
