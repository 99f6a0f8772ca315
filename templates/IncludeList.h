// The include block of a project's main script: the run of lines "include <name>;" by which the project's
// scripts reach the game. docs/include-block.md describes it. Everything outside the lines put in or taken
// out stays byte for byte.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/host/ZunEditorInterface.h"
#include "templates/ScriptNeeds.h"
#include "util/Lex.h"
#include "util/Outcome.h"

namespace zoka {

// A text without any line, where one is needed.
inline constexpr int kEmptyTextCode = 3;
class EmptyScriptError : public std::runtime_error {
public:
    EmptyScriptError() : std::runtime_error("The main script is empty") {}
    int code() const { return kEmptyTextCode; }
};

// "include <" name ">;" CR LF.
std::string includeLine(std::string_view name);
// The name on an include line, or nothing when the line (without its LF) is another. The keyword is a token
// of at least 7 characters that begins with "include" in any case; the token after it stands in angle
// brackets.
std::optional<std::string_view> includedName(std::string_view line);

// Appends the names of the include block of the file to `names`, in file order; refused when it can't be read.
Outcome readIncludes(const std::string& mainScriptPath, std::vector<std::string>& names);
// For those to whom a file that can't be read has no includes. Always true.
bool ReadIncludeList(const std::string& mainScriptPath, std::vector<std::string>& names);

// Both look through all lines of `lexer`, from the first one, and return the insertion point, an offset in
// its text: the start of the line that ends the block; where the block ends with the text, the start of its
// last line; without a block, the start of the first line that is no "//" comment; else the start of the text.
// The text starts behind the byte order mark of a UTF-8 file, which stays in front. The names are appended to
// `names`; or those found in the block, in any case, are removed from `pendingNames`.
long ScanIncludeBlock(CLex& lexer, std::vector<std::string>& names);
long FindInsertionPoint(CLex& lexer, std::vector<std::string>& pendingNames);

// What has to be put into a main script.
struct Insertion {
    long position = 0;
    std::vector<std::string> names;    // the new lines' names; none: nothing is to be done
    std::vector<std::string> present;  // asked for or needed, but included already
    std::string problem;               // why nothing may be done, in words; else empty
};
// What including the scripts at `scriptPaths` means for a main script that holds `text`. Scripts already included are
// left out, needs come before the script that needs them; their files are found with `locate`.
Insertion planInsertion(std::string_view text, const std::string& mainScriptPath,
                        std::span<const std::string> scriptPaths, const LocateFile& locate,
                        const std::function<ScriptFacts(const std::string& path)>& read = readScriptFacts);
// The text with the new lines in it; refused where the insertion has a problem.
Result<std::string> applyInsertion(std::string_view text, const Insertion& insertion);

// Includes the scripts, their needs first, and rewrites the main script in one go. `lexer` holds its text. 1
// when it was rewritten, or could not be (it is then as it was); 0 when nothing was to be done, the text is
// empty, or a need can't be included.
int InsertIncludes(CLex& lexer, const std::string& mainScriptPath, std::span<const std::string> scriptPaths,
                   const LocateFile& locate);
int InsertIncludes(CLex& lexer, const std::string& mainScriptPath, const std::string& scriptPath,
                   const LocateFile& locate = {});

// A change of a main script: its text, and what it will be. Equal texts: nothing is to be written.
struct MainScriptPlan {
    std::string path;
    std::string before;
    std::string after;
};
// Makes the new text of one that is not the planned one; refused when it can't be done there.
using PlanAgain = std::function<Result<std::string>(const std::string& text)>;
// Puts the planned text into the file, under the file's lock. Where the file holds another text by now, what
// `again` makes of that one is put there: of two writers neither loses what the other has just written. The file stays
// as it was when it can't be done.
Outcome writeMainScript(const MainScriptPlan& plan, const PlanAgain& again);

// The text without the first include line of each name, wherever in the text it stands; nothing when a name has
// none. A name that is given twice takes two lines. Throws EmptyScriptError for an empty text.
std::optional<std::string> withoutIncludes(std::string_view text, std::span<const std::string> names);

// Which include lines go from the host's main script.
struct RemovePlan {
    MainScriptPlan main;
    std::vector<std::string> names;
    std::string problem;  // why nothing will be done, in words; else empty
};
// The first include line of each name goes, in one rewrite. Throws EmptyScriptError.
RemovePlan planRemoval(ZunEditorInterface& host, std::span<const std::string> names);
// Carries the plan out and tells the host. Throws EmptyScriptError.
Outcome removeIncludes(ZunEditorInterface& host, const RemovePlan& plan);
// Both in one, for one name.
inline Outcome RemoveInclude(ZunEditorInterface& host, const std::string& name) {
    return removeIncludes(host, planRemoval(host, std::span(&name, 1)));
}

// Whether the folder part of `path` (before its last backslash) equals the beginning of `folder`, in any
// case. So a path in a folder above `folder` counts too. False without a backslash.
bool IsInFolder(const std::string& folder, const std::string& path);

}  // namespace zoka
