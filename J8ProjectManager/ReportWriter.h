// Findings about data files: a line of a report for people and an entry of the debug log, made in one call.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace zoka {

// One finding's texts. "%1" to "%9" stand for what is found there. An empty text is not written.
struct ReportEntry {
    const char* report = "";  // with its line end
    const char* func = "";    // what the log names as the function
    const char* log = "";
    int severity = 0;  // 1 error, 2 warning, else a note
    // What the list of problems says where the report's line, or the log's text if there is none, says too little.
    const char* finding = "";
};

inline constexpr int kReportError = 1;
inline constexpr int kReportWarning = 2;

// The pattern with its places filled.
std::string filledText(std::string_view pattern, std::initializer_list<std::string_view> arguments);

// An entry of the debug log that is written later.
struct LateLogEntry {
    const ReportEntry* entry;  // static
    std::string text;
    int sourceLine;
};
void writeLog(const char* source, const LateLogEntry& entry);

// Appends the entry's line to `report` and logs its entry under `source`; the line number in the log is the
// caller's. Gives what was appended. With `late` the log's entry goes there.
std::string writeReport(const char* source, std::string& report, const ReportEntry& entry,
                        std::initializer_list<std::string_view> arguments = {},
                        int sourceLine = __builtin_LINE(), std::vector<LateLogEntry>* late = nullptr);

}  // namespace zoka
