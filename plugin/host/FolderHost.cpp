#include "plugin/host/FolderHost.h"

#include <algorithm>

#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"

namespace zoka {
namespace {

// The name of the only file that fits the wildcard.
std::optional<std::string> onlyFile(const std::string& folder, const char* wildcard) {
    std::optional<std::string> found;
    for (const OsEntry& entry : osFiles().list(joinPath(folder, wildcard))) {
        if (!entry.isFolder) {
            if (found) {
                return std::nullopt;
            }
            found = entry.name;
        }
    }
    return found;
}

using Substitutions = std::span<const std::pair<std::string, std::string>>;

std::string substituted(const std::string& text, Substitutions substitutions) {
    std::string result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        const auto fits = std::find_if(substitutions.begin(), substitutions.end(), [&](const auto& pair) {
            return !pair.first.empty() && text.compare(at, pair.first.size(), pair.first) == 0;
        });
        if (fits == substitutions.end()) {
            result += text[at++];
        } else {
            result += fits->second;
            at += fits->first.size();
        }
    }
    return result;
}

}  // namespace

std::optional<std::string> FolderHost::GetMainScriptPath() {
    if (!m_folders.mainScript.empty()) {
        return m_folders.mainScript;
    }
    if (const auto map = onlyFile(m_folders.project, "*.zlm")) {
        const std::string script = joinPath(m_folders.project, map->substr(0, map->size() - 4) + ".kez");
        if (osFiles().exists(script)) {
            return script;
        }
    }
    const auto script = onlyFile(m_folders.project, "*.kez");
    return script ? std::optional(joinPath(m_folders.project, *script)) : std::nullopt;
}

std::optional<std::string> FolderHost::GetListItemName(int index) {
    if (index < 0 || static_cast<size_t>(index) >= m_listItems.size()) {
        return std::nullopt;
    }
    return m_listItems[static_cast<size_t>(index)].substr(0, kHostItemNameSize - 1);
}

std::optional<std::string> FolderHost::ChooseFile(const std::string&) {
    return m_chosenFile.empty() ? std::nullopt : std::optional(m_chosenFile);
}

bool FolderHost::CopyFileToFolder(const std::string& source, const std::string& folder) {
    const std::string_view name = fileNameOf(source);
    if (name.empty()) {
        m_copyProblem = "'" + source + "' is no file";
        return false;
    }
    return CopyFileWithSubstitutions(source, joinPath(folder, name), {});
}

bool FolderHost::CopyFileWithSubstitutions(const std::string& source, const std::string& destination,
                                           Substitutions substitutions) {
    if (equalNoCase(osFiles().fullPath(source), osFiles().fullPath(destination))) {
        m_copyProblem = "'" + source + "' is not copied onto itself";
        return false;
    }
    const auto content = osFiles().readWhole(source);
    m_copyProblem =
        content ? safeWrite(destination, substituted(*content, substitutions), FileKind::Generated).why()
                : "Can't read '" + source + "': " + osFiles().lastError();
    return m_copyProblem.empty();
}

std::string FolderHost::QueryFolder(ZunCommandCode code) {
    return code == CmdGetSuiteFolder         ? m_folders.suite
           : code == CmdGetTemplateSubfolder ? m_folders.templateSubfolder
                                             : "";
}

bool FolderHost::OpenMap(const std::string& path) {
    const std::string_view folder = folderOf(path);
    if (folder.empty() || !osFiles().exists(path)) {
        return false;
    }
    m_folders.project = folder;
    m_folders.mainScript.clear();
    return true;
}

}  // namespace zoka
