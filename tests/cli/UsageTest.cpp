#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>
#include <vector>

#include "tests/cli/Tool.h"

using testing::AllOf, testing::HasSubstr, testing::StartsWith;

namespace {

TEST(Usage, VersionIsOneLine) {
    EXPECT_EQ(ToolFolder().run("--version"), (ToolRun{0, "zoka " ZOKA_VERSION "\n"}));
}

TEST(Usage, EveryCommandHasHelpWithAnExampleAndTheExitCodes) {
    const auto expectHelp = [](const std::string& arguments, const std::string& example) {
        const ToolRun run = ToolFolder().run(arguments);
        EXPECT_EQ(run, (ToolRun{0, run.out})) << arguments;
        EXPECT_THAT(run.out, HasSubstr("Example:\n  zoka " + example)) << arguments;
        EXPECT_THAT(run.out, HasSubstr("Exit codes:\n  0  done\n")) << arguments;
        EXPECT_THAT(run.out, HasSubstr("--yes")) << arguments;
        return run.out;
    };
    for (const char* all : {"--help", "-h", "xml --help"}) {
        expectHelp(all, "xml check ");
    }
    // Every group's help lists its commands.
    const auto commandsIn = [](const std::string& help) {
        std::vector<std::string> commands;
        std::istringstream lines(help.substr(std::min(help.find("Subcommands:"), help.size())));
        std::string line;
        for (std::getline(lines, line); std::getline(lines, line) && line.starts_with("  ");) {
            commands.push_back(line.substr(2, line.find(' ', 2) - 2));
        }
        return commands;
    };
    // All that there is; "n": with --dry-run, which whatever changes a file has, "j": with --json.
    const std::map<std::string, std::string> commands = {
        {"xml check", ""},         {"xml format", "n"},       {"catalogue build", "nj"},
        {"catalogue check", "j"},  {"catalogue list", "j"},   {"catalogue show", "j"},
        {"help-pages", "n"},       {"scripts list", "j"},     {"scripts add", "nj"},
        {"scripts remove", "n"},   {"scripts update", "nj"},  {"scripts restore", "n"},
        {"scripts notes", "j"},    {"scripts why", "j"},      {"customize list", "j"},
        {"customize get", "j"},    {"customize set", "n"},    {"customize reset", "n"},
        {"customize diff", "j"},   {"customize update", "n"}, {"customize export", ""},
        {"customize import", "n"}, {"customize check", "j"},  {"behavior list", "j"},
        {"behavior check", "j"},   {"level list", "j"},       {"level get", "j"},
        {"level set", "nj"},       {"level diff", "j"},       {"project check", "j"},
        {"project report", ""},    {"project show", "j"},     {"project list", "j"},
        {"project get", "j"},      {"project set", "n"},      {"project save", "n"},
        {"project format", "n"},   {"project new", "nj"},     {"wizard list", "j"},
        {"wizard show", "j"},      {"wizard check", "j"}};
    std::map<std::string, std::string> offered;
    for (const std::string& group : commandsIn(ToolFolder().run("--help").out)) {
        const auto look = [&](const std::string& command) {
            const std::string help = expectHelp(command + " --help", command);
            offered[command] = std::string(help.find("-n,--dry-run") != help.npos ? "n" : "") +
                               (help.find("--json") != help.npos ? "j" : "");
            return help;
        };
        for (const std::string& command : commandsIn(look(group))) {
            offered.erase(group);
            look(group + " " + command);
        }
    }
    EXPECT_EQ(offered, commands);
}

TEST(Usage, ErrorsNameTheMistakeAndDoNothing) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "a command is missing: xml, catalogue, "},
        {"xml", "a command is missing after xml: check, format"},
        {"project", "a command is missing after project: check, "},
        {"wizard", "a command is missing after wizard: list, show, check"},
        {"catalogue", "a command is missing after catalogue: build, "},
        {"behavior check \"\"", "SCRIPT: is empty"},
        {"project check \"\"", "PATH: is empty"},
        {"wizard list \"\"", "FOLDER: is empty"},
        {"catalogue build . -o \"\"", "--output: is empty"},
        {"scripts list -p \"\" -t .", "--project: is empty"},
        {"frobnicate", "frobnicate"},
        {"xml chekc a.xml", "chekc"},
        {"xml check", "FILE is required"},
        {"xml check --shiny a.xml", "--shiny"},
        {"xml format", "FILE is required"},
        {"xml format a.xml a.xml", "--in-place only"},
        {"xml format --in-place -o b.xml a.xml", "excludes"},
        {"xml format --in-place -", "standard input"},
        {"xml format a.xml -o", "output"},
    };
    ToolFolder folder;
    folder.write("a.xml", "<a><b/></a>");
    for (const auto& [arguments, message] : rows) {
        const ToolRun run = folder.run(arguments);
        EXPECT_EQ(run, (ToolRun{2, "", run.err})) << arguments;
        EXPECT_THAT(run.err, AllOf(StartsWith("zoka: "), HasSubstr(message), HasSubstr("--help")))
            << arguments;
    }
    EXPECT_EQ(folder.fileCount(), 1u);
    EXPECT_EQ(folder.read("a.xml"), "<a><b/></a>");
}

// Editors and other programs can go on from there; an absolute path of the suite's they could not even open.
TEST(Usage, FilesAreNamedAsTheyWereGiven) {
    ToolFolder folder;
    for (const char* name : {"game", "t", "t/deep", "suite", "suite/templates", "suite/templates/wizards"}) {
        std::filesystem::create_directory(folder.path(name));
    }
    const std::string script = "// entry: A\n// id: 1\nvar a = 1;\n";
    folder.write("game/s.kez", script);
    folder.write("game/bad.kez", "// entri: A\n// skill1: A\naction a {");
    folder.write("game/empty.kez", "");
    folder.write("game/l.zlm", "level 1\nentity a\nend");
    folder.write("game/bad.xml", "<Project>");
    folder.write("t/other.kez", script);
    folder.write("t/camera_.kez", "x");
    folder.write("t/template_6.xml",
                 "<TavrixTemplate><Script name='Camera' filename='camera_.kez'/></TavrixTemplate>");
    folder.write("suite/templates/wizards/w.xml",
                 "<Wizard><Title>Wiz</Title><Defaults><Name>W</Name></Defaults><Folder name='a'/></Wizard>");
    folder.write("suite/templates/wizards/bad.xml", "<Wizard>");
    struct Row {
        const char *command, *says;
    };
    for (const Row& row :
         {Row{"level list game/none.zlm", "Can't read 'game/none.zlm': "},
          Row{"level set game/l.zlm a skill1=2 -n", "--- game/l.zlm\n+++ game/l.zlm\n"},
          Row{"behavior list game/none.kez", "Can't read 'game/none.kez': "},
          Row{"behavior check ./game", "./game/bad.kez:"},
          Row{"customize check game", "game/bad.kez:1: "},
          Row{"customize list none.kez", "Can't read 'none.kez': "},
          Row{"customize list -", "Can't read '-': "},
          Row{"customize set game/s.kez 1=2 -n", "--- game/s.kez\n"},
          Row{"customize reset game/s.kez -t t/other.kez", "t/other.kez is another script's template"},
          Row{"customize reset game/s.kez -t t", "Can't read 't/s.kez': "},
          Row{"customize update game/s.kez -t t/deep/", "Can't read 't/deep/s.kez': "},
          Row{"customize update game/none.kez -t t", "Can't read 'game/none.kez': "},
          Row{"customize export game/s.kez -o game/s.kez/v", " 'game/s.kez/v': "},
          Row{"customize import game/s.kez", "Can't read 'game/s.kez.zoka': "},
          Row{"customize import game/s.kez -i ../none", "Can't read '../none': "},
          Row{"scripts add -p game -t ./t/ -m game/empty.kez camera_.kez", "game/empty.kez is empty: "},
          Row{"scripts add -p game -t ./t/ -m game/s.kez -n camera_.kez",
              "\ncopy ./t/camera_.kez -> game/camera_0.kez\n--- game/s.kez\n"},
          Row{"scripts list -p game/ -t t -m game/s.kez --json", "\"mainScript\": \"game/s.kez\""},
          Row{"catalogue build t -o game/s.kez/x.xml", " 'game/s.kez/x.xml': "},
          Row{"catalogue build t -n", "--- t/template_6.xml\n"},
          Row{"help-pages t/template_6.xml -o game/s.kez", " 'game/s.kez/"},
          Row{"wizard list suite", "\tsuite/templates/wizards/w.xml\n"},
          Row{"wizard list suite --json", "\"suite/templates/wizards/w.xml\""},
          Row{"wizard check ./suite", "./suite/templates/wizards/bad.xml:"},
          Row{"wizard list none", "Can't enter the folder 'none': "},
          Row{"project new Wiz --suite suite --templates t --folder game/new -n", "game/new/\n  a"},
          Row{"project new Wiz --suite suite --templates t --folder game", "zoka: game\n"},
          Row{"project new Wiz --suite suite --templates t --folder game/new", " in game/new\n"},
          Row{"project check game", "game/bad.xml"},
          Row{"project check game/none.xml", "Can't read 'game/none.xml': "}}) {
        const ToolRun run = folder.run(row.command);
        std::string said = run.out + run.err;
        std::string wanted = row.says;
#ifdef _WIN32
        // What is below an argument has the system's separators.
        for (std::string* const text : {&said, &wanted}) {
            for (size_t at = 0; (at = text->find("\\\\", at)) != text->npos;) {
                text->erase(at++, 1);  // as JSON writes one
            }
            std::ranges::replace(*text, '\\', '/');
        }
#endif
        EXPECT_THAT(said, HasSubstr(wanted)) << row.command;
        EXPECT_EQ(said.find(folder.path("game").parent_path().filename().string()), said.npos)
            << row.command << "\n"
            << said;
    }
    EXPECT_EQ(folder.read("game/s.kez"), script);
}

}  // namespace
