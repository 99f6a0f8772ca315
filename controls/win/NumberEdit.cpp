#include "controls/win/NumberEdit.h"

#include <cstring>
#include <string>

#include "controls/win/ControlClasses.h"

namespace zoka {
namespace {

WNDPROC g_edit = nullptr;  // the system's own

bool belongsToNumber(char c, bool decimal) {
    return (c >= '0' && c <= '9') || c == '-' || c == '+' || (decimal && c == '.');
}

void tellRefused(HWND field) {
    SendMessageA(GetParent(field), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(field), kFieldRefused),
                 reinterpret_cast<LPARAM>(field));
}

// The clipboard's text without the blanks around it; empty when it has none.
std::string clipboardText(HWND window) {
    std::string text;
    if (!OpenClipboard(window)) {
        return text;
    }
    if (const HANDLE data = GetClipboardData(CF_TEXT)) {
        if (const auto* const bytes = static_cast<const char*>(GlobalLock(data))) {
            text.assign(bytes, strnlen(bytes, 256));
            GlobalUnlock(data);
        }
    }
    CloseClipboard();
    const size_t first = text.find_first_not_of(" \t\r\n"), last = text.find_last_not_of(" \t\r\n");
    return first == text.npos ? std::string() : text.substr(first, last - first + 1);
}

LRESULT edit(HWND window, UINT message, WPARAM wParam, LPARAM lParam, bool decimal) {
    if (message == WM_CHAR && wParam >= ' ' && !belongsToNumber(static_cast<char>(wParam), decimal)) {
        tellRefused(window);
        return 0;
    }
    if (message == WM_PASTE) {
        const std::string text = clipboardText(window);
        for (const char c : text) {
            if (!belongsToNumber(c, decimal)) {
                tellRefused(window);
                return 0;
            }
        }
        SendMessageA(window, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
        return 0;
    }
    return CallWindowProcA(g_edit, window, message, wParam, lParam);
}

LRESULT CALLBACK intEdit(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return edit(window, message, wParam, lParam, false);
}
LRESULT CALLBACK floatEdit(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return edit(window, message, wParam, lParam, true);
}

}  // namespace

void registerNumberEdits(HINSTANCE instance) {
    WNDCLASSEXA model{};
    model.cbSize = sizeof model;
    GetClassInfoExA(nullptr, "EDIT", &model);
    g_edit = model.lpfnWndProc;
    model.cbSize = sizeof model;
    model.hInstance = instance;
    model.style &= ~static_cast<UINT>(CS_GLOBALCLASS);
    model.lpszClassName = kIntEditClass;
    model.lpfnWndProc = intEdit;
    RegisterClassExA(&model);
    model.lpszClassName = kFloatEditClass;
    model.lpfnWndProc = floatEdit;
    RegisterClassExA(&model);
}

}  // namespace zoka
