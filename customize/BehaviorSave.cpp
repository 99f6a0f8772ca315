// What becomes of the edits of components: saving them, closing with them, another project opened in the editor.
#include <algorithm>

#include "customize/BehaviorSession.h"
#include "util/PathRules.h"
#include "util/UserPrompt.h"

namespace zoka {

// True when the rows of components are others now.
bool BehaviorSession::lookAtProject() {
    if (!m_components || !m_openProject) {
        return false;
    }
    const std::optional<std::string> open = m_openProject();
    std::string folder;
    bool isOther = !open || !equalNoCase(*open, m_components->file());
    if (isOther && (!open || hasUnsaved())) {
        // A project without a main script is one all the same, so its file doesn't tell.
        folder = m_host.GetProjectFolder();
        // Where only the script is not named, the project is still that of the components.
        isOther = open || folder.empty() || !sameFolder(folder, m_folder);
    }
    const bool before = otherProjectOpen();
    m_elsewhere = isOther && hasUnsaved() ? Elsewhere(std::move(folder)) : std::nullopt;
    if (isOther && !otherProjectOpen()) {
        moveTo(open.value_or(""));
        return true;
    }
    return otherProjectOpen() != before;
}

void BehaviorSession::moveTo(std::string projectFile) {
    m_components->moveTo(std::move(projectFile));
    m_folder = m_host.GetProjectFolder();
}

SaveResult BehaviorSession::save() {
    if (!m_components) {
        return SaveResult::NothingToSave;
    }
    leaveField();
    if (lookAtProject()) {
        show(m_entities);
    }
    if (otherProjectOpen()) {
        return saveElsewhere();
    }
    const auto names = [this] {
        std::vector<std::string> all;
        for (size_t row = 0; row < m_components->size(); ++row) {
            all.push_back(m_components->nameOf(row));
        }
        return all;
    };
    const std::vector<std::string> before = names();
    const size_t edits = m_components->editsDone();
    const SaveResult saved = m_components->save();
    // The project was loaded anew; where another program had changed it, its rows may be others.
    m_components->show(namedEntities());
    const bool isSame = names() == before && m_components->editsDone() == edits;
    const auto first = std::find_if(m_sources.begin(), m_sources.end(),
                                    [](const Source& source) { return source.component.has_value(); });
    replaceRows(static_cast<size_t>(first - m_sources.begin()), [this] { addComponents(); });
    showRows(m_models, isSame);
    return saved;
}

PromptAnswer BehaviorSession::askElsewhere() const {
    return userPrompt().ask(std::string(m_elsewhere->empty() ? "The editor has closed the project"
                                                             : "The editor has opened another project") +
                                " since these values were loaded.\n\n"
                                "Yes: save the changes in the project that they belong to, '" +
                                m_components->file() +
                                "'.\nNo: give the changes up.\nCancel: leave all as it is.",
                            "ZOKA", PromptButtons::YesNoCancel, PromptIcon::Warning);
}

// Into the project of the edits, or nowhere; then the panel goes on to the one that is open.
SaveResult BehaviorSession::saveElsewhere() {
    const PromptAnswer answer = askElsewhere();
    SaveResult saved = SaveResult::Cancelled;
    if (answer == PromptAnswer::Yes) {
        saved = m_components->save();
    } else if (answer == PromptAnswer::No) {
        moveTo(m_openProject().value_or(""));
        saved = SaveResult::NothingToSave;
    }
    if (!hasUnsaved()) {
        lookAtProject();
        show(m_entities);
    }
    return saved;
}

// Without a call to the editor, which may be waiting for the panel to go.
bool BehaviorSession::close() {
    if (!otherProjectOpen()) {
        return !m_components || m_components->close();
    }
    const PromptAnswer answer = askElsewhere();
    return answer == PromptAnswer::Yes ? m_components->save() != SaveResult::Cancelled && !hasUnsaved()
                                       : answer == PromptAnswer::No;
}

}  // namespace zoka
