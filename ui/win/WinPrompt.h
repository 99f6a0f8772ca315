// The user at the screen: the system's message boxes and choosers.
#pragma once

#include "util/UserPrompt.h"

namespace zoka {

// Boxes belong to the calling thread's active window, or to its first visible one, so that a panel's box lies
// over the panel and keeps it from being used. The process's current folder stays as it is. [any thread]
class WinPrompt : public UserPrompt {
public:
    PromptAnswer ask(const std::string& text, const std::string& title, PromptButtons buttons,
                     PromptIcon icon) override;
    std::optional<std::string> chooseFile(const ChooserRequest& request) override;
    std::optional<std::string> chooseFolder(const ChooserRequest& request) override;
    [[noreturn]] void fatalStop(const std::string& text, const std::string& title, int exitStatus) override;
};

}  // namespace zoka
