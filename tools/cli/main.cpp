// zoka: what the plug-in can do, without a window.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "tools/cli/Cli.h"
#include "util/ConsolePrompt.h"
#include "util/Doors.h"
#include "util/OsFiles.h"
#include "util/SafeWrite.h"

using namespace zoka;

namespace {

cli::ExitStatus usageError(const std::string& text) {
    cli::complain(text + "\nRun with --help for more information.");
    return cli::ExitStatus::Usage;
}

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
    cli::addProjectCommands(app, chosen);
    cli::addWizardCommands(app, chosen);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        app.exit(asked);  // prints the help or the version
        std::cout.flush();
        return cli::flushOutput() ? cli::ExitStatus::Done : cli::ExitStatus::Failed;
    } catch (const CLI::ParseError& error) {
        return usageError(error.what());
    }
    // Not left to the parser, which would say this of a misspelt command too.
    if (!chosen) {
        return usageError("a command is missing");
    }
    setInPlace(inPlace ? InPlace::Allowed : InPlace::Refused);
    ConsolePrompt prompt(std::cin, std::cerr, assumeYes);
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
