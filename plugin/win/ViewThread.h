// The thread of one panel: its window, its message loop, and an end that leaves no code
// of this library running.
#pragma once

#include <atomic>

#include "plugin/win/PanelWindow.h"

// The thread holds no reference on the library, so a host that frees it really unloads it. Two ends follow
// from that:
// - waitUntilGone (terminate): waits for the thread itself.
// - leaveForUnload (the library is being unmapped; the loader's lock is held): the thread can't end before
//   that lock is released, since its end needs the lock. It is waited for until it has left this library's
//   code for good: it says so in a word as its last act before ExitThread, and then its instruction pointer
//   lies outside the module.
class CViewThread : public zoka::PanelThread {
public:
    // Both references must live until the thread has ended or left.
    CViewThread(zoka::PanelState& state, zoka::PanelWindow& window, int number)
        : m_state(state), m_panel(window), m_number(number) {}
    ~CViewThread() override;
    CViewThread(const CViewThread&) = delete;
    CViewThread& operator=(const CViewThread&) = delete;

    bool start() override;
    void requestClose() override;
    bool bringToFront() override;
    void waitUntilGone() override;
    void leaveForUnload() override;

private:
    static DWORD WINAPI threadMain(void* self) noexcept;
    static LRESULT CALLBACK mainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                           UINT_PTR id, DWORD_PTR self);
    // [panel thread]
    void run();
    void messageLoop(HWND window);
    LRESULT forcedClose(HWND window, WPARAM wParam, LPARAM lParam);
    bool cancelNestedDialog(HWND window);

    bool ended() const;

    zoka::PanelState& m_state;
    zoka::PanelWindow& m_panel;
    const int m_number;

    HANDLE m_thread = nullptr;
    HANDLE m_opened = nullptr;  // set when the window stands
    HANDLE m_gone = nullptr;    // set shortly before the thread leaves
    std::atomic<HWND> m_window{nullptr};
    std::atomic<bool> m_closeRequested{false};
    std::atomic<bool> m_closing{false};  // the window is being destroyed, or a close request is under way
    std::atomic<bool> m_left{false};     // nothing but the call of ExitThread follows
    HWND m_nested = nullptr;             // the dialog that was last asked to close [panel thread]
    bool m_cancelled = false;            // a menu or a drag was ended for the close [panel thread]
};
