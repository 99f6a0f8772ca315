#include "tests/wizard/Checks.h"

#include "J8ProjectWizard/J8Wizard.h"
#include "J8ProjectWizard/PlanTree.h"
#include "util/PathRules.h"
#include "xml/XMLRead.h"

namespace zoka::test {
namespace {

constexpr const char* kProject = "C:\\games\\g\\";
constexpr const char* kTemplates = "C:\\suite\\templates\\";

class Stays {
public:
    // Whether a path stays in `root`, which ends with a separator, as the system reads it.
    void path(const std::string& root, const std::string& path) {
        const std::string normal = normalizePath(root + path);
        if (!normal.starts_with(root) || normal.find(':', 2) != normal.npos) {
            m_fault = "leaves " + root + ": " + path;
        }
    }
    void file(const PlannedFile& file, const std::string& refusal) {
        if (file.source.empty() || !file.refusal.empty() || !refusal.empty()) {
            return;
        }
        path(kProject, file.target);
        path(kTemplates, file.source.substr(std::string(kTemplatesRoot).size()));
    }
    const std::string& fault() const { return m_fault; }

private:
    std::string m_fault;
};

}  // namespace

std::string planFault(const CreationPlan& plan) {
    Stays stays;
    for (const PlannedFolder& folder : plan.folders) {
        if (folder.isNameless || !folder.refusal.empty()) {
            continue;
        }
        // "./." is the project folder itself; "..\g" leaves it, though it comes back.
        const bool climbs = folder.name.find("..") != folder.name.npos;
        stays.path(kProject, climbs ? folder.name : withSeparator(folder.name));
        for (const PlannedFile& file : folder.files) {
            stays.file(file, {});
        }
    }
    for (const PlannedFile& file : plan.level.files) {
        stays.file(file, plan.level.refusal + plan.levelRefusal);
    }
    for (const PlannedFile& file : plan.projectFiles.files) {
        stays.file(file, plan.projectFiles.refusal);
    }
    const PlanTree tree(plan);
    for (const PlanRow& row : tree.rows()) {
        tree.problem(row, "C:\\games\\g");
    }
    tree.firstProblem("C:\\games\\g");
    return stays.fault();
}

std::string planFault(std::string_view bytes, size_t* plans) {
    const XMLNode wizard = XMLNode::parseBytes(bytes, "Wizard");
    if (wizard.isEmpty()) {
        return {};
    }
    static const CJ8WizardUserData empty;  // which looks for a folder
    CJ8WizardUserData data = empty;
    std::string description;
    wizardDesc(description, wizard);
    takeWizardDefaults(data, wizard);
    if (plans) {
        ++*plans;
    }
    return planFault(planCreation(wizard, data.m_strLevelMap));
}

}  // namespace zoka::test
