// A user who agrees with everything.
#pragma once

#include <cstdlib>
#include <functional>
#include <optional>
#include <string>

#include "util/UserPrompt.h"

namespace zoka::test {

// Takes no memory, so that what it tells is not counted.
class SilentPrompt : public UserPrompt {
public:
    SilentPrompt() {
        last.reserve(kKept);
        setUserPrompt(this);
    }
    ~SilentPrompt() override { setUserPrompt(nullptr); }
    PromptAnswer ask(const std::string& text, const std::string&, PromptButtons buttons,
                     PromptIcon) override {
        ++told;
        last.assign(text, 0, kKept);
        if (meanwhile) {
            meanwhile();
        }
        return buttons == PromptButtons::OkCancel      ? PromptAnswer::Ok
               : buttons == PromptButtons::YesNoCancel ? onChanges
                                                       : PromptAnswer::Yes;
    }
    std::optional<std::string> chooseFile(const ChooserRequest&) override { return std::nullopt; }
    std::optional<std::string> chooseFolder(const ChooserRequest&) override { return std::nullopt; }
    [[noreturn]] void fatalStop(const std::string&, const std::string&, int status) override {
        std::exit(status);
    }
    int told = 0;
    std::string last;                 // text, cut
    std::function<void()> meanwhile;  // done while the user reads; may be empty
    PromptAnswer onChanges = PromptAnswer::Yes;

private:
    static constexpr size_t kKept = 500;
};

}  // namespace zoka::test
