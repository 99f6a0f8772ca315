#include "util/posix/NativePath.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "util/KeyedHash.h"
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
    std::string path;  // as it was named when it was read, with a slash at its end
    dev_t device = 0;
    ino_t number = 0;
    std::chrono::steady_clock::time_point goodUntil;
    KeyedMultisetNoCase<std::string> names;
};

constexpr std::ptrdiff_t kLargeFrom = 16;  // entries; of fewer the names are read anew each time
constexpr int kGoodFor = 50;               // times as long as reading the folder took
constexpr std::chrono::milliseconds kLongest{200};
constexpr size_t kFoldersKept = 4;

std::mutex g_largeMutex;
std::vector<LargeFolder> g_large;  // the one used last at the end

// The names of `folder` that equal `name` but for case. All are kept for the next question when there are `keptFrom`.
std::vector<std::string> readNames(const std::string& folder, std::string_view name, const struct stat& info,
                                   std::ptrdiff_t keptFrom) {
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::string> all, equal;
    const std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(folder.c_str()), closedir);
    while (const dirent* entry = dir ? readdir(dir.get()) : nullptr) {
        all.emplace_back(entry->d_name);
    }
    std::ranges::copy_if(all, std::back_inserter(equal),
                         [name](const std::string& one) { return equalNoCase(one, name); });
    if (std::ssize(all) >= keptFrom) {
        LargeFolder large{
            folder, info.st_dev, info.st_ino, {}, KeyedMultisetNoCase<std::string>(2 * all.size())};
        for (std::string& one : all) {
            large.names.insert(std::move(one));
        }
        if (equal.empty()) {
            large.names.emplace(name);
        }
        const auto end = std::chrono::steady_clock::now();
        large.goodUntil =
            end + std::min<std::chrono::steady_clock::duration>((end - start) * kGoodFor, kLongest);
        std::erase_if(g_large,
                      [&folder](const LargeFolder& one) { return one.path == folder; });  // made anew since
        if (g_large.size() == kFoldersKept) {
            g_large.erase(g_large.begin());
        }
        g_large.push_back(std::move(large));
    }
    return equal;
}

// The entry of `folder`, which ends with a slash, that equals `name` but for case; empty when there is none. `info` is
// the folder's own.
std::string findNoCase(const std::string& folder, std::string_view name, const struct stat& info,
                       std::ptrdiff_t keptFrom) {
    const std::scoped_lock lock(g_largeMutex);
    const auto known = std::ranges::find_if(g_large, [&info](const LargeFolder& one) {
        return one.device == info.st_dev && one.number == info.st_ino;
    });
    std::vector<std::string> equal;
    if (known != g_large.end() && std::chrono::steady_clock::now() < known->goodUntil) {
        const auto [first, last] = known->names.equal_range(name);
        std::copy_if(first, last, std::back_inserter(equal),
                     [&folder](const std::string& one) { return existsNative(folder + one); });
        if (equal.empty() && std::find(first, last, name) == last) {
            known->names.emplace(name);
        }
    } else {
        if (known != g_large.end()) {
            g_large.erase(known);
        }
        equal = readNames(folder, name, info, keptFrom);
    }
    return equal.empty() ? std::string() : std::ranges::min(equal);
}

FoundPath findPath(std::string_view path, std::ptrdiff_t keptFrom) {
    std::string native = withSlashes(path);
    if (native.empty() || existsNative(native)) {
        const bool exists = !native.empty();
        return {std::move(native), exists};
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
            const std::string part = findNoCase(found, native.substr(at), info, keptFrom);
            return part.empty() ? FoundPath{native, false} : FoundPath{found + part, true};
        }
    }
    while (at < native.size()) {
        const size_t end = std::min(native.find('/', at), native.size());
        std::string part = native.substr(at, end - at);
        if (!part.empty() && !existsNative(found + part)) {
            const std::string folder = found.empty() ? "./" : found;
            part = stat(folder.c_str(), &info) == 0 ? findNoCase(folder, part, info, keptFrom) : "";
            if (part.empty()) {
                return {found + native.substr(at), false};
            }
        }
        found += part;
        if (end < native.size()) {
            found += '/';
        }
        at = end + 1;
    }
    return {found, true};
}

// Whether its folder was read so shortly ago that nothing of that name, however spelled, is there, without a look at
// the disk. The name is taken for one that will be there from now on.
bool isKnownNew(const std::string& native) {
    const size_t name = native.rfind('/') + 1;
    const std::scoped_lock lock(g_largeMutex);
    const auto known =
        std::ranges::find(g_large, std::string_view(native).substr(0, name), &LargeFolder::path);
    if (!native.starts_with('/') || name == native.size() || known == g_large.end() ||
        std::chrono::steady_clock::now() >= known->goodUntil ||
        known->names.contains(std::string_view(native).substr(name))) {
        return false;
    }
    known->names.insert(native.substr(name));
    return true;
}

}  // namespace

void forgetFolders() {
    const std::scoped_lock lock(g_largeMutex);
    g_large = {};
}

std::string withSlashes(std::string_view path) {
    if (path.size() > 1 && path[1] == ':') {
        path.remove_prefix(2);
    }
    std::string native(path);
    std::ranges::replace(native, '\\', '/');
    return native;
}

std::string toNativePath(std::string_view path) {
    return findPath(path, kLargeFrom).native;
}

FoundPath pathForNew(std::string_view path) {
    std::string native = withSlashes(path);
    return isKnownNew(native) ? FoundPath{std::move(native), false} : findPath(path, 0);
}

std::string pathForOwn(std::string_view path) {
    return toNativePath(path.substr(0, path.size() - fileNameOf(path).size())) +
           std::string(fileNameOf(path));
}

std::string fromNativePath(std::string_view nativePath) {
    std::string path(nativePath.starts_with('/') ? "C:" : "");
    path += nativePath;
    std::ranges::replace(path, '/', '\\');
    return path;
}

}  // namespace zoka
