#include "tools/editor/win/HostTable.h"

#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace zoka {

namespace {

// More slots than are known, so that a plug-in which calls another one is logged instead of crashing.
constexpr size_t kTableSize = 64;
static_assert(kTableSize >= kHostSlotCount);

// A host whose list never ended would be no host to try anything with.
constexpr int kFaultyListItems = 1000;

// "Byte" results leave the rest of the register as it happens to be.
constexpr std::int32_t kByteResidue = 0x5A5A5A00;

std::string number(std::int32_t value) {
    return std::to_string(value);
}

std::string callText(const char* name, std::initializer_list<std::string> arguments) {
    std::string text = std::string(name) + "(";
    for (const std::string& argument : arguments) {
        if (text.back() != '(') {
            text += ", ";
        }
        text += argument;
    }
    return text + ")";
}

}  // namespace

bool readHostFault(const std::string& word, HostFault& fault) {
    constexpr std::pair<const char*, HostFault> kWords[] = {{"normal", HostFault::None},
                                                            {"fail", HostFault::Fail},
                                                            {"empty", HostFault::Empty},
                                                            {"full", HostFault::Full}};
    for (const auto& [name, value] : kWords) {
        if (word != name) {
            continue;
        }
        fault = value;
        return true;
    }
    return false;
}

// Plain functions with the convention of members, so that each has an address to put into a table.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wattributes"

struct HostTable::Slots {
    static std::int32_t ZOKA_HOST_MEMBER createMainScript(RawEditor* self) {
        if (self->owner->m_fault == HostFault::None) {
            self->owner->m_behind.CreateMainScript();
        }
        return self->owner->answerWord("CreateMainScript()", true);
    }
    static std::int32_t ZOKA_HOST_MEMBER getMainScriptPath(RawEditor* self, char* buffer, std::int32_t size) {
        const auto path = self->owner->m_behind.GetMainScriptPath();
        return self->owner->answerText(callText("GetMainScriptPath", {number(size)}), buffer, size,
                                       path.has_value(), path.value_or(""));
    }
    static std::int32_t ZOKA_HOST_MEMBER mainScriptChanged(RawEditor* self) {
        if (self->owner->m_fault == HostFault::None) {
            self->owner->m_behind.MainScriptChanged();
        }
        return self->owner->answerWord("MainScriptChanged()", true);
    }
    static std::int32_t ZOKA_HOST_MEMBER getListItemName(RawEditor* self, std::int32_t index, char* buffer,
                                                         std::int32_t size) {
        const auto name = self->owner->m_behind.GetListItemName(index);
        const bool faulty = self->owner->m_fault != HostFault::None;
        if (faulty && index >= kFaultyListItems) {
            return self->owner->answerWord("GetListItemName past the end", false);
        }
        return self->owner->answerText(callText("GetListItemName", {number(index), number(size)}), buffer,
                                       size, name.has_value(), name.value_or(""));
    }
    static std::int32_t ZOKA_HOST_MEMBER endListUpdate(RawEditor* self) {
        if (self->owner->m_fault == HostFault::None) {
            self->owner->m_behind.EndListUpdate();
        }
        return self->owner->answerWord("EndListUpdate()", true);
    }
    static std::int32_t ZOKA_HOST_MEMBER chooseFile(RawEditor* self, char* buffer, std::int32_t size,
                                                    std::int32_t mode, const char* topic) {
        std::optional<std::string> chosen;
        if (self->owner->m_fault == HostFault::None && buffer && size > 0) {
            chosen = self->owner->m_behind.ChooseFile(
                std::string(buffer, strnlen(buffer, static_cast<size_t>(size))));
        }
        return self->owner->answerText(callText("ChooseFile", {number(size), number(mode), quoted(topic)}),
                                       buffer, size, chosen.has_value(), chosen.value_or(""));
    }
    static std::int32_t ZOKA_HOST_MEMBER getProjectFolder(RawEditor* self, char* buffer, std::int32_t size) {
        const std::string folder = self->owner->m_behind.GetProjectFolder();
        return self->owner->answerText(callText("GetProjectFolder", {number(size)}), buffer, size,
                                       !folder.empty(), folder);
    }
    static std::int32_t ZOKA_HOST_MEMBER copyFileToFolder(RawEditor* self, const char* source,
                                                          const char* folder, std::int32_t size) {
        bool done = false;
        if (self->owner->m_fault == HostFault::None && source && folder) {
            done = self->owner->m_behind.CopyFileToFolder(source, folder);
        }
        return kByteResidue |
               self->owner->answerWord(
                   callText("CopyFileToFolder", {quoted(source), quoted(folder), number(size)}), done);
    }
    static std::int32_t ZOKA_HOST_MEMBER copyWithSubstitutions(RawEditor* self, const char* source,
                                                               const char* target,
                                                               const ZunSubstitution* list) {
        std::vector<std::pair<std::string, std::string>> pairs;
        for (; list && list->find; ++list) {
            pairs.emplace_back(list->find, list->replacement ? list->replacement : "");
        }
        bool done = false;
        if (self->owner->m_fault == HostFault::None && source && target) {
            done = self->owner->m_behind.CopyFileWithSubstitutions(source, target, pairs);
        }
        std::string substitutions = number(static_cast<std::int32_t>(pairs.size())) + " substitutions";
        for (const auto& [find, replacement] : pairs) {
            substitutions += " " + quoted(find.c_str()) + "=" + quoted(replacement.c_str());
        }
        return kByteResidue |
               self->owner->answerWord(
                   callText("CopyFileWithSubstitutions", {quoted(source), quoted(target), substitutions}),
                   done);
    }
    static std::int32_t ZOKA_HOST_MEMBER executeCommand(RawEditor* self, std::int32_t zero,
                                                        std::int32_t command, void* data, std::int32_t size) {
        HostTable& owner = *self->owner;
        if (command == CmdOpenMap && data && size >= 0) {
            const std::string path(static_cast<const char*>(data), static_cast<size_t>(size));
            bool done = owner.m_fault != HostFault::Fail;
            if (owner.m_fault == HostFault::None) {
                done = owner.m_behind.OpenMap(path);
            }
            return owner.answerWord(callText("ExecuteCommand open map", {quoted(path.c_str()), number(size)}),
                                    done);
        }
        if (command != kRecordCommand || !data || size != kRecordSize) {
            return owner.answerWord(
                callText("ExecuteCommand not understood", {number(zero), number(command), number(size)}),
                false);
        }
        auto& record = *static_cast<ZunCommandRecord*>(data);
        std::string text;
        if (record.code == CmdGetSuiteFolder || record.code == CmdGetTemplateSubfolder ||
            record.code == CmdQueryPath13) {
            text = owner.m_behind.QueryFolder(static_cast<ZunCommandCode>(record.code));
        }
        const std::int32_t done =
            owner.answerText(callText("ExecuteCommand record", {number(record.code), number(record.size)}),
                             record.buffer, record.size, !text.empty(), text);
        if (!done) {
            record.size = 0;
        }
        return done;
    }

    template <size_t Slot>
    static std::int32_t ZOKA_HOST_MEMBER unknown(RawEditor* self) {
        return self->owner->answerWord("slot " + std::to_string(Slot) + " (not known)", false);
    }

    template <typename Function>
    static const void* address(Function function) {
        return reinterpret_cast<const void*>(function);
    }
    template <size_t... Slot>
    static std::array<const void*, kTableSize> make(std::index_sequence<Slot...>) {
        std::array<const void*, kTableSize> table{address(&unknown<Slot>)...};
        table[kSlotCreateMainScript] = address(&createMainScript);
        table[kSlotGetMainScriptPath] = address(&getMainScriptPath);
        table[kSlotMainScriptChanged] = address(&mainScriptChanged);
        table[kSlotGetListItemName] = address(&getListItemName);
        table[kSlotEndListUpdate] = address(&endListUpdate);
        table[kSlotChooseFile] = address(&chooseFile);
        table[kSlotGetProjectFolder] = address(&getProjectFolder);
        table[kSlotCopyFileToFolder] = address(&copyFileToFolder);
        table[kSlotCopyFileWithSubstitutions] = address(&copyWithSubstitutions);
        table[kSlotExecuteCommand] = address(&executeCommand);
        return table;
    }
};

#pragma GCC diagnostic pop

HostTable::HostTable(ZunEditorInterface& behind, CallLog& log) : m_behind(behind), m_log(log) {
    static const std::array<const void*, kTableSize> table =
        Slots::make(std::make_index_sequence<kTableSize>());
    m_editor = {table.data(), this};
    setEditorPresent(true);
}

void HostTable::setEditorPresent(bool present) {
    m_application.editor = present ? &m_editor : nullptr;
}

std::int32_t HostTable::answerText(const std::string& call, char* buffer, std::int32_t size, bool have,
                                   const std::string& text) {
    Sleep(m_delay);
    const auto room = static_cast<size_t>(size > 0 ? size : 0);
    if (!buffer || room == 0 || m_fault == HostFault::Fail) {
        return answerWord(call, false);
    }
    switch (m_fault) {
        case HostFault::Empty:
            buffer[0] = 0;
            m_log.add(call, "1 \"\" (fault: empty)");
            return 1;
        case HostFault::Full:
            std::memset(buffer, 'x', room);
            m_log.add(call, "1, all bytes filled (fault: full)");
            return 1;
        default:
            break;
    }
    if (!have || text.size() >= room) {
        return answerWord(call, false);
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    m_log.add(call, "1 " + quoted(text.c_str()));
    return 1;
}

std::int32_t HostTable::answerWord(const std::string& call, bool done) {
    const HostFault fault = m_fault;
    if (fault != HostFault::None) {
        done = fault != HostFault::Fail;
    }
    m_log.add(call, std::string(done ? "1" : "0") + (fault == HostFault::None ? "" : " (fault)"));
    return done ? 1 : 0;
}

}  // namespace zoka
