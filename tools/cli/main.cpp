// zoka: what the plug-in can do, without a window.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/cli/Cli.h"
#include "tools/cli/SuitePath.h"
#include "util/ConsolePrompt.h"
#include "util/Doors.h"
#include "util/OsFiles.h"
#include "util/SafeWrite.h"
#include "util/Text.h"

using namespace zoka;

namespace {

cli::ExitStatus usageError(const std::string& text) {
    cli::complain(text + "\nRun with --help for more information.");
    return cli::ExitStatus::Usage;
}

// How many letters have to be put in, taken out or changed to make one word the other.
size_t wordDistance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < a.size(); ++i) {
        size_t diagonal = std::exchange(row[0], i + 1);
        for (size_t j = 0; j < b.size(); ++j) {
            const size_t changed = diagonal + (a[i] != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

// What is wrong with the command words of the arguments, in words; empty where they are known. The parser's own
// words for it name neither the word nor what was meant.
std::string unknownCommand(const CLI::App& app, std::span<char*> arguments) {
    constexpr size_t kTypingErrors = 2;
    const CLI::App* group = &app;
    for (const std::string_view word : arguments) {
        const std::vector<const CLI::App*> commands =
            group->get_subcommands([](const CLI::App*) { return true; });
        if (word.starts_with('-') || commands.empty()) {
            continue;
        }
        const CLI::App* nearest = nullptr;
        size_t distance = kTypingErrors + 1;
        for (const CLI::App* command : commands) {
            const size_t candidate = wordDistance(word, command->get_name());
            if (candidate < distance) {
                distance = candidate;
                nearest = command;
            }
        }
        if (distance > 0) {
            return "unknown command " + std::string(word) +
                   (nearest ? "; did you mean " + nearest->get_name() + "?" : std::string());
        }
        group = nearest;
    }
    return {};
}

// The command that the arguments name and those that belong to it, of which one is to follow.
std::string missingCommand(const CLI::App& app) {
    std::string words = "a command is missing";
    const CLI::App* group = &app;
    while (!group->get_subcommands().empty()) {
        group = group->get_subcommands().front();
        words += (group->get_parent() == &app ? " after " : " ") + group->get_name();
    }
    std::vector<std::string> names;
    for (const CLI::App* const command : group->get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(command->get_name());
    }
    return words + ": " + joined(names);
}

// An empty path would be the current folder's. No name or address is empty either, but values may be.
void refuseEmptyTexts(CLI::App& app) {
    static constexpr std::string_view kPaths[] = {"--output", "--templates", "--template", "--project",
                                                  "--main",   "--catalogue", "--folder",   "--suite"};
    for (CLI::Option* const option : app.get_options()) {
        const bool isPath = std::ranges::any_of(
            kPaths, [option](std::string_view name) { return option->check_name(std::string(name)); });
        if (option->get_positional() || isPath) {
            option->check([](const std::string& text) { return text.empty() ? "is empty" : std::string(); });
        }
    }
    for (CLI::App* const command : app.get_subcommands([](CLI::App*) { return true; })) {
        refuseEmptyTexts(*command);
    }
}

// Questions name files as the user does.
class ToolPrompt : public ConsolePrompt {
public:
    using ConsolePrompt::ConsolePrompt;
    PromptAnswer ask(const std::string& text, const std::string& title, PromptButtons buttons,
                     PromptIcon icon) override {
        return ConsolePrompt::ask(cli::withGivenPaths(text), title, buttons, icon);
    }
};

cli::ExitStatus run(int argc, char** argv) {
    CLI::App app("Checks and edits the files of a ZUN project.", "zoka");
    cli::Work chosen;
    bool assumeYes = false, inPlace = false;
    app.set_version_flag("--version", "zoka " ZOKA_VERSION, "Print the version and end");
    app.set_help_flag("-h,--help", "Print this help and end");
    app.add_flag("--yes", assumeYes, "Answer every question with yes");
    app.add_flag("--in-place-if-needed", inPlace,
                 "Write a file in place where its folder takes no new file; a crash would damage it");
    app.fallthrough();
    cli::setExample(app, "zoka xml check template_6.xml");
    cli::addXmlCommands(app, chosen);
    cli::addCatalogueCommands(app, chosen);
    cli::addScriptCommands(app, chosen);
    cli::addCustomizeCommands(app, chosen);
    cli::addBehaviorCommands(app, chosen);
    cli::addLevelCommands(app, chosen);
    cli::addProjectCommands(app, chosen);
    cli::addWizardCommands(app, chosen);
    // A further word that is a command's name too is an argument of the first.
    app.require_subcommand(0, 1);
    for (CLI::App* const group : app.get_subcommands([](CLI::App*) { return true; })) {
        group->require_subcommand(0, 1);
    }
    refuseEmptyTexts(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        app.exit(asked);  // prints the help or the version
        std::cout.flush();
        return cli::flushOutput() ? cli::ExitStatus::Done : cli::ExitStatus::Failed;
    } catch (const CLI::ParseError& error) {
        const std::string unknown =
            unknownCommand(app, std::span(argv, static_cast<size_t>(argc)).subspan(1));
        return usageError(unknown.empty() ? error.what() : unknown);
    }
    // Not left to the parser, which would say this of a misspelt command too.
    if (!chosen) {
        return usageError(missingCommand(app));
    }
    setInPlace(inPlace ? InPlace::Allowed : InPlace::Refused);
    ToolPrompt prompt(std::cin, std::cerr, assumeYes);
    setUserPrompt(&prompt);
    const cli::ExitStatus status = chosen();
    setUserPrompt(nullptr);
    if (status == cli::ExitStatus::Failed) {
        return status;  // why was said already
    }
    return cli::flushOutput() ? status : cli::ExitStatus::Failed;
}

}  // namespace

int main(int argc, char** argv) {
    cli::makeStandardStreamsBinary();
    removeOwnFilesAtSignals();
    try {
        return static_cast<int>(run(argc, argv));
    } catch (const std::bad_alloc&) {
        cli::complain(outOfMemoryText(cli::workedOn()));
        return static_cast<int>(cli::ExitStatus::Failed);
    } catch (const std::exception& error) {
        cli::complain(error.what());
        return static_cast<int>(cli::ExitStatus::Failed);
    }
}
