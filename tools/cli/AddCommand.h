// Adding a command whose options are a struct of its group.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "tools/cli/Cli.h"

namespace zoka::cli {

struct CommandTexts {
    const char* name;
    const char* what;
    std::string example;  // the whole line
};

// Each of `more` adds an option or two. The options live as long as the command; where they have a `check`, it is called
// once they are read and throws what the parser can't know to be wrong.
template <class Options, class... More>
void addCommand(CLI::App& group, const CommandTexts& texts, Work& chosen,
                std::function<ExitStatus(const Options&)> work, const More&... more) {
    CLI::App* const command = group.add_subcommand(texts.name, texts.what);
    const auto options = std::make_shared<Options>();
    (more(*command, *options), ...);
    setExample(*command, texts.example);
    command->callback([=, &chosen] {
        if constexpr (requires { options->check(); }) {
            options->check();
        }
        chosen = [=] { return work(*options); };
    });
}

// What several groups have; the options have a member of the name.
inline constexpr auto kJson = [](CLI::App& command, auto& options) {
    command.add_flag("--json", options.json, "Print JSON");
};
inline constexpr auto kDryRun = [](CLI::App& command, auto& options) {
    command.add_flag("-n,--dry-run", options.dryRun, "Write nothing; print the lines that would change");
};
inline constexpr auto kForce = [](CLI::App& command, auto& options) {
    command.add_flag("--force", options.force, "Also set what a list doesn't offer");
};

}  // namespace zoka::cli
