// The drive script's commands that call the plug-in and steer the editor.
#include <charconv>
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
    table["select"] = {1, 1000, &Driver::select};
    table["delete-entity"] = {1, 1, &Driver::deleteEntity};
    table["set-skill"] = {3, 3, &Driver::setSkill};
    table["set-flag"] = {3, 3, &Driver::setFlag};
    table["expect-skill"] = {3, 3, &Driver::expectSkill};
    table["expect-flag"] = {3, 3, &Driver::expectFlag};
    table["entities"] = {1, 1, &Driver::entityAnswers};
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
    onEditor([this, words] {
        std::vector<std::string> names;
        for (const std::string& name : words) {
            if (!name.empty()) {
                entity(name);
                names.push_back(name);
            }
        }
        m_editorWindow.selectEntities(names);
        return 1;
    });
}

LevelEntity Driver::entity(const std::string& name) const {
    LevelEntity found;
    const auto copy = [&](LevelEntity& one) {
        found = one;
        return true;
    };
    if (!m_editor.level().withEntity(name, copy)) {
        throw DriveFault("the level has no entity \"" + name + "\"");
    }
    return found;
}

void Driver::deleteEntity(const Words& words) {
    entity(words[0]);
    m_editor.level().erase(words[0]);
}

namespace {

// The place of skill or flag `word` among `last` of them.
size_t placeOf(const std::string& word, int last) {
    const long number = driveNumber(word);
    if (number < 1 || number > last) {
        throw DriveFault("there are the numbers 1 to " + std::to_string(last) + " only");
    }
    return static_cast<size_t>(number - 1);
}

float skillValue(const std::string& word) {
    float value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size()) {
        throw DriveFault("\"" + word + "\" is no number");
    }
    return value;
}

}  // namespace

void Driver::setSkill(const Words& words) {
    entity(words[0]);
    const size_t place = placeOf(words[1], kEntitySkills);
    const float value = skillValue(words[2]);
    m_editor.level().withEntity(words[0], [&](LevelEntity& one) {
        one.skills[place] = value;
        return true;
    });
    m_editor.level().entityChanged();
}

void Driver::setFlag(const Words& words) {
    entity(words[0]);
    const std::uint32_t bit = 1U << placeOf(words[1], kEntityFlags);
    const bool on = words[2] != "0";
    m_editor.level().withEntity(words[0], [&](LevelEntity& one) {
        one.flags = on ? one.flags | bit : one.flags & ~bit;
        return true;
    });
    m_editor.level().entityChanged();
}

void Driver::expectSkill(const Words& words) {
    const size_t place = placeOf(words[1], kEntitySkills);
    const float value = skillValue(words[2]);
    expect([&] { return entity(words[0]).skills[place] == value; },
           "skill " + words[1] + " of " + words[0] + " to be " + words[2],
           [&] { return std::to_string(entity(words[0]).skills[place]); });
}

void Driver::expectFlag(const Words& words) {
    const size_t place = placeOf(words[1], kEntityFlags);
    const auto value = [&] { return entity(words[0]).flags >> place & 1U; };
    expect([&] { return value() == (words[2] != "0"); },
           "flag " + words[1] + " of " + words[0] + " to be " + words[2],
           [&] { return std::to_string(value()); });
}

void Driver::entityAnswers(const Words& words) {
    EntityAnswers answers = EntityAnswers::All;
    if (!readEntityAnswers(words[0], answers)) {
        throw DriveFault("entities is all, one or refuse");
    }
    m_editor.setEntityAnswers(answers);
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
