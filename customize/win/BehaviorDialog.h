// The window of "Entity Behavior".
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "controls/win/RowsDialog.h"
#include "customize/BehaviorSession.h"

namespace zoka {

// The project whose components the panel form shows.
struct BehaviorProject {
    std::string file;
    std::string entity;  // that the panel was opened for
    OpenProject open;
};

// Shows a session and hands it the user's actions. Threads and lifetime as RowsDialog.
class BehaviorDialog : public RowsDialog {
public:
    struct Setup {
        EntityAccess* entities;  // outlives the object; null where the host has none
        ZunEditorInterface& editor;
        HINSTANCE module;  // holds the dialog's resource and the icon
        int icon;
        std::optional<BehaviorProject> project = {};  // nothing: the plain form
        JobProgress* loading = nullptr;               // as of RowsDialog
    };
    explicit BehaviorDialog(const Setup& setup);

private:
    RowEditing& rows() override { return m_session; }
    void fillRows() override;
    void pressed(int id) override;
    ButtonState stateOf(int id) const override;
    std::string caption() const override;
    std::string status() const override { return isLoaded() ? m_session.status() : ""; }
    void activated() override { m_session.refresh(true); }
    bool mayLeave() override { return m_session.close(); }
    void keepUnsaved() noexcept override { m_session.keepUnsaved(); }
    void offerUnsaved() noexcept override;
    void look() override { m_session.refresh(false); }
    std::vector<RowMenuItem> rowMenuItems(size_t row) override;
    void rowMenuChosen(size_t row, int id) override;
    bool rowShortcut(WPARAM key) override;

    void copy(size_t first, size_t last);
    void paste();

    BehaviorSession m_session;
};

}  // namespace zoka
