// The file beside a script that remembers a user's values by id. docs/value-file.md describes its format.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "customize/CustomScript.h"
#include "util/UserPrompt.h"

namespace zoka {

// The script's full name with this appended.
inline constexpr const char* kValueFileEnding = ".zoka";
inline constexpr const char* kValueFileNotWritten = "Error open file to write\n(Code 2701)";
// Of a stored value whose id the script doesn't have.
inline void warnNoMatch(UserPrompt& prompt) {
    prompt.ask("Warning: No match found for value", "ZOKA", PromptButtons::Ok, PromptIcon::Warning);
}
// A line longer than this is read as several.
inline constexpr size_t kValueFileLine = 511;

struct ValueRecord {
    int id = 0;
    int kind = 0;
    std::string value;
};

struct ValueRecords {
    std::vector<ValueRecord> records;
    Outcome whole;  // refused where the file ends too soon: the records are those before
    // The first line, from 1, that is longer than kValueFileLine; 0: none. What follows it may be out of step.
    int longLine = 0;
};
ValueRecords parseValueFile(std::string_view bytes);

// The file's bytes. With `useControlValues` the values are those of the entries' controls (of entries that
// have one), otherwise those found in the script.
std::string valueFileText(const CustomScript& script, bool useControlValues);
// One record as it stands in the file.
void appendValueRecord(std::string& text, int id, int kind, std::string_view value);

// After a message when the file can't be written; the old one then stays.
Outcome WriteValueFile(const CustomScript& script, bool useControlValues, UserPrompt& prompt);

// Told of each record in the file's order: with the first entry of its id, or null when the script has none.
using ValueSink = std::function<void(const ValueRecord& record, CustomEntry* entry)>;
// Hands each stored value to the control of the first entry with its id; a record without one gives a
// warning. False after a message when the file can't be read or ends too soon; values handed out before stay.
// With a sink, values are handed to it in the place of the controls.
bool ReadValueFile(CustomScript& script, UserPrompt& prompt, const ValueSink& sink = {});

struct NotCarried {
    size_t entry = 0;
    std::string why;
};
// The values that the file can't give back: of entries without an id, or with that of another one, and those that
// take more than one line of it.
std::vector<NotCarried> notCarried(const CustomScript& script, bool useControlValues);
// Whether reading back what valueFileText writes gives every value to its own entry: no id twice, no line end
// in a value, none longer than a line.
bool valueFileCarriesAll(const CustomScript& script, bool useControlValues);

}  // namespace zoka
