#include "controls/win/NumberEdit.h"

#include <string>

#include "controls/win/ControlClasses.h"
#include "ui/win/Window.h"
#include "ui/win/WindowKit.h"
#include "util/Text.h"

namespace zoka {
namespace {

WNDPROC g_edit = nullptr;  // the system's own

constexpr size_t kMostPasted = 256;

// The clipboard's text without the blanks around it; empty when it has none.
std::string pastedNumber(HWND window) {
    return std::string(trimmed(clipboardText(window, kMostPasted)));
}

// What is typed is judged as a whole: a character left out would make another number of the rest.
LRESULT CALLBACK numberEdit(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return answerInside(window, [&]() -> LRESULT {
        if (message == WM_PASTE) {
            SendMessageA(window, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(pastedNumber(window).c_str()));
            return 0;
        }
        return CallWindowProcW(g_edit, window, message, wParam, lParam);
    });
}

}  // namespace

void registerNumberEdits(HINSTANCE instance) {
    WNDCLASSEXW model{};
    model.cbSize = sizeof model;
    GetClassInfoExW(nullptr, L"EDIT", &model);
    g_edit = model.lpfnWndProc;
    model.cbSize = sizeof model;
    model.hInstance = instance;
    model.style &= ~static_cast<UINT>(CS_GLOBALCLASS);
    model.lpfnWndProc = numberEdit;
    for (const char* const name : {kIntEditClass, kFloatEditClass}) {
        const std::wstring wide = wideText(name);
        model.lpszClassName = wide.c_str();
        RegisterClassExW(&model);
    }
}

}  // namespace zoka
