#include "util/UserPrompt.h"

#include <cstdio>
#include <cstdlib>

namespace zoka {
namespace {

// Serves until the program sets its own prompt: says what it was told and takes nothing upon itself.
class StderrPrompt : public UserPrompt {
public:
    PromptAnswer ask(const std::string& text, const std::string& title, PromptButtons buttons,
                     PromptIcon) override {
        std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
        switch (buttons) {
            case PromptButtons::Ok:
                return PromptAnswer::Ok;
            case PromptButtons::YesNo:
            case PromptButtons::YesNoDefaultNo:
                return PromptAnswer::No;
            default:
                return PromptAnswer::Cancel;
        }
    }
    std::optional<std::string> chooseFile(const ChooserRequest&) override { return std::nullopt; }
    std::optional<std::string> chooseFolder(const ChooserRequest&) override { return std::nullopt; }
    [[noreturn]] void fatalStop(const std::string& text, const std::string& title, int exitStatus) override {
        std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
        std::exit(exitStatus);
    }
};

StderrPrompt g_stderrPrompt;
UserPrompt* g_prompt = nullptr;

}  // namespace

UserPrompt& userPrompt() {
    return g_prompt ? *g_prompt : g_stderrPrompt;
}

void setUserPrompt(UserPrompt* prompt) {
    g_prompt = prompt;
}

}  // namespace zoka
