#include "J8ProjectWizard/J8Wizard.h"

#include <algorithm>

#include "J8ProjectWizard/WizardLog.h"
#include "util/Doors.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "xml/XMLRead.h"

using namespace zoka;

namespace {

constexpr const char* kCheckName = "CJ8Wizard::Check(std::string&, unsigned int)";
constexpr const char* kCheckFilesName = "CheckFiles()";

// The root element of a wizard; the empty node when the file is none. Throws where there is no memory to say which.
XMLNode openWizard(const std::string& path) try {
    const auto bytes = osFiles().readWhole(path);
    XMLResults results;
    XMLNode root = bytes ? XMLNode::parseBytes(*bytes, "Wizard", &results, {}, XMLCharset::Utf8) : XMLNode();
    if (results.outOfMemory) {
        throw std::bad_alloc();
    }
    return root;
} catch (const std::bad_alloc&) {
    throw OutOfMemory(path);
}

std::string titleOf(const XMLNode& wizard, const std::string& path) {
    const std::string title = xmlAllText(wizard.getChild("Title"));
    return title.empty() ? path : title;
}

void takeText(std::string& field, const XMLNode& defaults, const char* name) {
    if (std::string text = xmlAllText(defaults.getChild(name)); !text.empty()) {
        field = std::move(text);
    }
}

int badContent(std::string& message, const std::string& text, const char* func) {
    message = text;
    logWizardError(func, text);
    return kWizardBadContent;
}

// Looks for the template files of a plan's folders.
class FileCheck {
public:
    FileCheck(std::string& message, const CreationPlan& plan, JobProgress* progress)
        : m_message(message), m_progress(progress) {
        for (const PlannedFolder& folder : plan.folders) {
            m_total += folder.checked.size() + folder.files.size();
        }
    }

    int check(const PlannedFolder& folder) {
        m_message.clear();
        int code = kWizardDone;
        for (const auto* files : {&folder.checked, &folder.files}) {
            for (const PlannedFile& file : *files) {
                if (!mayContinue(m_progress, m_done++, m_total,
                                 "Looking for " + normalizePath(file.source))) {
                    m_message.clear();
                    return kWizardCancelled;
                }
                if (file.source.empty()) {
                    m_message = "Empty filename.";
                    logWizardError(kCheckFilesName, "Empty filename");
                    return kWizardBadFile;
                }
                if (!file.hasFolder) {
                    m_message = "Empty foldername.";
                    logWizardError(kCheckFilesName, "Empty foldername");
                    return kWizardBadContent;
                }
                if (!file.refusal.empty()) {
                    return badContent(m_message, file.refusal, kCheckFilesName);
                }
                code = std::min(code, look(file.source));
            }
        }
        return code;
    }

private:
    int look(const std::string& source) {
        switch (osFiles().kindOf(source)) {
            case OsKind::Missing:
                m_message += "Missing file: " + source + "\r\n";
                return kWizardBadFile;
            case OsKind::Unknown:
                logWizardError(kCheckFilesName, "Throw checking source", source);
                return kWizardDone;
            default:
                return kWizardDone;
        }
    }

    std::string& m_message;
    JobProgress* m_progress;
    size_t m_done = 0, m_total = 0;
};

}  // namespace

bool zoka::wizardDesc(std::string& out, const XMLNode& root) {
    const XMLNode description = root.getChild("Desc");
    if (description.isEmpty()) {
        return false;
    }
    out = xmlAllText(description);
    return true;
}

bool zoka::takeWizardDefaults(CJ8WizardUserData& data, const XMLNode& root) {
    const XMLNode defaults = root.getChild("Defaults");
    if (defaults.isEmpty()) {
        return false;
    }
    takeText(data.m_strName, defaults, "Name");
    takeText(data.m_strDocs, defaults, "Docs");
    takeText(data.m_strLevelName, defaults, "LevelName");
    takeText(data.m_strLevelMap, defaults, "LevelMap");
    takeText(data.m_strLevelDocs, defaults, "LevelDocs");
    return true;
}

CJ8Wizard::CJ8Wizard(JobProgress* progress) {
    std::vector<OsListed> entries;
    if (osFiles().kindOf(kWizardsFolder) == OsKind::Folder) {
        osFiles().listFolder(kWizardsFolder, entries);
    }
    const std::string folder = osFiles().fullPath(kWizardsFolder);
    size_t done = 0;
    for (const OsListed& entry : entries) {
        const std::string path = joinPath(folder, entry.name);
        if (!mayContinue(progress, done++, entries.size(), path)) {
            break;
        }
        if (entry.kind != OsKind::File) {
            continue;
        }
        if (const XMLNode wizard = openWizard(path); !wizard.isEmpty()) {
            m_paths.push_back(path);
            m_titles.push_back(titleOf(wizard, path));
        }
    }
    if (entries.empty()) {
        logWizardError("CJ8Wizard::CJ8Wizard()", "Path not found");
    }
}

bool CJ8Wizard::IsWizardFile(const std::string& path) {
    return !openWizard(path).isEmpty();
}

std::string CJ8Wizard::GetWizardTitle(const std::string& path) {
    return osFiles().kindOf(path) == OsKind::Missing ? std::string() : titleOf(openWizard(path), path);
}

bool CJ8Wizard::GetWizardDesc(std::string& out, const std::string& path) {
    return wizardDesc(out, openWizard(path));
}

bool CJ8Wizard::LoadDefaults(CJ8WizardUserData& data, unsigned index) const {
    return takeWizardDefaults(data, root(index));
}

int CJ8Wizard::Check(std::string& message, unsigned index) const {
    return check(message, index, nullptr, nullptr);
}

int CJ8Wizard::Check(std::string& message, unsigned index, const CJ8WizardUserData& data,
                     JobProgress* progress) const {
    return check(message, index, &data, progress);
}

int CJ8Wizard::check(std::string& message, unsigned index, const CJ8WizardUserData* data,
                     JobProgress* progress) const {
    if (index >= m_paths.size()) {
        return kWizardNone;
    }
    const std::string& path = m_paths[index];
    if (!IsWizardFile(path)) {
        message = "Bad Wizard File: " + path;
        logWizardError(kCheckName, "Bad Wizard File", path);
        return kWizardBadFile;
    }
    const XMLNode wizard = openWizard(path);
    if (wizard.isEmpty()) {
        message = "Bad Wizard Xml: " + path;
        logWizardError(kCheckName, "Bad Wizard Xml", path);
        return kWizardBadFile;
    }
    const CreationPlan plan = planCreation(
        wizard, data ? data->m_strLevelMap : xmlAllText(wizard.getChild("Defaults").getChild("LevelMap")));
    FileCheck files(message, plan, progress);
    for (const PlannedFolder& folder : plan.folders) {
        if (folder.isNameless) {
            message = "Empty folder name!";
            logWizardError(kCheckName, "Empty folder name");
            return kWizardBadContent;
        }
        if (!folder.refusal.empty()) {
            return badContent(message, folder.refusal, kCheckName);
        }
        if (const int code = files.check(folder); code < 0) {
            if (code != kWizardCancelled) {
                logWizardError(kCheckName, "CheckFiles error");
            }
            return code;
        }
    }
    // Whatever else the wizard names must stay in its folders, too.
    for (const std::string& refusal : {plan.levelRefusal, plan.level.refusal, plan.projectFiles.refusal,
                                       data ? firstRefusal(plan, data->m_strProjectFolder).text : ""}) {
        if (!refusal.empty()) {
            return badContent(message, refusal, kCheckName);
        }
    }
    return kWizardDone;
}

int CJ8Wizard::CheckFiles(std::string& message, const XMLNode& element) const {
    CreationPlan plan;
    plan.folders.push_back(planFolder(element));
    return FileCheck(message, plan, nullptr).check(plan.folders.front());
}

XMLNode CJ8Wizard::root(unsigned index) const {
    return index < m_paths.size() ? openWizard(m_paths[index]) : XMLNode();
}

std::optional<CreationPlan> CJ8Wizard::plan(unsigned index, const std::string& levelMap) const {
    const XMLNode wizard = root(index);
    return wizard.isEmpty() ? std::nullopt : std::optional(planCreation(wizard, levelMap));
}
