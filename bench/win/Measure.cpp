#include "bench/win/Measure.h"

#include <cstdio>
#include <cstdlib>

namespace zoka::bench {
namespace {

struct Wanted {
    const char* className;
    int id;
    HWND found;
};

BOOL CALLBACK isWanted(HWND child, LPARAM parameter) {
    Wanted& wanted = *reinterpret_cast<Wanted*>(parameter);
    char name[64] = {};
    GetClassNameA(child, name, sizeof name);
    const bool fits =
        wanted.id != 0 ? GetDlgCtrlID(child) == wanted.id : lstrcmpiA(name, wanted.className) == 0;
    if (fits && IsWindowVisible(child)) {
        wanted.found = child;
    }
    return wanted.found == nullptr;
}

}  // namespace

HWND control(HWND window, int id, const char* className) {
    Wanted wanted{className, id, nullptr};
    EnumChildWindows(window, isWanted, reinterpret_cast<LPARAM>(&wanted));
    if (!wanted.found) {
        stop("the window has no control " + std::to_string(id) + className);
    }
    return wanted.found;
}

void stop(const std::string& why) {
    std::fprintf(stderr, "bench: %s\n", why.c_str());
    std::exit(1);
}

void mustBe(const Outcome& outcome) {
    if (!outcome) {
        stop(outcome.why());
    }
}

int runWithPlugin(int argc, char** argv, const char* name, int (*run)(const std::string& dll)) {
    if (argc != 2) {
        std::fprintf(stderr, "%s DLL\n", name);
        return 2;
    }
    return run(argv[1]);
}

double millisecondsOf(const std::function<void()>& work) {
    LARGE_INTEGER frequency, start, end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    work();
    QueryPerformanceCounter(&end);
    return static_cast<double>(end.QuadPart - start.QuadPart) * 1000.0 /
           static_cast<double>(frequency.QuadPart);
}

void tellRound(int round, int rounds) {
    std::fprintf(stderr, "round %d of %d\n", round + 1, rounds);
}

void paint(HWND window) {
    RedrawWindow(window, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
}

bool row(const std::string& what, double ours, const std::string& against, double theirs, double wanted) {
    const double ratio = ours / theirs;
    std::printf("%-44s %9.2f ms  %-32s %9.2f ms  ratio %5.2f  wanted <= %.2f  %s\n", what.c_str(), ours,
                against.c_str(), theirs, ratio, wanted, ratio <= wanted ? "ok" : "MISSED");
    std::fflush(stdout);
    return ratio <= wanted;
}

}  // namespace zoka::bench
