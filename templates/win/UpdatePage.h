// The page that brings scripts up to the template folder's: what differs, updating, restoring.
#pragma once

#include <string>
#include <vector>

#include "templates/win/PageWindow.h"
#include "ui/win/RowList.h"
#include "util/LineDiff.h"

namespace zoka {

class UpdatePage : public PageWindow {
public:
    using PageWindow::PageWindow;
    void refresh() override;
    void mainAction() override;
    HWND firstField() const override { return m_list; }
    void command(int id, int code) override;

protected:
    void createControls() override;
    void layout(Area page) override;
    LRESULT notified(NMHDR& header) override;
    void measure(MEASUREITEMSTRUCT& item) override;
    void draw(const DRAWITEMSTRUCT& item) override;

private:
    int chosen() const;
    void showEntries();
    void showDifference();
    void showPlan(const UpdatePlan& plan);
    void showUnplaced();
    LRESULT paintDifference(NMLVCUSTOMDRAW& draw) const;

    HWND m_label = nullptr, m_list = nullptr, m_update = nullptr, m_updateAll = nullptr;
    HWND m_changesLabel = nullptr, m_restoreLabel = nullptr, m_missing = nullptr, m_restore = nullptr;
    RowList m_changes;
    std::vector<DiffLine> m_lines;  // '@' marks a heading, '.' a remark
};

}  // namespace zoka
