#include "plugin/win/CustomizePanel.h"

#include "plugin/win/Resources.h"
#include "templates/IncludeList.h"
#include "templates/ScriptFolders.h"

namespace zoka {

CustomizePanel::CustomizePanel(ZunEditorInterface& editor)
    : m_dialog({editor, {}, [&editor] { return customizableScripts(editor); }, moduleInstance(), IDI_ZOKA}) {}

std::vector<std::string> customizableScripts(ZunEditorInterface& editor) {
    std::vector<std::string> paths;
    const auto mainScript = editor.GetMainScriptPath();
    if (!mainScript) {
        return paths;
    }
    paths.push_back(*mainScript);
    std::vector<std::string> names;
    try {
        ReadIncludeList(*mainScript, names);
    } catch (const EmptyScriptError&) {
        return paths;
    }
    const ScriptFolders folders(editor);
    for (const std::string& name : names) {
        std::string path;
        if (folders.LocateScript(name, path) != ScriptPlace::NotFound) {
            paths.push_back(path);
        }
    }
    return paths;
}

}  // namespace zoka
