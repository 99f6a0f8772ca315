// Keeps a window alive during a long job: how far it is, and a button that stops it.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "ui/win/DialogShell.h"
#include "util/JobProgress.h"

namespace zoka {

// Lives as long as one job. The owner takes no input meanwhile; a job that is done within a moment shows
// nothing. All on the owner's thread, but for what runOnThread runs.
class ProgressWindow : public JobProgress, private DialogShell {
public:
    // `owner` may be null.
    ProgressWindow(HWND owner, std::string title);
    ~ProgressWindow() override;

    // For jobs on this thread: shows messages now and then. False once the user has cancelled.
    bool step(size_t done, size_t total, const std::string& what) override;
    // For jobs that can't be cut into short pieces: runs the job on a thread of its own and returns when that
    // thread has ended. What the job throws is thrown here. Only the job's own data may be used in it.
    void runOnThread(const std::function<void(JobProgress&)>& job);

    bool cancelled() const { return m_cancelled; }
    // Out of the way while the user is asked something.
    void hide();

private:
    void createControls() override;
    void layout(Area inside) override;
    HWND firstField() override { return m_button; }
    // Nobody closes it but the job's end.
    bool mayClose() override;
    void show(size_t done, size_t total, const std::string& what);
    void pumpMessages();

    HWND m_owner;
    HWND m_text = nullptr, m_bar = nullptr, m_button = nullptr;
    HWND m_focus;
    bool m_ownerWasEnabled;
    bool m_cancelled = false;
    DWORD m_start, m_lastPump;
};

}  // namespace zoka
