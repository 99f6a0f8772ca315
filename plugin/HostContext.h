// What the host hands to a panel procedure besides the procedure's record.
#pragma once

#include <cstddef>
#include <cstdint>

// Reads and writes the selected entity; the host's own, never freed here. Null where the host offers none.
struct HostEntityOperations;

// Owned by the host; it stays valid until the panel is closed. The entity's name is copied when the
// procedure starts, so the host may change that text later. A null context, a null name and null
// operations are all allowed.
struct HostContext {
    std::intptr_t taken;     // set to 1 when the plug-in takes the context for a panel of the project's own
    const char* entityName;  // zero-terminated
    HostEntityOperations* operations;
};

static_assert(offsetof(HostContext, operations) == 2 * sizeof(void*));
