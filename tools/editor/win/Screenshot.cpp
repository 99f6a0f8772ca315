#include "tools/editor/win/Screenshot.h"

#include <cstdint>
#include <vector>

#include "tools/editor/win/WindowSearch.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

#include <fstream>

namespace zoka {

namespace {

constexpr DWORD kBetweenLooks = 40;  // ms

// Red, green, blue, one byte each, rows from the top. Empty when the screen can't be read.
std::vector<std::uint8_t> look(const RECT& area) {
    const int width = static_cast<int>(area.right - area.left);
    const int height = static_cast<int>(area.bottom - area.top);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    std::vector<std::uint8_t> picture;
    if (bitmap && memory) {
        const HGDIOBJ before = SelectObject(memory, bitmap);
        if (BitBlt(memory, 0, 0, width, height, screen, area.left, area.top, SRCCOPY)) {
            GdiFlush();
            const auto* pixel = static_cast<const std::uint8_t*>(bits);
            picture.reserve(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
            for (int i = 0; i < width * height; ++i, pixel += 4) {
                picture.insert(picture.end(), {pixel[2], pixel[1], pixel[0]});
            }
        }
        SelectObject(memory, before);
    }
    if (bitmap) {
        DeleteObject(bitmap);
    }
    if (memory) {
        DeleteDC(memory);
    }
    ReleaseDC(nullptr, screen);
    return picture;
}

void writeBytes(void* out, void* bytes, int size) {
    static_cast<std::ofstream*>(out)->write(static_cast<const char*>(bytes), size);
}

}  // namespace

RECT screenArea() {
    return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

RECT windowsArea() {
    RECT all{};
    for (const HWND window : topWindows()) {
        RECT one;
        if (GetWindowRect(window, &one)) {
            UnionRect(&all, &all, &one);
        }
    }
    const RECT screen = screenArea();
    RECT area{};
    return IntersectRect(&area, &all, &screen) ? area : screen;
}

Outcome takePicture(const RECT& wanted, const std::string& path, unsigned patience) {
    const RECT screen = screenArea();
    RECT area{};
    if (!IntersectRect(&area, &wanted, &screen)) {  // beyond it there is nothing to be read
        return Refusal{"it is not on the screen"};
    }
    for (const HWND window : topWindows()) {
        ask(window, WM_NULL);
    }
    std::vector<std::uint8_t> picture = look(area);
    const ULONGLONG end = GetTickCount64() + patience;
    for (;;) {
        Sleep(kBetweenLooks);
        std::vector<std::uint8_t> next = look(area);
        const bool same = next == picture;
        picture = std::move(next);
        if (same || GetTickCount64() > end) {
            break;
        }
    }
    if (picture.empty()) {
        return Refusal{"the screen can't be read"};
    }
    std::ofstream out(path, std::ios::binary);
    const int width = static_cast<int>(area.right - area.left);
    const int height = static_cast<int>(area.bottom - area.top);
    const int written = stbi_write_png_to_func(writeBytes, &out, width, height, 3, picture.data(), width * 3);
    out.close();
    if (!written || !out) {
        return Refusal{path + " can't be written"};
    }
    return {};
}

}  // namespace zoka
