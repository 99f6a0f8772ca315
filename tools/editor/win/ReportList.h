// A list of the editor's window with columns, the last of which takes what is left of the width.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace zoka {

class ReportList {
public:
    struct Column {
        const char* title;
        int width;  // pixels
    };
    // A child window of `parent`, which destroys it. `style` is added to a list's usual one. [editor thread]
    void create(HWND parent, int id, DWORD style, HFONT font, const std::vector<Column>& columns);
    HWND window() const { return m_window; }
    // In the parent's pixels.
    void place(int x, int y, int width, int height) const;

private:
    HWND m_window = nullptr;
    int m_columns = 0;
};

}  // namespace zoka
