#include "xml/XMLCursors.h"

#include <new>

namespace zoka {

const XMLContentIndex* XMLCursors::updated(const XMLElement* owner, bool make) {
    const auto found = indexes_.find(owner);
    if (found == indexes_.end() && !make) {
        return nullptr;
    }
    try {
        XMLContentIndex& index =
            found == indexes_.end() ? indexes_.try_emplace(owner, owner).first->second : found->second;
        index.update();
        return &index;
    } catch (const std::bad_alloc&) {
        indexes_.erase(owner);
        return nullptr;
    }
}

}  // namespace zoka
