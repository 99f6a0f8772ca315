// Layout of a window as rectangles: rows and columns are cut off an area one after the other, and what is left
// goes to what grows. Portable and without windows, so that a layout can be computed anywhere.
#pragma once

#include <algorithm>

namespace zoka {

// In pixels. A part cut off is never larger than what there is, so no part has a negative size and none lies
// outside the area that it was cut from.
struct Area {
    int x = 0, y = 0, width = 0, height = 0;

    // Cuts a row or column of that size off, and a gap beside it; returns it without the gap.
    constexpr Area takeTop(int size, int gap = 0) {
        const Area part{x, y, width, within(size, height)};
        const int gone = within(part.height + gap, height);
        y += gone;
        height -= gone;
        return part;
    }
    constexpr Area takeBottom(int size, int gap = 0) {
        const int taken = within(size, height);
        const Area part{x, y + height - taken, width, taken};
        height -= within(taken + gap, height);
        return part;
    }
    constexpr Area takeLeft(int size, int gap = 0) {
        const Area part{x, y, within(size, width), height};
        const int gone = within(part.width + gap, width);
        x += gone;
        width -= gone;
        return part;
    }
    constexpr Area takeRight(int size, int gap = 0) {
        const int taken = within(size, width);
        const Area part{x + width - taken, y, taken, height};
        width -= within(taken + gap, width);
        return part;
    }
    // Without a border of that width and height.
    constexpr Area inset(int across, int down) const {
        Area inside = *this;
        inside.takeLeft(across);
        inside.takeRight(across);
        inside.takeTop(down);
        inside.takeBottom(down);
        return inside;
    }
    // A part of that height in the middle of this one's.
    constexpr Area middle(int size) const {
        const int taken = within(size, height);
        return {x, y + (height - taken) / 2, width, taken};
    }
    constexpr bool operator==(const Area&) const = default;

private:
    static constexpr int within(int size, int room) { return std::clamp(size, 0, std::max(room, 0)); }
};

}  // namespace zoka
