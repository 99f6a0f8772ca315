#include "J8ProjectWizard/J8Wizard.h"

#include "J8ProjectWizard/WizardLog.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "xml/XMLRead.h"

using namespace zoka;

namespace {

constexpr const char* kCheckName = "CJ8Wizard::Check(std::string&, unsigned int)";
constexpr const char* kCheckFilesName = "CheckFiles()";

// The root element of a wizard; the empty node when the file is none.
XMLNode openWizard(const std::string& path) {
    return XMLNode::parseFile(path.c_str(), "Wizard", nullptr, {}, XMLCharset::Utf8);
}

std::string titleOf(const XMLNode& wizard, const std::string& path) {
    const std::string title = xmlFirstText(wizard.getChild("Title"));
    return title.empty() ? path : title;
}

void takeText(std::string& field, const XMLNode& defaults, const char* name) {
    if (const char* text = defaults.getChild(name).getText()) {
        field = text;
    }
}

int badContent(std::string& message, const std::string& text, const char* func) {
    message = text;
    logWizardError(func, text);
    return kWizardBadContent;
}

}  // namespace

CJ8Wizard::CJ8Wizard() {
    std::vector<OsListed> entries;
    if (osFiles().kindOf(kWizardsFolder) == OsKind::Folder) {
        osFiles().listFolder(kWizardsFolder, entries);
    }
    const std::string folder = osFiles().fullPath(kWizardsFolder);
    for (const OsListed& entry : entries) {
        if (entry.kind != OsKind::File) {
            continue;
        }
        const std::string path = joinPath(folder, entry.name);
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
    const XMLNode description = openWizard(path).getChild("Desc");
    if (description.isEmpty()) {
        return false;
    }
    out = xmlFirstText(description);
    return true;
}

bool CJ8Wizard::LoadDefaults(CJ8WizardUserData& data, unsigned index) const {
    if (index >= m_paths.size()) {
        return false;
    }
    const XMLNode defaults = openWizard(m_paths[index]).getChild("Defaults");
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

int CJ8Wizard::Check(std::string& message, unsigned index) const {
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
    for (XMLNode folder = wizard.firstChild("Folder"); !folder.isEmpty();
         folder = folder.nextSibling("Folder")) {
        if (*xmlAttribute(folder, "name") == '\0') {
            message = "Empty folder name!";
            logWizardError(kCheckName, "Empty folder name");
            return kWizardBadContent;
        }
        if (const std::string refusal = planFolder(folder).refusal; !refusal.empty()) {
            return badContent(message, refusal, kCheckName);
        }
        if (const int code = CheckFiles(message, folder); code < 0) {
            logWizardError(kCheckName, "CheckFiles error");
            return code;
        }
    }
    // Whatever else the wizard names must stay in its folders, too.
    const char* map = wizard.getChild("Defaults").getChild("LevelMap").getText();
    const CreationPlan plan = planCreation(wizard, map ? map : "");
    for (const std::string& refusal : {plan.levelRefusal, plan.level.refusal, plan.projectFiles.refusal}) {
        if (!refusal.empty()) {
            return badContent(message, refusal, kCheckName);
        }
    }
    return kWizardDone;
}

int CJ8Wizard::Check(std::string& message, unsigned index, const CJ8WizardUserData& data) const {
    if (const int code = Check(message, index); code < 0) {
        return code;
    }
    const XMLNode wizard = openWizard(m_paths[index]);
    const PlanRefusal refusal =
        firstRefusal(planCreation(wizard, data.m_strLevelMap), data.m_strProjectFolder);
    return refusal.text.empty() ? kWizardDone : badContent(message, refusal.text, kCheckName);
}

int CJ8Wizard::CheckFiles(std::string& message, const XMLNode& element) const {
    message.clear();
    int code = kWizardDone;
    const PlannedFolder folder = planFolder(element);
    for (const auto* files : {&folder.checked, &folder.files}) {
        for (const PlannedFile& file : *files) {
            if (file.source.empty()) {
                message = "Empty filename.";
                logWizardError(kCheckFilesName, "Empty filename");
                return kWizardBadFile;
            }
            if (!file.hasFolder) {
                message = "Empty foldername.";
                logWizardError(kCheckFilesName, "Empty foldername");
                return kWizardBadContent;
            }
            if (!file.refusal.empty()) {
                return badContent(message, file.refusal, kCheckFilesName);
            }
            switch (osFiles().kindOf(file.source)) {
                case OsKind::Missing:
                    code = kWizardBadFile;
                    message += "Missing file: " + file.source + "\r\n";
                    break;
                case OsKind::Unknown:
                    logWizardError(kCheckFilesName, "Throw checking source", file.source);
                    break;
                default:
                    break;
            }
        }
    }
    return code;
}

std::optional<CreationPlan> CJ8Wizard::plan(unsigned index, const std::string& levelMap) const {
    const XMLNode wizard = index < m_paths.size() ? openWizard(m_paths[index]) : XMLNode();
    return wizard.isEmpty() ? std::nullopt : std::optional(planCreation(wizard, levelMap));
}
