// Real message boxes, answered from another thread.
#include "util/win/WinPrompt.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <thread>

namespace {

using namespace zoka;

constexpr DWORD kPatience = 20'000;  // ms

// Waits for the box with this title and sends it a command; the style of its window.
DWORD pressButton(const char* title, WPARAM command) {
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < kPatience) {
        if (HWND box = FindWindowA(nullptr, title)) {
            const auto style = static_cast<DWORD>(GetWindowLongA(box, GWL_EXSTYLE));
            PostMessageA(box, WM_COMMAND, command, 0);
            return style;
        }
        Sleep(10);
    }
    ADD_FAILURE() << "no box titled " << title;
    return 0;
}

TEST(WinPrompt, AnswersAsTheUserDoes) {
    struct Row {
        PromptButtons buttons;
        WPARAM command;
        PromptAnswer answer;
    };
    const Row rows[] = {
        {PromptButtons::Ok, IDOK, PromptAnswer::Ok},
        {PromptButtons::OkCancel, IDCANCEL, PromptAnswer::Cancel},
        {PromptButtons::YesNo, IDYES, PromptAnswer::Yes},
        {PromptButtons::YesNo, IDNO, PromptAnswer::No},
        {PromptButtons::YesNoCancel, IDCANCEL, PromptAnswer::Cancel},
    };
    int number = 0;
    for (const Row& row : rows) {
        const std::string title = "ZOKA prompt test " + std::to_string(++number);
        std::thread user([&] { pressButton(title.c_str(), row.command); });
        EXPECT_EQ(WinPrompt().ask("text", title, row.buttons, PromptIcon::Warning), row.answer) << title;
        user.join();
    }
}

TEST(WinPromptDeathTest, FatalStopStaysOnTopAndEndsTheProcess) {
    EXPECT_EXIT(
        {
            std::thread user([] {
                const DWORD style = pressButton("ZOKA fatal test", IDOK);
                if (!(style & WS_EX_TOPMOST)) {
                    ExitProcess(99);
                }
            });
            WinPrompt().fatalStop("text", "ZOKA fatal test", 12);
        },
        testing::ExitedWithCode(12), "");
}

}  // namespace
