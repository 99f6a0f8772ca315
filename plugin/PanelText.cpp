#include "plugin/PanelText.h"

namespace zoka {
namespace {

std::string line(const char* label, const std::string& value) {
    return std::string(label) + ": " + (value.empty() ? "none" : value);
}

}  // namespace

StatusLines projectStatus(ZunEditorInterface& editor) {
    return {line("Main script", editor.GetMainScriptPath().value_or("")),
            line("Project folder", editor.GetProjectFolder())};
}

StatusLines behaviorStatus(ZunEditorInterface& editor, const std::string& entity,
                           const std::optional<EntityDescriptor>& descriptor) {
    StatusLines lines = {line("Entity", entity), descriptor ? line("Behavior", descriptor->behavior)
                                                            : std::string("No Behavior Panel Defined.")};
    for (std::string& text : projectStatus(editor)) {
        lines.push_back(std::move(text));
    }
    return lines;
}

}  // namespace zoka
