// Short forms for the XML tests.
#pragma once

#include <string>

#include "tests/support/XmlCheck.h"

namespace zoka::test {

inline std::string orNull(const char* text) {
    return text ? text : "<null>";
}

// Sets the process's character set for its lifetime.
struct WithCharset {
    explicit WithCharset(XMLCharset charset) { setXmlCharset(charset); }
    ~WithCharset() { setXmlCharset(XMLCharset::Utf8); }
};

// "code line:column" of an error, "0" when the node was read.
inline std::string verdict(const XMLNode& node, const XMLResults& results) {
    if (node.isEmpty() != (results.code != 0)) {
        return "node and code don't agree";
    }

    if (results.code == 0) {
        return "0";
    }

    return std::to_string(results.code) + " " + std::to_string(results.line) + ":" +
           std::to_string(results.column);
}
inline std::string verdict(const char* text, const char* tag = nullptr) {
    XMLResults results;
    return verdict(XMLNode::parseText(text, tag, &results), results);
}

}  // namespace zoka::test
