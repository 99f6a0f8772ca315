// Brings a script up to its template's version and keeps the user's values, without a window or a question.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "customize/CarryValues.h"
#include "util/SafeWrite.h"

namespace zoka {

// What an update will do, made before anything is done.
struct ValueUpdatePlan {
    std::string before;                   // the script's bytes
    std::string after;                    // what they will be; equal to `before`: there is nothing to do
    ScriptRows old;                       // the script as it is
    std::vector<UnplacedValue> unplaced;  // values that the new version has no place for
    size_t kept = 0;                      // values that differ from the template's own and were put in
    size_t ownLines = 0;  // lines that the new version lacks; the script is kept beside it then
};
// Refused when one of the two can't be read.
Result<ValueUpdatePlan> planValueUpdate(const std::string& scriptPath, const std::string& templatePath);

// Carries the plan out. A script with lines of its own is first kept as a numbered copy beside it (see
// keepBackup), values without a place are added to the file of old values, and the value file holds the values
// before and after. The script stays as it was when any of it can't be done or when it is another one by now than was
// planned for, or of kind Generated (a copy that the user didn't name) with a link in its place. Otherwise the text
// tells why the value file holds the values before alone, if it does; else it is empty.
Result<std::string> updateKeepingValues(const ValueUpdatePlan& plan, FileKind kind = FileKind::Named);

struct OwnLines {
    std::string script;  // its file name
    size_t lines = 0;
};
// The question before scripts with lines of their own are replaced; Yes replaces them too.
std::string ownLinesQuestion(const std::vector<OwnLines>& scripts);

// For each entry of `script` the value that it has in its template, the counterparts found as an update finds
// them. Nothing when the template can't be read.
std::optional<std::vector<std::optional<std::string>>> templateDefaults(const CustomScript& script,
                                                                        const std::string& templatePath);

// How many lines of `before` a text `after` lacks: each counts as often as it stands there, wherever it stands.
// Neither its line end nor blanks behind it count, nor do empty lines and the comments that name a script's
// version and date, which every version has its own of. Linear.
size_t linesLost(std::string_view before, std::string_view after);

}  // namespace zoka
