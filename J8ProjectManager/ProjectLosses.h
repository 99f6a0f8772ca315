// What a project file holds that writing the project would not.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "xml/XMLRead.h"

namespace zoka {

struct ProjectLoss {
    XMLPlace place;    // in the file
    std::uint32_t at;  // as XMLNode::place counts; of what is lost of an element itself, in its start tag
    std::string text;  // "<Light name="sun"> and what is in it"
};

// Compares the document of a project file (with its comments and instructions) with the Project element that
// would be written for what was loaded from it. Elements are found again by their names, not by their order; date
// and version, which every save sets, don't count, nor does the kind of a file reference, nor blanks around texts.
// `bytes` are those of the document. In their order; linear in both, but for sorting.
std::vector<ProjectLoss> lossesOf(const XMLNode& document, const XMLNode& written, const std::string& bytes);

// A text of a project in one short line for the user: blanks around it gone, others as spaces, what is too long cut.
std::string shortText(std::string text);

}  // namespace zoka
