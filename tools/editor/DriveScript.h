// The text of a drive script: one command a line, its words separated by blanks. A word in double quotes may
// hold blanks; a quote inside it is written twice. A backslash is an ordinary character (paths, menu paths).
// A line whose first word begins with '#' is a comment. ${NAME} in any word stands for a value given on the
// command line. "repeat N" ... "end" encloses lines that run N times; repeats may be nested.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "util/Outcome.h"

namespace zoka {

struct DriveLine {
    int number = 0;                  // counted from 1, for messages
    std::vector<std::string> words;  // never empty
    size_t partner = 0;              // of a repeat: index of its end; of an end: index of its repeat
    int times = 0;                   // of a repeat
};

struct DriveScript {
    std::vector<DriveLine> lines;
};

// Reads a whole script. A refusal says "LINE: what is wrong" (to be put behind the file's name and a colon).
Result<DriveScript> readDriveScript(std::string_view text, const std::map<std::string, std::string>& values);

}  // namespace zoka
