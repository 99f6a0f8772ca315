// The "Project Manager" dialog without its window: what each page shows, and what each button does, in which
// order and with which texts. The window, or a test, or a tool, stands in front of it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "plugin/host/ZunEditorInterface.h"
#include "templates/IncludedScripts.h"
#include "templates/ScriptAdding.h"
#include "templates/ScriptRestore.h"
#include "templates/ScriptSearch.h"
#include "templates/ScriptUpdate.h"
#include "templates/TemplateData.h"
#include "util/JobProgress.h"
#include "util/UserPrompt.h"
#include "xml/XMLNode.h"

namespace zoka {

inline constexpr const char* kManagerTitle = "Project Manager";
enum class ManagerPage { Add, Customize, Remove, Notes, Update };
inline constexpr const char* kManagerPages[] = {"Add", "Customize", "Remove", "Notes", "Update"};

// Ends a button's action without any change.
class PageError : public std::runtime_error {
public:
    enum Code { CatalogueNotLoaded = 1, ScriptNotInCatalogue = 2 };
    // `script` is the one that is not in the catalogue.
    explicit PageError(Code code, const std::string& script = {});
    Code code() const { return m_code; }

private:
    Code m_code;
};

// Says what is wrong with a catalogue that can't be loaded, and offers to leave it alone: whoever loads it all the
// same has the process ended. True when the user wants to leave, which is what Enter answers.
bool leavesDamagedCatalogue(UserPrompt& prompt, const std::string& path, const XMLResults& results);

// What the add page shows of the selected script.
struct ScriptDetails {
    std::string fileName, className, version, date, engineReq, description,
        actions;  // lines ended with CR LF
};

// All on one thread. [editor thread]
class ScriptManagerSession {
public:
    // Fills the catalogue from its file; false when that can't be done. Where a bad catalogue ends the
    // process, it does not return.
    using CatalogueLoader = std::function<bool(CTemplateData& catalogue, JobProgress* progress)>;
    // None of the references is owned; all outlive the session. `catalogue` is loaded when it is empty.
    ScriptManagerSession(ZunEditorInterface& host, CTemplateData& catalogue, CatalogueLoader loader,
                         UserPrompt& prompt);

    // Loads the catalogue if need be and reads the include block. False when the catalogue can't be loaded
    // (the user has been told) or `progress` stopped it.
    bool open(JobProgress* progress = nullptr);
    // The part of open() that takes long besides loading, for a loader to do in its own job: false when
    // `progress` stopped it. Otherwise open() does it.
    bool prepareSearch(JobProgress* progress);
    // Reads the include block again. The update list, which reads every script, follows when it is asked for.
    void refresh();
    // A line for the window's foot about the last action: what it did, or why it did nothing. May be empty.
    const std::string& status() const { return m_status; }
    const CTemplateData& catalogue() const { return m_catalogue; }

    // --- Add
    // "<ALL>" first.
    std::vector<std::string> classes() const;
    // The catalogue's records to be listed, in its order, for a class and a search text (ScriptSearch::find).
    const std::vector<std::uint32_t>& search(const std::string& className, const std::string& query);
    // Whether the script, or a copy of it, is included.
    bool isIncluded(std::uint32_t record) const;
    // Whether adding it would change anything: a numbered template always makes one more copy.
    bool canAdd(std::uint32_t record) const;
    ScriptDetails details(std::uint32_t record) const;
    // What the button would do, before it is pressed.
    AddPlan plan(std::span<const std::uint32_t> records);
    AddPlan plan(std::uint32_t record) { return plan(std::span(&record, 1)); }
    // The button; no record: nothing happens. True when the scripts were added or are there already.
    bool add(std::optional<std::uint32_t> record);
    bool add(std::span<const std::uint32_t> records);
    // The title added last; "<none>" at first and after an add that failed.
    const std::string& lastAdded() const { return m_lastAdded; }

    // --- Remove, Customize
    const std::vector<IncludedScript>& included() const { return m_included.all(); }
    const IncludedScripts& includedScripts() const { return m_included; }
    // Whether an included script needs the one of that title, which is an entry's text or a catalogue title;
    // `titles` is set to their entries' texts. Throws PageError.
    bool FindDependents(const std::string& title, std::vector<std::string>& titles);
    // "Fog, Rain": the entries that need that one; empty when nobody does.
    std::string neededBy(size_t index) const;
    // Why the button can't remove that entry, in words; empty when it can.
    std::string removalProblem(size_t index) const;
    // The button; -1: nothing happens. True when the script's include line was removed.
    bool remove(int index);
    // Tells the user which scripts, by their entries' texts, stand in the way.
    void refuseRemoval(const std::vector<std::string>& dependents);
    // Full path of an included script, for the customization panel; nothing when it isn't found.
    std::optional<std::string> pathOf(size_t index) const;
    // Whether an included script lies in the template folder alone.
    bool isUsedFromTemplates(size_t index) const;
    // Copies it into the project folder; false, after a message, when that can't be done.
    bool copyIntoProject(size_t index);

    // --- Notes
    // Read-only text, lines ended with CR LF. `progress` may stop it; the text then ends where it was.
    std::string notes(JobProgress* progress = nullptr);

    // --- Update
    // Compares every script when the list is not known yet, which `progress` may stop; what was found till then is
    // listed.
    const std::vector<UpdateEntry>& updates(JobProgress* progress = nullptr);
    bool areUpdatesKnown() const { return m_updatesListed; }
    // The heading of updates().
    std::string listedText() const { return m_update.listedText(); }
    // What the update page says when updates() is empty.
    std::string nothingListedText() const { return m_update.nothingListedText(); }
    // What updating an entry will do.
    UpdatePlan updatePlan(size_t index);
    // The buttons.
    void updateSelected(int index);
    void updateEntries(const std::vector<UpdateEntry>& entries);  // some of updates()
    void updateAll(JobProgress* progress = nullptr);              // every script of the project folder
    // Only those that updates() lists. False when the user declined.
    bool updateListed(JobProgress* progress = nullptr);
    // Included template scripts with no copy in the project folder but one in the template folder.
    std::vector<std::string> restorable() const;
    bool restore(const std::string& fileName);
    const ScriptUpdate& updateRun() const { return m_update; }

private:
    void needCatalogue(JobProgress* progress);
    void readIncluded();
    // Empty when all are found; else why one isn't, in words.
    std::string pathsOf(std::span<const std::uint32_t> records, std::vector<std::string>& paths) const;
    void tellUpdated(bool ran = true);

    ZunEditorInterface& m_host;
    CTemplateData& m_catalogue;
    CatalogueLoader m_loader;
    UserPrompt& m_prompt;
    ScriptUpdate m_update;
    bool m_updatesListed = false;
    std::unique_ptr<ScriptSearch> m_search;
    IncludedScripts m_included;
    bool m_includedRead = true;  // the last time
    std::string m_lastAdded = "<none>";
    std::string m_status;
};

}  // namespace zoka
