// Paths and catalogues as the commands about scripts take them.
#pragma once

#include <string>

#include "templates/TemplateData.h"
#include "tools/cli/Cli.h"

namespace zoka::cli {

// An argument as the suite writes paths: absolute, with backslashes alone and none at its end. What is below it, and
// what stands beside a file, is from then on shown as the user wrote it.
std::string suitePath(const std::string& argument);

// A path as the user would write it: below an argument as that was given ("game/fog.kez" for "game"), so that editors
// and other programs can use it. Others stay as they are.
std::string givenPath(const std::string& path);
// The same of all paths in a text for the user.
std::string withGivenPaths(const std::string& text);

// Loads a catalogue, or tells what is wrong: a damaged one with its place, as a finding.
ExitStatus loadCatalogueOrComplain(CTemplateData& catalogue, const std::string& path);

}  // namespace zoka::cli
