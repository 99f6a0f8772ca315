// How much room a panel's rows take, and what that depends on: their fonts and pictures.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "controls/RowEditing.h"
#include "controls/win/PictureStore.h"
#include "ui/win/WindowKit.h"

namespace zoka {

// Sizes are in pixels. The rows outlive it. [panel thread]
class RowMeasure {
public:
    explicit RowMeasure(RowEditing& rows) : m_rows(rows) {}
    ~RowMeasure() { freeFonts(); }
    RowMeasure(const RowMeasure&) = delete;
    RowMeasure& operator=(const RowMeasure&) = delete;

    // Before everything else, and when they are other ones; no window shows the old ones any more. `fonts` outlive it.
    void setFonts(const WindowFonts& fonts);
    // All rows are others than before.
    void rowsReplaced();
    // The pictures are loaded anew at their next use.
    void freePictures() { m_pictures.clear(); }

    HFONT bold() const { return m_bold; }
    HFONT title() const { return m_title; }
    const PictureStore::Bitmap& picture(size_t row);
    // As large as it's drawn in a row of that width.
    SIZE pictureSize(const PictureStore::Bitmap& picture, int width) const;
    // Of a row of that width.
    int height(size_t row, int width);
    int labelWidth(int width) const;

private:
    void freeFonts();
    int textHeight(const std::wstring& text, int width) const;

    RowEditing& m_rows;
    const WindowFonts* m_fonts = nullptr;
    HFONT m_bold = nullptr, m_title = nullptr;
    PictureStore m_pictures;
    // Of the rows of text where rows are that wide, so that a search doesn't measure them anew; 0: not measured.
    std::vector<int> m_textHeights;
    int m_textWidth = 0;
    int m_widestLabel = 0;  // of the rows measured
};

}  // namespace zoka
