// Several programs that change one file at once. They are started without a handle of this program's: the files that
// one of its threads has open would be held by the children of all others.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/TempFolder.h"

namespace {

using zoka::test::TempFolder;

// Null when it could not be started.
HANDLE startedIn(const TempFolder& folder, std::string command) {
    STARTUPINFOA how{};
    how.cb = sizeof how;
    PROCESS_INFORMATION made{};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                        folder.path().c_str(), &how, &made)) {
        return nullptr;
    }
    CloseHandle(made.hThread);
    return made.hProcess;
}

std::string errOf(int writer) {
    return "err" + std::to_string(writer);
}

// All values are there, nobody is refused or told of a lock that was left behind, and nothing is left.
TEST(Writers, SetOneLevelAtOnce) {
    constexpr int kRounds = 6, kWriters = 8;
    for (int round = 1; round <= kRounds; ++round) {
        const TempFolder folder, outputs;
        folder.write("l.zlm", "level 1\r\nentity a\r\n    position 1 2 3\r\nend\r\n");
        std::vector<HANDLE> writers;
        for (int writer = 1; writer <= kWriters; ++writer) {
            const std::string number = std::to_string(writer);
            // The shell opens the file of the messages itself.
            writers.push_back(startedIn(folder, "cmd /s /c \"\"" ZOKA_CLI "\" level set l.zlm a skill" +
                                                    number + "=" + number + ".5 >nul 2>\"" +
                                                    outputs.path(errOf(writer)) + "\"\""));
            ASSERT_NE(writers.back(), nullptr);
        }
        for (int writer = 1; writer <= kWriters; ++writer) {
            const HANDLE process = writers[static_cast<size_t>(writer - 1)];
            EXPECT_EQ(WaitForSingleObject(process, 60'000), WAIT_OBJECT_0);
            DWORD status = 99;
            EXPECT_TRUE(GetExitCodeProcess(process, &status));
            CloseHandle(process);
            EXPECT_EQ(status, 0u) << "round " << round;
            EXPECT_EQ(outputs.read(errOf(writer)), "") << "round " << round;
        }
        const std::string level = folder.read("l.zlm");
        for (int writer = 1; writer <= kWriters; ++writer) {
            const std::string number = std::to_string(writer);
            EXPECT_NE(level.find("skill    " + number + " " + number + ".5\r\n"), std::string::npos)
                << "round " << round << ", skill " << number << " in\n"
                << level;
        }
        EXPECT_EQ(folder.names(), std::vector<std::string>{"l.zlm"});
    }
}

}  // namespace
