// The editor's part played by a plain project folder and a template folder: for the command-line tool, the
// stand-in editor and tests.
#pragma once

#include <string>
#include <vector>

#include "plugin/host/ZunEditorInterface.h"

namespace zoka {

// The main script of the folder is, in this order: the one given; the script named after the level map (the
// folder's only ".zlm", extension ".kez"), where that file exists; the folder's only ".kez" file. Otherwise
// there is none. It is looked for at each call, so files may come and go. Not safe for use from two threads
// at once while setters run.
class FolderHost : public ZunEditorInterface {
public:
    struct Folders {
        std::string project;
        std::string suite;
        std::string templateSubfolder = "templates";
        std::string mainScript = {};  // empty: found as above
    };
    explicit FolderHost(Folders folders) : m_folders(std::move(folders)) {}

    // The names that GetListItemName answers; empty at first, for a folder has no such list.
    void setListItems(std::vector<std::string> items) { m_listItems = std::move(items); }
    // What ChooseFile answers, in the place of a user; empty (as at first): cancelled.
    void setChosenFile(std::string path) { m_chosenFile = std::move(path); }

    // Makes no script: a folder has no editor that would know what to put into it.
    void CreateMainScript() override {}
    std::optional<std::string> GetMainScriptPath() override;
    void MainScriptChanged() override {}
    std::optional<std::string> GetListItemName(int index) override;
    void EndListUpdate() override {}
    std::optional<std::string> ChooseFile(const std::string& preset) override;
    std::string GetProjectFolder() override { return m_folders.project; }
    // Both copies are byte for byte, replace an existing target, leave it as it was when they fail, and
    // refuse to copy a file onto itself.
    bool CopyFileToFolder(const std::string& source, const std::string& folder) override;
    // At each place of the source the first pair that fits is applied; replaced text is not looked at again.
    bool CopyFileWithSubstitutions(
        const std::string& source, const std::string& destination,
        std::span<const std::pair<std::string, std::string>> substitutions) override;
    std::string copyProblem() override { return m_copyProblem; }
    // The suite's folder and the template subfolder; nothing for other codes.
    std::string QueryFolder(ZunCommandCode code) override;
    // Takes the map's folder as the project folder. False when the map does not exist or has no folder part.
    bool OpenMap(const std::string& path) override;

protected:
    Folders m_folders;

private:
    std::vector<std::string> m_listItems;
    std::string m_chosenFile;
    std::string m_copyProblem;
};

}  // namespace zoka
