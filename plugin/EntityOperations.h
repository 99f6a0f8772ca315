// What the host lets a panel do with the selected entity, reached through the host context's third word. A
// table of cdecl functions, each handed the table itself; the host's own, valid as long as the context.
// Callable on the editor's thread and on a panel's thread: the host does its own locking. Results: 1 done, 0
// not (no such number, or the entity is gone), and then the outputs are untouched.
#pragma once

#include <cstdint>

struct HostEntityOperations {
    // Where the entity's behaviour stands: full path of the script (zero-terminated, at most `size`
    // bytes), and the action's block in it in bytes. 0 when the entity has no behaviour or its
    // script has no such action.
    std::int32_t (*getActionBlock)(HostEntityOperations* self, char* path, std::int32_t size,
                                   std::int32_t* start, std::int32_t* length);
    // Skills are numbered 1 to 20, flags 1 to 8 (a flag is 0 or 1).
    std::int32_t (*getSkill)(HostEntityOperations* self, std::int32_t number, float* value);
    std::int32_t (*setSkill)(HostEntityOperations* self, std::int32_t number, float value);
    std::int32_t (*getFlag)(HostEntityOperations* self, std::int32_t number, std::int32_t* value);
    std::int32_t (*setFlag)(HostEntityOperations* self, std::int32_t number, std::int32_t value);
};
