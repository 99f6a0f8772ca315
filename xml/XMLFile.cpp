// Trees from and to texts and files.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <string>

#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"
#include "util/UserPrompt.h"
#include "xml/XMLConvert.h"
#include "xml/XMLLayout.h"
#include "xml/XMLNode.h"
#include "xml/XMLParser.h"
#include "xml/XMLPosition.h"
#include "xml/XMLWriter.h"

using zoka::XMLDocument;
using zoka::XMLElement;

namespace zoka {
namespace {

constexpr int kFatalStatus = 255;
constexpr size_t kReadBlock = 64 * 1024;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Reads the rest of the file into the document's text; gives its size. False when reading fails.
bool readAll(std::FILE* file, XMLDocument& document, char*& text, size_t& size) {
    // The size asked for is a good guess only: a file may grow while it is read.
    size_t room = kReadBlock;
    if (std::fseek(file, 0, SEEK_END) == 0) {
        if (const long end = std::ftell(file); end > 0) {
            room = static_cast<size_t>(end) + 1;
        }
        std::rewind(file);
    }
    text = document.newText(room);
    size = 0;
    for (;;) {
        size += std::fread(text + size, 1, room - size, file);
        if (size < room) {
            break;
        }
        if (room > SIZE_MAX / 2) {
            throw std::bad_alloc();
        }
        room *= 2;
        text = document.growText(size, room);
    }
    if (std::ferror(file)) {
        return false;
    }
    std::memset(text + size, 0, kXmlPadding);
    return true;
}

// Whether a file of that name could be written. Called after writing failed, to tell why.
bool canOpenForWriting(const char* path) {
    OsFiles& files = osFiles();
    if (files.exists(path)) {
        return files.openForWriting(path, OsOpen::Existing) != nullptr;
    }
    if (!files.openForWriting(path, OsOpen::New)) {
        return false;
    }
    files.deleteFile(path);
    return true;
}

// The declaration that a tree brings with it, or null.
const XMLElement* ownDeclaration(const XMLElement* top) {
    if (top->isDeclaration) {
        return top;
    }
    const XMLItem* first = top->name ? nullptr : top->firstItem();
    if (!first || first->kind != XMLItemKind::Element) {
        return nullptr;
    }
    const auto* element = static_cast<const XMLElement*>(first);
    return element->isDeclaration && XMLName("xml", nullptr).matches(element->key, element->name) ? element
                                                                                                  : nullptr;
}

bool namesUtf8(const char* encoding) {
    return equalNoCase(encoding, "utf-8") || equalNoCase(encoding, "utf8");
}
bool namesUtf(const char* encoding) {
    return equalNoCase(std::string_view(encoding).substr(0, 3), "utf");
}

// What is parsed into a document of its own.
class Parsing {
public:
    Parsing(const char* tag, XMLResults& results, const XMLProgress& watch, const XMLTakeElement& take = {})
        : m_tag(tag), m_results(results), m_watch(watch), m_take(take) {}

    // A text in the document's character set, of `size` bytes at `text` in its buffer, behind which stand a 0 and
    // the padding. Null on an error.
    XMLElement* text(XMLDocument& document, char* text, size_t size) {
        XMLElement* root = document.newElement();
        if (m_take) {
            m_take(nullptr);
        }
        XMLElement* top = parseXml(document, root, text, size, m_tag, m_results, m_watch, m_take);
        return top && !m_tag ? root : top;
    }
    // The same with the bytes of a file.
    XMLElement* fileBytes(XMLDocument& document, char* bytes, size_t size, bool notUtf8) {
        const XMLDecoded decoded = decodeXmlFile({bytes, size}, document.charset, notUtf8);
        if (!decoded.ok) {
            const XMLPosition position(decoded.text.c_str(), document.charset == XMLCharset::Utf8,
                                       document.leads);
            const XMLPosition::Place place = position.at(decoded.text.c_str() + decoded.text.size());
            m_results = {kXmlCannotConvert, place.line, place.column};
            return nullptr;
        }
        if (!decoded.converted) {
            return text(document, bytes + decoded.skip, size - decoded.skip);
        }
        char* own = document.newText(decoded.text.size());
        std::memcpy(own, decoded.text.data(), decoded.text.size());
        return text(document, own, decoded.text.size());
    }

private:
    const char* m_tag;
    XMLResults& m_results;
    const XMLProgress& m_watch;
    const XMLTakeElement m_take;
};

// The node, whose document is the first handle's to free.
XMLElement* handedOut(std::unique_ptr<XMLDocument>& document, XMLElement* node) {
    if (node) {
        (void)document.release();
    }
    return node;
}

// Parses what `fill(document, bytes, size)` puts into a document's text, in the set `charset`; without one in that
// of the bytes, UTF-8 or the platform's. Whether they are UTF-8 is seen by parsing them: only when that fails are
// they looked through, got again and taken for what they are then.
template <class Fill>
XMLElement* parseFilled(const char* tag, XMLResults& results, const XMLProgress& watch,
                        std::optional<XMLCharset> charset, const Fill& fill,
                        const XMLTakeElement& take = {}) {
    Parsing parsing(tag, results, watch, take);
    char* bytes = nullptr;
    size_t size = 0;
    const auto filled = [&](XMLCharset set) {
        auto document = std::make_unique<XMLDocument>(set);
        if (!fill(*document, bytes, size)) {
            results = {kXmlFileNotFound};
            document.reset();
        }
        return document;
    };
    XMLCharset set = charset.value_or(XMLCharset::Utf8);
    std::unique_ptr<XMLDocument> document = filled(set);
    if (document && !charset && !guessUtf8({bytes, size})) {
        set = XMLCharset::Platform;
        document = filled(set);
    }
    if (!document) {
        return nullptr;
    }
    XMLElement* const node = parsing.fileBytes(*document, bytes, size, false);
    const bool asked = results.code == kXmlNone || results.code == kXmlFirstTagNotFound;
    if (node || asked || set == XMLCharset::Platform || !xmlCharsetGuessing()) {
        return handedOut(document, node);
    }
    const XMLResults first = results;
    document = filled(charset.value_or(XMLCharset::Platform));
    if (!document) {
        return nullptr;
    }
    if (firstNotUtf8({bytes, size}) == std::string_view::npos) {
        results = first;
        return nullptr;
    }
    results = {};
    return handedOut(document, parsing.fileBytes(*document, bytes, size, true));
}

XMLElement* parseStream(const char* path, const char* tag, XMLResults& results, const XMLProgress& watch,
                        std::optional<XMLCharset> charset, const XMLTakeElement& take = {}) {
    const File file(path ? osFiles().openStream(path, "rb") : nullptr);
    if (!file) {
        results = {kXmlFileNotFound};
        return nullptr;
    }
    const auto fill = [&](XMLDocument& document, char*& bytes, size_t& size) {
        return readAll(file.get(), document, bytes, size);
    };
    return parseFilled(tag, results, watch, charset, fill, take);
}

// Runs `parse(results)`, which may run out of memory.
template <class Parse>
XMLElement* parsed(XMLResults* results, Parse parse) {
    XMLResults own;
    XMLResults& found = results ? *results : own;
    found = {};
    try {
        return parse(found);
    } catch (const std::bad_alloc&) {
        found = {kXmlNoData, 0, 0, true};
        return nullptr;
    }
}

}  // namespace
}  // namespace zoka

XMLNode XMLNode::parseFile(const char* path, const char* tag, XMLResults* results, const XMLProgress& watch,
                           XMLCharset charset) {
    return XMLNode(zoka::parsed(
        results, [&](XMLResults& found) { return zoka::parseStream(path, tag, found, watch, charset); }));
}

XMLNode XMLNode::parseFileTaking(const char* path, const char* tag, XMLResults* results, const XMLTake& take,
                                 XMLCharset charset) {
    const auto takeElement = [&](XMLElement* element) {
        if (!element) {
            return take({});
        }
        // The document belongs to the parser still: the last handle must not free it.
        size_t& handles = zoka::xmlHandles(element);
        ++handles;
        const bool taken = take(XMLNode(element));
        --handles;
        return taken;
    };
    return XMLNode(zoka::parsed(results, [&](XMLResults& found) {
        return zoka::parseStream(path, tag, found, {}, charset, takeElement);
    }));
}

XMLNode XMLNode::parseFileInItsSet(const char* path, const char* tag, XMLResults* results,
                                   const XMLProgress& watch) {
    return XMLNode(zoka::parsed(results, [&](XMLResults& found) {
        return zoka::parseStream(path, tag, found, watch, std::nullopt);
    }));
}

XMLNode XMLNode::parseBytes(std::string_view bytes, const char* tag, XMLResults* results,
                            const XMLProgress& watch, XMLCharset charset) {
    const auto fill = [&](XMLDocument& document, char*& text, size_t& size) {
        text = document.newText(bytes.size());
        size = bytes.size();
        if (!bytes.empty()) {
            std::memcpy(text, bytes.data(), bytes.size());
        }
        return true;
    };
    return XMLNode(zoka::parsed(
        results, [&](XMLResults& found) { return zoka::parseFilled(tag, found, watch, charset, fill); }));
}

XMLNode XMLNode::parseText(const char* text, const char* tag, XMLResults* results, XMLCharset charset) {
    return XMLNode(zoka::parsed(results, [&](XMLResults& found) {
        std::string_view given = text ? text : "";
        if (zoka::xmlCharsetGuessing() && given.starts_with(zoka::kUtf8Mark)) {
            given.remove_prefix(zoka::kUtf8Mark.size());
        }
        auto document = std::make_unique<XMLDocument>(charset);
        char* own = document->newText(given.size());
        if (!given.empty()) {
            std::memcpy(own, given.data(), given.size());
        }
        XMLElement* node = zoka::Parsing(tag, found, {}).text(*document, own, given.size());
        return zoka::handedOut(document, node);
    }));
}

XMLNode XMLNode::loadFileOrExit(const char* path, const char* tag) {
    if (!path) {
        path = "";
    }
    XMLResults results;
    XMLNode node = parseFileInItsSet(path, tag, &results);
    if (!node.isEmpty()) {
        zoka::setXmlCharset(node.charset());
    }
    if (results.code != kXmlNone) {
        std::string text = "XML Parsing error inside file '" + std::string(path) + "'.\n" +
                           errorText(results.code) + "\nAt line " + std::to_string(results.line) +
                           ", column " + std::to_string(results.column) + ".\n";
        if (results.code == kXmlFirstTagNotFound) {
            text += "First Tag should be '" + std::string(tag) + "'.\n";
        }
        zoka::userPrompt().fatalStop(text, "XML Parsing error", zoka::kFatalStatus);
    }
    return node;
}

zoka::XMLText XMLNode::toFileBytes(const char* encoding, bool formatted) const {
    if (!m_element) {
        return {};
    }
    const bool utf8 = charset() == XMLCharset::Utf8;
    std::string head;
    // Whether the file's bytes are UTF-8, whatever the texts in memory are.
    bool writesUtf8 = true;
    // What takes the place of the encoding that the tree's own declaration names.
    const char* instead = nullptr;
    if (const XMLElement* declaration = zoka::ownDeclaration(m_element)) {
        const char* declared = XMLNode(const_cast<XMLElement*>(declaration)).getAttribute("encoding");
        writesUtf8 = utf8 || !declared || zoka::namesUtf(declared);
        if (declared && writesUtf8 && !zoka::namesUtf8(declared)) {
            instead = "utf-8";
        }
        if (utf8) {
            head = zoka::kUtf8Mark;
        }
    } else if (!encoding || utf8) {
        head = zoka::kXmlUtf8Head;
    } else {
        writesUtf8 = zoka::namesUtf(encoding);
        if (writesUtf8 && !zoka::namesUtf8(encoding)) {
            encoding = "utf-8";  // UTF-16 is never written
        }
        head = "<?xml version=\"1.0\" encoding=\"" + std::string(encoding) + "\"?>\n";
    }
    if (!writesUtf8 || utf8) {
        return zoka::writeXml(m_element, formatted, head, instead);
    }
    const zoka::XMLText body = zoka::writeXml(m_element, formatted, {}, instead);
    return body ? zoka::joinXml(head, zoka::utf8FromPlatform(body.view())) : zoka::XMLText();
}

int XMLNode::writeFile(const char* path, const char* encoding, bool formatted) const {
    if (!m_element || !path) {
        return kXmlCannotOpenForWriting;
    }
    zoka::XMLText text;
    try {
        text = toFileBytes(encoding, formatted);
    } catch (const std::bad_alloc&) {
        text = {};
    }
    if (!text) {
        return kXmlCannotWrite;
    }
    if (zoka::safeWrite(path, text.view())) {
        return kXmlNone;
    }
    return zoka::canOpenForWriting(path) ? kXmlCannotWrite : kXmlCannotOpenForWriting;
}
