#include "J8ProjectManager/ReportWriter.h"

#include <utility>

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

void writeLog(const char* source, const LateLogEntry& entry) {
    debugLog(source, entry.sourceLine, entry.entry->func, entry.text.c_str(), entry.entry->severity);
}

std::string writeReport(const char* source, std::string& report, const ReportEntry& entry,
                        std::initializer_list<std::string_view> arguments, int sourceLine,
                        std::vector<LateLogEntry>* late) {
    std::string line = filledText(entry.report, arguments);
    report += line;
    if (*entry.log) {
        LateLogEntry logged{&entry, filledText(entry.log, arguments), sourceLine};
        if (late) {
            late->push_back(std::move(logged));
        } else {
            writeLog(source, logged);
        }
    }
    return line;
}

}  // namespace zoka
