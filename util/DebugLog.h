// The process-wide diagnostic log: an XML-looking text file whose root is left open, since the log never
// knows its last entry.
#pragma once

#include <string>

namespace zoka {

// The log's file, "debugLogOut.xml" until changed: relative to the process's current
// folder at the first entry.
std::string& debugLogFileName();

// Writes one entry: `file`, `line` and `func` name the place in our own source, `level` is 1 for
// "Error", 2 for "Warning", anything else for "Note". Texts are written as they are, null as an empty
// one. The first entry makes the file anew. Whatever fails is swallowed. [any thread]
void debugLog(const char* file, int line, const char* func, const char* message, int level) noexcept;
void debugLog(const std::string& file, int line, const std::string& func, const std::string& message,
              int level) noexcept;

// Closes the file; a later entry starts a new one. [shutdown, tests]
void closeDebugLog() noexcept;

}  // namespace zoka
