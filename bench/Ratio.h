// Two pieces of work measured beside each other, and the ratio that is wanted of them.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
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

// False when the ratio is above what is wanted.
inline bool printRatio(const char* what, const Pair& times, const char* against, double wanted) {
    const double ratio = times.ours / times.other;
    const bool met = ratio <= wanted;
    std::printf("%-44s %9.2f ms  %-24s %9.2f ms  ratio %5.2f  wanted <= %.2f  %s\n", what, times.ours,
                against, times.other, ratio, wanted, met ? "ok" : "MISSED");
    return met;
}

}  // namespace zoka::bench
