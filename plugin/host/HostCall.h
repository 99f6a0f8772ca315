// Marks the time in which the plug-in is in a call to the host, however long the host takes.
#pragma once

#include <atomic>

namespace zoka {

// As long as one lives, its thread is in the host's code. [any thread]
class HostCall {
public:
    HostCall() { ++s_underWay; }
    ~HostCall() { --s_underWay; }
    HostCall(const HostCall&) = delete;
    HostCall& operator=(const HostCall&) = delete;

    static bool anyUnderWay() { return s_underWay.load() > 0; }

private:
    static inline std::atomic<int> s_underWay{0};
};

}  // namespace zoka
