// Entity Behavior on an action with a row for every skill and flag: what opening the panel costs against bare child
// windows, on one entity and on 200 selected ones, and what an edit to 200 costs. bench_behavior_panel DLL (whose
// dialog resource is used); prints each figure, what it is measured against, the ratio and the ratio wanted.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "bench/Entities.h"
#include "bench/win/BareWindows.h"
#include "bench/win/Measure.h"
#include "bench/win/OpenPanel.h"
#include "customize/win/BehaviorDialog.h"
#include "plugin/host/FolderHost.h"
#include "plugin/win/Resources.h"
#include "tests/support/TempFolder.h"

namespace zoka::bench {
namespace {

constexpr int kRounds = 25, kMany = 200;
constexpr double kEditWanted = 20;  // ms

// Chooses an item, as a user does; the first one stands for values that differ.
void choose(HWND list, int item) {
    SendMessageA(list, CB_SETCURSEL, static_cast<WPARAM>(item), 0);
    const auto id = static_cast<WPARAM>(GetDlgCtrlID(list));
    SendMessageA(GetParent(list), WM_COMMAND, id | CBN_SELCHANGE << 16, reinterpret_cast<LPARAM>(list));
}

int run(const std::string& dllPath) {
    const HINSTANCE dll = resourcesOf(dllPath);
    const test::TempFolder folder;
    const std::string script = folder.write("a.kez", actionText());
    FolderHost editor(
        {.project = folder.path(), .suite = "C:\\suite", .mainScript = "C:\\project\\main.kez"});
    Entities one(1, script), many(kMany, script);

    double first = 1e9, ofMany = 1e9, bare = 1e9, seen = 1e9, edited = 1e9;
    std::unique_ptr<BareWindows> all, visible;
    size_t windows = 0;
    for (int round = 0; round < kRounds; ++round) {  // in turn, so that other work on the machine meets all
        tellRound(round, kRounds);
        {
            OpenPanel<BehaviorDialog> panel({&one, editor, dll, IDI_ZOKA}, dll);
            best(first, millisecondsOf([&] { panel.open(); }));
            if (!all) {
                all = std::make_unique<BareWindows>(panel.window());
                visible = std::make_unique<BareWindows>(panel.window());
                all->growTo(kActionRows);
                windows = all->count();
            }
        }
        best(bare, millisecondsOf([&] { all->open(); }));
        best(seen, millisecondsOf([&] { visible->open(); }));
        {
            OpenPanel<BehaviorDialog> panel({&many, editor, dll, IDI_ZOKA}, dll);
            best(ofMany, millisecondsOf([&] { panel.open(); }));
            const HWND list = control(panel.window(), 0, "ComboBox");
            const std::uint32_t before = *many.changes();
            best(edited, millisecondsOf([&] {
                     choose(list, 1 + round % 2);
                     settle(panel.window());
                 }));
            if (*many.changes() != before + kMany) {
                stop("the edit did not reach the entities");
            }
        }
    }
    const std::string rows = std::to_string(kActionRows) + " rows";
    bool met =
        row("open the panel on " + rows, first, "bare, " + std::to_string(windows) + " windows", bare, 1.5);
    met = row("on 200 selected entities", ofMany, "on one", first, 1.3) && met;
    met = row("an edit to 200 entities", edited, "what is wanted", kEditWanted, 1.0) && met;
    std::printf("against the bare windows in sight (%.2f ms): opening %.2f times\n", seen, first / seen);
    return met ? 0 : 1;
}

}  // namespace
}  // namespace zoka::bench

int main(int argc, char** argv) {
    return zoka::bench::runWithPlugin(argc, argv, "bench_behavior_panel", zoka::bench::run);
}
