// What the commands of a drive script work on, and the words that they share. Each command is a function of its
// own in a Driver*.cpp, whose last function puts them into the table.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/editor/win/EditorWindow.h"
#include "tools/editor/win/ResourceCount.h"

namespace zoka {

// What ends a script: an expectation that failed, or a command that can't be carried out.
struct DriveFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct DriveContext;
struct DriveJob;  // a piece of work on its way to the editor's thread and back

using Words = std::vector<std::string>;
struct DriveCommand {
    size_t least, most;  // words behind the command's name
    void (*run)(DriveContext& drive, const Words& words);
};
using DriveCommands = std::map<std::string, DriveCommand>;

// The commands by subject: what is driven is the editor itself, windows and menus, controls, what
// is painted, the mouse and messages at random, files, and what is looked at besides.
void addEditorCommands(DriveCommands& table);
void addWindowCommands(DriveCommands& table);
void addControlCommands(DriveCommands& table);
void addLayoutCommands(DriveCommands& table);
void addPaintCommands(DriveCommands& table);
void addInputCommands(DriveCommands& table);
void addFileCommands(DriveCommands& table);
void addCheckCommands(DriveCommands& table);

// All operations: [driver's thread]. Each of them throws a DriveFault where it says so or waits in vain.
struct DriveContext {
    Editor& editor;
    EditorWindow& editorWindow;

    unsigned patience = 10000;             // ms
    bool starting = false;                 // the command stands behind "start"
    std::shared_ptr<DriveJob> job = {};    // started and not yet finished
    std::int32_t result = 0;               // of the last call
    HWND current = editorWindow.handle();  // the window that the commands about controls are meant for
    ResourceCount mark = {};               // what was held at the mark
    std::vector<HeldHandle> markHandles = {};
    std::string markUserObjects = {};    // by kind
    std::vector<void*> usedMemory = {};  // addresses that nobody else gets: see useMemory

    // Leaves the process no piece of memory of that many megabytes or more; 0 gives all back.
    void useMemory(long megabytes);

    // Runs a command: its name and its words. A fault where there is none of that name or the number is wrong.
    void carryOut(const Words& words);

    // Waits until `condition` holds; false when the script's patience ends first.
    bool until(const std::function<bool()>& condition) const;
    // Like until(), but a failure is a fault that says what was expected and, asked for then, what was seen.
    void expect(const std::function<bool()>& condition, const std::string& expected,
                const std::function<std::string()>& seen) const;

    // Runs `work` on the editor's thread; its result becomes `result`. Waits for it unless `starting`.
    void onEditor(std::function<std::int32_t()> work);
    void awaitJob();
    // Like onEditor(), but always waits, and the result goes nowhere.
    void askEditor(std::function<void()> work) const;

    ProcedureState& procedure(const std::string& name) const;  // [editor thread]
    LevelEntity entity(const std::string& name) const;         // a fault when the level has none of that name
    HWND window() const;                                       // the current one; a fault when it is gone
    HWND control(const std::string& name) const;               // waits for it to be there
    HWND usableControl(const std::string& name) const;         // waits for it to be there and enabled
    void notifyParent(HWND child, WORD code) const;
    void picture(const std::string& path, const RECT& area) const;
};

// The number in a word; a fault when it is none.
long driveNumber(const std::string& word);

// Texts in quotes, one behind the other, for a fault.
std::string listed(const std::vector<std::string>& texts);

}  // namespace zoka
