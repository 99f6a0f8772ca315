// Layout as rectangles.
#include "ui/Area.h"

#include <gtest/gtest.h>

#include <ostream>

namespace zoka {

void PrintTo(const Area& area, std::ostream* out) {
    *out << area.x << ',' << area.y << ' ' << area.width << 'x' << area.height;
}

namespace {

TEST(Area, CutsRowsAndColumnsOffEachSide) {
    Area rest{10, 20, 200, 100};
    EXPECT_EQ(rest.takeTop(15, 5), (Area{10, 20, 200, 15}));
    EXPECT_EQ(rest.takeBottom(10, 5), (Area{10, 110, 200, 10}));
    EXPECT_EQ(rest.takeLeft(30, 4), (Area{10, 40, 30, 65}));
    EXPECT_EQ(rest.takeRight(50, 6), (Area{160, 40, 50, 65}));
    EXPECT_EQ(rest, (Area{44, 40, 110, 65}));
    EXPECT_EQ(rest.middle(21), (Area{44, 62, 110, 21}));
    EXPECT_EQ(rest.inset(10, 5), (Area{54, 45, 90, 55}));
}

// A window may be made smaller than what stands in it.
TEST(Area, NeverGivesMoreThanThereIs) {
    Area rest{0, 0, 20, 10};
    EXPECT_EQ(rest.takeTop(8, 5), (Area{0, 0, 20, 8}));
    EXPECT_EQ(rest, (Area{0, 10, 20, 0}));
    EXPECT_EQ(rest.takeBottom(7), (Area{0, 10, 20, 0}));
    EXPECT_EQ(rest.takeRight(50, 5), (Area{0, 10, 20, 0}));
    EXPECT_EQ(rest.takeLeft(-3, 2).width, 0);
    EXPECT_EQ(rest.width, 0);
    EXPECT_EQ((Area{5, 5, 8, 8}.inset(6, 6)), (Area{11, 11, 0, 0}));
    EXPECT_EQ((Area{0, 0, 8, 8}.middle(30)), (Area{0, 0, 8, 8}));
}

}  // namespace
}  // namespace zoka
