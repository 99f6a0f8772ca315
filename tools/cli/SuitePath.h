// Paths and catalogues as the commands about scripts take them.
#pragma once

#include <algorithm>
#include <string>

#include "templates/TemplateData.h"
#include "tools/cli/Cli.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka::cli {

// An argument as the suite writes paths: absolute, with backslashes alone and none at its end.
inline std::string suitePath(const std::string& argument) {
    std::string path = osFiles().fullPath(argument);
    for (char& c : path) {
        if (c == '/') {
            c = '\\';
        }
    }

    while (path.size() > 3 && path.ends_with('\\')) {
        path.pop_back();
    }

    return path;
}

// A path below `folder`, which is suitePath(given), as the user wrote the folder: "game/fog.kez" for "game". Others
// stay as they are.
inline std::string asGiven(const std::string& path, const std::string& folder, std::string given) {
    if (path.size() <= folder.size() || !equalNoCase(path.substr(0, folder.size()), folder) ||
        path[folder.size()] != '\\') {
        return path;
    }
    while (given.size() > 1 && isSeparator(given.back())) {
        given.pop_back();
    }
    std::string rest = path.substr(folder.size() + 1);
#ifdef _WIN32
    constexpr const char* kSeparator = "\\";
#else
    constexpr const char* kSeparator = "/";
    std::ranges::replace(rest, '\\', '/');
#endif
    return given == "." ? rest : given == "/" ? given + rest : given + kSeparator + rest;
}

// Loads a catalogue, or tells what is wrong: a damaged one with its place, as a finding.
ExitStatus loadCatalogueOrComplain(CTemplateData& catalogue, const std::string& path);

}  // namespace zoka::cli
