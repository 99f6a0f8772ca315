// The level that the editor has open, shared by the window and by the panels' calls through the host context.
#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "plugin/host/HostAbi.h"
#include "tools/editor/LevelMap.h"
#include "tools/editor/win/CallLog.h"
#include "tools/editor/win/SlimLock.h"

namespace zoka {

// All operations work on every thread.
class OpenLevel {
public:
    explicit OpenLevel(CallLog& log) : m_log(log) {}

    // Replaces what is open. `error` says why it can't be read; then the old level stays.
    bool open(const std::string& path, std::string& error);
    bool save(std::string& error);
    void close();

    std::string path() const;    // empty when no level is open
    std::string folder() const;  // of the level's file, without a backslash at its end
    LevelMap map() const;
    // Counts up with every change of an entity, so that a view knows when to draw anew.
    unsigned changes() const;

    // Reads or changes one entity; false when there is none of that name.
    template <typename Use>
    bool withEntity(const std::string& name, Use use) {
        const std::lock_guard lock(m_mutex);
        for (LevelEntity& entity : m_map.entities) {
            if (entity.name == name) {
                return use(entity);
            }
        }
        return false;
    }
    // To be called after a change, without the lock.
    void entityChanged();
    CallLog& log() { return m_log; }

private:
    CallLog& m_log;
    mutable SlimLock m_mutex;
    std::string m_path;
    LevelMap m_map;
    unsigned m_changes = 0;
};

// The operations on one entity as they are handed to a plug-in. Must outlive the panel that was given it;
// made anew for another entity with select().
class EntityHandle : public HostEntityOperations {
public:
    explicit EntityHandle(OpenLevel& level);
    EntityHandle(const EntityHandle&) = delete;
    EntityHandle& operator=(const EntityHandle&) = delete;

    // [editor thread], while no panel holds the handle.
    void select(const std::string& entity) { m_entity = entity; }
    const std::string& entity() const { return m_entity; }

private:
    static EntityHandle& of(HostEntityOperations* self) { return *static_cast<EntityHandle*>(self); }
    std::int32_t readSkill(std::int32_t number, float* value);
    std::int32_t writeSkill(std::int32_t number, float value);
    std::int32_t readFlag(std::int32_t number, std::int32_t* value);
    std::int32_t writeFlag(std::int32_t number, std::int32_t value);
    std::int32_t actionBlock(char* path, std::int32_t size, std::int32_t* start, std::int32_t* length);

    OpenLevel& m_level;
    std::string m_entity;
};

// A file's whole bytes; nothing when it can't be read.
std::optional<std::string> readWholeFile(const std::string& path);

}  // namespace zoka
