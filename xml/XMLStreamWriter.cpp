#include "xml/XMLStreamWriter.h"

#include <vector>

#include "xml/XMLConvert.h"
#include "xml/XMLLayout.h"

namespace zoka {
namespace {

// As a tree would hold it, with the padding of a tree's texts.
std::string paddedText(const std::string& text) {
    std::string allowed = allowedXmlText(text.c_str(), XMLCharset::Utf8);
    allowed.append(kXmlPadding, '\0');
    return allowed;
}

}  // namespace

class XMLStreamWriter::Lines : XMLLayout {
public:
    Lines() : XMLLayout(true) { m_out.put(kXmlUtf8Head); }

    void open(std::string_view tag) {
        endStartTag();
        startTag(tag);
        m_tags.push_back(tag);
        ++m_depth;
        m_inStartTag = true;
    }
    void attribute(std::string_view name, const std::string& value) {
        m_out.put(' ');
        m_out.put(name);
        m_out.put("=\"");
        if (!m_out.putPlainValue(value)) {
            m_out.putValue(paddedText(value).c_str());
        }
        m_out.put('"');
    }
    void leaf(std::string_view tag, const std::string& text) {
        endStartTag();
        startTag(tag);
        if (!text.c_str()[0]) {
            m_out.put("/>");
        } else {
            m_out.put('>');
            m_out.putText(paddedText(text).c_str());
            endTag(tag);
        }
        endLine();
    }
    void close() {
        --m_depth;
        if (m_inStartTag) {
            m_out.put("/>");
            m_inStartTag = false;
        } else {
            indent();
            endTag(m_tags.back());
        }
        endLine();
        m_tags.pop_back();
    }
    XMLText take() { return m_out.take(); }

private:
    void startTag(std::string_view tag) {
        indent();
        m_out.put('<');
        m_out.put(tag);
    }
    void endTag(std::string_view tag) {
        m_out.put("</");
        m_out.put(tag);
        m_out.put('>');
    }
    void endStartTag() {
        if (m_inStartTag) {
            m_out.put('>');
            endLine();
            m_inStartTag = false;
        }
    }

    std::vector<std::string_view> m_tags;  // of the open elements
    bool m_inStartTag = false;             // nothing is in the innermost one yet
};

XMLStreamWriter::XMLStreamWriter() : m_lines(std::make_unique<Lines>()) {}
XMLStreamWriter::~XMLStreamWriter() = default;

void XMLStreamWriter::open(std::string_view tag) {
    m_lines->open(tag);
}

void XMLStreamWriter::attribute(std::string_view name, const std::string& value) {
    m_lines->attribute(name, value);
}

void XMLStreamWriter::leaf(std::string_view tag, const std::string& text) {
    m_lines->leaf(tag, text);
}

void XMLStreamWriter::close() {
    m_lines->close();
}

XMLText XMLStreamWriter::take() {
    return m_lines->take();
}

}  // namespace zoka
