// Memory that runs out, at whichever allocation, is a result: files stay whole, nothing is left behind or leaks,
// and the next try works.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

#include "customize/CustomizeSession.h"
#include "customize/ValueUpdate.h"
#include "plugin/host/FolderHost.h"
#include "templates/ScriptAdding.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TempFolder.h"
#include "util/Doors.h"

namespace {

// Counts what goes through operator new, and lets the one fail that brings the countdown to 0.
long g_countdown = 0;
long g_live = 0;

void* allocate(std::size_t size) {
    if (g_countdown > 0 && --g_countdown == 0) {
        throw std::bad_alloc();
    }
    void* const made = std::malloc(size > 0 ? size : 1);
    if (!made) {
        throw std::bad_alloc();
    }
    ++g_live;
    return made;
}

void release(void* memory) {
    if (memory) {
        --g_live;
        std::free(memory);
    }
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    release(memory);
}

namespace {

using namespace zoka;
using zoka::test::ScriptedPrompt, zoka::test::TempFolder;

// Takes no memory, so that what it tells is not counted.
class SilentPrompt : public UserPrompt {
public:
    SilentPrompt() { setUserPrompt(this); }
    ~SilentPrompt() override { setUserPrompt(nullptr); }
    PromptAnswer ask(const std::string&, const std::string&, PromptButtons buttons, PromptIcon) override {
        ++told;
        return buttons == PromptButtons::OkCancel ? PromptAnswer::Ok : PromptAnswer::Yes;
    }
    std::optional<std::string> chooseFile(const ChooserRequest&) override { return std::nullopt; }
    std::optional<std::string> chooseFolder(const ChooserRequest&) override { return std::nullopt; }
    [[noreturn]] void fatalStop(const std::string&, const std::string&, int status) override {
        std::exit(status);
    }
    int told = 0;
};

constexpr char kScript[] =
    "// ver: 1\r\n// title: Fog over the harbour and the town\r\n// entry: How dense the fog is, from near "
    "to far\r\n"
    "// id: 1\r\ndensity = 5;\r\n// entry: The name of the picture that it is made of\r\n// id: 2\r\n"
    "picture = \"fog_over_the_harbour.tga\";\r\n";
constexpr char kNewer[] =
    "// ver: 2\r\n// entry: How dense the fog is, from near to far\r\n// id: 1\r\ndensity = 9;\r\n// "
    "more\r\n";
constexpr char kMain[] = "// main\r\ninclude <other.kez>;\r\nfunction main() {}\r\n";

struct Row {
    const char* what;
    std::function<bool(const TempFolder&, FolderHost&)> work;  // true when all went well
};

const Row kRows[] = {
    {"load, edit, save",
     [](const TempFolder& folder, FolderHost& host) {
         CustomizeSession session(host, userPrompt());
         return session.open(folder.path("fog.kez")) && session.setValue(1, "6") &&
                session.save() == SaveResult::Saved;
     }},
    {"update",
     [](const TempFolder& folder, FolderHost&) {
         std::string why;
         const auto plan = planValueUpdate(folder.path("fog.kez"), folder.path("newer.kez"), why);
         return plan && updateKeepingValues(*plan, why);
     }},
    {"add",
     [](const TempFolder& folder, FolderHost& host) {
         ScriptAdding adding(host, userPrompt());
         const std::string path = folder.path("fog.kez");
         return adding.AddScriptsToProject({&path, 1}) && adding.error().empty();
     }},
};

TEST(Allocations, EachThatFailsIsAResult) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.what);
        SilentPrompt prompt;
        std::string newScript, newMain;
        long liveAfterAll = 0;
        int failures = 0;
        bool done = false;
        // First without a failure; then the first allocation fails, the second, and further on some of them.
        for (long failing = 0; !done; failing += 1 + failing / 40) {
            SCOPED_TRACE(failing);
            const TempFolder folder;
            folder.write("fog.kez", kScript);
            folder.write("newer.kez", kNewer);
            folder.write("main.kez", kMain);
            const long before = g_live;
            bool well = false;
            {
                FolderHost host({.project = folder.path(),
                                 .suite = folder.path(),
                                 .mainScript = folder.path("main.kez")});
                prompt.told = 0;
                g_countdown = failing;
                const bool inside = keepInside([&] { well = row.work(folder, host); }, "fog.kez");
                done = failing > 0 && g_countdown > 0;
                g_countdown = 0;
                EXPECT_TRUE(well || !inside || prompt.told > 0 || failing > 0);
                EXPECT_TRUE(inside || prompt.told > 0) << "nobody was told";
                failures += !well;
                EXPECT_TRUE(!done || well);
            }
            const std::string script = folder.read("fog.kez"), main = folder.read("main.kez");
            if (failing == 0) {
                ASSERT_TRUE(well);
                newScript = script;
                newMain = main;
                ASSERT_TRUE(newScript != kScript || newMain != kMain);
                liveAfterAll = g_live - before;
            }
            EXPECT_TRUE(script == kScript || script == newScript);
            EXPECT_TRUE(main == kMain || main == newMain);
            EXPECT_EQ(folder.read("newer.kez"), kNewer);
            for (const std::string& name : folder.names()) {
                EXPECT_FALSE(name.starts_with("~zk")) << name;
            }
            EXPECT_LE(g_live - before, liveAfterAll + 8) << "leaked";
        }
        EXPECT_GT(failures, 50);
    }
}

}  // namespace
