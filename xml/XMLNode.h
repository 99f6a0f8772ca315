// The XML tree: every XML file of the system is read, held and written through XMLNode.
//
//     XMLResults results;
//     XMLNode project = XMLNode::parseFile(path, "Project", &results);
//     if (project.isEmpty()) report(XMLNode::errorText(results.code), results.line, results.column);
//     int position = 0;
//     for (XMLNode level; !(level = project.getChild("Level", &position)).isEmpty();)
//         use(level.getAttribute("name"));
//
// An XMLNode is a handle, one pointer. All nodes of a document live and die together: the whole tree stays as
// long as any handle on any of its nodes, so a handle on a child outlives the handle on its root, and a text
// got from a node is valid while some handle on that tree is. Handles are counted without locking: a tree is
// used from one thread at a time. Different trees may be used on different threads at once.
//
// Names (arguments and in the tree) are compared without regard to the case of the letters A to Z. A lookup
// on the empty node gives the empty node, null or 0; adding to it does nothing. Texts are 0-terminated, in
// the tree's character set (XMLCharset), which the operation that makes it takes as `charset`. What is kept of a file
// and how texts are escaped is written down in docs/xml.md.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "xml/XMLEncoding.h"
#include "xml/XMLErrors.h"

namespace zoka {
struct XMLElement;
struct XMLName;

// Elements lie in blocks aligned to their size, which begin with the address of their document's count of
// handles.
inline constexpr size_t kXmlBlockSize = 16 * 1024;
inline size_t& xmlHandles(const XMLElement* element) {
    const auto block = reinterpret_cast<std::uintptr_t>(element) & ~std::uintptr_t{kXmlBlockSize - 1};
    return **reinterpret_cast<size_t**>(block);
}

// A text of its own memory; false without one, because memory ran out.
struct XMLText {
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    std::unique_ptr<char, Free> bytes;  // 0-terminated
    size_t length = 0;

    explicit operator bool() const { return bytes != nullptr; }
    std::string_view view() const { return {bytes.get(), length}; }
};
}  // namespace zoka

// What parsing found. Lines and columns count from 1, columns in characters (a tab is one); both are 0 where
// no place can be named (codes 0, 2, 12). For what is never closed they name the place where it was opened.
struct XMLResults {
    int code = 0;  // XMLErrorCode
    int line = 0;
    int column = 0;
    // Nothing is wrong with the text: memory ran out while it was read. The code is 2 then.
    bool outOfMemory = false;
};

// One attribute; null pointers where there is none of that index. `value` may be null for an attribute that a
// program added without one (written as an empty value). The tree owns both.
struct XMLAttributeView {
    const char* name = nullptr;
    const char* value = nullptr;
};

// A comment, CDATA section or DOCTYPE, kept as it stands in the file: `openTag`, `value` and `closeTag` one
// after the other. The tree owns `value`; the tags ("<!--", "-->" and so on) are static. Null pointers where
// there is none.
struct XMLClearView {
    const char* value = nullptr;
    const char* openTag = nullptr;
    const char* closeTag = nullptr;
};

// Kinds of content in an entry of XMLNode::order(): entry = index * 4 + kind.
enum XMLContentKind { kXmlChild = 0, kXmlAttribute = 1, kXmlText = 2, kXmlClear = 3 };

// Told now and then, on the thread that parses, how many bytes of how many are parsed. False stops the parsing.
using XMLProgress = std::function<bool(size_t done, size_t total)>;

class XMLNode;
// Given a child of the top element once it is read; true takes it out of the tree.
using XMLTake = std::function<bool(const XMLNode& child)>;

class XMLNode {
public:
    // --- reading ---
    // Each gives the top element when `tag` is given (code 13 if it has another name), else the document node, whose
    // children are the declaration, other processing instructions and the top element. On any error, running out of
    // memory included (code 2), the empty node. `results`, where not null, is always filled. Stopped by `watch`: the
    // empty node with code 0.

    // Reads a file. `path` as in all file operations (util/). With guessing on (zoka::setXmlCharsetGuessing,
    // the default) what is in another set than `charset` is converted; docs/xml.md says what is taken for what.
    static XMLNode parseFile(const char* path, const char* tag = nullptr, XMLResults* results = nullptr,
                             const XMLProgress& watch = {}, XMLCharset charset = zoka::xmlCharset());
    // The same for large files that are lists: hands over each child of the top element as soon as it is read. A child
    // that `take` takes is no part of the tree and its memory is used for the next ones, so no handle on it and no
    // text of it may be kept. `take` is called with the empty node where reading begins, which may be a second time
    // in another character set: what was taken before is then to be forgotten, as it is after an error.
    static XMLNode parseFileTaking(const char* path, const char* tag, XMLResults* results,
                                   const XMLTake& take, XMLCharset charset = zoka::xmlCharset());
    // The same in the set that the file is in: UTF-8, or the platform's where guessUtf8 says that it is none or any
    // of its bytes does. The tree's charset() tells which.
    static XMLNode parseFileInItsSet(const char* path, const char* tag = nullptr,
                                     XMLResults* results = nullptr, const XMLProgress& watch = {});
    // Parses a text in the character set `charset`, which is copied. A null text gives code 2.
    static XMLNode parseText(const char* text, const char* tag = nullptr, XMLResults* results = nullptr,
                             XMLCharset charset = zoka::xmlCharset());
    // Parses bytes as a file would hold them, marks and conversion included (what parseFile does after
    // reading).
    static XMLNode parseBytes(std::string_view bytes, const char* tag = nullptr,
                              XMLResults* results = nullptr, const XMLProgress& watch = {},
                              XMLCharset charset = zoka::xmlCharset());
    // Like parseFileInItsSet, for files the program can't go on without: the file's set becomes the process's, and an
    // error shows its message through zoka::userPrompt().fatalStop (title
    // "XML Parsing error", exit status 255).
    static XMLNode loadFileOrExit(const char* path, const char* tag);

    // --- making ---
    // The names are the caller's care: they are not checked. All texts given are copied. In values and texts,
    // characters that XML can't hold (most control characters) become U+FFFD, or '?' in the platform's set; what is
    // no UTF-8 where it should be is taken as text in the platform's set. These throw std::bad_alloc.

    // A tree of its own with one element at its top. With a null name an empty document node, to which a declaration
    // and a top element can be added.
    static XMLNode createTop(const char* name, bool isDeclaration = false,
                             XMLCharset charset = zoka::xmlCharset());
    // The new element, at the end of this one's content. What is added to a declaration is written behind it.
    XMLNode addChild(const char* name, bool isDeclaration = false);
    void addAttribute(const char* name, const char* value);
    // Appends a text; an empty or null one adds nothing. Two texts with nothing between them are one after
    // writing and reading.
    void addText(const char* text);

    // --- looking ---

    bool isEmpty() const { return m_element == nullptr; }
    // Null for the document node and the empty node.
    const char* getName() const;
    // Of all texts in the tree; that of trees to come for the empty node.
    XMLCharset charset() const;
    // Written as "<?name ...?>". Of one that was read, other than "xml" itself, the data is its text.
    bool isDeclaration() const;
    // A place in the text that was parsed, in bytes, that lies in the element's start tag; of an element that a program
    // added to it that of the parent. 0 for what stands in no such text. zoka::XMLPlaces makes lines and columns of it.
    // Takes as long as the element lies deep in what a program added.
    std::uint32_t place() const;
    // The empty node for the top.
    XMLNode getParent() const;

    // Child elements: of any name, of a name. Declarations count as children.
    int childCount() const;
    int childCount(const char* tag) const;
    // The index-th child of any name, or of that name, counting from 0. Asking for all of them takes linear time, in
    // whatever order.
    XMLNode getChild(int index) const;
    XMLNode getChild(const char* tag, int index = 0) const;
    // The first child of that name (null: any) at or after child number *position (counting children of every
    // name), which is set just past it. Starts at 0; left alone when none is found.
    XMLNode getChild(const char* tag, int* position) const;
    // Also for lists: `for (n = p.firstChild("a"); !n.isEmpty(); n = n.nextSibling("a"))`; null: any name.
    XMLNode firstChild(const char* tag = nullptr) const;
    XMLNode nextSibling(const char* tag = nullptr) const;
    // For loops over long lists that are too large for the processor's caches: called on the node that comes next,
    // it lets the memory of its attributes and of its first child come closer meanwhile. Changes nothing.
    void prefetch() const;

    // The value of the first attribute of that name, or null (also for an attribute added without a value).
    // With `position`: the first at or after attribute number *position, which is set just past it.
    const char* getAttribute(const char* name, int* position = nullptr) const;
    bool hasAttribute(const char* name) const;
    int attributeCount() const;
    XMLAttributeView getAttributeAt(int index) const;

    // The index-th text or null. An element's text is cut into several by child elements and clears between.
    const char* getText(int index = 0) const;
    int textCount() const;
    XMLClearView getClear(int index = 0) const;
    int clearCount() const;

    // Everything in the node in document order, as entries index * 4 + XMLContentKind for getChild(index),
    // getAttributeAt, getText and getClear. Attributes come first. Made anew at each call.
    std::vector<int> order() const;

    // --- writing ---

    // The subtree as text. Formatted: a line for each element, indented with tabs, but no blank inside an element
    // that holds text. The caller frees the text with std::free; its length without the terminator goes to
    // *length when that is not null. Null for the empty node, or when memory runs out.
    char* toText(bool formatted = true, int* length = nullptr) const;
    // Writes the subtree to a file with the declaration in front (none if the tree brings its own).
    // `encoding` names the character set in that declaration and counts only for a tree in the
    // platform's set; null or of a tree in UTF-8, the file is UTF-8 with a mark. UTF-16 is not written: UTF-8 takes its
    // place. 0, or 16 when the file can't be opened, 17 when writing fails.
    int writeFile(const char* path, const char* encoding = nullptr, bool formatted = true) const;
    // What writeFile writes; nothing for the empty node, or when memory runs out.
    zoka::XMLText toFileBytes(const char* encoding = nullptr, bool formatted = true) const;

    // --- the rest ---

    static const char* errorText(int code) { return xmlErrorText(code); }
    // The one empty node for places that need a reference.
    static const XMLNode& emptyNode();

    XMLNode() = default;
    XMLNode(const XMLNode& other) : m_element(other.m_element) { retain(); }
    XMLNode(XMLNode&& other) noexcept : m_element(other.m_element) { other.m_element = nullptr; }
    XMLNode& operator=(const XMLNode& other) {
        other.retain();
        release();
        m_element = other.m_element;
        return *this;
    }
    XMLNode& operator=(XMLNode&& other) noexcept {
        if (this != &other) {
            release();
            m_element = other.m_element;
            other.m_element = nullptr;
        }
        return *this;
    }
    ~XMLNode() { release(); }
    // Whether both are handles on the same node.
    bool operator==(const XMLNode& other) const { return m_element == other.m_element; }

private:
    explicit XMLNode(zoka::XMLElement* element) : m_element(element) { retain(); }
    void retain() const {
        if (m_element)

        {
            ++zoka::xmlHandles(m_element);
        }
    }
    void release() const {
        if (m_element && --zoka::xmlHandles(m_element) == 0)

        {
            freeTree(m_element);
        }
    }
    XMLNode childFrom(int* position, const zoka::XMLName* name) const;
    static void freeTree(const zoka::XMLElement* element);

    zoka::XMLElement* m_element = nullptr;
};
