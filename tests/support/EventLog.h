// What happened, in order, from any thread.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace zoka::test {

class EventLog {
public:
    void add(const std::string& event) {
        const std::lock_guard lock(m_mutex);
        m_events.push_back(event);
    }
    // Those so far, and from then on none.
    std::vector<std::string> take() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_events, {});
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_events;
};

}  // namespace zoka::test
