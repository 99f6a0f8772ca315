// What the compiler's runtime, linked into the library, keeps for threads, and how to
// get rid of it at an unload.
#pragma once

namespace zoka {

// Frees what the runtime keeps for the calling thread, which must not run any code that needs it afterwards
// (exceptions, thread-local objects, locks). The loader does the same at a thread's end, but not for a
// library that is gone by then; twice does no harm.
void freeThreadRuntime();

}  // namespace zoka
