#include "templates/win/ManagerDialog.h"

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

// What the next window of this process opens with.
PlaceMemory g_place;
int g_page = 0;

struct LoadingCancelled {};

class ManagerDialog : public ManagerFrame, private PageShell, private UserPrompt {
public:
    explicit ManagerDialog(const ManagerSetup& setup)
        : PageShell({.title = kManagerTitle,
                     .module = setup.module,
                     .icon = setup.icon,
                     .width = 420,
                     .height = 318,
                     .leastWidth = 320,
                     .leastHeight = 262,
                     .maximizes = true,
                     .memory = &g_place},
                    kManagerPages, g_page),
          m_setup(setup),
          m_owner(modalOwner()),
          m_session(
              setup.editor, m_catalogue,
              [this](CTemplateData& catalogue, JobProgress*) { return load(catalogue); }, *this) {}

    void run();

    HWND window() const override { return Window::window(); }
    ScriptManagerSession& session() override { return m_session; }
    const WindowFonts& fonts() const override { return DialogShell::fonts(); }
    void sessionChanged() override;
    void setStatus(const std::string& text) override { PageShell::setStatus(text); }
    void runJob(const std::string& title, const std::function<void(JobProgress&)>& job) override;
    void showText(const std::string& title, const std::string& heading, const std::string& text) override {
        showTextWindow(window(), title, heading, text);
    }
    bool canCustomize() const override { return static_cast<bool>(m_setup.customize); }
    void customize(const std::string& scriptPath) override { m_setup.customize(window(), scriptPath); }

private:
    bool load(CTemplateData& catalogue);
    std::unique_ptr<Page> makePage(int index) override;
    void pageShown(int index) override { g_page = index; }

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
    CTemplateData m_catalogue;
    ScriptManagerSession m_session;
    ProgressWindow* m_progress = nullptr;  // of the job under way
};

bool ManagerDialog::load(CTemplateData& catalogue) {
    ProgressWindow progress(m_owner, "Loading the template catalogue");
    bool loaded = false;
    XMLResults results;
    progress.runOnThread([&](JobProgress& steps) {
        loaded =
            loadCatalogue(catalogue, m_setup.catalogue, &results, &steps) && m_session.prepareSearch(&steps);
    });
    if (loaded) {
        return true;
    }
    if (progress.cancelled() || leavesDamagedCatalogue(userPrompt(), m_setup.catalogue, results)) {
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
    runModal(m_owner);
}

std::unique_ptr<Page> ManagerDialog::makePage(int index) {
    switch (static_cast<ManagerPage>(index)) {
        case ManagerPage::Customize:
            return std::make_unique<CustomizePage>(*this);
        case ManagerPage::Remove:
            return std::make_unique<RemovePage>(*this);
        case ManagerPage::Notes:
            return std::make_unique<NotesPage>(*this);
        case ManagerPage::Update:
            return std::make_unique<UpdatePage>(*this);
        default:
            return std::make_unique<AddPage>(*this);
    }
}

void ManagerDialog::sessionChanged() {
    refreshPages();
    setStatus(m_session.status());
}

void ManagerDialog::runJob(const std::string& title, const std::function<void(JobProgress&)>& job) {
    ProgressWindow progress(window(), title);
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
        markStale();
    }
    return userPrompt().ask(text, title, buttons, icon);
}

}  // namespace

void runManagerDialog(const ManagerSetup& setup) {
    ManagerDialog(setup).run();
}

}  // namespace zoka
