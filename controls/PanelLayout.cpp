#include "controls/PanelLayout.h"

#include <algorithm>
#include <climits>

namespace zoka {

void PanelLayout::stack(std::span<const PanelItem> items) {
    m_rows.clear();
    m_y.clear();
    m_heights.clear();
    long long y = m_top;
    for (size_t i = 0; i < items.size(); ++i) {
        if (!items[i].visible) {
            continue;
        }
        m_rows.push_back(i);
        m_y.push_back(static_cast<int>(y));
        m_heights.push_back(items[i].height);
        // Rows beyond what a position can count stand at its end.
        y = std::min<long long>(y + items[i].height + (items[i].gapAfter ? m_spacing : 0), INT_MAX / 2);
    }
    m_height = static_cast<int>(y);
}

PanelRect PanelLayout::rectOfRow(size_t row, int width) const {
    return {m_left, m_y[row], std::max(0, width - 2 * m_left), m_heights[row]};
}

PanelLayout::Range PanelLayout::rowsWithin(int top, int height) const {
    const auto below = [](int position, int y) { return position < y; };
    const auto first = std::upper_bound(m_y.begin(), m_y.end(), top, below);
    size_t begin = static_cast<size_t>(first - m_y.begin());
    // The row that begins above the view may reach into it.
    while (begin > 0 && m_y[begin - 1] + m_heights[begin - 1] > top) {
        --begin;
    }
    const auto last = std::lower_bound(m_y.begin(), m_y.end(), top + std::max(0, height));
    return {begin, std::max(begin, static_cast<size_t>(last - m_y.begin()))};
}

size_t PanelLayout::rowOfItem(size_t item) const {
    const auto found = std::lower_bound(m_rows.begin(), m_rows.end(), item);
    return found != m_rows.end() && *found == item ? static_cast<size_t>(found - m_rows.begin())
                                                   : m_rows.size();
}

int PanelLayout::clampScroll(int top, int height) const {
    return std::clamp(top, 0, std::max(0, m_height - height));
}

int PanelLayout::scrollToShow(size_t row, int top, int height) const {
    const int y = m_y[row], end = y + m_heights[row];
    if (y < top || m_heights[row] >= height) {
        top = y;
    } else if (end > top + height) {
        top = end - height;
    }
    return clampScroll(top, height);
}

}  // namespace zoka
