// Two pieces of work measured beside each other, and the ratio that is wanted of them.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>

namespace zoka::bench {

struct Pair {
    double ours, other;  // ms
};

inline double millisecondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// The time that the processor has worked for this program: for work that waits for nothing, other work on the machine
// then counts as little as can be.
inline double processorMillisecondsOf(const std::function<void()>& work) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    };
    const double start = now();
    work();
    return now() - start;
}

// The least of both, taken in turn, so that the machine's drift and other work on it meet both alike: give them work
// of about the same length. Both give milliseconds.
inline Pair leastOf(int rounds, const std::function<double()>& ours, const std::function<double()>& other) {
    Pair least{1e9, 1e9};
    for (int i = 0; i < rounds; ++i) {
        least.ours = std::min(least.ours, ours());
        least.other = std::min(least.other, other());
    }
    return least;
}

// Whether everything that was printed is as wanted.
inline bool g_allMet = true;

// The end of each line that something is wanted of.
inline const char* verdict(bool met) {
    g_allMet = g_allMet && met;
    return met ? "ok" : "MISSED";
}

inline void printRatio(const char* what, const Pair& times, const char* against, double wanted) {
    const double ratio = times.ours / times.other;
    std::printf("%-44s %9.2f ms  %-24s %9.2f ms  ratio %5.2f  wanted <= %.2f  %s\n", what, times.ours,
                against, times.other, ratio, wanted, verdict(ratio <= wanted));
}

}  // namespace zoka::bench
