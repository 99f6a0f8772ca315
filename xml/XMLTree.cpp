#include "xml/XMLTree.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "xml/PlatformCharset.h"
#include "xml/XMLConvert.h"
#include "xml/XMLScan.h"

namespace zoka {
namespace {

constexpr size_t kFirstArenaChunk = 4 * 1024;
constexpr size_t kLargestArenaChunk = 1024 * 1024;
constexpr size_t kLargestChunkBlocks = kLargestArenaChunk / XMLDocument::kBlockSize;
// A little less than whole blocks is asked for, so that the allocator's own header fits in front of the next
// chunk and chunks can lie one behind the other.
constexpr size_t kAllocatorRoom = 64;
// The fewest attributes that a run has room for once a program adds to it; it doubles from there.
constexpr std::uint32_t kFirstRun = 2;

// The text's end when every character is one that any text may hold; else null.
const char* plainAsciiEnd(const char* text) {
    while (*text == '\r' || !hasClass(*text, kCharControl | kCharHigh)) {
        ++text;
    }
    return *text == 0 ? text : nullptr;
}

}  // namespace

XMLDocument::~XMLDocument() {
    for (void* chunk : m_blockChunks) {
        ::operator delete (chunk, std::align_val_t{kBlockSize});
    }
    for (void* chunk : m_arenaChunks) {
        std::free(chunk);
    }
    for (void* text : m_largeTexts) {
        std::free(text);
    }
    std::free(m_text);
}

void XMLDocument::rewind(const Room& room) {
    m_room = room;
    for (; m_largeTexts.size() > room.largeTexts; m_largeTexts.pop_back()) {
        std::free(m_largeTexts.back());
    }
    m_sharedNames = {};
    cursors = {};
}

// For one more chunk, before it is there: when memory runs out no chunk is lost and none is null.
static void makeRoom(std::vector<void*>& chunks) {
    if (chunks.size() == chunks.capacity()) {
        chunks.reserve(chunks.size() * 2 + 1);
    }
}

void XMLDocument::nextBlock() {
    if (m_room.blocksLeft == 0) {
        // The sizes follow from each other, so that a chunk which is used again has the one that is wanted.
        const size_t blocks = std::clamp<size_t>(m_room.chunkBlocks * 2, 1, kLargestChunkBlocks);
        if (m_room.blockChunks == m_blockChunks.size()) {
            makeRoom(m_blockChunks);
            m_blockChunks.push_back(
                ::operator new (blocks* kBlockSize - kAllocatorRoom, std::align_val_t{kBlockSize}));
        }
        m_room.nextBlock = static_cast<char*>(m_blockChunks[m_room.blockChunks++]);
        m_room.chunkBlocks = blocks;
        m_room.blocksLeft = blocks;
    }
    ::new (static_cast<void*>(m_room.nextBlock)) BlockHeader{&handles, this, leads};
    m_room.nextElement = reinterpret_cast<XMLElement*>(m_room.nextBlock + kHeaderRoom);
    m_room.nextBlock += kBlockSize;
    --m_room.blocksLeft;
    m_room.elementsLeft = kElementsPerBlock;
    if (m_room.blocksLeft == 0) {
        m_room.elementsLeft -= (kAllocatorRoom + sizeof(XMLElement) - 1) / sizeof(XMLElement);
    }
}

void* XMLDocument::allocateSlowly(size_t size) {
    const size_t chunk = std::clamp(m_room.arenaChunk * 2, kFirstArenaChunk, kLargestArenaChunk);
    const auto allocated = [](std::vector<void*>& list, size_t bytes) {
        makeRoom(list);
        void* const memory = std::malloc(bytes + kXmlPadding);
        if (!memory) {
            throw std::bad_alloc();
        }
        list.push_back(memory);
    };
    // What would fill a good part of a chunk gets memory of its own, and the open chunk stays open.
    if (size > chunk / 4) {
        allocated(m_largeTexts, size);
        ++m_room.largeTexts;
        return m_largeTexts.back();
    }
    const size_t bytes = chunk - kAllocatorRoom;
    if (m_room.arenaChunks == m_arenaChunks.size()) {
        allocated(m_arenaChunks, bytes);
    }
    auto* const memory = static_cast<char*>(m_arenaChunks[m_room.arenaChunks++]);
    m_room.arenaChunk = chunk;
    m_room.arena = memory + size;
    m_room.arenaLeft = bytes - size;
    return memory;
}

XMLAttribute* XMLDocument::growRun(const XMLAttribute* run, size_t& room) {
    const size_t count = room;
    room = std::max<size_t>(2 * count, kFirstRun);
    auto* wider = static_cast<XMLAttribute*>(allocate(room * sizeof(XMLAttribute)));
    std::uninitialized_copy_n(run, count, wider);
    return wider;
}

const char* XMLDocument::copyString(const char* text) {
    const size_t size = std::strlen(text) + 1;
    return static_cast<const char*>(std::memcpy(allocate(size), text, size));
}

const char* XMLDocument::ownName(const char* name, std::uint64_t key) {
    SharedName& shared = m_sharedNames[(key ^ (key >> 32) ^ (key >> 8)) % kSharedNames];
    if (shared.key != key || !shared.name || std::strcmp(shared.name, name) != 0) {
        shared = {key, copyString(name)};
    }
    return shared.name;
}

const char* XMLDocument::copyText(std::string_view front, const char* text) {
    std::string allowed;
    const char* end = plainAsciiEnd(text);
    if (!end) {
        allowed = allowedXmlText(text, charset);
        text = allowed.c_str();
        end = text + allowed.size();
    }
    const auto size = static_cast<size_t>(end - text) + 1;
    auto* const own = static_cast<char*>(allocate(front.size() + size));
    std::memcpy(own, front.data(), front.size());
    return static_cast<const char*>(std::memcpy(own + front.size(), text, size));
}

char* XMLDocument::newText(size_t size) {
    return growText(0, size);
}

char* XMLDocument::growText(size_t used, size_t size) {
    if (size > SIZE_MAX - kXmlPadding) {
        throw std::bad_alloc();
    }
    auto* text =
        static_cast<char*>(used ? std::realloc(m_text, size + kXmlPadding) : std::malloc(size + kXmlPadding));
    if (!text) {
        throw std::bad_alloc();
    }
    if (!used) {
        std::free(m_text);
    }
    m_text = text;
    m_textSize = size;
    std::memset(m_text + size, 0, kXmlPadding);
    return m_text;
}

void XMLDocument::addAttribute(XMLElement* element, const char* name, const char* value) {
    const std::uint32_t count = element->attributeCount;
    const bool full = !element->grownRun || (count >= kFirstRun && std::has_single_bit(count));
    if (full) {
        const std::uint32_t room = std::max(kFirstRun, std::bit_ceil(count + 1));
        auto* run = static_cast<XMLAttribute*>(allocate(room * sizeof(XMLAttribute)));
        if (count > 0) {
            std::uninitialized_copy_n(element->attributes, count, run);
        }
        element->attributes = run;
        element->grownRun = true;
    }
    const std::string_view withEnd(name, std::strlen(name) + 1);
    const char* const own = copyText(withEnd, value ? value : "");
    ::new (static_cast<void*>(element->attributes + count))
        XMLAttribute(own - withEnd.size(), own, xmlNameKey(name, leads), value != nullptr);
    ++element->attributeCount;
}

void XMLDocument::addText(XMLElement* element, const char* text) {
    appendText(element, copyText("", text));
}

void XMLDocument::listTextAlone(XMLElement* element) {
    XMLItem* item = newTextItem(XMLItemKind::Text, element->textAlone());
    element->clearContent();
    element->appendItem(item);
    element->textUse = XMLTextUse::AmongItems;
}

}  // namespace zoka
