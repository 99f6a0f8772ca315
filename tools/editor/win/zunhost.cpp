// zunhost: the stand-in editor. Shows its window; with --drive a script steers it.
#include <windows.h>

#include <commctrl.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>

#include "tools/editor/win/ChildEditor.h"
#include "tools/editor/win/CrashReport.h"
#include "tools/editor/win/Driver.h"
#include "tools/editor/win/EditorWindow.h"
#include "tools/editor/win/SystemLook.h"
#include "util/OsFiles.h"

namespace {

struct Options {
    std::string project;
    std::string plugin;
    std::string suite;
    std::string templates = "templates";
    std::string logFile;
    std::string fault = "normal";
    std::string entities = "all";
    std::string entityProcedure;
    std::string script;
    std::vector<std::string> values;
    std::string pictures = ".";
    unsigned limit = 0;
    int dpi = 0;
    bool dpiAware = false;
    std::string font;
    std::string decimal;
    bool hidden = false;
};

constexpr int kUsage = 2;
constexpr int kCannot = 3;
constexpr unsigned kMoreSeconds = 2;

// Reports what keeps the program from starting: to the one who drives it, or to the user.
int complain(const Options& options, const std::string& text) {
    std::fprintf(stderr, "zunhost: %s\n", text.c_str());
    if (options.script.empty()) {
        MessageBoxA(nullptr, text.c_str(), "ZUN stand-in editor", MB_OK | MB_ICONERROR);
    }
    return kCannot;
}

bool readValues(const std::vector<std::string>& texts, std::map<std::string, std::string>& values) {
    for (const std::string& text : texts) {
        const size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0) {
            return false;
        }
        values[text.substr(0, equals)] = text.substr(equals + 1);
    }
    return true;
}

// Ends the process when a script takes too long, with the line it hangs at.
void watch(const zoka::Driver& driver, const std::string& script, unsigned seconds) {
    Sleep(seconds * 1000);
    std::fprintf(stderr, "%s:%d: not done after %u s\n", script.c_str(), driver.currentLine(), seconds);
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), 1);
}

// What is opened later must not depend on the current folder.
void makeAbsolute(std::string& path) {
    char full[MAX_PATH];
    const DWORD size = path.empty() ? 0 : GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
    if (size > 0 && size < sizeof full) {
        path.assign(full, size);
    }
}

// Older systems lack the call, and their programs are as they are.
void becomeDpiAware() {
    using SetContext = BOOL(WINAPI*)(HANDLE);
    const HMODULE user = GetModuleHandleA("user32.dll");
    if (const FARPROC found = user ? GetProcAddress(user, "SetProcessDpiAwarenessContext") : nullptr) {
        constexpr INT_PTR kPerMonitorV2 = -4;
        reinterpret_cast<SetContext>(reinterpret_cast<void*>(found))(reinterpret_cast<HANDLE>(kPerMonitorV2));
    }
}

int runEditor(Options options) {
    if (options.dpiAware) {
        becomeDpiAware();
    }
    using namespace zoka;
    for (std::string* path : {&options.project, &options.plugin, &options.suite, &options.pictures}) {
        makeAbsolute(*path);
    }
    CallLog log(GetCurrentThreadId());
    if (!options.logFile.empty() && !log.openFile(options.logFile)) {
        return complain(options, options.logFile + " can't be written");
    }
    HostFault fault = HostFault::None;
    if (!readHostFault(options.fault, fault)) {
        return complain(options, "--host is normal, fail, empty or full");
    }

    EntityAnswers answers = EntityAnswers::All;
    if (!readEntityAnswers(options.entities, answers)) {
        return complain(options, "--entities is all, one or refuse");
    }

    DriveScript script;
    if (!options.script.empty()) {
        std::map<std::string, std::string> values;
        if (!readValues(options.values, values)) {
            return complain(options, "--set takes NAME=VALUE");
        }
        const std::optional<std::string> text = osFiles().readWhole(options.script);
        if (!text) {
            return complain(options, options.script + " can't be read: " + osFiles().lastError());
        }
        auto read = readDriveScript(*text, values);
        if (!read) {
            std::fprintf(stderr, "%s:%s\n", options.script.c_str(), read.why().c_str());
            return 1;
        }
        script = std::move(*read);
    }

    Editor editor(log);
    editor.hostTable().setFault(fault);
    editor.setEntityAnswers(answers);
    editor.setEntityProcedure(options.entityProcedure);
    editor.host().setSuite(options.suite, options.templates);
    EditorWindow window(editor);
    if (!window.create(!options.hidden)) {
        return complain(options, "the window can't be created");
    }
    if (!options.project.empty()) {
        if (const Outcome opened = editor.openProject(options.project); !opened) {
            return complain(options, opened.why());
        }
    }
    if (!options.plugin.empty()) {
        if (const Outcome loaded = editor.loadPlugin(options.plugin); !loaded) {
            return complain(options, options.plugin + ": " + loaded.why());
        }
    }
    // Where the editor's own current folder is.
    if (!options.suite.empty() && !SetCurrentDirectoryA(options.suite.c_str())) {
        return complain(options, options.suite + " is no folder");
    }
    if (options.script.empty()) {
        return window.run();
    }

    Driver driver(editor, window, options.script, std::move(script), options.pictures);
    if (options.limit) {
        std::thread(watch, std::cref(driver), options.script, options.limit).detach();
    }
    std::thread([&driver] { driver.run(); }).detach();
    const int status = window.run();
    // The script closed the editor's window: that is an end of its own.
    std::fflush(stdout);
    ExitProcess(static_cast<UINT>(status));
}

}  // namespace

int main(int argc, char** argv) {
    zoka::reportCrashes();
    Options options;
    CLI::App app(
        "Stand-in for the ZUN editor: loads a plug-in, serves it a plain project folder, shows every call.",
        "zunhost");
    app.add_option("project", options.project, "Folder of the project to open");
    app.add_option("--plugin", options.plugin, "Plug-in (.dll) to load");
    app.add_option("--suite", options.suite, "Folder that holds the template folder (default: the project's)")
        ->take_last();
    app.add_option("--templates", options.templates, "Name of the template folder in it");
    app.add_option("--log", options.logFile, "Write every call to this file");
    app.add_option("--host", options.fault, "How the host answers: normal, fail, empty, full");
    app.add_option("--entities", options.entities,
                   "What the operations on entities offer: all, one (the context's alone), refuse");
    app.add_option("--double-click", options.entityProcedure,
                   "The procedure that a double click on an entity runs");
    app.add_option("--drive", options.script, "Carry out the commands of this file, then end");
    app.add_option("--set", options.values,
                   "NAME=VALUE: what ${NAME} stands for in the script; may be repeated")
        ->allow_extra_args(false);
    app.add_option("--pictures", options.pictures, "Folder for the picture taken when a script fails");
    app.add_option("--limit", options.limit,
                   "End with status 1 when the script takes longer than these seconds");
    app.add_option("--dpi", options.dpi,
                   "Dots per inch of the screen that a driven editor finds (under Wine)")
        ->check(CLI::Range(96, 480));
    app.add_option("--font", options.font, "Face of the system's message font that it finds (under Wine)");
    app.add_option("--decimal", options.decimal,
                   "Decimal sign that it finds in the system's settings (under Wine)");
    app.add_flag("--dpi-aware", options.dpiAware,
                 "Tell the system that the editor knows each screen's resolution");
    app.add_flag("--hidden", options.hidden, "Do not show the editor's own window");
    app.set_version_flag("--version", ZOKA_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& fault) {
        return app.exit(fault) == 0 ? 0 : kUsage;
    }
    if (!options.script.empty() && !zoka::isChildEditor()) {
        const zoka::SystemLook look(options.dpi, options.font, options.decimal);
        // Its own watch names the line that it hangs at; this one is for a process that does not end.
        int status = 0;
        if (!zoka::runInChild(options.limit ? options.limit + kMoreSeconds : 0, status)) {
            return complain(options, "the driven editor can't be started");
        }
        return status;
    }
    return runEditor(options);
}
