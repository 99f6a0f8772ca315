#include "J8ProjectWizard/ProjectCreation.h"

#include "J8ProjectManager/J8ProjectManager.h"
#include "J8ProjectWizard/WizardLog.h"
#include "util/Doors.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "xml/XMLRead.h"

namespace zoka {
namespace {

constexpr const char* kNothingToCopy = "No files to copy.";

}  // namespace

ProjectCreation::ProjectCreation(const CreationPlan& plan, CJ8WizardUserData& data, const StepReport& report,
                                 const CreationWatch& watch)
    : m_plan(plan),
      m_data(data),
      m_report(report),
      m_progress(watch.progress),
      m_record(watch.record ? *watch.record : m_ownRecord),
      m_root(withSeparator(data.m_strProjectFolder)) {
    for (const PlannedFolder& folder : plan.folders) {
        m_total += folder.files.size();
    }
    m_total += plan.level.files.size() + plan.projectFiles.files.size();
}

int ProjectCreation::fail(int code, const char* key, const std::string& folder, const std::string& message) {
    m_data.m_strMessage = message;
    m_report.add(key, xmlFromPath(folder));
    return code;
}

bool ProjectCreation::mayContinueWith(const std::string& target) {
    if (mayContinue(m_progress, m_done++, m_total, "Copying " + target)) {
        return true;
    }
    m_report.add("Cancelled", xmlFromPath(m_root + target));
    return false;
}

int ProjectCreation::run() {
    for (const auto step : {&ProjectCreation::refuseExisting, &ProjectCreation::refusePlan,
                            &ProjectCreation::makeProjectFolder}) {
        if (const int code = (this->*step)(); code < 0) {
            return code;
        }
    }
    for (const PlannedFolder& folder : m_plan.folders) {
        if (folder.isNameless) {
            continue;
        }
        if (const int code = makeFolder(folder); code < 0) {
            return code;
        }
    }
    if (!copySet(m_plan.level, {"CopyZLM", "CopyZLB", "CopyZUN"}, "CopyZLB", nullptr) ||
        !copySet(m_plan.projectFiles, {"CopyC", "CopyKEZ", "CopyXml"}, "J8ProjectFiles", "ErrCopyXml")) {
        return kWizardCancelled;
    }
    return saveProject();
}

int ProjectCreation::refuseExisting() {
    const std::string& folder = m_data.m_strProjectFolder;
    return osFiles().kindOf(folder) == OsKind::Missing
               ? kWizardDone
               : fail(kWizardFolderExists, "ErrOverwrite", folder, folder);
}

// Before anything is made, so that a wizard whose names lead elsewhere leaves no trace.
int ProjectCreation::refusePlan() {
    const PlanRefusal refusal = firstRefusal(m_plan, m_data.m_strProjectFolder);
    if (refusal.text.empty()) {
        return kWizardDone;
    }
    return refusal.isFolder ? fail(kWizardNoFolder, "ErrCreateDir", refusal.path, refusal.path)
                            : fail(kWizardNoCopy, "ErrCopyFiles", m_root, refusal.path);
}

int ProjectCreation::makeProjectFolder() {
    const std::string& folder = m_data.m_strProjectFolder;
    if (!m_record.makeNewFolder(folder)) {
        return fail(kWizardFolderExists, "ErrOverwrite", folder, folder);
    }
    m_report.add("CreateDir", xmlFromPath(folder));
    return kWizardDone;
}

int ProjectCreation::makeFolder(const PlannedFolder& folder) {
    const std::string path = m_root + folder.name;
    if (osFiles().kindOf(path) != OsKind::Folder) {
        if (!m_record.makeFolders(path)) {
            return fail(kWizardNoFolder, "ErrCreateDir", path, path);
        }
        m_report.add("CreateDir", xmlFromPath(path));
    }
    const std::string target = withSeparator(path);
    switch (copyPlannedFiles(m_root, folder.files, m_record,
                             [this](const std::string& file) { return mayContinueWith(file); })) {
        case CopyEnd::Nameless:
            return fail(kWizardNoCopy, "ErrCopyFiles", target, target);
        case CopyEnd::Cancelled:
            return kWizardCancelled;
        case CopyEnd::Done:
            break;
    }
    m_report.add("CopyFiles", xmlFromPath(target));
    return kWizardDone;
}

// The keys are those of the files in turn; `lastFailed` that of a last file that can't be copied, if that is
// told. False when the user stopped it.
bool ProjectCreation::copySet(const PlannedSet& set, std::initializer_list<const char*> keys,
                              const char* noneKey, const char* lastFailed) {
    if (!set.isDeclared) {
        m_report.add(noneKey, kNothingToCopy);
        return true;
    }
    const std::string base = xmlFromPath(m_root + set.target);
    const char* const* key = keys.begin();
    for (const PlannedFile& file : set.files) {
        const std::string target = m_root + file.target;
        if (!mayContinueWith(file.target)) {
            return false;
        }
        m_report.add(*key++, base);
        if (!m_record.copyFile(file.source, target) && key == keys.end() && lastFailed) {
            m_report.add(lastFailed, base);
        }
    }
    return true;
}

int ProjectCreation::saveProject() {
    const std::string file = m_root + m_plan.projectFile;
    CJ8ProjectManager* const project = CJ8ProjectManager::Instance();
    if (!project) {
        return fail(kWizardNoManager, "ErrLoadingProjectXml", m_plan.loadsProjectFile ? file : "",
                    m_data.m_strMessage);
    }
    project->Clear();
    project->m_roots.setProject(xmlFromPath(m_root));
    m_report.add("ProjectPath", project->m_roots.project());
    project->m_roots.setData(xmlFromPath(m_data.m_strTemplatesPath));
    m_report.add("DataPath", project->m_roots.data());
    project->m_name = m_data.m_strName;
    project->m_date = m_data.m_strDate;
    project->m_report += m_data.m_strDocs;
    // Whether it can be loaded doesn't matter: what the user decided is saved in any case.
    project->LoadFromXML(m_plan.loadsProjectFile ? file : std::string(), true);
    project->setProjectFile(file);
    if (!project->m_apLevels.empty()) {
        CJ8LevelData& level = project->m_apLevels.front();
        level.m_name = m_data.m_strLevelName;
        level.m_doc = m_data.m_strLevelDocs;
        level.m_mapFile.Set((m_data.m_strLevelMap.empty() ? "map" : m_data.m_strLevelMap) + ".zlb",
                            CJ8File::kProjFile);
    }
    if (const zoka::SafeWriteResult saved = project->SaveProjectXML(m_report.group("SaveProjectXml"));
        !saved) {
        m_data.m_strMessage = saved.why();
        return kWizardNotSaved;
    }
    m_record.fileWritten(file);
    return kWizardDone;
}

CopyEnd copyPlannedFiles(const std::string& root, const std::vector<PlannedFile>& files,
                         CreationRecord& record, const std::function<bool(const std::string&)>& mayContinue) {
    constexpr const char* kName = "CopyFiles()";
    for (const PlannedFile& file : files) {
        if (file.source.empty()) {
            logWizardError(kName, "No filename!");
            return CopyEnd::Nameless;
        }
        const std::string to = root + file.target;
        if (!mayContinue(file.target)) {
            return CopyEnd::Cancelled;
        }
        // A name that leads elsewhere was refused before; here it is the last door.
        if (file.refusal.empty() && record.copyFile(file.source, to)) {
            continue;
        }
        logWizardError(kName, "Throw while trying to copy from", file.source);
        logWizardError(kName, "Throw while trying to copy to", to);
    }
    return CopyEnd::Done;
}

}  // namespace zoka

using namespace zoka;

int CJ8Wizard::Run(CJ8WizardUserData& data, unsigned index, const CreationWatch& watch) const {
    const StepReport report = StepReport::start("WizardDebug", "Run");
    int code = kWizardNotSaved;  // also where memory runs out, so that what was made can be removed
    try {
        code = CreateProject(data, index, report, watch);
    } catch (const OutOfMemory& out) {
        data.m_strMessage = outOfMemoryText(out.file());
    } catch (const std::bad_alloc&) {
        data.m_strMessage = outOfMemoryText({});
    }
    if (code >= 0) {
        report.markSucceeded();
    }
    report.write(kWizardReport);
    return code;
}

int CJ8Wizard::CreateProject(CJ8WizardUserData& data, unsigned index, const StepReport& report,
                             const CreationWatch& watch) const {
    if (index >= m_paths.size()) {
        data.m_strMessage.clear();
        report.add("ErrPath");
        return kWizardBadIndex;
    }
    report.add("FilePath", xmlFromPath(m_paths[index]));
    const auto creation = plan(index, data.m_strLevelMap);
    if (!creation) {
        report.add("ErrFile", xmlFromPath(m_paths[index]));
        return kWizardBadFile;
    }
    return ProjectCreation(*creation, data, report, watch).run();
}

bool CJ8Wizard::CopyFiles(const std::string& target, const XMLNode& element) const {
    PlannedFolder folder = planFolder(element);
    const size_t prefix = folder.name.empty() ? 0 : withSeparator(folder.name).size();
    for (PlannedFile& file : folder.files) {
        file.target.erase(0, prefix);
    }
    CreationRecord record;
    const auto always = [](const std::string&) { return true; };
    return copyPlannedFiles(target, folder.files, record, always) != CopyEnd::Nameless;
}
