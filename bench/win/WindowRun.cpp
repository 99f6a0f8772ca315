#include "bench/win/WindowRun.h"

#include <string_view>

#include "bench/win/Measure.h"

namespace zoka::bench {
namespace {

constexpr UINT kOpened = WM_APP + 1;

}  // namespace

PluginEditor::PluginEditor(const test::TempFolder& folder, const std::string& dll)
    : m_log(GetCurrentThreadId()), m_editor(m_log) {
    m_editor.host().setSuite(folder.path(), "templates");
    openProject(folder);
    mustBe(m_editor.loadPlugin(dll));
}

void PluginEditor::openProject(const test::TempFolder& folder) {
    folder.write("main.zlm", "level 1\r\n");
    folder.write("main.kez", "// main\r\n\r\n");
    mustBe(m_editor.openProject(folder.path()));
}

WindowRun* WindowRun::s_current = nullptr;

WindowRun::WindowRun(Editor& editor, const std::string& procedure, std::string title,
                     std::function<void(HWND)> use, std::function<bool(HWND)> isFilled,
                     std::function<void(HWND)> seen)
    : m_title(std::move(title)),
      m_use(std::move(use)),
      m_isFilled(std::move(isFilled)),
      m_seen(std::move(seen)) {
    s_current = this;
    WNDCLASSA definition{};
    definition.lpszClassName = "ZokaBenchOpened";
    definition.lpfnWndProc = helperProc;
    RegisterClassA(&definition);
    m_helper = CreateWindowExA(0, definition.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                               nullptr);
    const HHOOK hook = SetWindowsHookExA(WH_CBT, hookProc, nullptr, GetCurrentThreadId());
    ProcedureState* const state = editor.procedure(procedure);
    if (!m_helper || !hook || !state) {
        stop("the window can't be asked for");
    }
    QueryPerformanceCounter(&m_start);
    editor.execute(*state);
    UnhookWindowsHookEx(hook);
    DestroyWindow(m_helper);
    if (!m_done) {
        stop("the window did not open");
    }
}

// The window is about to be shown: once it takes messages, it is there.
LRESULT CALLBACK WindowRun::hookProc(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_ACTIVATE) {
        char title[64] = {};
        GetWindowTextA(reinterpret_cast<HWND>(wParam), title, sizeof title);
        if (std::string_view(title).starts_with(s_current->m_title)) {
            PostMessageA(s_current->m_helper, kOpened, wParam, 0);
        }
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CALLBACK WindowRun::helperProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kOpened) {
        return DefWindowProcA(window, message, wParam, lParam);
    }
    if (!s_current->m_done) {
        s_current->opened(reinterpret_cast<HWND>(wParam));
    }
    return 0;
}

double WindowRun::elapsed() const {
    LARGE_INTEGER frequency, end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&end);
    return static_cast<double>(end.QuadPart - m_start.QuadPart) * 1000.0 /
           static_cast<double>(frequency.QuadPart);
}

void WindowRun::opened(HWND window) {
    m_done = true;
    paint(window);
    m_opening = elapsed();
    if (m_seen) {
        m_seen(window);
        m_looking = elapsed() - m_opening;
    }
    MSG message;
    while (m_isFilled && !m_isFilled(window) && GetMessageA(&message, nullptr, 0, 0) > 0) {
        DispatchMessageA(&message);
    }
    paint(window);
    m_filling = elapsed() - m_looking;
    m_use(window);
    PostMessageA(window, WM_CLOSE, 0, 0);
}

}  // namespace zoka::bench
