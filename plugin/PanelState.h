// The words that a panel's thread shares with the editor's thread, without a lock.
#pragma once

#include <atomic>
#include <cstdint>

namespace zoka {

class PanelThread;

// One for each panel procedure. The editor's thread begins a run before it starts the panel's thread, so
// there is no moment in which a started panel can be overlooked; the panel's thread ends it. A run that never
// started is ended by the editor's thread.
class PanelState {
public:
    // [editor thread] No run may be under way. `busy` is the host's word, set to 1 here; it is the host's,
    // and must stay valid until the run has ended.
    void begin(PanelThread* thread, std::int32_t* busy) {
        std::atomic_ref<std::int32_t>(*busy).store(1);
        m_busy.store(busy);
        m_running.store(1);
        m_thread.store(thread);
    }

    // [panel thread] The window is gone. The thread pointer is cleared last: whoever sees it null finds the
    // host's word written and forgotten.
    void end() {
        if (std::int32_t* busy = m_busy.exchange(nullptr)) {
            std::atomic_ref<std::int32_t>(*busy).store(0);
        }
        m_running.store(0);
        m_thread.store(nullptr);
    }

    // [any thread] Null when no panel runs. What it points to lives until the editor's
    // thread has waited for its end.
    PanelThread* thread() const { return m_thread.load(); }
    bool running() const { return m_running.load() != 0; }
    // [any thread] The host's word of the run under way, for comparing alone; null without one.
    const std::int32_t* busyWord() const { return m_busy.load(); }

private:
    std::atomic<PanelThread*> m_thread{nullptr};
    std::atomic<std::int32_t> m_running{0};
    std::atomic<std::int32_t*> m_busy{nullptr};
};

}  // namespace zoka
