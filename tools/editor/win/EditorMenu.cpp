#include "tools/editor/win/EditorMenu.h"

#include <algorithm>

namespace zoka {

namespace {

struct MenuItem {
    std::string text;
    HMENU submenu;
    UINT command;
    UINT state;
};

// The text as the user reads it.
std::string plainText(const char* text) {
    std::string plain;
    for (; *text && *text != '\t'; ++text) {
        if (*text == '&' && *++text == 0) {
            break;
        }
        plain += *text;
    }
    return plain;
}

MenuItem itemAt(HMENU menu, int position) {
    char text[300] = {};
    MENUITEMINFOA info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_STRING | MIIM_SUBMENU | MIIM_ID | MIIM_STATE;
    info.dwTypeData = text;
    info.cch = sizeof text;
    GetMenuItemInfoA(menu, static_cast<UINT>(position), TRUE, &info);
    return {plainText(text), info.hSubMenu, info.hSubMenu ? 0 : info.wID, info.fState};
}

HMENU submenuNamed(HMENU menu, const std::string& name) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        const MenuItem item = itemAt(menu, i);
        if (item.submenu && item.text == name) {
            return item.submenu;
        }
    }
    return nullptr;
}

// An ampersand in a plug-in's text is a letter, not a key mark.
std::string menuText(std::string text) {
    for (size_t at = 0; (at = text.find('&', at)) != std::string::npos; at += 2) {
        text.insert(at, "&");
    }
    return text;
}

void append(HMENU menu, UINT command, const char* text) {
    AppendMenuA(menu, MF_STRING, command, text);
}
void separate(HMENU menu) {
    AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
}
HMENU appendMenu(HMENU bar, const char* text) {
    const HMENU menu = CreatePopupMenu();
    AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), text);
    return menu;
}

void collectPaths(HMENU menu, const std::string& above, std::vector<std::string>& paths) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        const MenuItem item = itemAt(menu, i);
        if (item.submenu) {
            collectPaths(item.submenu, above + item.text + "\\", paths);
        } else if (!item.text.empty()) {
            paths.push_back(above + item.text);
        }
    }
}

void check(HMENU menu, UINT command, bool on) {
    CheckMenuItem(menu, command, on ? MF_CHECKED : MF_UNCHECKED);
}
void enable(HMENU menu, UINT command, bool on) {
    EnableMenuItem(menu, command, on ? MF_ENABLED : MF_GRAYED);
}

}  // namespace

void EditorMenu::build(HWND window, const std::vector<ProcedureState*>& procedures, bool pluginLoaded) {
    const HMENU old = m_bar;
    m_bar = CreateMenu();
    const HMENU file = appendMenu(m_bar, "&File");
    append(file, kCommandOpen, "&Open project...\tCtrl+O");
    append(file, kCommandReload, "&Reload level\tF5");
    append(file, kCommandSave, "&Save level\tCtrl+S");
    append(file, kCommandClose, "&Close level");
    separate(file);
    const HMENU plugins = appendMenu(m_bar, "&Plug-ins");
    append(plugins, kCommandLoadPlugin, "&Load plug-in...\tCtrl+L");
    append(plugins, kCommandUnloadPlugin, "&Unload plug-in");
    if (pluginLoaded) {
        separate(plugins);
    }
    const HMENU host = appendMenu(m_bar, "H&ost");
    append(host, kCommandHostNormal, "&Answer as usual");
    append(host, kCommandHostFail, "&Fail every call");
    append(host, kCommandHostEmpty, "Answer &empty texts");
    append(host, kCommandHostFull, "Fill &whole buffers");
    separate(host);
    append(host, kCommandEntitiesAll, "&Several entities at once");
    append(host, kCommandEntitiesOne, "&One entity alone");
    append(host, kCommandEntitiesRefuse, "&Refuse entities");
    separate(host);
    append(host, kCommandClearLog, "&Clear the log");

    UINT index = 0;
    for (const ProcedureState* const procedure : procedures) {
        if (index < kCommandLimit) {
            addProcedure(m_bar, plugins, *procedure, index);
        }
        ++index;
    }
    if (std::any_of(procedures.begin(), procedures.end(),
                    [](const ProcedureState* p) { return p->record && p->record->terminate; })) {
        separate(plugins);
        const HMENU terminate = appendMenu(plugins, "&Terminate");
        for (UINT i = 0; i < procedures.size() && i < kCommandLimit; ++i) {
            if (procedures[i]->record->terminate) {
                append(terminate, kCommandTerminate + i, menuText(procedures[i]->name()).c_str());
            }
        }
    }
    constexpr int kOwnFileItems = 4;  // with the line below them
    if (GetMenuItemCount(file) > kOwnFileItems) {
        separate(file);
    }
    append(file, kCommandExit, "E&xit\tAlt+F4");
    const HMENU help = appendMenu(m_bar, "&Help");
    append(help, kCommandAbout, "&About the stand-in editor");

    SetMenu(window, m_bar);
    DrawMenuBar(window);
    if (old) {
        DestroyMenu(old);
    }
}

void EditorMenu::addProcedure(HMENU bar, HMENU plugins, const ProcedureState& procedure, UINT index) {
    const std::string path = procedure.record->menuPath ? procedure.record->menuPath : "";
    HMENU menu = path.empty() ? plugins : bar;
    size_t start = 0;
    for (size_t cut; (cut = path.find('\\', start)) != std::string::npos; start = cut + 1) {
        const std::string level = path.substr(start, cut - start);
        HMENU below = submenuNamed(menu, level);
        if (!below) {
            below = appendMenu(menu, menuText(level).c_str());
        }
        menu = below;
    }
    const std::string text = path.empty() ? procedure.name() : path.substr(start);
    append(menu, kCommandProcedure + index, menuText(text).c_str());
}

void EditorMenu::refresh(HWND window, const Editor& editor) {
    const HMENU bar = GetMenu(window);
    const auto& procedures = editor.procedures();
    for (UINT i = 0; i < procedures.size() && i < kCommandLimit; ++i) {
        const bool busy = procedures[i]->isBusy();
        check(bar, kCommandProcedure + i, busy);
        enable(bar, kCommandProcedure + i, procedures[i]->record->execute != nullptr);
        if (procedures[i]->record->terminate) {
            enable(bar, kCommandTerminate + i, busy);
        }
    }
    const bool open = !editor.projectFolder().empty();
    enable(bar, kCommandReload, open);
    enable(bar, kCommandSave, open);
    enable(bar, kCommandClose, open);
    enable(bar, kCommandUnloadPlugin, const_cast<Editor&>(editor).library().loaded());
    const auto fault = static_cast<UINT>(const_cast<Editor&>(editor).hostTable().fault());
    CheckMenuRadioItem(bar, kCommandHostNormal, kCommandHostFull, kCommandHostNormal + fault, MF_BYCOMMAND);
    const auto answers = static_cast<UINT>(editor.entityAnswers());
    CheckMenuRadioItem(bar, kCommandEntitiesAll, kCommandEntitiesRefuse, kCommandEntitiesAll + answers,
                       MF_BYCOMMAND);
}

bool findMenuItem(HMENU bar, const std::string& path, UINT& command, UINT& state) {
    HMENU menu = bar;
    size_t start = 0;
    for (;;) {
        const size_t cut = path.find('\\', start);
        const std::string name = path.substr(start, cut == std::string::npos ? cut : cut - start);
        bool found = false;
        for (int i = 0; i < GetMenuItemCount(menu) && !found; ++i) {
            const MenuItem item = itemAt(menu, i);
            if (item.text != name) {
                continue;
            }
            found = true;
            if (cut == std::string::npos) {
                command = item.command;
                state = item.state;
                return true;
            }
            menu = item.submenu;
        }
        if (!found || !menu) {
            return false;
        }
        start = cut + 1;
    }
}

std::vector<std::string> menuPaths(HMENU bar) {
    std::vector<std::string> paths;
    collectPaths(bar, "", paths);
    return paths;
}

}  // namespace zoka
