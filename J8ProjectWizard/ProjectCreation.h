// Carrying out a creation plan.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "J8ProjectManager/StepReport.h"
#include "J8ProjectWizard/CreationPlan.h"
#include "J8ProjectWizard/J8Wizard.h"

namespace zoka {

enum class CopyEnd { Done, Nameless, Cancelled };

// One run. The arguments outlive it. [editor thread]
class ProjectCreation {
public:
    ProjectCreation(const CreationPlan& plan, CJ8WizardUserData& data, const StepReport& report,
                    const CreationWatch& watch);
    // Makes folders, copies files, then fills in and saves the project file. 0 or a WizardCode.
    int run();

private:
    int refuseExisting();
    int refusePlan();
    int makeProjectFolder();
    int makeFolder(const PlannedFolder& folder);
    bool copySet(const PlannedSet& set, std::initializer_list<const char*> keys, const char* noneKey,
                 const char* lastFailed);
    int saveProject();
    int fail(int code, const char* key, const std::string& folder, const std::string& message);
    // False when the user stopped it before that file below the project folder.
    bool mayContinueWith(const std::string& target);

    const CreationPlan& m_plan;
    CJ8WizardUserData& m_data;
    const StepReport& m_report;
    JobProgress* m_progress;
    CreationRecord m_ownRecord;
    CreationRecord& m_record;
    std::string m_root;  // the project folder with its separator
    size_t m_done = 0;
    size_t m_total = 0;
};

// Copies files to their targets below `root`, which ends with a separator, up to the first without a name or the first
// that `mayContinue` is against. A copy that fails is told to the debug log.
CopyEnd copyPlannedFiles(const std::string& root, const std::vector<PlannedFile>& files,
                         CreationRecord& record, const std::function<bool(const std::string&)>& mayContinue);

}  // namespace zoka
