// Project wizards: XML files that say how a new project is laid out. docs/wizard.md describes the file.
//
// All of it works on the templates below the current folder. Paths and messages are in the system's character set.
// Looking for wizards, checking and creating may take long on a slow disk: they may be done on a thread of their own
// while the editor thread waits and shows how far they are. A wizard may be read (`root`) on any thread, while its
// dialog goes on; all else is for the editor thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "J8ProjectManager/StepReport.h"
#include "J8ProjectWizard/CreationPlan.h"
#include "J8ProjectWizard/CreationRecord.h"
#include "J8ProjectWizard/J8WizardUserData.h"
#include "util/JobProgress.h"
#include "xml/XMLNode.h"

namespace zoka {

// What Check and Run give below 0.
enum WizardCode : int {
    kWizardDone = 0,
    kWizardBadIndex = -1,    // Run
    kWizardBadContent = -1,  // Check: a name is missing or not allowed
    kWizardBadFile = -2,     // no wizard; Check also: a template file is missing
    kWizardFolderExists = -3,
    kWizardNoFolder = -4,
    kWizardNoCopy = -5,
    kWizardNone = -7,  // Check: there is no wizard of that number
    kWizardNoManager = -8,
    kWizardNotSaved = -9,
    kWizardCancelled = -10,  // by the user, who needs no message
};

// The file that Run leaves in the current folder.
inline constexpr const char* kWizardReport = "wizardDebug.xml";

// What a run tells while it works and afterwards. Both may be left out.
struct CreationWatch {
    JobProgress* progress = nullptr;  // stops between two files
    CreationRecord* record = nullptr;
};

// GetWizardDesc and LoadDefaults of a wizard's root element.
bool wizardDesc(std::string& out, const XMLNode& root);
bool takeWizardDefaults(CJ8WizardUserData& data, const XMLNode& root);

}  // namespace zoka

// What opens a wizard's file throws OutOfMemory where there is none for it; Run has a code for that.
class CJ8Wizard {
public:
    // Lists the wizards of the wizards folder in the order in which the system gives its files; where the user stops
    // it, those that were found so far.
    explicit CJ8Wizard(zoka::JobProgress* progress = nullptr);

    static bool IsWizardFile(const std::string& path);
    // The path where the wizard has no title, nothing where there is no such file. In UTF-8.
    static std::string GetWizardTitle(const std::string& path);
    // False, with `out` as it was, when there is no description. In UTF-8.
    static bool GetWizardDesc(std::string& out, const std::string& path);

    // Replaces those texts of `data` for which the wizard has a default. False when it has none at all.
    bool LoadDefaults(CJ8WizardUserData& data, unsigned index) const;

    // Whether the wizard can be carried out: 0, or a WizardCode and mostly a message. The first form looks at the
    // wizard and its template files, the second at what `data` says of the new project as well.
    int Check(std::string& message, unsigned index) const;
    int Check(std::string& message, unsigned index, const CJ8WizardUserData& data,
              zoka::JobProgress* progress = nullptr) const;
    int CheckFiles(std::string& message, const XMLNode& folder) const;

    // Makes the project that `data` describes and writes the report. 0 or a WizardCode; what it is about is in
    // data.m_strMessage then, and what was made before the failure stays. Memory that runs out is kWizardNotSaved, too.
    int Run(CJ8WizardUserData& data, unsigned index, const zoka::CreationWatch& watch = {}) const;
    // The same with the steps told to `report`.
    int CreateProject(CJ8WizardUserData& data, unsigned index, const zoka::StepReport& report,
                      const zoka::CreationWatch& watch = {}) const;
    // Copies the files of one element `Folder` to `target`, which ends with a separator. False at the first one
    // without a name; a copy that fails is told to the debug log alone.
    bool CopyFiles(const std::string& target, const XMLNode& folder) const;

    // The root element, read anew; the empty node when there is no wizard of that number, or its file is none any more.
    // [any thread]
    XMLNode root(unsigned index) const;
    // Nothing where there is no root.
    std::optional<zoka::CreationPlan> plan(unsigned index, const std::string& levelMap) const;

    const std::vector<std::string>& titles() const { return m_titles; }
    // Full paths.
    const std::vector<std::string>& paths() const { return m_paths; }

private:
    int check(std::string& message, unsigned index, const CJ8WizardUserData* data,
              zoka::JobProgress* progress) const;

    std::vector<std::string> m_titles, m_paths;
};
