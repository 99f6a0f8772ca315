#include "xml/XMLWriter.h"

#include <algorithm>
#include <new>

#include "xml/XMLLayout.h"

namespace zoka {
namespace {

class Writer : XMLLayout {
public:
    Writer(bool formatted, std::string_view head, const char* encoding)
        : XMLLayout(formatted), m_formatted(formatted), m_encoding(encoding) {
        m_out.put(head);
    }

    XMLText write(const XMLElement* top) {
        const XMLItem* item = top;
        const XMLElement* parent = nullptr;  // of `item`, once below the top
        for (;;) {
            if (item->kind != XMLItemKind::Element) {
                leaf(static_cast<const XMLTextItem&>(*item));
            } else {
                const auto* element = static_cast<const XMLElement*>(item);
                open(*element);
                if (const XMLItem* first = element->firstItem()) {
                    parent = element;
                    item = first;
                    continue;
                }
            }
            while (item != top && item == parent->lastItem()) {
                close(*parent);
                item = parent;
                parent = parent->parent;
            }
            if (item == top) {
                return m_out.take();
            }
            item = item->next;
        }
    }

private:
    void leaf(const XMLTextItem& item) {
        if (item.kind == XMLItemKind::Text) {
            return m_out.putText(item.value);
        }
        indent();
        const XMLClearTags tags = clearTags(item.kind);
        m_out.put(tags.open);
        m_out.putRaw(item.value);
        m_out.put(tags.close);
        endLine();
    }

    // Everything of the element that stands in front of its items; without any, the whole element.
    void open(const XMLElement& element) {
        if (!element.name) {
            return;
        }
        indent();
        if (element.isDeclaration) {
            return declaration(element);
        }
        m_out.put('<');
        m_out.putRaw(element.name);
        attributes(element, nullptr);
        if (element.isBare()) {
            m_out.put("/>");
            return endLine();
        }
        m_out.put('>');
        if (element.textUse != XMLTextUse::None && !m_plain) {
            m_plain = &element;
            m_laysOut = false;
        }
        endLine();
        ++m_depth;
        if (element.lastItem()) {
            return;
        }
        m_out.putText(element.textAlone());
        close(element);
    }

    void close(const XMLElement& element) {
        if (!element.name || element.isDeclaration) {
            return;
        }
        --m_depth;
        indent();
        m_out.put("</");
        m_out.putRaw(element.name);
        m_out.put('>');
        if (m_plain == &element) {
            m_plain = nullptr;
            m_laysOut = m_formatted;
        }
        endLine();
    }

    // What a declaration holds stands behind it, on its own level.
    void declaration(const XMLElement& element) {
        m_out.put("<?");
        m_out.putRaw(element.name);
        attributes(element, m_encoding);
        if (const char* data = element.textAlone()) {
            m_out.put(' ');
            m_out.putRaw(data);
        }
        m_out.put("?>");
        endLine();
    }

    void attributes(const XMLElement& element, const char* encoding) {
        static const XMLName encodingName("encoding", nullptr);
        for (std::uint32_t i = 0; i < element.attributeCount; ++i) {
            const XMLAttribute& attribute = element.attributes[i];
            m_out.put(' ');
            m_out.putRaw(attribute.name());
            m_out.put("=\"");
            if (encoding && attribute.isNamed(encodingName)) {
                m_out.put(std::string_view(encoding));
            } else if (const char* const value = attribute.value()) {
                m_out.putValue(value);
            }
            m_out.put('"');
        }
    }

    const bool m_formatted;
    const char* const m_encoding;
    const XMLElement* m_plain = nullptr;  // the outermost open element that holds text: no white space inside
};

}  // namespace

XMLText writeXml(const XMLElement* top, bool formatted, std::string_view head, const char* declaredEncoding) {
    try {
        return Writer(formatted, head, declaredEncoding).write(top);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

XMLText joinXml(std::string_view head, std::string_view body) {
    try {
        XMLOutput out;
        out.put(head);
        out.put(body);
        return out.take();
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace zoka
