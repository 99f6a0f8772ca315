// Emptying the lists of a model.
#pragma once

#include "J8ProjectManager/ReportTexts.h"
#include "util/DebugLog.h"

namespace zoka {

// Deletes a list's elements; what that throws is logged under `func` and goes no further.
template <class List>
void deleteLogged(List& list, const char* func, const char* message) noexcept {
    try {
        list.clear();
    } catch (...) {
        debugLog(texts::kSource, __LINE__, func, message, kReportError);
    }
}

}  // namespace zoka
