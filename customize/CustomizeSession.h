// KEZ Customize without its window: everything that the panel decides.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "controls/RowEditing.h"
#include "customize/CarriedValues.h"
#include "customize/ScriptProject.h"
#include "customize/ScriptReader.h"
#include "customize/ScriptRows.h"
#include "customize/ScriptTemplate.h"
#include "plugin/host/ZunEditorInterface.h"
#include "util/SaveResult.h"
#include "util/UserPrompt.h"

namespace zoka {

// The window, as the session needs it. [panel thread]
class CustomizeView {
public:
    virtual ~CustomizeView() = default;
    virtual void bringToFront() {}
    // To the top of all windows and released again, so that the panel isn't left behind the editor's window.
    virtual void raiseOnce() {}
};

// One panel's script. Host, prompt and view must outlive it. [panel thread]
class CustomizeSession : public RowEditing {
public:
    // `loading` (may be null) can stop each opening of a script between its steps; it outlives the object.
    CustomizeSession(ZunEditorInterface& host, UserPrompt& prompt, CustomizeView* view = nullptr,
                     JobProgress* loading = nullptr);

    // Loads a script; without a name the level's main script. Refused, with the rows as they were, when there
    // is none, it can't be read or the loading was stopped (which has no reason); no message. Throws OutOfMemory for
    // a script that there is no memory for: with all as it was, or, where the view lacked it, with the script in its
    // place.
    Outcome open(const std::string& fileName = {});
    // The same from the panel, for another script: asks about changes first, as closing does, and tells why it
    // can't be opened.
    bool switchTo(const std::string& fileName);
    // The scripts that the panel offers to switch to: of the project that the editor has open now.
    void offerScripts(std::vector<std::string> paths) { m_project.offer(std::move(paths)); }
    const std::vector<std::string>& offeredScripts() const { return m_project.offered(); }

    // Asks the host which project is open. True when whereabouts() are others now.
    bool lookAtProject() { return isOpen() && m_project.look(); }
    // The editor had opened another project than when the script was loaded, when it was looked at last: Save
    // then asks where to.
    bool otherProjectOpen() const { return m_project.isElsewhere(); }
    // For the panel's title, in words; empty while that project is open.
    const char* whereabouts() const { return m_project.whereabouts(); }

    // --- The buttons. All messages go through the prompt. Without a script they do nothing.
    SaveResult save();
    // True when the panel may close.
    bool close() { return mayDropChanges(); }
    // Both true when the template's copy took the script's place and was loaded.
    bool restore();
    bool update();

    // Something was thrown and the panel goes: asks whether the values that are in no file yet are to be kept in
    // the file of old values beside the script, and puts them there. Never throws.
    void offerUnsaved() noexcept { m_values.offerUnsaved(); }
    // The window is gone, and nobody could be asked: puts them there. Never throws.
    void keepUnsaved() noexcept { m_values.keepUnsaved(); }

    // --- The script
    const CustomScript& script() const { return m_panel.script; }
    const CustomEntry& entry(size_t i) const { return m_panel.script.entries[i]; }
    std::string subject() const override { return m_panel.script.scriptPath; }
    std::string nameOf(size_t i) const override;
    // The value in the template folder's copy of the script; nothing where it has no such entry.
    std::optional<std::string> defaultOf(size_t i) const override { return m_template.valueOf(script(), i); }
    const char* defaultName() const override { return "the template's &default"; }

    // --- What is shown
    // The entry's id and its line in the script.
    std::string details(size_t i) const override;
    // Beside the script, or else in the template folder.
    std::string picturePath(const std::string& name) const override {
        return m_reader.picturePath(script(), name);
    }
    std::string emptyText() const override;
    // Values that the last update, or a reload at Save, had no place for.
    const std::vector<UnplacedValue>& unplaced() const { return m_values.unplaced(); }
    // They are in the file of old values; else the user has been told which they are.
    bool unplacedAreKept() const { return m_values.areKept(); }

private:
    bool isOpen() const { return !m_panel.script.scriptPath.empty(); }
    // Read, and not shown yet.
    struct Opened {
        ScriptRows panel;
        ScriptProject::Home home;
    };
    Outcome read(const std::string& path, Opened& opened);
    void show(Opened&& opened);
    Outcome load();
    void showScript(ScriptRows&& made);
    void rowsMade(bool keepHistory);
    bool fetchTemplateCopy();
    bool mayDropChanges();
    SaveResult saveInto(const std::string& project, bool isOvertaken);
    SaveEnd loadAgain();

    ZunEditorInterface& m_host;
    UserPrompt& m_prompt;
    CustomizeView* m_view;
    CustomizeView m_noView;
    JobProgress* m_loading;
    ScriptRows m_panel;
    ScriptReader m_reader;
    ScriptTemplate m_template;
    ScriptProject m_project;
    CarriedValues m_values;
    std::string m_notOpened;  // why no script could be opened
};

}  // namespace zoka
