#include "templates/ScriptAdding.h"

#include <algorithm>

#include "plugin/host/HostCopy.h"
#include "util/CopyFailure.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {

namespace {

constexpr size_t kLongestPath = kHostPathSize - 1;

std::string destinationIn(const std::string& folder, const std::string& source) {
    return folder + "\\" + std::string(fileNameOf(source));
}

// The number of the first copy of the numbered template that exists neither on the disk nor in `taken`
// (lowered paths); nothing when the name would become too long.
std::optional<unsigned> freeNumber(const std::string& path, const KeyedSet<std::string>& taken) {
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
ScriptFacts factsOfCopy(const AddPlan::Copy& copy) {
    ScriptFacts facts = readScriptFacts(copy.source);
    for (std::string& need : facts.needs) {
        need = withCopyMark(need, copyMark(*copy.number));
    }
    return facts;
}

void append(std::string& list, const std::string& item) {
    if (!list.empty()) {
        list += ", ";
    }
    list += item;
}

}  // namespace

std::string AddPlan::summary() const {
    if (!problem.empty()) {
        return problem;
    }
    std::string adds, needs, copied, result;
    for (const Line& line : lines) {
        append(line.asked ? adds : needs, line.name + (line.present ? " (already included)"
                                                       : line.found ? ""
                                                                    : " (not found)"));
    }
    if (isIncludedAlready()) {
        std::string names;
        size_t asked = 0;
        for (const Line& line : lines) {
            if (line.asked) {
                append(names, line.name);
                ++asked;
            }
        }
        return asked == 0 ? "nothing: the main script never includes itself"
                          : names + (asked == 1 ? " is" : " are") + " already included; nothing to add";
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
    return result;
}

Result<AddPlan::Copy> ScriptAdding::planCopy(const std::string& source, const std::string& folder,
                                             const Paths& taken) {
    AddPlan::Copy copy{source, destinationIn(folder, source), {}, false};
    if (copy.destination.size() > kLongestPath) {
        return Refusal{copy.destination + " is too long a path"};
    }
    if (!IsNumberedTemplate(copy.destination)) {
        copy.overwrites = osFiles().exists(copy.destination);
        return copy;
    }
    copy.number = freeNumber(copy.destination, taken);
    if (!copy.number) {
        return Refusal{copy.destination + " is too long a path for one more copy"};
    }
    copy.destination = numberedCopy(copy.destination, *copy.number);
    return copy;
}

bool ScriptAdding::makeCopy(const AddPlan::Copy& copy) {
    if (osFiles().exists(copy.destination)) {
        if (copy.number) {
            m_error = copy.destination + " was made by somebody else meanwhile; try again";
            return false;
        }
        m_declined = m_prompt.ask(copy.destination + "\nFile exist! Overwrite?", "ZOKA",
                                  PromptButtons::OkCancel, PromptIcon::Warning) != PromptAnswer::Ok;
        if (m_declined) {
            m_error = copy.destination + " exists and was kept";
            return false;
        }
    }
    std::vector<std::pair<std::string, std::string>> substitutions;
    if (copy.number) {
        substitutions.emplace_back(kCopyMarker, copyMark(*copy.number));
    }
    const Outcome copied = copyByHost(m_host, copy.source, copy.destination, substitutions);
    if (!copied) {
        m_error = copyFailure(copy.source, copy.destination, copied.why());
        return false;
    }
    if (copy.number) {
        m_copies.push_back(copy.destination);
    }
    return true;
}

bool ScriptAdding::CopyTemplateScript(const std::string& sourcePath, std::string& destPath, size_t destSize,
                                      const std::string& destFolder) {
    m_error.clear();
    m_declined = false;
    if (!osFiles().exists(sourcePath)) {
        m_error = sourcePath + " does not exist";
        return false;
    }
    const auto copy = planCopy(sourcePath, destFolder, {});
    m_error = copy.why();
    if (!copy || !makeCopy(*copy)) {
        return false;
    }
    destPath = copy->destination.substr(0, destSize > 0 ? destSize - 1 : 0);
    return true;
}

void ScriptAdding::deleteCopies() {
    for (const std::string& copy : m_copies) {
        osFiles().deleteFile(copy);
    }
    m_copies.clear();
}

AddPlan ScriptAdding::plan(std::span<const std::string> scriptPaths) {
    AddPlan plan;
    const std::string folder = m_host.GetProjectFolder();
    const ScriptFolders folders(m_host);
    const std::optional<std::string> mainPath = m_host.GetMainScriptPath();
    std::optional<std::string> text = mainPath ? osFiles().readWhole(*mainPath) : std::nullopt;
    if (!text) {
        plan.problem = mainPath ? "Can't read '" + *mainPath + "': " + osFiles().lastError()
                                : "The project has no main script.";
        return plan;
    }
    plan.main = {*mainPath, *text, *text};
    if (text->empty()) {
        plan.emptyMain = true;
        plan.problem = *mainPath + " is empty: nothing can be included";
        return plan;
    }
    if (!IsInFolder(folder, *mainPath)) {
        const auto copy = planCopy(*mainPath, folder, {});
        plan.problem = copy.why();
        if (!copy) {
            return plan;
        }
        if (copy->number) {
            plan.main.before = withCopyMark(*text, copyMark(*copy->number));
        }
        plan.main.path = copy->destination;
        plan.copies.push_back(*copy);
    }

    KeyedMap<std::string, AddPlan::Copy> sources;  // by the paths of the copies to be made
    Paths taken;
    plan.paths.assign(scriptPaths.begin(), scriptPaths.end());
    for (std::string& path : plan.paths) {
        if (IsInFolder(folder, path) || !IsNumberedTemplate(path)) {
            continue;
        }
        const auto copy = planCopy(path, folder, taken);
        plan.problem = copy.why();
        if (!copy) {
            return plan;
        }
        path = copy->destination;
        taken.insert(lowered(path));
        sources.emplace(path, *copy);
        plan.copies.push_back(*copy);
    }
    const auto read = [&sources](const std::string& path) {
        const auto copy = sources.find(path);
        return copy == sources.end() ? readScriptFacts(path) : factsOfCopy(copy->second);
    };
    const Insertion insertion =
        planInsertion(plan.main.before, plan.main.path, plan.paths, folders.locator(), read);
    plan.problem = insertion.problem;

    KeyedSet<std::string> asked;
    for (const std::string& path : plan.paths) {
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
    plan.main.after = applyInsertion(plan.main.before, insertion).value().value_or(plan.main.before);
    return plan;
}

bool ScriptAdding::carryOut(const AddPlan& plan) {
    m_changed = m_declined = false;
    m_copies.clear();
    m_error = plan.problem;
    if (!m_error.empty()) {
        return plan.emptyMain;
    }
    for (const AddPlan::Copy& copy : plan.copies) {
        if (!makeCopy(copy)) {
            deleteCopies();
            return false;
        }
    }
    if (plan.main.after == plan.main.before) {
        return true;
    }
    const auto again = [&](const std::string& text) {
        const ScriptFolders folders(m_host);
        return applyInsertion(text, planInsertion(text, plan.main.path, plan.paths, folders.locator()));
    };
    const Outcome written = writeMainScript(plan.main, again);
    m_error = written.why();
    m_changed = bool(written);
    if (!m_changed) {
        deleteCopies();
    }
    m_host.MainScriptChanged();
    return true;
}

bool ScriptAdding::AddScriptsToProject(std::span<const std::string> scriptPaths) {
    if (!m_host.GetMainScriptPath()) {
        m_host.CreateMainScript();
    }
    return carryOut(plan(scriptPaths));
}

}  // namespace zoka
