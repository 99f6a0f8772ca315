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

// Every command has --json, which must be a member of its options; each of `more` adds another of them. The options live
// as long as the command.
template <class Options, class... More>
void addCommand(CLI::App& group, const CommandTexts& texts, Work& chosen,
                std::function<ExitStatus(const Options&)> work, const More&... more) {
    CLI::App* const command = group.add_subcommand(texts.name, texts.what);
    const auto options = std::make_shared<Options>();
    (more(*command, *options), ...);
    command->add_flag("--json", options->json, "Print JSON");
    setExample(*command, texts.example);
    command->callback([=, &chosen] { chosen = [=] { return work(*options); }; });
}

}  // namespace zoka::cli
