#include "tools/editor/win/WindowSearch.h"

#include <algorithm>
#include <cstdlib>

namespace zoka {

namespace {

bool equalNoCase(const std::string& a, const std::string& b) {
    return lstrcmpiA(a.c_str(), b.c_str()) == 0;
}

BOOL CALLBACK collect(HWND window, LPARAM list) {
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

bool isMessageBox(HWND window) {
    return windowClass(window) == "#32770";
}

void appendControls(HWND window, std::string& out) {
    for (const HWND child : childWindows(window)) {
        if (IsWindowVisible(child)) {
            out += "      " + describe(child) + "\n";
        }
    }
}

}  // namespace

LRESULT ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    DWORD_PTR result = 0;
    if (!SendMessageTimeoutA(window, message, wParam, lParam, SMTO_ABORTIFHUNG, kAnswerTime, &result)) {
        return 0;
    }
    return static_cast<LRESULT>(result);
}

std::wstring wideText(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    const int size = static_cast<int>(text.size());
    wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), size)));
    return wide;
}

std::string windowText(HWND window) {
    const LRESULT length = ask(window, WM_GETTEXTLENGTH);
    if (length <= 0) {
        return {};
    }
    std::string text(static_cast<size_t>(length) + 1, '\0');
    const LRESULT got = ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<size_t>(std::clamp<LRESULT>(got, 0, length)));
    return text;
}

std::string windowClass(HWND window) {
    char name[256] = {};
    GetClassNameA(window, name, sizeof name);
    return name;
}

bool isOfClass(HWND window, const std::string& name) {
    return equalNoCase(windowClass(window), name);
}

std::string visibleText(HWND window) {
    std::string plain;
    const std::string text = windowText(window);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && ++i == text.size()) {
            break;
        }
        plain += text[i];
    }
    return plain;
}

std::vector<HWND> topWindows(bool visibleOnly) {
    std::vector<HWND> all;
    EnumWindows(collect, reinterpret_cast<LPARAM>(&all));
    std::erase_if(all, [&](HWND window) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        return process != GetCurrentProcessId() || (visibleOnly && !IsWindowVisible(window));
    });
    return all;
}

std::vector<HWND> childWindows(HWND window) {
    std::vector<HWND> all;
    EnumChildWindows(window, collect, reinterpret_cast<LPARAM>(&all));
    return all;
}

HWND findTopWindow(const std::string& title, const std::string& className) {
    const bool open = !title.empty() && title.back() == '*';
    for (const HWND window : topWindows()) {
        const std::string text = windowText(window);
        const bool same =
            open ? text.compare(0, title.size() - 1, title, 0, title.size() - 1) == 0 : text == title;
        if (same && (className.empty() || equalNoCase(windowClass(window), className))) {
            return window;
        }
    }
    return nullptr;
}

HWND findMessageBox(const std::string& text) {
    for (const HWND window : topWindows()) {
        if (!isMessageBox(window)) {
            continue;
        }
        for (const HWND child : childWindows(window)) {
            if (equalNoCase(windowClass(child), "Static") && windowText(child) == text) {
                return window;
            }
        }
    }
    return nullptr;
}

std::vector<std::string> messageBoxTexts() {
    std::vector<std::string> texts;
    for (const HWND window : topWindows()) {
        if (!isMessageBox(window)) {
            continue;
        }
        for (const HWND child : childWindows(window)) {
            const std::string text = windowText(child);
            if (equalNoCase(windowClass(child), "Static") && !text.empty()) {
                texts.push_back(text);
            }
        }
    }
    return texts;
}

HWND findControl(HWND window, const std::string& name) {
    const char kind = name.empty() ? '\0' : name[0];
    const std::string rest = kind ? name.substr(1) : name;
    const size_t colon = rest.find(':');
    int wanted = colon == std::string::npos ? 1 : std::atoi(rest.c_str() + colon + 1);
    bool afterLabel = false;
    for (const HWND child : childWindows(window)) {
        if (!IsWindowVisible(child)) {
            continue;
        }
        if (afterLabel && !equalNoCase(windowClass(child), "Static")) {
            return child;
        }
        switch (kind) {
            case '#':
                if (GetDlgCtrlID(child) == std::atoi(rest.c_str())) {
                    return child;
                }
                break;
            case '@':
                if (equalNoCase(windowClass(child), rest.substr(0, colon)) && --wanted == 0) {
                    return child;
                }
                break;
            case '>':
                if (visibleText(child) == rest && !equalNoCase(windowClass(child), "Edit")) {
                    afterLabel = true;
                }
                break;
            default:
                if (visibleText(child) == name) {
                    return child;
                }
        }
    }
    return nullptr;
}

HWND focusOf(HWND window) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
    return info.hwndFocus;
}

std::vector<HWND> tabOrder(HWND window) {
    std::vector<HWND> order;
    for (HWND control = GetNextDlgTabItem(window, nullptr, FALSE);
         control && std::find(order.begin(), order.end(), control) == order.end();
         control = GetNextDlgTabItem(window, control, FALSE)) {
        order.push_back(control);
    }
    return order;
}

std::string describe(HWND window) {
    if (!window) {
        return "nothing";
    }
    std::string text = visibleText(window);
    if (text.size() > 200) {
        text = text.substr(0, 200) + "...";
    }
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    std::string line = windowClass(window) + " \"" + text + "\"";
    if (GetWindowLongA(window, GWL_STYLE) & WS_CHILD) {
        line += " #" + std::to_string(GetDlgCtrlID(window));
    }
    if (!IsWindowEnabled(window)) {
        line += " (disabled)";
    }
    return line;
}

std::string describeAll() {
    std::string out;
    for (const HWND window : topWindows()) {
        out += "    " + describe(window) + (window == GetForegroundWindow() ? ", in front" : "") + "\n";
        appendControls(window, out);
    }
    return out.empty() ? "    no window is open\n" : out;
}

}  // namespace zoka
