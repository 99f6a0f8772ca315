#include "xml/XMLWriter.h"

#include <algorithm>
#include <new>

#include "xml/XMLOutput.h"

namespace zoka {
namespace {

// With a tab more a level, the text of a very deep tree would be quadratic. So deeper lines are indented in
// full only while the tabs spent on them are few, and no further than this afterwards.
constexpr size_t kDeepLevel = 32;
constexpr size_t kMostDeepTabs = 16 * 1024 * 1024;

class Writer {
public:
    Writer(bool formatted, const char* encoding) : formatted_(formatted), encoding_(encoding) {}

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
                return out_.take();
            }
            item = item->next;
        }
    }

private:
    bool laysOut() const { return formatted_ && !plain_; }
    void indent() {
        if (!laysOut()) {
            return;
        }
        size_t tabs = depth_;
        if (tabs > kDeepLevel) {
            if (deepTabs_ + tabs > kMostDeepTabs) {
                tabs = kDeepLevel;
            }
            deepTabs_ += tabs;
        }
        out_.put('\t', tabs);
    }
    void endLine() {
        if (laysOut()) {
            out_.put('\n');
        }
    }

    void leaf(const XMLTextItem& item) {
        if (item.kind == XMLItemKind::Text) {
            return out_.putText(item.value);
        }
        indent();
        const XMLClearTags tags = clearTags(item.kind);
        out_.put(tags.open);
        out_.putRaw(item.value);
        out_.put(tags.close);
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
        out_.put('<');
        out_.putRaw(element.name);
        attributes(element, nullptr);
        if (element.isBare()) {
            out_.put("/>");
            return endLine();
        }
        out_.put('>');
        if (element.textUse != XMLTextUse::None && !plain_) {
            plain_ = &element;
        }
        endLine();
        ++depth_;
        if (element.lastItem()) {
            return;
        }
        out_.putText(element.textAlone());
        close(element);
    }

    void close(const XMLElement& element) {
        if (!element.name || element.isDeclaration) {
            return;
        }
        --depth_;
        indent();
        out_.put("</");
        out_.putRaw(element.name);
        out_.put('>');
        if (plain_ == &element) {
            plain_ = nullptr;
        }
        endLine();
    }

    // What a declaration holds stands behind it, on its own level.
    void declaration(const XMLElement& element) {
        out_.put("<?");
        out_.putRaw(element.name);
        attributes(element, encoding_);
        if (const char* data = element.textAlone()) {
            out_.put(' ');
            out_.putRaw(data);
        }
        out_.put("?>");
        endLine();
    }

    void attributes(const XMLElement& element, const char* encoding) {
        static const XMLName encodingName("encoding", nullptr);
        for (std::uint32_t i = 0; i < element.attributeCount; ++i) {
            const XMLAttribute& attribute = element.attributes[i];
            out_.put(' ');
            out_.putRaw(attribute.name);
            out_.put("=\"");
            if (encoding && encodingName.matches(attribute.key, attribute.name)) {
                out_.put(std::string_view(encoding));
            } else if (attribute.value) {
                out_.putValue(attribute.value);
            }
            out_.put('"');
        }
    }

    XMLOutput out_;
    const bool formatted_;
    const char* const encoding_;
    size_t depth_ = 0;
    size_t deepTabs_ = 0;                // spent on deep lines
    const XMLElement* plain_ = nullptr;  // the outermost open element that holds text: no white space inside
};

}  // namespace

XMLText writeXml(const XMLElement* top, bool formatted, const char* declaredEncoding) {
    try {
        return Writer(formatted, declaredEncoding).write(top);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace zoka
