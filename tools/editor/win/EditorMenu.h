// The editor's menu bar, with the plug-in's procedures where their records want them: a record with a menu
// path stands at that path (menus on the way are made), the others in the menu "Plug-ins".
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tools/editor/win/Editor.h"

namespace zoka {

enum EditorCommand : UINT {
    kCommandOpen = 100,
    kCommandReload,
    kCommandSave,
    kCommandClose,
    kCommandExit,
    kCommandLoadPlugin,
    kCommandUnloadPlugin,
    kCommandHostNormal,
    kCommandHostFail,
    kCommandHostEmpty,
    kCommandHostFull,
    kCommandEntitiesAll,
    kCommandEntitiesOne,
    kCommandEntitiesRefuse,
    kCommandClearLog,
    kCommandAbout,
    kCommandProcedure = 0x1000,  // and the procedure's index
    kCommandTerminate = 0x2000,  // and the procedure's index
    kCommandLimit = 0x1000,      // procedures that can be told apart
};

// [editor thread]
class EditorMenu {
public:
    // Makes the whole menu anew and gives it to the window; the one before it is destroyed.
    void build(HWND window, const std::vector<ProcedureState*>& procedures, bool pluginLoaded);
    // Check marks and greying, as things stand now. To be called when a menu opens and when a script looks.
    void refresh(HWND window, const Editor& editor);

private:
    void addProcedure(HMENU bar, HMENU plugins, const ProcedureState& procedure, UINT index);

    HMENU m_bar = nullptr;
};

// Finds an item by its visible texts, backslashes between the levels ("File\Open project..."); the marks for
// keys
// ("&" and whatever follows a tab) do not count. False when there is none. A submenu's command is 0.
bool findMenuItem(HMENU bar, const std::string& path, UINT& command, UINT& state);
// The paths of all items, in order; for messages.
std::vector<std::string> menuPaths(HMENU bar);

}  // namespace zoka
