// Brings a project's scripts up to the template folder's: what differs, and updating it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "customize/ValueUpdate.h"
#include "plugin/host/ZunEditorInterface.h"
#include "templates/IncludeList.h"
#include "templates/ScriptFolders.h"
#include "templates/TemplateData.h"
#include "util/JobProgress.h"
#include "util/KeyedHash.h"
#include "util/UserPrompt.h"

namespace zoka {

struct UpdateEntry {
    std::string line;  // as the list shows it
    std::string fileName;
    std::vector<std::string> missingNeeds;  // of an entry that stands for needs, else empty
};

// What updating some entries will do, made before anything is done; previews show it and the deed carries it out.
struct UpdatePlan {
    struct Script {
        std::string fileName;
        ValueUpdatePlan change;
    };
    std::vector<Script> scripts;         // those that will be replaced
    std::vector<std::string> unchanged;  // file names: the template's already, but for the values
    std::vector<std::string> problems;   // what will not be done, a line for each script
    MainScriptPlan main;                 // equal texts, or no path: the main script stays
    std::vector<std::string> needs;      // the missing ones, with their full paths where they are found
    std::vector<std::string> included;   // the names on the new lines

    // The scripts with lines that their templates lack.
    std::vector<OwnLines> ownLines() const;
};

// The update page's list and its buttons. References given must outlive the object. [editor thread]
class ScriptUpdate {
public:
    ScriptUpdate(ZunEditorInterface& host, const CTemplateData& catalogue, UserPrompt& prompt)
        : m_host(host), m_catalogue(catalogue), m_prompt(prompt) {}

    // Rebuilds the list from the include block: an entry for each script whose needs are not all included,
    // and one for each script of the project folder whose version or date differs from the template's, or
    // with `showAll` for each one at all. A script can have both; a numbered copy is compared with its
    // template. Each file is read once. `progress` may stop it: the list then ends there. Always 1.
    int FillUpdateList(bool showAll, JobProgress* progress = nullptr);
    const std::vector<UpdateEntry>& entries() const { return m_entries; }
    // The list's heading: how many differ, and that it was stopped before every script was compared.
    std::string listedText() const;
    // What the page says when nothing is listed: whether all is as the template folder has it, or which scripts
    // differ though their versions and dates don't.
    std::string nothingListedText() const;

    // What updating these entries will do. Each script is compared once, whole; `progress` may stop it
    // (`stopped` is then set, and the plan is of no use). Changes nothing.
    UpdatePlan plan(const std::vector<UpdateEntry>& entries, JobProgress* progress = nullptr,
                    bool* stopped = nullptr) const;

    // Updates the scripts listed, after a question, and rebuilds the list. An entry that stands for needs has
    // them included, all in one rewrite of the main script. Scripts with lines that their templates lack are
    // replaced only when the user agrees once more. Each script is updated once, whole or not at all; `progress`
    // can stop the run between two. False when the user declined the first question, and when nothing could be listed.
    bool UpdateAll(JobProgress* progress = nullptr);
    // Updates one entry, without the first question. Nothing happens for an index outside the list.
    void UpdateSelected(int index);
    // Updates these, asking as UpdateSelected does, in one rewrite of the main script.
    void UpdateEntries(const std::vector<UpdateEntry>& entries);

    // What the last run could not do, a line for each script; the user has been told. Those come last that were
    // updated but for their value file.
    const std::vector<std::string>& problems() const { return m_problems; }
    // The scripts that it updated, those it included as missing needs, and those with lines of their own that the
    // user kept.
    const std::vector<std::string>& updated() const { return m_updated; }
    const std::vector<std::string>& included() const { return m_included; }
    const std::vector<std::string>& leftAlone() const { return m_leftAlone; }
    // The user's values that found no place in the new versions: for each script that had any its file name and
    // below it a line for each value. Lines end in CR LF; empty when there are none.
    const std::string& unplaced() const { return m_unplaced; }

private:
    void addEntryOfNeeds(const CScriptElm& script, const std::string& title, const std::string& fileName,
                         const KeyedSet<std::string>& included);
    void update(const std::vector<UpdateEntry>& entries, JobProgress* progress);
    void leaveOwnLines(UpdatePlan& plan);
    void carryOut(const UpdatePlan& plan, JobProgress* progress);
    void includeMissing(const UpdatePlan& plan);
    void forgetLastRun();
    void noteUpdated(const UpdatePlan::Script& script);

    ZunEditorInterface& m_host;
    const CTemplateData& m_catalogue;
    UserPrompt& m_prompt;
    std::vector<UpdateEntry> m_entries;
    std::vector<std::string> m_differing;  // same version and date, other bytes; or unreadable
    std::vector<std::string> m_unread;     // why files could not be compared
    bool m_stopped = false;                // the list is not complete
    bool m_ownScripts = false;             // the project includes scripts that are no templates
    std::vector<std::string> m_problems, m_updated, m_included, m_leftAlone;
    size_t m_halfDone = 0;  // how many of the problems are such
    std::string m_unplaced;
};

}  // namespace zoka
