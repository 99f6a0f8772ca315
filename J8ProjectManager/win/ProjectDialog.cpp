#include "J8ProjectManager/win/ProjectDialog.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

#include "J8ProjectManager/win/BackgroundLoad.h"
#include "J8ProjectManager/win/LevelsPage.h"
#include "J8ProjectManager/win/OverviewPage.h"
#include "J8ProjectManager/win/ProjectLists.h"
#include "controls/win/ControlClasses.h"
#include "ui/win/TextWindow.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {

namespace {

constexpr const char* kTitle = "Project Manager";
enum { kUndo = 1050, kRedo, kChanges, kReload, kSave };
constexpr UINT kLoaded = WM_APP + 30;
// Looks whether the project is loaded, should the message that says so not come.
constexpr UINT_PTR kLoadedTimer = 30;
constexpr UINT kLookEvery = 250;  // milliseconds
// A project file that is not large is waited for and comes into sight with the window: nobody notices it, and nothing
// flickers. It takes long only where the disk or the processor is busy.
constexpr DWORD kSmallLoadsAtOnce = 1000;     // milliseconds
constexpr std::uint64_t kSmall = 256 * 1024;  // bytes

void tellNotLoaded(const std::string& why) {
    userPrompt().ask(why, kTitle, PromptButtons::Ok, PromptIcon::Error);
}

// What the next window of this process opens with.
PlaceMemory g_place;
int g_page = 0;

std::string convert(const std::string& text, UINT from, UINT to) {
    if (std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
        return text;  // which is the same in every set, and most texts are
    }
    const int length = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<size_t>(MultiByteToWideChar(from, 0, text.data(), length, wide.data(), length)));
    const int wideLength = static_cast<int>(wide.size());
    const int size = WideCharToMultiByte(to, 0, wide.data(), wideLength, nullptr, 0, nullptr, nullptr);
    std::string made(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(to, 0, wide.data(), wideLength, made.data(), size, nullptr, nullptr);
    return made;
}

class ProjectDialog : public ProjectFrame, private PageShell {
public:
    explicit ProjectDialog(const ProjectSetup& setup)
        : PageShell({.title = kTitle,
                     .module = setup.module,
                     .icon = setup.icon,
                     .width = 470,
                     .height = 330,
                     .leastWidth = 420,
                     .leastHeight = 250,
                     .maximizes = true,
                     .memory = &g_place},
                    kProjectTabs, g_page),
          m_model(setup.project),
          m_session(setup.project, userPrompt()) {
        m_session.modelGoes = [this] { keepSelections(); };
        m_session.modelReplaced = [this] { refreshPages(); };
    }

    void run(const std::string& projectFile);

    ProjectSession& session() override { return m_session; }
    const WindowFonts& fonts() const override { return DialogShell::fonts(); }
    void edited() override;
    void setStatus(const std::string& text) override { PageShell::setStatus(text); }
    void undoOrRedo(bool undo) override;
    void goTo(const ProjectTarget& target) override;

private:
    std::unique_ptr<Page> makePage(int index) override;
    std::vector<HWND> makeFoot() override;
    bool hasContent() const override { return !m_isLoading; }
    void pageShown(int index) override { g_page = index; }
    void command(int id, int code) override;
    bool takesKey(const MSG& message) override;
    bool mayClose() override;
    void failed() override;
    void shown() override;
    std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) override;
    // Nothing but the way out while the project is being loaded.
    void enableAll(bool enabled);
    // False when there is no project; the user has been told.
    bool takeLoaded();
    void keepSelections();
    void showState();
    void save();
    void reload();
    ProjectPage* projectPage() const { return static_cast<ProjectPage*>(page()); }

    ControlClasses m_classes;
    std::optional<BackgroundLoad> m_load;
    bool m_isLoading = true;
    bool m_isSettled = false;     // the user has said what becomes of unsaved edits
    HWND m_lastInPage = nullptr;  // which had the keyboard; may be gone
    CJ8ProjectManager& m_model;
    ProjectSession m_session;
    HWND m_undo = nullptr, m_redo = nullptr, m_changes = nullptr, m_reload = nullptr, m_save = nullptr;
};

void ProjectDialog::run(const std::string& projectFile) {
    const auto file = osFiles().search(projectFile);
    const bool isSmall = file && file->size < kSmall;
    m_load.emplace(projectFile, m_model, !isSmall);
    if (m_load->isDone(isSmall ? kSmallLoadsAtOnce : 0) && !takeLoaded()) {
        return;
    }
    runModal();
    if (!m_isSettled) {
        m_session.keepUnsaved();
    }
}

bool ProjectDialog::takeLoaded() {
    m_isLoading = false;  // also where it throws: there is nothing to be taken a second time
    ProjectSession::Loaded loaded = m_load->take();
    if (const Outcome opened = m_session.open(std::move(loaded)); !opened) {
        tellNotLoaded(opened.why());
        return false;
    }
    return true;
}

void ProjectDialog::shown() {
    if (m_isLoading) {
        enableAll(false);
        SetFocus(window());
        setStatus("Loading the project...");
        RedrawWindow(window(), nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
        m_load->resume(window(), kLoaded);
        SetTimer(window(), kLoadedTimer, kLookEvery, nullptr);
    }
}

void ProjectDialog::enableAll(bool enabled) {
    for (HWND child = GetWindow(window(), GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (GetDlgCtrlID(child) != IDCANCEL) {
            enable(child, enabled);
        }
    }
}

std::optional<LRESULT> ProjectDialog::message(UINT message, WPARAM wParam, LPARAM lParam) {
    const bool looks = message == WM_TIMER && wParam == kLoadedTimer;
    if (m_isLoading && (message == kLoaded || (looks && m_load->isDone(0)))) {
        KillTimer(window(), kLoadedTimer);
        if (!takeLoaded()) {
            end();
            return 0;
        }
        enableAll(true);
        setStatus("");
        if (const HWND field = firstField()) {
            SetFocus(field);
        }
        showState();  // the title last: it says that the project is there
        return 0;
    }
    if (looks) {
        return 0;
    }
    if (message == WM_DESTROY && m_isLoading) {
        m_load->resume(nullptr);
    }
    return PageShell::message(message, wParam, lParam);
}

std::unique_ptr<Page> ProjectDialog::makePage(int index) {
    switch (static_cast<ProjectTab>(index)) {
        case ProjectTab::Behaviors:
            return std::make_unique<BehaviorsPage>(*this);
        case ProjectTab::Components:
            return std::make_unique<ComponentsPage>(*this);
        case ProjectTab::Levels:
            return std::make_unique<LevelsPage>(*this);
        case ProjectTab::Report:
            return std::make_unique<ReportPage>(*this);
        case ProjectTab::Problems:
            return std::make_unique<ProblemsPage>(*this);
        default:
            return std::make_unique<OverviewPage>(*this);
    }
}

std::vector<HWND> ProjectDialog::makeFoot() {
    m_undo = makeButton(window(), "Undo", kUndo, fonts());
    m_redo = makeButton(window(), "Redo", kRedo, fonts());
    m_changes = makeButton(window(), "Show chan&ges...", kChanges, fonts());
    m_reload = makeButton(window(), "Reload", kReload, fonts());
    m_save = makeButton(window(), "&Save", kSave, fonts());
    showState();
    return {m_undo, m_redo, m_changes, m_reload, m_save, makeButton(window(), "Close", IDCANCEL, fonts())};
}

// The title names the project, with a mark while it has changes; buttons tell what they would do.
void ProjectDialog::showState() {
    if (m_isLoading) {
        return setTitle(kTitle);
    }
    const std::string name = shownText(m_session.model().m_name);
    setTitle(std::string(kTitle) + " - " + (name.empty() ? std::string(fileNameOf(m_session.path())) : name) +
             (m_session.hasChanges() ? " *" : ""));
    const HWND keyboard = GetFocus();
    enable(m_undo, m_session.canUndo());
    enable(m_redo, m_session.canRedo());
    enable(m_changes, m_session.hasChanges());
    enable(m_save, m_session.hasChanges());
    // A button that takes no input any more gives the keyboard back: beside it are Reload and Close.
    if (page() && keyboard && GetParent(keyboard) == window() && !IsWindowEnabled(keyboard)) {
        projectPage()->takeKeyboard(m_lastInPage);
    }
}

void ProjectDialog::keepSelections() {
    for (size_t i = 0; i < std::size(kProjectTabs); ++i) {
        if (Page* const made = pageAt(static_cast<int>(i))) {
            static_cast<ProjectPage*>(made)->keepSelection();
        }
    }
}

void ProjectDialog::edited() {
    showState();
    // The page that made the edit shows it already.
    refreshOtherPagesLater();
}

void ProjectDialog::undoOrRedo(bool undo) {
    if (!page() || (undo && projectPage()->revertDraft()) || !page()->commit()) {
        return;
    }
    m_session.leaveField();
    const ProjectChange* const change = undo ? m_session.undo() : m_session.redo();
    if (!change) {
        return;
    }
    const ProjectTarget target = targetOf(*change, undo);
    refreshPages();
    showState();
    goTo(target);
}

void ProjectDialog::goTo(const ProjectTarget& target) {
    if (currentPage() != static_cast<int>(target.tab)) {
        goToPage(static_cast<int>(target.tab));
    }
    if (page() && currentPage() == static_cast<int>(target.tab)) {
        projectPage()->select(target);
    }
}

bool ProjectDialog::takesKey(const MSG& message) {
    if (m_isLoading) {
        return false;
    }
    if (const HWND keyboard = GetFocus(); page() && IsChild(page()->window(), keyboard)) {
        m_lastInPage = keyboard;
    }
    if (message.message == WM_KEYDOWN && (message.hwnd == window() || IsChild(window(), message.hwnd)) &&
        GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0) {
        const bool ownUndo = page() && projectPage()->undoesItself(message.hwnd) &&
                             (SendMessageA(message.hwnd, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0;
        switch (message.wParam) {
            case 'Z':
            case 'Y':
                if (ownUndo) {
                    break;
                }
                undoOrRedo(message.wParam == 'Z' && GetKeyState(VK_SHIFT) >= 0);
                return true;
            case 'S':
                save();
                return true;
            default:
                break;
        }
    }
    return PageShell::takesKey(message);
}

void ProjectDialog::command(int id, int code) {
    switch (id) {
        case kUndo:
        case kRedo:
            undoOrRedo(id == kUndo);
            break;
        case kChanges:
            if (page() && page()->commit()) {
                showTextWindow(window(), "Changes", "What Save will change in the project file:",
                               shownText(m_session.changesText()), TextLook::FixedWidth);
            }
            break;
        case kReload:
            reload();
            break;
        case kSave:
            save();
            break;
        default:
            PageShell::command(id, code);
            break;
    }
}

void ProjectDialog::save() {
    if (!page() || !page()->commit()) {
        return;
    }
    m_session.leaveField();
    if (m_session.save() == SaveResult::Saved) {
        setStatus("Saved: " + m_session.path());
    }
    showState();
}

void ProjectDialog::reload() {
    if (const Outcome loaded = m_session.reload()) {
        setStatus("Loaded again");
    } else if (!loaded.why().empty()) {
        tellNotLoaded(loaded.why());
    }
    showState();
}

bool ProjectDialog::mayClose() {
    m_isSettled = (!page() || page()->commit()) && m_session.close();
    return m_isSettled;
}

// The pages go first: a save puts another model in the place of the one that they show.
void ProjectDialog::failed() {
    removePages();
    m_session.offerUnsaved();
    m_isSettled = true;
    PageShell::failed();
}

}  // namespace

std::string shownText(const std::string& utf8) {
    return convert(utf8, CP_UTF8, CP_ACP);
}

ProjectTexts projectTexts() {
    return {shownText, [](const std::string& shown) { return convert(shown, CP_ACP, CP_UTF8); }};
}

void runProjectDialog(const ProjectSetup& setup) {
    ProjectDialog(setup).run(setup.projectFile);
}

}  // namespace zoka
