// An editor over plain folders that records what it is asked to change and refuses as a test wants.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "plugin/host/FolderHost.h"
#include "util/PathRules.h"

namespace zoka::test {

// For one thread at a time. The answers are those of a FolderHost.
class RecordingHost : public FolderHost {
public:
    explicit RecordingHost(Folders itsFolders) : FolderHost(std::move(itsFolders)) {}

    // "create", "changed", "endlist", "copy", or "copy X=Y" with its first substitution.
    std::vector<std::string> calls;
    // Operations, by their names, that fail as a host would: with nothing, false or an empty folder.
    std::set<std::string> failing;
    // What the user opens, and what CreateMainScript makes the main script; empty: nothing.
    Folders& folders = m_folders;
    std::string mainScriptMade;

    void refuseCopies(bool refuse) {
        failing = refuse ? std::set<std::string>{"CopyFileToFolder", "CopyFileWithSubstitutions"}
                         : std::set<std::string>();
    }

    void CreateMainScript() override {
        calls.push_back("create");
        if (!mainScriptMade.empty()) {
            folders.mainScript = mainScriptMade;
        }
    }
    std::optional<std::string> GetMainScriptPath() override {
        return works("GetMainScriptPath") ? FolderHost::GetMainScriptPath() : std::nullopt;
    }
    void MainScriptChanged() override { calls.push_back("changed"); }
    std::optional<std::string> GetListItemName(int index) override {
        return works("GetListItemName") ? FolderHost::GetListItemName(index) : std::nullopt;
    }
    void EndListUpdate() override { calls.push_back("endlist"); }
    std::optional<std::string> ChooseFile(const std::string& preset) override {
        return works("ChooseFile") ? FolderHost::ChooseFile(preset) : std::nullopt;
    }
    std::string GetProjectFolder() override {
        return works("GetProjectFolder") ? FolderHost::GetProjectFolder() : "";
    }
    bool CopyFileToFolder(const std::string& source, const std::string& folder) override {
        calls.push_back("copy");
        return works("CopyFileToFolder") &&
               FolderHost::CopyFileWithSubstitutions(source, joinPath(folder, fileNameOf(source)), {});
    }
    bool CopyFileWithSubstitutions(
        const std::string& source, const std::string& destination,
        std::span<const std::pair<std::string, std::string>> substitutions) override {
        calls.push_back(substitutions.empty()
                            ? "copy"
                            : "copy " + substitutions[0].first + "=" + substitutions[0].second);
        return works("CopyFileWithSubstitutions") &&
               FolderHost::CopyFileWithSubstitutions(source, destination, substitutions);
    }
    std::string QueryFolder(ZunCommandCode code) override {
        return works("QueryFolder") ? FolderHost::QueryFolder(code) : "";
    }

private:
    bool works(const char* operation) const { return !failing.contains(operation); }
};

}  // namespace zoka::test
