// The window of "KEZ Customize".
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "controls/win/ControlClasses.h"
#include "controls/win/EntryHost.h"
#include "controls/win/EntryPanel.h"
#include "customize/CustomizeSession.h"
#include "ui/win/WindowKit.h"

namespace zoka {

// Shows a session and hands it the user's actions. Made and freed on the editor's thread, everything else on
// the thread of its window; it outlives the window.
class CustomizeDialog : public CustomizeView, private EntryHost {
public:
    struct Setup {
        ZunEditorInterface& editor;  // outlives the object
        std::string scriptPath;      // empty: the level's main script
        // Full paths of the scripts to switch between; asked on the window's thread. May be empty.
        std::function<std::vector<std::string>()> choices;
        HINSTANCE module;  // holds the dialog's resource and the icon
        int icon;
    };
    explicit CustomizeDialog(Setup setup);
    ~CustomizeDialog() override;

    // Makes the modeless window from the dialog resource `number`, not shown yet; null on failure. On WM_CLOSE
    // it asks about changes and destroys itself.
    HWND create(HINSTANCE instance, int number);
    // Makes the window over `owner`, which takes no input meanwhile, and returns when it is gone.
    void runModal(HINSTANCE instance, int number, HWND owner);
    // Reads the script; once the window is on the screen.
    void load();

    void bringToFront() override;
    void raiseOnce() override;
    void rowsReplaced() override;
    void valuesChanged() override;

private:
    static INT_PTR CALLBACK dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK controlProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                        DWORD_PTR self);
    void initialise(HWND window);
    void makeControls();
    HWND add(HWND control);
    void layout();
    bool showsChoices() const;
    SIZE leastSize() const;
    INT_PTR message(UINT message, WPARAM wParam, LPARAM lParam);
    void command(int id, int code);
    void closeWindow();
    void save();
    void update();
    void undoOrRedo(bool undo);
    void filterChanged();
    void chooseScript();
    void fillScriptChoices();
    void showState();
    void showChanges();
    void showFindings();
    void showUnplaced();

    // --- The rows
    size_t rowCount() const override { return m_session.size(); }
    const EntryModel& rowModel(size_t row) const override { return m_session.row(row); }
    std::vector<bool> rowsShown() const override { return m_session.visibleRows(); }
    bool editRow(size_t row, const std::string& text, std::string* why, bool typing) override {
        return m_session.setValue(row, text, why, typing);
    }
    void rowLeft(size_t) override { m_session.leaveField(); }
    void rowFocused(size_t row) override;
    std::string rowTooltip(size_t row) override { return m_session.tooltip(row); }
    void rowMenu(size_t row, HWND field, POINT at) override;
    bool isFolded(size_t heading) const override { return m_session.filter.isFolded(heading); }
    void fold(size_t heading, bool folded) override;
    bool shortcut(WPARAM key) override;
    std::string picturePath(const std::string& name) const override;
    std::string emptyText() const override;

    Setup m_setup;
    ControlClasses m_classes;
    CustomizeSession m_session;
    EntryPanel m_panel;
    std::unique_ptr<WindowFonts> m_fonts;
    HWND m_window = nullptr;
    HWND m_help = nullptr;
    std::string m_shownPath;  // of the rows in the panel, and how many they are
    size_t m_shownRows = 0;
    std::vector<std::string> m_choices;  // what the script list shows, by item
    bool m_loaded = false, m_busy = false, m_filling = false;
};

}  // namespace zoka
