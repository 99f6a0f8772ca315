// What the user is told of a copy that failed, wherever it was to be made.
#pragma once

#include <string>

namespace zoka {

// `why` ends the text where something is known about it; else it is empty.
inline std::string copyFailure(const std::string& source, const std::string& target, const std::string& why) {
    return "Can't copy '" + source + "' to '" + target + "'" + (why.empty() ? "" : ": " + why);
}

// The same where a script was to be replaced or brought back.
inline std::string copyError(const std::string& why) {
    return "Copy error (1128).\nNo Update." + (why.empty() ? "" : "\n\n" + why);
}

}  // namespace zoka
