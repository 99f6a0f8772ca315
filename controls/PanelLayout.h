// Where the rows of a panel stand, and which of them are in sight.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace zoka {

// In pixels, y from the top of the whole panel's content.
struct PanelRect {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const PanelRect&) const = default;
};

struct PanelItem {
    int height = 0;
    bool gapAfter = true;  // texts have none
    bool visible = true;   // hidden ones (folded, filtered out) take no room
};

// [panel thread]
class PanelLayout {
public:
    // `top` and `left` are margins, `spacing` the gap between rows.
    PanelLayout(int top, int left, int spacing) : m_top(top), m_left(left), m_spacing(spacing) {}

    // Stacks the items from the top, in their order. Linear.
    void stack(std::span<const PanelItem> items);

    int contentHeight() const { return m_height; }
    // The visible items in their order, as indexes into what was stacked.
    const std::vector<size_t>& rows() const { return m_rows; }
    // Of the row `row` of rows(), in a panel `width` wide.
    PanelRect rectOfRow(size_t row, int width) const;

    // The rows [first, last) that a view of `height` from `top` on shows any part of. Only these need
    // windows.
    struct Range {
        size_t first = 0, last = 0;
    };
    Range rowsWithin(int top, int height) const;
    // The row of an item, or rows().size() when it's hidden.
    size_t rowOfItem(size_t item) const;

    // The scroll position, as near to `top` as may be, at which the row is wholly in a view of `height` (its
    // upper end, where it is higher than the view), and the content doesn't end above the view's end.
    int scrollToShow(size_t row, int top, int height) const;
    int clampScroll(int top, int height) const;

private:
    int m_top, m_left, m_spacing;
    int m_height = 0;
    std::vector<size_t> m_rows;
    std::vector<int> m_y;        // of each row
    std::vector<int> m_heights;  // of each row
};

}  // namespace zoka
