// The wizard's entries in the debug log. Internal to this folder.
#pragma once

#include <string>
#include <string_view>

#include "util/DebugLog.h"

namespace zoka {

// An error found in the function `func`; `detail`, where there is one, is the path that it is about.
inline void logWizardError(const char* func, std::string text, std::string_view detail = {},
                           int sourceLine = __builtin_LINE()) {
    if (!detail.empty()) {
        text.append(": ").append(detail);
    }
    debugLog("J8ProjectWizard\\J8Wizard", sourceLine, func, text, 1);
}

}  // namespace zoka
