// A crash of the editor's process, by whosever fault, told in one line on the standard error stream.
#pragma once

namespace zoka {

// From now on a fault that nothing handles, on any thread, writes
//     zunhost: unhandled exception c0000005 at zoka.dll+1a2b (thread 1644)
// before the system ends the process. [before other threads exist]
void reportCrashes();

}  // namespace zoka
