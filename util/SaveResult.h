// How a save that the user asked for ended.
#pragma once

#include <string>
#include <utility>

#include "util/Outcome.h"

namespace zoka {

// Compared with one of its four ends. No bool: what counts as well differs from caller to caller. Nobody need look at
// it: the user has been told.
class SaveResult {
public:
    enum How {
        Saved,
        NothingToSave,  // nothing has changed, so nothing was written
        Cancelled,      // by the user
        Failed,
    };
    SaveResult(How how = NothingToSave) : m_how(how) {}
    SaveResult(Refusal refusal) : m_how(Failed), m_notTold(std::move(refusal.why)) {}

    How how() const { return m_how; }
    friend bool operator==(const SaveResult& a, const SaveResult& b) { return a.m_how == b.m_how; }
    // Of a failure, what is known besides what the user was told; else empty.
    const std::string& notTold() const { return m_notTold; }

private:
    How m_how;
    std::string m_notTold;
};

}  // namespace zoka
