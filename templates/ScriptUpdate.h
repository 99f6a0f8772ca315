// Brings a project's scripts up to the template folder's: what differs, updating, restoring.
#pragma once

#include <string>
#include <vector>

#include "plugin/host/ZunEditorInterface.h"
#include "templates/ScriptFolders.h"
#include "templates/TemplateData.h"
#include "util/JobProgress.h"
#include "util/UserPrompt.h"

namespace zoka {

// Replaces a project's script by its template's version and keeps the values that the user has set in it.
class ScriptUpdater {
public:
    virtual ~ScriptUpdater() = default;
    // Both are full paths of existing files. False, with the project's copy as it was, when it can't be done;
    // `why` then says so in words.
    virtual bool update(const std::string& projectCopy, const std::string& templateCopy,
                        std::string& why) = 0;
    // The values that the last update found no place for, a line for each, ended with CR LF; empty when there
    // are none.
    virtual std::string unplaced() const { return {}; }
};

// Where the customization of scripts is not at hand: changes nothing and says so.
class NoUpdater : public ScriptUpdater {
public:
    bool update(const std::string&, const std::string&, std::string& why) override {
        why = "updating with the values kept is not available here";
        return false;
    }
};

struct UpdateEntry {
    std::string line;  // as the list shows it
    std::string fileName;
    std::vector<std::string> missingNeeds;  // of an entry that stands for needs, else empty
};

// What updating these entries includes: their missing needs, with their full paths where they are found.
std::vector<std::string> missingNeedsOf(const std::vector<UpdateEntry>& entries,
                                        const ScriptFolders& folders);

// The update page's list and its buttons. References given must outlive the object. [editor thread]
class ScriptUpdate {
public:
    ScriptUpdate(ZunEditorInterface& host, const CTemplateData& catalogue, ScriptUpdater& updater,
                 UserPrompt& prompt)
        : m_host(host), m_catalogue(catalogue), m_updater(updater), m_prompt(prompt) {}

    // Rebuilds the list from the include block: an entry for each script whose needs are not all included,
    // and one for each script of the project folder whose version or date differs from the template's, or
    // with `showAll` for each one at all. A script can have both. Each file is read once. Always 1.
    int FillUpdateList(bool showAll);
    const std::vector<UpdateEntry>& entries() const { return m_entries; }

    // Updates the scripts listed, after a question, and rebuilds the list. An entry that stands for needs has
    // them included, all in one rewrite of the main script. Each script is updated once, whole or not at all;
    // `progress` can stop the run between two.
    void UpdateAll(JobProgress* progress = nullptr);
    // The same for one entry, without the question. Nothing happens for an index outside the list.
    void UpdateSelected(int index);
    // The same for several, their missing needs in one rewrite of the main script.
    void UpdateEntries(const std::vector<UpdateEntry>& entries);

    // What the last run could not do, a line for each script; the user has been told.
    const std::vector<std::string>& problems() const { return m_problems; }
    // The scripts that it updated, and those it included as missing needs.
    const std::vector<std::string>& updated() const { return m_updated; }
    const std::vector<std::string>& included() const { return m_included; }
    // The user's values that found no place in the new versions: for each script that had any its file name and
    // below it a line for each value. Lines end in CR LF; empty when there are none.
    const std::string& unplaced() const { return m_unplaced; }

private:
    void addEntryOfNeeds(const CScriptElm& script, const std::string& fileName,
                         const std::unordered_set<std::string>& included);
    void update(const std::vector<UpdateEntry>& entries, JobProgress* progress);
    void forgetLastRun();
    void noteUpdated(const std::string& fileName);
    void includeMissing(const std::vector<UpdateEntry>& entries);

    ZunEditorInterface& m_host;
    const CTemplateData& m_catalogue;
    ScriptUpdater& m_updater;
    UserPrompt& m_prompt;
    std::vector<UpdateEntry> m_entries;
    std::vector<std::string> m_problems, m_updated, m_included;
    std::string m_unplaced;
};

// Whether RestoreFromTemplate would copy. False, after a message, when the project has a copy, the template
// folder has none, or both folders are one.
bool canRestore(ZunEditorInterface& editor, const std::string& fileName, UserPrompt& prompt = userPrompt());
// Copies the template file into the project folder through the host. False, after a message, when it can't be
// restored or copying fails.
bool RestoreFromTemplate(ZunEditorInterface& editor, const std::string& fileName,
                         UserPrompt& prompt = userPrompt());

}  // namespace zoka
