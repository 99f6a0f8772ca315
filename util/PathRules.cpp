#include "util/PathRules.h"

#include <algorithm>
#include <vector>

#include "util/Fold.h"

namespace zoka {
namespace {

bool hasDrive(std::string_view path) {
    return path.size() > 1 && path[1] == ':';
}

// Where the last part begins: after the last separator, or after the drive.
size_t nameStart(std::string_view path) {
    const size_t slash = path.find_last_of("\\/");
    return slash != std::string_view::npos ? slash + 1 : hasDrive(path) ? 2 : 0;
}

}  // namespace

std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (path.empty() || !isSeparator(path.back())) {
        path += '\\';
    }
    return path.append(name);
}

PathParts splitPath(std::string_view path) {
    PathParts parts;
    const size_t name = nameStart(path);
    const size_t drive = hasDrive(path) ? 2 : 0;
    parts.drive = path.substr(0, drive);
    parts.folder = path.substr(drive, name - drive);
    const std::string_view file = path.substr(name);
    const size_t dot = file == "." || file == ".." ? std::string_view::npos : file.rfind('.');
    parts.name = file.substr(0, dot);
    parts.ext = dot == std::string_view::npos ? std::string_view() : file.substr(dot);
    return parts;
}

std::string_view fileNameOf(std::string_view path) {
    return path.substr(nameStart(path));
}

std::string_view folderOf(std::string_view path) {
    size_t end = nameStart(path);
    const size_t root = hasDrive(path) ? 3 : 1;
    if (end > root && isSeparator(path[end - 1])) {
        --end;
    }
    return path.substr(0, end);
}

bool isAbsolute(std::string_view path) {
    return (path.size() > 2 && path[1] == ':' && isSeparator(path[2])) ||
           (path.size() > 1 && isSeparator(path[0]) && isSeparator(path[1]));
}

std::string normalizePath(std::string_view path) {
    size_t at = hasDrive(path) ? 2 : 0;
    std::string result(path.substr(0, at));
    const bool rooted = at < path.size() && isSeparator(path[at]);
    if (rooted) {
        result += at == 0 && path.size() > 1 && isSeparator(path[1]) ? "\\\\" : "\\";
    }
    std::vector<std::string_view> parts;
    while (at < path.size()) {
        const size_t end = std::min(path.find_first_of("\\/", at), path.size());
        const std::string_view part = path.substr(at, end - at);
        if (part == ".." && !parts.empty() && parts.back() != "..") {
            parts.pop_back();
        } else if (part == "..") {
            if (!rooted) {
                parts.push_back(part);
            }
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        at = end + 1;
    }
    for (size_t i = 0; i < parts.size(); ++i) {
        result.append(i ? "\\" : "").append(parts[i]);
    }
    if (!parts.empty() && isSeparator(path.back())) {
        result += '\\';
    }
    return result;
}

bool equalNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return foldCase(x) == foldCase(y); });
}

bool lessNoCase(std::string_view a, std::string_view b) {
    const auto byFold = [](char x, char y) {
        return static_cast<unsigned char>(foldCase(x)) <=> static_cast<unsigned char>(foldCase(y));
    };
    const auto order = std::lexicographical_compare_three_way(a.begin(), a.end(), b.begin(), b.end(), byFold);
    return order != 0 ? order < 0 : a < b;
}

bool matchesWildcard(std::string_view pattern, std::string_view name) {
    if (pattern == "*.*") {
        return true;
    }
    // Greedy with one way back: after a mismatch the last star takes one character more.
    size_t p = 0, n = 0;
    size_t star = std::string_view::npos, starName = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            starName = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || foldCase(pattern[p]) == foldCase(name[n]))) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++starName;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace zoka
