// Rows of a list that the user puts in another order: with the mouse, or with Alt and the arrow keys.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>

namespace zoka {

// Of a list in report view, for as long as its window lives; it is there as long as that. [thread of the window]
class RowMoving {
public:
    // `before`: in front of which row it is to stand; the number of rows: behind the last one.
    using MayMove = std::function<bool(int row, int before)>;
    using Move = std::function<void(int row, int before)>;

    RowMoving() = default;
    RowMoving(const RowMoving&) = delete;
    RowMoving& operator=(const RowMoving&) = delete;

    // `mayMove` is asked while a row is dragged and where it is dropped; `move` is called if it says yes then.
    void attach(HWND list, MayMove mayMove, Move move);
    // The user begins to drag the row.
    void begin(int row);
    bool isDragging() const { return m_row >= 0; }
    // Nothing is moved: the rows are other ones now.
    void cancel() { end(false); }
    // The line where the row would go, at that item: on CDDS_ITEMPOSTPAINT.
    void paintMark(const NMLVCUSTOMDRAW& draw) const;

private:
    static LRESULT CALLBACK listProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR self);
    bool takes(UINT message, WPARAM wParam, LPARAM lParam);
    void follow(int y);
    void scroll();
    void mark(int before);
    void end(bool drops);
    void step(int by);
    int count() const;
    int rowHeight() const;

    HWND m_list = nullptr;
    MayMove m_mayMove;
    Move m_move;
    int m_row = -1;     // the one being dragged; -1: none
    int m_before = -1;  // where it would go; -1: nowhere
    int m_y = 0;        // of the mouse, in the list
};

}  // namespace zoka
