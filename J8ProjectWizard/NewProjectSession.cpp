#include "J8ProjectWizard/NewProjectSession.h"

#include "J8ProjectWizard/WizardNames.h"
#include "util/Doors.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "xml/XMLRead.h"

namespace zoka {
namespace {

// Where a chooser was confirmed last in this run of the program, for Path and TemplatesPath.
std::string& lastChosen(NewProjectField field) {
    static std::string path, templatesPath;
    return field == NewProjectField::Path ? path : templatesPath;
}

// Texts of XML files as fields show them, and back.
std::string fieldText(const std::string& text) {
    std::string shown;
    for (const char c : pathFromXml(text)) {
        if (c == '\n' && !shown.ends_with('\r')) {
            shown += '\r';
        }
        shown += c;
    }
    return shown;
}
std::string xmlText(const std::string& shown) {
    std::string text;
    for (const char c : shown) {
        if (c != '\r') {
            text += c;
        }
    }
    return xmlFromPath(text);
}

std::string nearestFolder(std::string path) {
    while (!path.empty() && osFiles().kindOf(path) != OsKind::Folder) {
        std::string above(folderOf(path));
        if (above.size() >= path.size()) {
            return {};
        }
        path = std::move(above);
    }
    return path;
}

std::string filled(const char* before, const std::string& folder, const char* after) {
    return before + ("\n\n" + folder + "\n\n") + after;
}

}  // namespace

const char* runMessage(int code) {
    switch (code) {
        case kWizardBadIndex:
        case kWizardNoManager:
        case kWizardNotSaved:
            return "Error running wizard (check j8 wizard folder).";
        case kWizardBadFile:
            return "Could not find a file (check j8 wizard folder).";
        case kWizardFolderExists:
            return "Could not overwrite a file/folder (make sure folder doesn't already exist).";
        case kWizardNoFolder:
            return "Could not create a directory (make sure folder doesn't already exist).";
        case kWizardNoCopy:
            return "Could not copy a file (check j8 wizard folder).";
        case -6:
            return "File bad (check j8 wizard folder).";
        default:
            return "";
    }
}

NewProjectSession::NewProjectSession(UserPrompt& prompt, CJ8Wizard wizard)
    : m_prompt(prompt), m_wizard(std::move(wizard)) {
    field(NewProjectField::TemplatesPath) = m_data.m_strTemplatesPath;
    m_filled = m_texts;
}

std::string NewProjectSession::title(size_t wizard) const {
    return pathFromXml(m_wizard.titles()[wizard]);
}

void NewProjectSession::select(int wizard) {
    choose(wizard);
    if (m_isReading) {
        opened(read(wizard));
    }
}

void NewProjectSession::choose(int wizard) {
    if (m_selected >= 0 && !m_isReading) {
        if (m_texts != m_filled) {
            m_typed[m_selected] = m_texts;
        } else {
            m_typed.erase(m_selected);
        }
    }
    m_selected = wizard;
    m_tree = {};
    for (std::string* text : {&m_data.m_strName, &m_data.m_strDocs, &m_data.m_strLevelName,
                              &m_data.m_strLevelMap, &m_data.m_strLevelDocs}) {
        text->clear();
    }
    m_isReading = wizard >= 0 && static_cast<size_t>(wizard) < wizards();
    m_description = wizard < 0 || m_isReading ? "" : "<bad path>";
}

void NewProjectSession::opened(const XMLNode& root) {
    m_isReading = false;
    std::string description;
    if (!wizardDesc(description, root)) {
        m_description = "<none>";
    } else {
        m_description = fieldText(description);
        if (takeWizardDefaults(m_data, root)) {
            fillFields();
        }
    }
    m_filled = m_texts;
    if (const auto typed = m_typed.find(m_selected); typed != m_typed.end()) {
        m_texts = typed->second;
    }
    if (const auto early = m_early.extract(m_selected)) {
        for (const auto& [which, text] : early.mapped()) {
            setText(which, text);
        }
    }
    if (!root.isEmpty()) {
        m_tree = PlanTree(planCreation(root, m_data.m_strLevelMap));
    }
}

void NewProjectSession::fillFields() {
    field(NewProjectField::Name) = fieldText(m_data.m_strName);
    field(NewProjectField::Docs) = fieldText(m_data.m_strDocs);
    field(NewProjectField::Path) = m_data.m_strProjectFolder;
    field(NewProjectField::FolderName).clear();
    field(NewProjectField::TemplatesPath) = m_data.m_strTemplatesPath;
}

void NewProjectSession::setText(NewProjectField which, const std::string& text) {
    if (field(which) == text) {
        return;
    }
    field(which) = text;
    if (m_isReading) {
        m_early[m_selected][which] = text;
    }
    // Another wizard that is chosen now starts with the same folders.
    if (which == NewProjectField::Path) {
        m_data.m_strProjectFolder = text;
    }
}

bool NewProjectSession::browse(NewProjectField which) {
    ChooserRequest request;
    request.title = "Select a folder...";
    request.text = which == NewProjectField::Path ? "Where do you want to create this project?"
                                                  : "Find you J8 Templates Path";
    request.startFolder = nearestFolder(text(which).empty() ? lastChosen(which) : text(which));
    const auto chosen = m_prompt.chooseFolder(request);
    if (!chosen) {
        return false;
    }
    if (osFiles().kindOf(*chosen) != OsKind::Folder) {
        const std::string question =
            filled("The folder:", *chosen, "does not exist. Do you want the folder to be created?");
        if (m_prompt.ask(question, request.title, PromptButtons::YesNo, PromptIcon::None) !=
            PromptAnswer::Yes) {
            return false;
        }
        if (!osFiles().makeFolders(*chosen)) {
            m_prompt.ask(filled("The folder:", *chosen, "can not be created. Please double check."),
                         request.title, PromptButtons::Ok, PromptIcon::Error);
            return false;
        }
    }
    lastChosen(which) = *chosen;
    setText(which, *chosen);
    return true;
}

std::string NewProjectSession::projectFolder() const {
    const std::string& path = text(NewProjectField::Path);
    const std::string name = folderName();
    return path.empty() || name.empty() ? std::string() : withSeparator(osFiles().fullPath(path)) + name;
}

std::string NewProjectSession::folderName() const {
    const std::string& typed = text(NewProjectField::FolderName);
    const size_t last = typed.find_last_not_of("\\/");
    return last == typed.npos ? typed : typed.substr(0, last + 1);
}

std::string NewProjectSession::rowName(size_t row) const {
    if (row > 0) {
        return m_tree.rows()[row].name;
    }
    const std::string name = folderName();
    return name.empty() ? "(the project folder)" : name + "\\";
}

std::string NewProjectSession::rowSize(size_t row) const {
    const PlanRow& one = m_tree.rows()[row];
    return !one.refusal.empty() ? "refused" : m_tree.isMissing(one) ? "missing" : m_tree.sizeText(one);
}

std::string NewProjectSession::rowNote(size_t row) const {
    const PlanRow& one = m_tree.rows()[row];
    if (row == 0) {
        const std::string problem = folderProblem();
        return !problem.empty() || projectFolder().empty() ? problem : "in " + text(NewProjectField::Path);
    }
    if (std::string problem = m_tree.problem(one, projectFolder()); !problem.empty()) {
        return problem;
    }
    if (one.isOnlyChecked) {
        return "only looked for";
    }
    return one.source.empty() && !one.isFolder ? "written anew" : "";
}

bool NewProjectSession::isRowHarmed(size_t row) const {
    return row == 0 ? !folderProblem().empty() : m_tree.isHarmed(m_tree.rows()[row], projectFolder());
}

std::vector<std::string> NewProjectSession::toLookAt() const {
    std::vector<std::string> paths = m_tree.unseen();
    if (const std::string folder = projectFolder(); !folder.empty() && folder != m_seenTarget) {
        paths.insert(paths.begin(), folder);
    }
    if (const std::string& path = text(NewProjectField::TemplatesPath);
        !path.empty() && path != m_seenTemplates) {
        paths.insert(paths.begin(), path);
    }
    return paths;
}

void NewProjectSession::seen(const DiskLook& look) {
    if (look.path == projectFolder()) {
        m_seenTarget = look.path;
        m_targetExists = look.kind != OsKind::Missing;
    }
    if (look.path == text(NewProjectField::TemplatesPath)) {
        m_seenTemplates = look.path;
        m_templatesThere = look.kind == OsKind::Folder;
    }
    m_tree.seen(look);
}

// Such a folder would be made beside the project path, or under another name than was typed.
std::string NewProjectSession::folderNameRefusal() const {
    const std::string name = folderName();
    const std::string why = nameRefusal(name);
    return why.empty() ? why : "The folder name \"" + name + "\" " + why + ".";
}

// What is wrong with the project folder.
std::string NewProjectSession::folderProblem() const {
    const std::string folder = projectFolder();
    if (std::string refusal = folderNameRefusal(); !refusal.empty()) {
        return refusal;
    }
    if (m_targetExists && folder == m_seenTarget) {
        return "There is a folder or file of that name already: " + folder;
    }
    return folderRefusal(folder);
}

std::string NewProjectSession::hindrance() const {
    if (m_selected < 0) {
        return wizards() == 0 ? std::string("There is no wizard in ") + kWizardsFolder : "Choose a wizard.";
    }
    const std::string folder = projectFolder();
    if (std::string problem = m_tree.firstProblem(folder); !problem.empty()) {
        return problem;
    }
    if (m_data.m_strLevelMap.empty()) {
        return "This wizard names no level map: no project can be made with it here.";
    }
    if (std::string problem = folderProblem(); !problem.empty()) {
        return problem;
    }
    if (std::string problem = mapRefusal(withSeparator(folder) + pathFromXml(m_data.m_strLevelMap));
        !folder.empty() && !problem.empty()) {
        return problem;
    }
    const std::pair<NewProjectField, const char*> needed[] = {
        {NewProjectField::Name, "a project name"},
        {NewProjectField::Path, "a project path"},
        {NewProjectField::FolderName, "a project folder name"},
        {NewProjectField::TemplatesPath, "a J8 templates path"},
    };
    std::string missing;
    for (const auto& [which, what] : needed) {
        if (text(which).empty()) {
            missing.append(missing.empty() ? "Still needed: " : ", ").append(what);
        }
    }
    return missing.empty() ? missing : missing + ".";
}

std::string NewProjectSession::doubt() const {
    const std::string& path = text(NewProjectField::TemplatesPath);
    return m_templatesThere || path != m_seenTemplates ? "" : "There is no J8 templates folder " + path;
}

std::string NewProjectSession::state() const {
    if (m_isReading) {
        return "Reading the wizard...";
    }
    if (std::string what = hindrance(); !what.empty()) {
        return what;
    }
    const std::string wrong = doubt();
    return wrong + (wrong.empty() ? "" : ". ") + "OK makes " + m_tree.summary() +
           (m_tree.countUnseen() > 0 ? " so far..." : ".");
}

std::string NewProjectSession::storedText(NewProjectField which, const std::string& original) const {
    // A default that the user left alone stays as it is, also where the field can't show all its characters.
    return text(which) == fieldText(original) ? original : xmlText(text(which));
}

// What the user typed, into the data; false when something is missing, which the user has been told.
bool NewProjectSession::takeFields() {
    const auto refuse = [this](const char* message, std::optional<NewProjectField> which = {}) {
        m_asked = which;
        m_prompt.tell(message);
        return false;
    };
    m_asked.reset();
    if (m_selected < 0 || static_cast<size_t>(m_selected) >= wizards()) {
        return refuse("Select a Wizard.");
    }
    if (text(NewProjectField::Name).empty()) {
        return refuse("Enter a Project Name.", NewProjectField::Name);
    }
    m_data.m_strName = storedText(NewProjectField::Name, m_data.m_strName);
    if (text(NewProjectField::Path).empty()) {
        return refuse("Enter a Project Path.", NewProjectField::Path);
    }
    if (text(NewProjectField::FolderName).empty()) {
        return refuse("Enter a Project Folder Name.", NewProjectField::FolderName);
    }
    m_data.m_strProjectFolder = projectFolder();
    if (!text(NewProjectField::Docs).empty()) {
        m_data.m_strDocs = storedText(NewProjectField::Docs, m_data.m_strDocs);
    }
    if (m_data.m_strLevelMap.empty()) {
        return refuse("Error: Bad LevelMap name.");
    }
    if (text(NewProjectField::TemplatesPath).empty()) {
        return refuse("Enter a J8 Templates Path.", NewProjectField::TemplatesPath);
    }
    m_data.m_strTemplatesPath = text(NewProjectField::TemplatesPath);
    if (const std::string why = folderNameRefusal(); !why.empty()) {
        return refuse(why.c_str(), NewProjectField::FolderName);
    }
    return true;
}

std::optional<NewProject> NewProjectSession::ok(const RunJob& runJob) {
    if (m_isReading) {
        opened(read(m_selected));
    }
    auto made = takeFields() ? create(runJob) : std::nullopt;
    if (!made) {
        m_data.m_strProjectFolder = text(NewProjectField::Path);
        m_tree.forgetSeen();
        m_seenTarget.clear();
        m_seenTemplates.clear();
    }
    return made;
}

std::optional<NewProject> NewProjectSession::create(const RunJob& runJob) {
    m_data.m_strMessage.clear();
    const auto index = static_cast<unsigned>(m_selected);
    int code = kWizardDone;
    bool isSound = false;
    CreationRecord record;
    runJob([&](JobProgress* progress) {
        try {
            code = m_wizard.Check(m_data.m_strMessage, index, m_data, progress);
        } catch (const OutOfMemory& out) {
            code = kWizardNotSaved;
            m_data.m_strMessage = outOfMemoryText(out.file());
        }
        isSound = code >= 0;
        if (isSound) {
            code = m_wizard.Run(m_data, index, {progress, &record});
        }
    });
    if (code >= 0) {
        return NewProject{withSeparator(m_data.m_strProjectFolder), pathFromXml(m_data.m_strLevelMap)};
    }
    if (const char* message = runMessage(code); isSound && *message) {
        m_prompt.tell(message);
    }
    if (!m_data.m_strMessage.empty()) {
        m_prompt.tell(m_data.m_strMessage);
    }
    offerRemoval(m_prompt, record, code == kWizardCancelled, runJob);
    return std::nullopt;
}

void offerRemoval(UserPrompt& prompt, CreationRecord& record, bool cancelled, const RunJob& runJob) {
    if (record.isEmpty()) {
        return;
    }
    const std::string made =
        countOf(record.folders(), "folder", "folders") + " and " + countOf(record.files(), "file", "files");
    const std::string question =
        (cancelled ? "Creating the project was cancelled." : "The project is not complete.") +
        std::string("\n\nRemove what was made of it (") + made + ")?";
    if (prompt.ask(question, "ZOKA", PromptButtons::YesNo, PromptIcon::Warning) != PromptAnswer::Yes) {
        return;
    }
    CreationRecord::Removal removal;
    runJob([&](JobProgress* progress) { removal = record.remove(progress); });
    if (const auto& left = removal.left; !left.empty()) {
        prompt.tell((removal.isStopped ? "Removing was stopped."
                                       : "Not everything could be removed, or it was changed meanwhile.") +
                    std::string(" This is left:\n\n") + left.front() +
                    (left.size() > 1 ? "\nand " + std::to_string(left.size() - 1) + " more" : ""));
    }
}

}  // namespace zoka
