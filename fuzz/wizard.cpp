// A wizard's definition from the fuzzer's bytes: whatever it names, no path that the plan would make leaves the project
// folder, and none that it would read leaves the templates.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "J8ProjectWizard/CreationPlan.h"
#include "J8ProjectWizard/PlanTree.h"
#include "util/PathRules.h"
#include "xml/XMLRead.h"

namespace {

// Whether a path stays in `root`, which ends with a separator, as the system reads it.
void mustStay(const std::string& root, const std::string& path) {
    const std::string normal = zoka::normalizePath(root + path);
    if (!normal.starts_with(root) || normal.find(':', 2) != normal.npos) {
        std::fprintf(stderr, "leaves %s: %s\n", root.c_str(), path.c_str());
        std::abort();
    }
}

void mustStay(const zoka::PlannedFile& file, const std::string& refusal) {
    if (file.source.empty() || !file.refusal.empty() || !refusal.empty()) {
        return;
    }
    mustStay("C:\\games\\g\\", file.target);
    mustStay("C:\\suite\\templates\\", file.source.substr(std::string(zoka::kTemplatesRoot).size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const XMLNode wizard = XMLNode::parseBytes(bytes, "Wizard");
    if (wizard.isEmpty()) {
        return 0;
    }
    const zoka::CreationPlan plan =
        zoka::planCreation(wizard, zoka::xmlFirstText(wizard.getChild("Defaults").getChild("LevelMap")));
    for (const zoka::PlannedFolder& folder : plan.folders) {
        if (folder.isNameless || !folder.refusal.empty()) {
            continue;
        }
        // "./." is the project folder itself; "..\g" leaves it, though it comes back.
        const bool climbs = folder.name.find("..") != folder.name.npos;
        mustStay("C:\\games\\g\\", climbs ? folder.name : zoka::withSeparator(folder.name));
        for (const zoka::PlannedFile& file : folder.files) {
            mustStay(file, {});
        }
    }
    for (const zoka::PlannedFile& file : plan.level.files) {
        mustStay(file, plan.level.refusal + plan.levelRefusal);
    }
    for (const zoka::PlannedFile& file : plan.projectFiles.files) {
        mustStay(file, plan.projectFiles.refusal);
    }
    const zoka::PlanTree tree(plan);
    for (const zoka::PlanRow& row : tree.rows()) {
        tree.problem(row, "C:\\games\\g");
    }
    tree.firstProblem("C:\\games\\g");
    return 0;
}
