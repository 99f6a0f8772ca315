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
constexpr int kHeight = 3 * kMarginUnits + kLabelHeightUnits + kGapUnits + kBarHeight + kButtonHeightUnits;
constexpr int kBarSteps = 1000;
enum { kText = 100, kBar };

// What the thread of a job and the window's thread share.
class ThreadJob : public JobProgress {
public:
    explicit ThreadJob(const std::function<void(JobProgress&)>& job) : m_job(job) {}

    static DWORD WINAPI threadMain(void* self) noexcept {
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
    void run() noexcept {
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

ProgressWindow::ProgressWindow(HWND owner, std::string title)
    : DialogShell({.title = std::move(title), .width = kWidth + 2 * kMarginUnits, .height = kHeight}),
      m_owner(owner),
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
    if (window()) {
        DestroyWindow(window());
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
    const auto hasEnded = [thread] {
        return MsgWaitForMultipleObjects(1, &thread, FALSE, kPumpEvery, QS_ALLINPUT) == WAIT_OBJECT_0;
    };
    std::exception_ptr fault;
    while (!hasEnded()) {
        // What can't be shown ends the job, whose thread has to be gone before this function is.
        try {
            show(shared.done(), shared.total(), shared.what());
            pumpMessages();
        } catch (...) {
            fault = std::current_exception();
            m_cancelled = true;
        }
        if (m_cancelled) {
            shared.stop();
        }
    }
    CloseHandle(thread);
    if (fault) {
        std::rethrow_exception(fault);
    }
    shared.rethrow();
}

void ProgressWindow::hide() {
    if (window()) {
        ShowWindow(window(), SW_HIDE);
    }
    m_start = GetTickCount();
}

void ProgressWindow::show(size_t done, size_t total, const std::string& what) {
    if (GetTickCount() - m_start < kShownAfter) {
        return;
    }
    if (!window() && !create(m_owner)) {
        return;
    }
    if (!m_cancelled) {
        setText(m_text, what);
    }
    const size_t position = total == 0 ? 0 : done * kBarSteps / total;
    SendMessageA(m_bar, PBM_SETPOS, position, 0);
    if (!IsWindowVisible(window())) {
        ShowWindow(window(), SW_SHOW);
        SetFocus(m_button);
    }
}

void ProgressWindow::pumpMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            // The program ends: so does the job, and the loops further out shall see it too.
            m_cancelled = true;
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        if (window() && IsDialogMessageW(window(), &message)) {
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    // Nobody is left to see what the job does.
    if (m_owner && !IsWindow(m_owner)) {
        m_cancelled = true;
    }
}

bool ProgressWindow::mayClose() {
    if (!m_cancelled) {
        m_cancelled = true;
        setText(m_text, "Stopping...");
        enable(m_button, false);
    }
    return false;
}

void ProgressWindow::createControls() {
    m_text = makeControl(window(), "STATIC", "", SS_NOPREFIX | SS_ENDELLIPSIS, 0, kText, fonts().text());
    m_bar = makeControl(window(), PROGRESS_CLASSA, "", 0, 0, kBar, fonts().text());
    m_button = makeButton(window(), "Cancel", IDCANCEL, fonts(), true);
    SendMessageA(m_bar, PBM_SETRANGE32, 0, kBarSteps);
}

void ProgressWindow::layout(Area inside) {
    Area foot = inside.takeBottom(fonts().y(kButtonHeightUnits));
    placeButtonsRight({m_button}, foot, fonts());
    place(m_text, inside.takeTop(fonts().y(kLabelHeightUnits), fonts().y(kGapUnits)));
    place(m_bar, inside.takeTop(fonts().y(kBarHeight)));
}

}  // namespace zoka
