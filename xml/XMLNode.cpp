#include "xml/XMLNode.h"

#include "xml/XMLTree.h"
#include "xml/XMLWriter.h"

using zoka::XMLContentIndex;
using zoka::XMLCursor;
using zoka::XMLCursorKind;
using zoka::XMLCursors;
using zoka::XMLDocument;
using zoka::XMLElement;
using zoka::XMLItem;
using zoka::XMLItemKind;
using zoka::XMLName;
using zoka::XMLTextItem;

namespace {

// Calls `visit(item)` for the items from `first` round to the last one until it gives true; gives that item.
template <class Visit>
const XMLItem* findItem(const XMLElement* owner, const XMLItem* first, Visit visit) {
    for (const XMLItem* item = first; item; item = owner->itemAfter(item)) {
        if (visit(item)) {
            return item;
        }
    }
    return nullptr;
}

bool isChild(const XMLItem* item, const XMLName* name) {
    if (item->kind != XMLItemKind::Element) {
        return false;
    }
    if (!name) {
        return true;
    }
    const auto* element = static_cast<const XMLElement*>(item);
    return name->matches(element->key, element->name);
}

bool isClear(const XMLItem* item) {
    return item->kind != XMLItemKind::Element && item->kind != XMLItemKind::Text;
}

// Item number `index` of those that `counts` says count, starting from a remembered place where there is one.
// `name`, where not null, is the name of every item that counts.
template <class Counts>
const XMLItem* itemAt(const XMLElement* owner, XMLCursorKind kind, const XMLName* name, int index,
                      Counts counts) {
    if (index < 0) {
        return nullptr;
    }
    XMLCursors& cursors = XMLDocument::of(owner)->cursors;
    const XMLItem* item = owner->firstItem();
    int left = index;
    if (const XMLCursor* place = cursors.find(owner, kind, name, index)) {
        item = place->item;
        left -= place->index;
    } else if (const XMLContentIndex* all = cursors.indexOf(owner)) {
        return all->at(kind, name, index);
    }
    int steps = 0;
    for (; item; item = owner->itemAfter(item)) {
        if (counts(item) && left-- == 0) {
            cursors.remember(owner, {item, index, kind});
            return item;
        }
        if (++steps == XMLCursors::kFarWalk) {
            if (const XMLContentIndex* all = cursors.walksFar(owner)) {
                return all->at(kind, name, index);
            }
        }
    }
    return nullptr;
}

// How many children of that name (null: any).
int countChildren(const XMLElement* owner, const XMLName* name) {
    XMLCursors& cursors = XMLDocument::of(owner)->cursors;
    if (const XMLContentIndex* all = cursors.indexOf(owner)) {
        return all->count(name);
    }
    int count = 0;
    int steps = 0;
    for (const XMLItem* item = owner->firstItem(); item; item = owner->itemAfter(item)) {
        count += isChild(item, name);
        if (++steps == XMLCursors::kFarWalk) {
            if (const XMLContentIndex* all = cursors.walksFar(owner)) {
                return all->count(name);
            }
        }
    }
    return count;
}

template <class Counts>
int countItems(const XMLElement* owner, Counts counts) {
    int count = 0;
    findItem(owner, owner->firstItem(), [&](const XMLItem* item) {
        count += counts(item);
        return false;
    });
    return count;
}

XMLElement* elementOf(const XMLItem* item) {
    return static_cast<XMLElement*>(const_cast<XMLItem*>(item));
}

// Notes where a walk by position has come to.
inline void found(XMLCursors& cursors, const XMLElement* owner, const XMLItem* item, int at,
                  const XMLName* name) {
    cursors.remember(owner, {item, at, name ? XMLCursorKind::Position : XMLCursorKind::Any});
    cursors.walked = owner;
    cursors.walkedItem = item;
    cursors.walkedIndex = at;
}

// The first child of that name (null: any) at or after *position, which is set just past it, wherever the last walk
// was.
[[gnu::noinline]] XMLElement* farChild(const XMLElement* owner, int* position, const XMLName* name) {
    XMLCursors& cursors = XMLDocument::of(owner)->cursors;
    const auto indexed = [&](const XMLContentIndex& all) {
        const XMLContentIndex::Child child = all.from(name, *position);
        if (child.item) {
            *position = child.number + 1;
        }
        return elementOf(child.item);
    };
    const XMLItem* item = owner->firstItem();
    int at = 0;  // of `item`, counting children
    const XMLCursorKind kind = name ? XMLCursorKind::Position : XMLCursorKind::Any;
    if (const XMLCursor* place = cursors.find(owner, kind, name, *position)) {
        item = place->item;
        at = place->index;
    } else if (const XMLContentIndex* all = cursors.indexOf(owner)) {
        return indexed(*all);
    }
    int steps = 0;
    for (; item; item = owner->itemAfter(item)) {
        if (++steps == XMLCursors::kFarWalk) {
            if (const XMLContentIndex* all = cursors.walksFar(owner)) {
                return indexed(*all);
            }
        }
        if (at >= *position && isChild(item, name)) {
            found(cursors, owner, item, at, name);
            *position = at + 1;
            return elementOf(item);
        }
        at += item->kind == XMLItemKind::Element;
    }
    return nullptr;
}

}  // namespace

const XMLNode& XMLNode::emptyNode() {
    static const XMLNode empty;
    return empty;
}

void XMLNode::freeTree(const XMLElement* element) {
    delete XMLDocument::of(element);
}

XMLNode XMLNode::createTop(const char* name, bool isDeclaration, XMLCharset charset) {
    auto document = std::make_unique<XMLDocument>(charset);
    XMLElement* element = document->newElement();
    if (name) {
        element->name = document->copyString(name);
        element->key = zoka::xmlNameKey(name, document->leads);
    }
    element->isDeclaration = isDeclaration;
    XMLNode node(element);
    (void)document.release();  // the node's now
    return node;
}

XMLNode XMLNode::addChild(const char* name, bool isDeclaration) {
    if (!m_element || !name) {
        return {};
    }
    XMLDocument* document = XMLDocument::of(m_element);
    const std::uint64_t key = zoka::xmlNameKey(name, document->leads);
    const char* ownName = document->ownName(name, key);
    XMLElement* child = document->newElement();
    child->name = ownName;
    child->key = key;
    child->isDeclaration = isDeclaration;
    child->parent = m_element;
    document->append(m_element, child);
    return XMLNode(child);
}

void XMLNode::addAttribute(const char* name, const char* value) {
    if (m_element && name) {
        XMLDocument::of(m_element)->addAttribute(m_element, name, value);
    }
}

void XMLNode::addText(const char* text) {
    if (m_element && text && *text) {
        XMLDocument::of(m_element)->addText(m_element, text);
    }
}

const char* XMLNode::getName() const {
    return m_element ? m_element->name : nullptr;
}

XMLCharset XMLNode::charset() const {
    return m_element ? XMLDocument::of(m_element)->charset : zoka::xmlCharset();
}

bool XMLNode::isDeclaration() const {
    return m_element && m_element->isDeclaration;
}

XMLNode XMLNode::getParent() const {
    return XMLNode(m_element ? m_element->parent : nullptr);
}

int XMLNode::childCount() const {
    if (!m_element) {
        return 0;
    }
    return countChildren(m_element, nullptr);
}

int XMLNode::childCount(const char* tag) const {
    if (!m_element || !tag) {
        return 0;
    }
    const XMLName name(tag, XMLDocument::leadsOf(m_element));
    return countChildren(m_element, &name);
}

XMLNode XMLNode::getChild(int index) const {
    if (!m_element) {
        return {};
    }
    return XMLNode(elementOf(itemAt(m_element, XMLCursorKind::Any, nullptr, index,
                                    [](const XMLItem* item) { return isChild(item, nullptr); })));
}

XMLNode XMLNode::getChild(const char* tag, int index) const {
    if (!m_element || !tag) {
        return {};
    }
    const XMLName name(tag, XMLDocument::leadsOf(m_element));
    return XMLNode(elementOf(itemAt(m_element, XMLCursorKind::Named, &name, index,
                                    [&](const XMLItem* item) { return isChild(item, &name); })));
}

XMLNode XMLNode::getChild(const char* tag, int* position) const {
    if (!m_element || !position || *position < 0) {
        return {};
    }
    if (!tag) {
        return childFrom(position, nullptr);
    }
    const XMLName name(tag, XMLDocument::leadsOf(m_element));
    return childFrom(position, &name);
}

// The next child of a list that is walked in its order, which most are; as little as can be stands here.
[[gnu::always_inline]] inline XMLNode XMLNode::childFrom(int* position, const XMLName* name) const {
    XMLCursors& cursors = XMLDocument::of(m_element)->cursors;
    const XMLItem* item = nullptr;
    int at = *position;  // of `item`, counting children
    // The place remembered is that of the child found last, one in front of *position.
    if (cursors.walked == m_element && cursors.walkedIndex + 1 == at) {
        item = m_element->itemAfter(cursors.walkedItem);
    } else if (at == 0) {
        item = m_element->firstItem();
    } else {
        return XMLNode(farChild(m_element, position, name));
    }
    for (int steps = 1; item; item = m_element->itemAfter(item)) {
        if (++steps == XMLCursors::kFarWalk) {
            return XMLNode(farChild(m_element, position, name));
        }
        if (isChild(item, name)) {
            found(cursors, m_element, item, at, name);
            *position = at + 1;
            return XMLNode(elementOf(item));
        }
        at += item->kind == XMLItemKind::Element;
    }
    return {};
}

std::uint32_t XMLNode::place() const {
    if (!m_element) {
        return 0;
    }
    // Names are shared, values and texts stand where they were read.
    const XMLDocument* const document = XMLDocument::of(m_element);
    const auto own = [document](const XMLElement* element) {
        if (element->attributeCount == 0) {
            if (const std::uint32_t place = document->placeOf(element->tag)) {
                return place;
            }
        }
        for (std::uint32_t i = 0; i < element->attributeCount; ++i) {
            if (const std::uint32_t place = document->placeOf(element->attributes[i].value())) {
                return place;
            }
        }
        return document->placeOf(element->textAlone());
    };
    for (const XMLElement* element = m_element; element; element = element->parent) {
        if (const std::uint32_t place = own(element)) {
            return place;
        }
    }
    return 0;
}

XMLNode XMLNode::firstChild(const char* tag) const {
    if (!m_element) {
        return {};
    }
    const XMLName wanted(tag ? tag : "", XMLDocument::leadsOf(m_element));
    const XMLName* name = tag ? &wanted : nullptr;
    return XMLNode(elementOf(findItem(m_element, m_element->firstItem(),
                                      [&](const XMLItem* item) { return isChild(item, name); })));
}

XMLNode XMLNode::nextSibling(const char* tag) const {
    if (!m_element || !m_element->parent) {
        return {};
    }
    const XMLName wanted(tag ? tag : "", XMLDocument::leadsOf(m_element));
    const XMLName* name = tag ? &wanted : nullptr;
    const XMLElement* parent = m_element->parent;
    return XMLNode(elementOf(findItem(parent, parent->itemAfter(m_element),
                                      [&](const XMLItem* item) { return isChild(item, name); })));
}

void XMLNode::prefetch() const {
    if (!m_element) {
        return;
    }
    constexpr unsigned kLine = 64;
    // Behind the name in the text stand the attributes' values. Addresses as numbers: they may lie outside of both.
    const auto text = reinterpret_cast<std::uintptr_t>(m_element->name);
    const auto attributes = reinterpret_cast<std::uintptr_t>(m_element->attributes);
    for (unsigned line = 0; line < 4; ++line) {
        __builtin_prefetch(reinterpret_cast<const void*>(text + line * kLine));
        __builtin_prefetch(reinterpret_cast<const void*>(attributes + line * kLine));
    }
    __builtin_prefetch(m_element->lastItem());
    __builtin_prefetch(m_element->next);
}

const char* XMLNode::getAttribute(const char* name, int* position) const {
    if (!m_element || !name) {
        return nullptr;
    }
    const XMLName wanted(name, XMLDocument::leadsOf(m_element));
    const int start = position ? *position : 0;
    const auto count = static_cast<int>(m_element->attributeCount);
    for (int i = start < 0 ? count : start; i < count; ++i) {
        const zoka::XMLAttribute& attribute = m_element->attributes[i];
        if (!attribute.isNamed(wanted)) {
            continue;
        }
        if (position) {
            *position = i + 1;
        }
        return attribute.value();
    }
    return nullptr;
}

bool XMLNode::hasAttribute(const char* name) const {
    int position = 0;
    getAttribute(name, &position);
    return position > 0;
}

int XMLNode::attributeCount() const {
    return m_element ? static_cast<int>(m_element->attributeCount) : 0;
}

XMLAttributeView XMLNode::getAttributeAt(int index) const {
    if (index < 0 || index >= attributeCount()) {
        return {};
    }
    return {m_element->attributes[index].name(), m_element->attributes[index].value()};
}

const char* XMLNode::getText(int index) const {
    if (!m_element) {
        return nullptr;
    }
    if (const char* alone = m_element->textAlone()) {
        return index == 0 ? alone : nullptr;
    }
    const XMLItem* item = itemAt(m_element, XMLCursorKind::Text, nullptr, index,
                                 [](const XMLItem* one) { return one->kind == XMLItemKind::Text; });
    return item ? static_cast<const XMLTextItem*>(item)->value : nullptr;
}

int XMLNode::textCount() const {
    if (!m_element) {
        return 0;
    }
    if (m_element->textAlone()) {
        return 1;
    }
    return countItems(m_element, [](const XMLItem* item) { return item->kind == XMLItemKind::Text; });
}

XMLClearView XMLNode::getClear(int index) const {
    if (!m_element) {
        return {};
    }
    const XMLItem* item = itemAt(m_element, XMLCursorKind::Clear, nullptr, index, isClear);
    if (!item) {
        return {};
    }
    const zoka::XMLClearTags tags = zoka::clearTags(item->kind);
    return {static_cast<const XMLTextItem*>(item)->value, tags.open, tags.close};
}

int XMLNode::clearCount() const {
    return m_element ? countItems(m_element, isClear) : 0;
}

std::vector<int> XMLNode::order() const {
    std::vector<int> entries;
    if (!m_element) {
        return entries;
    }
    for (int i = 0; i < attributeCount(); ++i) {
        entries.push_back(i * 4 + kXmlAttribute);
    }
    int children = 0, texts = 0, clears = 0;
    if (m_element->textAlone()) {
        entries.push_back(texts++ * 4 + kXmlText);
    }
    findItem(m_element, m_element->firstItem(), [&](const XMLItem* item) {
        if (item->kind == XMLItemKind::Element) {
            entries.push_back(children++ * 4 + kXmlChild);
        } else if (item->kind == XMLItemKind::Text) {
            entries.push_back(texts++ * 4 + kXmlText);
        } else {
            entries.push_back(clears++ * 4 + kXmlClear);
        }
        return false;
    });
    return entries;
}

char* XMLNode::toText(bool formatted, int* length) const {
    if (length) {
        *length = 0;
    }
    if (!m_element) {
        return nullptr;
    }
    zoka::XMLText text = zoka::writeXml(m_element, formatted);
    if (length) {
        *length = static_cast<int>(text.length);
    }
    return text.bytes.release();
}
