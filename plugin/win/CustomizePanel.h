// "KEZ Customize" as a panel of the editor.
#pragma once

#include <string>
#include <vector>

#include "customize/win/CustomizeDialog.h"
#include "plugin/win/PanelWindow.h"

namespace zoka {

class CustomizePanel : public PanelWindow {
public:
    // `editor` outlives the object. [editor thread]
    explicit CustomizePanel(ZunEditorInterface& editor);

    HWND create(HINSTANCE instance, int number) override { return m_dialog.create(instance, number); }
    void load() override { m_dialog.load(); }

private:
    CustomizeDialog m_dialog;
};

// The level's main script and the scripts that it includes, as far as they are found: full paths.
std::vector<std::string> customizableScripts(ZunEditorInterface& editor);

}  // namespace zoka
