// The four procedures behind the host's menu and the table that lists them. Everything runs on the editor's
// thread unless it says otherwise; windows and threads come through PluginSeams.
#pragma once

#include <optional>
#include <string>

#include "plugin/EntryPoints.h"
#include "plugin/PluginSeams.h"
#include "plugin/host/HostAbi.h"

namespace zoka {

inline constexpr std::int32_t kProcCount = 4;

// The records that the host reads, in its menus' order.
extern PluginProcDef g_procDefs[kProcCount];
// The host's object as PIInitialize received it, also when it was refused; not owned.
extern AppInterface* g_appInterface;
// The entity panel's dialog, kept from its opening until its terminate or its next opening; owned.
extern PanelDialog* g_behaviorDialog;

// Must be set before PIInitialize; not owned, null takes it out again.
void setPluginSeams(PluginSeams* seams);

// The library's start: false after a message when the window toolkit could not be started; the library then
// refuses to load.
bool startLibrary(bool (*startToolkit)());

// [the unloading thread, with the loader's lock held] Closes both panels, waits until no thread runs code of
// this library, closes the debug log and brings every process-wide value back to where it started. Not for a
// process that ends: the panels' threads are gone by then and nothing may wait for them.
void shutDownPlugin();

// The project file that belongs to a main script: the four characters from the last "." on become ".xml".
// Nothing for a path without a ".".
std::optional<std::string> projectFileOf(const std::string& mainScript);

}  // namespace zoka
