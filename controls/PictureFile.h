// Pictures as scripts name them: BMP, TGA and PCX.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace zoka {

struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint8_t> rgba;  // four bytes a pixel, rows from the top
};

// Higher or wider pictures are taken for damaged ones.
inline constexpr int kMostPicturePixels = 8192;

// The picture in a file's bytes, whose kind is found from the bytes themselves. Nothing for other files, for
// damaged ones and for very large ones. [any thread]
std::optional<Picture> decodePicture(std::string_view bytes);

}  // namespace zoka
