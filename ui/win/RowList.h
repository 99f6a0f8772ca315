// A list of rows and columns that holds no texts itself: the system asks for what is in sight, so 100,000
// rows cost what ten do.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <span>
#include <string>
#include <utility>

#include "ui/win/RowMoving.h"
#include "ui/win/WindowKit.h"

namespace zoka {

struct ListColumn {
    const char* title;
    int units;            // the least width, in dialog units
    bool grows = false;   // takes a share of the room that is left
    bool isPath = false;  // one that is too long loses its middle and keeps the file's name
};

// Draws the titles of a list whose columns are all there.
void drawTitles(HWND list);

class RowList {
public:
    using CellText = std::function<std::string(int row, int column)>;

    // The control is its parent's, which passes its notifications on. `columns` and `fonts` outlive the list. A single
    // column without a title: no header, and the list scrolls sideways.
    void create(HWND parent, int id, const WindowFonts& fonts, HFONT font,
                std::span<const ListColumn> columns, CellText text);
    HWND window() const { return m_window; }
    void place(const Area& area);

    // The rows are other ones now; none is selected, and none dragged any more.
    void setCount(int rows);
    int count() const;
    // -1: none.
    int selected() const;
    // Selects one row alone and brings it into sight; -1: none.
    void select(int row);
    void redraw() const { InvalidateRect(m_window, nullptr, FALSE); }
    // Which rows have their texts in the colour of what is wrong; none at first.
    void setWrong(std::function<bool(int row)> isWrong) { m_isWrong = std::move(isWrong); }
    // What the texts of the only column take, in pixels, for a list that scrolls sideways.
    void setTextWidth(int width);

    // Lets the user put rows in another order; see RowMoving.
    void letMove(RowMoving::MayMove mayMove, RowMoving::Move move) {
        m_moving.attach(m_window, std::move(mayMove), std::move(move));
    }

    // The arrows and the page keys pressed in the field move the selection, so the list is at hand while somebody types
    // what to look for. The list outlives the field.
    void takeKeysOf(HWND field);

    // Answers the control's notifications, and paints the selected row so that it is seen while the keyboard is
    // elsewhere.
    LRESULT notified(NMHDR& header);
    // Whether the notification may mean that the user has selected another row.
    bool userMayHaveSelected(const NMHDR& header) const;

private:
    static LRESULT CALLBACK keysProc(HWND field, UINT message, WPARAM wParam, LPARAM lParam,
                                     DWORD_PTR self) noexcept;
    LRESULT paint(NMLVCUSTOMDRAW& draw) const;
    int find(int start, UINT flags, const std::wstring& typed) const;
    void fitColumns() const;
    void fitPath(std::wstring& path, int column) const;

    HWND m_window = nullptr;
    CellText m_text;
    std::function<bool(int)> m_isWrong;
    std::span<const ListColumn> m_columns;
    const WindowFonts* m_fonts = nullptr;
    int m_textWidth = 0;
    RowMoving m_moving;
    bool m_settling = false;  // the selection is changed by the program
};

}  // namespace zoka
