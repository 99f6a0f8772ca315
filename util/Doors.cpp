#include "util/Doors.h"

#include "util/UserPrompt.h"

namespace zoka {

std::string outOfMemoryText(std::string_view file) {
    return file.empty() ? "There is not enough memory for this."
                        : "There is not enough memory for '" + std::string(file) + "'.";
}

void tellOutOfMemory(std::string_view file) noexcept {
    try {
        userPrompt().tell(outOfMemoryText(file));
    } catch (...) {
        // Not even for the message.
    }
}

void tellFault(const char* what) noexcept {
    try {
        userPrompt().tell(what);
    } catch (...) {
    }
}

}  // namespace zoka
