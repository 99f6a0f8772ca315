// How much of the system's things this process holds; for finding out whether something is left behind.
#pragma once

#include <string>
#include <vector>

namespace zoka {

struct ResourceCount {
    long handles = 0;  // kernel handles
    long threads = 0;
    long windows = 0;  // all of the process's, hidden ones and children too
    long gdi = 0;      // pens, fonts, pictures, device contexts, ...
    long user = 0;    // menus, icons, windows, ...; with the menus and icons of the session's other processes
    long memory = 0;  // KB of its own that lie in memory or were swapped out
};

// [any thread]. Objects made by other threads meanwhile are counted as they happen to stand.
ResourceCount countResources();

// A kernel handle of this process.
struct HeldHandle {
    unsigned value = 0;
    std::string kind;  // "Event", "Thread", "File", ..., and behind it the object's name if it has one
};

// All kernel handles of this process, in ascending order; empty where the system doesn't tell. [any thread]
std::vector<HeldHandle> heldHandles();

// The user objects by kind, for the message of a count that grew. [any thread]
std::string userObjectKinds();

// One field by its name ("handles", "threads", ...); -1 for any other word.
long resourceField(const ResourceCount& count, const std::string& name);

}  // namespace zoka
