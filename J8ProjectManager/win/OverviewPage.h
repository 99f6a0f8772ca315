// The page with the project's own values: name, folders, the files of its sections.
#pragma once

#include <string>

#include "J8ProjectManager/win/ProjectPage.h"
#include "controls/win/RowsView.h"

namespace zoka {

class OverviewPage : public ProjectPage, private RowsOwner {
public:
    explicit OverviewPage(ProjectFrame& frame);

    void refresh() override;
    void mainAction() override { m_view.enter(); }
    HWND firstField() const override { return m_search; }
    void command(int id, int code) override { m_view.command(id, code); }
    bool commit() override { return m_view.commit(); }
    bool revertDraft() override { return m_view.revertDraft(); }
    bool givenUp() override { return m_view.escape(); }

protected:
    RowsView* rows() override { return &m_view; }
    void createControls() override;
    void layout(Area page) override;
    std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void rowsChanged() override;
    void showFacts();

    ProjectPanel m_panel;
    RowsView m_view;
    HWND m_facts = nullptr, m_search = nullptr;
    bool m_refreshing = false;
};

}  // namespace zoka
