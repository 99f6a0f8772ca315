// What stands behind the plug-in's calls in the stand-in editor: the open level with its entities, its
// folder, and a suite folder with the template scripts.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <string>

#include "plugin/host/FolderHost.h"
#include "tools/editor/win/OpenLevel.h"

namespace zoka {

// Works on every thread; the file chooser opens on the calling thread.
class EditorHost : public ZunEditorInterface {
public:
    explicit EditorHost(OpenLevel& level) : m_level(level) {}

    // The suite's folder and the name of the template folder in it. [editor thread], before a plug-in is
    // loaded.
    void setSuite(const std::string& folder, const std::string& templates);
    // Whether ChooseFile shows a window of the editor's own making instead of the system's chooser: "Choose a
    // script", which belongs over no other window. Its message loop keeps WM_QUIT for itself. [any thread]
    void setOwnChooser(bool own) { m_ownChooser = own; }
    // Opens a level; false when it can't. Called on the editor's thread only.
    std::function<bool(const std::string& path)> onOpenMap;

    void CreateMainScript() override;
    std::optional<std::string> GetMainScriptPath() override;
    void MainScriptChanged() override {}
    std::optional<std::string> GetListItemName(int index) override;
    void EndListUpdate() override {}
    std::optional<std::string> ChooseFile(const std::string& preset) override;
    std::string GetProjectFolder() override { return m_level.folder(); }
    bool CopyFileToFolder(const std::string& source, const std::string& folder) override;
    bool CopyFileWithSubstitutions(
        const std::string& source, const std::string& destination,
        std::span<const std::pair<std::string, std::string>> substitutions) override;
    std::string QueryFolder(ZunCommandCode code) override;
    bool OpenMap(const std::string& path) override;

private:
    // The operations that need no more than the folders.
    FolderHost folders() const;

    OpenLevel& m_level;
    DWORD m_editorThread = GetCurrentThreadId();
    std::string m_suiteFolder;
    std::string m_templates = "templates";
    std::atomic<bool> m_ownChooser{false};
};

}  // namespace zoka
