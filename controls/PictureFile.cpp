#include "controls/PictureFile.h"

#include <algorithm>
#include <climits>
#include <cstddef>

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_BMP
#define STBI_ONLY_TGA
#define STBI_NO_STDIO
#define STBI_NO_HDR
#define STBI_NO_LINEAR
#define STBI_NO_THREAD_LOCALS  // a panel's thread may end without the runtime's help
#define STBI_MAX_DIMENSIONS 8192
#include <stb/stb_image.h>

namespace zoka {
namespace {

static_assert(kMostPicturePixels == STBI_MAX_DIMENSIONS);

constexpr size_t kPcxHeader = 128;
constexpr size_t kPcxPalette = 769;  // 0x0C and 256 colours, at the file's end
constexpr size_t kMostPixels = 16'000'000;

size_t byteAt(std::string_view bytes, size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}
int wordAt(std::string_view bytes, size_t at) {
    return static_cast<int>(byteAt(bytes, at) | byteAt(bytes, at + 1) << 8);
}

// Run lengths: two high bits set and a count, then the byte to be repeated. Runs may go over a line's end.
bool unpackPcx(std::string_view packed, std::vector<std::uint8_t>& out) {
    size_t at = 0, made = 0;
    while (made < out.size()) {
        if (at >= packed.size()) {
            return false;
        }
        size_t value = byteAt(packed, at++), count = 1;
        if (value >= 0xC0) {
            if (at >= packed.size()) {
                return false;
            }
            count = std::min(value & 0x3F, out.size() - made);
            value = byteAt(packed, at++);
        }
        std::fill_n(out.begin() + static_cast<std::ptrdiff_t>(made), count, static_cast<std::uint8_t>(value));
        made += count;
    }
    return true;
}

std::optional<Picture> decodePcx(std::string_view bytes) {
    if (bytes.size() < kPcxHeader || bytes[2] != 1) {
        return std::nullopt;
    }
    const size_t bits = byteAt(bytes, 3), planes = byteAt(bytes, 65);
    const size_t lineBytes = static_cast<size_t>(wordAt(bytes, 66));
    const int width = wordAt(bytes, 8) - wordAt(bytes, 4) + 1;
    const int height = wordAt(bytes, 10) - wordAt(bytes, 6) + 1;
    const bool trueColour = bits == 8 && planes == 3;
    const bool indexed = (bits == 8 && planes == 1) ||
                         ((bits == 1 || bits == 2 || bits == 4) && planes >= 1 && bits * planes <= 4);
    if ((!trueColour && !indexed) || width < 1 || height < 1 || width > kMostPicturePixels ||
        height > kMostPicturePixels || lineBytes * 8 < static_cast<size_t>(width) * bits ||
        static_cast<size_t>(width) * static_cast<size_t>(height) > kMostPixels) {
        return std::nullopt;
    }
    const bool manyColours = bits == 8 && planes == 1;
    if (manyColours && bytes.size() < kPcxHeader + kPcxPalette) {
        return std::nullopt;
    }
    const std::string_view palette =
        manyColours ? bytes.substr(bytes.size() - kPcxPalette + 1) : bytes.substr(16, 48);
    if (manyColours && bytes[bytes.size() - kPcxPalette] != 0x0C) {
        return std::nullopt;
    }

    // A byte of the file makes at most 63: checked before room is made for what can't be there.
    const size_t unpacked = lineBytes * planes * static_cast<size_t>(height);
    if (unpacked > bytes.size() * 63) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> lines(unpacked);
    if (!unpackPcx(bytes.substr(kPcxHeader), lines)) {
        return std::nullopt;
    }

    Picture made{width, height, {}};
    made.rgba.reserve(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    for (size_t y = 0; y < static_cast<size_t>(height); ++y) {
        const std::uint8_t* const line = lines.data() + y * lineBytes * planes;
        for (size_t x = 0; x < static_cast<size_t>(width); ++x) {
            if (trueColour) {
                for (size_t p = 0; p < 3; ++p) {
                    made.rgba.push_back(line[p * lineBytes + x]);
                }
            } else {
                size_t index = 0;
                const size_t perByte = 8 / bits, shift = 8 - bits * (x % perByte + 1);
                for (size_t p = 0; p < planes; ++p) {
                    index |= ((line[p * lineBytes + x / perByte] >> shift) & ((1u << bits) - 1))
                             << (p * bits);
                }
                for (size_t c = 0; c < 3; ++c) {
                    made.rgba.push_back(static_cast<std::uint8_t>(byteAt(palette, index * 3 + c)));
                }
            }
            made.rgba.push_back(255);
        }
    }
    return made;
}

}  // namespace

std::optional<Picture> decodePicture(std::string_view bytes) {
    if (bytes.size() > INT_MAX) {
        return std::nullopt;
    }
    if (!bytes.empty() && bytes[0] == 10) {
        if (auto made = decodePcx(bytes)) {
            return made;
        }
    }
    const auto* const data = reinterpret_cast<const stbi_uc*>(bytes.data());
    const int size = static_cast<int>(bytes.size());
    int width = 0, height = 0, channels = 0;
    if (!stbi_info_from_memory(data, size, &width, &height, &channels) || width < 1 || height < 1 ||
        static_cast<size_t>(width) * static_cast<size_t>(height) > kMostPixels) {
        return std::nullopt;
    }
    stbi_uc* const pixels = stbi_load_from_memory(data, size, &width, &height, &channels, 4);
    if (!pixels) {
        return std::nullopt;
    }
    const size_t length = static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
    Picture made{width, height, std::vector<std::uint8_t>(pixels, pixels + length)};
    stbi_image_free(pixels);
    return made;
}

}  // namespace zoka
