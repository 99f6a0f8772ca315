// The three functions by which the host learns what the plug-in offers. Exported
// undecorated, cdecl. [editor thread]
#pragma once

#include <cstdint>

#include "plugin/host/HostAbi.h"

struct AppInterface;

extern "C" {
// 1 when the plug-in is ready; 0 after a message that says why not, or silently when it was initialised
// before. The object stays the host's and must outlive the plug-in.
std::int32_t PIInitialize(AppInterface* appInterface);
// Writes the interface version and capability words; returns 0. Null outputs are left out.
std::int32_t PIGetPIInfo(std::uint32_t* a, std::uint32_t* b, std::uint32_t* c);
// Record `index` of the table, which stays the plug-in's; null before PIInitialize and outside the table.
PluginProcDef* PIGetProcDef(std::int32_t index);
}
