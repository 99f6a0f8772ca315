// Procedures before a control's own: their order, messages within messages, and a control that goes meanwhile.
#include "ui/win/Subclass.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace zoka;

constexpr UINT kAsk = WM_APP + 1, kAskAgain = WM_APP + 2, kGo = WM_APP + 3;

std::string g_seen;

// Notes what it sees; `data` is its letter.
LRESULT CALLBACK note(HWND control, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR data) noexcept {
    if (message != kAsk && message != kAskAgain && message != kGo && message != WM_NCDESTROY) {
        return nextProcedure(control, message, wParam, lParam);
    }
    g_seen += static_cast<char>(data);
    if (message == kAsk && data == 'b') {
        SendMessageW(control, kAskAgain, 0, 0);
        g_seen += '.';
    } else if (message == kGo && data == 'b') {
        DestroyWindow(control);
        g_seen += '.';
    }
    const LRESULT answer = nextProcedure(control, message, wParam, lParam);
    return message == kAsk ? answer + 1 : answer;
}

TEST(Subclass, SeesEachMessageInTurnToTheEnd) {
    g_seen.clear();
    const HWND control =
        CreateWindowExA(0, "EDIT", "some text", WS_POPUP, 0, 0, 50, 20, nullptr, nullptr, nullptr, nullptr);
    for (const char letter : {'a', 'b', 'c'}) {
        addProcedure(control, note, static_cast<DWORD_PTR>(letter));
    }
    EXPECT_EQ(SendMessageW(control, kAsk, 0, 0), 3);
    EXPECT_EQ(g_seen, "cbcba.a");  // the one within goes through all of them, and the first goes on
    EXPECT_EQ(SendMessageA(control, WM_GETTEXTLENGTH, 0, 0), 9);
    // Gone in the middle of a message: each has seen its end, and nothing is asked of it any more.
    g_seen.clear();
    EXPECT_EQ(SendMessageW(control, kGo, 0, 0), 0);
    EXPECT_EQ(g_seen, "cbcba.");
    EXPECT_FALSE(IsWindow(control));
}

}  // namespace
