// A panel's rows with their search field and help box: a part of any window.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "controls/PanelLayout.h"
#include "controls/RowEditing.h"
#include "controls/win/ControlClasses.h"
#include "controls/win/EntryPanel.h"
#include "controls/win/RowHost.h"

namespace zoka {

struct RowMenuItem {
    int id = 0;  // kFirstRowItem or more; 0: a line between items
    std::string text = {};
    bool enabled = true;
};
inline constexpr int kFirstRowItem = 100;

// The window that the rows are a part of. [panel thread]
class RowsOwner {
public:
    virtual ~RowsOwner() = default;
    // Values, or all rows, are others now: titles, buttons and the like are to be shown anew.
    virtual void rowsChanged() {}
    // While a question of the window is open, its rows have no menu.
    virtual bool takesNoCommands() const { return false; }
    // The window is to go at once: see RowHost.
    virtual bool leaving() const { return false; }
    // Further items of a row's menu, behind those that all panels have, and what they do.
    virtual std::vector<RowMenuItem> rowMenuItems(size_t) { return {}; }
    virtual void rowMenuChosen(size_t /*row*/, int /*id*/) {}
    // A key pressed with Ctrl that isn't the rows' own; true when it's one of the window's.
    virtual bool rowShortcut(WPARAM) { return false; }
};

// Undo, redo, search and reset, by keys and by each row's menu. The owner hands over WM_COMMAND, Enter, Esc and the
// wheel. Rows and owner outlive the window, and a ControlClasses lives meanwhile. [panel thread]
class RowsView : public RowsListener, private RowHost {
public:
    RowsView(RowEditing& rows, RowsOwner& owner) : m_rows(rows), m_owner(owner), m_panel(rows, *this) {}

    // How many controls it numbers.
    static constexpr int kControls = 5;
    // Makes the controls, without sizes, in the order of Tab, numbered from `firstId` on. It becomes the rows'
    // listener. `fonts` outlive the window. Rows that are only to be looked at need no "Changed only".
    void create(HWND parent, const WindowFonts& fonts, int firstId, bool canChange = true);
    // `area` in pixels of the parent.
    void place(const PanelRect& area);
    // In dialog units.
    static constexpr int kLeastWidth = 200, kLeastHeight = 120;

    // A control of the window did something; true when it was one of these.
    bool command(int id, int code);
    // Lets keys with Ctrl work from another control of the window, and the wheel scroll the rows there.
    void join(HWND control);
    void wheel(WPARAM wParam, LPARAM lParam) {
        PostMessageA(m_panel.window(), WM_MOUSEWHEEL, wParam, lParam);
    }
    // Enter: takes what is typed; in the search field it goes to the first row found.
    void enter();
    // Esc: gives up what is typed, then the search; false when there was nothing to give up.
    bool escape();
    // Takes what is typed. False when a text is refused: its field has the keyboard then, with the reason.
    bool commit() { return m_panel.commit(); }
    // Gives up a refused text in the field with the keyboard; false when there is none.
    bool revertDraft() { return m_panel.revertDraft(); }
    void undoOrRedo(bool undo);
    void focusFirst() { m_panel.focusFirst(); }
    void focusLast() { m_panel.focusLast(); }
    void focusRow(size_t row);
    // The row whose field has the keyboard.
    std::optional<size_t> focusedRow() { return m_panel.focusedRow(); }
    void focusSearch();
    // Gives the keyboard to a row or else to the search field, where nothing of the window has it.
    void findFocus();
    // The fonts are other ones now; place() follows.
    void fontsChanged() { m_panel.fontsChanged(); }
    // Takes the rows' windows away, where the rows go before the window does.
    void removeRows() { DestroyWindow(m_panel.window()); }
    // The parent is being destroyed.
    void closed() { m_parent = m_help = m_search = nullptr; }

    void rowsReplaced() override;
    void valuesChanged() override;

private:
    static LRESULT CALLBACK controlProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                        DWORD_PTR self);
    void rowFocused(size_t row) override;
    void rowMenu(size_t row, HWND field, POINT at) override;
    void filterDropped() override;
    bool shortcut(WPARAM key) override;
    bool leaving() const override { return m_owner.leaving(); }
    std::vector<RowMenuItem> menuItems(size_t row, HWND field);
    void menuChosen(size_t row, HWND field, int id);
    void filterChanged();
    void showCount();
    HWND item(int which) const { return GetDlgItem(m_parent, m_firstId + which); }

    RowEditing& m_rows;
    RowsOwner& m_owner;
    EntryPanel m_panel;
    const WindowFonts* m_fonts = nullptr;
    HWND m_parent = nullptr, m_search = nullptr, m_help = nullptr;
    int m_firstId = 0;
    std::string m_subject;  // of the rows shown, and how many they are
    size_t m_shownRows = 0;
    std::optional<size_t> m_helpRow;  // whose help is shown
};

}  // namespace zoka
