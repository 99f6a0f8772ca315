#include "util/posix/NativePath.h"
#include "util/KeyedHash.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

bool existsNative(const std::string& path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

// The names in a folder with many of them. Reading it anew for each name that isn't there would take quadratic time
// where many files are made, so it's good for a while; names that were looked for and not found are among them,
// because whoever made a file in the meantime looked for it first.
struct LargeFolder {
    dev_t device = 0;
    ino_t number = 0;
    std::chrono::steady_clock::time_point goodUntil;
    KeyedMap<std::string, std::vector<std::string>> names;  // by their lower case
};

constexpr std::ptrdiff_t kLargeFrom = 16;  // entries; fewer are read anew each time
constexpr int kGoodFor = 20;               // times as long as reading the folder took
constexpr size_t kFoldersKept = 4;

std::mutex g_largeMutex;
std::vector<LargeFolder> g_large;  // the one used last at the end

// The names of `folder` that equal `name` but for case.
std::vector<std::string> readNames(const std::string& folder, std::string_view name,
                                   const struct stat& info) {
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::string> all, equal;
    const std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(folder.c_str()), closedir);
    while (const dirent* entry = dir ? readdir(dir.get()) : nullptr) {
        all.emplace_back(entry->d_name);
    }
    std::ranges::copy_if(all, std::back_inserter(equal),
                         [name](const std::string& one) { return equalNoCase(one, name); });
    if (std::ssize(all) >= kLargeFrom) {
        LargeFolder large{info.st_dev, info.st_ino, {}, {}};
        for (std::string& one : all) {
            std::string key = lowered(one);
            large.names[std::move(key)].push_back(std::move(one));
        }
        if (equal.empty()) {
            large.names[lowered(name)].emplace_back(name);
        }
        const auto end = std::chrono::steady_clock::now();
        large.goodUntil = end + (end - start) * kGoodFor;
        if (g_large.size() == kFoldersKept) {
            g_large.erase(g_large.begin());
        }
        g_large.push_back(std::move(large));
    }
    return equal;
}

// The entry of `folder`, which ends with a slash, that equals `name` but for case; empty when there is none. `info` is the
// folder's own.
std::string findNoCase(const std::string& folder, std::string_view name, const struct stat& info) {
    const std::scoped_lock lock(g_largeMutex);
    const auto known = std::ranges::find_if(g_large, [&info](const LargeFolder& one) {
        return one.device == info.st_dev && one.number == info.st_ino;
    });
    std::vector<std::string> equal;
    if (known != g_large.end() && std::chrono::steady_clock::now() < known->goodUntil) {
        std::vector<std::string>& names = known->names[lowered(name)];
        std::ranges::copy_if(names, std::back_inserter(equal),
                             [&folder](const std::string& one) { return existsNative(folder + one); });
        if (equal.empty() && std::ranges::find(names, name) == names.end()) {
            names.emplace_back(name);
        }
    } else {
        if (known != g_large.end()) {
            g_large.erase(known);
        }
        equal = readNames(folder, name, info);
    }
    return equal.empty() ? std::string() : std::ranges::min(equal);
}

}  // namespace

std::string withSlashes(std::string_view path) {
    if (path.size() > 1 && path[1] == ':') {
        path.remove_prefix(2);
    }
    std::string native(path);
    std::ranges::replace(native, '\\', '/');
    return native;
}

std::string toNativePath(std::string_view path) {
    std::string native = withSlashes(path);
    if (native.empty() || existsNative(native)) {
        return native;
    }
    std::string found;  // the part of the path that was found so far, up to and with its last slash
    size_t at = 0;
    struct stat info;
    // Mostly the folder is there as it is spelled, and only the file is yet to be made.
    const size_t slash = native.find_last_of('/', native.size() - 2);
    if (slash != native.npos && stat(native.substr(0, slash + 1).c_str(), &info) == 0) {
        found = native.substr(0, slash + 1);
        at = slash + 1;
        if (!native.ends_with('/')) {
            const std::string part = findNoCase(found, native.substr(at), info);
            return part.empty() ? native : found + part;
        }
    }
    while (at < native.size()) {
        const size_t end = std::min(native.find('/', at), native.size());
        std::string part = native.substr(at, end - at);
        if (!part.empty() && !existsNative(found + part)) {
            const std::string folder = found.empty() ? "./" : found;
            part = stat(folder.c_str(), &info) == 0 ? findNoCase(folder, part, info) : "";
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
