#include <gtest/gtest.h>

#include <string>

#include "controls/PictureFile.h"

using namespace zoka;

namespace {

std::string bytes(std::initializer_list<int> values) {
    std::string made;
    for (const int value : values) {
        made += static_cast<char>(value);
    }
    return made;
}

std::string pcxHeader(int bits, int planes, int width, int height, int lineBytes) {
    std::string made(128, '\0');
    made.replace(0, 4, bytes({10, 5, 1, bits}));
    made[8] = static_cast<char>(width - 1);
    made[10] = static_cast<char>(height - 1);
    made.replace(16, 6, bytes({1, 2, 3, 200, 100, 50}));  // the first two of 16 colours
    made[65] = static_cast<char>(planes);
    made[66] = static_cast<char>(lineBytes);
    return made;
}

std::string palette256() {
    std::string made = bytes({12});
    for (int i = 0; i < 256; ++i) {
        made += bytes({i, 255 - i, i / 2});
    }
    return made;
}

// Red, green, blue of each pixel in hexadecimal, a blank between pixels; "none" for no picture.
std::string pixels(const std::string& file) {
    const auto picture = decodePicture(file);
    if (!picture) {
        return "none";
    }
    std::string text = std::to_string(picture->width) + "x" + std::to_string(picture->height) + ":";
    char one[8];
    for (size_t i = 0; i < picture->rgba.size(); i += 4) {
        std::snprintf(one, sizeof one, " %02X%02X%02X", picture->rgba[i], picture->rgba[i + 1],
                      picture->rgba[i + 2]);
        text += one;
    }
    return text;
}

// 2 x 2 in 24 bits, rows from the bottom, each filled up to four bytes.
const std::string kBmp = bytes({'B', 'M', 70, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0}) +
                         bytes({2, 0, 0, 0, 2, 0, 0, 0, 1, 0, 24, 0, 0, 0, 0, 0, 16, 0, 0, 0}) +
                         std::string(16, '\0') + bytes({1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0});
const std::string kTga = bytes({0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 1, 0, 24, 0x20, 1, 2, 3, 4, 5, 6});
const std::string kPcx256 = pcxHeader(8, 1, 3, 2, 4) + bytes({0xC3, 7, 9, 1, 2, 3, 0}) + palette256();

TEST(PictureFile, ReadsTheKindsThatTheSuiteUses) {
    const struct {
        const char* name;
        std::string file;
        const char* pixels;
    } rows[] = {
        {"bmp", kBmp, "2x2: 090807 0C0B0A 030201 060504"},
        {"tga", kTga, "2x1: 030201 060504"},
        {"pcx of 256 colours, a run, a byte to fill the line", kPcx256,
         "3x2: 07F803 07F803 07F803 01FE00 02FD01 03FC01"},
        {"pcx of three planes, a run over all of them", pcxHeader(8, 3, 2, 1, 2) + bytes({0xC5, 9, 0x21}),
         "2x1: 090909 090921"},
        {"pcx of one bit", pcxHeader(1, 1, 3, 1, 1) + bytes({0x40}), "3x1: 010203 C86432 010203"},
        {"pcx whose run ends behind the picture", pcxHeader(1, 1, 8, 1, 1) + bytes({0xFF, 0}),
         "8x1: 010203 010203 010203 010203 010203 010203 010203 010203"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(pixels(row.file), row.pixels) << row.name;
    }
}

TEST(PictureFile, TakesDamagedAndForeignFilesForNoPicture) {
    std::string noPalette = kPcx256, huge = pcxHeader(8, 1, 3, 2, 4);
    noPalette[noPalette.size() - 769] = 0;
    for (const size_t at : {9u, 11u, 67u}) {
        huge[at] = '\x7f';  // 32,000 pixels each way
    }
    const std::string rows[] = {
        "",
        "picture",
        std::string("\0\0", 2),
        noPalette,
        huge + palette256(),
        pcxHeader(8, 1, 3, 2, 2) + bytes({0xC4, 7}) + palette256(),  // lines too short
        pcxHeader(3, 1, 3, 2, 4) + bytes({0xC8, 7}),
        pcxHeader(8, 3, 2, 1, 2) + bytes({0xC3, 9})};
    for (const std::string& row : rows) {
        EXPECT_EQ(pixels(row), "none") << row.substr(0, 20);
    }
    // Cut off anywhere: no picture, or what there is of it, and nothing read behind the end.
    for (const std::string* whole : {&kBmp, &kTga, &kPcx256}) {
        for (size_t length = 0; length < whole->size(); ++length) {
            const auto picture = decodePicture(std::string(*whole, 0, length));
            const size_t filled = picture ? picture->rgba.size() : 0;
            ASSERT_EQ(filled, picture ? static_cast<size_t>(picture->width * picture->height * 4) : 0u);
        }
    }
}

}  // namespace
