// The user, as the logic sees them: asked and told through this interface, so that the same code runs under
// the editor, in a terminal and in a test.
#pragma once

#include <optional>
#include <string>

namespace zoka {

// YesNoDefaultNo: where Yes gives something up, so that Enter alone doesn't.
enum class PromptButtons { Ok, OkCancel, YesNo, YesNoDefaultNo, YesNoCancel };
enum class PromptIcon { None, Information, Warning, Error };
enum class PromptAnswer { Ok, Cancel, Yes, No };

// What a file or folder chooser shows. All texts are in the process's 8-bit character set.
struct ChooserRequest {
    std::string title;
    std::string text;         // of folder choosers, what to choose, above the folders; empty: the title
    std::string startFolder;  // empty: wherever the chooser was last
    std::string fileName;     // preset name, may be empty
    // Pairs "description|pattern;pattern", e.g. "KEZ scripts|*.kez"; empty: all files.
    std::string filter;
    bool forSaving = false;
};

class UserPrompt {
public:
    virtual ~UserPrompt() = default;

    // Shows a text and waits for the answer. Boxes with OK alone answer Ok however they are closed;
    // the others answer Cancel (or No, where there is no Cancel) when they are closed unanswered.
    // Works on every thread; on a panel's thread the box belongs to that panel's window.
    virtual PromptAnswer ask(const std::string& text, const std::string& title, PromptButtons buttons,
                             PromptIcon icon) = 0;

    // A message with an OK button and the plug-in's own title.
    void tell(const std::string& text) { ask(text, "ZOKA", PromptButtons::Ok, PromptIcon::Error); }

    // The chosen path, or nothing when the user cancelled.
    virtual std::optional<std::string> chooseFile(const ChooserRequest& request) = 0;
    virtual std::optional<std::string> chooseFolder(const ChooserRequest& request) = 0;

    // Shows an error that stays on top and ends the process with `exitStatus`. A test's prompt throws
    // instead; callers need not be ready for a return.
    [[noreturn]] virtual void fatalStop(const std::string& text, const std::string& title,
                                        int exitStatus) = 0;
};

// The prompt of the running program: message boxes in the DLL, the terminal in the tool, a script of answers
// in a test. Never null: until one is set, a prompt that writes to the standard error stream and answers
// Cancel serves. Set once at start, before other threads exist; not owned.
UserPrompt& userPrompt();
void setUserPrompt(UserPrompt* prompt);

}  // namespace zoka
