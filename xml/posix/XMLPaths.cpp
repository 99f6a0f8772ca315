#include "xml/XMLRead.h"

namespace zoka {

// Paths are UTF-8 here, as texts are.
std::string pathFromXml(std::string_view text) {
    return std::string(text);
}

std::string xmlFromPath(std::string_view path) {
    return std::string(path);
}

}  // namespace zoka
