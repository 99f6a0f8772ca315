#include "controls/win/RowMeasure.h"

#include <algorithm>

#include "controls/win/ControlClasses.h"

namespace zoka {
namespace {

constexpr size_t kMeasuredLabels = 500;  // wide enough for these is wide enough
constexpr int kLeastLabelUnits = 60;

// What texts are measured on, with a font.
class MeasuringDc {
public:
    explicit MeasuringDc(HFONT font) : m_dc(GetDC(nullptr)), m_old(SelectObject(m_dc, font)) {}
    ~MeasuringDc() {
        SelectObject(m_dc, m_old);
        ReleaseDC(nullptr, m_dc);
    }
    MeasuringDc(const MeasuringDc&) = delete;
    MeasuringDc& operator=(const MeasuringDc&) = delete;

    operator HDC() const { return m_dc; }

private:
    HDC m_dc;
    HGDIOBJ m_old;
};

}  // namespace

void RowMeasure::setFonts(const WindowFonts& fonts) {
    freeFonts();
    m_fonts = &fonts;
    LOGFONTA font{};
    GetObjectA(fonts.text(), sizeof font, &font);
    font.lfWeight = FW_BOLD;
    m_bold = CreateFontIndirectA(&font);
    font.lfHeight = font.lfHeight * 4 / 3;
    m_title = CreateFontIndirectA(&font);
}

void RowMeasure::freeFonts() {
    for (HFONT* const font : {&m_bold, &m_title}) {
        if (*font) {
            DeleteObject(*font);
        }
        *font = nullptr;
    }
}

void RowMeasure::rowsReplaced() {
    m_pictures.clear();
    m_textHeights.assign(m_rows.size(), 0);
    m_widestLabel = 0;
    if (!m_fonts) {
        return;
    }
    const MeasuringDc dc(m_bold);
    for (size_t row = 0; row < std::min(m_rows.size(), kMeasuredLabels); ++row) {
        const EntryFacts& facts = m_rows.row(row).facts();
        if (!hasValue(facts.field) || facts.field == EntryField::Switch) {
            continue;
        }
        const std::wstring label = wideText(facts.label, codePageOf(facts.set));
        SIZE size{};
        if (GetTextExtentPoint32W(dc, label.c_str(), static_cast<int>(label.size()), &size)) {
            m_widestLabel = std::max(m_widestLabel, static_cast<int>(size.cx));
        }
    }
}

const PictureStore::Bitmap& RowMeasure::picture(size_t row) {
    const std::string& name = m_rows.row(row).facts().label;
    return m_pictures.get(name, [&] { return m_rows.picturePath(name); });
}

SIZE RowMeasure::pictureSize(const PictureStore::Bitmap& picture, int width) const {
    // As large on every screen, never beyond the row.
    const double by =
        std::min({m_fonts->dpi() / 96.0, static_cast<double>(std::max(width, 1)) / picture.width,
                  static_cast<double>(m_fonts->px(240)) / picture.height});
    return {std::max(1, static_cast<int>(picture.width * by)),
            std::max(1, static_cast<int>(picture.height * by))};
}

int RowMeasure::textHeight(const std::wstring& text, int width) const {
    const int line = m_fonts->lineHeight();
    // Only what is short enough for one line whatever its letters are isn't measured.
    if (static_cast<int>(std::min<size_t>(text.size(), 100000)) * m_fonts->x(8) <= width) {
        return line;
    }
    RECT area{0, 0, std::max(width, 20), 0};
    DrawTextW(MeasuringDc(m_fonts->text()), text.c_str(), -1, &area,
              DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    return std::clamp(static_cast<int>(area.bottom), line, line * 20);
}

int RowMeasure::height(size_t row, int width) {
    const EntryModel& model = m_rows.row(row);
    const EntryFacts& facts = model.facts();
    if (facts.field == EntryField::Picture) {
        const PictureStore::Bitmap& shown = picture(row);
        return shown.handle ? static_cast<int>(pictureSize(shown, width - m_fonts->x(5)).cy) + m_fonts->px(4)
                            : m_fonts->lineHeight() + m_fonts->px(6);
    }
    if (facts.field == EntryField::Text) {
        if (m_textWidth != width || m_textHeights.size() != m_rows.size()) {
            m_textHeights.assign(m_rows.size(), 0);
            m_textWidth = width;
        }
        int& height = m_textHeights[row];
        if (height == 0) {
            height = textHeight(wideText(facts.label, codePageOf(facts.set)), width - m_fonts->x(5)) +
                     m_fonts->px(4);
        }
        return height;
    }
    if (facts.field == EntryField::StringField && facts.lines > 1) {
        return m_fonts->lineHeight() * std::min(facts.lines, 12) + m_fonts->px(14);
    }
    return std::max(m_fonts->px(model.GetHeight()), m_fonts->y(kFieldHeightUnits) + m_fonts->px(4));
}

int RowMeasure::labelWidth(int width) const {
    // Neither far from its field in a wide panel, nor without room for it in a narrow one.
    return std::clamp(m_widestLabel + m_fonts->x(6), std::min(width / 4, m_fonts->x(kLeastLabelUnits)),
                      std::max(width * 9 / 20, 0));
}

}  // namespace zoka
