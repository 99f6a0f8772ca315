// zoka: what the plug-in can do, without a window.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "tools/cli/Cli.h"
#include "util/ConsolePrompt.h"

using namespace zoka;

namespace {

cli::ExitStatus run(int argc, char** argv) {
    CLI::App app("Checks and edits the files of a ZUN project.", "zoka");
    cli::Work chosen;
    bool assumeYes = false;
    app.set_version_flag("--version", "zoka " ZOKA_VERSION, "Print the version and end");
    app.set_help_flag("-h,--help", "Print this help and end");
    app.add_flag("--yes", assumeYes, "Answer every question with yes");
    app.require_subcommand(1);
    app.fallthrough();
    cli::setExample(app, "zoka xml check template_6.xml");
    cli::addXmlCommands(app, chosen);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        app.exit(asked);  // prints the help or the version
        return cli::ExitStatus::Done;
    } catch (const CLI::ParseError& error) {
        cli::complain(std::string(error.what()) + "\nRun with --help for more information.");
        return cli::ExitStatus::Usage;
    }
    ConsolePrompt prompt(std::cin, std::cerr, assumeYes);
    setUserPrompt(&prompt);
    const cli::ExitStatus status = chosen();
    setUserPrompt(nullptr);
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    cli::makeStandardStreamsBinary();
    try {
        return static_cast<int>(run(argc, argv));
    } catch (const std::exception& error) {  // no memory left
        cli::complain(error.what());
        return static_cast<int>(cli::ExitStatus::Failed);
    }
}
