// Rules of the suite's paths, as text alone: 8-bit, backslashes, drive letters. A slash is
// read as a separator too.
#pragma once

#include <string>
#include <string_view>

namespace zoka {

inline bool isSeparator(char c) {
    return c == '\\' || c == '/';
}

// `folder`, then "\" unless it ends with a separator, then `name`.
std::string joinPath(std::string_view folder, std::string_view name);

// The four parts of a path; put together again they give the path.
struct PathParts {
    std::string_view drive;   // "C:", or empty
    std::string_view folder;  // with its last separator, or empty
    std::string_view name;    // without extension; "." and ".." are names
    std::string_view ext;     // with its dot, or empty
};
PathParts splitPath(std::string_view path);

// Name with extension, and everything before its separator ("a\b.c": "a", "\b.c": "\",
// "C:\b.c": "C:\", "b.c": "").
std::string_view fileNameOf(std::string_view path);
std::string_view folderOf(std::string_view path);

// True for "x:\..." and for "\\server\...": what means the same from every current folder and drive.
bool isAbsolute(std::string_view path);

// Backslashes alone, "." and ".." resolved by text (".." never leaves the root), doubled separators made one
// except the two of a server name. A separator at the end stays.
std::string normalizePath(std::string_view path);

// Comparison without regard to case, of the letters A-Z alone, so that no locale
// changes what names are equal.
bool equalNoCase(std::string_view a, std::string_view b);
// Orders without regard to case; names that differ in case alone by their bytes.
bool lessNoCase(std::string_view a, std::string_view b);

// '*' any run of characters, '?' any one; case doesn't count; "*.*" matches names without a dot too.
bool matchesWildcard(std::string_view pattern, std::string_view name);
inline bool hasWildcard(std::string_view text) {
    return text.find_first_of("*?") != std::string_view::npos;
}

}  // namespace zoka
