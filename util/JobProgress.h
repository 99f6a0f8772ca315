// How a long job tells how far it is, and is told to stop.
#pragma once

#include <cstddef>
#include <string>

namespace zoka {

class JobProgress {
public:
    virtual ~JobProgress() = default;
    // Called before each piece of work: `done` of `total` pieces are finished, `what` is the one that comes.
    // False stops the job before that piece; what is finished stays, and every file is whole. Called on the
    // thread that does the job, which may show a window's messages meanwhile.
    virtual bool step(size_t done, size_t total, const std::string& what) = 0;
};

// For jobs that nobody watches: null is allowed.
inline bool mayContinue(JobProgress* progress, size_t done, size_t total, const std::string& what) {
    return !progress || progress->step(done, total, what);
}

}  // namespace zoka
