// The stand-in editor without its window: the open project and level, the plug-in, its procedures and whether
// they run. The window shows it; the drive scripts steer it.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "plugin/host/HostAbi.h"
#include "tools/editor/win/CallLog.h"
#include "tools/editor/win/EditorHost.h"
#include "tools/editor/win/EntityHandle.h"
#include "tools/editor/win/HostTable.h"
#include "tools/editor/win/OpenLevel.h"
#include "tools/editor/win/PluginLibrary.h"

namespace zoka {

// What a procedure of the plug-in is given besides its record. Kept as long as the editor, so that a panel
// which outlives its procedure never writes into freed memory.
struct ProcedureState {
    ProcedureState(OpenLevel& level, const std::atomic<EntityAnswers>& answers) : entity(level, answers) {}

    PluginProcDef* record = nullptr;  // null once the plug-in is unloaded
    std::int32_t busy = 0;            // written by the plug-in on any thread: use isBusy()
    HostContext context{};
    EntityHandle entity;

    bool isBusy() const;
    std::string name() const { return record && record->name ? record->name : ""; }
};

// All operations: [editor thread].
class Editor {
public:
    explicit Editor(CallLog& log);

    // Opens a folder: its main.zlm, or the first level in it. A refusal leaves the old
    // project open.
    Outcome openProject(const std::string& folder);
    Outcome openLevel(const std::string& path);
    // No level and no project is open then.
    void closeLevel();
    const std::string& projectFolder() const { return m_projectFolder; }

    // Loads, initialises, asks for the info words and the records: what the editor does at its start.
    Outcome loadPlugin(const std::string& path);
    // Terminates the procedures that run and frees the library.
    void unloadPlugin();
    // Frees the library at once; panels may be open.
    void freePlugin();
    // Reads the records into procedures().
    void readProcedures();
    const std::vector<ProcedureState*>& procedures() const { return m_procedures; }
    ProcedureState* procedure(const std::string& name) const;

    // Calls the procedure's execute for the selected entities, the first of which the context names. Where none
    // is selected there is a context only if its operations can tell of a later selection. Does not look at the
    // busy word.
    std::int32_t execute(ProcedureState& procedure);
    // 1 without a call when the procedure has no terminate.
    std::int32_t terminate(ProcedureState& procedure);

    // The procedure that a double click on an entity runs; none when the plug-in has none of that name.
    void setEntityProcedure(std::string name) { m_entityProcedure = std::move(name); }
    const std::string& entityProcedure() const { return m_entityProcedure; }

    // How the operations on entities answer. The table's size counts for panels opened from now on.
    void setEntityAnswers(EntityAnswers answers) { m_answers = answers; }
    EntityAnswers entityAnswers() const { return m_answers; }

    PluginLibrary& library() { return m_library; }
    HostTable& hostTable() { return m_table; }
    OpenLevel& level() { return m_level; }
    EditorHost& host() { return m_host; }
    CallLog& log() { return m_log; }

    // Called after the project, the plug-in or its records changed.
    std::function<void()> onChange;

private:
    void changed() {
        if (onChange) {
            onChange();
        }
    }
    void forgetProcedures();

    CallLog& m_log;
    OpenLevel m_level;
    EditorHost m_host;
    HostTable m_table;
    PluginLibrary m_library;
    std::string m_projectFolder;
    std::string m_entityProcedure;
    std::atomic<EntityAnswers> m_answers{EntityAnswers::All};
    std::vector<std::unique_ptr<ProcedureState>> m_states;  // grows to the longest table seen; never shrinks
    std::vector<ProcedureState*> m_procedures;
};

}  // namespace zoka
