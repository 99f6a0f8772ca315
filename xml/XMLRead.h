// Reading values of a type from a tree, and where its elements stand in their file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "xml/XMLNode.h"

namespace zoka {

// The attribute's value, or "" where there is none. Valid as long as the tree.
const char* xmlAttribute(const XMLNode& node, const char* name);
// The element's first text, or "".
const char* xmlFirstText(const XMLNode& node);
// All of the element's own texts and CDATA sections, joined; child elements and comments are passed over.
std::string xmlAllText(const XMLNode& node);

// "true" in any case; anything else, null too, is false.
bool xmlTrue(const char* value);
// The whole number that is all of the text, blanks around it aside; nothing for anything else and for null.
std::optional<int> xmlInteger(const char* value);

// A path that stands in a UTF-8 tree, as the disk takes it: the suite's paths are in the system's character set.
// Characters that it hasn't become '?', which is in no file's name.
std::string pathFromXml(std::string_view text);
// The other way.
std::string xmlFromPath(std::string_view path);

struct XMLPlace {
    int line = 0, column = 0;  // from 1, columns in characters; 0: unknown
};

// Lines and columns of what XMLNode::place gives, in one file.
class XMLPlaces {
public:
    XMLPlaces() = default;
    // `bytes` are those that the tree was made from.
    explicit XMLPlaces(std::string bytes);
    // Of the "<" that begins the tag.
    XMLPlace at(std::uint32_t place) const;
    // Of a byte of text().
    XMLPlace exactly(size_t offset) const;
    // What the parser read, where places count.
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
    size_t m_skip = 0;
    std::vector<std::uint32_t> m_lines;  // where each begins
    // How many characters stand in front of each block of the text, so that a column takes the same time in a long
    // line as in a short one.
    std::vector<std::uint32_t> m_characters;
};

}  // namespace zoka
