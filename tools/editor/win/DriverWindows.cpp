// The drive script's commands about windows, menus and pictures.
#include <cstdio>

#include "tools/editor/win/Driver.h"
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

std::string listed(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}

}  // namespace

void Driver::addWindowCommands(std::map<std::string, Command>& table) {
    table["wait-window"] = {1, 2, &Driver::waitWindow};
    table["wait-gone"] = {1, 2, &Driver::waitGone};
    table["wait-box"] = {1, 2, &Driver::waitBox};
    table["expect-box"] = {1, 2, &Driver::expectBox};
    table["expect-no-window"] = {1, 2, &Driver::expectNoWindow};
    table["close"] = {0, 0, &Driver::closeWindow};
    table["size"] = {2, 2, &Driver::sizeWindow};
    table["move"] = {2, 2, &Driver::moveWindow};
    table["expect-place"] = {4, 4, &Driver::expectPlace};
    table["menu"] = {1, 1, &Driver::menu};
    table["open-menu"] = {1, 1, &Driver::openMenu};
    table["expect-menu"] = {1, 9, &Driver::expectMenu};
    table["expect-no-menu"] = {1, 1, &Driver::expectNoMenu};
    table["print-menu"] = {0, 0, &Driver::printMenu};
    table["screenshot"] = {1, 2, &Driver::screenshot};
    table["print-windows"] = {0, 0, &Driver::printWindows};
}

void Driver::waitWindow(const Words& words) {
    const std::string className = words.size() > 1 ? words[1] : "";
    HWND found = nullptr;
    expect([&] { return (found = findTopWindow(words[0], className)) != nullptr; },
           "a window \"" + words[0] + "\"" + (className.empty() ? "" : " of class " + className), openTitles);
    m_window = found;
}

void Driver::waitGone(const Words& words) {
    const std::string className = words.size() > 1 ? words[1] : "";
    expect([&] { return findTopWindow(words[0], className) == nullptr; },
           "the window \"" + words[0] + "\" to be gone", openTitles);
}

void Driver::waitBox(const Words& words) {
    const HWND before = words.size() > 1 ? m_window : nullptr;
    HWND found = nullptr;
    expect([&] { return (found = findMessageBox(words[0])) != nullptr && found != before; },
           "a message box \"" + words[0] + "\"", boxTexts);
    m_window = found;
}

void Driver::expectBox(const Words& words) {
    const HWND before = m_window;
    waitBox({words[0]});
    const HWND box = m_window;
    click({words.size() > 1 ? words[1] : "OK"});
    expect([&] { return !IsWindow(box); }, "the message box to close", boxTexts);
    m_window = before;
}

void Driver::expectNoWindow(const Words& words) {
    if (const HWND found = findTopWindow(words[0], words.size() > 1 ? words[1] : "")) {
        throw DriveFault("expected no window \"" + words[0] + "\"; saw " + describe(found));
    }
}

void Driver::closeWindow(const Words&) {
    PostMessageA(window(), WM_CLOSE, 0, 0);
}

void Driver::sizeWindow(const Words& words) {
    SetWindowPos(window(), nullptr, 0, 0, static_cast<int>(driveNumber(words[0])),
                 static_cast<int>(driveNumber(words[1])), SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Driver::moveWindow(const Words& words) {
    SetWindowPos(window(), nullptr, static_cast<int>(driveNumber(words[0])),
                 static_cast<int>(driveNumber(words[1])), 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Driver::expectPlace(const Words& words) {
    const auto place = [&] {
        RECT area{};
        GetWindowRect(window(), &area);
        std::string text;
        for (const LONG one : {area.left, area.top, area.right - area.left, area.bottom - area.top}) {
            text += (text.empty() ? "" : " ") + std::to_string(one);
        }
        return text;
    };
    const std::string wanted = words[0] + ' ' + words[1] + ' ' + words[2] + ' ' + words[3];
    expect([&] { return place() == wanted; }, "the window at " + wanted, place);
}

void Driver::menu(const Words& words) {
    UINT command = 0;
    UINT state = 0;
    bool found = false;
    const HWND editor = m_editorWindow.handle();
    askEditor([&] {
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

void Driver::openMenu(const Words& words) {
    const HWND editor = m_editorWindow.handle();
    if (!bringToFront(editor, m_patience)) {
        throw DriveFault("the editor's window does not come to the front");
    }
    int position = -1;
    askEditor([&] {
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
    expect([] { return findTopWindow("*", "#32768") != nullptr; }, "the menu to open", openTitles);
}

void Driver::expectMenu(const Words& words) {
    const HWND editor = m_editorWindow.handle();
    std::string seen;
    const auto matches = [&] {
        bool all = true;
        askEditor([&] {
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
    expect(matches, "the menu item " + listed(words), [&] { return seen; });
}

void Driver::expectNoMenu(const Words& words) {
    bool found = false;
    askEditor([&] {
        UINT command = 0;
        UINT state = 0;
        found = findMenuItem(GetMenu(m_editorWindow.handle()), words[0], command, state);
    });
    if (found) {
        throw DriveFault("expected no menu item \"" + words[0] + "\"; it is there");
    }
}

void Driver::printMenu(const Words&) {
    std::vector<std::string> paths;
    askEditor([&] { paths = menuPaths(GetMenu(m_editorWindow.handle())); });
    for (const std::string& path : paths) {
        std::printf("menu %s\n", path.c_str());
    }
}

void Driver::screenshot(const Words& words) {
    RECT area = windowsArea();
    if (words.size() > 1) {
        if (words[1] == "window") {
            GetWindowRect(window(), &area);
        } else if (words[1] == "screen") {
            area = screenArea();
        } else {
            throw DriveFault("a screenshot is of the window, the screen or, without a word, all windows");
        }
    }
    picture(words[0], area);
}

void Driver::printWindows(const Words&) {
    std::fputs(describeAll().c_str(), stdout);
}

}  // namespace zoka
