// A window whose messages come to an object.
#pragma once

#include <windows.h>

#include <optional>

namespace zoka {

// Dialogs and windows of classes of our own alike. The object is made before its window, outlives it as a rule, and
// takes it along where it doesn't. Nothing thrown leaves its procedure. [thread of the window]
class Window {
public:
    Window() = default;
    virtual ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // Null before the window is made and after it is gone.
    HWND window() const { return m_window; }

protected:
    // Dialogs, not visible and without a size: one made from its styles alone, without controls, or one from a
    // resource. False on failure.
    bool createDialog(HWND owner, DWORD style, DWORD exStyle);
    bool createDialog(HWND owner, HINSTANCE module, int resource);

    // The window is there; makes what is in it. Of dialogs and of windows whose class has classProc().
    virtual void created() = 0;
    // The answer to a message, or nothing: then the system's own treatment follows. `window()` may be null
    // afterwards.
    virtual std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) = 0;
    // Something was thrown while a message was treated (memory ran out, most likely). The window can't be relied on
    // any more: the user is told why and it goes. Messages that come meanwhile are the system's alone. Called within
    // the exception's handler.
    virtual void failed();

    // Runs what belongs to the window outside of its messages (a key that its loop saw first): what it throws is
    // treated as theirs, and gives nothing.
    template <class Work>
    std::optional<LRESULT> inside(const Work& work) {
        if (m_failed) {
            return std::nullopt;
        }
        try {
            return work();
        } catch (...) {
            m_failed = true;
            failed();
            return std::nullopt;
        }
    }

    // The procedure of a registered class: the object is what CreateWindowEx got as its parameter.
    static LRESULT CALLBACK classProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    static INT_PTR CALLBACK dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    std::optional<LRESULT> dispatch(UINT message, WPARAM wParam, LPARAM lParam);
    void begin(HWND window);
    void forgetWindow(int pointerSlot);

    HWND m_window = nullptr;
    int m_pointerSlot = 0;
    bool m_failed = false;
};

// The object whose window has a class of ours: what CreateWindowEx got as its parameter, from WM_NCCREATE to
// forgetObject. Null before and afterwards, and where it got none.
template <class Object>
Object* objectOf(HWND window, UINT message, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        void* const made = reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams;
        SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made));
    }
    return reinterpret_cast<Object*>(GetWindowLongPtrA(window, GWLP_USERDATA));
}
inline void forgetObject(HWND window) {
    SetWindowLongPtrA(window, GWLP_USERDATA, 0);
}

// Tells the user what is being handled just now, an exception: "not enough memory", or its own text.
void tellFailure() noexcept;

// The answer of a window procedure that is no Window's. When something is thrown, the user is told and the
// whole window is asked to close; then it is `otherwise`.
template <class Work>
LRESULT answerInside(HWND window, const Work& work, LRESULT otherwise = 0) noexcept {
    try {
        return work();
    } catch (...) {
        tellFailure();
        PostMessageA(GetAncestor(window, GA_ROOT), WM_CLOSE, 0, 0);
        return otherwise;
    }
}

}  // namespace zoka
