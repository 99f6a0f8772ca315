#include "util/Doors.h"

#include <algorithm>

#include "util/UserPrompt.h"

namespace zoka {

OutOfMemory::OutOfMemory(std::string_view file) noexcept {
    std::ranges::copy(file.substr(0, m_file.size() - 1), m_file.begin());
}

void MemoryReserve::refill() noexcept {
    for (auto& piece : m_pieces) {
        if (!piece) {
            piece.reset(new (std::nothrow) std::byte[kPieceSize]);
        }
    }
}

void MemoryReserve::release() noexcept {
    for (auto& piece : m_pieces) {
        piece.reset();
    }
}

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
