// What the plug-in asks of the level editor, one named method an operation. The real editor stands behind it
// in the DLL, a plain project folder in the command-line tool, a recording fake in the tests.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <utility>

#include "plugin/host/HostAbi.h"

namespace zoka {

// Texts are in the process's 8-bit character set. A path is at most 259 characters; whatever the host leaves
// unterminated is cut there. Operations may be called on the editor's thread and on a panel's thread; the
// host does its own locking. No operation throws.
class ZunEditorInterface {
public:
    virtual ~ZunEditorInterface() = default;

    // Called when the editor has no main script yet; whether it makes one is the editor's affair.
    virtual void CreateMainScript() = 0;
    // Full path of the main script; nothing when the level has none.
    virtual std::optional<std::string> GetMainScriptPath() = 0;
    // To be called after the main script's file was rewritten, so that the editor reads it again.
    virtual void MainScriptChanged() = 0;
    // Name of item `index` of the host's list (at most 63 characters); nothing past its end. A walk over the
    // list is ended with EndListUpdate.
    virtual std::optional<std::string> GetListItemName(int index) = 0;
    virtual void EndListUpdate() = 0;
    // The editor's own file chooser over the template files; nothing when cancelled. `preset`
    // is the path it opens on.
    virtual std::optional<std::string> ChooseFile(const std::string& preset) = 0;
    // Folder of the open project, without a trailing separator as far as the host leaves it so; empty when
    // the host fails.
    virtual std::string GetProjectFolder() = 0;
    // Copies a file into a folder under its own name. False on failure, and for a path
    // longer than the host takes.
    virtual bool CopyFileToFolder(const std::string& source, const std::string& folder) = 0;
    // Copies a text file, replacing each pair's first text by its second. False as above.
    virtual bool CopyFileWithSubstitutions(
        const std::string& source, const std::string& destination,
        std::span<const std::pair<std::string, std::string>> substitutions) = 0;
    // Why the last of the two copies failed, with the file, in words for the user; empty where the host doesn't say.
    virtual std::string copyProblem() { return {}; }
    // A folder answered through a command record (CmdGetSuiteFolder, CmdGetTemplateSubfolder,
    // CmdQueryPath13); empty when the host fails.
    virtual std::string QueryFolder(ZunCommandCode code) = 0;
    // Opens a level map (".zlm"). False when the editor refuses.
    virtual bool OpenMap(const std::string& path) = 0;

    // Suite folder, "\", template subfolder, "\", file name.
    std::string TemplatePath(const std::string& fileName) {
        return QueryFolder(CmdGetSuiteFolder) + "\\" + QueryFolder(CmdGetTemplateSubfolder) + "\\" + fileName;
    }
};

}  // namespace zoka
