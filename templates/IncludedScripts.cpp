#include "templates/IncludedScripts.h"

#include <algorithm>

#include "customize/NumberedScripts.h"
#include "templates/IncludeList.h"
#include "templates/ScriptFolders.h"
#include "util/PathRules.h"

namespace zoka {

std::optional<std::uint32_t> templateRecordOf(const CTemplateData& catalogue, const std::string& fileName) {
    if (const auto record = catalogue.recordByFilenameNoCase(fileName)) {
        return record;
    }
    const std::string original = numberedTemplateOf(fileName);
    return original.empty() ? std::nullopt : catalogue.recordByFilenameNoCase(original);
}

std::vector<std::string> needsOf(const CScriptElm& script, const std::string& fileName) {
    std::vector<std::string> needs = script.m_needs;
    if (!equalNoCase(script.m_filename, fileName)) {
        const std::string_view name = splitPath(fileName).name;
        const std::string_view mark = name.substr(splitPath(script.m_filename).name.size() - 1);
        for (std::string& need : needs) {
            need = withCopyMark(need, mark);
        }
    }
    return needs;
}

std::vector<std::string> pathsOfIncludedScripts(ZunEditorInterface& host) {
    std::vector<std::string> paths;
    const auto mainScript = host.GetMainScriptPath();
    if (!mainScript) {
        return paths;
    }
    paths.push_back(*mainScript);
    std::vector<std::string> names;
    try {
        ReadIncludeList(*mainScript, names);
    } catch (const EmptyScriptError&) {
        return paths;
    }
    const ScriptFolders folders(host);
    for (const std::string& name : names) {
        std::string path;
        if (folders.LocateScript(name, path) != ScriptPlace::NotFound) {
            paths.push_back(path);
        }
    }
    return paths;
}

Outcome IncludedScripts::read() {
    m_scripts.clear();
    m_byText.clear();
    m_byFile.clear();
    m_records.clear();
    m_needers.reset();
    Outcome found;
    std::vector<std::string> names;
    if (const auto mainPath = m_host.GetMainScriptPath()) {
        found = readIncludes(*mainPath, names);
    }
    for (std::string& name : names) {
        IncludedScript entry{name, name, {}};
        if (const auto record = templateRecordOf(m_catalogue, name)) {
            entry.script = m_catalogue.script(*record);
            entry.text = entry.script->DisplayName();
            // A title stands for one file: where it would mean another, the file name makes it plain.
            const auto named = m_catalogue.findByName(entry.text);
            if (!named || !equalNoCase(named->m_filename, name)) {
                entry.text += " (" + name + ")";
            }
            m_records.insert(*record);
        }
        m_byText.try_emplace(entry.text, m_scripts.size());
        m_byFile.try_emplace(lowered(name), m_scripts.size());
        m_scripts.push_back(std::move(entry));
    }
    return found;
}

const IncludedScript* IncludedScripts::byText(const std::string& text) const {
    const auto found = m_byText.find(text);
    return found == m_byText.end() ? nullptr : &m_scripts[found->second];
}

std::optional<size_t> IncludedScripts::byFile(std::string_view fileName) const {
    const auto found = m_byFile.find(lowered(fileName));
    return found == m_byFile.end() ? std::nullopt : std::optional(found->second);
}

const IncludedScripts::Needers& IncludedScripts::needers() const {
    if (m_needers) {
        return *m_needers;
    }
    m_needers.emplace();
    std::optional<ScriptFolders> folders;  // made when one of the user's own scripts comes
    for (size_t i = 0; i < m_scripts.size(); ++i) {
        const IncludedScript& entry = m_scripts[i];
        std::vector<std::string> needs;
        std::string path;
        if (entry.script) {
            needs = needsOf(*entry.script, entry.fileName);
        } else {
            if (!folders) {
                folders.emplace(m_host).listOnce();
            }
            if (folders->LocateScript(entry.fileName, path) != ScriptPlace::NotFound) {
                ReadNeeds(path, needs);
            }
        }
        for (const std::string& need : needs) {
            std::vector<size_t>& who = (*m_needers)[need];
            if (who.empty() || who.back() != i) {
                who.push_back(i);
            }
        }
    }
    return *m_needers;
}

std::vector<size_t> IncludedScripts::dependents(const std::string& fileName,
                                                const IncludedScript* self) const {
    std::vector<size_t> result;
    const auto found = needers().find(fileName);
    if (found != needers().end()) {
        std::copy_if(found->second.begin(), found->second.end(), std::back_inserter(result),
                     [&](size_t index) { return !self || m_scripts[index].text != self->text; });
    }
    return result;
}

std::vector<size_t> IncludedScripts::dependents(size_t index) const {
    // The catalogue's spelling counts; a copy has a name of its own.
    const IncludedScript& entry = m_scripts[index];
    const bool spelled = entry.script && equalNoCase(entry.script->m_filename, entry.fileName);
    return dependents(spelled ? entry.script->m_filename : entry.fileName, &entry);
}

std::vector<IncludedScripts::Need> IncludedScripts::allThatNeed(size_t index) const {
    // Breadth first finds the shortest ways; the lists of children then give the tree's order.
    std::vector<Need> found = {{index, index, 0}};
    std::unordered_set<size_t> seen = {index};
    std::vector<std::vector<size_t>> children(1);  // places in `found`
    for (size_t at = 0; at < found.size(); ++at) {
        const Need from = found[at];
        for (const size_t needer : dependents(from.script)) {
            if (seen.insert(needer).second) {
                children[at].push_back(found.size());
                found.push_back({needer, from.script, from.depth + 1});
                children.emplace_back();
            }
        }
    }
    std::vector<Need> result;
    std::vector<size_t> open(children[0].rbegin(), children[0].rend());
    while (!open.empty()) {
        const size_t at = open.back();
        open.pop_back();
        result.push_back(found[at]);
        open.insert(open.end(), children[at].rbegin(), children[at].rend());
    }
    return result;
}

}  // namespace zoka
