// A driven editor runs in a process of its own, so that its end is seen from outside: the status is the one that the
// process itself ended with, also where a thread of a plug-in dies with it and the system is slow to clear up.
#pragma once

namespace zoka {

// Whether this process is the driven editor that runInChild() started.
bool isChildEditor();

// Starts this program once more with the same command line and waits for its end; the child ends with this process.
// After limitSeconds (0: never) the child is ended with status 1, which is said on the standard error.
// Returns false when it can't be started, otherwise status is the child's exit status. [editor thread]
bool runInChild(unsigned limitSeconds, int& status);

}  // namespace zoka
