// Jobs with a thread of their own.
#include "ui/win/ProgressWindow.h"

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <string>
#include <vector>

namespace {

using namespace zoka;

// Leaves the process no piece of memory of a megabyte or more while it lives.
class NoLargePieces {
public:
    NoLargePieces() {
        for (SIZE_T size = SIZE_T{1} << 30; size >= SIZE_T{1} << 20; size /= 2) {
            while (void* const piece = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS)) {
                m_pieces.push_back(piece);
            }
        }
    }
    ~NoLargePieces() {
        for (void* const piece : m_pieces) {
            VirtualFree(piece, 0, MEM_RELEASE);
        }
    }
    NoLargePieces(const NoLargePieces&) = delete;
    NoLargePieces& operator=(const NoLargePieces&) = delete;

private:
    std::vector<void*> m_pieces;
};

// The job works on what stands on the window's stack: it has ended when the call does, however that does.
TEST(ProgressWindow, WaitsForAJobThatItCanShowNothingOf) {
    std::atomic<bool> stopped = false, ended = false;
    ProgressWindow progress(nullptr, "Test");
    const auto job = [&](JobProgress& shown) {
        const std::string what(4 << 20, 'x');
        for (int i = 0; i < 50; ++i) {
            shown.step(0, 1, what);
            Sleep(1);
        }
        const NoLargePieces full;
        for (int i = 0; i < 10000 && !stopped; ++i) {
            Sleep(1);
            stopped = !shown.step(0, 1, what);
        }
        Sleep(50);
        ended = true;
    };
    EXPECT_THROW(progress.runOnThread(job), std::bad_alloc);
    EXPECT_TRUE(stopped);
    EXPECT_TRUE(ended);
    EXPECT_TRUE(progress.cancelled());
}

}  // namespace
