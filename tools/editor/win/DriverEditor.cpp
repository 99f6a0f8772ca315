// The drive script's commands that call the plug-in and steer the editor.
#include <cstdio>

#include "tools/editor/win/Driver.h"

namespace zoka {

void Driver::addEditorCommands(std::map<std::string, Command>& table) {
    table["start"] = {1, 9, &Driver::start};
    table["finish"] = {0, 0, &Driver::finish};
    table["open"] = {1, 1, &Driver::open};
    table["load"] = {1, 1, &Driver::load};
    table["load-plugin"] = {1, 1, &Driver::loadPlugin};
    table["init"] = {0, 1, &Driver::init};
    table["info"] = {0, 0, &Driver::info};
    table["records"] = {0, 0, &Driver::records};
    table["procdef"] = {1, 1, &Driver::procDef};
    table["run"] = {1, 1, &Driver::runProcedure};
    table["execute"] = {1, 2, &Driver::execute};
    table["execute-stale"] = {1, 2, &Driver::executeStale};
    table["terminate"] = {1, 1, &Driver::terminate};
    table["select"] = {1, 1, &Driver::select};
    table["unload"] = {0, 0, &Driver::unload};
    table["free-library"] = {0, 0, &Driver::freeLibrary};
    table["editor-interface"] = {1, 1, &Driver::editorInterface};
    table["host"] = {1, 1, &Driver::hostFault};
}

void Driver::start(const Words& words) {
    m_start = true;
    carryOut(words);
    m_start = false;
}

void Driver::finish(const Words&) {
    awaitJob();
}

void Driver::open(const Words& words) {
    onEditor([this, folder = words[0]] {
        std::string error;
        if (!m_editor.openProject(folder, error)) {
            throw DriveFault(error);
        }
        return 1;
    });
}

void Driver::load(const Words& words) {
    onEditor([this, path = words[0]] {
        std::string error;
        if (!m_editor.library().load(path, error)) {
            throw DriveFault(path + ": " + error);
        }
        return 1;
    });
}

void Driver::loadPlugin(const Words& words) {
    onEditor([this, path = words[0]] {
        std::string error;
        if (!m_editor.loadPlugin(path, error)) {
            throw DriveFault(path + ": " + error);
        }
        return 1;
    });
}

void Driver::init(const Words& words) {
    const std::string with = words.empty() ? "editor" : words[0];
    if (with != "editor" && with != "null" && with != "no-editor") {
        throw DriveFault("init takes nothing, null or no-editor");
    }
    onEditor([this, with] {
        m_editor.hostTable().setEditorPresent(with != "no-editor");
        return m_editor.library().initialize(with == "null" ? nullptr : m_editor.hostTable().appInterface());
    });
}

void Driver::info(const Words&) {
    onEditor([this] {
        std::uint32_t out[3] = {1, 1, 1};
        return m_editor.library().info(out);
    });
}

void Driver::records(const Words&) {
    onEditor([this] {
        m_editor.readProcedures();
        return static_cast<std::int32_t>(m_editor.procedures().size());
    });
}

void Driver::procDef(const Words& words) {
    const long index = driveNumber(words[0]);
    onEditor([this, index] {
        PluginProcDef* const record = m_editor.library().procDef(static_cast<std::int32_t>(index));
        return record ? 1 : 0;
    });
}

void Driver::runProcedure(const Words& words) {
    onEditor([this, name = words[0]] {
        m_editorWindow.choose(procedure(name));
        return 1;
    });
}

void Driver::execute(const Words& words) {
    const bool noFlags = words.size() > 1;
    if (noFlags && words[1] != "no-flags") {
        throw DriveFault("execute takes a name and, if at all, no-flags");
    }
    onEditor([this, name = words[0], noFlags] {
        ProcedureState& state = procedure(name);
        if (noFlags) {
            return m_editor.library().execute(state.record, nullptr, nullptr);
        }
        return m_editor.execute(state);
    });
}

void Driver::executeStale(const Words& words) {
    const bool noFlags = words.size() > 1;
    if (noFlags && words[1] != "no-flags") {
        throw DriveFault("execute-stale takes a name and, if at all, no-flags");
    }
    onEditor([this, name = words[0], noFlags] {
        static std::int32_t busy;
        busy = 0;
        return m_editor.library().executeRemembered(name, noFlags ? nullptr : &busy);
    });
}

void Driver::terminate(const Words& words) {
    onEditor([this, name = words[0]] { return m_editor.terminate(procedure(name)); });
}

void Driver::select(const Words& words) {
    onEditor([this, name = words[0]] {
        const bool there =
            name.empty() || m_editor.level().withEntity(name, [](LevelEntity&) { return true; });
        if (!there) {
            throw DriveFault("the level has no entity \"" + name + "\"");
        }
        m_editorWindow.selectEntity(name);
        return 1;
    });
}

void Driver::unload(const Words&) {
    onEditor([this] {
        m_editor.unloadPlugin();
        return 1;
    });
}

void Driver::freeLibrary(const Words&) {
    onEditor([this] {
        m_editor.freePlugin();
        return 1;
    });
}

void Driver::editorInterface(const Words& words) {
    if (words[0] != "on" && words[0] != "off") {
        throw DriveFault("editor-interface is on or off");
    }
    onEditor([this, on = words[0] == "on"] {
        m_editor.hostTable().setEditorPresent(on);
        return 1;
    });
}

void Driver::hostFault(const Words& words) {
    HostFault fault = HostFault::None;
    if (!readHostFault(words[0], fault)) {
        throw DriveFault("host is normal, fail, empty or full");
    }
    m_editor.hostTable().setFault(fault);
}

}  // namespace zoka
