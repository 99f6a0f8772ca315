// Trees from and to texts and files.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

#include "util/OsFiles.h"
#include "util/SafeWrite.h"
#include "util/UserPrompt.h"
#include "xml/PlatformCharset.h"
#include "xml/XMLConvert.h"
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

// The first bytes of a file; empty when it can't be read.
std::string headOf(const char* path) {
    const File file(osFiles().openStream(path, "rb"));
    if (!file) {
        return {};
    }
    std::string head(kXmlGuessBytes, '\0');
    head.resize(std::fread(head.data(), 1, head.size(), file.get()));
    return head;
}

// `text` has `size` bytes in the process's character set, behind which stand a 0 and the padding.
XMLElement* parseOwned(XMLDocument& document, XMLElement* root, char* text, size_t size, const char* tag,
                       XMLResults& results, const XMLWatch& watch = {}) {
    XMLElement* top = parseXml(document, root, text, size, tag, results, watch);
    return top && !tag ? root : top;
}

// The same with the bytes of a file.
XMLElement* parseFileBytes(XMLDocument& document, XMLElement* root, char* bytes, size_t size, const char* tag,
                           XMLResults& results, const XMLWatch& watch) {
    const XMLDecoded decoded = decodeXmlFile({bytes, size});
    if (!decoded.ok) {
        const XMLPosition position(decoded.text.c_str(), xmlCharset() == XMLCharset::Utf8);
        const XMLPosition::Place place = position.at(decoded.text.c_str() + decoded.text.size());
        results = {kXmlCannotConvert, place.line, place.column};
        return nullptr;
    }
    if (!decoded.converted) {
        return parseOwned(document, root, bytes + decoded.skip, size - decoded.skip, tag, results, watch);
    }
    char* text = document.newText(decoded.text.size());
    std::memcpy(text, decoded.text.data(), decoded.text.size());
    return parseOwned(document, root, text, decoded.text.size(), tag, results, watch);
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
    return element->isDeclaration && XMLName("xml").matches(element->key, element->name) ? element : nullptr;
}

bool namesUtf8(const char* encoding) {
    const std::uint64_t key = xmlNameKey(encoding);
    return key == xmlNameKey("utf-8") || key == xmlNameKey("utf8");
}
bool namesUtf(const char* encoding) {
    return (xmlNameKey(encoding) & 0xffffff) == xmlNameKey("utf");
}

std::string utf8FromPlatform(std::string_view text) {
    std::u16string wide;
    appendUtf16(wide, text);
    return utf8FromUtf16(wide);
}

}  // namespace
}  // namespace zoka

namespace {

// Runs `parse(document, root, results)` on a new document. Gives its node, whose document is the first
// handle's to free, or null.
template <class Parse>
XMLElement* parsed(XMLResults* results, Parse parse) {
    XMLResults own;
    XMLResults& found = results ? *results : own;
    found = {};
    try {
        auto document = std::make_unique<XMLDocument>();
        XMLElement* node = parse(*document, document->newElement(), found);
        if (node) {
            (void)document.release();
        }
        return node;
    } catch (const std::bad_alloc&) {
        found = {kXmlNoData, 0, 0};
        return nullptr;
    }
}

}  // namespace

XMLNode XMLNode::parseFile(const char* path, const char* tag, XMLResults* results, const XMLWatch& watch) {
    return XMLNode(
        parsed(results, [&](XMLDocument& document, XMLElement* root, XMLResults& found) -> XMLElement* {
            found.code = kXmlFileNotFound;
            if (!path) {
                return nullptr;
            }
            const zoka::File file(zoka::osFiles().openStream(path, "rb"));
            char* bytes = nullptr;
            size_t size = 0;
            if (!file || !zoka::readAll(file.get(), document, bytes, size)) {
                return nullptr;
            }
            return zoka::parseFileBytes(document, root, bytes, size, tag, found, watch);
        }));
}

XMLNode XMLNode::parseBytes(std::string_view bytes, const char* tag, XMLResults* results,
                            const XMLWatch& watch) {
    return XMLNode(parsed(results, [&](XMLDocument& document, XMLElement* root, XMLResults& found) {
        char* text = document.newText(bytes.size());
        if (!bytes.empty()) {
            std::memcpy(text, bytes.data(), bytes.size());
        }
        return zoka::parseFileBytes(document, root, text, bytes.size(), tag, found, watch);
    }));
}

XMLNode XMLNode::parseText(const char* text, const char* tag, XMLResults* results) {
    return XMLNode(parsed(results, [&](XMLDocument& document, XMLElement* root, XMLResults& found) {
        std::string_view given = text ? text : "";
        if (zoka::xmlCharsetGuessing() && given.starts_with(zoka::kUtf8Mark)) {
            given.remove_prefix(zoka::kUtf8Mark.size());
        }
        char* own = document.newText(given.size());
        if (!given.empty()) {
            std::memcpy(own, given.data(), given.size());
        }
        return zoka::parseOwned(document, root, own, given.size(), tag, found);
    }));
}

XMLNode XMLNode::loadFileOrExit(const char* path, const char* tag) {
    if (!path) {
        path = "";
    }
    zoka::setXmlCharset(zoka::guessUtf8(zoka::headOf(path)) ? XMLCharset::Utf8 : XMLCharset::Platform);
    XMLResults results;
    XMLNode node = parseFile(path, tag, &results);
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

std::optional<std::string> XMLNode::toFileBytes(const char* encoding, bool formatted) const {
    if (!element_) {
        return std::nullopt;
    }
    const bool utf8 = zoka::xmlCharset() == XMLCharset::Utf8;
    std::string head;
    // Whether the file's bytes are UTF-8, whatever the texts in memory are.
    bool writesUtf8 = true;
    // What takes the place of the encoding that the tree's own declaration names.
    const char* instead = nullptr;
    if (const XMLElement* declaration = zoka::ownDeclaration(element_)) {
        const char* declared = XMLNode(const_cast<XMLElement*>(declaration)).getAttribute("encoding");
        writesUtf8 = utf8 || !declared || zoka::namesUtf(declared);
        if (declared && writesUtf8 && !zoka::namesUtf8(declared)) {
            instead = "utf-8";
        }
        if (utf8) {
            head = zoka::kUtf8Mark;
        }
    } else if (!encoding || utf8) {
        head = std::string(zoka::kUtf8Mark) + "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
    } else {
        writesUtf8 = zoka::namesUtf(encoding);
        if (writesUtf8 && !zoka::namesUtf8(encoding)) {
            encoding = "utf-8";  // UTF-16 is never written
        }
        head = "<?xml version=\"1.0\" encoding=\"" + std::string(encoding) + "\"?>\n";
    }
    const zoka::XMLText text = zoka::writeXml(element_, formatted, instead);
    if (!text.bytes) {
        return std::nullopt;
    }
    const std::string_view body(text.bytes.get(), text.length);
    if (writesUtf8 && !utf8) {
        head += zoka::utf8FromPlatform(body);
    } else {
        head += body;
    }
    return head;
}

int XMLNode::writeFile(const char* path, const char* encoding, bool formatted) const {
    if (!element_ || !path) {
        return kXmlCannotOpenForWriting;
    }
    const auto bytes = toFileBytes(encoding, formatted);
    if (!bytes) {
        return kXmlCannotWrite;
    }
    if (zoka::safeWrite(path, *bytes)) {
        return kXmlNone;
    }
    return zoka::canOpenForWriting(path) ? kXmlCannotWrite : kXmlCannotOpenForWriting;
}
