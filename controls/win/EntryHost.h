// Whose rows a panel of entries shows.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

#include "controls/EntryModel.h"

namespace zoka {

// Rows are counted from 0. [panel thread]
class EntryHost {
public:
    virtual ~EntryHost() = default;

    virtual size_t rowCount() const = 0;
    virtual const EntryModel& rowModel(size_t row) const = 0;
    virtual std::vector<bool> rowsShown() const = 0;
    // As CustomizeSession::setValue: false with the reason in `why` when the text is refused.
    virtual bool editRow(size_t row, const std::string& text, std::string* why, bool typing) = 0;
    virtual void rowLeft(size_t row) = 0;     // the field has lost the keyboard
    virtual void rowFocused(size_t row) = 0;  // and got it
    virtual std::string rowTooltip(size_t row) = 0;
    // `field` has the keyboard or the mouse; `at` is on the screen.
    virtual void rowMenu(size_t row, HWND field, POINT at) = 0;
    virtual bool isFolded(size_t heading) const = 0;
    virtual void fold(size_t heading, bool folded) = 0;
    // A key pressed with Ctrl in a field; true when it was one of the panel's own.
    virtual bool shortcut(WPARAM key) = 0;
    // Full path of a picture that a row names.
    virtual std::string picturePath(const std::string& name) const = 0;
    virtual std::string emptyText() const = 0;  // shown when there is no row
};

}  // namespace zoka
