// What is said of a script: its entries, what is found in its markup, what saving it will change.
#pragma once

#include <string>
#include <vector>

#include "customize/CustomScript.h"
#include "customize/WriteBack.h"

namespace zoka {

// Version and date, then each entry with its line, kind, label, id, span and value, its control and help
// indented below it; then the findings. For people and for comparing. Lines end with LF; line ends within values are
// shown as "\n".
std::string entriesText(const CustomScript& script);

// The entry's control as a "cntl" line would have it; empty without one.
std::string controlText(const CustomEntry& entry);

// "C:\game\fog.kez:12": where the entry stands.
std::string placeText(const CustomScript& script, const CustomEntry& entry);
// "fog.kez:12: what can't be right", without a line end; `file` as it is to be shown.
std::string findingText(const std::string& file, const MarkupFinding& finding);
// A line each, then how many more there are. Lines end with CR LF.
std::string findingsText(const CustomScript& script);
// Each change with its line, what stands there and what will. Lines end with CR LF.
std::string changesText(const std::vector<LineChange>& changes);

}  // namespace zoka
