// A script that another program has opened for itself alone, as only Windows allows it.
#include <windows.h>

#include "customize/ValueFile.h"
#include "tests/customize/SessionFixture.h"

using namespace zoka;
using namespace zoka::test;

namespace {

TEST_F(Session, AFileThatAnotherProgramHoldsIsLeftAloneUntilItLetsGo) {
    for (const char* const held : {"s.kez", "s.kez.zoka"}) {
        SCOPED_TRACE(held);
        project.write("s.kez.zoka", "old");
        open();
        set("Range", "11");
        makeTemplate(kNew);
        const bool script = held == std::string("s.kez");
        const HANDLE other =
            CreateFileA(project.path(held).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(other, INVALID_HANDLE_VALUE);
        prompt.asked.clear();
        EXPECT_EQ(session.save(), SaveResult::Failed);
        prompt.answers = {PromptAnswer::Yes};
        EXPECT_FALSE(session.update());
        EXPECT_EQ(prompt.asked[0].text, script ? "Error open file to write" : kValueFileNotWritten);
        const std::string noCopy =
            "Copy error (1128).\nNo Update.\n\nCan't write '" + project.path(held) + "': ";
        EXPECT_THAT(prompt.asked.back().text,
                    script ? testing::StartsWith(noCopy) : testing::StartsWith(kValueFileNotWritten));
        CloseHandle(other);
        EXPECT_EQ(value("Range"), "11");
        EXPECT_EQ(project.read(held), script ? kOld : "old");
        set("Range", "12");
        EXPECT_EQ(session.save(), SaveResult::Saved);
        EXPECT_NE(project.read("s.kez").find("range = 12;"), std::string::npos);
        EXPECT_NE(project.read("s.kez.zoka").find("\n12\n"), std::string::npos);
    }
}

}  // namespace
