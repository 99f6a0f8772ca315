#include "tests/support/XmlCheck.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

#include "xml/XMLNode.h"

namespace zoka::test {
namespace {

std::string quoted(const char* text) {
    return text ? "'" + std::string(text) + "'" : "null";
}

}  // namespace

std::string textOf(const XMLNode& node, bool formatted, int* length) {
    const std::unique_ptr<char, decltype(&std::free)> text(node.toText(formatted, length), std::free);
    return text ? text.get() : "<null>";
}

std::string dumpXml(const XMLNode& top) {
    struct Open {
        XMLNode node;
        std::vector<int> order;
        size_t next;
    };
    std::string out;
    std::vector<Open> stack;
    const auto enter = [&](const XMLNode& node) {
        out += (node.isDeclaration() ? "?" : "<") + quoted(node.getName());
        stack.push_back({node, node.order(), 0});
    };
    enter(top);
    while (!stack.empty()) {
        Open& open = stack.back();
        if (open.next == open.order.size()) {
            out += ">\n";
            stack.pop_back();
            continue;
        }
        const int entry = open.order[open.next++];
        const int index = entry / 4;
        switch (entry % 4) {
            case kXmlAttribute: {
                const XMLAttributeView attribute = open.node.getAttributeAt(index);
                out += " @" + quoted(attribute.name) + "=" + quoted(attribute.value);
                break;
            }
            case kXmlText:
                out += " T" + quoted(open.node.getText(index));
                break;
            case kXmlClear: {
                const XMLClearView clear = open.node.getClear(index);
                out += " C" + quoted(clear.openTag) + quoted(clear.value) + quoted(clear.closeTag);
                break;
            }
            default:
                enter(open.node.getChild(index));
        }
    }
    return out;
}

namespace {

std::string checkTree(const XMLNode& document) {
    const std::string before = dumpXml(document);
    for (const bool formatted : {true, false}) {
        int length = 0;
        const std::string text = textOf(document, formatted, &length);
        if (text.size() != static_cast<size_t>(length)) {
            return "toText gives a wrong length";
        }
        XMLResults results;
        const XMLNode again = XMLNode::parseText(text.c_str(), nullptr, &results);
        if (again.isEmpty()) {
            return "what was written is not read: " + std::string(XMLNode::errorText(results.code)) + "\n" +
                   text;
        }
        if (dumpXml(again) != before) {
            return "reads back differently:\n" + before + dumpXml(again);
        }
        if (textOf(again, formatted) != text) {
            return "writes differently the second time";
        }
    }
    return {};
}

}  // namespace

std::string checkXml(std::string_view bytes) {
    std::string wrong;
    for (const XMLCharset charset : {XMLCharset::Utf8, XMLCharset::Platform}) {
        setXmlCharset(charset);
        XMLResults results;
        const XMLNode document = XMLNode::parseBytes(bytes, nullptr, &results);
        if (document.isEmpty() != (results.code != kXmlNone)) {
            wrong = "a result and an error, or neither";
        }
        const auto lines =
            1 + std::count_if(bytes.begin(), bytes.end(), [](char c) { return c == '\n' || c == '\r'; });
        if (results.code < 0 || results.code > kXmlCannotConvert || results.line < 0 ||
            results.line > lines || results.column < 0 ||
            static_cast<size_t>(results.column) > bytes.size() + 1) {
            wrong = "an error outside of the text";
        }
        if (wrong.empty() && !document.isEmpty()) {
            wrong = checkTree(document);
        }
        if (!wrong.empty()) {
            break;
        }
    }
    setXmlCharset(XMLCharset::Utf8);
    return wrong;
}

}  // namespace zoka::test
