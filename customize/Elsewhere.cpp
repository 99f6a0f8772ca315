#include "customize/Elsewhere.h"

#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {

bool sameFolder(const std::string& a, const std::string& b) {
    const auto plain = [](const std::string& path) {
        std::string full = osFiles().fullPath(path);
        while (full.size() > 1 && isSeparator(full.back())) {
            full.pop_back();
        }
        return full;
    };
    return a.empty() || b.empty() ? a.empty() && b.empty() : equalNoCase(plain(a), plain(b));
}

}  // namespace zoka
