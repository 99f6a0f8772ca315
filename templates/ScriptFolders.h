// The two folders that a project's scripts lie in: its own, and the suite's template folder.
#pragma once

#include <optional>
#include <string>

#include "plugin/host/ZunEditorInterface.h"
#include "templates/ScriptNeeds.h"
#include "util/KeyedHash.h"

namespace zoka {

// Why a script of that name is not found, in words for the user.
std::string placeProblem(const std::string& fileName);

enum class ScriptPlace { NotFound = 0, Template = 1, Project = 2 };

// Asks the host for its folders once, when it is made: made anew for each action of the user. Only names that stay in
// their folder are ever looked for ("fog.kez", ".\fog.kez", "sub\fog.kez"), so that none leads out.
class ScriptFolders {
public:
    explicit ScriptFolders(ZunEditorInterface& host);

    // From now on every search is answered from one look into each folder, for jobs over many scripts.
    void listOnce();

    const std::string& project() const { return m_project; }
    std::string projectPath(const std::string& fileName) const { return m_project + "\\" + fileName; }
    std::string templatePath(const std::string& fileName) const { return m_templates + fileName; }

    // Where the script lies; the project folder comes first. The second form gives its full path, and leaves
    // `path` alone when it isn't found.
    ScriptPlace LocateScript(const std::string& fileName) const;
    ScriptPlace LocateScript(const std::string& fileName, std::string& path) const;
    bool inTemplates(const std::string& fileName) const;
    // The full path of a script's template: the file of its own name, else the numbered template that it is a
    // copy of. Nothing when the template folder has neither.
    std::optional<std::string> templateOf(const std::string& fileName) const;
    // For collectNeeds. The object must outlive it.
    LocateFile locator() const;

    // Deletes the project's copy; false when there is none or it can't be deleted.
    bool DeleteProjectScript(const std::string& fileName) const;

    // Version and date of the project's copy; of the template's with `fromTemplate` or where the project has
    // none. False, and "-1" for both, when the file can't be read. With a reader, files read before aren't
    // read again.
    bool ReadVersionAndDate(const std::string& fileName, std::string& version, std::string& date,
                            bool fromTemplate, ScriptFactsReader* reader = nullptr) const;

private:
    using Listing = std::optional<KeyedSet<std::string>>;  // lowered names; nothing: not listed
    bool isFile(const std::string& path, const std::string& fileName, const Listing& listing) const;

    std::string m_project;
    std::string m_templates;  // with its last backslash
    Listing m_projectFiles;
    Listing m_templateFiles;
};

}  // namespace zoka
