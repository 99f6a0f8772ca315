#include "templates/CatalogueCheck.h"

#include <algorithm>

#include "templates/CatalogueText.h"
#include "templates/CatalogueXml.h"
#include "templates/ScriptHeader.h"
#include "templates/ScriptNeeds.h"
#include "util/Doors.h"
#include "util/KeyedHash.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "xml/XMLNode.h"

namespace zoka {

namespace {

void addLines(std::vector<CatalogueFinding>& findings, const std::string& script, const std::string& report) {
    for (size_t at = 0; at < report.size();) {
        const size_t end = std::min(report.find('\n', at), report.size());
        findings.push_back({script, report.substr(at, end - at)});
        at = end + 1;
    }
}

// Says of a name of a file or folder that the catalogue has another: what is looked for by it is not found.
void findRenamed(std::vector<CatalogueFinding>& findings, const std::string& script, const char* what,
                 const std::string& name) {
    if (const std::string written = withoutMarkup(name); written != name) {
        findings.push_back({script, std::string(what) + " \"" + name + "\" stands in the catalogue as \"" +
                                        written + "\" and won't be found by it: rename it"});
    }
}

// Names the fields with characters that a catalogue can't hold.
void findDropped(std::vector<CatalogueFinding>& findings, const CScriptElm& script) {
    const auto look = [&](const char* field, const std::string& text) {
        const std::string_view all = text;
        size_t at = 0;
        while (at < all.size() && droppedBytes(all.substr(at)) == 0) {
            ++at;
        }
        if (at < all.size()) {
            const size_t bytes = droppedBytes(all.substr(at));
            findings.push_back(
                {script.m_filename, std::string("its ") + field + " holds " +
                                        (bytes == 1 ? "the control character " +
                                                          std::to_string(static_cast<unsigned char>(all[at]))
                                                    : "a character that no text has (U+FFFE or U+FFFF)") +
                                        ", which a catalogue can't hold; it is left out"});
        }
    };
    look("id", script.m_id);
    look("prefix", script.m_prefix);
    look("title", script.m_name);
    look("description", script.m_desc);
    look("note", script.m_note);
    look("class", script.m_class);
    look("type", script.m_type);
    look("version", script.m_vers);
    look("date", script.m_date);
    look("engine requirement", script.m_engreq.AsText());
    findRenamed(findings, script.m_filename, "its file name", script.m_filename);
    for (const std::string& need : script.m_needs) {
        findRenamed(findings, script.m_filename, "its need", need);
    }
    for (const CScriptSection& section : script.m_sections) {
        look("section", section.m_name + section.m_text + section.m_imgfile);
        for (const CScriptAction& action : section.m_actions) {
            look("action", action.m_name + action.m_filename + action.m_desc + action.m_engreq.AsText());
        }
    }
}

class Checker {
public:
    Checker(const CTemplateData& catalogue, const std::string& folder)
        : m_catalogue(catalogue), m_folder(folder) {
        m_scripts.reserve(catalogue.rows().size());
        for (CScriptElm script : catalogue.scripts()) {
            // What is wrong with a need is told once, however often it is written.
            KeyedSet<std::string> needs;
            std::erase_if(script.m_needs,
                          [&](const std::string& need) { return !needs.insert(lowered(need)).second; });
            m_scripts.push_back(std::move(script));
        }
        for (size_t i = 0; i < m_scripts.size(); ++i) {
            m_byFile.try_emplace(lowered(m_scripts[i].m_filename), i);
        }
    }

    std::vector<CatalogueFinding> run() {
        if (m_scripts.empty()) {
            m_findings.push_back({"", "the catalogue holds no script"});
        }
        KeyedMap<std::string, size_t> titles;
        for (size_t i = 0; i < m_scripts.size(); ++i) {
            const CScriptElm& script = m_scripts[i];
            CScriptElm complete = script;
            complete.m_prefix = "-";  // never read back
            std::string report;
            complete.CheckComplete(report);
            addLines(m_findings, nameOf(i), report);
            const auto [title, newTitle] = titles.try_emplace(script.m_name, i);
            if (!newTitle && !script.m_name.empty()) {
                find(i, "the title \"" + script.m_name + "\" is that of " + nameOf(title->second) + " too");
            }
            if (!script.m_filename.empty() && m_byFile.at(lowered(script.m_filename)) != i) {
                find(i, "an earlier script has this file name");
            }
            if (!script.m_directory.empty() && !m_catalogue.findDirectory(script.m_directory)) {
                find(i, "the catalogue has no directory \"" + script.m_directory + "\"");
            }
            if (!script.m_filename.empty() && !staysInFolder(script.m_filename)) {
                find(i, "its file name is none that stays in the template folder");
            }
            checkNeeds(i);
            if (!m_folder.empty()) {
                checkFile(i);
            }
        }
        findCircles();
        return std::move(m_findings);
    }

private:
    std::string nameOf(size_t i) const {
        return m_scripts[i].m_filename.empty() ? m_scripts[i].m_name : m_scripts[i].m_filename;
    }
    void find(size_t i, std::string text) { m_findings.push_back({nameOf(i), std::move(text)}); }

    void checkNeeds(size_t i) {
        for (const std::string& need : m_scripts[i].m_needs) {
            if (!isIncludableName(need)) {
                find(i, "needs \"" + need + "\", which is not a file name that can be included");
            } else if (equalNoCase(need, m_scripts[i].m_filename)) {
                find(i, "needs itself");
            } else if (!m_byFile.contains(lowered(need))) {
                find(i, "needs " + need + ", which is not in the catalogue");
            }
        }
    }

    void checkFile(size_t i) {
        const CScriptElm& script = m_scripts[i];
        if (!staysInFolder(script.m_filename)) {
            return;  // found above
        }
        CScriptElm file;
        std::string ignored;
        if (!loadScriptHeader(joinPath(m_folder, script.m_filename), script.m_filename, file, ignored)) {
            find(i, "the file is missing in the template folder");
        } else if (file.m_vers != script.m_vers) {
            find(i, "the file is of version " + file.m_vers + ", the catalogue says " + script.m_vers);
        } else if (file.m_date != script.m_date) {
            find(i, "the file is of " + file.m_date + ", the catalogue says " + script.m_date);
        }
    }

    // Depth first, without recursion: a need that is on the way already closes a circle.
    void findCircles() {
        enum class State : char { New, OnTheWay, Done };
        std::vector<State> states(m_scripts.size(), State::New);
        struct Step {
            size_t script;
            size_t next;
        };
        std::vector<Step> way;
        for (size_t start = 0; start < m_scripts.size(); ++start) {
            if (states[start] != State::New) {
                continue;
            }
            states[start] = State::OnTheWay;
            way.push_back({start, 0});
            while (!way.empty()) {
                const size_t script = way.back().script;
                if (way.back().next == m_scripts[script].m_needs.size()) {
                    states[script] = State::Done;
                    way.pop_back();
                    continue;
                }
                const auto need = m_byFile.find(lowered(m_scripts[script].m_needs[way.back().next++]));
                if (need == m_byFile.end() || need->second == script) {
                    continue;
                }
                if (states[need->second] == State::OnTheWay) {
                    find(script, "its need " + nameOf(need->second) + " needs this script, directly or not");
                }
                if (states[need->second] != State::New) {
                    continue;
                }
                states[need->second] = State::OnTheWay;
                way.push_back({need->second, 0});
            }
        }
    }

    std::vector<CScriptElm> m_scripts;  // made once: each is looked at often
    const CTemplateData& m_catalogue;
    const std::string& m_folder;
    KeyedMap<std::string, size_t> m_byFile;
    std::vector<CatalogueFinding> m_findings;
};

}  // namespace

std::vector<CatalogueFinding> checkCatalogue(const CTemplateData& catalogue,
                                             const std::string& templateFolder) {
    return Checker(catalogue, templateFolder).run();
}

bool buildCatalogue(CTemplateData& catalogue, const std::string& templateFolder, const CTemplateData* earlier,
                    std::vector<CatalogueFinding>& findings, std::vector<Unreadable>& unreadable,
                    OsListing* left) {
    bool any = false;
    for (const auto& [type, path] : catalogue.directories()) {
        findRenamed(findings, "", "the folder", path);
    }
    for (const OsEntry& entry : osFiles().list(joinPath(templateFolder, "*.kez"), left)) {
        if (entry.isFolder) {
            continue;
        }
        any = true;
        CScriptElm script;
        std::string report;
        if (!loadScriptHeader(joinPath(templateFolder, entry.name), entry.name, script, report)) {
            unreadable.push_back({entry.name, osFiles().lastError()});
            if (auto known = earlier ? earlier->findByFilenameNoCase(entry.name) : std::nullopt) {
                catalogue.AddScript(std::move(*known));
            }
            continue;
        }
        addLines(findings, entry.name, report);
        findDropped(findings, script);
        catalogue.AddScript(std::move(script));
    }
    return any;
}

std::optional<CatalogueFinding> findUnreadable(const CTemplateData& catalogue, XMLCharset charset) {
    for (const CScriptElm& script : catalogue.scripts()) {
        CTemplateData one;
        one.AddScript(script);
        XMLResults results;
        if (XMLNode::parseText(catalogueText(one, "").c_str(), kCatalogueRoot, &results, charset).isEmpty()) {
            if (results.outOfMemory) {
                throw OutOfMemory(script.m_filename);
            }
            return CatalogueFinding{
                script.m_filename, std::string("what its header says can't be read back from a catalogue: ") +
                                       XMLNode::errorText(results.code)};
        }
    }
    return {};
}

}  // namespace zoka
