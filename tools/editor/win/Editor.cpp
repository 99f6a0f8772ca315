#include "tools/editor/win/Editor.h"

#include <atomic>

namespace zoka {

bool ProcedureState::isBusy() const {
    return std::atomic_ref<std::int32_t>(const_cast<std::int32_t&>(busy)).load() != 0;
}

Editor::Editor(CallLog& log)
    : m_log(log), m_level(log), m_host(m_level), m_table(m_host, log), m_library(log) {
    m_host.onOpenMap = [this](const std::string& path) {
        const Outcome opened = openLevel(path);
        if (!opened) {
            m_log.add("open the level", opened.why());
        }
        return bool(opened);
    };
}

Outcome Editor::openProject(const std::string& folder) {
    char full[MAX_PATH];
    const DWORD length = GetFullPathNameA(folder.c_str(), sizeof full, full, nullptr);
    std::string path(full, length < sizeof full ? length : 0);
    while (path.size() > 3 && path.back() == '\\') {
        path.pop_back();
    }
    std::string map = path + "\\main.zlm";
    if (GetFileAttributesA(map.c_str()) == INVALID_FILE_ATTRIBUTES) {
        WIN32_FIND_DATAA found;
        const HANDLE search = FindFirstFileA((path + "\\*.zlm").c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) {
            return Refusal{"There is no level (*.zlm) in the folder " + path};
        }
        FindClose(search);
        map = path + "\\" + found.cFileName;
    }
    return openLevel(map);
}

Outcome Editor::openLevel(const std::string& path) {
    if (const Outcome opened = m_level.open(path); !opened) {
        return opened;
    }
    m_projectFolder = m_level.folder();
    m_log.add("open " + quoted(path.c_str()), std::to_string(m_level.map().entities.size()) + " entities");
    changed();
    return {};
}

void Editor::closeLevel() {
    m_level.close();
    m_projectFolder.clear();
    m_log.add("close the level", "");
    changed();
}

Outcome Editor::loadPlugin(const std::string& path) {
    unloadPlugin();
    if (const Outcome loaded = m_library.load(path); !loaded) {
        return loaded;
    }
    if (!m_library.initialize(m_table.appInterface())) {
        freePlugin();
        return Refusal{"The plug-in refused to be initialised."};
    }
    std::uint32_t words[3] = {};
    m_library.info(words);
    readProcedures();
    return {};
}

void Editor::readProcedures() {
    forgetProcedures();
    for (PluginProcDef* const record : m_library.readRecords()) {
        if (m_procedures.size() == m_states.size()) {
            m_states.push_back(std::make_unique<ProcedureState>(m_level, m_answers));
        }
        ProcedureState* const state = m_states[m_procedures.size()].get();
        state->record = record;
        m_procedures.push_back(state);
    }
    changed();
}

void Editor::forgetProcedures() {
    for (ProcedureState* const state : m_procedures) {
        state->record = nullptr;
    }
    m_procedures.clear();
}

void Editor::unloadPlugin() {
    for (ProcedureState* const state : m_procedures) {
        if (state->isBusy()) {
            terminate(*state);
        }
    }
    freePlugin();
}

void Editor::freePlugin() {
    forgetProcedures();
    changed();
    m_library.free();
}

ProcedureState* Editor::procedure(const std::string& name) const {
    for (ProcedureState* const state : m_procedures) {
        if (state->name() == name) {
            return state;
        }
    }
    return nullptr;
}

std::int32_t Editor::execute(ProcedureState& procedure) {
    if (!procedure.record || !procedure.record->execute) {
        return 0;
    }
    // An open panel keeps the context that it was given.
    if (!procedure.isBusy()) {
        const std::vector<std::string> selected = m_level.selection();
        procedure.entity.select(selected.empty() ? "" : selected.front());
        const char* const name = selected.empty() ? nullptr : procedure.entity.entity().c_str();
        procedure.context = {0, name, &procedure.entity};
    }
    const bool any = procedure.context.entityName || m_answers != EntityAnswers::One;
    HostContext* const context = any ? &procedure.context : nullptr;
    return m_library.execute(procedure.record, context, &procedure.busy);
}

std::int32_t Editor::terminate(ProcedureState& procedure) {
    if (!procedure.record || !procedure.record->terminate) {
        return 1;
    }
    return m_library.terminate(procedure.record);
}

}  // namespace zoka
