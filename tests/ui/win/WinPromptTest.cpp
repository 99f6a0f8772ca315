// Real message boxes, answered from another thread.
#include "ui/win/WinPrompt.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <thread>

#include "tests/support/TempFolder.h"

namespace {

using namespace zoka;

constexpr DWORD kPatience = 20'000;  // ms

// The folder chooser has a title of the system's own, but it is the only dialog of this process.
HWND findOwnDialog() {
    for (HWND box = nullptr; (box = FindWindowExA(nullptr, box, "#32770", nullptr));) {
        DWORD process = 0;
        GetWindowThreadProcessId(box, &process);
        if (process == GetCurrentProcessId()) {
            return box;
        }
    }
    return nullptr;
}

// Waits for the box with this title, or with any for null, and sends it a command; tells the error stream of
// a box that stays on top, which is all that remains of a process that the press ends.
void pressButton(const char* title, WPARAM command) {
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < kPatience) {
        HWND box = title ? FindWindowA(nullptr, title) : findOwnDialog();
        if (box && IsWindowVisible(box)) {  // by then it is where it stays
            if (GetWindowLongA(box, GWL_EXSTYLE) & WS_EX_TOPMOST) {
                std::fputs("a box on top", stderr);
                std::fflush(stderr);
            }
            PostMessageA(box, WM_COMMAND, command, 0);
            return;
        }
        Sleep(10);
    }
    ADD_FAILURE() << "no box titled " << (title ? title : "anything");
}

TEST(WinPrompt, AnswersAsTheUserDoes) {
    const struct {
        PromptButtons buttons;
        WPARAM command;
        PromptAnswer answer;
    } rows[] = {
        {PromptButtons::Ok, IDOK, PromptAnswer::Ok},
        {PromptButtons::OkCancel, IDCANCEL, PromptAnswer::Cancel},
        {PromptButtons::YesNo, IDYES, PromptAnswer::Yes},
        {PromptButtons::YesNo, IDNO, PromptAnswer::No},
        {PromptButtons::YesNoCancel, IDCANCEL, PromptAnswer::Cancel},
    };
    int number = 0;
    for (const auto& row : rows) {
        const std::string title = "ZOKA prompt test " + std::to_string(++number);
        std::thread user([&] { pressButton(title.c_str(), row.command); });
        EXPECT_EQ(WinPrompt().ask("text", title, row.buttons, PromptIcon::Warning), row.answer) << title;
        user.join();
    }
}

// Not in the middle of the screen, nor over its edge.
TEST(WinPrompt, ABoxLiesOverTheWindowThatItIsAbout) {
    const RECT owners[] = {{40, 30, 440, 330}, {700, 400, 1000, 700}, {-200, 100, 100, 300}};
    int number = 0;
    for (const RECT& at : owners) {
        const HWND owner =
            CreateWindowExA(0, "#32770", "owner", WS_POPUP | WS_VISIBLE, at.left, at.top, at.right - at.left,
                            at.bottom - at.top, nullptr, nullptr, nullptr, nullptr);
        SetActiveWindow(owner);
        const std::string title = "ZOKA place test " + std::to_string(++number);
        RECT seen{};
        std::thread user([&] {
            const DWORD start = GetTickCount();
            HWND box = nullptr;
            while (!((box = FindWindowA(nullptr, title.c_str())) && IsWindowVisible(box)) &&
                   GetTickCount() - start < kPatience) {
                Sleep(10);
            }
            // It answers once it is in its loop.
            SendMessageA(box, WM_NULL, 0, 0);
            GetWindowRect(box, &seen);
            PostMessageA(box, WM_COMMAND, IDOK, 0);
        });
        WinPrompt().ask("text", title, PromptButtons::Ok, PromptIcon::Warning);
        user.join();
        DestroyWindow(owner);
        EXPECT_GE(seen.left, 0) << title;
        if (at.left >= 0) {
            EXPECT_NEAR((seen.left + seen.right) / 2, (at.left + at.right) / 2, 1) << title;
        }
        EXPECT_NEAR((seen.top + seen.bottom) / 2, (at.top + at.bottom) / 2, 1) << title;
    }
}

TEST(WinPrompt, ChoosersGiveAPathOrNothing) {
    const zoka::test::TempFolder folder;
    const std::string path = folder.write("a.kez", "x");
    char before[MAX_PATH], after[MAX_PATH];
    GetCurrentDirectoryA(sizeof before, before);
    ChooserRequest request;
    request.title = "ZOKA chooser test 1";
    request.fileName = path;
    request.filter = "KEZ scripts|*.kez";
    for (const WPARAM command : {IDOK, IDCANCEL}) {
        std::thread user([&] { pressButton(request.title.c_str(), command); });
        const auto chosen = WinPrompt().chooseFile(request);
        user.join();
        EXPECT_EQ(chosen, command == IDOK ? std::optional(path) : std::nullopt);
        request.title = "ZOKA chooser test 2";
    }
    request.startFolder = folder.path();
    request.title = "The project's folder:";
    for (const WPARAM command : {IDOK, IDCANCEL}) {
        std::thread user([&] { pressButton(nullptr, command); });
        const auto chosen = WinPrompt().chooseFolder(request);
        user.join();
        EXPECT_EQ(chosen, command == IDOK ? std::optional(folder.path()) : std::nullopt);
    }
    GetCurrentDirectoryA(sizeof after, after);
    EXPECT_STREQ(before, after) << "the editor's current folder is not ours to move";
}

TEST(WinPromptDeathTest, FatalStopStaysOnTopAndEndsTheProcess) {
    EXPECT_EXIT(
        {
            std::thread user([] { pressButton("ZOKA fatal test", IDOK); });
            WinPrompt().fatalStop("text", "ZOKA fatal test", 12);
        },
        testing::ExitedWithCode(12), "a box on top");
}

}  // namespace
