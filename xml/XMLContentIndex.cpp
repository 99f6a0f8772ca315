#include "xml/XMLContentIndex.h"

#include <algorithm>

#include "util/Fold.h"
#include "xml/XMLTree.h"

namespace zoka {
namespace {

std::string folded(const char* name, XMLLeads leads) {
    std::string text(name);
    bool trail = false;
    for (char& c : text) {
        const bool lead = leads && !trail && leads[static_cast<unsigned char>(c)];
        if (!trail) {
            c = foldCase(c);
        }
        trail = lead;
    }
    return text;
}

}  // namespace

void XMLContentIndex::update() {
    const XMLItem* item = m_last ? m_owner->itemAfter(m_last) : m_owner->firstItem();
    for (; item; item = m_owner->itemAfter(item)) {
        if (item->kind == XMLItemKind::Element) {
            const Child child{item, static_cast<int>(m_children.size())};
            m_children.push_back(child);
            childrenLike(static_cast<const XMLElement*>(item)).push_back(child);
        } else if (item->kind == XMLItemKind::Text) {
            m_texts.push_back(item);
        } else {
            m_clears.push_back(item);
        }
        m_last = item;
    }
}

XMLContentIndex::Children& XMLContentIndex::childrenLike(const XMLElement* element) {
    const XMLLeads leads = XMLDocument::leadsOf(m_owner);
    Recent& recent = recentOf(element->key);
    if (!recent.element ||
        !XMLName(element->name, leads).matches(recent.element->key, recent.element->name)) {
        recent = {element, &m_named[folded(element->name, leads)]};
    }
    return *recent.children;
}

const XMLContentIndex::Children* XMLContentIndex::find(const XMLName& name) const {
    Recent& recent = recentOf(name.key);
    if (recent.element && name.matches(recent.element->key, recent.element->name)) {
        return recent.children;
    }
    const auto found = m_named.find(folded(name.name, name.leads));
    return found == m_named.end() ? nullptr : &found->second;
}

const XMLItem* XMLContentIndex::at(XMLCursorKind kind, const XMLName* name, int index) const {
    const auto place = static_cast<size_t>(index);
    if (kind == XMLCursorKind::Text || kind == XMLCursorKind::Clear) {
        const auto& items = kind == XMLCursorKind::Text ? m_texts : m_clears;
        return place < items.size() ? items[place] : nullptr;
    }
    const Children* children = name ? find(*name) : &m_children;
    return children && place < children->size() ? (*children)[place].item : nullptr;
}

XMLContentIndex::Child XMLContentIndex::from(const XMLName* name, int number) const {
    const Children* children = name ? find(*name) : &m_children;
    if (!children) {
        return {nullptr, 0};
    }
    const auto found = std::ranges::lower_bound(*children, number, {}, &Child::number);
    return found == children->end() ? Child{nullptr, 0} : *found;
}

int XMLContentIndex::count(const XMLName* name) const {
    const Children* children = name ? find(*name) : &m_children;
    return children ? static_cast<int>(children->size()) : 0;
}

}  // namespace zoka
