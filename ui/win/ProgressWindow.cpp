#include "ui/win/ProgressWindow.h"

#include <commctrl.h>

#include <atomic>
#include <exception>
#include <mutex>

namespace zoka {

namespace {

constexpr DWORD kShownAfter = 300;  // milliseconds
constexpr DWORD kPumpEvery = 30;
constexpr int kWidth = 220, kBarHeight = 10;  // dialog units
constexpr int kBarSteps = 1000;
enum { kText = 100, kBar };

// What the thread of a job and the window's thread share.
class ThreadJob : public JobProgress {
public:
    explicit ThreadJob(const std::function<void(JobProgress&)>& job) : m_job(job) {}

    static DWORD WINAPI threadMain(void* self) {
        static_cast<ThreadJob*>(self)->run();
        return 0;
    }

    bool step(size_t done, size_t total, const std::string& what) override {
        m_done.store(done);
        m_total.store(total);
        // The text is for the eye: where the window reads it just now, it keeps the last one.
        if (const std::unique_lock lock(m_lock, std::try_to_lock); lock) {
            m_what = what;
        }
        return !m_stop.load();
    }
    std::string what() {
        const std::lock_guard lock(m_lock);
        return m_what;
    }
    size_t done() const { return m_done.load(); }
    size_t total() const { return m_total.load(); }
    void stop() { m_stop.store(true); }
    void rethrow() const {
        if (m_error) {
            std::rethrow_exception(m_error);
        }
    }

private:
    void run() {
        try {
            m_job(*this);
        } catch (...) {
            m_error = std::current_exception();
        }
    }

    const std::function<void(JobProgress&)>& m_job;
    std::atomic<size_t> m_done{0}, m_total{0};
    std::atomic<bool> m_stop{false};
    std::mutex m_lock;
    std::string m_what;
    std::exception_ptr m_error;
};

}  // namespace

ProgressWindow::ProgressWindow(HWND owner, const WindowFonts& fonts, std::string title)
    : m_owner(owner),
      m_fonts(fonts),
      m_title(std::move(title)),
      m_focus(GetFocus()),
      m_ownerWasEnabled(owner && IsWindowEnabled(owner)),
      m_start(GetTickCount()),
      m_lastPump(m_start) {
    if (m_owner) {
        EnableWindow(m_owner, FALSE);
    }
}

ProgressWindow::~ProgressWindow() {
    // The owner first, so that the system finds it when it looks for a window to go on with.
    if (m_owner && m_ownerWasEnabled) {
        EnableWindow(m_owner, TRUE);
    }
    if (m_window) {
        DestroyWindow(m_window);
    }
    if (m_ownerWasEnabled && IsWindow(m_focus)) {
        SetFocus(m_focus);
    }
}

bool ProgressWindow::step(size_t done, size_t total, const std::string& what) {
    const DWORD now = GetTickCount();
    if (now - m_lastPump < kPumpEvery) {
        return !m_cancelled;
    }
    show(done, total, what);
    pumpMessages();
    m_lastPump = GetTickCount();
    return !m_cancelled;
}

void ProgressWindow::runOnThread(const std::function<void(JobProgress&)>& job) {
    ThreadJob shared(job);
    const HANDLE thread = CreateThread(nullptr, 0, ThreadJob::threadMain, &shared, 0, nullptr);
    if (!thread) {
        job(*this);
        return;
    }
    // The handle becomes signalled when the thread has left this library for good.
    while (MsgWaitForMultipleObjects(1, &thread, FALSE, kPumpEvery, QS_ALLINPUT) != WAIT_OBJECT_0) {
        show(shared.done(), shared.total(), shared.what());
        pumpMessages();
        if (m_cancelled) {
            shared.stop();
        }
    }
    CloseHandle(thread);
    shared.rethrow();
}

void ProgressWindow::hide() {
    if (m_window) {
        ShowWindow(m_window, SW_HIDE);
    }
    m_start = GetTickCount();
}

void ProgressWindow::show(size_t done, size_t total, const std::string& what) {
    if (GetTickCount() - m_start < kShownAfter) {
        return;
    }
    if (!m_window) {
        m_window = makeDialog(m_owner, WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | WS_CLIPCHILDREN,
                              0, dialogProc, reinterpret_cast<LPARAM>(this));
        if (!m_window) {
            return;
        }
    }
    if (!m_cancelled) {
        setText(m_text, what);
    }
    const size_t position = total == 0 ? 0 : done * kBarSteps / total;
    SendMessageA(m_bar, PBM_SETPOS, position, 0);
    if (!IsWindowVisible(m_window)) {
        ShowWindow(m_window, SW_SHOW);
        SetFocus(m_button);
    }
}

void ProgressWindow::pumpMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            // The program ends: so does the job, and the loops further out shall see it too.
            m_cancelled = true;
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        if (m_window && IsDialogMessageA(m_window, &message)) {
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

void ProgressWindow::cancel() {
    if (m_cancelled) {
        return;
    }
    m_cancelled = true;
    setText(m_text, "Stopping...");
    enable(m_button, false);
}

void ProgressWindow::createControls(HWND window) {
    m_window = window;
    SetWindowTextA(window, m_title.c_str());
    m_text = makeControl(window, "STATIC", "", SS_NOPREFIX | SS_ENDELLIPSIS, 0, kText, m_fonts.text());
    m_bar = makeControl(window, PROGRESS_CLASSA, "", 0, 0, kBar, m_fonts.text());
    m_button =
        makeControl(window, "BUTTON", "Cancel", BS_DEFPUSHBUTTON | WS_TABSTOP, 0, IDCANCEL, m_fonts.text());
    SendMessageA(m_bar, PBM_SETRANGE32, 0, kBarSteps);

    const int x = m_fonts.x(kMarginUnits), width = m_fonts.x(kWidth), gap = m_fonts.y(kGapUnits);
    int y = m_fonts.y(kMarginUnits);
    place(m_text, x, y, width, m_fonts.y(kLabelHeightUnits));
    y += m_fonts.y(kLabelHeightUnits) + gap;
    place(m_bar, x, y, width, m_fonts.y(kBarHeight));
    y += m_fonts.y(kBarHeight) + m_fonts.y(kMarginUnits);
    const int button = m_fonts.x(kButtonWidthUnits);
    place(m_button, x + width - button, y, button, m_fonts.y(kButtonHeightUnits));
    y += m_fonts.y(kButtonHeightUnits) + m_fonts.y(kMarginUnits);
    const SIZE size = outerSize(window, width + 2 * x, y);
    centreOver(window, m_owner, size.cx, size.cy);
}

INT_PTR CALLBACK ProgressWindow::dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, DWLP_USER, static_cast<LONG_PTR>(lParam));
        reinterpret_cast<ProgressWindow*>(lParam)->createControls(window);
        return FALSE;
    }
    auto* const self = reinterpret_cast<ProgressWindow*>(GetWindowLongPtrA(window, DWLP_USER));
    if (!self) {
        return FALSE;
    }
    if (message == WM_CLOSE || (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL)) {
        self->cancel();
        return TRUE;
    }
    return FALSE;
}

}  // namespace zoka
