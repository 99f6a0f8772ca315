#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/FileFilter.h"
#include "controls/PanelFilter.h"
#include "controls/PanelLayout.h"

using namespace zoka;
using testing::ElementsAre;

namespace {

TEST(PanelLayout, StacksWithAGapAfterAllButTexts) {
    PanelLayout layout(10, 4, 5);
    const PanelItem items[] = {{20}, {16, false}, {30, true, false}, {30}};
    layout.stack(items);
    EXPECT_THAT(layout.rows(), ElementsAre(0, 1, 3));
    EXPECT_EQ(layout.rectOfRow(0, 100).y, 10);
    EXPECT_EQ(layout.rectOfRow(1, 100).y, 35);
    EXPECT_EQ(layout.rectOfRow(2, 100).y, 51);
    EXPECT_EQ(layout.rectOfRow(2, 100).width, 92);
    EXPECT_EQ(layout.contentHeight(), 86);
    EXPECT_EQ(layout.rowOfItem(3), 2u);
    EXPECT_EQ(layout.rowOfItem(2), 3u);
}

TEST(PanelLayout, FindsTheRowsInSightForEveryScrollPosition) {
    PanelLayout layout(8, 0, 4);
    std::vector<PanelItem> items;
    for (int i = 0; i < 200; ++i) {
        items.push_back({10 + i % 7 * 9, i % 5 != 0, i % 3 != 0});
    }
    layout.stack(items);
    for (int top = 0; top < layout.contentHeight(); top += 3) {
        const auto range = layout.rowsWithin(top, 90);
        for (size_t row = 0; row < layout.rows().size(); ++row) {
            const PanelRect rect = layout.rectOfRow(row, 50);
            const bool inSight = rect.y < top + 90 && rect.y + rect.height > top;
            ASSERT_EQ(row >= range.first && row < range.last, inSight) << "row " << row << " at " << top;
        }
    }
    for (size_t row = 0; row < layout.rows().size(); ++row) {
        const int top = layout.scrollToShow(row, 300, 100);
        const PanelRect rect = layout.rectOfRow(row, 50);
        ASSERT_LE(top, rect.y);
        ASSERT_LE(rect.y + rect.height, top + 100);
        ASSERT_LE(top + 100, layout.contentHeight());
    }
    layout.stack({});
    EXPECT_EQ(layout.rowsWithin(0, 100).last, 0u);
}

TEST(PanelFilter, SearchesLabelHelpAndSectionOfChangedOnes) {
    const FilterItem items[] = {
        {EntryField::Caption, "Fog", "", false},
        {EntryField::Heading, "Density", "", false},
        {EntryField::Slider, "Near", "Metres from the camera", false},
        {EntryField::Text, "A note", "", false},
        {EntryField::Heading, "Fl\xDCsse", "", false},
        {EntryField::IntField, "Depth", "of the water", true},
    };
    PanelFilter filter;
    const auto shown = [&] {
        std::string text;
        for (const bool one : filter.visible(items)) {
            text += one ? '1' : '0';
        }
        return text;
    };
    EXPECT_EQ(shown(), "111111");
    const struct {
        const char *search, *shown;
    } rows[] = {{"near", "011000"},           {"CAMERA metres", "011000"},
                {"density camera", "011000"}, {"density", "011100"},
                {"fl\xFCsse", "000011"},      {"nothing", "000000"},
                {"camera water", "000000"},   {"  ", "111111"}};
    for (const auto& row : rows) {
        filter.search = row.search;
        EXPECT_EQ(shown(), row.shown) << row.search;
    }
    filter.search = "";
    filter.changedOnly = true;
    EXPECT_EQ(shown(), "000011");
    filter.changedOnly = false;
    filter.setFolded(1, true);
    EXPECT_EQ(shown(), "110011");
    filter.search = "near";  // a search looks into folded sections
    EXPECT_EQ(shown(), "011000");
    filter.search = "";
    filter.foldAll(items, true);
    EXPECT_EQ(shown(), "110010");
    filter.unfoldAll();
    EXPECT_EQ(shown(), "111111");
}

TEST(FileFilter, GoesByTheExtension) {
    const std::string pictures =
                          "Picture Files (*.bmp, *.pcx, *.tga)|*.bmp;*.pcx;*.tga|All Files (*.*)|*.*||",
                      sounds = "Sound Files (*.wav)|*.wav|All Files (*.*)|*.*||",
                      all = "All Files (*.*)|*.*||";
    const struct {
        const char* name;
        const std::string& filter;
    } rows[] = {{"a.bmp", pictures}, {"a.b.PCX", pictures}, {"x\\y.Tga", pictures},
                {"s.WAV", sounds},   {"s.wave", all},       {"wav", all},
                {"", all},           {"a.", all},           {"a.wav.mdl", all}};
    for (const auto& row : rows) {
        EXPECT_EQ(fileFilterFor(row.name), row.filter) << row.name;
    }
}

}  // namespace
