// The user as a script: answers laid down beforehand, questions recorded.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "util/UserPrompt.h"

namespace zoka::test {

// Thrown in place of ending the process.
struct FatalStop {
    std::string text, title;
    int exitStatus;
};

// Installs itself as the program's prompt for its lifetime. Boxes with OK alone need no scripted answer;
// every other question without one fails the test and is cancelled, and so does a scripted answer that nobody
// asked for.
class ScriptedPrompt : public UserPrompt {
public:
    struct Asked {
        std::string text, title;
        PromptButtons buttons;
        PromptIcon icon;
    };

    ScriptedPrompt() : m_before(userPrompt()) { setUserPrompt(this); }
    ~ScriptedPrompt() override {
        setUserPrompt(&m_before);
        EXPECT_TRUE(answers.empty()) << answers.size() << " scripted answers were not asked for";
        EXPECT_TRUE(paths.empty()) << paths.size() << " scripted paths were not asked for";
    }

    // To be filled before, in the order of the questions.
    std::deque<PromptAnswer> answers;
    std::deque<std::optional<std::string>> paths;
    // What happens while a question stands.
    std::function<void()> whenAsked;
    // What was asked, told and chosen, in order.
    std::vector<Asked> asked;
    std::vector<ChooserRequest> requests;

    // The texts alone, for comparing.
    std::vector<std::string> texts() const {
        std::vector<std::string> all;
        for (const Asked& one : asked) {
            all.push_back(one.text);
        }

        return all;
    }

    PromptAnswer ask(const std::string& text, const std::string& title, PromptButtons buttons,
                     PromptIcon icon) override {
        asked.push_back({text, title, buttons, icon});
        if (whenAsked) {
            whenAsked();
        }
        if (buttons == PromptButtons::Ok) {
            return PromptAnswer::Ok;
        }

        if (answers.empty()) {
            ADD_FAILURE() << "no answer is laid down for: " << text;
            return buttons == PromptButtons::YesNo || buttons == PromptButtons::YesNoDefaultNo
                       ? PromptAnswer::No
                       : PromptAnswer::Cancel;
        }
        const PromptAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    std::optional<std::string> chooseFile(const ChooserRequest& request) override { return choose(request); }
    std::optional<std::string> chooseFolder(const ChooserRequest& request) override {
        return choose(request);
    }
    [[noreturn]] void fatalStop(const std::string& text, const std::string& title, int exitStatus) override {
        throw FatalStop{text, title, exitStatus};
    }

private:
    std::optional<std::string> choose(const ChooserRequest& request) {
        requests.push_back(request);
        if (paths.empty()) {
            ADD_FAILURE() << "no path is laid down for: " << request.title;
            return std::nullopt;
        }
        auto path = paths.front();
        paths.pop_front();
        return path;
    }

    UserPrompt& m_before;
};

}  // namespace zoka::test
