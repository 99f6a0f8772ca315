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

    // "create", "changed", "endlist", "copy" of CopyFileToFolder, and "substitute" of CopyFileWithSubstitutions, or
    // "substitute X=Y" with the first one.
    std::vector<std::string> calls;
    // Operations, by their names, that fail as a host would: with nothing, false or an empty folder.
    std::set<std::string> failing;
    // Of these two, those that say yes and copy nothing.
    std::set<std::string> feigned;
    // What CreateMainScript makes the main script; empty: nothing.
    std::string mainScriptMade;

    // What the user opens.
    Folders& folders() { return m_folders; }

    void refuseCopies(bool refuse) {
        for (const char* const operation : {"CopyFileToFolder", "CopyFileWithSubstitutions"}) {
            if (refuse) {
                failing.insert(operation);
            } else {
                failing.erase(operation);
            }
        }
    }

    void CreateMainScript() override {
        calls.push_back("create");
        if (!mainScriptMade.empty()) {
            folders().mainScript = mainScriptMade;
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
               (feigned.contains("CopyFileToFolder") ||
                FolderHost::CopyFileWithSubstitutions(source, joinPath(folder, fileNameOf(source)), {}));
    }
    bool CopyFileWithSubstitutions(
        const std::string& source, const std::string& destination,
        std::span<const std::pair<std::string, std::string>> substitutions) override {
        calls.push_back(substitutions.empty()
                            ? "substitute"
                            : "substitute " + substitutions[0].first + "=" + substitutions[0].second);
        return works("CopyFileWithSubstitutions") &&
               (feigned.contains("CopyFileWithSubstitutions") ||
                FolderHost::CopyFileWithSubstitutions(source, destination, substitutions));
    }
    std::string QueryFolder(ZunCommandCode code) override {
        return works("QueryFolder") ? FolderHost::QueryFolder(code) : "";
    }

private:
    bool works(const char* operation) const { return !failing.contains(operation); }
};

}  // namespace zoka::test
