// The new-project dialog with four wizards: what opening it costs against its bare windows. The window is the DLL's
// own, opened through the plug-in's procedure. bench_wizard_dialog DLL; prints the figure, what it is measured against,
// the ratio and the ratio wanted.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/win/BareWindows.h"
#include "bench/win/Measure.h"
#include "bench/win/WindowRun.h"
#include "tests/support/TempFolder.h"
#include "ui/win/ControlsContext.h"

namespace zoka::bench {
namespace {

constexpr int kRounds = 25, kWizards = 4;
constexpr int kWizardList = 1501;

std::string wizardText(int number) {
    std::string text = "<Wizard><Title>Wizard " + std::to_string(number) +
                       "</Title><Desc>What it makes.</Desc><Defaults><Name>Game</Name>"
                       "<LevelMap>main</LevelMap></Defaults><Folder name=\"sub\">";
    for (int file = 0; file < 20; ++file) {
        text += "<File name=\"file" + std::to_string(file) + ".kez\" folder=\"start\"/>";
    }
    return text + "</Folder></Wizard>";
}

int run(const std::string& dll) {
    const test::TempFolder folder;
    std::filesystem::create_directories(folder.native("templates/wizards"));
    for (int i = 0; i < kWizards; ++i) {
        folder.write("templates/wizards/w" + std::to_string(i) + ".xml", wizardText(i));
    }
    char before[MAX_PATH] = {};
    double opening = 1e9, bare = 1e9;
    std::unique_ptr<BareWindows> windows;
    {
        PluginEditor host(folder, dll);
        // Below which the wizards are looked for, and the log is written.
        if (GetCurrentDirectoryA(sizeof before, before) == 0 ||
            !SetCurrentDirectoryA(folder.path().c_str())) {
            stop("the suite's folder can't be the current one");
        }

        for (int round = 0; round < kRounds;
             ++round) {  // in turn, so that other work on the machine meets both
            tellRound(round, kRounds);
            const WindowRun opened(host.editor(), "Project Wizard", "New Project", [&windows](HWND window) {
                if (SendMessageA(GetDlgItem(window, kWizardList), LVM_GETITEMCOUNT, 0, 0) != kWizards) {
                    stop("the dialog lists other wizards");
                }
                if (!windows) {
                    windows = std::make_unique<BareWindows>(window);
                }
            });
            best(opening, opened.opening());
            // Of the same release of the system's controls as the dialog's.
            const ControlsContext controls(GetModuleHandleA("zoka.dll"));
            best(bare, millisecondsOf([&windows] { windows->open(); }));
        }
    }
    SetCurrentDirectoryA(before);
    return row("open the new-project dialog", opening,
               "bare, " + std::to_string(windows->count()) + " windows", bare, 1.5)
               ? 0
               : 1;
}

}  // namespace
}  // namespace zoka::bench

int main(int argc, char** argv) {
    return zoka::bench::runWithPlugin(argc, argv, "bench_wizard_dialog", zoka::bench::run);
}
