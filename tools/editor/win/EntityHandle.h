// The operations on entities as the editor hands them to a plug-in, and how it answers them.
#pragma once

#include <atomic>
#include <string>

#include "plugin/host/HostAbi.h"
#include "tools/editor/win/OpenLevel.h"

namespace zoka {

// For trying how a plug-in bears hosts of several kinds.
enum class EntityAnswers {
    All,     // every operation
    One,     // those on the context's entity alone: the table ends before the optional ones
    Refuse,  // every operation is there, and fails
};

// "all", "one", "refuse". False for another word.
bool readEntityAnswers(const std::string& word, EntityAnswers& answers);

// Must outlive the panel that was given it.
class EntityHandle : public HostEntityOperations {
public:
    EntityHandle(OpenLevel& level, const std::atomic<EntityAnswers>& answers);
    EntityHandle(const EntityHandle&) = delete;
    EntityHandle& operator=(const EntityHandle&) = delete;

    // [editor thread], while no panel holds the handle. Empty: none.
    void select(const std::string& entity);
    const std::string& entity() const { return m_entity; }

private:
    static EntityHandle& of(HostEntityOperations* self) { return *static_cast<EntityHandle*>(self); }
    bool refuses() const { return m_answers.load() == EntityAnswers::Refuse; }
    std::int32_t logged(const std::string& call, bool done, const std::string& answer = "1");
    std::int32_t readSkill(const std::string& entity, std::int32_t number, float* value);
    std::int32_t writeSkill(const std::string& entity, std::int32_t number, float value);
    std::int32_t readFlag(const std::string& entity, std::int32_t number, std::int32_t* value);
    std::int32_t writeFlag(const std::string& entity, std::int32_t number, std::int32_t value);
    std::int32_t actionBlock(const std::string& entity, char* path, std::int32_t bytes, std::int32_t* start,
                             std::int32_t* length);
    std::int32_t selectedCount();
    std::int32_t selectedName(std::int32_t index, char* name, std::int32_t bytes);

    OpenLevel& m_level;
    const std::atomic<EntityAnswers>& m_answers;
    std::string m_entity;
};

}  // namespace zoka
