#include "plugin/Procedures.h"

#include <atomic>
#include <memory>
#include <utility>

#include "J8ProjectManager/J8ProjectManager.h"
#include "templates/CatalogueXml.h"
#include "util/DebugLog.h"
#include "util/Doors.h"
#include "util/OsFiles.h"
#include "util/UserPrompt.h"

namespace zoka {
namespace {

PluginSeams* g_seams = nullptr;

// What belongs to one run of a panel procedure. The thread is shared because messages answered while waiting
// can re-enter the procedures and put a new run here.
struct PanelRun {
    std::unique_ptr<ZunEditorInterface> editor;
    std::shared_ptr<PanelThread> thread;
};
struct Panel {
    PanelState state;
    PanelRun run;
    bool opening = false;  // messages that re-enter the procedure must not open a second panel
};

// Made at the first use and freed by shutDownPlugin, never by the process's end: a static's destructor would
// run there after the panels' threads were killed.
struct Panels {
    Panel customize;
    Panel behavior;
    std::unique_ptr<PanelDialog> customizeDialog;
};
Panels* g_panels = nullptr;

Panels& panels() {
    if (!g_panels) {
        g_panels = new Panels;
    }
    return *g_panels;
}

// Messages that the host answers while a modal procedure's dialog is open must not open it a second time, nor the other
// one's: both may work on the one project object.
bool g_inModal = false;

// True as long as it lives.
class Marked {
public:
    explicit Marked(bool& mark) : m_mark(mark) { m_mark = true; }
    ~Marked() { m_mark = false; }
    Marked(const Marked&) = delete;
    Marked& operator=(const Marked&) = delete;

private:
    bool& m_mark;
};

// The host's busy word, which may be missing: 1 as long as this lives, unless a panel's run has taken it over.
class BusyWord {
public:
    explicit BusyWord(std::int32_t* word) : m_word(word) { set(1); }
    ~BusyWord() { set(0); }
    BusyWord(const BusyWord&) = delete;
    BusyWord& operator=(const BusyWord&) = delete;

    std::int32_t* handOver() { return std::exchange(m_word, nullptr); }

private:
    void set(std::int32_t value) {
        if (m_word) {
            std::atomic_ref<std::int32_t>(*m_word).store(value);
        }
    }
    std::int32_t* m_word;
};

// Marks a modal procedure as running, in the host's word and in our own.
struct ModalRun {
    ModalRun(bool& running, std::int32_t* word) : mark(running), busy(word) {}
    const Marked mark;
    const BusyWord busy;
};

std::string entityName(const HostContext* context) {
    return context && context->entityName ? context->entityName : "";
}

// Waits for a run to be over and forgets it.
void finish(Panel& panel) {
    const std::shared_ptr<PanelThread> thread = panel.run.thread;
    if (!thread) {
        return;
    }
    thread->waitUntilGone();
    if (panel.run.thread == thread) {
        panel.run.thread.reset();
    }
}

// True when the panel stands open already: it is in front now. This call of the procedure is over then, and a
// word of its own says so; the one that the open panel keeps busy stays busy, also when the host has cleared it.
bool showOpenPanel(Panel& panel, std::int32_t* executeFlags) {
    PanelThread* const thread = panel.state.thread();
    if (!thread || !thread->bringToFront()) {
        return false;
    }
    const bool isThePanels = executeFlags == panel.state.busyWord();
    std::atomic_ref<std::int32_t>(*executeFlags).store(isThePanels ? 1 : 0);
    return true;
}

void startPanel(Panel& panel, PanelDialog& dialog, std::unique_ptr<ZunEditorInterface> editor,
                BusyWord& busy) {
    panel.run.editor = std::move(editor);
    const std::shared_ptr<PanelThread> thread = g_seams->makeThread(panel.state, dialog, kPanelDialog);
    panel.run.thread = thread;
    panel.state.begin(thread.get(), busy.handOver());
    if (!thread->start()) {
        finish(panel);
        userPrompt().tell("The panel could not be opened: the system refused its thread or window.");
    }
}

// Closes the panel, if one is open, and waits until its thread is gone.
void closePanel(Panel& panel) {
    if (PanelThread* const thread = panel.state.thread()) {
        thread->requestClose();
    }
    finish(panel);
}

void freeBehaviorDialog() {
    delete g_behaviorDialog;
    g_behaviorDialog = nullptr;
}

// It edits a script, whichever entity is selected: the context is the other panel's.
std::int32_t executeCustomize(PluginProcDef*, HostContext*, std::int32_t* executeFlags) {
    if (!executeFlags) {
        userPrompt().tell("Execute Flags (ec12-1)");
        return 0;
    }
    if (!g_appInterface) {
        userPrompt().tell("No AppInterface (ec12-2)");
        return 0;
    }
    if (!g_appInterface->editor) {
        userPrompt().tell("Invalid Zun Interface (ec11-2)");
        return 0;
    }
    Panel& panel = panels().customize;
    if (showOpenPanel(panel, executeFlags) || panel.opening) {
        return 0;
    }
    const Marked opening(panel.opening);
    finish(panel);
    BusyWord busy(executeFlags);
    auto editor = g_seams->makeEditor(g_appInterface->editor);
    panels().customizeDialog = g_seams->makeCustomizePanel(*editor);
    startPanel(panel, *panels().customizeDialog, std::move(editor), busy);
    return 0;
}

std::int32_t terminateCustomize() {
    closePanel(panels().customize);
    return 1;
}

// The descriptor when the level belongs to a project that defines a behaviour panel for the context's entity;
// the context is marked as taken then.
std::optional<EntityDescriptor> testBehavior(ZunEditorInterface& editor, HostContext* context) {
    const auto mainScript = editor.GetMainScriptPath();
    const auto projectFile = mainScript ? projectFileOf(*mainScript) : std::nullopt;
    if (!context || !projectFile || !osFiles().exists(*projectFile)) {
        return std::nullopt;
    }
    EntityDescriptor descriptor;
    if (!g_seams->behaviorPanelDefined(*projectFile, entityName(context), descriptor)) {
        return std::nullopt;
    }
    context->taken = 1;
    return descriptor;
}

std::int32_t executeBehavior(PluginProcDef*, HostContext* context, std::int32_t* executeFlags) {
    if (!executeFlags || !g_appInterface || !g_appInterface->editor) {
        return 0;
    }
    Panel& panel = panels().behavior;
    if (showOpenPanel(panel, executeFlags) || panel.opening) {
        return 0;
    }
    const Marked opening(panel.opening);
    finish(panel);
    BusyWord busy(executeFlags);
    freeBehaviorDialog();
    auto editor = g_seams->makeEditor(g_appInterface->editor);
    const auto descriptor = testBehavior(*editor, context);
    g_behaviorDialog = g_seams->makeBehaviorPanel(*editor, context, descriptor).release();
    startPanel(panel, *g_behaviorDialog, std::move(editor), busy);
    return 0;
}

std::int32_t terminateBehavior() {
    Panel& panel = panels().behavior;
    closePanel(panel);
    if (!panel.run.thread) {  // unless a message that came while waiting opened a new one
        freeBehaviorDialog();
    }
    return 1;
}

std::int32_t executeAddScript(PluginProcDef*, HostContext*, std::int32_t* executeFlags) {
    if (!g_appInterface) {
        userPrompt().tell("No AppInterface (ec10-1)");
        return 0;
    }
    if (!g_appInterface->editor) {
        userPrompt().tell("Invalid Zun Interface (ec10-2)");
        return 0;
    }
    if (g_inModal) {
        return 0;
    }
    const ModalRun run(g_inModal, executeFlags);
    const auto editor = g_seams->makeEditor(g_appInterface->editor);
    const std::string projectFolder = editor->GetProjectFolder();
    const auto mainScript = editor->GetMainScriptPath();
    if (!mainScript) {
        userPrompt().tell("No Main Script (ec10-3)");
        return 0;
    }
    const auto projectFile = projectFileOf(*mainScript);
    if (projectFile && osFiles().exists(*projectFile)) {
        g_seams->runProjectManager(*editor, *projectFile);
        return 0;
    }
    const std::string catalogue = editor->TemplatePath(kCatalogueFile);
    if (!osFiles().exists(catalogue)) {
        userPrompt().tell("File missing: template_6.xml (ec10-4)");
        return 0;
    }
    g_seams->runScriptManager(*editor, *mainScript, projectFolder, catalogue);
    return 0;
}

std::int32_t executeWizard(PluginProcDef*, HostContext*, std::int32_t* executeFlags) {
    if (!executeFlags || !g_appInterface || !g_appInterface->editor || g_inModal) {
        return 0;
    }
    const ModalRun run(g_inModal, executeFlags);
    const auto editor = g_seams->makeEditor(g_appInterface->editor);
    const auto choice = g_seams->runNewProject(*editor);
    if (!choice) {
        return 1;
    }
    const std::string path = choice->projectFolder + (choice->level.empty() ? "map" : choice->level);
    if (path.size() + 4 > kHostPathSize) {
        userPrompt().tell("Pathname to long (ec11-1)");
        return 0;
    }
    editor->OpenMap(path + ".zlm");
    return 1;
}

template <PluginExecute Execute>
std::int32_t guarded(PluginProcDef* record, HostContext* context, std::int32_t* executeFlags) {
    std::int32_t result = 0;
    keepInside([&] { result = Execute(record, context, executeFlags); });
    return result;
}

template <PluginTerminate Terminate>
std::int32_t guarded() {
    keepInside([] { Terminate(); });
    return 1;
}

}  // namespace

AppInterface* g_appInterface = nullptr;
PanelDialog* g_behaviorDialog = nullptr;

PluginProcDef g_procDefs[kProcCount] = {
    {0, 2, 0x84, "KEZ Customize", nullptr, 0, 0, 0, &g_procDefs[0], guarded<executeCustomize>,
     guarded<terminateCustomize>, 0, 0},
    {0, 1, 0x85, "Add Script", nullptr, 0, 0, 0, &g_procDefs[1], guarded<executeAddScript>, nullptr, 0, 0},
    {0, 2, 0x8b, "Entity Behavior", nullptr, 0, 0, 0, &g_procDefs[2], guarded<executeBehavior>,
     guarded<terminateBehavior>, 0, 0},
    {0x80000, 5, 0, "Project Wizard", "File\\Project Wizard", 0, 0, 0, &g_procDefs[3], guarded<executeWizard>,
     nullptr, 0, 0},
};

void setPluginSeams(PluginSeams* seams) {
    g_seams = seams;
}

bool startLibrary(bool (*startToolkit)()) {
    if (startToolkit()) {
        return true;
    }
    userPrompt().tell("InitInstance error!(ec13-1)");
    return false;
}

void shutDownPlugin() {
    if (g_panels) {
        for (Panel* panel : {&g_panels->customize, &g_panels->behavior}) {
            if (panel->run.thread) {
                panel->run.thread->leaveForUnload();
            }
        }
        freeBehaviorDialog();
        delete g_panels;
        g_panels = nullptr;
    }
    g_appInterface = nullptr;
    CJ8ProjectManager::deleteInstance();
    closeDebugLog();
}

std::optional<std::string> projectFileOf(const std::string& mainScript) {
    const size_t dot = mainScript.rfind('.');
    if (dot == std::string::npos) {
        return std::nullopt;
    }
    return std::string(mainScript).replace(dot, 4, ".xml");
}

}  // namespace zoka

extern "C" {

std::int32_t PIInitialize(AppInterface* appInterface) {
    if (zoka::g_appInterface) {
        return 0;
    }
    zoka::g_appInterface = appInterface;
    if (!appInterface) {
        zoka::tellFault("No AppInterface (ec11-1)");
        return 0;
    }
    if (!appInterface->editor) {
        zoka::tellFault("Invalid Zun Interface (ec11-2)");
        return 0;
    }
    return 1;
}

std::int32_t PIGetPIInfo(std::uint32_t* a, std::uint32_t* b, std::uint32_t* c) {
    const std::uint32_t words[] = {0, 0x20001, 0x40000002};
    std::uint32_t* const outputs[] = {a, b, c};
    for (int i = 0; i < 3; ++i) {
        if (outputs[i]) {
            *outputs[i] = words[i];
        }
    }
    return 0;
}

PluginProcDef* PIGetProcDef(std::int32_t index) {
    return zoka::g_appInterface && index >= 0 && index < zoka::kProcCount ? &zoka::g_procDefs[index]
                                                                          : nullptr;
}
}
