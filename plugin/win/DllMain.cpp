// The library's start and end. The loader's lock is held in both, so as little as possible happens here.
#include <windows.h>

#include <atomic>

#include "plugin/Procedures.h"
#include "plugin/win/PanelWindow.h"
#include "plugin/win/PluginWindows.h"
#include "ui/win/WinPrompt.h"
#include "util/Doors.h"

namespace {

// Asks nothing any more once the library is being unloaded: a new box would need the loader's lock, and
// nobody could answer it. The answer is that of a closed box.
class PluginPrompt : public zoka::WinPrompt {
public:
    zoka::PromptAnswer ask(const std::string& text, const std::string& title, zoka::PromptButtons buttons,
                           zoka::PromptIcon icon) override {
        if (!m_silent.load()) {
            return WinPrompt::ask(text, title, buttons, icon);
        }
        switch (buttons) {
            case zoka::PromptButtons::Ok:
                return zoka::PromptAnswer::Ok;
            case zoka::PromptButtons::YesNo:
            case zoka::PromptButtons::YesNoDefaultNo:
                return zoka::PromptAnswer::No;
            default:
                return zoka::PromptAnswer::Cancel;
        }
    }
    std::optional<std::string> chooseFile(const zoka::ChooserRequest& request) override {
        return m_silent.load() ? std::nullopt : WinPrompt::chooseFile(request);
    }
    std::optional<std::string> chooseFolder(const zoka::ChooserRequest& request) override {
        return m_silent.load() ? std::nullopt : WinPrompt::chooseFolder(request);
    }

    void silence() { m_silent.store(true); }

private:
    std::atomic<bool> m_silent{false};
};

PluginPrompt g_prompt;
zoka::PluginWindows g_windows;

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) noexcept {
    if (reason == DLL_PROCESS_ATTACH) {
        zoka::setModuleInstance(instance);
        zoka::setUserPrompt(&g_prompt);
        zoka::setPluginSeams(&g_windows);
        bool started = false;
        zoka::keepInside([&] { started = zoka::startLibrary(zoka::startWindowToolkit); });
        return started;
    }
    // When the process ends, the panels' threads are gone already, whatever they were
    // doing: nothing may wait.
    if (reason == DLL_PROCESS_DETACH && !processEnds) {
        g_prompt.silence();
        zoka::keepInside(zoka::shutDownPlugin);
    }
    return TRUE;
}
