// The drive script's commands that call the plug-in and steer the editor.
#include <atomic>
#include <charconv>
#include <cstdio>

#include "tools/editor/win/DriveContext.h"
#include "tools/editor/win/PluginDisk.h"

namespace zoka {

namespace {

void start(DriveContext& drive, const Words& words) {
    drive.starting = true;
    drive.carryOut(words);
    drive.starting = false;
}

void finish(DriveContext& drive, const Words&) {
    drive.awaitJob();
}

void within(DriveContext& drive, const Words& words) {
    const auto most = static_cast<ULONGLONG>(driveNumber(words[0]));
    const ULONGLONG start = GetTickCount64();
    drive.carryOut(Words(words.begin() + 1, words.end()));
    const ULONGLONG took = GetTickCount64() - start;
    std::printf("%s took %llu ms\n", words[1].c_str(), took);
    if (took > most) {
        throw DriveFault("it took " + std::to_string(took) + " ms");
    }
}

void open(DriveContext& drive, const Words& words) {
    drive.onEditor([&drive, folder = words[0]] {
        if (const Outcome opened = drive.editor.openProject(folder); !opened) {
            throw DriveFault(opened.why());
        }
        return 1;
    });
}

void closeLevel(DriveContext& drive, const Words&) {
    drive.onEditor([&drive] {
        drive.editor.closeLevel();
        return 1;
    });
}

void load(DriveContext& drive, const Words& words) {
    drive.onEditor([&drive, path = words[0]] {
        if (const Outcome loaded = drive.editor.library().load(path); !loaded) {
            throw DriveFault(path + ": " + loaded.why());
        }
        return 1;
    });
}

void loadPlugin(DriveContext& drive, const Words& words) {
    drive.onEditor([&drive, path = words[0]] {
        if (const Outcome loaded = drive.editor.loadPlugin(path); !loaded) {
            throw DriveFault(path + ": " + loaded.why());
        }
        return 1;
    });
}

void init(DriveContext& drive, const Words& words) {
    const std::string with = words.empty() ? "editor" : words[0];
    if (with != "editor" && with != "null" && with != "no-editor") {
        throw DriveFault("init takes nothing, null or no-editor");
    }
    drive.onEditor([&drive, with] {
        drive.editor.hostTable().setEditorPresent(with != "no-editor");
        return drive.editor.library().initialize(with == "null" ? nullptr
                                                                : drive.editor.hostTable().appInterface());
    });
}

void info(DriveContext& drive, const Words&) {
    drive.onEditor([&drive] {
        std::uint32_t out[3] = {1, 1, 1};
        return drive.editor.library().info(out);
    });
}

void records(DriveContext& drive, const Words&) {
    drive.onEditor([&drive] {
        drive.editor.readProcedures();
        return static_cast<std::int32_t>(drive.editor.procedures().size());
    });
}

void procDef(DriveContext& drive, const Words& words) {
    const long index = driveNumber(words[0]);
    drive.onEditor([&drive, index] {
        PluginProcDef* const record = drive.editor.library().procDef(static_cast<std::int32_t>(index));
        return record ? 1 : 0;
    });
}

void runProcedure(DriveContext& drive, const Words& words) {
    drive.onEditor([&drive, name = words[0]] {
        drive.editorWindow.choose(drive.procedure(name));
        return 1;
    });
}

void execute(DriveContext& drive, const Words& words) {
    const bool noFlags = words.size() > 1;
    if (noFlags && words[1] != "no-flags") {
        throw DriveFault("execute takes a name and, if at all, no-flags");
    }
    drive.onEditor([&drive, name = words[0], noFlags] {
        ProcedureState& state = drive.procedure(name);
        if (noFlags) {
            return drive.editor.library().execute(state.record, nullptr, nullptr);
        }
        return drive.editor.execute(state);
    });
}

void executeStale(DriveContext& drive, const Words& words) {
    const bool noFlags = words.size() > 1;
    if (noFlags && words[1] != "no-flags") {
        throw DriveFault("execute-stale takes a name and, if at all, no-flags");
    }
    drive.onEditor([&drive, name = words[0], noFlags] {
        static std::int32_t busy;
        busy = 0;
        return drive.editor.library().executeRemembered(name, noFlags ? nullptr : &busy);
    });
}

void terminate(DriveContext& drive, const Words& words) {
    drive.onEditor([&drive, name = words[0]] { return drive.editor.terminate(drive.procedure(name)); });
}

void select(DriveContext& drive, const Words& words) {
    drive.onEditor([&drive, words] {
        std::vector<std::string> names;
        for (const std::string& name : words) {
            if (!name.empty()) {
                drive.entity(name);
                names.push_back(name);
            }
        }
        drive.editorWindow.selectEntities(names);
        return 1;
    });
}

void deleteEntity(DriveContext& drive, const Words& words) {
    drive.entity(words[0]);
    drive.editor.level().erase(words[0]);
}

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

void setSkill(DriveContext& drive, const Words& words) {
    drive.entity(words[0]);
    const size_t place = placeOf(words[1], kEntitySkills);
    const float value = skillValue(words[2]);
    drive.editor.level().withEntity(words[0], [&](LevelEntity& one) {
        one.skills[place] = value;
        return true;
    });
    drive.editor.level().entityChanged();
}

void setFlag(DriveContext& drive, const Words& words) {
    drive.entity(words[0]);
    const std::uint32_t bit = 1U << placeOf(words[1], kEntityFlags);
    const bool on = words[2] != "0";
    drive.editor.level().withEntity(words[0], [&](LevelEntity& one) {
        one.flags = on ? one.flags | bit : one.flags & ~bit;
        return true;
    });
    drive.editor.level().entityChanged();
}

void expectSkill(DriveContext& drive, const Words& words) {
    const size_t place = placeOf(words[1], kEntitySkills);
    const float value = skillValue(words[2]);
    drive.expect([&] { return drive.entity(words[0]).skills[place] == value; },
                 "skill " + words[1] + " of " + words[0] + " to be " + words[2],
                 [&] { return std::to_string(drive.entity(words[0]).skills[place]); });
}

void expectFlag(DriveContext& drive, const Words& words) {
    const size_t place = placeOf(words[1], kEntityFlags);
    const auto value = [&] { return drive.entity(words[0]).flags >> place & 1U; };
    drive.expect([&] { return value() == (words[2] != "0"); },
                 "flag " + words[1] + " of " + words[0] + " to be " + words[2],
                 [&] { return std::to_string(value()); });
}

void entityAnswers(DriveContext& drive, const Words& words) {
    EntityAnswers answers = EntityAnswers::All;
    if (!readEntityAnswers(words[0], answers)) {
        throw DriveFault("entities is all, one or refuse");
    }
    drive.editor.setEntityAnswers(answers);
}

void unload(DriveContext& drive, const Words&) {
    drive.onEditor([&drive] {
        drive.editor.unloadPlugin();
        return 1;
    });
}

void freeLibrary(DriveContext& drive, const Words&) {
    drive.onEditor([&drive] {
        drive.editor.freePlugin();
        return 1;
    });
}

void editorInterface(DriveContext& drive, const Words& words) {
    if (words[0] != "on" && words[0] != "off") {
        throw DriveFault("editor-interface is on or off");
    }
    drive.onEditor([&drive, on = words[0] == "on"] {
        drive.editor.hostTable().setEditorPresent(on);
        return 1;
    });
}

void hostFault(DriveContext& drive, const Words& words) {
    HostFault fault = HostFault::None;
    if (!readHostFault(words[0], fault)) {
        throw DriveFault("host is normal, fail, empty or full");
    }
    drive.editor.hostTable().setFault(fault);
}

void hostDelay(DriveContext& drive, const Words& words) {
    drive.editor.hostTable().setDelay(static_cast<unsigned>(driveNumber(words[0])));
}

HMODULE loadedPlugin(DriveContext& drive) {
    const HMODULE plugin = drive.editor.library().module();
    if (!plugin) {
        throw DriveFault("no plug-in is loaded");
    }
    return plugin;
}

void diskDelay(DriveContext& drive, const Words& words) {
    slowDisk(loadedPlugin(drive), words[1], static_cast<unsigned>(driveNumber(words[0])));
}

void diskHold(DriveContext& drive, const Words& words) {
    if (words[0].empty()) {
        throw DriveFault("disk-hold needs a part of the paths that it holds");
    }
    holdDisk(loadedPlugin(drive), words[0]);
}

void diskRelease(DriveContext&, const Words&) {
    releaseDisk();
}

void diskFull(DriveContext& drive, const Words& words) {
    fillDisk(loadedPlugin(drive), words[1], static_cast<unsigned>(driveNumber(words[0])));
}

void chooser(DriveContext& drive, const Words& words) {
    if (words[0] != "system" && words[0] != "own") {
        throw DriveFault("chooser is system or own");
    }
    drive.editor.host().setOwnChooser(words[0] == "own");
}

void useMemory(DriveContext& drive, const Words& words) {
    drive.useMemory(driveNumber(words[0]));
}

void destroyEditor(DriveContext& drive, const Words&) {
    drive.editorWindow.destroy();
}

void makeEditor(DriveContext& drive, const Words&) {
    drive.askEditor([&drive] { drive.editorWindow.create(true); });
    drive.current = drive.editorWindow.handle();
}

void quit(DriveContext& drive, const Words& words) {
    drive.editorWindow.rehearseQuit(static_cast<int>(driveNumber(words[0])));
}

void expectQuit(DriveContext& drive, const Words& words) {
    drive.expect([&] { return drive.editorWindow.notedQuit() == driveNumber(words[0]); },
                 "the editor's message loop to be told to end with " + words[0],
                 [&] { return std::to_string(drive.editorWindow.notedQuit()); });
}

std::atomic<UINT> g_toLose{0};

// [editor thread]
LRESULT CALLBACK loseOne(int code, WPARAM wParam, LPARAM lParam) {
    auto& message = *reinterpret_cast<MSG*>(lParam);
    if (code == HC_ACTION && wParam == PM_REMOVE && message.hwnd && message.message == g_toLose) {
        message.message = WM_NULL;
        g_toLose = 0;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void loseMessage(DriveContext& drive, const Words& words) {
    g_toLose = static_cast<UINT>(driveNumber(words[0]));
    drive.askEditor([] {
        static const HHOOK hook = SetWindowsHookExA(WH_GETMESSAGE, loseOne, nullptr, GetCurrentThreadId());
        static_cast<void>(hook);
    });
}

void expectLost(DriveContext& drive, const Words&) {
    drive.expect([] { return g_toLose == 0; }, "the message to be lost",
                 [] { return std::string("it did not come"); });
}

}  // namespace

void addEditorCommands(DriveCommands& table) {
    table["start"] = {1, 9, start};
    table["finish"] = {0, 0, finish};
    table["within"] = {2, 9, within};
    table["open"] = {1, 1, open};
    table["close-level"] = {0, 0, closeLevel};
    table["load"] = {1, 1, load};
    table["load-plugin"] = {1, 1, loadPlugin};
    table["init"] = {0, 1, init};
    table["info"] = {0, 0, info};
    table["records"] = {0, 0, records};
    table["procdef"] = {1, 1, procDef};
    table["run"] = {1, 1, runProcedure};
    table["execute"] = {1, 2, execute};
    table["execute-stale"] = {1, 2, executeStale};
    table["terminate"] = {1, 1, terminate};
    table["select"] = {1, 1000, select};
    table["delete-entity"] = {1, 1, deleteEntity};
    table["set-skill"] = {3, 3, setSkill};
    table["set-flag"] = {3, 3, setFlag};
    table["expect-skill"] = {3, 3, expectSkill};
    table["expect-flag"] = {3, 3, expectFlag};
    table["entities"] = {1, 1, entityAnswers};
    table["unload"] = {0, 0, unload};
    table["free-library"] = {0, 0, freeLibrary};
    table["editor-interface"] = {1, 1, editorInterface};
    table["host"] = {1, 1, hostFault};
    table["disk-delay"] = {2, 2, diskDelay};
    table["disk-hold"] = {1, 1, diskHold};
    table["disk-release"] = {0, 0, diskRelease};
    table["disk-full"] = {2, 2, diskFull};
    table["host-delay"] = {1, 1, hostDelay};
    table["chooser"] = {1, 1, chooser};
    table["use-memory"] = {1, 1, useMemory};
    table["destroy-editor"] = {0, 0, destroyEditor};
    table["quit"] = {1, 1, quit};
    table["expect-quit"] = {1, 1, expectQuit};
    table["lose-message"] = {1, 1, loseMessage};
    table["expect-lost"] = {0, 0, expectLost};
    table["make-editor"] = {0, 0, makeEditor};
}

}  // namespace zoka
