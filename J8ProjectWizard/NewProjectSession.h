// The new-project dialog without its window: what it shows, and what its buttons do, in which order and with
// which texts.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "J8ProjectWizard/J8Wizard.h"
#include "J8ProjectWizard/PlanTree.h"
#include "util/JobProgress.h"
#include "util/UserPrompt.h"

namespace zoka {

enum class NewProjectField { Name, Docs, Path, FolderName, TemplatesPath };
inline constexpr size_t kProjectFields = 5;

// What was made.
struct NewProject {
    std::string folder;  // with its trailing separator
    std::string level;   // name of the level map without extension
};

// Work on the disk that asks nothing, and who runs it to its end.
using WizardJob = std::function<void(JobProgress*)>;
using RunJob = std::function<void(const WizardJob&)>;

// Field texts, descriptions and messages are in the system's character set; lines end in CR LF. [editor thread]
class NewProjectSession {
public:
    // `prompt` outlives the session.
    explicit NewProjectSession(UserPrompt& prompt, CJ8Wizard wizard = CJ8Wizard());

    size_t wizards() const { return m_wizard.titles().size(); }
    std::string title(size_t wizard) const;

    // -1: none. Fills description and fields; what the user typed for that wizard before comes back.
    void select(int wizard);
    // The same in parts, for a disk that may be slow: between choose() and opened(read(wizard)) the fields show what
    // they showed, and what is typed in them stays that wizard's, also where another one is chosen before it is opened.
    void choose(int wizard);
    bool isReading() const { return m_isReading; }
    // [any thread]
    XMLNode read(int wizard) const { return m_wizard.root(static_cast<unsigned>(wizard)); }
    void opened(const XMLNode& wizard);
    int selected() const { return m_selected; }
    const std::string& description() const { return m_description; }

    const std::string& text(NewProjectField field) const { return m_texts[static_cast<size_t>(field)]; }
    // The user has typed; no disk is touched.
    void setText(NewProjectField field, const std::string& text);
    // The browse button of Path or TemplatesPath: true when a folder was chosen, which is the field's text then.
    bool browse(NewProjectField field);

    // What will be made. The tree stays while the user types.
    const PlanTree& tree() const { return m_tree; }
    // The cells of a row; a row's problem may change with the project folder.
    std::string rowName(size_t row) const;
    std::string rowSize(size_t row) const;  // or, in a word, why there is none
    std::string rowSource(size_t row) const { return shownSource(m_tree.rows()[row]); }
    // What is wrong with it, or what it is where that doesn't go without saying.
    std::string rowNote(size_t row) const;
    bool isRowHarmed(size_t row) const;

    // Paths that are to be looked at on the disk, what matters most first, and what came of it: `session.seen(lookAt(
    // path))`. Nothing else looks while the user types; who has a window looks on another thread.
    std::vector<std::string> toLookAt() const;
    void seen(const DiskLook& look);

    // What keeps OK from being pressed with success, or what it will make: one line.
    std::string state() const;
    // Whether that line is about something wrong.
    bool isWrong() const { return !m_isReading && (!hindrance().empty() || !doubt().empty()); }

    // The OK button: the new project when it was made. Otherwise the user has been told why. `runJob` runs its
    // argument, which asks nothing, to its end with a progress that shows how far it is; on another thread if it
    // likes.
    std::optional<NewProject> ok(const RunJob& runJob);
    // The field that the last OK has asked for.
    std::optional<NewProjectField> asked() const { return m_asked; }

private:
    using Texts = std::array<std::string, kProjectFields>;

    std::string& field(NewProjectField which) { return m_texts[static_cast<size_t>(which)]; }
    void fillFields();
    // The texts of name and documentation as the data holds them.
    std::string storedText(NewProjectField which, const std::string& original) const;
    std::string projectFolder() const;
    // As typed, without separators behind it.
    std::string folderName() const;
    std::string folderNameRefusal() const;
    std::string folderProblem() const;
    std::string hindrance() const;
    // What is wrong, though the project can be made.
    std::string doubt() const;
    bool takeFields();
    std::optional<NewProject> create(const RunJob& runJob);

    UserPrompt& m_prompt;
    CJ8Wizard m_wizard;
    CJ8WizardUserData m_data;
    int m_selected = -1;
    bool m_isReading = false;
    // Typed for wizards that are still to be read, also of those that the user has left.
    std::map<int, std::map<NewProjectField, std::string>> m_early;
    std::string m_description;
    Texts m_texts;                 // as they stand in the fields
    Texts m_filled;                // as the wizard filled them
    std::map<int, Texts> m_typed;  // of wizards that the user has left, where something was typed
    PlanTree m_tree;
    // The project folder when it was looked at last.
    std::string m_seenTarget;
    bool m_targetExists = false;
    // The templates' folder when it was looked at last.
    std::string m_seenTemplates;
    bool m_templatesThere = true;
    std::optional<NewProjectField> m_asked;
};

// Asks whether what a run has made is to be removed, if it has made anything, and removes it; `runJob` runs the
// removal.
void offerRemoval(UserPrompt& prompt, CreationRecord& record, bool cancelled, const RunJob& runJob);

// The message for a code of CJ8Wizard::Run; empty for one that needs none. Static.
const char* runMessage(int code);

}  // namespace zoka
