#include "util/posix/NativePath.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "util/PathRules.h"

namespace zoka {
namespace {

bool existsNative(const std::string& path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

// The entry of `folder` that equals `name` but for case; empty when there is none.
std::string findNoCase(const std::string& folder, std::string_view name) {
    const std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(folder.empty() ? "." : folder.c_str()), closedir);
    std::string best;
    while (const dirent* entry = dir ? readdir(dir.get()) : nullptr) {
        if (equalNoCase(entry->d_name, name) && (best.empty() || entry->d_name < best)) {
            best = entry->d_name;
        }
    }
    return best;
}

}  // namespace

std::string toNativePath(std::string_view path) {
    if (path.size() > 1 && path[1] == ':') {
        path.remove_prefix(2);
    }
    std::string native(path);
    std::ranges::replace(native, '\\', '/');
    if (native.empty() || existsNative(native)) {
        return native;
    }
    std::string found;  // the part of the path that was found so far, up to and with its last slash
    size_t at = 0;
    while (at < native.size()) {
        const size_t end = std::min(native.find('/', at), native.size());
        std::string part = native.substr(at, end - at);
        if (!part.empty() && !existsNative(found + part)) {
            part = findNoCase(found, part);
            if (part.empty()) {
                return found + native.substr(at);
            }
        }
        found += part;
        if (end < native.size()) {
            found += '/';
        }
        at = end + 1;
    }
    return found;
}

std::string fromNativePath(std::string_view nativePath) {
    std::string path(nativePath.starts_with('/') ? "C:" : "");
    path += nativePath;
    std::ranges::replace(path, '/', '\\');
    return path;
}

}  // namespace zoka
