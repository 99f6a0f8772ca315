#include "tools/editor/win/EditorWindow.h"

#include <commctrl.h>
#include <commdlg.h>
#include <shlobj.h>
#include <windowsx.h>

#include <algorithm>

#include "ui/win/Window.h"

namespace zoka {

namespace {

constexpr char kClassName[] = "ZunStandInEditor";
constexpr char kTitle[] = "ZUN stand-in editor";
constexpr UINT kMessageJobs = WM_APP + 1;
constexpr UINT kMessageLog = WM_APP + 2;
constexpr UINT kMessageSelection = WM_APP + 3;
constexpr UINT kMessageDestroy = WM_APP + 4;
constexpr UINT_PTR kTimer = 1;
constexpr UINT kTimerPeriod = 200;  // ms between looks at the busy words
constexpr int kSplitter = 6;        // pixels between list and log
constexpr int kLeast = 60;          // pixels that list and log keep at least
enum : int { kIdEntities = 1, kIdLog, kIdStatus };

}  // namespace

EditorWindow::EditorWindow(Editor& editor) : m_editor(editor), m_entities(editor.level()) {}

EditorWindow::~EditorWindow() {
    if (m_window) {
        DestroyWindow(m_window);
    }
    if (m_font) {
        DeleteObject(m_font);
    }
    if (m_keys) {
        DestroyAcceleratorTable(m_keys);
    }
}

bool EditorWindow::create(bool show) {
    const INITCOMMONCONTROLSEX controls{sizeof controls,
                                        ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) {
        m_font = CreateFontIndirectA(&metrics.lfMessageFont);
    }

    // The system makes one of each at the first use and keeps it. Made now, none is taken for something that a plug-in
    // left behind, because the pointer happened to stand on a border of its window.
    for (LPCSTR const cursor : {IDC_ARROW, IDC_IBEAM, IDC_WAIT, IDC_APPSTARTING, IDC_HAND, IDC_NO,
                                IDC_SIZEALL, IDC_SIZENS, IDC_SIZEWE, IDC_SIZENESW, IDC_SIZENWSE}) {
        LoadCursorA(nullptr, cursor);
    }

    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = windowProc;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hIcon = LoadIconA(nullptr, IDI_APPLICATION);
    windowClass.hCursor = LoadCursorA(nullptr, IDC_SIZENS);  // shows between the two panes only
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    windowClass.lpszClassName = kClassName;
    RegisterClassA(&windowClass);

    ACCEL keys[] = {{FVIRTKEY | FCONTROL, 'O', kCommandOpen},
                    {FVIRTKEY | FCONTROL, 'S', kCommandSave},
                    {FVIRTKEY | FCONTROL, 'L', kCommandLoadPlugin},
                    {FVIRTKEY, VK_F5, kCommandReload}};
    if (!m_keys) {
        m_keys = CreateAcceleratorTableA(keys, static_cast<int>(std::size(keys)));
    }
    m_endsLoop = true;

    CreateWindowExA(0, kClassName, kTitle, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 60, 40, 900, 640, nullptr,
                    nullptr, GetModuleHandleA(nullptr), this);
    if (!m_window) {
        return false;
    }
    m_editor.onChange = [this] { editorChanged(); };
    m_editor.log().notify(m_window, kMessageLog);
    editorChanged();
    showLog();
    if (show) {
        ShowWindow(m_window, SW_SHOW);
    }
    UpdateWindow(m_window);
    return true;
}

int EditorWindow::run() {
    MSG message;
    for (;;) {
        const BOOL got = GetMessageA(&message, nullptr, 0, 0);
        if (got == 0 && m_rehearsesQuit.exchange(false)) {
            m_notedQuit = static_cast<int>(message.wParam);
            continue;
        }
        if (got <= 0) {
            break;
        }
        if (!message.hwnd && message.message == kMessageJobs) {
            runJobs();
            continue;
        }
        if (m_window && TranslateAcceleratorA(m_window, m_keys, &message)) {
            continue;
        }
        if (m_window && IsDialogMessageA(m_window, &message)) {
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return static_cast<int>(message.wParam);
}

void EditorWindow::post(std::function<void()> job) {
    {
        const std::lock_guard lock(m_jobMutex);
        m_jobs.push(std::move(job));
    }
    if (!m_window || !PostMessageA(m_window, kMessageJobs, 0, 0)) {
        PostThreadMessageA(m_thread, kMessageJobs, 0, 0);
    }
}

void EditorWindow::destroy() {
    SendMessageA(m_window, kMessageDestroy, 0, 0);
}

void EditorWindow::rehearseQuit(int status) {
    post([this, status] {
        m_notedQuit = -1;
        m_rehearsesQuit = true;
        PostQuitMessage(status);
    });
}

void EditorWindow::runJobs() {
    for (;;) {
        std::function<void()> job;
        {
            const std::lock_guard lock(m_jobMutex);
            if (m_jobs.empty()) {
                return;
            }
            job = std::move(m_jobs.front());
            m_jobs.pop();
        }
        job();
    }
}

LRESULT CALLBACK EditorWindow::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const self = objectOf<EditorWindow>(window, message, lParam);
    if (self && message == WM_NCCREATE) {
        self->m_window = window;
    }
    return self ? self->handleMessage(message, wParam, lParam)
                : DefWindowProcA(window, message, wParam, lParam);
}

LRESULT EditorWindow::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE:
            onCreate();
            return 0;
        case WM_SIZE:
            layOut();
            return 0;
        case WM_GETMINMAXINFO:
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {420, 300};
            return 0;
        case WM_COMMAND:
            if (!lParam) {
                onCommand(LOWORD(wParam));
            }
            return 0;
        case WM_NOTIFY:
            return onNotify(*reinterpret_cast<NMHDR*>(lParam));
        case WM_INITMENUPOPUP:
            m_menu.refresh(m_window, m_editor);
            return 0;
        case WM_TIMER:
            showStatus();
            m_entities.refresh();
            return 0;
        case WM_SETFOCUS:
            SetFocus(m_entities.window());
            return 0;
        case WM_LBUTTONDOWN:
            m_dragging = true;
            SetCapture(m_window);
            return 0;
        case WM_MOUSEMOVE:
            if (m_dragging) {
                dragSplitter(GET_Y_LPARAM(lParam));
            }
            return 0;
        case WM_LBUTTONUP:
            if (m_dragging) {
                ReleaseCapture();
            }
            return 0;
        case WM_CAPTURECHANGED:
            m_dragging = false;
            return 0;
        case kMessageJobs:
            runJobs();
            return 0;
        case kMessageSelection:
            m_entities.takeSelection();
            return 0;
        case kMessageLog:
            showLog();
            return 0;
        case kMessageDestroy:
            m_endsLoop = false;
            DestroyWindow(m_window);
            return 0;
        case WM_CLOSE:
            onClose();
            return 0;
        case WM_DESTROY:
            m_editor.onChange = nullptr;
            m_editor.log().notify(nullptr, 0);
            if (m_endsLoop) {
                PostQuitMessage(0);
            }
            return 0;
        case WM_NCDESTROY:
            forgetObject(m_window);
            m_window = nullptr;
            return 0;
        default:
            return DefWindowProcA(m_window, message, wParam, lParam);
    }
}

void EditorWindow::onCreate() {
    m_entities.create(m_window, kIdEntities, m_font);
    m_log.create(m_window, kIdLog, LVS_OWNERDATA | LVS_NOSORTHEADER | LVS_SINGLESEL, m_font,
                 {{"Thread", 90}, {"Call", 430}, {"Answer", 320}});
    m_status = CreateWindowExA(0, STATUSCLASSNAMEA, "", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0,
                               m_window, reinterpret_cast<HMENU>(static_cast<INT_PTR>(kIdStatus)),
                               GetModuleHandleA(nullptr), nullptr);
    SendMessageA(m_status, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), FALSE);
    SetTimer(m_window, kTimer, kTimerPeriod, nullptr);
}

void EditorWindow::layOut() {
    RECT client;
    RECT status;
    GetClientRect(m_window, &client);
    SendMessageA(m_status, WM_SIZE, 0, 0);
    GetWindowRect(m_status, &status);
    const int height = std::max(0L, client.bottom - (status.bottom - status.top));
    const int log =
        std::clamp(height * m_logShare / 100, kLeast, std::max(kLeast, height - kLeast - kSplitter));
    const int list = std::max(0, height - log - kSplitter);
    m_entities.place(0, 0, client.right, list);
    m_log.place(0, list + kSplitter, client.right, std::max(0, height - list - kSplitter));
}

void EditorWindow::dragSplitter(int y) {
    RECT client;
    RECT status;
    GetClientRect(m_window, &client);
    GetWindowRect(m_status, &status);
    const int height = static_cast<int>(client.bottom - (status.bottom - status.top));
    if (height <= 0) {
        return;
    }
    m_logShare = std::clamp(100 - y * 100 / height, 5, 95);
    layOut();
}

LRESULT EditorWindow::onNotify(NMHDR& header) {
    if (header.hwndFrom == m_log.window() && header.code == LVN_GETDISPINFOA) {
        LVITEMA& item = reinterpret_cast<NMLVDISPINFOA&>(header).item;
        const CallLogLine line = m_editor.log().line(static_cast<size_t>(item.iItem));
        const std::string& text = item.iSubItem == 0   ? line.thread
                                  : item.iSubItem == 1 ? line.call
                                                       : line.answer;
        if ((item.mask & LVIF_TEXT) && item.pszText && item.cchTextMax > 0) {
            lstrcpynA(item.pszText, text.c_str(), item.cchTextMax);
        }
    } else if (header.hwndFrom != m_entities.window()) {
        return 0;
    } else if (header.code == LVN_ITEMCHANGED) {
        if (m_entities.isSelectionChange(reinterpret_cast<NMLISTVIEW&>(header))) {
            PostMessageA(m_window, kMessageSelection, 0, 0);
        }
    } else if (header.code == LVN_KEYDOWN) {
        if (reinterpret_cast<NMLVKEYDOWN&>(header).wVKey == VK_DELETE) {
            m_entities.eraseSelected();
        }
    } else if (header.code == NM_DBLCLK) {
        if (ProcedureState* const procedure = m_editor.procedure(m_editor.entityProcedure())) {
            choose(*procedure);
        }
    }
    return 0;
}

void EditorWindow::onCommand(UINT command) {
    const auto& procedures = m_editor.procedures();
    if (command >= kCommandTerminate && command - kCommandTerminate < procedures.size()) {
        m_editor.terminate(*procedures[command - kCommandTerminate]);
        return showStatus();
    }
    if (command >= kCommandProcedure && command - kCommandProcedure < procedures.size()) {
        return choose(*procedures[command - kCommandProcedure]);
    }
    switch (command) {
        case kCommandOpen:
            return openProject();
        case kCommandReload:
            if (const std::string path = m_editor.level().path(); !path.empty()) {
                complainOf(m_editor.openLevel(path));
            }
            return;
        case kCommandSave:
            return saveLevel();
        case kCommandClose:
            return m_editor.closeLevel();
        case kCommandExit:
            PostMessageA(m_window, WM_CLOSE, 0, 0);
            return;
        case kCommandLoadPlugin:
            return loadPlugin();
        case kCommandUnloadPlugin:
            m_editor.unloadPlugin();
            return;
        case kCommandHostNormal:
        case kCommandHostFail:
        case kCommandHostEmpty:
        case kCommandHostFull:
            m_editor.hostTable().setFault(static_cast<HostFault>(command - kCommandHostNormal));
            return showStatus();
        case kCommandEntitiesAll:
        case kCommandEntitiesOne:
        case kCommandEntitiesRefuse:
            m_editor.setEntityAnswers(static_cast<EntityAnswers>(command - kCommandEntitiesAll));
            return showStatus();
        case kCommandClearLog:
            m_editor.log().clear();
            return;
        case kCommandAbout:
            return about();
        default:
            return;
    }
}

void EditorWindow::choose(ProcedureState& procedure) {
    m_entities.takeSelection();
    if (!procedure.isBusy()) {
        m_editor.execute(procedure);
        return showStatus();
    }
    if (!procedure.record->terminate) {
        return complain(procedure.name() + " is running and can't be terminated.");
    }
    const std::string question = procedure.name() + " is running.\n\nTerminate it?";
    if (MessageBoxA(m_window, question.c_str(), kTitle, MB_YESNO | MB_ICONQUESTION) == IDYES &&
        procedure.record) {
        m_editor.terminate(procedure);
    }
    showStatus();
}

void EditorWindow::editorChanged() {
    m_menu.build(m_window, m_editor.procedures(), m_editor.library().loaded());
    m_menu.refresh(m_window, m_editor);
    const std::string& folder = m_editor.projectFolder();
    const std::string name = folder.substr(folder.find_last_of('\\') + 1);
    const std::string title = name.empty() ? kTitle : std::string(kTitle) + " - " + name;
    SetWindowTextA(m_window, title.c_str());
    m_entities.show();
    showStatus();
}

void EditorWindow::showLog() {
    const int count = static_cast<int>(m_editor.log().size());
    ListView_SetItemCountEx(m_log.window(), count, LVSICF_NOSCROLL);
    if (count) {
        ListView_EnsureVisible(m_log.window(), count - 1, FALSE);
    }
}

void EditorWindow::showStatus() {
    std::string running;
    for (const ProcedureState* const procedure : m_editor.procedures()) {
        if (procedure->isBusy()) {
            running += (running.empty() ? "" : ", ") + procedure->name();
        }
    }
    std::string text = m_editor.projectFolder().empty() ? "No project open" : m_editor.level().path();
    text += "    |    ";
    text += m_editor.library().loaded() ? m_editor.library().path() : "no plug-in";
    if (!running.empty()) {
        text += "    |    running: " + running;
    }
    if (m_editor.hostTable().fault() != HostFault::None) {
        text += "    |    host answers faultily";
    }
    if (m_editor.entityAnswers() == EntityAnswers::Refuse) {
        text += "    |    entities refuse";
    }
    if (text == m_shownStatus) {
        return;
    }
    m_shownStatus = text;
    SendMessageA(m_status, SB_SETTEXTA, SB_SIMPLEID, reinterpret_cast<LPARAM>(text.c_str()));
    SendMessageA(m_status, SB_SIMPLE, TRUE, 0);
}

void EditorWindow::openProject() {
    BROWSEINFOA browse{};
    browse.hwndOwner = m_window;
    browse.lpszTitle = "Choose a project folder (one that holds a level, main.zlm).";
    browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_USENEWUI;
    ITEMIDLIST* const chosen = SHBrowseForFolderA(&browse);
    if (!chosen) {
        return;
    }
    char folder[MAX_PATH] = {};
    SHGetPathFromIDListA(chosen, folder);
    CoTaskMemFree(chosen);
    complainOf(m_editor.openProject(folder));
}

void EditorWindow::loadPlugin() {
    char path[MAX_PATH] = {};
    OPENFILENAMEA chooser{};
    chooser.lStructSize = sizeof chooser;
    chooser.hwndOwner = m_window;
    chooser.lpstrFilter = "Plug-ins (*.dll)\0*.dll\0All files\0*.*\0";
    chooser.lpstrFile = path;
    chooser.nMaxFile = sizeof path;
    chooser.lpstrTitle = "Load plug-in";
    chooser.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_EXPLORER;
    if (!GetOpenFileNameA(&chooser)) {
        return;
    }
    if (const Outcome loaded = m_editor.loadPlugin(path); !loaded) {
        complain(std::string(path) + "\n\n" + loaded.why());
    }
}

void EditorWindow::saveLevel() {
    if (!m_editor.projectFolder().empty()) {
        complainOf(m_editor.level().save());
    }
}

void EditorWindow::about() {
    MessageBoxA(
        m_window,
        "ZUN stand-in editor\nVersion " ZOKA_VERSION
        "\n\nLoads a plug-in as the level editor does, serves it a plain project folder and shows every "
        "call between the two.",
        kTitle, MB_OK | MB_ICONINFORMATION);
}

void EditorWindow::complainOf(const Outcome& outcome) {
    if (!outcome) {
        complain(outcome.why());
    }
}

void EditorWindow::complain(const std::string& text) {
    MessageBoxA(m_window, text.c_str(), kTitle, MB_OK | MB_ICONWARNING);
}

void EditorWindow::onClose() {
    m_editor.unloadPlugin();
    DestroyWindow(m_window);
}

}  // namespace zoka
