// zoka: what the plug-in can do, without a window.
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <string>

#include "tools/cli/Cli.h"
#include "tools/cli/Command.h"
#include "tools/cli/SuitePath.h"
#include "util/ConsolePrompt.h"
#include "util/Doors.h"
#include "util/SafeWrite.h"

using namespace zoka;

namespace {

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
    const cli::CommandLine line("zoka", "Checks and edits the files of a ZUN project.", "zoka " ZOKA_VERSION,
                                "zoka xml check template_6.xml");
    const cli::Command tool = line.tool();
    cli::Work chosen;
    bool assumeYes = false, inPlace = false;
    tool.flag("--yes", assumeYes, "Answer every question with yes");
    tool.flag("--in-place-if-needed", inPlace,
              "Write a file in place where its folder takes no new file; a crash would damage it");
    cli::addXmlCommands(tool, chosen);
    cli::addCatalogueCommands(tool, chosen);
    cli::addScriptCommands(tool, chosen);
    cli::addCustomizeCommands(tool, chosen);
    cli::addBehaviorCommands(tool, chosen);
    cli::addLevelCommands(tool, chosen);
    cli::addProjectCommands(tool, chosen);
    cli::addWizardCommands(tool, chosen);
    if (const std::optional<cli::ExitStatus> ended = line.read(argc, argv, chosen)) {
        return *ended;
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
