// Runs a drive script against the editor's window, on a thread of its own, so that it goes on while modal
// windows of the plug-in's hold the editor's thread. The commands are described in docs/editor.md.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/editor/DriveScript.h"
#include "tools/editor/win/EditorWindow.h"
#include "tools/editor/win/ResourceCount.h"

namespace zoka {

// What ends a script: an expectation that failed, or a command that can't be carried out.
struct DriveFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Driver {
public:
    // `window` and `editor` must outlive the driver. `pictures`: folder for the picture that is taken on a
    // failure.
    Driver(Editor& editor, EditorWindow& window, std::string file, DriveScript script, std::string pictures);

    // Carries out the script and ends the process: with 0 at its end, with N at "exit N", with 1 after a
    // failure (said on the standard error stream as "file:line: ..."). [driver's thread]
    void run();

    // The line that is being carried out, for a watchdog's message. Works on every thread.
    int currentLine() const { return m_line; }

private:
    using Words = std::vector<std::string>;
    struct Command {
        size_t least, most;  // words behind the command's name
        void (Driver::*run)(const Words& words);
    };
    static const std::map<std::string, Command>& commands();
    static void addEditorCommands(std::map<std::string, Command>& table);
    static void addWindowCommands(std::map<std::string, Command>& table);
    static void addControlCommands(std::map<std::string, Command>& table);
    static void addInputCommands(std::map<std::string, Command>& table);
    static void addFileCommands(std::map<std::string, Command>& table);
    static void addCheckCommands(std::map<std::string, Command>& table);

    void carryOut(const Words& words);
    void runLines();
    [[noreturn]] void fail(const std::string& what);

    // Waits until `condition` holds; false when the script's patience ends first.
    bool until(const std::function<bool()>& condition) const;
    // Like until(), but a failure is a fault that says what was expected and, asked for then, what was seen.
    void expect(const std::function<bool()>& condition, const std::string& expected,
                const std::function<std::string()>& seen) const;
    // Runs `work` on the editor's thread; its result becomes m_result. Waits for it unless the command stands
    // behind "start".
    void onEditor(std::function<std::int32_t()> work);
    void awaitJob();
    // Like onEditor(), but always waits, and the result goes nowhere.
    void askEditor(std::function<void()> work);
    ProcedureState& procedure(const std::string& name);  // to be called on the editor's thread
    LevelEntity entity(const std::string& name) const;   // a fault when the level has none of that name
    HWND window() const;                                 // the current one; a fault when it is gone
    HWND control(const std::string& name) const;         // waits for it to be there
    HWND usableControl(const std::string& name) const;   // waits for it to be there and enabled
    void notifyParent(HWND control, WORD code) const;
    HWND popUp() const;
    void picture(const std::string& path, const RECT& area) const;

    // What is driven: the editor itself.
    void start(const Words&);
    void finish(const Words&);
    void open(const Words&);
    void load(const Words&);
    void loadPlugin(const Words&);
    void init(const Words&);
    void info(const Words&);
    void records(const Words&);
    void procDef(const Words&);
    void runProcedure(const Words&);
    void execute(const Words&);
    void executeStale(const Words&);
    void terminate(const Words&);
    void select(const Words&);
    void deleteEntity(const Words&);
    void setSkill(const Words&);
    void setFlag(const Words&);
    void expectSkill(const Words&);
    void expectFlag(const Words&);
    void entityAnswers(const Words&);
    void unload(const Words&);
    void freeLibrary(const Words&);
    void editorInterface(const Words&);
    void hostFault(const Words&);
    // ... windows
    void waitWindow(const Words&);
    void waitGone(const Words&);
    void waitBox(const Words&);
    void expectBox(const Words&);
    void expectNoWindow(const Words&);
    void closeWindow(const Words&);
    void sizeWindow(const Words&);
    void moveWindow(const Words&);
    void expectPlace(const Words&);
    void menu(const Words&);
    void openMenu(const Words&);
    void expectMenu(const Words&);
    void expectNoMenu(const Words&);
    void printMenu(const Words&);
    void screenshot(const Words&);
    void printWindows(const Words&);
    // ... controls
    void click(const Words&);
    void focus(const Words&);
    void type(const Words&);
    void key(const Words&);
    void set(const Words&);
    void choose(const Words&);
    void check(const Words&);
    void uncheck(const Words&);
    void setCheck(const Words&, bool on);
    void read(const Words&);
    void expectControl(const Words&);
    void expectItems(const Words&);
    void expectLayout(const Words&);
    void tabOrderOf(const Words&);
    void expectTabOrder(const Words&);
    // ... the mouse wheel, menus at controls, messages at random
    void wheel(const Words&);
    void hover(const Words&);
    void hold(const Words&);
    void contextMenu(const Words&);
    void randomMessages(const Words&);
    // ... files
    void copyFile(const Words&);
    void addLines(const Words&);
    void expectLines(const Words&);
    void expectNoLines(const Words&);
    void expectSameFile(const Words&);
    // ... what is looked at besides
    void expectResult(const Words&);
    void expectRecord(const Words&);
    void expectBusy(const Words&);
    void expectIdle(const Words&);
    void expectModule(const Words&);
    void expectLog(const Words&);
    void expectNoLog(const Words&);
    void clearLog(const Words&);
    void mark(const Words&);
    void expectNoGain(const Words&);
    void counts(const Words&);
    void timeout(const Words&);
    void print(const Words&);
    void exit(const Words&);

    struct Job;

    Editor& m_editor;
    EditorWindow& m_editorWindow;
    std::string m_file;
    DriveScript m_script;
    std::string m_pictures;
    std::atomic<int> m_line{0};

    unsigned m_patience = 10000;  // ms
    bool m_start = false;         // the command stands behind "start"
    std::shared_ptr<Job> m_job;   // started and not yet finished
    std::int32_t m_result = 0;
    HWND m_window = nullptr;
    ResourceCount m_mark;
    std::vector<HeldHandle> m_markHandles;  // held at the mark
    size_t m_logMark = 0;
};

// The number in a word; a fault when it is none.
long driveNumber(const std::string& word);

}  // namespace zoka
