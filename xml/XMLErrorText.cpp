#include "xml/XMLErrorText.h"

#include <algorithm>

#include "util/Doors.h"

namespace zoka {

XMLPlace xmlErrorPlace(const XMLResults& results) {
    if (results.outOfMemory || results.code == kXmlFileNotFound) {
        return {};
    }
    return {std::max(results.line, 1), std::max(results.column, 1)};
}

std::string xmlErrorMessage(const XMLResults& results, std::string_view root, std::string_view file) {
    if (results.outOfMemory) {
        return outOfMemoryText(file);
    }
    std::string text = XMLNode::errorText(results.code);
    if (results.code == kXmlFirstTagNotFound && !root.empty()) {
        text += ". First Tag should be '" + std::string(root) + "'.";
    }
    return text;
}

}  // namespace zoka
