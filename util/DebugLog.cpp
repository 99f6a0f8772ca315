#include "util/DebugLog.h"

#include <cstdio>
#include <mutex>

#include "util/OsFiles.h"

namespace zoka {
namespace {

constexpr char kHeader[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
    "<!-- Debug output -->\n"
    "<DebugLog>\n";

std::FILE* g_stream = nullptr;
std::mutex g_lock;  // of the stream

const char* levelWord(int level) {
    return level == 1 ? "Error" : level == 2 ? "Warning" : "Note";
}

}  // namespace

std::string& debugLogFileName() {
    static std::string name = "debugLogOut.xml";
    return name;
}

void debugLog(const std::string& file, int line, const std::string& func, const std::string& message,
              int level) noexcept {
    try {
        const std::lock_guard locked(g_lock);
        if (!g_stream) {
            g_stream = osFiles().openStream(debugLogFileName(), "wb");
            if (!g_stream) {
                return;
            }
            std::fputs(kHeader, g_stream);
        }
        const std::string word = levelWord(level);
        const std::string entry = "<" + word + " file=\"" + file + "\" line=\"" + std::to_string(line) +
                                  "\" func=\"" + func + "\" >" + message + "</" + word + ">\n";
        std::fwrite(entry.data(), 1, entry.size(), g_stream);
        std::fflush(g_stream);
    } catch (...) {
        // Logging never disturbs whoever reports.
    }
}

void debugLog(const char* file, int line, const char* func, const char* message, int level) noexcept {
    const auto text = [](const char* t) { return t ? t : ""; };
    try {
        debugLog(std::string(text(file)), line, std::string(text(func)), std::string(text(message)), level);
    } catch (...) {
    }
}

void closeDebugLog() noexcept {
    const std::lock_guard locked(g_lock);
    if (g_stream) {
        std::fclose(g_stream);
        g_stream = nullptr;
    }
}

}  // namespace zoka
