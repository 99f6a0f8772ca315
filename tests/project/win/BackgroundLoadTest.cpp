// A project that is loaded beside its window.
#include "J8ProjectManager/win/BackgroundLoad.h"

#include "tests/project/ProjectFiles.h"
#include "tests/support/ScriptedPrompt.h"

namespace {

using BackgroundLoadTest = zoka::test::ProjectFiles;

// Nobody gets the message: the window is none any more, or its queue is full. What was loaded is there all the same.
TEST_F(BackgroundLoadTest, IsDoneWhereItsMessageReachesNobody) {
    const std::string path = project("<Level name='quay'/>");
    const HWND none = reinterpret_cast<HWND>(static_cast<INT_PTR>(0x7FFFFFF0));
    ASSERT_FALSE(PostMessageA(none, WM_APP, 0, 0));
    for (const bool early : {true, false}) {
        CJ8ProjectManager before;
        zoka::BackgroundLoad load(path, before, early);
        if (!early) {
            ASSERT_TRUE(load.isDone(INFINITE));
        }
        load.resume(none, WM_APP);
        ASSERT_TRUE(load.isDone(INFINITE));
        zoka::test::ScriptedPrompt prompt;
        zoka::ProjectSession session(manager, prompt);
        const zoka::Outcome opened = session.open(load.take());
        ASSERT_TRUE(opened) << opened.why();
        ASSERT_EQ(manager.m_apLevels.size(), 1u);
        EXPECT_EQ(manager.m_apLevels[0].m_name, "quay");
    }
}

}  // namespace
