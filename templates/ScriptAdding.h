// Puts template scripts into a project: copies the numbered ones and includes them all, their needs first.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "customize/NumberedScripts.h"
#include "plugin/host/ZunEditorInterface.h"
#include "templates/IncludeList.h"
#include "templates/ScriptFolders.h"
#include "util/KeyedHash.h"
#include "util/UserPrompt.h"

namespace zoka {

// What adding will do, made before anything is done; the preview shows it and the deed carries it out.
struct AddPlan {
    struct Copy {
        std::string source;
        std::string destination;
        std::optional<unsigned> number;  // of a numbered template's copy
        bool overwrites = false;         // the user is asked first
    };
    struct Line {
        std::string name;
        bool asked = false;    // one of the scripts to be added, not a need
        bool present = false;  // included already
        bool found = false;    // lies in the project or template folder
    };
    std::vector<Copy> copies;
    std::vector<Line> lines;  // in the order of the main script's new lines; those present already last
    std::vector<std::string> paths;  // of the scripts asked for, a numbered template's being its copy's
    MainScriptPlan main;             // its path is the one after copying
    std::string problem;             // why nothing will be done, in words; else empty
    bool emptyMain = false;          // the problem is that there is no text to include anything in

    // Whether there is nothing to do because all that was asked for is included.
    bool isIncludedAlready() const { return problem.empty() && copies.empty() && main.before == main.after; }
    // "adds fog.kez; needs weather.kez, noise.kez (already included); copies camera_.kez as camera_2.kez"; or the
    // problem; or that there is nothing to do.
    std::string summary() const;
};

// One action on one project. [editor thread]
class ScriptAdding {
public:
    ScriptAdding(ZunEditorInterface& host, UserPrompt& prompt) : m_host(host), m_prompt(prompt) {}

    // Copies the script into `destFolder` through the host and writes the copy's full path into `destPath`,
    // cut to `destSize` - 1 characters. A numbered template gets the first free number, and its marker
    // replaced; any other existing file is overwritten only when the user agrees. False, with `destPath`
    // untouched, when it was not copied.
    bool CopyTemplateScript(const std::string& sourcePath, std::string& destPath, size_t destSize,
                            const std::string& destFolder);

    // What adding the scripts at these full paths means. Changes nothing.
    AddPlan plan(std::span<const std::string> scriptPaths);
    // Carries the plan out, in one rewrite of the main script. True when done, also when nothing had to change;
    // false when the plan has a problem or a copy failed or was declined. When the main script is empty, which it
    // stays, or could not be written, the result is true as the file is whole, and error() tells. The copies made
    // are deleted again when nothing was included.
    bool carryOut(const AddPlan& plan);
    // Both in one; a project without a main script first has the editor asked to make one.
    bool AddScriptsToProject(std::span<const std::string> scriptPaths);
    bool AddScriptToProject(const std::string& scriptPath) {
        return AddScriptsToProject(std::span(&scriptPath, 1));
    }

    // What the last operation could not do, in words; else empty. Nobody has been told yet.
    const std::string& error() const { return m_error; }
    // Whether the user declined, and hence knows.
    bool declined() const { return m_declined; }
    // Whether the last operation rewrote the main script.
    bool changed() const { return m_changed; }
    // The numbered copies that the last operation made, with their full paths.
    const std::vector<std::string>& copies() const { return m_copies; }

private:
    using Paths = KeyedSet<std::string>;  // lowered
    static Result<AddPlan::Copy> planCopy(const std::string& source, const std::string& folder,
                                          const Paths& taken);
    bool makeCopy(const AddPlan::Copy& copy);
    void deleteCopies();

    ZunEditorInterface& m_host;
    UserPrompt& m_prompt;
    std::string m_error;
    bool m_declined = false;
    bool m_changed = false;
    std::vector<std::string> m_copies;
};

}  // namespace zoka
