// J8 projects: loading against pugixml's parse of the same files, growth, saving against a flushed copy.
#include <unistd.h>

#include <malloc.h>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "J8ProjectManager/ProjectSession.h"
#include "bench/ProjectData.h"
#include "bench/Ratio.h"
#include "tests/support/TempFolder.h"
#include "util/DebugLog.h"
#include "util/OsFiles.h"

namespace zoka::bench {
namespace {

constexpr int kRounds = 7;
std::vector<std::string> filesOf(const test::TempFolder& folder, const std::string& name) {
    std::vector<std::string> files;
    for (const std::string& each : folder.names()) {
        if (each.starts_with(name)) {
            files.push_back(folder.native(each).string());
        }
    }
    return files;
}

// `memory` Fresh: what was freed before goes back to the system, so that the load works in pages that are new to it, as
// every page of a load is that needs more than there ever was.
enum class Memory { AsItIs, Fresh };

double loadTime(const std::string& path, size_t entities, Memory memory = Memory::AsItIs) {
    CJ8ProjectManager project;
    if (memory == Memory::Fresh) {
        malloc_trim(0);
    }
    const double time = millisecondsOf([&] {
        if (!project.LoadFromXML(path, false)) {
            std::abort();
        }
    });
    size_t found = 0;
    for (const CJ8LevelData& level : project.m_apLevels) {
        found += level.m_entities.size();
    }
    if (found != entities) {
        std::abort();
    }
    return time;
}

double pugixmlTime(const std::vector<std::string>& files, Memory memory = Memory::AsItIs) {
    if (memory == Memory::Fresh) {
        malloc_trim(0);
    }
    return millisecondsOf([&] {
        std::vector<pugi::xml_document> documents(files.size());
        for (size_t i = 0; i < files.size(); ++i) {
            if (!documents[i].load_file(files[i].c_str())) {
                std::abort();
            }
        }
    });
}

void benchLoading(const test::TempFolder& folder) {
    writeProject(folder, "large", 50, 200, 1000, 10000);
    const std::vector<std::string> files = filesOf(folder, "large");
    const Pair times = leastOf(
        kRounds, [&] { return loadTime(folder.path("large.xml"), 10000); },
        [&] { return pugixmlTime(files); });
    printRatio("load 50 x 200 entities, 10,000 components", times, "pugixml parses the files", 1.5);

    const auto held = [] { return static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd) / 1e6; };
    const double before = held();
    std::vector<XMLNode> trees;
    for (const std::string& name : folder.names()) {
        trees.push_back(XMLNode::parseFile(folder.path(name).c_str()));
    }
    const double ofTrees = held() - before;
    trees.clear();
    trees.shrink_to_fit();
    const double without = held();
    CJ8ProjectManager project;
    if (!project.LoadFromXML(folder.path("large.xml"), false)) {
        std::abort();
    }
    const double ratio = (held() - without) / ofTrees;
    std::printf(
        "memory of the model %.1f MB, of our trees of its files %.1f MB, ratio %.2f  wanted <= 2.00  %s\n",
        held() - without, ofTrees, ratio, verdict(ratio <= 2));

    writeProject(folder, "small", 5, 1000, 0, 0);
    writeProject(folder, "huge", 500, 1000, 0, 0);
    const auto growthOf = [](const std::function<double()>& huge, const std::function<double()>& small) {
        return leastOf(
            3, [&] { return huge() / 100; },
            [&] {
                double sum = 0;
                for (int i = 0; i < 20; ++i) {
                    sum += small();
                }
                return sum / 20;
            });
    };
    const auto growthOfLoading = [&](Memory memory) {
        return growthOf([&] { return loadTime(folder.path("huge.xml"), 500000, memory); },
                        [&] { return loadTime(folder.path("small.xml"), 5000, memory); });
    };
    // In memory that is new to both, as it is to whoever opens a project. A small one that is loaded for the twentieth
    // time works in pages that are still in the processor's cache, which says nothing of our growth.
    const Pair growth = growthOfLoading(Memory::Fresh);
    const Pair warm = growthOfLoading(Memory::AsItIs);
    const std::vector<std::string> huge = {folder.native("huge.xml").string()};
    const std::vector<std::string> small = {folder.native("small.xml").string()};
    const auto growthOfPugixml = [&](Memory memory) {
        return growthOf([&] { return pugixmlTime(huge, memory); },
                        [&] { return pugixmlTime(small, memory); });
    };
    const Pair theirs = growthOfPugixml(Memory::Fresh), theirsWarm = growthOfPugixml(Memory::AsItIs);
    printRatio("load 500,000 entities, for each 5,000", growth, "load 5,000 entities", 1.2);
    std::printf(
        "    (pugixml's parse, which is linear: %.2f; in memory that was used before, ours %.2f, pugixml's "
        "%.2f)\n",
        theirs.ours / theirs.other, warm.ours / warm.other, theirsWarm.ours / theirsWarm.other);
}

void benchSaving(const test::TempFolder& folder) {
    CJ8ProjectManager project;
    if (!project.LoadFromXML(folder.path("large.xml"), false)) {
        std::abort();
    }
    project.setProjectFile(folder.path("saved.xml"));
    const Pair times = leastOf(
        kRounds,
        [&] {
            return millisecondsOf([&] {
                if (!project.SaveProjectXML(StepReport())) {
                    std::abort();
                }
            });
        },
        [&] {
            return millisecondsOf([&] {
                const auto bytes = osFiles().readWhole(folder.path("saved.xml"));
                const auto copy = osFiles().openForWriting(folder.path("copy.xml"), OsOpen::Truncate);
                if (!bytes || !copy || !copy->write(*bytes) || !copy->flush() || !copy->close()) {
                    std::abort();
                }
            });
        });
    printRatio("save 10,000 entities", times, "flushed copy of the file", 2.0);
}

}  // namespace
}  // namespace zoka::bench

int main() {
    zoka::debugLogFileName().clear();
    const zoka::test::TempFolder folder;
    zoka::bench::benchLoading(folder);
    zoka::bench::benchSaving(folder);
    return zoka::bench::g_allMet ? 0 : 1;
}
