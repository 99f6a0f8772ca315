#include "plugin/win/ViewThread.h"

#include <commctrl.h>

#include <chrono>
#include <initializer_list>
#include <optional>

#include "plugin/host/HostCall.h"
#include "plugin/win/ThreadRuntime.h"
#include "ui/win/ControlsContext.h"
#include "ui/win/Window.h"
#include "util/Doors.h"

using zoka::moduleInstance;

namespace {

constexpr UINT kLoadMessage = WM_APP + 100;
constexpr UINT_PTR kCloseTimer = 0x5a01;
constexpr UINT kCloseRetryMs = 15;
constexpr DWORD kUnloadPollMs = 20;
// How long an unload waits for a panel: for one that still moves, for one that stands still in a call to the host, for
// one that stands still elsewhere. See leaveForUnload.
constexpr DWORD kUnloadPatienceMs = 10000;
constexpr DWORD kHostPatienceMs = 4000;
constexpr DWORD kStuckMs = 1500;

// Waits for one of the handles and meanwhile answers messages that other threads send to this one. False when
// the time is over.
bool waitAnswering(std::initializer_list<HANDLE> handles, DWORD timeoutMs) {
    const auto count = static_cast<DWORD>(handles.size());
    const DWORD start = GetTickCount();
    for (;;) {
        const DWORD passed = GetTickCount() - start;
        const DWORD left = timeoutMs == INFINITE ? INFINITE : passed < timeoutMs ? timeoutMs - passed : 0;
        const DWORD result =
            MsgWaitForMultipleObjectsEx(count, handles.begin(), left, QS_SENDMESSAGE, MWMO_INPUTAVAILABLE);
        if (result != WAIT_OBJECT_0 + count) {
            return result != WAIT_TIMEOUT;
        }
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}

// Where a thread stands at this moment: its next instruction and its stack.
struct Standing {
    std::uintptr_t code = 0, stack = 0;
    bool operator==(const Standing&) const = default;
};

// Nothing for a thread that has ended.
std::optional<Standing> standing(HANDLE thread) {
    if (SuspendThread(thread) == static_cast<DWORD>(-1)) {
        return std::nullopt;
    }
    CONTEXT context{};
    context.ContextFlags = CONTEXT_CONTROL;
    const bool known = GetThreadContext(thread, &context) != 0;
    ResumeThread(thread);
#ifdef _WIN64
    const Standing at{context.Rip, context.Rsp};
#else
    const Standing at{context.Eip, context.Esp};
#endif
    return known ? std::optional(at) : std::optional(Standing{});
}

// True when the thread's next instruction lies outside this module.
bool outsideModule(HANDLE thread) {
    const auto base = reinterpret_cast<std::uintptr_t>(moduleInstance());
    const auto& dos = *reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto& headers =
        *reinterpret_cast<const IMAGE_NT_HEADERS*>(base + static_cast<std::uintptr_t>(dos.e_lfanew));
    const auto at = standing(thread);
    return !at || (at->code != 0 && at->code - base >= headers.OptionalHeader.SizeOfImage);
}

// The innermost open dialog of the panel's thread, besides the panel.
struct DialogSearch {
    HWND panel;
    HWND found;
};

// Top-level windows come in their order on the screen, so the first dialog is the innermost.
BOOL CALLBACK findDialog(HWND candidate, LPARAM data) noexcept {
    auto& search = *reinterpret_cast<DialogSearch*>(data);
    char name[16] = "";
    GetClassNameA(candidate, name, sizeof name);
    const bool isDialog =
        lstrcmpA(name, "#32770") == 0 || (GetWindow(candidate, GW_OWNER) && !IsWindowEnabled(search.panel));
    if (candidate == search.panel || !isDialog || !IsWindowVisible(candidate) ||
        !IsWindowEnabled(candidate)) {
        return TRUE;
    }
    search.found = candidate;
    return FALSE;
}

INT_PTR CALLBACK handleNothing(HWND, UINT, WPARAM, LPARAM) noexcept {
    return FALSE;
}

// The system's controls load what they need for themes at their first use, the last of it when a
// window is destroyed. A panel for which that comes while the library is being unloaded would wait for
// the loader's lock. So a window like it is made and destroyed once before, unseen, on a thread that
// may load. The runtime looks for the system's clock at its first use; what such a panel leaves on the disk needs it.
// [editor thread]
void rehearse(int number) {
    static bool done = false;
    if (done) {
        return;
    }
    done = true;
    (void)std::chrono::system_clock::now();
    const zoka::ControlsContext controls(moduleInstance());
    const HWND window =
        CreateDialogParamA(moduleInstance(), MAKEINTRESOURCEA(number), nullptr, handleNothing, 0);
    if (window) {
        DestroyWindow(window);
    }
}

}  // namespace

CViewThread::~CViewThread() {
    for (HANDLE handle : {m_thread, m_opened, m_gone}) {
        if (handle) {
            CloseHandle(handle);
        }
    }
}

bool CViewThread::start() {
    rehearse(m_number);
    m_opened = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    m_gone = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    if (m_opened && m_gone) {
        m_thread = CreateThread(nullptr, 0, threadMain, this, 0, nullptr);
    }
    if (!m_thread) {
        m_state.end();
        return false;
    }
    waitAnswering({m_opened, m_thread}, INFINITE);
    return WaitForSingleObject(m_opened, 0) == WAIT_OBJECT_0;
}

void CViewThread::requestClose() {
    // The panel's thread publishes its window and then looks at the request; here it is the other way round.
    // So one of the two sees the other's, whichever comes first.
    m_closeRequested.store(true);
    m_closing.store(true);
    m_panel.leave();
    if (const HWND window = m_window.load()) {
        PostMessageA(window, WM_CLOSE, 0, 0);
    }
}

bool CViewThread::bringToFront() {
    if (m_closing.load()) {
        return false;
    }
    const HWND window = m_window.load();
    if (!window) {
        return true;  // being opened: a message that came meanwhile has led here
    }
    ShowWindowAsync(window, IsIconic(window) ? SW_RESTORE : SW_SHOW);
    SetForegroundWindow(window);
    return true;
}

bool CViewThread::ended() const {
    return !m_thread || WaitForSingleObject(m_thread, 0) == WAIT_OBJECT_0;
}

void CViewThread::waitUntilGone() {
    if (m_thread) {
        waitAnswering({m_thread}, INFINITE);
    }
    if (m_state.thread() == this) {
        m_state.end();  // the thread was ended from outside, without a word
    }
}

void CViewThread::leaveForUnload() {
    const DWORD start = GetTickCount();
    DWORD moved = start;
    Standing last;
    while (!ended() && !m_left.load()) {
        // Asked again and again: what the panel shows of its own, a question say, has
        // nobody left to answer it.
        requestClose();
        waitAnswering({m_gone, m_thread}, kUnloadPollMs);
        const DWORD now = GetTickCount();
        const Standing at = standing(m_thread).value_or(Standing{});
        if (at != last) {
            last = at;
            moved = now;
        }
        const DWORD patience = zoka::HostCall::anyUnderWay() ? kHostPatienceMs : kStuckMs;
        if (now - start > kUnloadPatienceMs || now - moved > patience) {
            // The panel is in an operation that needs the loader's lock, which this thread holds (the system's
            // making of a control and the end of a chooser may), or in a host that never answers: neither could ever go
            // on. Ending the thread is the lesser evil, against a process that hangs for good.
            TerminateThread(m_thread, 1);
            WaitForSingleObject(m_thread, 1000);
            break;
        }
    }
    while (!ended() && !outsideModule(m_thread)) {
        SwitchToThread();
    }
    if (m_state.thread() == this) {
        m_state.end();
    }
}

DWORD WINAPI CViewThread::threadMain(void* self) noexcept {
    auto* const thread = static_cast<CViewThread*>(self);
    thread->run();
    zoka::freeThreadRuntime();
    SetEvent(thread->m_gone);
    thread->m_left.store(true);
    ExitThread(0);
}

__attribute__((noinline)) void CViewThread::run() {
    const zoka::ControlsContext controls(moduleInstance());
    HWND window = nullptr;
    zoka::keepInside([&] { window = m_panel.create(moduleInstance(), m_number); });
    if (window) {
        SetWindowSubclass(window, mainWindowProc, 1, reinterpret_cast<DWORD_PTR>(this));
        m_window.store(window);
        ShowWindow(window, SW_SHOW);  // it may be maximized
        UpdateWindow(window);
        // Made while the editor was in front, the frame is drawn as that of a window behind; the system may
        // not notice, because for this thread the window is the active one all the time.
        if (SetForegroundWindow(window)) {
            SendMessageA(window, WM_NCACTIVATE, TRUE, 0);
        }
        PostMessageA(window, kLoadMessage, 0, 0);
        SetEvent(m_opened);
        if (m_closeRequested.load()) {
            PostMessageA(window, WM_CLOSE, 0, 0);
        }
        messageLoop(window);
        m_panel.gone();
    }
    m_state.end();
}

// Ends with the window. Its end can't be told by WM_QUIT alone: a loop within this one takes that message (a
// chooser of the host's with a loop of its own, a window that is being moved) and may keep it.
void CViewThread::messageLoop(HWND window) {
    MSG message;
    while (m_window.load()) {
        const BOOL got = GetMessageW(&message, nullptr, 0, 0);
        if (got <= 0) {
            break;
        }
        if (!IsDialogMessageW(window, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    if (m_window.load()) {  // the thread was told to quit by somebody else
        DestroyWindow(window);
    }
}

LRESULT CALLBACK CViewThread::mainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                             UINT_PTR id, DWORD_PTR data) {
    return zoka::answerInside(window, [&]() -> LRESULT {
        auto* const self = reinterpret_cast<CViewThread*>(data);
        switch (message) {
            case WM_CLOSE:
                if (self->m_closeRequested.load()) {
                    return self->forcedClose(window, wParam, lParam);
                }
                break;
            case WM_TIMER:
                if (wParam == kCloseTimer) {
                    KillTimer(window, kCloseTimer);
                    PostMessageA(window, WM_CLOSE, 0, 0);
                    return 0;
                }
                break;
            case kLoadMessage:
                // What can't be loaded can't be worked with: the panel goes, the editor stays.
                if (!self->m_closeRequested.load() && !zoka::keepInside([self] { self->m_panel.load(); }) &&
                    IsWindow(window)) {
                    DestroyWindow(window);
                }
                return 0;
            case WM_DESTROY:
                self->m_closing.store(true);
                break;
            case WM_NCDESTROY: {
                self->m_window.store(nullptr);
                RemoveWindowSubclass(window, mainWindowProc, id);
                const LRESULT result = DefSubclassProc(window, message, wParam, lParam);
                PostQuitMessage(0);
                return result;
            }
            default:
                break;
        }
        return DefSubclassProc(window, message, wParam, lParam);
    });
}

// The host wants the panel gone. Dialogs that the panel has open are cancelled first, the innermost before
// the others; then the panel closes as it would for the user, except that it can't refuse.
LRESULT CViewThread::forcedClose(HWND window, WPARAM wParam, LPARAM lParam) {
    if (cancelNestedDialog(window)) {
        SetTimer(window, kCloseTimer, kCloseRetryMs, nullptr);
        return 0;
    }
    // An open menu or a drag is ended first: a panel in the middle of one could not ask about its changes.
    GUITHREADINFO state{};
    state.cbSize = sizeof state;
    const bool inLoop = GetGUIThreadInfo(GetCurrentThreadId(), &state) &&
                        (state.flags & (GUI_INMENUMODE | GUI_POPUPMENUMODE | GUI_INMOVESIZE));
    SendMessageA(window, WM_CANCELMODE, 0, 0);
    if (inLoop && !m_cancelled) {
        m_cancelled = true;
        SetTimer(window, kCloseTimer, kCloseRetryMs, nullptr);
        return 0;
    }
    const LRESULT result = DefSubclassProc(window, WM_CLOSE, wParam, lParam);
    if (IsWindow(window)) {
        DestroyWindow(window);
    }
    return result;
}

// False when no other dialog of this thread is open.
bool CViewThread::cancelNestedDialog(HWND window) {
    DialogSearch search{window, nullptr};
    EnumThreadWindows(GetCurrentThreadId(), findDialog, reinterpret_cast<LPARAM>(&search));
    if (!search.found) {
        return false;
    }
    if (search.found != m_nested) {
        m_nested = search.found;
        PostMessageA(search.found, WM_CLOSE, 0, 0);
    } else {
        EndDialog(search.found, IDCANCEL);  // a Yes/No question has no close of its own
        m_nested = nullptr;
    }
    return true;
}
