#include "tools/editor/win/Keyboard.h"

#include <cctype>
#include <cstdlib>
#include <vector>

#include "tools/editor/win/WindowSearch.h"

namespace zoka {

namespace {

struct NamedKey {
    const char* name;
    WORD code;
};

constexpr NamedKey kKeys[] = {
    {"TAB", VK_TAB},       {"ENTER", VK_RETURN},   {"ESC", VK_ESCAPE},    {"SPACE", VK_SPACE},
    {"UP", VK_UP},         {"DOWN", VK_DOWN},      {"LEFT", VK_LEFT},     {"RIGHT", VK_RIGHT},
    {"HOME", VK_HOME},     {"END", VK_END},        {"PAGEUP", VK_PRIOR},  {"PAGEDOWN", VK_NEXT},
    {"DELETE", VK_DELETE}, {"BACKSPACE", VK_BACK}, {"INSERT", VK_INSERT}, {"CTRL", VK_CONTROL},
    {"SHIFT", VK_SHIFT},   {"ALT", VK_MENU},
};

// 0 for a name it does not know.
WORD keyCode(std::string name) {
    for (char& c : name) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    for (const NamedKey& key : kKeys) {
        if (name == key.name) {
            return key.code;
        }
    }
    if (name.size() == 1 && std::isalnum(static_cast<unsigned char>(name[0]))) {
        return static_cast<WORD>(name[0]);
    }
    if (name.size() > 1 && name[0] == 'F') {
        const int number = std::atoi(name.c_str() + 1);
        if (number >= 1 && number <= 12) {
            return static_cast<WORD>(VK_F1 + number - 1);
        }
    }
    return 0;
}

INPUT keyInput(WORD code, WORD scan, DWORD flags) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = code;
    input.ki.wScan = scan;
    input.ki.dwFlags = flags;
    return input;
}

void send(std::vector<INPUT>& inputs) {
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
}

}  // namespace

bool bringToFront(HWND window, unsigned patience) {
    const HWND top = GetAncestor(window, GA_ROOT);
    const DWORD thread = GetWindowThreadProcessId(top, nullptr);
    const ULONGLONG end = GetTickCount64() + patience;
    do {
        GUITHREADINFO info{};
        info.cbSize = sizeof info;
        if (GetForegroundWindow() == top && GetGUIThreadInfo(thread, &info) && info.hwndFocus) {
            return true;
        }
        SetForegroundWindow(top);
        Sleep(5);
    } while (GetTickCount64() < end);
    return false;
}

void typeText(const std::string& text) {
    std::vector<INPUT> inputs;
    for (const wchar_t c : wideText(text)) {
        inputs.push_back(keyInput(0, static_cast<WORD>(c), KEYEVENTF_UNICODE));
        inputs.push_back(keyInput(0, static_cast<WORD>(c), KEYEVENTF_UNICODE | KEYEVENTF_KEYUP));
    }
    if (!inputs.empty()) {
        send(inputs);
    }
}

bool pressKey(const std::string& name) {
    std::vector<WORD> codes;
    for (size_t start = 0; start <= name.size();) {
        const size_t plus = name.find('+', start);
        const WORD code = keyCode(name.substr(start, plus == std::string::npos ? plus : plus - start));
        if (!code) {
            return false;
        }
        codes.push_back(code);
        if (plus == std::string::npos) {
            break;
        }
        start = plus + 1;
    }
    std::vector<INPUT> inputs;
    for (const WORD code : codes) {
        inputs.push_back(keyInput(code, 0, 0));
    }
    for (auto code = codes.rbegin(); code != codes.rend(); ++code) {
        inputs.push_back(keyInput(*code, 0, KEYEVENTF_KEYUP));
    }
    send(inputs);
    return true;
}

}  // namespace zoka
