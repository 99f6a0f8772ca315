// Memory that runs out, at whichever allocation, is a result: files stay whole, nothing is left behind or leaks,
// and the next try works.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "customize/BehaviorSession.h"
#include "customize/CustomizeSession.h"
#include "customize/ValueUpdate.h"
#include "plugin/host/FolderHost.h"
#include "templates/ScriptAdding.h"
#include "tests/memory/posix/FailingAllocations.h"
#include "tests/memory/posix/SilentPrompt.h"
#include "tests/support/TempFolder.h"
#include "util/Doors.h"

namespace {

using namespace zoka;
using zoka::test::g_bytes, zoka::test::g_limit;
using zoka::test::SilentPrompt, zoka::test::TempFolder, zoka::test::g_countdown, zoka::test::g_live,
    zoka::test::kEveryOne;

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
         const auto plan = planValueUpdate(folder.path("fog.kez"), folder.path("newer.kez"));
         return plan && updateKeepingValues(*plan);
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
        for (long failing = 0; !done; failing += kEveryOne ? 1 : 1 + failing / 40) {
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

// Does the work while the allocation of that number fails; `done` when it has not so many, and then it does what it is
// to do. False when it threw.
bool stays(long failing, const std::function<bool()>& work, bool& done) {
    bool asExpected = false;
    g_countdown = failing;
    const bool inside = keepInside([&] { asExpected = work(); });
    done = g_countdown > 0;
    g_countdown = 0;
    EXPECT_TRUE(!done || asExpected) << "nothing failed";
    return inside;
}

// Each way of a table while each allocation fails in turn, until it has not so many. `once` tries a way and says
// whether something unsaved was kept, which must happen.
template <class Ways, class Once>
void failEach(const Ways& ways, const Once& once) {
    for (const auto& way : ways) {
        SCOPED_TRACE(way.what);
        int kept = 0;
        bool done = false;
        for (long failing = 1; !done; failing += kEveryOne ? 1 : 1 + failing / 20) {
            SCOPED_TRACE(failing);
            kept += once(way, failing, done);
        }
        EXPECT_GT(kept, 0);
    }
}

// Reads what a window reads that is painted: rows that are gone must not be asked for.
size_t painted(const RowEditing& rows) {
    size_t bytes = 0;
    for (size_t i = 0; i < rows.size(); ++i) {
        bytes += rows.row(i).value().size() + rows.row(i).facts().label.size();
    }
    return bytes;
}

// Another hand's work on the same script.
constexpr char kOthers[] =
    "// ver: 1\r\n// another's line\r\n// entry: How dense the fog is, from near to far\r\n// id: 1\r\n"
    "density = 8;\r\n// entry: The name of the picture that it is made of\r\n// id: 2\r\n"
    "picture = \"fog_over_the_harbour.tga\";\r\n";

// The panel has to go when memory runs out: what the user changed is in a file all the same.
TEST(Allocations, UnsavedValuesAreKeptWhicheverFails) {
    struct Way {
        const char* what;
        bool (*work)(CustomizeSession&);
        const char* onDisk = kScript;  // once the panel has loaded it
        bool drops = false;            // the values, as the user wants it
    };
    const Way kWays[] = {
        {"edit", [](CustomizeSession& session) { return bool(session.setValue(1, "7")); }},
        {"undo", [](CustomizeSession& session) { return bool(session.undo()); }},
        {"save", [](CustomizeSession& session) { return session.save() == SaveResult::Saved; }},
        {"save over another's change",
         [](CustomizeSession& session) { return session.save() == SaveResult::Saved; }, kOthers},
        {"save over a script without the entry",
         [](CustomizeSession& session) { return session.save() == SaveResult::Failed; }, kNewer},
        {"save what is read again then",
         [](CustomizeSession& session) {
             return session.setValue(1, "-5") && session.save() == SaveResult::Saved;
         }},
        {"update", [](CustomizeSession& session) { return session.update(); }},
        {"restore", [](CustomizeSession& session) { return session.restore(); }, kScript, true},
    };
    failEach(kWays, [](const Way& way, long failing, bool& done) {
        SilentPrompt prompt;
        const TempFolder folder;
        const std::string path = folder.write("fog.kez", kScript);
        std::filesystem::create_directory(folder.native("t"));
        FolderHost host({.project = folder.path(), .suite = folder.path()});
        folder.write("t/fog.kez", kNewer);
        host.setChosenFile(folder.path("t\\fog.kez"));
        CustomizeSession session(host, userPrompt());
        EXPECT_TRUE(session.open(path) && session.setValue(2, "mist.tga"));
        folder.write("fog.kez", way.onDisk);
        prompt.meanwhile = [&] { EXPECT_GT(painted(session), 0u); };
        if (stays(
                failing, [&] { return way.work(session); }, done)) {
            static_cast<void>(session.redo());  // where it could be undone
            bool kept = session.size() > 2 && session.row(2).value() == "mist.tga";
            for (const std::string& name : folder.names()) {
                kept = kept || (name != "t" && folder.read(name).find("mist.tga") != std::string::npos);
            }
            EXPECT_TRUE(kept || (way.drops && folder.read("fog.kez") == kNewer)) << "lost by an answer";
            return false;
        }
        EXPECT_GT(painted(session), 0u);
        session.offerUnsaved();
        const std::string old = folder.read("fog.kez.zoka.old");
        EXPECT_TRUE(way.drops || old.find("\nmist.tga\n\n") != std::string::npos ||
                    folder.read("fog.kez").find("mist.tga") != std::string::npos)
            << old;
        return old != "<missing>";
    });
}

// A window, which needs memory for the rows too.
struct AllocatingView : RowsListener {
    void rowsReplaced() override { texts.assign(1, std::string(100, 'x')); }
    std::vector<std::string> texts;
};

// The panel shows the script that it had, with what is not saved, or the other one, whole; who is told hears for which
// script; and the next try works.
TEST(Allocations, SwitchingScriptsShowsTheOneOrTheOther) {
    struct Way {
        const char* what;
        PromptAnswer saves;
        bool opens = false;  // without asking about what is not saved
    };
    const Way kWays[] = {{"after saving", PromptAnswer::Yes},
                         {"without saving", PromptAnswer::No},
                         {"without a question", PromptAnswer::No, true}};
    failEach(kWays, [](const Way& way, long failing, bool& done) {
        SilentPrompt prompt;
        AllocatingView view;
        const TempFolder folder;
        const std::string fog = folder.write("fog.kez", kScript), other = folder.write("other.kez", kNewer);
        FolderHost host({.project = folder.path(), .suite = folder.path()});
        CustomizeSession session(host, userPrompt());
        session.setListener(&view);
        session.offerScripts({fog, other});
        EXPECT_TRUE(session.open(fog) && session.setValue(2, "mist.tga"));
        prompt.onChanges = way.saves;
        prompt.meanwhile = [&] { EXPECT_GT(painted(session), 0u); };
        bool switched = false;
        const bool inside = stays(
            failing,
            [&] { return switched = way.opens ? bool(session.open(other)) : session.switchTo(other); }, done);
        const bool isOther = session.script().scriptPath == other;
        EXPECT_EQ(session.size(), isOther ? 1u : 3u);
        EXPECT_GT(painted(session), 0u);
        EXPECT_TRUE(isOther || session.script().scriptPath == fog);
        EXPECT_TRUE(switched ? isOther : !inside || prompt.told > 1) << "nobody was told";
        if (way.saves == PromptAnswer::No) {
            EXPECT_TRUE(switched || prompt.last.find("'" + other + "'") != std::string::npos) << prompt.last;
            EXPECT_TRUE(inside || isOther || way.opens) << "the panel goes, though it has its script";
        }
        if (!isOther) {
            EXPECT_EQ(session.row(2).value(), "mist.tga");
            EXPECT_TRUE(session.setValue(1, "7"));
        }
        if (!inside) {
            session.offerUnsaved();
            EXPECT_TRUE(isOther || folder.read("fog.kez.zoka.old") != "<missing>");
        }
        const std::string script = folder.read("fog.kez");
        EXPECT_TRUE(script == kScript || script.find("\"mist.tga\"") != std::string::npos);
        EXPECT_TRUE(!isOther || way.saves == PromptAnswer::No || script != kScript);
        EXPECT_EQ(folder.read("other.kez"), kNewer);
        EXPECT_TRUE(isOther || session.switchTo(other));
        return !inside || !switched;
    });
}

std::string projectText(const TempFolder& folder, const std::string& name) {
    return "<Project name='" + name + "' date='1' vers='8'>\n<Paths proj_file='" + folder.path() +
           "' j8_file=''/>\n<Behavior proj_file='b.xml'/>\n<Level name='street' mapfile='game.zlb'>\n"
           "<Entity name='guard' parent='walker'/>\n</Level>\n</Project>\n";
}

constexpr size_t kMass = 3, kColor = 4;  // rows of the panel below

// A panel on the components of an entity, with two edits that are not saved.
struct ComponentsPanel {
    ComponentsPanel() {
        std::filesystem::current_path(folder.native(""));  // a save leaves its report there
        folder.write("c.xml",
                     "<Components><Component name='body'><Property name='mass' type='int' value='75' "
                     "edit='true'/><Property name='color' type='string' value='red' edit='true'/>"
                     "</Component></Components>");
        folder.write("b.xml",
                     "<Behaviors><Component proj_file='c.xml'/><Behavior name='walker'><Component "
                     "name='body'/></Behavior></Behaviors>");
        folder.write("game.xml", projectText(folder, "Game"));
        panel.emplace(nullptr, host,
                      std::make_unique<EntityComponents>(folder.path("game.xml"), userPrompt()), "guard");
        panel->open();
        EXPECT_TRUE(panel->setValue(kMass, "80") && panel->setValue(kColor, "harbour blue"));
    }
    ~ComponentsPanel() { std::filesystem::current_path(before); }

    const std::filesystem::path before = std::filesystem::current_path();
    TempFolder folder;
    FolderHost host{{.project = folder.path(), .suite = folder.path()}};
    std::optional<BehaviorSession> panel;
};

// Likewise of the components of a project.
TEST(Allocations, UnsavedEditsOfAProjectAreKeptWhicheverFails) {
    struct Way {
        const char* what;
        std::function<bool(BehaviorSession&)> work;
        const char* onDisk = "Game";  // the project's name there, once the panel has loaded it
    };
    const Way kWays[] = {
        {"edit", [](BehaviorSession& panel) { return bool(panel.setValue(kMass, "70")); }},
        {"paste", [](BehaviorSession& panel) { return panel.paste("body.mass = 70").taken == 1; }},
        {"save", [](BehaviorSession& panel) { return panel.save() == SaveResult::Saved; }},
        {"save over another's change",
         [](BehaviorSession& panel) { return panel.save() == SaveResult::Saved; }, "Play"},
    };
    failEach(kWays, [](const Way& way, long failing, bool& done) {
        SilentPrompt prompt;
        ComponentsPanel fixture;
        fixture.folder.write("game.xml", projectText(fixture.folder, way.onDisk));
        const bool thrown = !stays(
            failing, [&] { return way.work(*fixture.panel); }, done);
        EXPECT_GT(painted(*fixture.panel), 0u);
        if (thrown) {
            fixture.panel->offerUnsaved();
            const std::string saved = fixture.folder.read("game.xml");
            EXPECT_TRUE(saved.find("harbour blue") != std::string::npos && !fixture.panel->hasUnsaved())
                << saved;
        }
        return thrown;
    });
}

// Not even for a question: what was put aside is enough.
TEST(Allocations, UnsavedChangesAreKeptWhenNothingAtAllIsLeft) {
    SilentPrompt prompt;
    for (const long left : {1, 500, 5000, 20000}) {
        SCOPED_TRACE(left);
        ComponentsPanel project;
        FolderHost host({.project = project.folder.path(), .suite = project.folder.path()});
        CustomizeSession script(host, userPrompt());
        ASSERT_TRUE(script.open(project.folder.write("fog.kez", kScript)) && script.setValue(2, "mist.tga"));

        prompt.told = 0;
        g_limit = g_bytes + left;
        project.panel->offerUnsaved();
        script.offerUnsaved();
        g_limit = 0;

        EXPECT_GE(prompt.told, 2);
        EXPECT_NE(project.folder.read("game.xml").find("harbour blue"), std::string::npos);
        EXPECT_NE(project.folder.read("fog.kez.zoka.old").find("\nmist.tga\n\n"), std::string::npos);
    }
}

}  // namespace
