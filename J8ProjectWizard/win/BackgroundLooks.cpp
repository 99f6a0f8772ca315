#include "J8ProjectWizard/win/BackgroundLooks.h"

#include <utility>

namespace zoka {

BackgroundLooks::~BackgroundLooks() {
    if (m_thread) {
        {
            const std::lock_guard lock(m_lock);
            m_stops = true;
        }
        SetEvent(m_wakes);
        // The handle becomes signalled when the thread has left this library for good.
        WaitForSingleObject(m_thread, INFINITE);
        CloseHandle(m_thread);
    }
    for (const HANDLE event : {m_wakes, m_wasRead}) {
        if (event) {
            CloseHandle(event);
        }
    }
}

void BackgroundLooks::wake() {
    if (!m_wakes) {
        m_wakes = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    }
    if (!m_wasRead) {
        m_wasRead = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    }
    if (!m_thread && m_wakes && m_wasRead) {
        m_thread = CreateThread(nullptr, 0, threadMain, this, 0, nullptr);
    }
    if (m_thread) {
        SetEvent(m_wakes);
    }
}

void BackgroundLooks::read(std::function<XMLNode()> wizard) {
    {
        const std::lock_guard lock(m_lock);
        m_toRead = std::move(wizard);
        m_read.reset();
        m_readFault = nullptr;
        ++m_reads;
        m_asked.clear();
        if (m_wasRead) {
            ResetEvent(m_wasRead);
        }
    }
    wake();
    if (!m_thread) {  // then here
        m_read = std::exchange(m_toRead, nullptr)();
    }
}

std::optional<XMLNode> BackgroundLooks::takeRead(DWORD milliseconds) {
    isRead(milliseconds);
    const std::lock_guard lock(m_lock);
    if (m_readFault) {
        std::rethrow_exception(std::exchange(m_readFault, nullptr));
    }
    return std::exchange(m_read, std::nullopt);
}

void BackgroundLooks::ask(std::vector<std::string> paths) {
    {
        const std::lock_guard lock(m_lock);
        m_asked.assign(std::make_move_iterator(paths.begin()), std::make_move_iterator(paths.end()));
    }
    wake();
}

std::vector<DiskLook> BackgroundLooks::take(bool& more) {
    const std::lock_guard lock(m_lock);
    // Without a thread nothing will come: OK looks for itself.
    more = m_thread && (!m_asked.empty() || m_isLooking);
    return std::exchange(m_seen, {});
}

DWORD WINAPI BackgroundLooks::threadMain(void* self) noexcept {
    static_cast<BackgroundLooks*>(self)->run();
    return 0;
}

void BackgroundLooks::run() noexcept {
    for (bool ended = false; !ended;) {
        try {
            work();
            ended = true;
        } catch (...) {
            // No memory left for looking; the next time there may be.
            const std::lock_guard lock(m_lock);
            m_asked.clear();
            m_isLooking = false;
        }
    }
}

void BackgroundLooks::work() {
    std::unique_lock lock(m_lock);
    while (!m_stops) {
        if (m_toRead) {
            const auto read = std::exchange(m_toRead, nullptr);
            const unsigned number = m_reads;
            lock.unlock();
            std::optional<XMLNode> wizard;
            std::exception_ptr fault;
            try {
                wizard = read();
            } catch (...) {
                fault = std::current_exception();
            }
            lock.lock();
            if (number == m_reads) {
                m_read = std::move(wizard);
                m_readFault = std::move(fault);
                SetEvent(m_wasRead);
            }
            continue;
        }
        if (m_asked.empty()) {
            lock.unlock();
            WaitForSingleObject(m_wakes, INFINITE);
            lock.lock();
            continue;
        }
        const std::string path = std::move(m_asked.front());
        m_asked.pop_front();
        m_isLooking = true;
        lock.unlock();
        DiskLook look = lookAt(path);
        lock.lock();
        m_isLooking = false;
        m_seen.push_back(std::move(look));
    }
}

}  // namespace zoka
