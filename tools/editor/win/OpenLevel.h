// The level that the editor has open, shared by the window and by the panels' calls through the host context.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "tools/editor/LevelMap.h"
#include "tools/editor/win/CallLog.h"
#include "tools/editor/win/SlimLock.h"

namespace zoka {

// All operations work on every thread.
class OpenLevel {
public:
    explicit OpenLevel(CallLog& log) : m_log(log) {}

    // Replaces what is open. One that can't be read is refused; then the old level stays.
    Outcome open(const std::string& path);
    Outcome save();
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
    void erase(const std::string& entity);

    // The names of the entities that the user has selected, in the level's order. Opening a level clears them.
    void select(std::vector<std::string> entities);
    std::vector<std::string> selection() const;
    // Counts up with every change of an entity or of the selection.
    unsigned allChanges() const;

    CallLog& log() { return m_log; }

private:
    CallLog& m_log;
    mutable SlimLock m_mutex;
    std::string m_path;
    LevelMap m_map;
    std::vector<std::string> m_selection;
    unsigned m_changes = 0, m_selectionChanges = 0;
};

}  // namespace zoka
