// Paths and catalogues as the commands about scripts take them.
#pragma once

#include <string>

#include "templates/TemplateData.h"
#include "tools/cli/Cli.h"
#include "util/OsFiles.h"

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

// Loads a catalogue, or tells what is wrong: a damaged one with its place, as a finding.
ExitStatus loadCatalogueOrComplain(CTemplateData& catalogue, const std::string& path);

}  // namespace zoka::cli
