#include "templates/ScriptAdding.h"

#include <algorithm>
#include <map>

#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"

namespace zoka {

namespace {

constexpr size_t kLongestPath = kHostPathSize - 1;

std::string destinationIn(const std::string& folder, const std::string& source) {
    return folder + "\\" + std::string(fileNameOf(source));
}

// The number of the first copy of the numbered template that exists neither on the disk nor in `taken`
// (lowered paths); nothing when the name would become too long.
std::optional<unsigned> freeNumber(const std::string& path,
                                   const std::unordered_set<std::string>& taken = {}) {
    for (unsigned number = 0;; ++number) {
        const std::string candidate = numberedCopy(path, number);
        if (candidate.size() > kLongestPath) {
            return {};
        }
        if (!taken.contains(lowered(candidate)) && !osFiles().exists(candidate)) {
            return number;
        }
    }
}

// The needs of a copy that doesn't exist yet.
ScriptFacts factsOfCopy(const std::string& source, unsigned number) {
    ScriptFacts facts = readScriptFacts(source);
    for (std::string& need : facts.needs) {
        need = withCopyMark(need, copyMark(number));
    }
    return facts;
}

}  // namespace

std::string AddPlan::summary() const {
    if (!problem.empty()) {
        return problem;
    }
    std::string adds, needs, copied, result;
    const auto append = [](std::string& list, const std::string& item) {
        if (!list.empty()) {
            list += ", ";
        }
        list += item;
    };
    for (const Line& line : lines) {
        append(line.asked ? adds : needs, line.name + (line.present ? " (already included)"
                                                       : line.found ? ""
                                                                    : " (not found)"));
    }
    for (const Copy& copy : copies) {
        append(copied, std::string(fileNameOf(copy.source)) + " as " +
                           std::string(copy.overwrites ? copy.destination : fileNameOf(copy.destination)) +
                           (copy.overwrites ? " (asks before it overwrites)" : ""));
    }
    const auto part = [&result](const char* verb, const std::string& list) {
        if (list.empty()) {
            return;
        }
        if (!result.empty()) {
            result += "; ";
        }
        (result += verb) += list;
    };
    part("adds ", adds);
    part("needs ", needs);
    part("copies ", copied);
    return result.empty() ? "nothing: the main script never includes itself" : result;
}

bool ScriptAdding::CopyTemplateScript(const std::string& sourcePath, std::string& destPath, size_t destSize,
                                      const std::string& destFolder) {
    if (!osFiles().exists(sourcePath)) {
        m_error = sourcePath + " does not exist";
        return false;
    }
    std::string destination = destinationIn(destFolder, sourcePath);
    if (destination.size() > kLongestPath) {
        m_error = destination + " is too long a path";
        return false;
    }
    std::vector<std::pair<std::string, std::string>> substitutions;
    if (IsNumberedTemplate(destination)) {
        const std::optional<unsigned> number = freeNumber(destination);
        if (!number) {
            m_error = destination + " is too long a path for one more copy";
            return false;
        }
        destination = numberedCopy(destination, *number);
        substitutions.emplace_back(kCopyMarker, copyMark(*number));
    } else if (osFiles().exists(destination) &&
               m_prompt.ask(destination + "\nFile exist! Overwrite?", "ZOKA", PromptButtons::OkCancel,
                            PromptIcon::Warning) != PromptAnswer::Ok) {
        m_error = destination + " exists and was kept";
        return false;
    }
    if (!m_host.CopyFileWithSubstitutions(sourcePath, destination, substitutions)) {
        m_error = sourcePath + " could not be copied to " + destination;
        return false;
    }
    destPath = destination.substr(0, destSize > 0 ? destSize - 1 : 0);
    return true;
}

std::optional<std::string> ScriptAdding::mainScript() {
    std::optional<std::string> path = m_host.GetMainScriptPath();
    if (path) {
        return path;
    }
    m_host.CreateMainScript();
    path = m_host.GetMainScriptPath();
    if (!path) {
        m_error = "the project has no main script";
    }
    return path;
}

bool ScriptAdding::copyInto(std::string& path, const std::string& folder) {
    const std::string source = path;
    return CopyTemplateScript(source, path, kHostPathSize, folder);
}

bool ScriptAdding::AddScriptsToProject(std::span<const std::string> scriptPaths) {
    m_changed = false;
    m_error.clear();
    m_copies.clear();
    const std::string folder = m_host.GetProjectFolder();
    std::optional<std::string> mainPath = mainScript();
    if (!mainPath) {
        return false;
    }
    if (!IsInFolder(folder, *mainPath) && !copyInto(*mainPath, folder)) {
        return false;
    }

    const auto deleteCopies = [this] {
        for (const std::string& copy : m_copies) {
            osFiles().deleteFile(copy);
        }
        m_copies.clear();
    };
    std::vector<std::string> paths(scriptPaths.begin(), scriptPaths.end());
    for (std::string& path : paths) {
        if (IsInFolder(folder, path) || !IsNumberedTemplate(path)) {
            continue;
        }
        if (!copyInto(path, folder)) {
            deleteCopies();
            return false;
        }
        m_copies.push_back(path);
    }
    const bool done = insertInto(*mainPath, paths);
    if (!m_error.empty()) {
        deleteCopies();
    }
    return done;
}

bool ScriptAdding::insertInto(const std::string& mainPath, const std::vector<std::string>& paths) {
    const std::optional<std::string> text = osFiles().readWhole(mainPath);
    if (!text) {
        m_error = mainPath + ": " + osFiles().lastError();
        return false;
    }
    if (text->empty()) {
        m_error = mainPath + " is empty: nothing can be included";
        return true;
    }
    CLex lexer(text->data(), static_cast<long>(text->size()));
    const ScriptFolders folders(m_host);
    if (InsertIncludes(lexer, mainPath, paths, folders.locator(), &m_error) == 1) {
        m_changed = m_error.empty();
        m_host.MainScriptChanged();
    } else if (!m_error.empty()) {
        // A need that can't be included, or a file of another kind: nobody would see it otherwise.
        m_prompt.tell(m_error + "\nFile not added.");
        return false;
    }
    return true;
}

AddPlan ScriptAdding::plan(std::span<const std::string> scriptPaths) {
    AddPlan plan;
    const std::string folder = m_host.GetProjectFolder();
    const ScriptFolders folders(m_host);
    const std::optional<std::string> mainPath = m_host.GetMainScriptPath();
    if (mainPath) {
        plan.mainScript = *mainPath;
        plan.before = osFiles().readWhole(*mainPath).value_or("");
        if (!IsInFolder(folder, *mainPath)) {
            plan.mainScript = destinationIn(folder, *mainPath);
            plan.copies.push_back({*mainPath, plan.mainScript, osFiles().exists(plan.mainScript)});
        }
    }
    std::map<std::string, std::pair<std::string, unsigned>>
        sources;  // of the copies to be made, with their numbers
    std::unordered_set<std::string> taken;
    std::vector<std::string> paths(scriptPaths.begin(), scriptPaths.end());
    for (std::string& path : paths) {
        if (IsInFolder(folder, path) || !IsNumberedTemplate(path)) {
            continue;
        }
        const std::string source = path;
        path = destinationIn(folder, source);
        const std::optional<unsigned> number = freeNumber(path, taken);
        if (!number) {
            plan.problem = path + " is too long a path for one more copy";
            return plan;
        }
        path = numberedCopy(path, *number);
        taken.insert(lowered(path));
        sources[path] = {source, *number};
        plan.copies.push_back({source, path});
    }
    const auto read = [&sources](const std::string& path) {
        const auto copy = sources.find(path);
        return copy == sources.end() ? readScriptFacts(path)
                                     : factsOfCopy(copy->second.first, copy->second.second);
    };
    CLex lexer(plan.before.data(), static_cast<long>(plan.before.size()));
    const Insertion insertion = planInsertion(lexer, plan.mainScript, paths, folders.locator(), read);
    plan.problem = insertion.problem;

    std::unordered_set<std::string> asked;
    for (const std::string& path : paths) {
        asked.insert(lowered(fileNameOf(path)));
    }
    const auto addLines = [&](const std::vector<std::string>& names, bool present) {
        for (const std::string& name : names) {
            plan.lines.push_back({name, asked.contains(lowered(name)), present,
                                  taken.contains(lowered(folders.projectPath(name))) ||
                                      folders.LocateScript(name) != ScriptPlace::NotFound});
        }
    };
    addLines(insertion.names, false);
    addLines(insertion.present, true);
    // An empty main script stays empty.
    const bool changes = plan.problem.empty() && !plan.before.empty();
    plan.after = changes ? applyInsertion(plan.before, insertion) : plan.before;
    return plan;
}

}  // namespace zoka
