#include "ui/win/WinPrompt.h"

#include <windows.h>

#include <commdlg.h>
#include <ole2.h>
#include <shlobj.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "ui/win/WindowKit.h"

namespace zoka {
namespace {

UINT buttonFlags(PromptButtons buttons) {
    switch (buttons) {
        case PromptButtons::OkCancel:
            return MB_OKCANCEL;
        case PromptButtons::YesNo:
            return MB_YESNO;
        case PromptButtons::YesNoDefaultNo:
            return MB_YESNO | MB_DEFBUTTON2;
        case PromptButtons::YesNoCancel:
            return MB_YESNOCANCEL;
        default:
            return MB_OK;
    }
}

UINT iconFlags(PromptIcon icon) {
    switch (icon) {
        case PromptIcon::Information:
            return MB_ICONINFORMATION;
        case PromptIcon::Warning:
            return MB_ICONWARNING;
        case PromptIcon::Error:
            return MB_ICONERROR;
        default:
            return 0;
    }
}

constexpr const wchar_t* kHookOfBox = L"ZOKA hook of a box";

// The system puts a box into the middle of the screen, which may be far from the window that it is about. Before it is
// seen it goes over that window, and the hook with it.
LRESULT CALLBACK placeBox(int code, WPARAM wParam, LPARAM lParam) noexcept {
    const LRESULT answer = CallNextHookEx(nullptr, code, wParam, lParam);
    if (code == HCBT_ACTIVATE) {
        const HWND box = reinterpret_cast<HWND>(wParam), owner = GetWindow(box, GW_OWNER);
        const HANDLE hook = owner ? RemovePropW(owner, kHookOfBox) : nullptr;
        if (hook) {
            UnhookWindowsHookEx(static_cast<HHOOK>(hook));
            RECT place{};
            GetWindowRect(box, &place);
            centreOver(box, owner, static_cast<int>(place.right - place.left),
                       static_cast<int>(place.bottom - place.top));
        }
    }
    return answer;
}

int showBox(const std::string& text, const std::string& title, UINT flags) {
    // First, as they may need memory that there isn't: nothing may come between the hook and the box.
    const std::wstring body = wideReport(text), caption = wideReport(title);
    const HWND owner = modalOwner();
    const HHOOK hook = owner ? SetWindowsHookExW(WH_CBT, placeBox, nullptr, GetCurrentThreadId()) : nullptr;
    if (hook) {
        SetPropW(owner, kHookOfBox, hook);
    }
    const int answer = MessageBoxW(owner, body.c_str(), caption.c_str(), flags);
    if (hook && RemovePropW(owner, kHookOfBox)) {  // no box could be shown
        UnhookWindowsHookEx(hook);
    }
    return answer;
}

// "KEZ scripts|*.kez|All|*.*" as the chooser wants it: every part 0-terminated, and one more 0.
std::string chooserFilter(const std::string& filter) {
    std::string parts = filter.empty() ? "All files|*.*" : filter;
    std::ranges::replace(parts, '|', '\0');
    return parts.append(2, '\0');
}

int CALLBACK openOnFolder(HWND dialog, UINT message, LPARAM, LPARAM parameter) noexcept {
    const auto& request = *reinterpret_cast<const ChooserRequest*>(parameter);
    if (message == BFFM_INITIALIZED) {
        if (!request.text.empty()) {
            SetWindowTextA(dialog, request.title.c_str());
        }
        if (!request.startFolder.empty()) {
            SendMessageA(dialog, BFFM_SETSELECTIONA, TRUE,
                         reinterpret_cast<LPARAM>(request.startFolder.c_str()));
        }
    }
    return 0;
}

// The folder chooser's new style is a COM window.
class ComScope {
public:
    ComScope() : m_ready(SUCCEEDED(OleInitialize(nullptr))) {}
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
    ~ComScope() {
        if (m_ready) {
            OleUninitialize();
        }
    }

private:
    bool m_ready;
};

}  // namespace

PromptAnswer WinPrompt::ask(const std::string& text, const std::string& title, PromptButtons buttons,
                            PromptIcon icon) {
    switch (showBox(text, title, buttonFlags(buttons) | iconFlags(icon))) {
        case IDYES:
            return PromptAnswer::Yes;
        case IDNO:
            return PromptAnswer::No;
        case IDOK:
            return PromptAnswer::Ok;
        default:  // closed, or no box could be shown
            return buttons == PromptButtons::Ok ? PromptAnswer::Ok
                   : buttons == PromptButtons::YesNo || buttons == PromptButtons::YesNoDefaultNo
                       ? PromptAnswer::No
                       : PromptAnswer::Cancel;
    }
}

std::optional<std::string> WinPrompt::chooseFile(const ChooserRequest& request) {
    std::vector<char> path(4096);
    std::memcpy(path.data(), request.fileName.data(), std::min(request.fileName.size(), path.size() - 1));
    const std::string filter = chooserFilter(request.filter);
    OPENFILENAMEA chooser = {};
    chooser.lStructSize = sizeof chooser;
    chooser.hwndOwner = modalOwner();
    chooser.lpstrFilter = filter.c_str();
    chooser.lpstrFile = path.data();
    chooser.nMaxFile = static_cast<DWORD>(path.size());
    chooser.lpstrInitialDir = request.startFolder.empty() ? nullptr : request.startFolder.c_str();
    chooser.lpstrTitle = request.title.empty() ? nullptr : request.title.c_str();
    // The process is the editor's: its current folder must not follow the chooser.
    chooser.Flags = OFN_EXPLORER | OFN_NOCHANGEDIR | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST |
                    (request.forSaving ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST);
    const BOOL chosen = request.forSaving ? GetSaveFileNameA(&chooser) : GetOpenFileNameA(&chooser);
    return chosen ? std::optional(std::string(path.data())) : std::nullopt;
}

std::optional<std::string> WinPrompt::chooseFolder(const ChooserRequest& request) {
    const ComScope com;
    char shown[MAX_PATH];
    BROWSEINFOA chooser = {};
    chooser.hwndOwner = modalOwner();
    chooser.pszDisplayName = shown;
    chooser.lpszTitle = request.text.empty() ? request.title.c_str() : request.text.c_str();
    chooser.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    chooser.lpfn = openOnFolder;
    chooser.lParam = reinterpret_cast<LPARAM>(&request);
    LPITEMIDLIST item = SHBrowseForFolderA(&chooser);
    char path[MAX_PATH];
    const bool chosen = item && SHGetPathFromIDListA(item, path);
    CoTaskMemFree(item);
    return chosen ? std::optional(std::string(path)) : std::nullopt;
}

void WinPrompt::fatalStop(const std::string& text, const std::string& title, int exitStatus) {
    showBox(text, title,
            MB_OK | MB_ICONERROR | MB_SYSTEMMODAL | MB_SETFOREGROUND);  // system-modal boxes stay on top
    ExitProcess(static_cast<UINT>(exitStatus));
}

}  // namespace zoka
