// A window of rows: a chooser above them, search, rows and help, a row of buttons, a status line.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "controls/win/RowsView.h"
#include "ui/win/DialogShell.h"
#include "util/JobProgress.h"

namespace zoka {

struct RowsButton {
    int id;
    const char* text;    // with its '&'; of one whose text changes the first one
    int units;           // its width, in dialog units
    bool left = false;   // at the left end of the row, not at the right one
    bool check = false;  // a check box
    char key = 0;        // which in a row, with Ctrl, does the same; 0: none
};
struct ButtonState {
    bool enabled = true;
    std::string text = {};  // empty: as it is
};
// The button that shows a panel's findings, and its state while there are so many.
RowsButton findingsButton(int id);
ButtonState findingsState(size_t count);

// Derive from it, with the session as a member, and say what the buttons do:
//
//     class PropertiesDialog : public RowsDialog {
//     public:
//         PropertiesDialog() : RowsDialog({.title = "Properties", .buttons = {{kApply, "&Apply", 44}}}) {}
//     private:
//         RowEditing& rows() override { return m_session; }
//         void fillRows() override { m_session.open(...); }
//         void pressed(int id) override { if (id == kApply) m_session.apply(); }
//         PropertiesSession m_session;
//     };
//
// A Close button stands at the right end. Made and freed on the editor's thread, everything else happens on the thread
// of its window, which it outlives.
class RowsDialog : public DialogShell, protected RowsOwner {
public:
    struct Look {
        std::string title;           // its place is remembered by it, until the plug-in ends
        HINSTANCE module = nullptr;  // holds the dialog's resource and the icon
        int icon = 0;
        int firstId = 0;  // of its controls: chooser's label and chooser, those of a RowsView, status
        std::vector<RowsButton> buttons = {};  // from the left; Close is added
        const char* chooserLabel = nullptr;    // with its '&'; null: there is no chooser
        bool statusLine = false;
        UINT lookMs = 0;  // between calls of look(), once the rows are filled; 0: there are none
        JobProgress* loading =
            nullptr;  // stops the loading, and the making of rows; may be null, outlives the object
    };
    explicit RowsDialog(Look look);
    // Makes the modeless window from the dialog resource `number`, not shown yet; null on failure. On WM_CLOSE
    // it asks mayLeave() and destroys itself.
    HWND create(HINSTANCE instance, int number);
    // Fills the rows; called once, when the window is on the screen.
    void load();
    // To be called when the window is gone, and every loop that ran within it: where it went without the user's word
    // on what is not saved, keepUnsaved() is called. Never throws.
    void gone() noexcept {
        if (m_loaded && !m_settled) {
            keepUnsaved();
        }
    }

protected:
    // --- What a derived window says
    virtual RowEditing& rows() = 0;  // the session, the same each time
    virtual void fillRows() = 0;     // of load()
    // A button, after what is typed was taken; rowMenuItems' items go to rowMenuChosen.
    virtual void pressed(int id) = 0;
    virtual ButtonState stateOf(int /*id*/) const { return {}; }
    virtual std::string caption() const { return m_look.title; }
    virtual std::string status() const { return {}; }
    // False keeps the window open.
    virtual bool mayLeave() { return true; }
    // Keeps what is not saved, if anything, in a file beside its own; nobody can be asked or told.
    virtual void keepUnsaved() noexcept {}
    // The same when something was thrown and the window goes, but here the user is asked.
    virtual void offerUnsaved() noexcept {}
    virtual void chosen(size_t /*item*/) {}  // in the chooser, by the user
    // The window becomes the active one.
    virtual void activated() {}
    // The editor may hold something else than the rows show. Wherever the window is, for it's the editor that is in
    // front then.
    virtual void look() {}

    // --- What it may use
    RowsView& view() { return *m_view; }  // with a window
    bool isLoaded() const { return m_loaded; }
    HWND button(int id) const { return GetDlgItem(window(), id); }
    // The chooser's items; it's hidden while there are fewer than two. `at`: the chosen one, or no item.
    void setChoices(const std::vector<std::string>& items, size_t at);
    // Shows caption, buttons and status anew.
    void showState();
    // Does the work of a button. It can't keep the keyboard when it's disabled by that, and its neighbour must not get
    // it.
    template <class Work>
    void carryOut(int id, const Work& work) {
        const bool hadKeyboard = GetFocus() == button(id);
        work();
        if (window() && hadKeyboard && !IsWindowEnabled(button(id))) {
            view().focusLast();
        }
    }
    // Does what a button does, as by a click.
    void press(int id) { PostMessageA(window(), WM_COMMAND, static_cast<WPARAM>(id), 0); }
    // No commands are taken while it lives: a question is open.
    class Busy {
    public:
        explicit Busy(RowsDialog& dialog) : m_dialog(dialog), m_before(dialog.m_busy) {
            dialog.m_busy = true;
        }
        ~Busy() { m_dialog.m_busy = m_before; }
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;

    private:
        RowsDialog& m_dialog;
        bool m_before;
    };

    void rowsChanged() override { showState(); }
    bool takesNoCommands() const override { return m_busy; }
    bool rowShortcut(WPARAM key) override;
    void failed() override;
    bool leaving() const override { return !mayContinue(m_look.loading, 0, 1, {}); }

private:
    static void CALLBACK lookNow(HWND window, UINT message, UINT_PTR self, DWORD time);
    void createControls() override;
    void layout(Area inside) override;
    HWND firstField() override { return button(IDCANCEL); }
    void placeFirst(SIZE size) override;
    void shown() override { load(); }
    bool mayClose() override;
    void entered() override;
    bool givenUp() override;
    void command(int id, int code) override;
    void fontsChanged() override { m_view->fontsChanged(); }
    std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) override;
    int chooserLabelId() const { return m_look.firstId; }
    int chooserId() const { return m_look.firstId + 1; }
    int viewId() const { return m_look.firstId + 2; }
    int statusId() const { return viewId() + RowsView::kControls; }

    Look m_look;
    ControlClasses m_classes;
    std::optional<RowsView> m_view;  // from the window's making on
    size_t m_choices = 0;
    bool m_loaded = false, m_busy = false, m_filling = false;
    bool m_settled = false;  // the user has said what becomes of what is not saved
};

}  // namespace zoka
