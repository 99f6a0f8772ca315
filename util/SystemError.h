// What the system's number of an error means: to a user, in words, and to a program that goes on.
#pragma once

#include <cstdint>
#include <string>

#include "util/OsFiles.h"

namespace zoka {

// Of errno; on Windows, of GetLastError.
using SystemErrorNumber = std::uint32_t;

OsFault faultOf(SystemErrorNumber number);
// The system's own words, without a full stop.
std::string systemWords(SystemErrorNumber number);

// Those words, and behind them what the user can do about it, where they leave that open.
inline std::string describeError(SystemErrorNumber number) {
    const OsFault fault = faultOf(number);
    return systemWords(number) + (fault == OsFault::NoRoom  ? "; make room and try again"
                                  : fault == OsFault::InUse ? "; close the program that uses it and try again"
                                                            : "");
}

}  // namespace zoka
