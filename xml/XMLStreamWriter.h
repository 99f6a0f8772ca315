// An XML file's bytes written element by element: for what is written whole and looked at by nobody as a tree, which
// would take more time and memory than the text.
//
//     XMLStreamWriter file;
//     file.open("Project");
//     file.attribute("name", name);
//     file.leaf("Doc", text);
//     file.close();
//     const XMLText text = file.take();
//
// The bytes are those of XMLNode::toFileBytes for the same tree in UTF-8, formatted, and what is said there of names
// and of characters that XML can't hold counts here too. One object is used by one thread at a time.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "xml/XMLNode.h"

namespace zoka {

// All of these throw std::bad_alloc.
class XMLStreamWriter {
public:
    XMLStreamWriter();
    ~XMLStreamWriter();
    XMLStreamWriter(const XMLStreamWriter&) = delete;
    XMLStreamWriter& operator=(const XMLStreamWriter&) = delete;

    // A new element in the one that is open. The tag's characters must stay until it is closed.
    void open(std::string_view tag);
    // Of the element that was opened last, before anything is put into it. `value` counts up to its first 0.
    void attribute(std::string_view name, const std::string& value);
    // An element that holds this text alone.
    void leaf(std::string_view tag, const std::string& text);
    void close();
    // The bytes; once, with all elements closed. The caller owns them.
    XMLText take();

private:
    class Lines;
    std::unique_ptr<Lines> m_lines;
};

}  // namespace zoka
