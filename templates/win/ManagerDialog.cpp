#include "templates/win/ManagerDialog.h"

#include <commctrl.h>

#include <algorithm>
#include <memory>

#include "templates/CatalogueXml.h"
#include "templates/win/AddPage.h"
#include "templates/win/CustomizePage.h"
#include "templates/win/NotesPage.h"
#include "templates/win/RemovePage.h"
#include "templates/win/UpdatePage.h"
#include "ui/win/ProgressWindow.h"
#include "ui/win/TextWindow.h"

namespace zoka {

namespace {

// Dialog units.
constexpr int kWidth = 420, kHeight = 318, kLeastWidth = 320, kLeastHeight = 262;
constexpr int kTabsHeight = 16;
enum { kTabs = 1001, kStatus };
constexpr int kPageCount = static_cast<int>(std::size(kManagerPages));

// What the next window of this process opens with: the size of its inside in pixels, 0 before the first one.
struct {
    int width = 0, height = 0;
    bool maximized = false;
    int page = 0;
} g_remembered;

struct LoadingCancelled {};

std::unique_ptr<PageWindow> makePage(ManagerPage page, ManagerFrame& frame) {
    switch (page) {
        case ManagerPage::Customize:
            return std::make_unique<CustomizePage>(frame);
        case ManagerPage::Remove:
            return std::make_unique<RemovePage>(frame);
        case ManagerPage::Notes:
            return std::make_unique<NotesPage>(frame);
        case ManagerPage::Update:
            return std::make_unique<UpdatePage>(frame);
        default:
            return std::make_unique<AddPage>(frame);
    }
}

class ManagerDialog : public ManagerFrame, private UserPrompt {
public:
    explicit ManagerDialog(const ManagerSetup& setup)
        : m_setup(setup),
          m_owner(GetActiveWindow()),
          m_session(
              setup.editor, m_catalogue,
              [this](CTemplateData& catalogue, JobProgress*) { return load(catalogue); }, setup.updater,
              *this) {}

    void run();

    HWND window() const override { return m_window; }
    ScriptManagerSession& session() override { return m_session; }
    const WindowFonts& fonts() const override { return m_fonts; }
    void sessionChanged() override;
    void setStatus(const std::string& text) override { setText(m_status, text); }
    void runJob(const std::string& title, const std::function<void(JobProgress&)>& job) override;
    void showText(const std::string& title, const std::string& heading, const std::string& text) override {
        showTextWindow(m_window, title, heading, text);
    }
    bool canCustomize() const override { return static_cast<bool>(m_setup.customize); }
    void customize(const std::string& scriptPath) override { m_setup.customize(m_window, scriptPath); }

private:
    static INT_PTR CALLBACK dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool load(CTemplateData& catalogue);
    bool create();
    void createControls();
    void messageLoop();
    bool takesKey(const MSG& message);
    void layout();
    RECT pageArea() const;
    void showPage(int index);
    void refreshPage();
    PageWindow* page() const { return m_pages[static_cast<size_t>(m_current)].get(); }
    void close();

    // The boxes of the session lie over this window and see what it is about.
    PromptAnswer ask(const std::string& text, const std::string& title, PromptButtons buttons,
                     PromptIcon icon) override;
    std::optional<std::string> chooseFile(const ChooserRequest& request) override {
        return userPrompt().chooseFile(request);
    }
    std::optional<std::string> chooseFolder(const ChooserRequest& request) override {
        return userPrompt().chooseFolder(request);
    }
    [[noreturn]] void fatalStop(const std::string& text, const std::string& title, int exitStatus) override {
        userPrompt().fatalStop(text, title, exitStatus);
        ExitProcess(static_cast<UINT>(exitStatus));
    }

    const ManagerSetup& m_setup;
    HWND m_owner;
    WindowFonts m_fonts;
    CTemplateData m_catalogue;
    ScriptManagerSession m_session;
    std::unique_ptr<PageWindow> m_pages[kPageCount];  // null until first shown
    bool m_stale[kPageCount] = {};                    // shows an older state of the session
    HWND m_window = nullptr, m_tabs = nullptr, m_status = nullptr, m_close = nullptr;
    ProgressWindow* m_progress = nullptr;  // of the job under way
    int m_current = 0;
    bool m_ended = false;
};

bool ManagerDialog::load(CTemplateData& catalogue) {
    ProgressWindow progress(m_owner, m_fonts, "Loading the template catalogue");
    bool loaded = false;
    progress.runOnThread([&](JobProgress& steps) {
        loaded =
            loadCatalogue(catalogue, m_setup.catalogue, nullptr, &steps) && m_session.prepareSearch(&steps);
    });
    if (loaded) {
        return true;
    }
    if (progress.cancelled()) {
        throw LoadingCancelled();
    }
    return catalogue.LoadFromXML(
        m_setup.catalogue);  // says what is wrong with the file, and ends the process
}

void ManagerDialog::run() {
    try {
        if (!m_session.open()) {
            return;
        }
    } catch (const LoadingCancelled&) {
        return;
    }
    if (!create()) {
        return;
    }
    const bool ownerTakesInput = m_owner && IsWindowEnabled(m_owner);
    if (ownerTakesInput) {
        EnableWindow(m_owner, FALSE);
    }
    ShowWindow(m_window, g_remembered.maximized ? SW_SHOWMAXIMIZED : SW_SHOW);
    SetFocus(page()->firstField());
    messageLoop();
    // First the owner, so that the system goes on with it and not with another program's window.
    if (ownerTakesInput) {
        EnableWindow(m_owner, TRUE);
    }
    if (IsWindow(m_window)) {
        DestroyWindow(m_window);
    }
    if (m_owner) {
        SetActiveWindow(m_owner);
    }
}

bool ManagerDialog::create() {
    m_current = g_remembered.page;
    if (!makeDialog(m_owner,
                    WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MAXIMIZEBOX | WS_CLIPCHILDREN, 0,
                    dialogProc, reinterpret_cast<LPARAM>(this))) {
        return false;
    }
    if (page()) {
        return true;
    }
    DestroyWindow(m_window);
    return false;
}

void ManagerDialog::createControls() {
    SetWindowTextA(m_window, kManagerTitle);
    const auto setIcon = [this](WPARAM kind, int width, int height) {
        SendMessageA(m_window, WM_SETICON, kind,
                     reinterpret_cast<LPARAM>(LoadImageA(m_setup.module, MAKEINTRESOURCEA(m_setup.icon),
                                                         IMAGE_ICON, GetSystemMetrics(width),
                                                         GetSystemMetrics(height), LR_SHARED)));
    };
    setIcon(ICON_BIG, SM_CXICON, SM_CYICON);
    setIcon(ICON_SMALL, SM_CXSMICON, SM_CYSMICON);

    // A strip of tabs; the pages stand under it, so that no window lies over another.
    m_tabs = makeControl(m_window, WC_TABCONTROLA, "", TCS_FOCUSONBUTTONDOWN | WS_TABSTOP, 0, kTabs,
                         m_fonts.text());
    for (int i = 0; i < kPageCount; ++i) {
        std::string title = kManagerPages[i];
        TCITEMA item{};
        item.mask = TCIF_TEXT;
        item.pszText = title.data();
        SendMessageA(m_tabs, TCM_INSERTITEMA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    }
    m_status = makeControl(m_window, "STATIC", "", SS_NOPREFIX | SS_ENDELLIPSIS, 0, kStatus, m_fonts.text());
    m_close =
        makeControl(m_window, "BUTTON", "Close", BS_PUSHBUTTON | WS_TABSTOP, 0, IDCANCEL, m_fonts.text());

    const SIZE usual = outerSize(m_window, m_fonts.x(kWidth), m_fonts.y(kHeight));
    const bool known = g_remembered.width > 0;
    centreOver(m_window, m_owner, known ? g_remembered.width : static_cast<int>(usual.cx),
               known ? g_remembered.height : static_cast<int>(usual.cy));
    showPage(m_current);
}

void ManagerDialog::messageLoop() {
    MSG message;
    while (!m_ended) {
        const BOOL got = GetMessageA(&message, nullptr, 0, 0);
        if (got <= 0) {
            if (got == 0) {
                PostQuitMessage(static_cast<int>(message.wParam));  // for the loops further out
            }
            return;
        }
        if (takesKey(message) || IsDialogMessageA(m_window, &message)) {
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

// Ctrl+Tab and Ctrl+Page Down go to the next page, with Shift or Page Up to the one before.
bool ManagerDialog::takesKey(const MSG& message) {
    if (message.message != WM_KEYDOWN || GetKeyState(VK_CONTROL) >= 0 || GetKeyState(VK_MENU) < 0 ||
        (message.hwnd != m_window && !IsChild(m_window, message.hwnd))) {
        return false;
    }
    int step = 0;
    if (message.wParam == VK_TAB) {
        step = GetKeyState(VK_SHIFT) < 0 ? -1 : 1;
    }
    if (message.wParam == VK_NEXT) {
        step = 1;
    }
    if (message.wParam == VK_PRIOR) {
        step = -1;
    }
    if (step == 0) {
        return false;
    }
    const bool onTabs = GetFocus() == m_tabs;
    showPage((m_current + step + kPageCount) % kPageCount);
    SetFocus(onTabs ? m_tabs : page()->firstField());
    return true;
}

RECT ManagerDialog::pageArea() const {
    RECT area;
    GetClientRect(m_window, &area);
    const int x = m_fonts.x(kMarginUnits), y = m_fonts.y(kMarginUnits);
    area.left += x;
    area.right -= x;
    area.top += y + m_fonts.y(kTabsHeight) + m_fonts.y(kGapUnits);
    area.bottom -= 2 * y + m_fonts.y(kButtonHeightUnits);
    return area;
}

void ManagerDialog::layout() {
    const RECT area = pageArea();
    const int width = static_cast<int>(area.right - area.left), x = static_cast<int>(area.left);
    // Cut so that of the frame that a tab control draws around its pages only the line under the tabs is
    // seen.
    RECT tab{};
    SendMessageA(m_tabs, TCM_GETITEMRECT, static_cast<WPARAM>(m_current), reinterpret_cast<LPARAM>(&tab));
    place(m_tabs, x, m_fonts.y(kMarginUnits), width,
          static_cast<int>(tab.bottom) + GetSystemMetrics(SM_CYBORDER));
    const int button = m_fonts.x(kButtonWidthUnits), field = m_fonts.y(kButtonHeightUnits);
    const int foot = static_cast<int>(area.bottom) + m_fonts.y(kMarginUnits);
    place(m_status, x, foot + (field - m_fonts.y(kLabelHeightUnits)) / 2,
          width - button - m_fonts.x(kGapUnits), m_fonts.y(kLabelHeightUnits));
    place(m_close, static_cast<int>(area.right) - button, foot, button, field);
    if (page()) {
        place(page()->window(), x, static_cast<int>(area.top), width,
              static_cast<int>(area.bottom - area.top));
    }
}

void ManagerDialog::showPage(int index) {
    std::unique_ptr<PageWindow>& wanted = m_pages[static_cast<size_t>(index)];
    if (!wanted) {
        wanted = makePage(static_cast<ManagerPage>(index), *this);
        if (!wanted->create(m_window)) {
            wanted.reset();
            return;
        }
        m_stale[index] = true;
        // Tab goes from the strip into the page, and from there to the button in the foot.
        SetWindowPos(wanted->window(), m_tabs, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
    const HWND before = m_current != index && page() ? page()->window() : nullptr;
    m_current = index;
    layout();
    refreshPage();
    SendMessageA(m_tabs, TCM_SETCURSEL, static_cast<WPARAM>(index), 0);
    ShowWindow(page()->window(), SW_SHOW);
    if (before) {
        ShowWindow(before, SW_HIDE);
    }
}

void ManagerDialog::refreshPage() {
    if (!m_stale[m_current]) {
        return;
    }
    m_stale[m_current] = false;
    page()->refresh();
}

void ManagerDialog::sessionChanged() {
    std::ranges::fill(m_stale, true);
    refreshPage();
    setStatus(m_session.status());
}

void ManagerDialog::runJob(const std::string& title, const std::function<void(JobProgress&)>& job) {
    ProgressWindow progress(m_window, m_fonts, title);
    m_progress = &progress;
    try {
        job(progress);
    } catch (...) {
        m_progress = nullptr;
        throw;
    }
    m_progress = nullptr;
}

PromptAnswer ManagerDialog::ask(const std::string& text, const std::string& title, PromptButtons buttons,
                                PromptIcon icon) {
    if (m_progress) {
        m_progress->hide();
        // "All listed" are those that the user sees listed.
        page()->refresh();
        m_stale[m_current] = true;
    }
    return userPrompt().ask(text, title, buttons, icon);
}

void ManagerDialog::close() {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    GetWindowPlacement(m_window, &placement);
    const RECT& frame = placement.rcNormalPosition;
    g_remembered = {static_cast<int>(frame.right - frame.left), static_cast<int>(frame.bottom - frame.top),
                    IsZoomed(m_window) != 0, m_current};
    m_ended = true;
}

INT_PTR CALLBACK ManagerDialog::dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, DWLP_USER, static_cast<LONG_PTR>(lParam));
        auto* const dialog = reinterpret_cast<ManagerDialog*>(lParam);
        dialog->m_window = window;
        dialog->createControls();
        return FALSE;
    }
    auto* const self = reinterpret_cast<ManagerDialog*>(GetWindowLongPtrA(window, DWLP_USER));
    if (!self) {
        return FALSE;
    }
    switch (message) {
        case WM_SIZE:
            if (wParam == SIZE_MINIMIZED) {
                return TRUE;
            }
            self->layout();
            // Painted at once, so that nothing of the old places is seen while the frame is drawn larger.
            RedrawWindow(window, nullptr, nullptr,
                         RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
            return TRUE;
        case WM_GETMINMAXINFO: {
            const SIZE least = outerSize(window, self->m_fonts.x(kLeastWidth), self->m_fonts.y(kLeastHeight));
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {least.cx, least.cy};
            return TRUE;
        }
        case WM_COMMAND:
            // The system sends here what Enter and Escape do, also for a button inside a page.
            if (LOWORD(wParam) == IDCANCEL) {
                self->close();
            } else if (LOWORD(wParam) == IDOK) {
                self->page()->mainAction();
            } else if (self->page()) {
                self->page()->command(LOWORD(wParam), HIWORD(wParam));
            }
            return TRUE;
        case WM_NOTIFY: {
            const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
            if (header.idFrom == kTabs && header.code == static_cast<UINT>(TCN_SELCHANGE)) {
                self->showPage(static_cast<int>(SendMessageA(self->m_tabs, TCM_GETCURSEL, 0, 0)));
            }
            return TRUE;
        }
        case WM_CLOSE:
            self->close();
            return TRUE;
        default:
            return FALSE;
    }
}

}  // namespace

void runManagerDialog(const ManagerSetup& setup) {
    ManagerDialog(setup).run();
}

}  // namespace zoka
