// All that host and plug-in share in memory: the table of operations by slot, the records, the contexts, the
// calling convention.
#pragma once

#include <cstddef>
#include <cstdint>

// --- Commands, and the sizes of the texts that the host fills

namespace zoka {

// Bytes of every path buffer handed to the host, the terminator included.
inline constexpr size_t kHostPathSize = 260;
// Bytes of the buffer for one item's name of the host's list.
inline constexpr size_t kHostItemNameSize = 64;

enum ZunCommandCode : std::int32_t {
    CmdGetSuiteFolder = 1,         // record; the suite's folder
    CmdOpenMap = 8,                // data: the map's path, size: its length without the terminator
    CmdGetTemplateSubfolder = 12,  // record; the name of the template subfolder
    CmdQueryPath13 = 13,           // record; a further folder, asked for by the entry controls
};

// The second argument of the command operation for every record command, whatever the record's own code.
inline constexpr std::int32_t kRecordCommand = 1;
inline constexpr std::int32_t kRecordSize = 16;

// A pair of texts for the substituting copy: `find` is replaced by `replacement`. An array of
// them ends with two nulls.
struct ZunSubstitution {
    const char* find;
    const char* replacement;
};

}  // namespace zoka

// --- The table of operations

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

// --- Entities

namespace zoka {

inline constexpr int kEntitySkills = 20;  // numbered from 1
inline constexpr int kEntityFlags = 8;    // likewise

// Bytes of the buffer for an entity's name, the terminator included.
inline constexpr size_t kHostEntityNameSize = 256;

}  // namespace zoka

// What the host lets a panel do with entities, reached through the host context's third word. A table of cdecl
// functions, each handed the table itself; the host's own, valid as long as the context. Callable on the
// editor's thread and on a panel's thread: the host does its own locking. Results: 1 done, 0 not (no such
// number, or the entity is gone), and then the outputs are untouched.
struct HostEntityOperations {
    // Bytes of this table as the host knows it; a host of an earlier kind ends it before the optional part.
    std::int32_t size;

    // The entity that the context names.

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

    // Optional: the table may end here, or these may be null. A host has all of them or is taken to have none.

    // How many entities are selected at this moment, and their names (zero-terminated, at most `size` bytes) by
    // index from 0.
    std::int32_t (*countSelected)(HostEntityOperations* self);
    std::int32_t (*getSelectedName)(HostEntityOperations* self, std::int32_t index, char* name,
                                    std::int32_t size);
    // The operations above, on any entity of the level by its name.
    std::int32_t (*getActionBlockOf)(HostEntityOperations* self, const char* entity, char* path,
                                     std::int32_t size, std::int32_t* start, std::int32_t* length);
    std::int32_t (*getSkillOf)(HostEntityOperations* self, const char* entity, std::int32_t number,
                               float* value);
    std::int32_t (*setSkillOf)(HostEntityOperations* self, const char* entity, std::int32_t number,
                               float value);
    std::int32_t (*getFlagOf)(HostEntityOperations* self, const char* entity, std::int32_t number,
                              std::int32_t* value);
    std::int32_t (*setFlagOf)(HostEntityOperations* self, const char* entity, std::int32_t number,
                              std::int32_t value);

    // Optional by itself: another number whenever an entity, the level or the selection has changed.
    std::int32_t (*getChangeCount)(HostEntityOperations* self, std::uint32_t* count);
};

// --- Procedures

// What the host hands to a panel procedure besides the procedure's record. Owned by the host; it stays valid
// until the panel is closed. The entity's name is copied when the procedure starts, so the host may change that
// text later. A null context, a null name and null operations are all allowed.
struct HostContext {
    std::intptr_t taken;     // set to 1 when the plug-in takes the context for a panel of the project's own
    const char* entityName;  // zero-terminated
    HostEntityOperations* operations;
};

static_assert(offsetof(HostContext, operations) == 2 * sizeof(void*));

struct PluginProcDef;

// All cdecl, on the editor's thread. `executeFlags` points at the host's busy word: 1 while the procedure
// works, 0 when it is done; a panel procedure writes the 0 later, from its panel's thread.
using PluginExecute = std::int32_t (*)(PluginProcDef* procRecord, HostContext* hostContext,
                                       std::int32_t* executeFlags);
using PluginTerminate = std::int32_t (*)();

// The procedure record that the host reads: thirteen words, the records laid end to end. A word is as wide as
// a pointer, so that the order holds on 64-bit builds too.
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
