#include "customize/EntityProject.h"

#include "util/PathRules.h"
#include "util/UserPrompt.h"

namespace zoka {

void EntityProject::load() {
    m_components->load();
    m_folder = m_host.GetProjectFolder();
}

bool EntityProject::look() {
    if (!m_open) {
        return false;
    }
    const std::optional<std::string> open = m_open();
    std::string folder;
    bool isOther = !open || !equalNoCase(*open, m_components->file());
    if (isOther && (!open || hasUnsaved())) {
        // A project without a main script is one all the same, so its file doesn't tell.
        folder = m_host.GetProjectFolder();
        // Where only the script is not named, the project is still that of the components.
        isOther = open || folder.empty() || !sameFolder(folder, m_folder);
    }
    const bool before = isElsewhere();
    m_elsewhere = isOther && hasUnsaved() ? Elsewhere(std::move(folder)) : std::nullopt;
    if (isOther && !isElsewhere()) {
        moveTo(open.value_or(""));
        return true;
    }
    return isElsewhere() != before;
}

void EntityProject::moveTo(std::string projectFile) {
    m_components->moveTo(std::move(projectFile));
    m_folder = m_host.GetProjectFolder();
}

void EntityProject::show(std::vector<std::string> entities) {
    m_components->show(isElsewhere() ? std::vector<std::string>() : std::move(entities));
}

PromptAnswer EntityProject::ask() const {
    return userPrompt().ask(std::string(m_elsewhere->empty() ? "The editor has closed the project"
                                                             : "The editor has opened another project") +
                                " since these values were loaded.\n\n"
                                "Yes: save the changes in the project that they belong to, '" +
                                m_components->file() +
                                "'.\nNo: give the changes up.\nCancel: leave all as it is.",
                            "ZOKA", PromptButtons::YesNoCancel, PromptIcon::Warning);
}

SaveResult EntityProject::saveElsewhere() {
    const PromptAnswer answer = ask();
    if (answer == PromptAnswer::Yes) {
        return m_components->save();
    }
    if (answer == PromptAnswer::No) {
        moveTo(m_open().value_or(""));
        return SaveResult::NothingToSave;
    }
    return SaveResult::Cancelled;
}

bool EntityProject::close() {
    if (!isElsewhere()) {
        return m_components->close();
    }
    const PromptAnswer answer = ask();
    return answer == PromptAnswer::Yes ? m_components->save() != SaveResult::Cancelled && !hasUnsaved()
                                       : answer == PromptAnswer::No;
}

}  // namespace zoka
