// The tool's commands as their groups describe them. The library that reads the arguments stands behind this: its
// headers are long, and only Command.cpp reads them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/cli/Cli.h"
#include "util/Outcome.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zoka::cli {

// An option or argument of a command, to say more of it. Of use as long as its CommandLine is.
class Option {
public:
    explicit Option(CLI::Option& option) : m_option(&option) {}

    Option& required(bool is = true);
    Option& one();          // a single word where the variable would take several
    Option& showDefault();  // the help names what the variable holds by now
    Option& excludes(const Option& other);

private:
    CLI::Option* m_option;
};

// The whole tool, a group of commands, or one command. Of use as long as its CommandLine is.
class Command {
public:
    explicit Command(CLI::App& app) : m_app(&app) {}

    // A group or command below this one; `example` is a whole line of its help.
    Command add(const std::string& name, const std::string& what, const std::string& example) const;
    // The one of that name, which has been added.
    Command below(const std::string& name) const;

    // `names` are those of an option ("-o,--output"), or that of an argument, in capitals. The variable gets what the
    // user gives; it lives as long as the CommandLine.
    Option option(const std::string& names, std::string& value, const std::string& what) const;
    Option option(const std::string& names, std::optional<std::string>& value, const std::string& what) const;
    Option option(const std::string& names, std::vector<std::string>& values, const std::string& what) const;
    Option flag(const std::string& names, bool& value, const std::string& what) const;

    // Called once the arguments of this command are read. What it refuses, they make no sense.
    void whenRead(std::function<Outcome()> look) const;

private:
    CLI::App* m_app;
};

// The arguments that the tool was started with.
class CommandLine {
public:
    CommandLine(const std::string& name, const std::string& what, const std::string& version,
                const std::string& example);
    ~CommandLine();

    Command tool() const;
    // Reads them, which leaves the command's work in `chosen`. A status when there is none to do: the help or the
    // version was asked for, or the arguments make no sense; that was said.
    std::optional<ExitStatus> read(int argc, char** argv, const Work& chosen) const;

private:
    std::unique_ptr<CLI::App> m_app;
};

struct CommandTexts {
    const char* name;
    const char* what;
    std::string example;  // the whole line
};

// A command whose options are a struct of its group. Each of `more` adds an option or two. The options live as long as
// the command; where they have a `check`, it is called once they are read and refuses what makes no sense.
template <class Options, class... More>
void addCommand(const Command& group, const CommandTexts& texts, Work& chosen,
                std::function<ExitStatus(const Options&)> work, const More&... more) {
    const Command command = group.add(texts.name, texts.what, texts.example);
    const auto options = std::make_shared<Options>();
    (more(command, *options), ...);
    command.whenRead([=, &chosen]() -> Outcome {
        if constexpr (requires { options->check(); }) {
            if (Outcome sense = options->check(); !sense) {
                return sense;
            }
        }
        chosen = [=] { return work(*options); };
        return {};
    });
}

// What several groups have; the options have a member of the name.
inline constexpr auto kJson = [](const Command& command, auto& options) {
    command.flag("--json", options.json, "Print JSON");
};
inline constexpr auto kDryRun = [](const Command& command, auto& options) {
    command.flag("-n,--dry-run", options.dryRun, "Write nothing; print the lines that would change");
};
inline constexpr auto kForce = [](const Command& command, auto& options) {
    command.flag("--force", options.force, "Also set what a list doesn't offer");
};

}  // namespace zoka::cli
