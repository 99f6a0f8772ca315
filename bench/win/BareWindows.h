// The windows of a panel, to be made again without anything behind them.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "controls/PanelLayout.h"

namespace zoka::bench {

// Does and paints everything that is waiting.
void settle(HWND window);

// Of the system's classes, in the same places, with the same texts and fonts as those of a panel.
class BareWindows {
public:
    explicit BareWindows(HWND panel) { add(panel, -1); }
    ~BareWindows();
    BareWindows(const BareWindows&) = delete;
    BareWindows& operator=(const BareWindows&) = delete;

    size_t count() const { return m_plan.size(); }
    // As many rows as that, each like one that is there, below one another.
    void growTo(size_t rows);
    // Makes, shows and paints them, in place of those of the last time.
    void open();

private:
    struct Plan {
        std::string className, text;
        DWORD style, exStyle;
        PanelRect area;
        int parent;
        HFONT font;
        bool isRow;
    };

    void add(HWND window, int parent);

    std::vector<Plan> m_plan;
    std::vector<HWND> m_made;
};

}  // namespace zoka::bench
