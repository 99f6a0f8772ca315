#include "controls/win/PictureStore.h"

#include "controls/PictureFile.h"
#include "util/OsFiles.h"

namespace zoka {
namespace {

constexpr size_t kMostPictures = 100;

// See-through parts show the panel's ground.
PictureStore::Bitmap bitmapOf(const Picture& picture) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = picture.width;
    info.bmiHeader.biHeight = -picture.height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const HBITMAP made = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!made) {
        return {};
    }
    const COLORREF ground = GetSysColor(COLOR_BTNFACE);
    const unsigned under[] = {GetBValue(ground), GetGValue(ground), GetRValue(ground)};
    auto* out = static_cast<std::uint8_t*>(bits);
    for (size_t i = 0; i < picture.rgba.size(); i += 4, out += 4) {
        const unsigned alpha = picture.rgba[i + 3];
        for (size_t c = 0; c < 3; ++c) {
            out[c] =
                static_cast<std::uint8_t>((picture.rgba[i + 2 - c] * alpha + under[c] * (255 - alpha)) / 255);
        }
        out[3] = 0;
    }
    return {made, picture.width, picture.height};
}

}  // namespace

const PictureStore::Bitmap& PictureStore::get(const std::string& name,
                                              const std::function<std::string()>& pathOf) {
    static const Bitmap kNone;
    const auto known = m_pictures.find(name);
    if (known != m_pictures.end()) {
        return known->second;
    }
    if (m_pictures.size() >= kMostPictures) {
        return kNone;
    }
    Bitmap made;
    if (const auto bytes = osFiles().readWhole(pathOf())) {
        if (const auto picture = decodePicture(*bytes)) {
            made = bitmapOf(*picture);
        }
    }
    return m_pictures.emplace(name, made).first->second;
}

void PictureStore::clear() {
    for (const auto& [name, bitmap] : m_pictures) {
        if (bitmap.handle) {
            DeleteObject(bitmap.handle);
        }
    }
    m_pictures.clear();
}

}  // namespace zoka
