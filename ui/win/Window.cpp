#include "ui/win/Window.h"

#include <exception>
#include <new>
#include <string>

#include "ui/win/WindowKit.h"
#include "util/Doors.h"
#include "util/UserPrompt.h"

namespace zoka {

namespace {

// Without a menu, a class or a title of its own.
struct EmptyDialog {
    DLGTEMPLATE dialog;
    WORD menu, className, title;
};

// The messages whose answer a dialog's procedure returns itself.
bool answersDirectly(UINT message) {
    return (message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC) || message == WM_CHARTOITEM ||
           message == WM_VKEYTOITEM || message == WM_COMPAREITEM || message == WM_QUERYDRAGICON;
}

}  // namespace

Window::~Window() {
    // What a derived class knew is gone already: the last messages are the system's alone.
    if (const HWND window = m_window) {
        SetWindowLongPtrA(window, m_pointerSlot, 0);
        DestroyWindow(window);
    }
}

bool Window::createDialog(HWND owner, DWORD style, DWORD exStyle) {
    const EmptyDialog form{{style, exStyle, 0, 0, 0, 0, 0}, 0, 0, 0};
    CreateDialogIndirectParamA(ownModule(), &form.dialog, owner, dialogProc, reinterpret_cast<LPARAM>(this));
    return m_window != nullptr;
}

bool Window::createDialog(HWND owner, HINSTANCE module, int resource) {
    // A Unicode window: its title may be a text of a script.
    CreateDialogParamW(module, MAKEINTRESOURCEW(resource), owner, dialogProc, reinterpret_cast<LPARAM>(this));
    return m_window != nullptr;
}

void Window::begin(HWND window) {
    m_window = window;
    m_failed = false;
}

std::optional<LRESULT> Window::dispatch(UINT message, WPARAM wParam, LPARAM lParam) {
    return inside([&]() -> std::optional<LRESULT> {
        if (message == WM_INITDIALOG || message == WM_CREATE) {
            created();
            return 0;
        }
        if (message == WM_DRAWITEM && drawChoice(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam))) {
            return TRUE;
        }
        return this->message(message, wParam, lParam);
    });
}

void Window::failed() {
    tellFailure();
    if (m_window) {
        DestroyWindow(m_window);
    }
}

void Window::forgetWindow(int pointerSlot) {
    // A loop that waits for its next message notices that its window is gone.
    if ((GetWindowLongPtrA(m_window, GWL_STYLE) & WS_CHILD) == 0) {
        PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0);
    }
    SetWindowLongPtrA(m_window, pointerSlot, 0);
    m_window = nullptr;
}

INT_PTR CALLBACK Window::dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return answerInside(window, [&]() -> LRESULT {
        if (message == WM_INITDIALOG) {
            SetWindowLongPtrA(window, DWLP_USER, static_cast<LONG_PTR>(lParam));
            auto* const made = reinterpret_cast<Window*>(lParam);
            made->begin(window);
            made->m_pointerSlot = DWLP_USER;
            made->dispatch(message, wParam, lParam);
            return FALSE;  // the keyboard stays where it was put
        }
        auto* const self = reinterpret_cast<Window*>(GetWindowLongPtrA(window, DWLP_USER));
        if (!self) {
            return FALSE;
        }
        const std::optional<LRESULT> answer = self->dispatch(message, wParam, lParam);
        if (message == WM_NCDESTROY) {
            self->forgetWindow(DWLP_USER);
            return FALSE;
        }
        if (!answer) {
            return FALSE;
        }
        if (answersDirectly(message)) {
            return static_cast<INT_PTR>(*answer);
        }
        SetWindowLongPtrA(window, DWLP_MSGRESULT, static_cast<LONG_PTR>(*answer));
        return TRUE;
    });
}

LRESULT CALLBACK Window::classProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return answerInside(window, [&]() -> LRESULT {
        auto* const self = objectOf<Window>(window, message, lParam);
        if (!self) {
            return DefWindowProcA(window, message, wParam, lParam);
        }
        if (message == WM_NCCREATE) {
            self->begin(window);
            self->m_pointerSlot = GWLP_USERDATA;
        }
        const std::optional<LRESULT> answer = self->dispatch(message, wParam, lParam);
        if (message == WM_NCDESTROY) {
            self->forgetWindow(GWLP_USERDATA);
        }
        return answer ? *answer : DefWindowProcA(window, message, wParam, lParam);
    });
}

void tellFailure() noexcept {
    keepInside([] {
        constexpr const char* kAsSaved = " The window closes; files are as they were last saved.";
        constexpr const char* kFailed = "The window closes, because something failed";
        try {
            throw;
        } catch (const OutOfMemory& out) {
            userPrompt().tell(outOfMemoryText(out.file()) + kAsSaved);
        } catch (const std::bad_alloc&) {
            userPrompt().tell(std::string("There is not enough memory to go on.") + kAsSaved);
        } catch (const std::exception& error) {
            userPrompt().tell(std::string(kFailed) + ": " + error.what());
        } catch (...) {
            userPrompt().tell(std::string(kFailed) + '.');
        }
    });
}

}  // namespace zoka
