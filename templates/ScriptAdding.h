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
#include "util/UserPrompt.h"

namespace zoka {

// What adding would do, told before it is done.
struct AddPlan {
    struct Copy {
        std::string source;
        std::string destination;
        bool overwrites = false;  // the user is asked first
    };
    struct Line {
        std::string name;
        bool asked = false;    // one of the scripts to be added, not a need
        bool present = false;  // included already
        bool found = false;    // lies in the project or template folder
    };
    std::vector<Copy> copies;
    std::vector<Line> lines;  // in the order of the main script's new lines; those present already last
    std::string mainScript;   // its path, after copying
    std::string before;       // its text
    std::string after;        // equal to `before` when no line goes in
    std::string problem;      // why nothing will be done, in words; else empty

    // "adds fog.kez; needs weather.kez, noise.kez (already included); copies camera_.kez as camera_2.kez"
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

    // Adds scripts by their full paths, in one rewrite of the main script. True when done, also when nothing
    // had to change; false when a copy failed or was declined, when a need can't be included or the main
    // script is UTF-16 (the user is told), or when there is no main script. When the main script is empty,
    // which it stays, or could not be written, the result is true as the file is whole, and error() tells. The
    // copies made are deleted again when nothing was included.
    bool AddScriptsToProject(std::span<const std::string> scriptPaths);
    bool AddScriptToProject(const std::string& scriptPath) {
        return AddScriptsToProject(std::span(&scriptPath, 1));
    }
    AddPlan plan(std::span<const std::string> scriptPaths);

    // What the last operation could not do, in words; else empty.
    const std::string& error() const { return m_error; }
    // Whether the last operation rewrote the main script.
    bool changed() const { return m_changed; }
    // The numbered copies that the last operation made, with their full paths.
    const std::vector<std::string>& copies() const { return m_copies; }

private:
    std::optional<std::string> mainScript();
    bool copyInto(std::string& path, const std::string& folder);
    bool insertInto(const std::string& mainPath, const std::vector<std::string>& paths);

    ZunEditorInterface& m_host;
    UserPrompt& m_prompt;
    std::string m_error;
    bool m_changed = false;
    std::vector<std::string> m_copies;
};

}  // namespace zoka
