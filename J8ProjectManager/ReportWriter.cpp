#include "J8ProjectManager/ReportWriter.h"

#include "util/DebugLog.h"

namespace zoka {

std::string filledText(std::string_view pattern, std::initializer_list<std::string_view> arguments) {
    std::string text;
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '%' && i + 1 < pattern.size() && pattern[i + 1] >= '1' && pattern[i + 1] <= '9') {
            const auto number = static_cast<size_t>(pattern[++i] - '1');
            if (number < arguments.size()) {
                text += arguments.begin()[number];
            }
        } else {
            text += pattern[i];
        }
    }
    return text;
}

std::string writeReport(const char* source, std::string& report, const ReportEntry& entry,
                        std::initializer_list<std::string_view> arguments, int sourceLine) {
    std::string line = filledText(entry.report, arguments);
    report += line;
    if (*entry.log) {
        debugLog(source, sourceLine, entry.func, filledText(entry.log, arguments).c_str(), entry.severity);
    }
    return line;
}

}  // namespace zoka
