// What the benchmarks of the windows share.
#pragma once

#include <windows.h>

#include <algorithm>
#include <functional>
#include <string>

#include "util/Outcome.h"

namespace zoka::bench {

// Ends the program with `why` and status 1.
[[noreturn]] void stop(const std::string& why);
// The same with a refusal's reason.
void mustBe(const Outcome& outcome);
// The program called `name`, whose one argument is the plug-in: its exit status.
int runWithPlugin(int argc, char** argv, const char* name, int (*run)(const std::string& dll));

// The first visible control in the window with that id, or with any (0) of that class; ends the program where there is
// none.
HWND control(HWND window, int id, const char* className = "");

inline void best(double& figure, double now) {
    figure = std::min(figure, now);
}

double millisecondsOf(const std::function<void()>& work);

// Says on the error stream how far the program is; `round` counts from 0.
void tellRound(int round, int rounds);

// All that waits to be drawn in the window.
void paint(HWND window);

// Prints one line: a figure and what it is measured against, both in milliseconds, their ratio and the largest one
// wanted. Whether that was met.
bool row(const std::string& what, double ours, const std::string& against, double theirs, double wanted);

}  // namespace zoka::bench
