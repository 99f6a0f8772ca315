#include "tools/editor/win/EntityHandle.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

#include "util/OsFiles.h"

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

// False when the text with its terminator doesn't fit.
bool fill(char* buffer, std::int32_t bytes, const std::string& text) {
    if (!buffer || bytes <= 0 || text.size() >= static_cast<size_t>(bytes)) {
        return false;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

}  // namespace

bool readEntityAnswers(const std::string& word, EntityAnswers& answers) {
    if (word != "all" && word != "one" && word != "refuse") {
        return false;
    }
    answers = word == "all" ? EntityAnswers::All : word == "one" ? EntityAnswers::One : EntityAnswers::Refuse;
    return true;
}

EntityHandle::EntityHandle(OpenLevel& level, const std::atomic<EntityAnswers>& answers)
    : HostEntityOperations{}, m_level(level), m_answers(answers) {
    using Self = HostEntityOperations*;
    using Word = std::int32_t;
    getActionBlock = [](Self self, char* path, Word bytes, Word* start, Word* length) {
        return of(self).actionBlock(of(self).m_entity, path, bytes, start, length);
    };
    getSkill = [](Self self, Word number, float* value) {
        return of(self).readSkill(of(self).m_entity, number, value);
    };
    setSkill = [](Self self, Word number, float value) {
        return of(self).writeSkill(of(self).m_entity, number, value);
    };
    getFlag = [](Self self, Word number, Word* value) {
        return of(self).readFlag(of(self).m_entity, number, value);
    };
    setFlag = [](Self self, Word number, Word value) {
        return of(self).writeFlag(of(self).m_entity, number, value);
    };
    countSelected = [](Self self) { return of(self).selectedCount(); };
    getSelectedName = [](Self self, Word index, char* name, Word bytes) {
        return of(self).selectedName(index, name, bytes);
    };
    getActionBlockOf = [](Self self, const char* entity, char* path, Word bytes, Word* start, Word* length) {
        return of(self).actionBlock(entity, path, bytes, start, length);
    };
    getSkillOf = [](Self self, const char* entity, Word number, float* value) {
        return of(self).readSkill(entity, number, value);
    };
    setSkillOf = [](Self self, const char* entity, Word number, float value) {
        return of(self).writeSkill(entity, number, value);
    };
    getFlagOf = [](Self self, const char* entity, Word number, Word* value) {
        return of(self).readFlag(entity, number, value);
    };
    setFlagOf = [](Self self, const char* entity, Word number, Word value) {
        return of(self).writeFlag(entity, number, value);
    };
    // Asked every second: not worth a line in the log.
    getChangeCount = [](Self self, std::uint32_t* count) -> Word {
        if (of(self).refuses() || !count) {
            return 0;
        }
        *count = of(self).m_level.allChanges();
        return 1;
    };
    select({});
}

void EntityHandle::select(const std::string& entity) {
    m_entity = entity;
    size = m_answers.load() == EntityAnswers::One
               ? static_cast<std::int32_t>(offsetof(HostEntityOperations, countSelected))
               : static_cast<std::int32_t>(sizeof(HostEntityOperations));
}

std::int32_t EntityHandle::logged(const std::string& call, bool done, const std::string& answer) {
    m_level.log().add(call, done ? answer : "0");
    return done;
}

std::int32_t EntityHandle::readSkill(const std::string& entity, std::int32_t number, float* value) {
    const bool done = !refuses() && inRange(number, kEntitySkills) && value &&
                      m_level.withEntity(entity, [&](LevelEntity& e) {
                          *value = e.skills[static_cast<size_t>(number - 1)];
                          return true;
                      });
    return logged("entity " + entity + ": getSkill(" + std::to_string(number) + ")", done,
                  done ? floatText(*value) : "");
}

std::int32_t EntityHandle::writeSkill(const std::string& entity, std::int32_t number, float value) {
    const bool done =
        !refuses() && inRange(number, kEntitySkills) && m_level.withEntity(entity, [&](LevelEntity& e) {
            e.skills[static_cast<size_t>(number - 1)] = value;
            return true;
        });
    if (done) {
        m_level.entityChanged();
    }
    return logged("entity " + entity + ": setSkill(" + std::to_string(number) + ", " + floatText(value) + ")",
                  done);
}

std::int32_t EntityHandle::readFlag(const std::string& entity, std::int32_t number, std::int32_t* value) {
    const bool done = !refuses() && inRange(number, kEntityFlags) && value &&
                      m_level.withEntity(entity, [&](LevelEntity& e) {
                          *value = static_cast<std::int32_t>(e.flags >> (number - 1) & 1U);
                          return true;
                      });
    return logged("entity " + entity + ": getFlag(" + std::to_string(number) + ")", done,
                  done ? std::to_string(*value) : "");
}

std::int32_t EntityHandle::writeFlag(const std::string& entity, std::int32_t number, std::int32_t value) {
    const bool done =
        !refuses() && inRange(number, kEntityFlags) && m_level.withEntity(entity, [&](LevelEntity& e) {
            const std::uint32_t bit = 1U << (number - 1);
            e.flags = value ? e.flags | bit : e.flags & ~bit;
            return true;
        });
    if (done) {
        m_level.entityChanged();
    }
    return logged(
        "entity " + entity + ": setFlag(" + std::to_string(number) + ", " + std::to_string(value) + ")",
        done);
}

std::int32_t EntityHandle::actionBlock(const std::string& entity, char* path, std::int32_t bytes,
                                       std::int32_t* start, std::int32_t* length) {
    std::string script;
    std::string action;
    const bool there = !refuses() && start && length && m_level.withEntity(entity, [&](LevelEntity& e) {
        script = e.script;
        action = e.action;
        return !script.empty();
    });
    const std::string file = m_level.folder() + "\\" + script;
    std::optional<ActionBlock> block;
    if (there) {
        if (const std::optional<std::string> text = osFiles().readWhole(file)) {
            block = findActionBlock(*text, action);
        }
    }
    const bool done = block && fill(path, bytes, file);
    if (done) {
        *start = static_cast<std::int32_t>(block->start);
        *length = static_cast<std::int32_t>(block->length);
    }
    return logged("entity " + entity + ": getActionBlock(" + std::to_string(bytes) + ")", done,
                  done ? quoted(path) + " " + std::to_string(*start) + "+" + std::to_string(*length) : "");
}

std::int32_t EntityHandle::selectedCount() {
    return refuses() ? 0 : static_cast<std::int32_t>(m_level.selection().size());
}

std::int32_t EntityHandle::selectedName(std::int32_t index, char* name, std::int32_t bytes) {
    const std::vector<std::string> names = m_level.selection();
    return !refuses() && index >= 0 && static_cast<size_t>(index) < names.size() &&
           fill(name, bytes, names[static_cast<size_t>(index)]);
}

}  // namespace zoka
