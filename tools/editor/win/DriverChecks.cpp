// The drive script's commands that look at results, records, the log and what is left behind.
#include <algorithm>
#include <cstdio>

#include "tools/editor/win/DriveContext.h"

namespace zoka {

namespace {

constexpr const char* kResources[] = {"handles", "threads", "windows", "gdi", "user", "memory"};

std::string resourceText(const ResourceCount& count) {
    std::string text;
    for (const char* const name : kResources) {
        text += (text.empty() ? "" : ", ") + std::to_string(resourceField(count, name)) + " " + name;
    }
    return text;
}

// Those of `now` that `before` doesn't have.
std::string handlesGained(const std::vector<HeldHandle>& before, const std::vector<HeldHandle>& now) {
    std::string text;
    for (const HeldHandle& handle : now) {
        const bool held = std::any_of(before.begin(), before.end(), [&](const HeldHandle& other) {
            return other.value == handle.value && other.kind == handle.kind;
        });
        if (!held) {
            text += (text.empty() ? "" : ", ") + hexText(handle.value) + " " + handle.kind;
        }
    }
    return text;
}

std::string recordField(const PluginProcDef& record, const std::string& field) {
    if (field == "flags") {
        return hexText(record.flags);
    }
    if (field == "kind") {
        return hexText(record.kind);
    }
    if (field == "id") {
        return hexText(record.id);
    }
    if (field == "name") {
        return record.name ? record.name : "null";
    }
    if (field == "menu") {
        return record.menuPath ? record.menuPath : "null";
    }
    if (field == "self") {
        return record.self == &record ? "itself" : "another";
    }
    if (field == "execute") {
        return record.execute ? "set" : "null";
    }
    if (field == "terminate") {
        return record.terminate ? "set" : "null";
    }
    if (field == "reserved") {
        const bool zero =
            !(record.reserved5 | record.reserved6 | record.reserved7 | record.reserved11 | record.reserved12);
        return zero ? "0" : "not 0";
    }
    throw DriveFault("a record has no field \"" + field + "\"");
}

void expectResult(DriveContext& drive, const Words& words) {
    if (drive.result != driveNumber(words[0])) {
        throw DriveFault("expected the result " + words[0] + "; saw " + std::to_string(drive.result));
    }
}

void expectRecord(DriveContext& drive, const Words& words) {
    const long index = driveNumber(words[0]);
    std::string seen;
    drive.askEditor([&] {
        const auto& records = drive.editor.library().records();
        if (index >= 0 && static_cast<size_t>(index) < records.size()) {
            seen = recordField(*records[static_cast<size_t>(index)], words[1]);
        } else {
            seen = "no such record (" + std::to_string(records.size()) + " in all)";
        }
    });
    if (seen != words[2]) {
        throw DriveFault("expected " + words[1] + " of record " + words[0] + " \"" + words[2] + "\"; saw \"" +
                         seen + "\"");
    }
}

void expectBusy(DriveContext& drive, const Words& words) {
    ProcedureState* state = nullptr;
    drive.askEditor([&] { state = drive.editor.procedure(words[0]); });
    if (!state) {
        throw DriveFault("the plug-in has no procedure \"" + words[0] + "\"");
    }
    drive.expect([&] { return state->isBusy(); }, words[0] + " to be busy",
                 [] { return std::string("it is idle"); });
}

void expectIdle(DriveContext& drive, const Words& words) {
    ProcedureState* state = nullptr;
    drive.askEditor([&] { state = drive.editor.procedure(words[0]); });
    if (!state) {
        throw DriveFault("the plug-in has no procedure \"" + words[0] + "\"");
    }
    drive.expect([&] { return !state->isBusy(); }, words[0] + " to be idle",
                 [] { return std::string("it is busy"); });
}

void expectModule(DriveContext& drive, const Words& words) {
    if (words[1] != "loaded" && words[1] != "gone") {
        throw DriveFault("a module is loaded or gone");
    }
    const bool loaded = words[1] == "loaded";
    drive.expect([&] { return (GetModuleHandleA(words[0].c_str()) != nullptr) == loaded; },
                 words[0] + " " + words[1], [&] { return loaded ? "it is not" : "it is still loaded"; });
}

void expectLog(DriveContext& drive, const Words& words) {
    drive.expect([&] { return drive.editor.log().holds(words[0]); }, "the log to hold \"" + words[0] + "\"",
                 [&] {
                     std::string text = "\n";
                     for (size_t i = 0; i < drive.editor.log().size(); ++i) {
                         const CallLogLine line = drive.editor.log().line(i);
                         text += "    " + line.thread + ": " + line.call + " -> " + line.answer + "\n";
                     }
                     return text;
                 });
}

void expectNoLog(DriveContext& drive, const Words& words) {
    if (drive.editor.log().holds(words[0])) {
        throw DriveFault("expected no \"" + words[0] + "\" in the log; it is there");
    }
}

void clearLog(DriveContext& drive, const Words&) {
    drive.editor.log().clear();
}

void mark(DriveContext& drive, const Words&) {
    drive.mark = countResources();
    drive.markHandles = heldHandles();
    drive.markUserObjects = userObjectKinds();
}

void expectNoGain(DriveContext& drive, const Words& words) {
    // Words: kinds, each followed by the gain that is allowed where it is not 0.
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string kind = words[i];
        const long before = resourceField(drive.mark, kind);
        if (before < 0) {
            throw DriveFault("\"" + kind + "\" can't be counted");
        }
        long allowed = 0;
        if (i + 1 < words.size() && resourceField(drive.mark, words[i + 1]) < 0) {
            allowed = driveNumber(words[++i]);
        }
        long now = before;
        // Threads that are just ending hold their things a moment longer.
        drive.expect(
            [&] { return (now = resourceField(countResources(), kind)) - before <= allowed; },
            "at most " + std::to_string(allowed) + " " + kind + " more than " + std::to_string(before),
            [&] {
                return std::to_string(now) + " (before: " + resourceText(drive.mark) +
                       "; now: " + resourceText(countResources()) +
                       "; handles that were not there: " + handlesGained(drive.markHandles, heldHandles()) +
                       "; user objects before: " + drive.markUserObjects + "; now: " + userObjectKinds() +
                       ")";
            });
    }
}

void counts(DriveContext& drive, const Words&) {
    std::printf("%s\n", resourceText(countResources()).c_str());
    const std::string gained = handlesGained(drive.markHandles, heldHandles());
    if (!gained.empty()) {
        std::printf("handles that were not there at the mark: %s\n", gained.c_str());
    }
}

void timeout(DriveContext& drive, const Words& words) {
    drive.patience = static_cast<unsigned>(driveNumber(words[0])) * 1000;
}

void print(DriveContext&, const Words& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

// The process ends as the editor's does: on the editor's thread, with whatever of the plug-in's is still
// open.
void exit(DriveContext& drive, const Words& words) {
    const UINT status = static_cast<UINT>(driveNumber(words[0]));
    drive.editorWindow.post([status] {
        std::fflush(stdout);
        ExitProcess(status);
    });
    Sleep(INFINITE);
}

}  // namespace

void addCheckCommands(DriveCommands& table) {
    table["result"] = {1, 1, expectResult};
    table["expect-record"] = {3, 3, expectRecord};
    table["expect-busy"] = {1, 1, expectBusy};
    table["expect-idle"] = {1, 1, expectIdle};
    table["expect-module"] = {2, 2, expectModule};
    table["expect-log"] = {1, 1, expectLog};
    table["expect-no-log"] = {1, 1, expectNoLog};
    table["clear-log"] = {0, 0, clearLog};
    table["mark"] = {0, 0, mark};
    table["expect-no-gain"] = {1, 10, expectNoGain};
    table["counts"] = {0, 0, counts};
    table["timeout"] = {1, 1, timeout};
    table["print"] = {1, 9, print};
    table["exit"] = {1, 1, exit};
}

}  // namespace zoka
