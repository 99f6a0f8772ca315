// What the tool's command groups share. Each group is one file with one add...Commands function, which
// main.cpp calls: it hangs its commands into the tool's. A command's arguments, once they are read, leave the work
// to be done in `chosen`; main runs it.
#pragma once

#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "util/OsFiles.h"
#include "util/SafeWrite.h"

namespace zoka {
class EntryModel;
class SaveResult;
}  // namespace zoka

namespace zoka::cli {

// Scripts rely on these numbers.
enum class ExitStatus : int {
    Done = 0,
    Findings = 1,  // the work was done and something is wrong with the content
    Usage = 2,     // the arguments make no sense; nothing was done
    Failed = 3,    // a file can't be read or written
};

// What a command that met both ends with.
inline ExitStatus worse(ExitStatus a, ExitStatus b) {
    return a > b ? a : b;
}

// Of a save that the user has been told about, but for a refusal of their own.
ExitStatus statusOf(const SaveResult& saved);

class Command;
using Work = std::function<ExitStatus()>;

void addXmlCommands(const Command& app, Work& chosen);
void addCatalogueCommands(const Command& app, Work& chosen);  // zoka help-pages too
void addScriptCommands(const Command& app, Work& chosen);
void addBehaviorCommands(const Command& app, Work& chosen);
void addLevelCommands(const Command& app, Work& chosen);
void addCustomizeCommands(const Command& app, Work& chosen);
void addProjectCommands(const Command& app, Work& chosen);
// zoka wizard, and zoka project new: called behind addProjectCommands, whose group that goes into.
void addWizardCommands(const Command& app, Work& chosen);

// "-" in the place of a file's name: the standard input or output.
inline bool isStandardStream(std::string_view path) {
    return path == "-";
}

// The whole content of a file, a pipe or the standard input. Nothing when it can't be read; it has then said
// why. What is neither a file nor a pipe (a device, which may never end) is not read.
std::optional<std::string> readInput(const std::string& path);
// Gives a file its new content (the old or the new one is left, whatever happens; missing folders are made), or writes
// to the standard output. False when it can't be written; it has then said why.
bool writeOutput(const std::string& path, std::string_view bytes, FileKind kind = FileKind::Named);
// Gives a file that was read as `before` its new content. When it holds something else by now, it is left alone and
// `again` is called, which starts the work anew from what the file holds; its status is the result.
ExitStatus rewriteFile(const std::string& path, const std::string& before, std::string_view bytes,
                       const std::function<ExitStatus()>& again);
// Sends on what was written to the standard output so far. False when not all of it
// arrived; it has then said so.
bool flushOutput();
// Why a list doesn't take the value; empty when it offers it, or is no list.
std::string notOffered(const EntryModel& row, const std::string& value);
// A line on the standard error stream, with control characters shown and paths as they were given.
void complain(const std::string& text);
// The same of a file or folder, as the user named it, that can't be read; `why` is the system's reason.
void complainUnreadable(const std::string& path, const std::string& why);
// On the standard output: names and texts from files, with control characters shown; line differences, which
// other programs apply, exactly as they are unless a terminal shows them.
void printShown(const std::string& text);
void printPatch(const std::string& difference);
// The file that the work is about from here on: memory that runs out is told with its name.
void workOn(const std::string& path);
const std::string& workedOn();

// Says which names of a folder are not looked at, because no path of the suite can hold them.
void tellSkipped(const OsListing& left, const std::string& folder);

bool isTerminal(std::FILE* stream);
// Makes the standard streams pass bytes on as they are.
void makeStandardStreamsBinary();

}  // namespace zoka::cli
