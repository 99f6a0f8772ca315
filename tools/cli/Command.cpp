#include "tools/cli/Command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <numeric>
#include <span>
#include <string_view>
#include <utility>

#include "util/Text.h"

namespace zoka::cli {

namespace {

void setExample(CLI::App& command, const std::string& line) {
    command.footer("Example:\n  " + line +
                   "\n\nEvery command takes --yes, which answers every question with yes.\n\nExit codes:\n"
                   "  0  done\n"
                   "  1  findings: something is wrong with the content\n"
                   "  2  usage: the arguments make no sense, nothing was done\n"
                   "  3  could not do it: a file can't be read or written");
}

ExitStatus usageError(const std::string& text) {
    complain(text + "\nRun with --help for more information.");
    return ExitStatus::Usage;
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

}  // namespace

Option& Option::required(bool is) {
    m_option->required(is);
    return *this;
}

Option& Option::one() {
    m_option->expected(1);
    return *this;
}

Option& Option::showDefault() {
    m_option->capture_default_str();
    return *this;
}

Option& Option::excludes(const Option& other) {
    m_option->excludes(other.m_option);
    return *this;
}

Command Command::add(const std::string& name, const std::string& what, const std::string& example) const {
    CLI::App& added = *m_app->add_subcommand(name, what);
    setExample(added, example);
    return Command(added);
}

Command Command::below(const std::string& name) const {
    return Command(*m_app->get_subcommand(name));
}

Option Command::option(const std::string& names, std::string& value, const std::string& what) const {
    return Option(*m_app->add_option(names, value, what));
}

Option Command::option(const std::string& names, std::optional<std::string>& value,
                       const std::string& what) const {
    return Option(*m_app->add_option(names, value, what));
}

Option Command::option(const std::string& names, std::vector<std::string>& values,
                       const std::string& what) const {
    return Option(*m_app->add_option(names, values, what));
}

Option Command::flag(const std::string& names, bool& value, const std::string& what) const {
    return Option(*m_app->add_flag(names, value, what));
}

void Command::whenRead(std::function<Outcome()> look) const {
    m_app->callback([look = std::move(look)] {
        if (const Outcome sense = look(); !sense) {
            throw CLI::ValidationError(sense.why());
        }
    });
}

CommandLine::CommandLine(const std::string& name, const std::string& what, const std::string& version,
                         const std::string& example)
    : m_app(std::make_unique<CLI::App>(what, name)) {
    m_app->set_version_flag("--version", version, "Print the version and end");
    m_app->set_help_flag("-h,--help", "Print this help and end");
    m_app->fallthrough();
    setExample(*m_app, example);
}

CommandLine::~CommandLine() = default;

Command CommandLine::tool() const {
    return Command(*m_app);
}

std::optional<ExitStatus> CommandLine::read(int argc, char** argv, const Work& chosen) const {
    // A further word that is a command's name too is an argument of the first.
    m_app->require_subcommand(0, 1);
    for (CLI::App* const group : m_app->get_subcommands([](CLI::App*) { return true; })) {
        group->require_subcommand(0, 1);
    }
    refuseEmptyTexts(*m_app);
    try {
        m_app->parse(argc, argv);
    } catch (const CLI::Success& asked) {
        m_app->exit(asked);  // prints the help or the version
        std::cout.flush();
        return flushOutput() ? ExitStatus::Done : ExitStatus::Failed;
    } catch (const CLI::ParseError& error) {
        const std::string unknown =
            unknownCommand(*m_app, std::span(argv, static_cast<size_t>(argc)).subspan(1));
        return usageError(unknown.empty() ? error.what() : unknown);
    }
    // Not left to the parser, which would say this of a misspelt command too.
    if (!chosen) {
        return usageError(missingCommand(*m_app));
    }
    return std::nullopt;
}

}  // namespace zoka::cli
