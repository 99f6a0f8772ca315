#include "xml/XMLCursors.h"

#include <new>

namespace zoka {

const XMLContentIndex* XMLCursors::updated(const XMLElement* owner, bool make) {
    const auto found = m_indexes.find(owner);
    if (found == m_indexes.end() && !make) {
        return nullptr;
    }
    try {
        XMLContentIndex& index =
            found == m_indexes.end() ? m_indexes.try_emplace(owner, owner).first->second : found->second;
        index.update();
        return &index;
    } catch (const std::bad_alloc&) {
        m_indexes.erase(owner);
        return nullptr;
    }
}

}  // namespace zoka
