// KEZ Customize on 1,000 and 20,000 entries: what opening the panel costs against bare child windows, and what
// scrolling and searching cost as entries get more. bench_panel DLL (whose dialog resource is used); prints each
// figure, what it is measured against, the ratio and the ratio wanted.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/win/BareWindows.h"
#include "bench/win/Measure.h"
#include "bench/win/OpenPanel.h"
#include "customize/win/CustomizeDialog.h"
#include "plugin/host/FolderHost.h"
#include "plugin/win/Resources.h"
#include "tests/support/TempFolder.h"
#include "ui/win/WindowKit.h"

namespace zoka::bench {
namespace {

constexpr int kRounds = 7, kPages = 10;
constexpr int kFew = 1000, kMany = 20000;
enum : int { kSearch = 1103, kRows = 1105 };  // the panel's controls
constexpr const char* kSearched = "Speed 99";

std::string script(int entries) {
    static const char* const kKinds[] = {
        "// entry: Speed %d\r\n// id: %d\r\n// cntl: spin 0 500 1\r\nvar v%d = 40;\r\n\r\n",
        "// entry: Share %d\r\n// id: %d\r\n// cntl: slider 0 100 1\r\nvar v%d = 7;\r\n\r\n",
        "// entry: Words %d\r\n// id: %d\r\nstring v%d = \"Good morning\";\r\n\r\n",
        "// entry_drop: Weather %d\r\n// id: %d\r\n// cntl: drop_list clear rain storm\r\nstring v%d = ",
        "\"rain\";\r\n\r\n",
        "// entry: Picture %d\r\n// id: %d\r\nbmap v%d = <sky.bmp>;\r\n\r\n"};
    std::string text;
    char one[200];
    for (int i = 1; i <= entries; ++i) {
        std::snprintf(one, sizeof one, kKinds[i % 5], i, i, i);
        text += one;
    }
    return text;
}

class Panel : public OpenPanel<CustomizeDialog> {
public:
    Panel(ZunEditorInterface& editor, const std::string& path, HINSTANCE dll)
        : OpenPanel({editor, path, {}, dll, IDI_ZOKA}, dll) {}
    void toFront() {
        SetWindowPos(window(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
        settle(window());
    }
    void page() {
        SendMessageA(control(window(), kRows), WM_VSCROLL, SB_PAGEDOWN, 0);
        settle(window());
    }
    void search(const std::string& text) {
        SetWindowTextA(control(window(), kSearch), text.c_str());
        settle(window());
    }
};

int run(const std::string& dllPath) {
    const HINSTANCE dll = resourcesOf(dllPath);
    const test::TempFolder folder;
    folder.write("few.kez", script(kFew));
    folder.write("many.kez", script(kMany));
    FolderHost editor(
        {.project = folder.path(), .suite = "C:\\suite", .mainScript = "C:\\project\\main.kez"});

    double few = 1e9, many = 1e9, bare = 1e9, seen = 1e9;
    double pagedFew = 1e9, pagedMany = 1e9, searched = 1e9;
    std::unique_ptr<BareWindows> all, visible;
    size_t windows = 0;
    for (int round = 0; round < kRounds; ++round) {  // in turn, so that other work on the machine meets all
        tellRound(round, kRounds);
        {
            Panel small(editor, folder.path("few.kez"), dll), large(editor, folder.path("many.kez"), dll);
            best(few, millisecondsOf([&] { small.open(); }));
            best(many, millisecondsOf([&] { large.open(); }));
            if (!all) {
                all = std::make_unique<BareWindows>(small.window());
                visible = std::make_unique<BareWindows>(small.window());
                all->growTo(kFew);
                windows = all->count();
            }
            for (int i = 0; i < kPages; ++i) {
                small.toFront();
                best(pagedFew, millisecondsOf([&] { small.page(); }));
                large.toFront();
                best(pagedMany, millisecondsOf([&] { large.page(); }));
            }
            best(searched, millisecondsOf([&] { large.search(kSearched); }));
        }
        best(seen, millisecondsOf([&] { visible->open(); }));
        best(bare, millisecondsOf([&] { all->open(); }));
    }
    const std::string those = "bare, " + std::to_string(windows) + " windows";
    bool met = row("open the panel on 1,000 entries", few, those, bare, 1.3);
    met = row("open the panel on 20,000 entries", many, "1,000 entries", few, 1.5) && met;
    met = row("a page down, 20,000 entries", pagedMany, "1,000 entries", pagedFew, 1.5) && met;
    met = row("a search, 20,000 entries", searched, "opening 1,000 entries", few, 1.0) && met;
    // Without a wish: besides making these windows, opening reads the script and asks for its text's sizes, while a
    // page shows its rows in windows that others have left.
    std::printf("against the bare windows in sight (%.2f ms): opening %.2f times, a page down %.2f times\n",
                seen, few / seen, pagedMany / seen);
    return met ? 0 : 1;
}

}  // namespace
}  // namespace zoka::bench

int main(int argc, char** argv) {
    return zoka::bench::runWithPlugin(argc, argv, "bench_panel", zoka::bench::run);
}
