// KEZ Customize without its window: everything that the panel decides.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "controls/EditHistory.h"
#include "controls/PanelFilter.h"
#include "customize/CarryValues.h"
#include "customize/ScriptPanel.h"
#include "customize/WriteBack.h"
#include "plugin/host/ZunEditorInterface.h"
#include "util/UserPrompt.h"

namespace zoka {

// The window, as the session needs it. [panel thread]
class CustomizeView {
public:
    virtual ~CustomizeView() = default;
    virtual void bringToFront() {}
    // To the top of all windows and released again, so that the panel isn't left behind the editor's window.
    virtual void raiseOnce() {}
    // All rows are others than before: forget every window of a row.
    virtual void rowsReplaced() {}
    // Values changed, of whichever rows: show them anew.
    virtual void valuesChanged() {}
};

enum class SaveResult {
    Saved,
    NothingToSave,  // no value has changed: nothing was written
    Cancelled,      // by the user
    Failed,         // the user has been told
};

enum class ResetTo { Loaded, Default };

// One panel's script. Host, prompt and view must outlive it. [panel thread]
class CustomizeSession {
public:
    CustomizeSession(ZunEditorInterface& host, UserPrompt& prompt, CustomizeView* view = nullptr);
    CustomizeSession(const CustomizeSession&) = delete;
    CustomizeSession& operator=(const CustomizeSession&) = delete;

    // Loads a script; without a name the level's main script. False, with the rows as they were, when there
    // is none or it can't be read; no message.
    bool open(const std::string& fileName = {});
    // The same from the panel, for another script: asks about changes first, as closing does, and tells why it
    // can't be read.
    bool switchTo(const std::string& fileName);
    // The scripts that the panel offers to switch to; filled by whoever makes the session.
    std::vector<std::string> scriptChoices;

    // --- The buttons. All messages go through the prompt. Without a script they do nothing.
    SaveResult save();
    // True when the panel may close.
    bool close();
    // Both true when the template's copy took the script's place and was loaded.
    bool restore();
    bool update();

    // --- Rows
    const CustomScript& script() const { return m_panel.script; }
    size_t size() const { return m_panel.size(); }
    const EntryModel& row(size_t i) const { return m_panel.row(i); }
    const CustomEntry& entry(size_t i) const { return m_panel.script.entries[i]; }
    size_t changedCount() const { return countChanges(m_panel.script); }

    // --- Edits
    // What the user typed or chose. False with the reason, and the value as it was, when it's refused. With
    // `typing` the edits of one field become one step of undo, until leaveField.
    bool setValue(size_t i, const std::string& text, std::string* why = nullptr, bool typing = false);
    void leaveField() { m_history.endJoining(); }
    bool canUndo() const { return m_history.canUndo(); }
    bool canRedo() const { return m_history.canRedo(); }
    // The row to be shown; nothing when there was nothing to undo or do again.
    std::optional<size_t> undo();
    std::optional<size_t> redo();
    // Each is one step of undo; how many values changed. Rows without a known default keep their values.
    size_t resetRow(size_t i, ResetTo to) { return reset(i, i + 1, to); }
    size_t resetSection(size_t heading, ResetTo to) { return reset(heading, sectionEnd(heading), to); }
    size_t resetAll(ResetTo to) { return reset(0, size(), to); }
    // Whether that would change any of the rows from `first` to in front of `last`.
    bool canReset(size_t first, size_t last, ResetTo to);
    // Behind the last row of a section.
    size_t sectionEnd(size_t heading) const;
    // The value in the template folder's copy of the script; nothing where it has no such entry.
    std::optional<std::string> defaultOf(size_t i);

    // --- What is shown
    PanelFilter filter;
    std::vector<bool> visibleRows() const;
    // Label, default, allowed range, id and the script's line, a line each.
    std::string tooltip(size_t i);
    std::string helpText(size_t i) const;
    // "C:\game\fog.kez:12".
    std::string placeInScript(size_t i) const;
    std::vector<LineChange> changes() const;
    std::string changesText() const;
    // One line a finding: file, line and what was done.
    std::string findingsText() const;
    // Values that the last update, or a reload at Save, had no place for.
    const std::vector<UnplacedValue>& unplaced() const { return m_unplaced; }
    // Why the last operation failed, in more words than its message; else empty.
    const std::string& problem() const { return m_problem; }

private:
    bool isOpen() const { return !m_panel.script.scriptPath.empty(); }
    bool load(const std::string& fileName);
    void show();
    void showRows(bool keepHistory);
    bool fetchTemplateCopy();
    bool mayDropChanges();
    std::optional<std::string> resetValue(size_t i, ResetTo to);
    size_t reset(size_t first, size_t last, ResetTo to);
    void apply(size_t i, const std::string& value);

    // Save's steps; each tells the user itself when it fails.
    std::optional<SaveResult> settleChangesFromOutside();
    bool confirmLostEntries(const CustomScript& saved);
    bool takeIntoProject(bool& copied);
    SaveResult fail(const std::string& message, const std::string& problem = {});
    bool question(const std::string& text);

    void carryFromMemory(const std::vector<KeptValue>& values);
    void carryFromValueFile(const std::vector<KeptValue>& values);
    void keepUnplaced();
    HostNames hostNames();

    ZunEditorInterface& m_host;
    UserPrompt& m_prompt;
    CustomizeView* m_view;
    CustomizeView m_noView;
    ScriptPanel m_panel;
    EditHistory m_history;
    std::optional<std::vector<std::optional<std::string>>> m_defaults;  // one a row, once asked for
    std::vector<UnplacedValue> m_unplaced;
    std::string m_problem;
};

}  // namespace zoka
