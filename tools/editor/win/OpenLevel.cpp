#include "tools/editor/win/OpenLevel.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>

#include "util/SafeWrite.h"

namespace zoka {

namespace {

bool inRange(std::int32_t number, int last) {
    return number >= 1 && number <= last;
}

std::string floatText(float value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return text;
}

}  // namespace

std::optional<std::string> readWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool OpenLevel::open(const std::string& path, std::string& error) {
    const std::optional<std::string> text = readWholeFile(path);
    if (!text) {
        error = path + " can't be read";
        return false;
    }
    std::string fault;
    std::optional<LevelMap> map = readLevelMap(*text, fault);
    if (!map) {
        error = path + ": " + fault;
        return false;
    }
    const std::lock_guard lock(m_mutex);
    m_map = std::move(*map);
    m_path = path;
    ++m_changes;
    return true;
}

bool OpenLevel::save(std::string& error) {
    error = safeWrite(path(), writeLevelMap(map())).error;
    return error.empty();
}

void OpenLevel::close() {
    const std::lock_guard lock(m_mutex);
    m_map = {};
    m_path.clear();
    ++m_changes;
}

std::string OpenLevel::path() const {
    const std::lock_guard lock(m_mutex);
    return m_path;
}

std::string OpenLevel::folder() const {
    const std::string file = path();
    const size_t cut = file.find_last_of("\\/");
    return cut == std::string::npos ? std::string() : file.substr(0, cut);
}

LevelMap OpenLevel::map() const {
    const std::lock_guard lock(m_mutex);
    return m_map;
}

unsigned OpenLevel::changes() const {
    const std::lock_guard lock(m_mutex);
    return m_changes;
}

void OpenLevel::entityChanged() {
    const std::lock_guard lock(m_mutex);
    ++m_changes;
}

EntityHandle::EntityHandle(OpenLevel& level) : HostEntityOperations{}, m_level(level) {
    getActionBlock = [](HostEntityOperations* self, char* path, std::int32_t size, std::int32_t* start,
                        std::int32_t* length) { return of(self).actionBlock(path, size, start, length); };
    getSkill = [](HostEntityOperations* self, std::int32_t number, float* value) {
        return of(self).readSkill(number, value);
    };
    setSkill = [](HostEntityOperations* self, std::int32_t number, float value) {
        return of(self).writeSkill(number, value);
    };
    getFlag = [](HostEntityOperations* self, std::int32_t number, std::int32_t* value) {
        return of(self).readFlag(number, value);
    };
    setFlag = [](HostEntityOperations* self, std::int32_t number, std::int32_t value) {
        return of(self).writeFlag(number, value);
    };
}

std::int32_t EntityHandle::readSkill(std::int32_t number, float* value) {
    const bool done =
        inRange(number, kEntitySkills) && value && m_level.withEntity(m_entity, [&](LevelEntity& e) {
            *value = e.skills[static_cast<size_t>(number - 1)];
            return true;
        });
    m_level.log().add("entity " + m_entity + ": getSkill(" + std::to_string(number) + ")",
                      done ? floatText(*value) : "0");
    return done;
}

std::int32_t EntityHandle::writeSkill(std::int32_t number, float value) {
    const bool done = inRange(number, kEntitySkills) && m_level.withEntity(m_entity, [&](LevelEntity& e) {
        e.skills[static_cast<size_t>(number - 1)] = value;
        return true;
    });
    m_level.log().add(
        "entity " + m_entity + ": setSkill(" + std::to_string(number) + ", " + floatText(value) + ")",
        done ? "1" : "0");
    if (done) {
        m_level.entityChanged();
    }
    return done;
}

std::int32_t EntityHandle::readFlag(std::int32_t number, std::int32_t* value) {
    const bool done =
        inRange(number, kEntityFlags) && value && m_level.withEntity(m_entity, [&](LevelEntity& e) {
            *value = static_cast<std::int32_t>(e.flags >> (number - 1) & 1U);
            return true;
        });
    m_level.log().add("entity " + m_entity + ": getFlag(" + std::to_string(number) + ")",
                      done ? std::to_string(*value) : "0");
    return done;
}

std::int32_t EntityHandle::writeFlag(std::int32_t number, std::int32_t value) {
    const bool done = inRange(number, kEntityFlags) && m_level.withEntity(m_entity, [&](LevelEntity& e) {
        const std::uint32_t bit = 1U << (number - 1);
        e.flags = value ? e.flags | bit : e.flags & ~bit;
        return true;
    });
    m_level.log().add(
        "entity " + m_entity + ": setFlag(" + std::to_string(number) + ", " + std::to_string(value) + ")",
        done ? "1" : "0");
    if (done) {
        m_level.entityChanged();
    }
    return done;
}

std::int32_t EntityHandle::actionBlock(char* path, std::int32_t size, std::int32_t* start,
                                       std::int32_t* length) {
    std::string script;
    std::string action;
    m_level.withEntity(m_entity, [&](LevelEntity& e) {
        script = e.script;
        action = e.action;
        return true;
    });
    const std::string file = m_level.folder() + "\\" + script;
    std::optional<ActionBlock> block;
    if (!script.empty() && path && start && length && size > static_cast<std::int32_t>(file.size())) {
        if (const std::optional<std::string> text = readWholeFile(file)) {
            block = findActionBlock(*text, action);
        }
    }
    if (block) {
        std::memcpy(path, file.c_str(), file.size() + 1);
        *start = static_cast<std::int32_t>(block->start);
        *length = static_cast<std::int32_t>(block->length);
    }
    m_level.log().add(
        "entity " + m_entity + ": getActionBlock(" + std::to_string(size) + ")",
        block ? quoted(path) + " " + std::to_string(*start) + "+" + std::to_string(*length) : "0");
    return block.has_value();
}

}  // namespace zoka
