#include "templates/ScriptFolders.h"

#include "customize/NumberedScripts.h"
#include "util/OsFiles.h"

namespace zoka {

namespace {

// Nothing where the folder can't be listed to its end: each name is then looked for by itself.
std::optional<KeyedSet<std::string>> filesOf(const std::string& folder) {
    KeyedSet<std::string> names;
    OsListing left;
    for (const OsEntry& entry : osFiles().list(folder + "\\*", &left)) {
        if (!entry.isFolder) {
            names.insert(lowered(entry.name));
        }
    }
    return left.error.empty() ? std::optional(std::move(names)) : std::nullopt;
}

}  // namespace

std::string placeProblem(const std::string& fileName) {
    if (fileName.empty()) {
        return "The catalogue names no file for this script.";
    }
    return staysInFolder(fileName)
               ? fileName + " is neither in the project folder nor in the template folder."
               : "\"" + fileName + "\" is no file name that stays in the project or template folder.";
}

ScriptFolders::ScriptFolders(ZunEditorInterface& host)
    : m_project(host.GetProjectFolder()), m_templates(host.TemplatePath("")) {}

void ScriptFolders::listOnce() {
    m_projectFiles = filesOf(m_project);
    m_templateFiles = filesOf(m_templates.substr(0, m_templates.size() - 1));
}

bool ScriptFolders::isFile(const std::string& path, const std::string& fileName,
                           const Listing& listing) const {
    if (!staysInFolder(fileName)) {
        return false;
    }
    if (listing && isPlainFileName(fileName)) {
        return listing->contains(lowered(fileName));
    }
    const std::optional<OsEntry> entry = osFiles().search(path);
    return entry && !entry->isFolder;
}

ScriptPlace ScriptFolders::LocateScript(const std::string& fileName) const {
    if (isFile(projectPath(fileName), fileName, m_projectFiles)) {
        return ScriptPlace::Project;
    }
    return inTemplates(fileName) ? ScriptPlace::Template : ScriptPlace::NotFound;
}

ScriptPlace ScriptFolders::LocateScript(const std::string& fileName, std::string& path) const {
    const ScriptPlace place = LocateScript(fileName);
    if (place == ScriptPlace::Project) {
        path = projectPath(fileName);
    } else if (place == ScriptPlace::Template) {
        path = templatePath(fileName);
    }
    return place;
}

bool ScriptFolders::inTemplates(const std::string& fileName) const {
    return isFile(templatePath(fileName), fileName, m_templateFiles);
}

std::optional<std::string> ScriptFolders::templateOf(const std::string& fileName) const {
    if (inTemplates(fileName)) {
        return templatePath(fileName);
    }
    const std::string numbered = numberedTemplateOf(fileName);
    return !numbered.empty() && inTemplates(numbered) ? std::optional(templatePath(numbered)) : std::nullopt;
}

LocateFile ScriptFolders::locator() const {
    return [this](const std::string& fileName) {
        std::string path;
        LocateScript(fileName, path);
        return path;
    };
}

bool ScriptFolders::DeleteProjectScript(const std::string& fileName) const {
    const std::string path = projectPath(fileName);
    const std::optional<OsEntry> entry =
        staysInFolder(fileName) ? osFiles().search(path) : std::optional<OsEntry>();
    return entry && !entry->isFolder && osFiles().deleteFile(path);
}

bool ScriptFolders::ReadVersionAndDate(const std::string& fileName, std::string& version, std::string& date,
                                       bool fromTemplate, ScriptFactsReader* reader) const {
    ScriptFactsReader own;
    ScriptFactsReader& facts = reader ? *reader : own;
    static const ScriptFacts kNone;
    const ScriptFacts* found = &kNone;
    if (staysInFolder(fileName)) {
        if (!fromTemplate && LocateScript(fileName) == ScriptPlace::Project) {
            found = &facts.of(projectPath(fileName));
        } else {
            found = &facts.of(templatePath(fileName));
        }
    }
    version = found->version;
    date = found->date;
    return found->readable;
}

}  // namespace zoka
