// How a save that the user asked for ended.
#pragma once

#include <string>
#include <utility>

#include "util/Outcome.h"

namespace zoka {

// Compared and switched over as one of its four ends. Nobody need look at it: the user has been told.
class SaveResult {
public:
    enum How {
        Saved,
        NothingToSave,  // nothing has changed, so nothing was written
        Cancelled,      // by the user
        Failed,
    };
    SaveResult(How how = NothingToSave) : m_how(how) {}
    SaveResult(Refusal refusal) : m_how(Failed), m_why(std::move(refusal.why)) {}

    operator How() const { return m_how; }
    // Why it failed, perhaps in more words than the user was told; else empty.
    const std::string& why() const { return m_why; }

private:
    How m_how;
    std::string m_why;
};

}  // namespace zoka
