// The window of "KEZ Customize".
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "controls/win/RowsDialog.h"
#include "customize/CustomizeSession.h"

namespace zoka {

// Shows a session and hands it the user's actions. Threads and lifetime as RowsDialog.
class CustomizeDialog : public RowsDialog, private CustomizeView {
public:
    struct Setup {
        ZunEditorInterface& editor;  // outlives the object
        std::string scriptPath;      // empty: the level's main script
        // Full paths of the scripts to switch between; asked on the window's thread. May be empty.
        std::function<std::vector<std::string>()> choices;
        HINSTANCE module;  // holds the dialog's resource and the icon
        int icon;
        JobProgress* loading = nullptr;  // can stop the opening of scripts; may be null, outlives the object
    };
    explicit CustomizeDialog(Setup setup);

private:
    void offerUnsaved() noexcept override { m_session.offerUnsaved(); }
    void bringToFront() override;
    void raiseOnce() override;

    RowEditing& rows() override { return m_session; }
    void fillRows() override;
    void pressed(int id) override;
    ButtonState stateOf(int id) const override;
    std::string caption() const override;
    bool mayLeave() override { return m_session.close(); }
    void keepUnsaved() noexcept override { m_session.keepUnsaved(); }
    void chosen(size_t item) override;
    void activated() override;
    void rowsChanged() override;
    std::vector<RowMenuItem> rowMenuItems(size_t row) override;
    void rowMenuChosen(size_t row, int id) override;

    void look() override;
    void save();
    void listScripts();
    void showScripts();
    void showUnplaced();

    Setup m_setup;
    CustomizeSession m_session;
    std::vector<std::string> m_choices;  // what the script list shows, by item
    std::string m_shownPath;             // which of them it shows as the open one
};

}  // namespace zoka
