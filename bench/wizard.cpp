// Project wizards: listing them against pugixml's parse of the same files, making a project against cp -r of the tree.
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <pugixml.hpp>
#include <string>

#include "J8ProjectManager/J8ProjectManager.h"
#include "J8ProjectWizard/J8Wizard.h"
#include "bench/Ratio.h"
#include "tests/support/TempFolder.h"
#include "util/DebugLog.h"
#include "util/OsFiles.h"

namespace zoka::bench {
namespace {

constexpr int kRounds = 7, kWizards = 500, kFiles = 5000;
std::string wizardText(int number) {
    std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<Wizard>\n\t<Title>Wizard " +
                       std::to_string(number) +
                       "</Title>\n\t<Desc>What it makes.</Desc>\n\t<Defaults>\n\t\t<Name>Game</Name>\n"
                       "\t\t<LevelMap>main</LevelMap>\n\t</Defaults>\n";
    for (int folder = 0; folder < 10; ++folder) {
        text += "\t<Folder name=\"folder" + std::to_string(folder) + "\">\n";
        for (int file = 0; file < 10; ++file) {
            text += "\t\t<File name=\"file" + std::to_string(file) + ".kez\" folder=\"start\"/>\n";
        }
        text += "\t</Folder>\n";
    }
    return text + "</Wizard>\n";
}

void benchListing() {
    const test::TempFolder suite;
    std::filesystem::create_directories(suite.native("templates/wizards"));
    for (int i = 0; i < kWizards; ++i) {
        suite.write("templates/wizards/w" + std::to_string(i) + ".xml", wizardText(i));
    }
    osFiles().setCurrentFolder(suite.path());
    const Pair times = leastOf(
        kRounds,
        [] {
            return millisecondsOf([] {
                if (CJ8Wizard().titles().size() != kWizards) {
                    std::abort();
                }
            });
        },
        [&suite] {
            return millisecondsOf([&suite] {
                for (const auto& entry :
                     std::filesystem::directory_iterator(suite.native("templates/wizards"))) {
                    pugi::xml_document document;
                    if (!document.load_file(entry.path().c_str())) {
                        std::abort();
                    }
                }
            });
        });
    printRatio("list 500 wizards", times, "pugixml parses the files", 1.5);
}

// Milliseconds of the processor, the system's work for it included, that this program or its children have taken.
double processorTime(int whose) {
    rusage used{};
    getrusage(whose, &used);
    const auto ms = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return ms(used.ru_utime) + ms(used.ru_stime);
}

// As one folder and as a hundred.
void benchCreation(int folders) {
    const test::TempFolder suite;
    const auto templates = suite.native("templates");
    std::filesystem::create_directories(templates / "wizards");
    std::filesystem::create_directories(templates / "xml");
    std::string wizard = "<Wizard><Title>Large</Title><Defaults><LevelMap>main</LevelMap></Defaults>";
    for (int folder = 0; folder < folders; ++folder) {
        const std::string name = "f" + std::to_string(folder);
        std::filesystem::create_directories(templates / "tree" / name);
        wizard += "<Folder name=\"" + name + "\">";
        for (int file = 0; file < kFiles / folders; ++file) {
            const std::string own = std::to_string(file) + ".kez";
            suite.write("templates/tree/" + name + "/" + own, std::string(2000, 'x'));
            wizard += "<File name=\"" + own + "\" folder=\"tree\\" + name + "\"/>";
        }
        wizard += "</Folder>";
    }
    suite.write("templates/wizards/large.xml", wizard + "</Wizard>");
    osFiles().setCurrentFolder(suite.path());
    const CJ8Wizard wizards;
    const auto made = suite.native("made");
    const std::string copy = "cp -r '" + (templates / "tree").string() + "' '" + made.string() + "'";
    // Making files waits for the disk so unevenly that the clock's ratio differs much from run to run; the processor's
    // does not.
    Pair processor{1e18, 1e18};
    const auto measured = [&made](int whose, double& least, const auto& make) {
        const double before = processorTime(whose);
        const double time = millisecondsOf(make);
        least = std::min(least, processorTime(whose) - before);
        std::filesystem::remove_all(made);
        return time;
    };
    const Pair clock = leastOf(
        kRounds,
        [&] {
            CJ8WizardUserData data;
            data.m_strName = "Large";
            data.m_strLevelMap = "main";
            data.m_strProjectFolder = suite.path("made");
            return measured(RUSAGE_SELF, processor.ours, [&] {
                if (wizards.Run(data, 0) != 0) {
                    std::abort();
                }
            });
        },
        [&] {
            return measured(RUSAGE_CHILDREN, processor.other, [&copy] {
                if (std::system(copy.c_str()) != 0) {
                    std::abort();
                }
            });
        });
    const std::string what =
        folders == 1 ? "make 5,000 files in one folder" : "make 5,000 files in 100 folders";
    printRatio(what.c_str(), clock, "cp -r of the same tree", 1.2);
    printRatio((what + ", processor time").c_str(), processor, "cp -r of the same tree", 1.2);
}

}  // namespace
}  // namespace zoka::bench

int main() {
    zoka::debugLogFileName().clear();
    zoka::bench::benchListing();
    zoka::bench::benchCreation(100);
    zoka::bench::benchCreation(1);
    return zoka::bench::g_allMet ? 0 : 1;
}
