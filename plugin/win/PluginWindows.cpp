#include "plugin/win/PluginWindows.h"

#include <windows.h>

#include <commctrl.h>

#include "J8ProjectManager/win/ProjectDialog.h"
#include "J8ProjectManager/win/ProjectPage.h"
#include "J8ProjectWizard/win/J8WizardNewDlg.h"
#include "customize/win/BehaviorDialog.h"
#include "customize/win/CustomizeDialog.h"
#include "plugin/Procedures.h"
#include "plugin/host/EntityAccess.h"
#include "plugin/host/HostAdapter.h"
#include "plugin/win/Resources.h"
#include "plugin/win/ViewThread.h"
#include "templates/IncludedScripts.h"
#include "templates/win/ManagerDialog.h"
#include "ui/win/ControlsContext.h"

namespace zoka {

static_assert(kPanelDialog == IDD_PANEL);

namespace {

HINSTANCE g_module = nullptr;

// "KEZ Customize" as a panel of the editor.
class CustomizeWindow : public PanelWindow {
public:
    explicit CustomizeWindow(ZunEditorInterface& editor)
        : m_dialog(
              {editor, {}, [&editor] { return pathsOfIncludedScripts(editor); }, g_module, IDI_ZOKA, this}) {}

    HWND create(HINSTANCE instance, int number) override { return m_dialog.create(instance, number); }
    void load() override { m_dialog.load(); }
    void gone() noexcept override { m_dialog.gone(); }

private:
    CustomizeDialog m_dialog;
};

// "Entity Behavior" as a panel of the editor.
class BehaviorWindow : public PanelWindow {
public:
    BehaviorWindow(ZunEditorInterface& editor, const HostContext* context,
                   std::optional<BehaviorProject> project)
        : m_entities(makeEntityAccess(context)),
          m_dialog({m_entities.get(), editor, g_module, IDI_ZOKA, std::move(project), this}) {}

    HWND create(HINSTANCE instance, int number) override { return m_dialog.create(instance, number); }
    void load() override { m_dialog.load(); }
    void gone() noexcept override { m_dialog.gone(); }

private:
    std::unique_ptr<EntityAccess> m_entities;
    BehaviorDialog m_dialog;
};

}  // namespace

HINSTANCE moduleInstance() {
    return g_module;
}
void setModuleInstance(HINSTANCE instance) {
    g_module = instance;
}

bool startWindowToolkit() {
    INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES};
    return InitCommonControlsEx(&classes) && FindResourceA(g_module, MAKEINTRESOURCEA(IDD_PANEL), RT_DIALOG);
}

std::unique_ptr<ZunEditorInterface> PluginWindows::makeEditor(void* rawEditor) {
    return std::make_unique<HostAdapter>(rawEditor);
}

std::unique_ptr<PanelDialog> PluginWindows::makeCustomizePanel(ZunEditorInterface& editor) {
    const ControlsContext controls(g_module);
    return std::make_unique<CustomizeWindow>(editor);
}

bool PluginWindows::behaviorPanelDefined(const std::string& projectFile, const std::string& entity,
                                         EntityDescriptor& descriptor) {
    auto behavior = definedBehavior(projectFile, entity);
    if (!behavior) {
        return false;
    }
    descriptor = {entity, std::move(*behavior)};
    return true;
}

std::unique_ptr<PanelDialog> PluginWindows::makeBehaviorPanel(
    ZunEditorInterface& editor, const HostContext* context,
    const std::optional<EntityDescriptor>& descriptor) {
    const ControlsContext controls(g_module);
    std::optional<BehaviorProject> project;
    if (descriptor) {
        const auto open = [&editor]() -> std::optional<std::string> {
            const auto script = editor.GetMainScriptPath();
            return script && !script->empty() ? std::optional(projectFileOf(*script).value_or(""))
                                              : std::nullopt;
        };
        project = {open().value_or(""), descriptor->entity, open};
    }
    return std::make_unique<BehaviorWindow>(editor, context, std::move(project));
}

std::unique_ptr<PanelThread> PluginWindows::makeThread(PanelState& state, PanelDialog& dialog, int number) {
    return std::make_unique<CViewThread>(state, static_cast<PanelWindow&>(dialog), number);
}

void PluginWindows::runProjectManager(ZunEditorInterface&, const std::string& projectFile) {
    const ControlsContext controls(g_module);
    runProjectDialog({*CJ8ProjectManager::Instance(), projectFile, g_module, IDI_ZOKA});
}

void PluginWindows::runScriptManager(ZunEditorInterface& editor, const std::string&, const std::string&,
                                     const std::string& catalogue) {
    const ControlsContext controls(g_module);
    const auto customize = [&editor](HWND owner, const std::string& script) {
        CustomizeDialog dialog({editor, script, {}, g_module, IDI_ZOKA});
        dialog.runModal(owner);
        dialog.gone();
    };
    runManagerDialog({editor, catalogue, g_module, IDI_ZOKA, customize});
}

std::optional<NewProjectChoice> PluginWindows::runNewProject(ZunEditorInterface&) {
    const ControlsContext controls(g_module);
    const auto made = CJ8WizardNewDlg(g_module, IDI_ZOKA).run();
    return made ? std::optional(NewProjectChoice{made->folder, made->level}) : std::nullopt;
}

}  // namespace zoka
