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

}  // namespace zoka
