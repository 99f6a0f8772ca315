// Entity Behavior without its window, on one entity and on 200: showing them, an edit to all of them, its undo, a look
// at the host; the same of the components that a project gives them.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/Entities.h"
#include "bench/Ratio.h"
#include "customize/BehaviorSession.h"
#include "plugin/host/FolderHost.h"
#include "tests/support/TempFolder.h"
#include "util/DebugLog.h"
#include "util/UserPrompt.h"

namespace zoka::bench {
namespace {

constexpr int kRounds = 101, kMany = 200;
constexpr double kEditWanted = 20;  // ms

[[noreturn]] void stop(const std::string& why) {
    std::fprintf(stderr, "bench: %s\n", why.c_str());
    std::exit(1);
}

// A level of 2,000 entities, each with two components, of which 20 properties can be edited.
void writeProject(const test::TempFolder& folder) {
    std::string components = "<Components>";
    for (const char* name : {"body", "light"}) {
        components += std::string("<Component name='") + name + "'>";
        for (int i = 0; i < 10; ++i) {
            components += "<Property name='p" + std::to_string(i) + "' type='float' value='1' edit='true'/>";
        }
        components += "</Component>";
    }
    folder.write("c.xml", components + "</Components>");
    folder.write(
        "b.xml",
        "<Behaviors><Component proj_file='c.xml'/><Behavior name='b'><Component name='body'/><Component "
        "name='light'/></Behavior></Behaviors>");
    std::string project = "<Project name='Game' date='1' vers='8'><Paths proj_file='" + folder.path() +
                          "' j8_file=''/><Behavior proj_file='b.xml'/><Level name='l' mapfile='main.zlb'>";
    for (int i = 0; i < 2000; ++i) {
        project += "<Entity name='e" + std::to_string(i) +
                   "' parent='b'><Component name='body'><Edit name='p0' value='" + std::to_string(i % 3) +
                   "'/></Component></Entity>";
    }
    folder.write("main.xml", project + "</Level></Project>");
}

size_t rowNamed(const BehaviorSession& panel, const std::string& label) {
    for (size_t i = 0; i < panel.size(); ++i) {
        if (panel.row(i).facts().label == label) {
            return i;
        }
    }
    stop("no row " + label);
}

// Edits of one row, each followed by its undo.
void measureEdit(BehaviorSession& panel, const std::string& label, const std::string& what) {
    const size_t row = rowNamed(panel, label);
    int round = 0;
    const auto edit = [&] {
        const Outcome set = panel.setValue(row, std::to_string(round++ % 2));
        if (!set || panel.row(row).isDifferent()) {
            stop(label + ": " + set.why());
        }
    };
    const auto undo = [&] {
        if (!panel.undo() || !panel.row(row).isDifferent()) {
            stop(label + " is not undone");
        }
    };
    const Pair times = leastOf(
        kRounds, [&] { return millisecondsOf(edit); }, [&] { return millisecondsOf(undo); });
    printRatio(what.c_str(), {times.ours, kEditWanted}, "what is wanted", 1.0);
    printRatio((what + ", undone").c_str(), {times.other, kEditWanted}, "what is wanted", 1.0);
}

int run() {
    const test::TempFolder folder;
    closeDebugLog();
    debugLogFileName() = folder.path("log.xml");
    const std::string script = folder.write("a.kez", actionText());
    writeProject(folder);
    FolderHost editor(
        {.project = folder.path(), .suite = "C:\\suite", .mainScript = "C:\\project\\main.kez"});
    Entities one(1, script), many(kMany, script);
    BehaviorSession alone(&one, editor), all(&many, editor);
    const auto componentsOf = [&] {
        return std::make_unique<EntityComponents>(folder.path("main.xml"), userPrompt());
    };
    BehaviorSession withComponents(&many, editor, componentsOf(), "e0");
    withComponents.open();

    const Pair opening = leastOf(
        kRounds, [&] { return millisecondsOf([&] { all.open(); }); },
        [&] { return millisecondsOf([&] { alone.open(); }); });
    std::printf("%-44s %9.2f ms  %-24s %9.2f ms\n", "rows of 200 entities", opening.ours, "of one",
                opening.other);
    const Pair looking = leastOf(
        kRounds, [&] { return millisecondsOf([&] { all.refresh(true); }); },
        [&] { return millisecondsOf([&] { withComponents.refresh(true); }); });
    std::printf("%-44s %9.2f ms  %-24s %9.2f ms\n", "a look at 200 entities", looking.ours, "with components",
                looking.other);
    measureEdit(all, "Value_1", "a skill of 200 entities");
    measureEdit(all, "Switch_1", "a flag of 200 entities");
    measureEdit(withComponents, "p0", "a component's value of 200 entities");
    closeDebugLog();
    return g_allMet ? 0 : 1;
}

}  // namespace
}  // namespace zoka::bench

int main() {
    return zoka::bench::run();
}
