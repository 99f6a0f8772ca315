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

}  // namespace zoka
