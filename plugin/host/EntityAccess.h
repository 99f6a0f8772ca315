// The entities of the open level, as a panel sees them: which are selected, where their behaviour stands, their
// skills and flags.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "plugin/host/HostAbi.h"

namespace zoka {

// Where an entity's action stands. Position and length are the host's own, in bytes, and may be wrong: the script
// may have changed since.
struct ActionPlace {
    std::string script;  // full path
    std::int32_t start = 0;
    std::int32_t length = 0;

    bool operator==(const ActionPlace&) const = default;
};

// Entities go by their names. An operation fails for an entity that is gone, for a number out of range and where
// the host refuses; nothing has changed then. No operation throws. [editor or panel thread; the host locks]
class EntityAccess {
public:
    virtual ~EntityAccess() = default;

    // Whether selected() follows the user's selection. A host that can't tell gives one entity for good.
    virtual bool followsSelection() const = 0;
    // The names of the selected entities, in the host's order; empty when none is.
    virtual std::vector<std::string> selected() = 0;
    // A number that is another one after an entity, the level or the selection has changed; nothing where the
    // host doesn't count.
    virtual std::optional<std::uint32_t> changes() = 0;

    // Nothing when the entity has no behaviour or is gone.
    virtual std::optional<ActionPlace> action(const std::string& entity) = 0;
    virtual std::optional<float> skill(const std::string& entity, int number) = 0;
    virtual bool setSkill(const std::string& entity, int number, float value) = 0;
    virtual std::optional<bool> flag(const std::string& entity, int number) = 0;
    virtual bool setFlag(const std::string& entity, int number, bool on) = 0;
};

// The host's operations on entities for the panel that is given `context`. Null when it brings none. The
// context's operations must outlive the object; its entity's name is copied.
std::unique_ptr<EntityAccess> makeEntityAccess(const HostContext* context);

}  // namespace zoka
