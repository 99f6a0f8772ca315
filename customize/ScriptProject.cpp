#include "customize/ScriptProject.h"

#include <algorithm>

#include "util/CopyFailure.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

// Whether the file lies in the folder, at any depth.
bool isBelow(const std::string& path, const std::string& folder) {
    std::string parent(folderOf(path));
    while (!sameFolder(parent, folder)) {
        std::string next(folderOf(parent));
        if (next.size() >= parent.size() || next.empty()) {
            return false;
        }
        parent = std::move(next);
    }
    return true;
}

}  // namespace

void ScriptProject::offer(std::vector<std::string> paths) {
    m_offered = std::move(paths);
    m_offeredIn = m_host.GetProjectFolder();
}

ScriptProject::Home ScriptProject::homeOf(const std::string& script) const {
    std::string open = m_host.GetProjectFolder();
    if (std::find(m_offered.begin(), m_offered.end(), script) == m_offered.end()) {
        return {std::move(open), std::nullopt};
    }
    const bool isOpen = sameFolder(open, m_offeredIn);
    return {m_offeredIn, isOpen ? std::nullopt : Elsewhere(std::move(open))};
}

bool ScriptProject::look() {
    const std::string before = whereabouts();
    std::string open = m_host.GetProjectFolder();
    m_home.elsewhere = sameFolder(open, m_home.folder) ? std::nullopt : Elsewhere(std::move(open));
    return whereabouts() != before;
}

std::optional<std::string> ScriptProject::askFolder() const {
    std::string open = m_host.GetProjectFolder();
    const std::string& own = m_home.folder;
    if (sameFolder(open, own)) {
        return open;
    }
    const auto ifWanted = [this](const std::string& folder, const std::string& question) {
        return asksYes(m_prompt, question) ? std::optional(folder) : std::nullopt;
    };
    if (open.empty()) {
        return ifWanted(
            own, "The project of this script is not open any more.\n\nSave it there all the same, in '" +
                     own + "'?");
    }
    if (own.empty()) {
        return ifWanted(
            open,
            "A project was opened since this script was loaded.\n\nSave a copy in it, in '" + open + "'?");
    }
    switch (m_prompt.ask(
        "The editor has opened another project since this script was loaded.\n\n"
        "Yes: save it in the project that it was loaded for, '" +
            own + "'.\nNo: save a copy in the project that is open, '" + open + "'.\nCancel: don't save.",
        "ZOKA", PromptButtons::YesNoCancel, PromptIcon::Warning)) {
        case PromptAnswer::Yes:
            return own;
        case PromptAnswer::No:
            return open;
        default:
            return std::nullopt;
    }
}

SaveEnd ScriptProject::take(CustomScript& script, const std::string& folder, bool& isCopied) {
    const std::string& path = script.scriptPath;
    if (!folder.empty() && (sameFolder(std::string(folderOf(path)), folder) ||
                            (isBelow(path, folder) && !isBelow(path, m_host.TemplatePath(""))))) {
        return std::nullopt;
    }
    if (folder.empty()) {
        return saveFailed(m_prompt, "The project folder is not known; the script was not saved.");
    }
    std::string target = joinPath(folder, fileNameOf(path));
    if (target.size() > kMaxScriptPath) {
        return saveFailed(
            m_prompt, "The name of the script in the project folder would be too long; it was not saved.");
    }
    const auto there = osFiles().readWhole(target);
    if ((there || osFiles().exists(target)) && there != script.fileText() &&
        !asksYes(m_prompt, "\"" + std::string(fileNameOf(path)) +
                               "\" is in the project folder already, with other content.\n\nOverwrite it?")) {
        return SaveResult::Cancelled;
    }
    if (!m_host.CopyFileToFolder(path, folder)) {
        return saveFailed(m_prompt,
                          copyFailure(path, target, m_host.copyProblem()) + "\n\nThe script was not saved.");
    }
    script.scriptPath = std::move(target);
    isCopied = true;
    return std::nullopt;
}

void ScriptProject::saved(const std::string& folder, bool isCopied) {
    if (!sameFolder(m_host.GetProjectFolder(), folder)) {
        return;
    }
    m_home.folder = folder;
    if (isCopied) {
        m_host.MainScriptChanged();
    }
}

}  // namespace zoka
