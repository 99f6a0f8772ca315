// The numbered copies beside a file.
#include "util/Backups.h"

#include <gtest/gtest.h>

#include "tests/support/FaultyOsFiles.h"
#include "tests/support/TempFolder.h"

using namespace zoka;
using test::TempFolder;

TEST(Backups, TheNewestTenAreKept) {
    const TempFolder folder;
    // None of these is a copy of fog.kez.
    for (const char* name : {"fog.kez", "fog.kez.x.bak", "fog.kez..bak", "rain.kez.40.bak"}) {
        folder.write(name, "other");
    }
    const std::string path = folder.path("fog.kez");
    for (int i = 1; i <= 12; ++i) {
        const auto kept = keepBackup(path, "text " + std::to_string(i));
        EXPECT_TRUE(kept);
        EXPECT_EQ(*kept, path + "." + std::to_string(i) + ".bak");
        EXPECT_EQ(keepBackup(path, "text " + std::to_string(i)).value(), kept.value())
            << "not twice in a row";
    }
    EXPECT_EQ(folder.names().size(), 4 + kMostBackups);
    EXPECT_EQ(folder.read("fog.kez.2.bak"), "<missing>");
    EXPECT_EQ(folder.read("fog.kez.3.bak"), "text 3");
    EXPECT_EQ(folder.read("fog.kez.12.bak"), "text 12");
    EXPECT_EQ(folder.read("fog.kez.x.bak") + folder.read("rain.kez.40.bak"), "otherother");
}

TEST(Backups, OneThatCantBeMadeCostsNoOlderOne) {
    const TempFolder folder;
    const std::string path = folder.path("fog.kez");
    for (int i = 1; i <= 10; ++i) {
        ASSERT_TRUE(keepBackup(path, std::to_string(i)));
    }
    const auto before = folder.names();
    const test::FaultyOsFiles full(test::FaultyOsFiles::every("write"));
    const auto kept = keepBackup(path, "new");
    EXPECT_FALSE(kept);
    EXPECT_NE(kept.why().find("fog.kez.11.bak"), std::string::npos) << kept.why();
    EXPECT_EQ(folder.names(), before);
}
