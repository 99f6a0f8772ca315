// The rows of a panel below one another, with a scroll bar.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controls/MeantRow.h"
#include "controls/PanelLayout.h"
#include "controls/RowEditing.h"
#include "controls/win/EntryWindow.h"
#include "controls/win/PanelTips.h"
#include "controls/win/RowHost.h"
#include "controls/win/RowMeasure.h"
#include "ui/win/WindowKit.h"

namespace zoka {

// Rows have windows while they are in sight, so that tens of thousands of rows open at once. The row with the
// keyboard and the next ones to reach by Tab have windows too, wherever they are. Rows, host and the object
// outlive the window. [panel thread]
class EntryPanel {
public:
    EntryPanel(RowEditing& rows, RowHost& host);
    EntryPanel(const EntryPanel&) = delete;
    EntryPanel& operator=(const EntryPanel&) = delete;

    // A child of `parent`, without a size yet; null on failure. `fonts` outlive it.
    HWND create(HWND parent, int id, const WindowFonts& fonts);

    // All rows are others than before. Where one of them has the name of the row that had the keyboard last, it gets
    // it, and stands where that stood; where none has, both begin anew. Rows without names keep both with `samePlaces`.
    // A refused text is given up.
    void rowsReplaced(bool samePlaces);
    // The fonts are other ones now: every row is made anew.
    void fontsChanged();
    // Values have changed, of whichever rows.
    void showValues();
    // Which rows are shown has changed.
    void layoutSoon();
    void layoutNow() { layout(); }

    // Takes what is typed. False when a text is refused: its field has the keyboard then, with the reason at it.
    bool commit();
    // Gives up what is typed in the field with the keyboard, or the refusal that is shown; false when there is
    // nothing to give up.
    bool revert();
    // Gives up the refused text in that field, but nothing that is only being typed.
    bool revertDraft();
    // Scrolls the row into view and gives it the keyboard; the first one with a field.
    void focusRow(size_t row);
    void focusFirst();
    // The row that had the keyboard last, or the first one.
    void focusLast();
    // The row whose field has the keyboard.
    std::optional<size_t> focusedRow();
    // Where the row with the keyboard takes nothing any more, another one gets it, and what was typed is dropped. False
    // when there is none: the keyboard is for another control of the window then.
    bool leaveBlockedRow();

    // --- For the rows' windows.
    HWND window() const { return m_window; }
    RowEditing& rows() { return m_editing; }
    RowHost& host() { return m_host; }
    void fold(size_t heading, bool folded);
    const WindowFonts& fonts() const { return *m_fonts; }
    RowMeasure& measure() { return m_measure; }
    PanelTips& tips() { return m_tips; }
    // In a panel that goes at once nothing is shown any more.
    void showRefusal(HWND field, const std::string& text);
    // Has the keyboard (or had it last), the mouse or a menu.
    bool isUsed(const EntryWindow& row) const;
    void fieldFocused(size_t row);
    // A text that was refused stays in its field until it's mended or given up.
    struct Draft {
        std::string text, why;  // the text in UTF-8
        std::string value;      // of the row, when it was typed; with another one the text is forgotten
    };
    const Draft* draftOf(size_t row);
    void keepDraft(size_t row, std::string text, std::string why);
    bool dropDraft(size_t row);
    // Both open a window with a loop of its own, so they are left for later.
    void browseSoon(size_t row);
    void menuSoon(size_t row, HWND field, LPARAM at);

    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    static constexpr UINT kLayoutRows = WM_APP + 1, kOpenAsked = WM_APP + 2, kFocused = WM_APP + 3;
    // What is to be opened for a row.
    struct Asked {
        MeantRow row;
        bool isMenu;  // else what the row's button opens
        LPARAM at;    // of the menu, as WM_CONTEXTMENU has it
    };

    LRESULT message(UINT message, WPARAM wParam, LPARAM lParam);
    void layout();
    int topOf(size_t place) const;
    std::optional<int> placeInSight(size_t row) const;
    int rowsWidth() const;
    void placeRows();
    void scrollTo(int top);
    void bringIntoSight(size_t row);
    void scroll(WORD code);
    void wheel(int delta);
    void ask(size_t row, bool isMenu, LPARAM at);
    void openAsked();
    void openMenu(size_t row, LPARAM at);
    void browse(const MeantRow& meant);
    std::optional<std::string> chooseColour(const std::string& before);
    void paintEmpty();
    void tooltipText(NMTTDISPINFOW& info);
    EntryWindow* windowOf(HWND control);
    EntryWindow* focused();
    std::optional<size_t> keyboardRow();
    std::optional<size_t> rowLikeLast() const;
    size_t nextField(size_t row, int step) const;
    bool takesKeyboard(size_t row) const;

    RowEditing& m_editing;
    RowHost& m_host;
    HWND m_window = nullptr;
    const WindowFonts* m_fonts = nullptr;
    PanelLayout m_layout;
    RowMeasure m_measure;
    PanelTips m_tips;
    std::map<size_t, std::unique_ptr<EntryWindow>> m_live;  // by row; they use both of these
    int m_top = 0;                                          // of the view in the content
    int m_height = 0;                                       // of the view
    std::string m_search;                                   // that the rows in it were found by
    bool m_changedOnly = false;                             // so that only these are in it
    int m_wheel = 0;                                        // what is left of turns smaller than a notch
    std::wstring m_tip;                                     // what the tooltip shows
    std::map<size_t, Draft> m_drafts;                       // by row
    std::optional<size_t> m_lastFocused;
    std::string m_lastName;  // of that row, as RowEditing says
    std::optional<Asked> m_asked;
    HWND m_menuField = nullptr;
    bool m_filled = false;  // rows have been handed over
    bool m_laidOutSoon = false, m_placing = false;
};

}  // namespace zoka
