// The drive script's commands about windows, menus and pictures.
#include <atomic>
#include <cstdio>

#include "tools/editor/win/DriveContext.h"
#include "tools/editor/win/Keyboard.h"
#include "tools/editor/win/Screenshot.h"
#include "tools/editor/win/WindowSearch.h"

namespace zoka {

namespace {

std::string openTitles() {
    std::string text;
    for (const HWND window : topWindows()) {
        text += (text.empty() ? "" : ", ") + describe(window);
    }
    return text.empty() ? "no window" : text;
}

std::string boxTexts() {
    std::string text;
    for (const std::string& box : messageBoxTexts()) {
        text += (text.empty() ? "\"" : ", \"") + box + "\"";
    }
    return text.empty() ? "no message box; windows: " + openTitles() : text;
}

void waitWindow(DriveContext& drive, const Words& words) {
    const std::string className = words.size() > 1 ? words[1] : "";
    HWND found = nullptr;
    drive.expect([&] { return (found = findTopWindow(words[0], className)) != nullptr; },
                 "a window \"" + words[0] + "\"" + (className.empty() ? "" : " of class " + className),
                 openTitles);
    drive.current = found;
}

void waitGone(DriveContext& drive, const Words& words) {
    const std::string className = words.size() > 1 ? words[1] : "";
    drive.expect([&] { return findTopWindow(words[0], className) == nullptr; },
                 "the window \"" + words[0] + "\" to be gone", openTitles);
}

void waitBox(DriveContext& drive, const Words& words) {
    const HWND before = words.size() > 1 ? drive.current : nullptr;
    HWND found = nullptr;
    drive.expect([&] { return (found = findMessageBox(words[0])) != nullptr && found != before; },
                 "a message box \"" + words[0] + "\"", boxTexts);
    drive.current = found;
}

void expectBox(DriveContext& drive, const Words& words) {
    const HWND before = drive.current;
    waitBox(drive, {words[0]});
    const HWND box = drive.current;
    drive.carryOut({"click", words.size() > 1 ? words[1] : "OK"});
    drive.expect([&] { return !IsWindow(box); }, "the message box to close", boxTexts);
    drive.current = before;
}

void expectNoWindow(DriveContext&, const Words& words) {
    if (const HWND found = findTopWindow(words[0], words.size() > 1 ? words[1] : "")) {
        throw DriveFault("expected no window \"" + words[0] + "\"; saw " + describe(found));
    }
}

void closeWindow(DriveContext& drive, const Words&) {
    PostMessageA(drive.window(), WM_CLOSE, 0, 0);
}

void sizeWindow(DriveContext& drive, const Words& words) {
    SetWindowPos(drive.window(), nullptr, 0, 0, static_cast<int>(driveNumber(words[0])),
                 static_cast<int>(driveNumber(words[1])), SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void moveWindow(DriveContext& drive, const Words& words) {
    SetWindowPos(drive.window(), nullptr, static_cast<int>(driveNumber(words[0])),
                 static_cast<int>(driveNumber(words[1])), 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void expectPlace(DriveContext& drive, const Words& words) {
    const auto place = [&] {
        RECT area{};
        GetWindowRect(drive.window(), &area);
        std::string text;
        for (const LONG one : {area.left, area.top, area.right - area.left, area.bottom - area.top}) {
            text += (text.empty() ? "" : " ") + std::to_string(one);
        }
        return text;
    };
    const std::string wanted = words[0] + ' ' + words[1] + ' ' + words[2] + ' ' + words[3];
    drive.expect([&] { return place() == wanted; }, "the window at " + wanted, place);
}

void expectOnScreen(DriveContext& drive, const Words&) {
    RECT place{}, common{};
    MONITORINFO screen{};
    screen.cbSize = sizeof screen;
    const auto text = [](const RECT& area) {
        return std::to_string(area.left) + ' ' + std::to_string(area.top) + " to " +
               std::to_string(area.right) + ' ' + std::to_string(area.bottom);
    };
    drive.expect(
        [&] {
            GetWindowRect(drive.window(), &place);
            GetMonitorInfoA(MonitorFromWindow(drive.window(), MONITOR_DEFAULTTONEAREST), &screen);
            return IntersectRect(&common, &place, &screen.rcWork) && EqualRect(&common, &place);
        },
        "the window inside its screen's work area",
        [&] { return text(place) + " on " + text(screen.rcWork); });
}

void menu(DriveContext& drive, const Words& words) {
    UINT command = 0;
    UINT state = 0;
    bool found = false;
    const HWND editor = drive.editorWindow.handle();
    drive.askEditor([&] {
        SendMessageA(editor, WM_INITMENUPOPUP, 0, 0);
        found = findMenuItem(GetMenu(editor), words[0], command, state);
    });
    if (!found || !command) {
        throw DriveFault("the menu has no item \"" + words[0] + "\"");
    }
    if (state & MFS_GRAYED) {
        throw DriveFault("the menu item \"" + words[0] + "\" is greyed");
    }
    PostMessageA(editor, WM_COMMAND, command, 0);
}

void openMenu(DriveContext& drive, const Words& words) {
    const HWND editor = drive.editorWindow.handle();
    if (!bringToFront(editor, drive.patience)) {
        throw DriveFault("the editor's window does not come to the front");
    }
    int position = -1;
    drive.askEditor([&] {
        const HMENU bar = GetMenu(editor);
        for (int i = 0; i < GetMenuItemCount(bar) && position < 0; ++i) {
            char text[100] = {};
            GetMenuStringA(bar, static_cast<UINT>(i), text, sizeof text, MF_BYPOSITION);
            std::string plain = text;
            std::erase(plain, '&');
            if (plain == words[0]) {
                position = i;
            }
        }
    });
    if (position < 0) {
        throw DriveFault("there is no menu \"" + words[0] + "\"");
    }
    // As a user does it: into the menu bar with the keyboard, along to the menu, open.
    PostMessageA(editor, WM_SYSCOMMAND, SC_KEYMENU, 0);
    for (int i = 0; i < position; ++i) {
        pressKey("RIGHT");
    }
    pressKey("DOWN");
    drive.expect([] { return findTopWindow("*", "#32768") != nullptr; }, "the menu to open", openTitles);
}

void expectMenu(DriveContext& drive, const Words& words) {
    const HWND editor = drive.editorWindow.handle();
    std::string seen;
    const auto matches = [&] {
        bool all = true;
        drive.askEditor([&] {
            UINT command = 0;
            UINT state = 0;
            SendMessageA(editor, WM_INITMENUPOPUP, 0, 0);
            if (!findMenuItem(GetMenu(editor), words[0], command, state)) {
                seen = listed(menuPaths(GetMenu(editor)));
                all = false;
                return;
            }
            seen = std::string(state & MFS_CHECKED ? "checked" : "unchecked") + ", " +
                   (state & MFS_GRAYED ? "grayed" : "enabled");
            for (size_t i = 1; i < words.size(); ++i) {
                if ((words[i] == "checked") != ((state & MFS_CHECKED) != 0) &&
                    (words[i] == "checked" || words[i] == "unchecked")) {
                    all = false;
                }
                if ((words[i] == "grayed") != ((state & MFS_GRAYED) != 0) &&
                    (words[i] == "grayed" || words[i] == "enabled")) {
                    all = false;
                }
            }
        });
        return all;
    };
    for (size_t i = 1; i < words.size(); ++i) {
        if (words[i] != "checked" && words[i] != "unchecked" && words[i] != "grayed" &&
            words[i] != "enabled") {
            throw DriveFault("a menu item is checked, unchecked, grayed or enabled, not \"" + words[i] +
                             "\"");
        }
    }
    drive.expect(matches, "the menu item " + listed(words), [&] { return seen; });
}

void expectNoMenu(DriveContext& drive, const Words& words) {
    bool found = false;
    drive.askEditor([&] {
        UINT command = 0;
        UINT state = 0;
        found = findMenuItem(GetMenu(drive.editorWindow.handle()), words[0], command, state);
    });
    if (found) {
        throw DriveFault("expected no menu item \"" + words[0] + "\"; it is there");
    }
}

void printMenu(DriveContext& drive, const Words&) {
    std::vector<std::string> paths;
    drive.askEditor([&] { paths = menuPaths(GetMenu(drive.editorWindow.handle())); });
    for (const std::string& path : paths) {
        std::printf("menu %s\n", path.c_str());
    }
}

void screenshot(DriveContext& drive, const Words& words) {
    RECT area = windowsArea();
    if (words.size() > 1) {
        if (words[1] == "window") {
            GetWindowRect(drive.window(), &area);
        } else if (words[1] == "screen") {
            area = screenArea();
        } else {
            throw DriveFault("a screenshot is of the window, the screen or, without a word, all windows");
        }
    }
    drive.picture(words[0], area);
}

void printWindows(DriveContext&, const Words&) {
    std::fputs(describeAll().c_str(), stdout);
}

HHOOK g_hook = nullptr;
std::atomic<bool> g_asksForNew = false;

// [the window's thread] Where the context in force says so, windows are made of the newer controls.
LRESULT CALLBACK lookForControls(int code, WPARAM wParam, LPARAM lParam) {
    constexpr ULONG kLibraries = 2;  // the section that says which file a library's name stands for
    ACTCTX_SECTION_KEYED_DATA found{};
    found.cbSize = sizeof found;
    g_asksForNew = FindActCtxSectionStringW(0, nullptr, kLibraries, L"comctl32.dll", &found) != 0;
    return CallNextHookEx(g_hook, code, wParam, lParam);
}

// Looks at what the window's thread asks for, not at what the controls are made of: a system may have one file for both
// versions. A manifest of the editor's own asks for the newer ones on every thread, and nothing would be seen of the
// plug-in's.
void expectNewControls(DriveContext& drive, const Words&) {
    if (FindResourceA(nullptr, MAKEINTRESOURCEA(1), RT_MANIFEST)) {
        throw DriveFault(
            "expect-new-controls says nothing in an editor that has a manifest; it is for zunhost_plain");
    }
    const HWND top = drive.window();
    g_asksForNew = false;
    g_hook =
        SetWindowsHookExA(WH_CALLWNDPROC, lookForControls, nullptr, GetWindowThreadProcessId(top, nullptr));
    ask(top, WM_NULL);
    UnhookWindowsHookEx(g_hook);
    if (!g_asksForNew) {
        throw DriveFault(describe(top) +
                         " asks for the controls that the editor has, not for the newer ones");
    }
}

}  // namespace

void addWindowCommands(DriveCommands& table) {
    table["wait-window"] = {1, 2, waitWindow};
    table["wait-gone"] = {1, 2, waitGone};
    table["wait-box"] = {1, 2, waitBox};
    table["expect-box"] = {1, 2, expectBox};
    table["expect-no-window"] = {1, 2, expectNoWindow};
    table["close"] = {0, 0, closeWindow};
    table["size"] = {2, 2, sizeWindow};
    table["move"] = {2, 2, moveWindow};
    table["expect-place"] = {4, 4, expectPlace};
    table["expect-on-screen"] = {0, 0, expectOnScreen};
    table["menu"] = {1, 1, menu};
    table["open-menu"] = {1, 1, openMenu};
    table["expect-menu"] = {1, 9, expectMenu};
    table["expect-no-menu"] = {1, 1, expectNoMenu};
    table["print-menu"] = {0, 0, printMenu};
    table["screenshot"] = {1, 2, screenshot};
    table["print-windows"] = {0, 0, printWindows};
    table["expect-new-controls"] = {0, 0, expectNewControls};
}

}  // namespace zoka
