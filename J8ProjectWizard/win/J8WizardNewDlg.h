// The new-project dialog.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "J8ProjectWizard/NewProjectSession.h"
#include "J8ProjectWizard/win/BackgroundLooks.h"
#include "ui/win/DialogShell.h"
#include "ui/win/RowList.h"

// Shows a NewProjectSession. [editor thread]
class CJ8WizardNewDlg : public zoka::DialogShell {
public:
    // Looks for the wizards. `module` holds the window's icon.
    CJ8WizardNewDlg(HINSTANCE module, int icon);

    // Runs the dialog over the thread's active window; nothing when the user cancelled.
    std::optional<zoka::NewProject> run();

private:
    struct Field {
        zoka::NewProjectField which;
        HWND label = nullptr, edit = nullptr, browse = nullptr;
    };

    void createControls() override;
    void layout(zoka::Area inside) override;
    HWND firstField() override { return m_wizards.window(); }
    void entered() override;
    void command(int id, int code) override;
    LRESULT notified(NMHDR& header) override;
    std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) override;

    zoka::Area layoutField(Field& field, zoka::Area& column, int labels);
    void selectWizard(int wizard);
    // Shows the wizard that was chosen, once it is read; waits that long for it.
    void takeWizard(DWORD milliseconds);
    bool waitForWizard();
    void showFields();
    void showPlan();
    void showState();
    // Has looked at what is to be looked at, and shows what came of it.
    void lookAtDisk();
    void takeLooks();
    void ok();
    std::string planCell(int row, int column) const;

    zoka::NewProjectSession m_session;
    zoka::BackgroundLooks m_looks;
    std::optional<zoka::NewProject> m_made;
    zoka::RowList m_wizards, m_plan;
    Field m_fields[zoka::kProjectFields];
    HWND m_wizardsLabel = nullptr, m_descriptionLabel = nullptr, m_description = nullptr;
    HWND m_planLabel = nullptr, m_state = nullptr, m_ok = nullptr, m_cancel = nullptr;
    bool m_working = false;  // creation shows messages meanwhile
};
