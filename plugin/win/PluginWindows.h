// The real windows, threads and host behind the procedures.
#pragma once

#include "plugin/PluginSeams.h"

namespace zoka {

class PluginWindows : public PluginSeams {
public:
    std::unique_ptr<ZunEditorInterface> makeEditor(void* rawEditor) override;
    std::unique_ptr<PanelDialog> makeCustomizePanel(ZunEditorInterface& editor) override;
    bool behaviorPanelDefined(const std::string& projectFile, const std::string& entity,
                              EntityDescriptor& descriptor) override;
    std::unique_ptr<PanelDialog> makeBehaviorPanel(
        ZunEditorInterface& editor, const HostContext* context,
        const std::optional<EntityDescriptor>& descriptor) override;
    std::unique_ptr<PanelThread> makeThread(PanelState& state, PanelDialog& dialog, int number) override;
    void runProjectManager(ZunEditorInterface& editor, const std::string& projectFile) override;
    void runScriptManager(ZunEditorInterface& editor, const std::string& mainScript,
                          const std::string& projectFolder, const std::string& catalogue) override;
    std::optional<NewProjectChoice> runNewProject(ZunEditorInterface& editor) override;
};

// False when the system's common controls or the library's own resources can't be had.
bool startWindowToolkit();

}  // namespace zoka
