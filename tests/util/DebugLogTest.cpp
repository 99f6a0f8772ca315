#include "util/DebugLog.h"

#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"

namespace {

using zoka::closeDebugLog, zoka::debugLog;

const std::string kHeader =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<!-- Debug output -->\n<DebugLog>\n";

class DebugLogTest : public testing::Test {
protected:
    DebugLogTest() { closeDebugLog(); }
    ~DebugLogTest() override {
        closeDebugLog();
        zoka::debugLogFileName() = "debugLogOut.xml";
    }
    const zoka::test::TempFolder folder;
};

TEST_F(DebugLogTest, WritesEntriesAsTheyCome) {
    EXPECT_EQ(zoka::debugLogFileName(), "debugLogOut.xml");
    zoka::debugLogFileName() = folder.write("log.xml", "of an earlier run");
    debugLog("a", 12, "f", "x", 1);
    EXPECT_EQ(folder.read("log.xml"), kHeader + "<Error file=\"a\" line=\"12\" func=\"f\" >x</Error>\n")
        << "there at once, and the old file is gone";
    debugLog(std::string("b\\c"), -3, std::string("g"), std::string("<&\r\n>"), 2);
    debugLog("a", 0, "f", "", 7);
    debugLog(nullptr, 0, nullptr, nullptr, 0);
    EXPECT_EQ(folder.read("log.xml"), kHeader +
                                          "<Error file=\"a\" line=\"12\" func=\"f\" >x</Error>\n"
                                          "<Warning file=\"b\\c\" line=\"-3\" func=\"g\" ><&\r\n></Warning>\n"
                                          "<Note file=\"a\" line=\"0\" func=\"f\" ></Note>\n"
                                          "<Note file=\"\" line=\"0\" func=\"\" ></Note>\n");
    closeDebugLog();
    debugLog("a", 1, "f", "y", 0);
    EXPECT_EQ(folder.read("log.xml"), kHeader + "<Note file=\"a\" line=\"1\" func=\"f\" >y</Note>\n");
}

TEST_F(DebugLogTest, SwallowsFailures) {
    zoka::debugLogFileName() = folder.path("none\\log.xml");
    debugLog("a", 1, "f", "dropped", 1);
    zoka::debugLogFileName() = folder.path("log.xml");
    debugLog("a", 2, "f", "kept", 1);
    EXPECT_EQ(folder.read("log.xml"), kHeader + "<Error file=\"a\" line=\"2\" func=\"f\" >kept</Error>\n");
}

}  // namespace
