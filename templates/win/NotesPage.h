// The page with the report on the template set and the project's scripts.
#pragma once

#include "templates/win/PageWindow.h"

namespace zoka {

class NotesPage : public PageWindow {
public:
    using PageWindow::PageWindow;
    void refresh() override;
    void mainAction() override;
    HWND firstField() const override { return m_notes; }
    void command(int id, int code) override;

protected:
    void createControls() override;
    void layout(Area page) override;

private:
    HWND m_label = nullptr, m_notes = nullptr, m_copy = nullptr;
};

}  // namespace zoka
