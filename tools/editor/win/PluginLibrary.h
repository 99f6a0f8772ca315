// A plug-in as the editor holds it: a library loaded by its path, three entry points found by name, the
// records it answers. Nothing of a plug-in is linked.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "plugin/host/HostAbi.h"
#include "tools/editor/win/CallLog.h"
#include "util/Outcome.h"

namespace zoka {

// All operations: [editor thread]. Every call into the plug-in is logged.
class PluginLibrary {
public:
    explicit PluginLibrary(CallLog& log) : m_log(log) {}
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    // Loads the library and finds its entry points. After a refusal nothing stays loaded.
    Outcome load(const std::string& path);
    // Frees the library at once, whatever it is doing.
    void free();
    bool loaded() const { return m_module != nullptr; }
    HMODULE module() const { return m_module; }
    const std::string& path() const { return m_path; }

    // The entry points, as they are called.
    std::int32_t initialize(AppInterface* appInterface);
    std::int32_t info(std::uint32_t words[3]);
    PluginProcDef* procDef(std::int32_t index);

    // Asks for records 0, 1, 2, ... until a null, and keeps them.
    const std::vector<PluginProcDef*>& readRecords();
    const std::vector<PluginProcDef*>& records() const { return m_records; }

    // Calls a record's functions (which must not be null).
    std::int32_t execute(PluginProcDef* record, HostContext* context, std::int32_t* busy);
    std::int32_t terminate(PluginProcDef* record);

    // Places of the execute functions in the library, kept over free(): a host that remembers them can call
    // them in a freshly loaded library that was never initialised.
    std::int32_t executeRemembered(const std::string& name, std::int32_t* busy);

private:
    struct Remembered {
        std::string name;
        std::uintptr_t offset;
    };

    CallLog& m_log;
    HMODULE m_module = nullptr;
    std::string m_path;
    std::int32_t (*m_initialize)(AppInterface*) = nullptr;
    std::int32_t (*m_info)(std::uint32_t*, std::uint32_t*, std::uint32_t*) = nullptr;
    PluginProcDef* (*m_procDef)(std::int32_t) = nullptr;
    std::vector<PluginProcDef*> m_records;
    std::vector<Remembered> m_remembered;
};

// "error 126: Module not found." of the calling thread's last error.
std::string lastErrorText();
// A number as "0x84"; small ones (below 10) in decimal.
std::string hexText(std::uintptr_t value);

}  // namespace zoka
