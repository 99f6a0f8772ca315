// The doors into the library: entry points, procedures, window and thread procedures, timers, callbacks. Whoever
// calls through one can't catch what is thrown, so nothing may leave by it.
#pragma once

#include <exception>
#include <new>
#include <string>
#include <string_view>

namespace zoka {

// What the user is told when `file` needs more memory than there is; of something else when it is empty.
std::string outOfMemoryText(std::string_view file);
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
