#include "tools/editor/win/PluginLibrary.h"

#include <cstdio>
#include <cstring>

namespace zoka {

namespace {

// A plug-in that answers a record for every index would keep the editor asking for ever.
constexpr std::int32_t kMostRecords = 256;

template <typename Function>
bool findEntry(HMODULE module, const char* name, Function& function) {
    const FARPROC found = GetProcAddress(module, name);
    static_assert(sizeof found == sizeof function);
    std::memcpy(&function, &found, sizeof found);
    return found != nullptr;
}

template <typename Function>
std::uintptr_t addressOf(Function function) {
    std::uintptr_t address;
    static_assert(sizeof address == sizeof function);
    std::memcpy(&address, &function, sizeof address);
    return address;
}

std::string nameOf(const PluginProcDef* record) {
    return record->name ? record->name : "";
}

}  // namespace

std::string hexText(std::uintptr_t value) {
    char text[32];
    std::snprintf(text, sizeof text, value < 10 ? "%llu" : "0x%llx", static_cast<unsigned long long>(value));
    return text;
}

std::string lastErrorText() {
    const DWORD code = GetLastError();
    char text[512];
    DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                                  0, text, sizeof text, nullptr);
    while (length && static_cast<unsigned char>(text[length - 1]) <= ' ') {
        --length;
    }
    return "error " + std::to_string(code) + (length ? ": " + std::string(text, length) : "");
}

Outcome PluginLibrary::load(const std::string& path) {
    if (m_module) {
        return Refusal{m_path + " is still loaded"};
    }
    const auto refuse = [&](const std::string& why) {
        m_log.add("LoadLibrary(" + quoted(path.c_str()) + ")", why);
        return Refusal{why};
    };
    m_module = LoadLibraryA(path.c_str());
    if (!m_module) {
        return refuse(lastErrorText());
    }
    const char* missing = nullptr;
    if (!findEntry(m_module, "PIInitialize", m_initialize)) {
        missing = "PIInitialize";
    } else if (!findEntry(m_module, "PIGetPIInfo", m_info)) {
        missing = "PIGetPIInfo";
    } else if (!findEntry(m_module, "PIGetProcDef", m_procDef)) {
        missing = "PIGetProcDef";
    }
    if (missing) {
        FreeLibrary(m_module);
        m_module = nullptr;
        return refuse(std::string("no plug-in: it does not export ") + missing);
    }
    m_path = path;
    m_log.add("LoadLibrary(" + quoted(path.c_str()) + ")", "loaded");
    return {};
}

void PluginLibrary::free() {
    if (!m_module) {
        return;
    }
    m_records.clear();
    const HMODULE module = m_module;
    m_module = nullptr;
    m_log.add("FreeLibrary(" + quoted(m_path.c_str()) + ")", "...");
    const BOOL freed = FreeLibrary(module);
    m_log.add("FreeLibrary", freed ? "freed" : lastErrorText());
}

std::int32_t PluginLibrary::initialize(AppInterface* appInterface) {
    const std::int32_t result = m_initialize(appInterface);
    m_log.add(std::string("PIInitialize(") + (appInterface ? "AppInterface" : "null") + ")",
              std::to_string(result));
    return result;
}

std::int32_t PluginLibrary::info(std::uint32_t words[3]) {
    const std::int32_t result = m_info(&words[0], &words[1], &words[2]);
    m_log.add("PIGetPIInfo()", std::to_string(result) + ", words " + hexText(words[0]) + " " +
                                   hexText(words[1]) + " " + hexText(words[2]));
    return result;
}

PluginProcDef* PluginLibrary::procDef(std::int32_t index) {
    PluginProcDef* const record = m_procDef(index);
    m_log.add("PIGetProcDef(" + std::to_string(index) + ")", record ? quoted(record->name) : "null");
    return record;
}

const std::vector<PluginProcDef*>& PluginLibrary::readRecords() {
    m_records.clear();
    m_remembered.clear();
    for (std::int32_t i = 0; i < kMostRecords; ++i) {
        PluginProcDef* const record = procDef(i);
        if (!record) {
            break;
        }
        m_records.push_back(record);
        if (record->execute) {
            m_remembered.push_back({nameOf(record), addressOf(record->execute) - addressOf(m_module)});
        }
    }
    return m_records;
}

std::int32_t PluginLibrary::execute(PluginProcDef* record, HostContext* context, std::int32_t* busy) {
    const std::string call = "execute " + quoted(record->name);
    m_log.add(call, "...");
    const std::int32_t result = record->execute(record, context, busy);
    m_log.add(call, std::to_string(result));
    return result;
}

std::int32_t PluginLibrary::terminate(PluginProcDef* record) {
    const std::string call = "terminate " + quoted(record->name);
    m_log.add(call, "...");
    const std::int32_t result = record->terminate();
    m_log.add(call, std::to_string(result));
    return result;
}

std::int32_t PluginLibrary::executeRemembered(const std::string& name, std::int32_t* busy) {
    for (const Remembered& entry : m_remembered) {
        if (entry.name != name || !m_module) {
            continue;
        }
        PluginExecute function;
        const std::uintptr_t address = addressOf(m_module) + entry.offset;
        std::memcpy(&function, &address, sizeof address);
        m_log.add("execute " + quoted(name.c_str()) + " in a library not initialised", "...");
        return function(nullptr, nullptr, busy);
    }
    return -1;
}

}  // namespace zoka
