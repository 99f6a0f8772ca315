// How a document lies in memory. Internal to this folder.
//
// A document owns everything of its tree: elements in blocks of their own, everything else in an arena, and
// the text that was parsed, in which names, values and texts are ended in place with a 0. Nothing is freed
// singly; the document goes as a whole with the last handle. An element's block is aligned to its size, so
// that a mask of the element's address finds the block's header and through it the document.
//
// Bytes are speed here: most of the time of reading goes into first touches of memory.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "xml/XMLCursors.h"
#include "xml/XMLNode.h"

namespace zoka {

// Strings in a tree may be read up to this many bytes past their terminator (the scanning code works in
// blocks).
inline constexpr size_t kXmlPadding = 16;

class XMLDocument {
public:
    static constexpr size_t kBlockSize = kXmlBlockSize;

    // `set` is that of all the tree's texts.
    explicit XMLDocument(XMLCharset set) : charset(set), leads(xmlLeads(set)) {}
    XMLDocument(const XMLDocument&) = delete;
    XMLDocument& operator=(const XMLDocument&) = delete;
    ~XMLDocument();

    // How far the document's memory is used.
    struct Room {
        XMLElement* nextElement = nullptr;
        size_t elementsLeft = 0;
        char* nextBlock = nullptr;  // the next unused block of the last chunk
        size_t blocksLeft = 0;
        size_t chunkBlocks = 0;  // of the last chunk
        size_t blockChunks = 0;

        char* arena = nullptr;
        size_t arenaLeft = 0;
        size_t arenaChunk = 0;  // the last one's size
        size_t arenaChunks = 0;
        size_t largeTexts = 0;
    };
    const Room& room() const { return m_room; }
    // Takes back all that was made since `room` was got; nothing may lead there any more. Its memory is used again.
    void rewind(const Room& room);

    static XMLDocument* of(const XMLElement* element) { return headerOf(element)->document; }
    static XMLLeads leadsOf(const XMLElement* element) { return headerOf(element)->leads; }

    // All of these throw std::bad_alloc when memory runs out.

    XMLElement* newElement() {
        if (m_room.elementsLeft == 0) {
            nextBlock();
        }

        --m_room.elementsLeft;
        return ::new (static_cast<void*>(m_room.nextElement++)) XMLElement();
    }
    XMLTextItem* newTextItem(XMLItemKind kind, const char* value) {
        auto* item = ::new (allocate(sizeof(XMLTextItem))) XMLTextItem();
        item->kind = kind;
        item->value = value;
        return item;
    }
    // Memory for anything that lives as long as the document, aligned for pointers and keys.
    void* allocate(size_t size) {
        size = (size + 7) & ~size_t{7};
        if (size > m_room.arenaLeft) {
            return allocateSlowly(size);
        }

        void* result = m_room.arena;
        m_room.arena += size;
        m_room.arenaLeft -= size;
        return result;
    }
    // An element's attributes are read into the free end of the arena: openRun gives it, `room` attributes
    // wide; growRun gives a wider place for a run that fills its own; closeRun keeps the run. Nothing else
    // may be allocated in between but elements.
    XMLAttribute* openRun(size_t& room) {
        room = m_room.arenaLeft / sizeof(XMLAttribute);
        return reinterpret_cast<XMLAttribute*>(m_room.arena);
    }
    XMLAttribute* growRun(const XMLAttribute* run, size_t& room);
    void closeRun(const XMLAttribute* run, size_t count) {
        if (reinterpret_cast<const char*>(run) == m_room.arena) {
            allocate(count * sizeof(XMLAttribute));
        }
    }
    const char* copyString(const char* text);
    // The tree's own copy of a name, which has that key. Programs give the same few names again and again: they
    // share one.
    const char* ownName(const char* name, std::uint64_t key);
    // The same of a text as the tree may hold it, see allowedXmlText; right behind a copy of `front`.
    const char* copyText(std::string_view front, const char* text);
    // A buffer for the text to parse: `size` bytes and a zeroed padding behind. Owned by the document, which
    // has one.
    char* newText(size_t size);
    // Makes room for `size` bytes where newText gave less; the first `used` bytes stay.
    char* growText(size_t used, size_t size);

    // Where in the parsed text `part` stands; 0 for what stands elsewhere.
    std::uint32_t placeOf(const char* part) const {
        const bool parsed =
            m_text && std::less_equal<>()(m_text, part) && std::less<>()(part, m_text + m_textSize);
        return parsed ? static_cast<std::uint32_t>(part - m_text) : 0;
    }

    // Puts an item at the end of an element's content.
    void append(XMLElement* element, XMLItem* item) {
        if (element->textUse == XMLTextUse::Alone) {
            listTextAlone(element);
        }

        element->appendItem(item);
    }
    // The same with a text that lives as long as the document.
    void appendText(XMLElement* element, const char* text) {
        if (element->isBare()) {
            return element->setTextAlone(text);
        }

        append(element, newTextItem(XMLItemKind::Text, text));
        element->textUse = XMLTextUse::AmongItems;
    }
    void addAttribute(XMLElement* element, const char* name, const char* value);
    void addText(XMLElement* element, const char* text);
    // Makes an item of the text that is all the element's content.
    void listTextAlone(XMLElement* element);

    const XMLCharset charset;
    const XMLLeads leads;
    XMLCursors cursors;
    size_t handles = 0;

private:
    struct BlockHeader {
        size_t* handles;  // see xmlHandles
        XMLDocument* document;
        XMLLeads leads;  // lookups find them here without touching the document
    };
    static const BlockHeader* headerOf(const XMLElement* element) {
        const auto address = reinterpret_cast<std::uintptr_t>(element) & ~std::uintptr_t{kBlockSize - 1};
        return reinterpret_cast<const BlockHeader*>(address);
    }
    static constexpr size_t kHeaderRoom = 32;
    static constexpr size_t kElementsPerBlock = (kBlockSize - kHeaderRoom) / sizeof(XMLElement);

    void nextBlock();
    void* allocateSlowly(size_t size);

    Room m_room;

    static constexpr size_t kSharedNames = 16;
    struct SharedName {
        std::uint64_t key = 0;
        const char* name = nullptr;
    };
    std::array<SharedName, kSharedNames> m_sharedNames;

    char* m_text = nullptr;
    size_t m_textSize = 0;
    // All chunks that were asked for; Room says how many of them are in use. Those of one arena text each, which are
    // too large for a chunk, stand apart.
    std::vector<void*> m_blockChunks;
    std::vector<void*> m_arenaChunks;
    std::vector<void*> m_largeTexts;
};

}  // namespace zoka
