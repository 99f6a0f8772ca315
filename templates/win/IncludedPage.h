// A page with the list of the included scripts, a line about the selected one, and a button for what the page does;
// there may be a second one.
#pragma once

#include "templates/win/PageWindow.h"
#include "ui/win/RowList.h"

namespace zoka {

class IncludedPage : public PageWindow {
public:
    using PageWindow::PageWindow;
    void refresh() override;
    HWND firstField() const override { return m_list.window(); }
    void command(int id, int code) override;

protected:
    // Identifiers of the list, the line and the button; the list's columns, the button's text, and whether a
    // double click presses it. Number and text of the second button, if there is one, which stands left of the first.
    struct Look {
        int list, note, button;
        ListColumn columns[3];
        const char* buttonText;
        bool actsOnDoubleClick;
        int otherButton = 0;
        const char* otherText = nullptr;
    };
    virtual const Look& look() const = 0;  // outlives the page
    // What the last column shows of an included script.
    virtual std::string lastColumn(size_t index) const = 0;
    // What the line says of the selected script.
    virtual std::string note(size_t index) const = 0;
    // Whether mainAction() can do something with the selected script.
    virtual bool canDo(size_t index) const = 0;
    // The same of the second button.
    virtual bool canDoOther(size_t) const { return false; }
    virtual void otherAction(size_t) {}

    void createControls() override;
    void layout(Area page) override;
    LRESULT notified(NMHDR& header) override;
    void settled() override { showSelection(); }
    const RowList& list() const { return m_list; }

private:
    void showSelection();

    HWND m_label = nullptr, m_note = nullptr, m_button = nullptr, m_other = nullptr;
    RowList m_list;
};

}  // namespace zoka
