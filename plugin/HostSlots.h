// How the host's objects lie in memory: the table of operations by slot, the records, the calling convention.
// Shared by the adapter that calls a host and by the stand-in editor that is one; nothing else needs it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "plugin/HostCommands.h"

// The host's operations are C++ members: on 32-bit Windows the object travels in ECX.
#if defined(_WIN32) && !defined(_WIN64)
#define ZOKA_HOST_MEMBER __attribute__((thiscall))
#else
#define ZOKA_HOST_MEMBER
#endif

namespace zoka {

// Position in the editor interface's table of operations, 0 the first. The object's first word points to the
// table. "Word" results are 32-bit; "byte" results fill the low byte of the register alone. Paths lie in
// buffers of 260 bytes, also those that the host only reads.
enum HostSlot : unsigned {
    kSlotCreateMainScript = 1,   // word ()
    kSlotGetMainScriptPath = 4,  // word (char* buffer, int 260)
    kSlotMainScriptChanged = 5,  // word ()
    kSlotGetListItemName = 13,   // word (int index, char* buffer, int 64)
    kSlotEndListUpdate = 14,     // word ()
    kSlotChooseFile = 15,        // word (char* buffer, int 260, int 2, const char* "template_6")
    kSlotGetProjectFolder = 16,  // word (char* buffer, int 260)
    kSlotCopyFileToFolder = 17,  // byte (const char* source, const char* folder, int 260)
    // byte (const char* source, const char* target, const ZunSubstitution*)
    kSlotCopyFileWithSubstitutions = 18,
    kSlotExecuteCommand = 22,  // word (int 0, int command, void* data, int size)
};
// Operations of a table that ends with the last one called.
inline constexpr unsigned kHostSlotCount = 23;

inline constexpr std::int32_t kChooserMode = 2;
inline constexpr const char* kChooserTopic = "template_6";

}  // namespace zoka

// The editor's command record. On return `size` holds the command's result.
struct ZunCommandRecord {
    std::int32_t code;
    std::int32_t reserved;
    char* buffer;
    std::int32_t size;
};

// The host's application object, as far as it is known: its eleventh word points to the editor interface.
struct AppInterface {
    void* unknown[10];
    void* editor;
};

static_assert(sizeof(void*) != 4 || sizeof(ZunCommandRecord) == zoka::kRecordSize);
static_assert(offsetof(AppInterface, editor) == 10 * sizeof(void*));
