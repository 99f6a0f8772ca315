// Puts changed values into a script's text, replacing the values' spans and nothing else.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "customize/CustomScript.h"

namespace zoka {

struct ScriptEdit {
    size_t start = 0;
    size_t length = 0;  // bytes of the loaded text that go
    std::string text;   // what comes in their place
    size_t entry = 0;   // whose value it is
};

// How many of the entries' controls hold a changed value.
size_t countChanges(const CustomScript& script);
bool hasChanges(const CustomScript& script);
// The edits of the entries whose controls have changed, in the entries' order. Switched off, a line gets "//"
// in front; switched on, it loses its two slashes.
std::vector<ScriptEdit> editsOf(const CustomScript& script);
// Why the edits can't be made cleanly: one lies before or within the one in front of it, or outside the file.
// Empty when they can.
std::string editFault(const CustomScript& script, const std::vector<ScriptEdit>& edits);
// What the file will hold. The edits have no fault.
std::string editedText(std::string_view fileText, const std::vector<ScriptEdit>& edits);

// The lines that saving will change, without their line ends; several lines are parted by LF.
struct LineChange {
    int line = 0;  // of the first one in the loaded text, from 1
    std::string before;
    std::string after;
};
std::vector<LineChange> lineChanges(std::string_view fileText, const std::vector<ScriptEdit>& edits);
// Of the entries' controls; none while their edits have a fault.
std::vector<LineChange> lineChanges(const CustomScript& script);

// Whether the edited text, read again, has the same entries with the new values and nothing else has changed.
// False when that isn't certain, as with emptied values, line ends and switches of several lines.
bool keepsEntries(const CustomScript& script, const std::vector<ScriptEdit>& edits);
// For edits that keep the entries: makes the script what reading `newText`, the edited text, would make it.
void applyEdits(CustomScript& script, const std::vector<ScriptEdit>& edits, std::string newText);

// The entries with a value that `saved`, read from the edited text, no longer has or has with another value
// than the control's: their places in `script`.
std::vector<size_t> notReadBack(const CustomScript& script, const CustomScript& saved);

}  // namespace zoka
