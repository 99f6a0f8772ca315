// Counts what is allocated, and lets one allocation fail.
#pragma once

namespace zoka::test {

// The allocation that brings it to 0 fails; it counts nothing while it is 0.
extern long g_countdown;
// Pieces of memory that are not freed.
extern long g_live;

}  // namespace zoka::test
