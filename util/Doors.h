// The doors into the library: entry points, procedures, window and thread procedures, timers, callbacks. Whoever
// calls through one can't catch what is thrown, so nothing may leave by it.
#pragma once

#include <array>
#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace zoka {

// What the user is told when `file` needs more memory than there is; of something else when it is empty.
std::string outOfMemoryText(std::string_view file);
// Memory ran out for a file. What was begun is freed by the time it is caught.
class OutOfMemory : public std::bad_alloc {
public:
    // A name that is longer than any path is cut: there is no memory to hold it in.
    explicit OutOfMemory(std::string_view file) noexcept;
    std::string_view file() const { return m_file.data(); }

private:
    std::array<char, 520> m_file{};
};

// Memory put aside for what must be done when there is none left: asking about what is not saved, and saving it. In
// pieces that the heap keeps and hands out again when they are freed.
class MemoryReserve {
public:
    MemoryReserve() noexcept { refill(); }
    // Takes what can be had.
    void refill() noexcept;
    void release() noexcept;

private:
    static constexpr size_t kPieces = 16, kPieceSize = 64 * 1024;
    std::array<std::unique_ptr<std::byte[]>, kPieces> m_pieces;
};
// Tells the user; never throws, whatever is left of the memory. [any thread]
void tellOutOfMemory(std::string_view file) noexcept;
void tellFault(const char* what) noexcept;

// Runs `work`. False when something was thrown: then the user was told of it, and what `work` had begun is
// freed. Running out of memory is told with the file that it was for, if any.
template <class Work>
bool keepInside(const Work& work, std::string_view file = {}) noexcept {
    try {
        work();
        return true;
    } catch (const OutOfMemory& out) {
        tellOutOfMemory(out.file());
    } catch (const std::bad_alloc&) {
        tellOutOfMemory(file);
    } catch (const std::exception& fault) {
        tellFault(fault.what());
    } catch (...) {
        tellFault("An unknown fault");
    }
    return false;
}

}  // namespace zoka
