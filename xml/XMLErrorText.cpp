#include "xml/XMLErrorText.h"

#include <algorithm>

namespace zoka {

XMLPlace xmlErrorPlace(const XMLResults& results) {
    if (results.outOfMemory || results.code == kXmlFileNotFound) {
        return {};
    }
    return {std::max(results.line, 1), std::max(results.column, 1)};
}

std::string xmlErrorMessage(const XMLResults& results, std::string_view root) {
    std::string text = XMLNode::errorText(results.code);
    if (results.code == kXmlFirstTagNotFound) {
        text += ". First Tag should be '" + std::string(root) + "'.";
    }
    return text;
}

}  // namespace zoka
