// The XML layer and its peers behind one set of operations, each done the way its own users would.
#pragma once

#include <tinyxml2.h>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <pugixml.hpp>
#include <string>

#include "xml/XMLNode.h"

namespace zoka::bench {

// Each engine: a Document; parse a text into a new one, or a file; write it formatted, giving the size of the
// text, which is freed later (Text); children and attributes by name.

struct Zoka {
    static constexpr const char* name = "zoka";
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    using Text = std::unique_ptr<char, Free>;
    using Document = XMLNode;

    static Document parse(const std::string& text) { return XMLNode::parseBytes(text); }
    static Document parseFile(const char* path) { return XMLNode::parseFile(path); }
    static Text write(const Document& document) { return Text(document.toText(true)); }
    static size_t size(const Text& text) { return std::char_traits<char>::length(text.get()); }
    static XMLNode root(const Document& document, const char* tag) { return document.getChild(tag); }

    template <class Visit>
    static void children(const XMLNode& parent, const char* tag, Visit visit) {
        int position = 0;
        for (XMLNode child; !(child = parent.getChild(tag, &position)).isEmpty();) visit(child);
    }
    static const char* attribute(const XMLNode& node, const char* tag) { return node.getAttribute(tag); }
};

struct Pugi {
    static constexpr const char* name = "pugixml";
    using Document = std::unique_ptr<pugi::xml_document>;
    using Text = std::string;

    static Document parse(const std::string& text) {
        auto document = std::make_unique<pugi::xml_document>();
        return document->load_buffer(text.data(), text.size()) ? std::move(document) : nullptr;
    }
    static Document parseFile(const char* path) {
        auto document = std::make_unique<pugi::xml_document>();
        return document->load_file(path) ? std::move(document) : nullptr;
    }
    static Text write(const Document& document) {
        struct Writer : pugi::xml_writer {
            std::string text;
            void write(const void* data, size_t size) override {
                text.append(static_cast<const char*>(data), size);
            }
        } writer;
        document->save(writer, "\t", pugi::format_indent | pugi::format_no_declaration);
        return std::move(writer.text);
    }
    static size_t size(const Text& text) { return text.size(); }
    static pugi::xml_node root(const Document& document, const char* tag) { return document->child(tag); }

    template <class Visit>
    static void children(const pugi::xml_node& parent, const char* tag, Visit visit) {
        for (pugi::xml_node child = parent.child(tag); child; child = child.next_sibling(tag)) visit(child);
    }
    static const char* attribute(const pugi::xml_node& node, const char* tag) {
        return node.attribute(tag).value();
    }
};

struct Tiny {
    static constexpr const char* name = "tinyxml2";
    using Document = std::unique_ptr<tinyxml2::XMLDocument>;
    using Text = std::unique_ptr<tinyxml2::XMLPrinter>;

    static Document parse(const std::string& text) {
        auto document = std::make_unique<tinyxml2::XMLDocument>();
        return document->Parse(text.data(), text.size()) == tinyxml2::XML_SUCCESS ? std::move(document)
                                                                                  : nullptr;
    }
    static Document parseFile(const char* path) {
        auto document = std::make_unique<tinyxml2::XMLDocument>();
        return document->LoadFile(path) == tinyxml2::XML_SUCCESS ? std::move(document) : nullptr;
    }
    static Text write(const Document& document) {
        auto printer = std::make_unique<tinyxml2::XMLPrinter>();
        document->Print(printer.get());
        return printer;
    }
    static size_t size(const Text& text) { return static_cast<size_t>(text->CStrSize()) - 1; }
    static const tinyxml2::XMLElement* root(const Document& document, const char* tag) {
        return document->FirstChildElement(tag);
    }

    template <class Visit>
    static void children(const tinyxml2::XMLElement* parent, const char* tag, Visit visit) {
        for (auto* child = parent->FirstChildElement(tag); child; child = child->NextSiblingElement(tag))
            visit(child);
    }
    static const char* attribute(const tinyxml2::XMLElement* node, const char* tag) {
        return node->Attribute(tag);
    }
};

}  // namespace zoka::bench
