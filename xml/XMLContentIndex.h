// Everything in a long element by number and name, for lookups that jump about in it. Internal to this folder.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "util/KeyedHash.h"
#include "xml/XMLItems.h"

namespace zoka {

enum class XMLCursorKind : std::uint8_t {
    Named,     // the index counts children of the item's name
    Position,  // the index counts children of every name, the walk being over the item's name
    Any,       // the index counts children of every name
    Text,
    Clear
};

class XMLContentIndex {
public:
    struct Child {
        const XMLItem* item;
        int number;  // among children of every name
    };

    explicit XMLContentIndex(const XMLElement* owner) : m_owner(owner) {}

    // Takes in what the element has got since. Throws std::bad_alloc; the index is then of no use any more.
    void update();

    // The item of that number among those of its kind (not Position), or null.
    const XMLItem* at(XMLCursorKind kind, const XMLName* name, int index) const;
    // The first child of that name (null: any) at or after that number; its item is null when there is none.
    Child from(const XMLName* name, int number) const;
    // How many children there are of that name (null: any).
    int count(const XMLName* name) const;

private:
    using Children = std::vector<Child>;
    struct Recent {
        const XMLElement* element = nullptr;
        Children* children = nullptr;
    };
    Children& childrenLike(const XMLElement* element);
    const Children* find(const XMLName& name) const;
    Recent& recentOf(std::uint64_t key) const {
        return m_recent[static_cast<size_t>((key * 0x9e3779b97f4a7c15u) >> 60)];
    }

    const XMLElement* m_owner;
    const XMLItem* m_last = nullptr;  // the last one taken in
    Children m_children;
    std::vector<const XMLItem*> m_texts;
    std::vector<const XMLItem*> m_clears;
    KeyedMap<std::string, Children> m_named;    // by the name with A to Z in lower case
    mutable std::array<Recent, 16> m_recent{};  // names met last: most elements have few
};

}  // namespace zoka
