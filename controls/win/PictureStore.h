// The pictures of a panel, loaded at their first use.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <string>

namespace zoka {

class PictureStore {
public:
    struct Bitmap {
        HBITMAP handle = nullptr;  // null: missing or damaged
        int width = 0, height = 0;
    };

    PictureStore() = default;
    ~PictureStore() { clear(); }
    PictureStore(const PictureStore&) = delete;
    PictureStore& operator=(const PictureStore&) = delete;

    // The first hundred are kept; others count as missing, so that a hostile script doesn't fill the memory.
    // `pathOf` gives the full path of the file of that name.
    const Bitmap& get(const std::string& name, const std::function<std::string()>& pathOf);
    void clear();

private:
    std::map<std::string, Bitmap> m_pictures;
};

}  // namespace zoka
