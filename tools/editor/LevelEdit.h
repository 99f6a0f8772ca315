// Changing single values in a level's text, so that every other byte stays.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zoka {

struct LevelValue {
    std::string entity;
    bool isSkill = true;  // or a flag, with the value 0 or 1
    int number = 1;
    float value = 0;
};

// The text of a readable level with one value of an entity changed: its line's number is replaced, or a line is
// added before the entity's end, or a flag's line taken out. Nothing when there is no such entity.
std::optional<std::string> withLevelValue(std::string_view text, const LevelValue& change);

}  // namespace zoka
