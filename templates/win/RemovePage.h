// The page that takes included scripts out of the main script.
#pragma once

#include "templates/win/PageWindow.h"
#include "templates/win/RowList.h"

namespace zoka {

class RemovePage : public PageWindow {
public:
    using PageWindow::PageWindow;
    void refresh() override;
    void mainAction() override;
    HWND firstField() const override { return m_list.window(); }
    void command(int id, int code) override;

protected:
    void createControls() override;
    void layout(int width, int height) override;
    LRESULT notified(NMHDR& header) override;
    void settled() override { showSelection(); }

private:
    void showSelection();

    HWND m_label = nullptr, m_note = nullptr, m_remove = nullptr;
    RowList m_list;
};

}  // namespace zoka
