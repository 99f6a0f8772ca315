// The user at a terminal.
#pragma once

#include <iosfwd>
#include <string_view>

#include "util/UserPrompt.h"

namespace zoka {

// The text as a terminal may show it: control characters, which could move its cursor, rename its window or
// worse, as "\\x1b"; line ends and tabs stay.
std::string shownText(std::string_view text);

// Writes questions to `out` and reads one line for each answer from `in`. An answer it doesn't understand is
// asked for again; the end of the input is the answer of a closed box. With `assumeYes` nothing is read:
// questions answer Yes or Ok, choosers give the preset name, or nothing without one. Neither stream is owned.
class ConsolePrompt : public UserPrompt {
public:
    ConsolePrompt(std::istream& in, std::ostream& out, bool assumeYes)
        : m_in(in), m_out(out), m_yes(assumeYes) {}

    PromptAnswer ask(const std::string& text, const std::string& title, PromptButtons buttons,
                     PromptIcon icon) override;
    std::optional<std::string> chooseFile(const ChooserRequest& request) override;
    std::optional<std::string> chooseFolder(const ChooserRequest& request) override;
    [[noreturn]] void fatalStop(const std::string& text, const std::string& title, int exitStatus) override;

private:
    std::optional<std::string> choose(const ChooserRequest& request, const char* what);

    std::istream& m_in;
    std::ostream& m_out;
    bool m_yes;
};

}  // namespace zoka
