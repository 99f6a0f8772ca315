// Counts what is allocated, and lets one allocation fail, or each beyond a limit.
#pragma once

#include <cstdlib>

namespace zoka::test {

// The allocation that brings it to 0 fails; it counts nothing while it is 0.
extern long g_countdown;
// Pieces of memory that are not freed, and their bytes.
extern long g_live, g_bytes;
// No allocation brings g_bytes beyond it; 0: there is none.
extern long g_limit;

// Whether every allocation is to fail in turn; where it is not, steps become larger with the number of allocations.
inline const bool kEveryOne = std::getenv("ZOKA_LONG") != nullptr;

}  // namespace zoka::test
