// The window around a panel's rows, as the rows need it.
#pragma once

#include <windows.h>

#include <cstddef>

namespace zoka {

// Rows are counted from 0. [panel thread]
class RowHost {
public:
    virtual ~RowHost() = default;

    virtual void rowFocused(size_t row) = 0;  // its field got the keyboard
    // `field` has the keyboard or the mouse; `at` is on the screen.
    virtual void rowMenu(size_t row, HWND field, POINT at) = 0;
    // The rows show a row that was filtered out: the filter is empty now.
    virtual void filterDropped() = 0;
    // A key pressed with Ctrl in a field; true when it was one of the panel's own.
    virtual bool shortcut(WPARAM key) = 0;
    // The window is to go at once: no more controls may be made, for their making can wait for the loader's lock,
    // which whoever unmaps the library holds.
    virtual bool leaving() const { return false; }
};

}  // namespace zoka
