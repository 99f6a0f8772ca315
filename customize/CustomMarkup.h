// Reads the customization markup in a script's comments.
#pragma once

#include <string_view>

#include "customize/CustomScript.h"
#include "util/JobProgress.h"

namespace zoka {

// Walks the lines of `text` and fills the script's entries, version, date and findings, which it doesn't
// empty before. Spans are offsets into `text`, which must end with a line end where its last line is to
// count. One pass. Lines and tokens are those of CLex, whose shared token state it leaves alone, so that it
// may run on any thread. False when `progress` (may be null) stopped it: then a part was read.
bool ParseCustomMarkup(std::string_view text, CustomScript& script, JobProgress* progress = nullptr);

// The parts of a comment's line with which the behaviour panel's markup agrees too.
struct MarkupLine {
    std::string_view keyword;  // the first word behind the two slashes, or empty
    std::string_view text;     // everything behind it, without the blanks around
    bool colon = false;        // a ":" follows the keyword directly or after blanks
};
// `line` begins with the two slashes and runs to the line's end.
MarkupLine splitMarkupLine(std::string_view line);

// The control word and its parameters. False, with the entry as it was, for an unknown control word; `fault`
// (may be null) is set to what else is wrong with the parameters.
bool readControl(std::string_view text, CustomEntry& entry, std::string* fault);

// The number at the text's start, 0 without one. A number beyond 32 bits sets `fits` to false and is held at
// the end.
int markupInteger(std::string_view text, bool* fits = nullptr);

}  // namespace zoka
