// The procedure record that the host reads: thirteen words, the records laid end to end.
#pragma once

#include <cstddef>
#include <cstdint>

struct HostContext;
struct PluginProcDef;

// All cdecl, on the editor's thread. `executeFlags` points at the host's busy word: 1 while the procedure
// works, 0 when it is done; a panel procedure writes the 0 later, from its panel's thread.
using PluginExecute = std::int32_t (*)(PluginProcDef* procRecord, HostContext* hostContext,
                                       std::int32_t* executeFlags);
using PluginTerminate = std::int32_t (*)();

// A word is as wide as a pointer, so that the order holds on 64-bit builds too.
struct PluginProcDef {
    std::uintptr_t flags;
    std::uintptr_t kind;
    std::uintptr_t id;
    const char* name;
    const char* menuPath;  // a backslash between levels, or null
    std::uintptr_t reserved5, reserved6, reserved7;
    PluginProcDef* self;
    PluginExecute execute;      // or null
    PluginTerminate terminate;  // or null
    std::uintptr_t reserved11, reserved12;
};

static_assert(sizeof(PluginProcDef) == 13 * sizeof(void*));
static_assert(sizeof(void*) != 4 || sizeof(PluginProcDef) == 52);
