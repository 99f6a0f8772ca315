// A script's entries as a text for people and for comparing.
#pragma once

#include <string>

#include "customize/CustomScript.h"

namespace zoka {

// Version and date, then each entry with its line, kind, label, id, span and value, its control and help
// indented below it; then the findings. Lines end with LF; line ends within values are shown as "\n".
std::string entriesText(const CustomScript& script);

// The entry's control as a "cntl" line would have it; empty without one.
std::string controlText(const CustomEntry& entry);

}  // namespace zoka
