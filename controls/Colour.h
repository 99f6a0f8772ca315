// Colours as files write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zoka {

struct Colour {
    std::uint8_t red = 0, green = 0, blue = 0;
    // The fourth part as it stands in the text, for what is see-through; empty: none.
    std::string alpha = {};

    bool operator==(const Colour&) const = default;
};

// "#rrggbb" or "#rrggbbaa", or three or four numbers parted by blanks or commas. The first three are whole ones from
// 0 to 255 or, where one of them has a point, parts of 1. Nothing for other texts.
std::optional<Colour> colourOf(std::string_view text);

// The colour in the form that `like` has, with its separators; as "#rrggbb" where that is no colour. Its own alpha, or
// else that of `like`, is kept.
std::string colourText(const Colour& colour, std::string_view like);

}  // namespace zoka
