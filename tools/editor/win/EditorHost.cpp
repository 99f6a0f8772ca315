#include "tools/editor/win/EditorHost.h"

#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>

#include <fstream>

namespace zoka {

namespace {

bool exists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// The main script beside a level: its name with the extension of scripts.
std::string mainScriptOf(const std::string& level) {
    const size_t dot = level.find_last_of('.');
    return dot == std::string::npos ? std::string() : level.substr(0, dot) + ".kez";
}

// Nothing is ever chosen in it.
void showOwnChooser() {
    const HWND window =
        CreateWindowExA(0, WC_LISTVIEWA, "Choose a script", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 200, 200, 300,
                        200, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    MSG message;
    while (IsWindow(window) && GetMessageA(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    if (IsWindow(window)) {
        DestroyWindow(window);
    }
}

}  // namespace

void EditorHost::setSuite(const std::string& folder, const std::string& templates) {
    m_suiteFolder = folder;
    m_templates = templates;
}

void EditorHost::CreateMainScript() {
    const std::string path = mainScriptOf(m_level.path());
    if (path.empty() || exists(path)) {
        return;
    }
    std::ofstream(path, std::ios::binary) << "// main script\r\n";
}

std::optional<std::string> EditorHost::GetMainScriptPath() {
    std::string path = mainScriptOf(m_level.path());
    if (path.empty() || !exists(path)) {
        return std::nullopt;
    }
    return path;
}

std::optional<std::string> EditorHost::GetListItemName(int index) {
    const LevelMap map = m_level.map();
    if (index < 0 || static_cast<size_t>(index) >= map.entities.size()) {
        return std::nullopt;
    }
    return map.entities[static_cast<size_t>(index)].name.substr(0, kHostItemNameSize - 1);
}

std::optional<std::string> EditorHost::ChooseFile(const std::string& preset) {
    if (m_ownChooser) {
        showOwnChooser();
        return std::nullopt;
    }
    char path[kHostPathSize] = {};
    if (preset.size() < sizeof path) {
        preset.copy(path, sizeof path - 1);
    }
    const std::string folder = QueryFolder(CmdGetSuiteFolder) + "\\" + m_templates;
    OPENFILENAMEA chooser{};
    chooser.lStructSize = sizeof chooser;
    chooser.hwndOwner = GetActiveWindow();
    chooser.lpstrFilter = "KEZ scripts (*.kez)\0*.kez\0All files\0*.*\0";
    chooser.lpstrFile = path;
    chooser.nMaxFile = sizeof path;
    chooser.lpstrInitialDir = folder.c_str();
    chooser.lpstrTitle = "Choose a template";
    chooser.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_EXPLORER;
    if (!GetOpenFileNameA(&chooser)) {
        return std::nullopt;
    }
    return std::string(path);
}

// A level is opened by procedures that run on the editor's thread; from a panel it is refused.
bool EditorHost::OpenMap(const std::string& path) {
    return GetCurrentThreadId() == m_editorThread && onOpenMap && onOpenMap(path);
}

FolderHost EditorHost::folders() const {
    return FolderHost({m_level.folder(), m_suiteFolder, m_templates});
}

bool EditorHost::CopyFileToFolder(const std::string& source, const std::string& folder) {
    return folders().CopyFileToFolder(source, folder);
}

bool EditorHost::CopyFileWithSubstitutions(
    const std::string& source, const std::string& destination,
    std::span<const std::pair<std::string, std::string>> substitutions) {
    return folders().CopyFileWithSubstitutions(source, destination, substitutions);
}

std::string EditorHost::QueryFolder(ZunCommandCode code) {
    switch (code) {
        case CmdGetSuiteFolder:
            return m_suiteFolder.empty() ? m_level.folder() : m_suiteFolder;
        case CmdGetTemplateSubfolder:
            return m_templates;
        case CmdQueryPath13:
            return m_level.folder();
        default:
            return {};
    }
}

}  // namespace zoka
