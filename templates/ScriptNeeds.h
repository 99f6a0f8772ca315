// Which scripts come along with a script.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "templates/ScriptFacts.h"
#include "util/KeyedHash.h"
#include "util/Text.h"

namespace zoka {

// Appends the names on the "needs" lines of the file at `scriptPath`, as they stand there and in that order;
// returns how many. 0 when the file can't be read.
int ReadNeeds(const std::string& scriptPath, std::vector<std::string>& names);

// Whether it names a file in a folder and nothing outside it: no separator, drive, wildcard or control
// character, not "." or "..", no dot or blank at its end (which the system leaves out, so that it means another
// file), no device such as "con" (which might wait for a key when it is read), at most 255 bytes.
bool isPlainFileName(std::string_view name);
// Whether it names a file in a folder or in a folder below it: plain names and "." parted by separators.
bool staysInFolder(std::string_view name);
// Whether a name can stand between the brackets of an include line and be found again there: one that stays in
// its folder, without blanks, brackets and semicolons.
bool isIncludableName(std::string_view name);

// A name that a needs line holds but that can't be included.
struct RefusedNeed {
    std::string script;  // the file name of the script that needs it
    std::string need;
};

// In words for the user, a line for each; empty for none.
std::string describe(std::span<const RefusedNeed> refused);

struct NeededScripts {
    std::vector<std::string> names;    // in the order in which they have to be included
    std::vector<std::string> present;  // those asked for or needed that are in `included` already
    std::vector<RefusedNeed> refused;
};

// The full path of a script by its file name; empty when it isn't found.
using LocateFile = std::function<std::string(const std::string& fileName)>;

// The scripts that have to be included for those at `scriptPaths`: each one's needs first, with their own
// needs before them, then the script itself. Nothing comes twice, nothing of `included` (lowered names)
// comes, and of those only the ones asked for are looked into, as their needs may be missing; nor does the main script,
// which never includes itself. Needs that form a circle are each taken once. A need that isn't found is taken by its
// name alone. Each file is read once; a depth of any size is fine.
NeededScripts collectNeeds(std::span<const std::string> scriptPaths, const std::string& mainScriptName,
                           const KeyedSet<std::string>& included, const LocateFile& locate,
                           const std::function<ScriptFacts(const std::string& path)>& read = readScriptFacts);

}  // namespace zoka
