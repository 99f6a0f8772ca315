// The stand-in editor's level file: a plain text with one block an entity, so that a sample level can be
// written by hand and compared by eye. The real editor's maps are its own affair; nothing but this program
// reads this form.
//
//     level 1
//     entity guard_north
//         action   patrol.kez guard_patrol
//         position 120 0 -64
//         skill    1 2.5
//         flag     3
//     end
//
// A line whose first word begins with "//" is a comment. Names hold no blanks. What is not named is 0.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/host/HostAbi.h"
#include "util/Outcome.h"

namespace zoka {

struct LevelEntity {
    std::string name;
    std::string script;  // file name in the project folder; empty when the entity has no behaviour
    std::string action;  // the action's name in that script
    std::array<float, 3> position{};
    std::array<float, kEntitySkills> skills{};  // skill n at n - 1
    std::uint32_t flags = 0;                    // flag n is bit n - 1
    std::string comments = {};  // the comment lines in front of it and in it, CR LF after each
};

struct LevelMap {
    std::vector<LevelEntity> entities;
    std::string comments = {};  // those behind the last entity
};

// Reads a level. Its first fault is a refusal: "line N: what is wrong".
Result<LevelMap> readLevelMap(std::string_view text);

// The level as text, lines ended by CR LF; reads back equal. An entity's comments stand in front of it.
std::string writeLevelMap(const LevelMap& level);

// Where an action's text stands in its script: from the word "action", or the comment "// action: NAME" directly
// above it, to the brace that closes its body, or to the end of the text when no brace does. Comments and quoted texts
// are passed over; names are compared without regard to case.
struct ActionBlock {
    size_t start = 0;
    size_t length = 0;
};
struct ScriptAction {
    std::string name;
    ActionBlock block;
    bool hasBody = false;   // false: it is only declared, up to a ';'
    bool isClosed = false;  // its body, or the declaration
};
// All actions in their order. Linear in the script.
std::vector<ScriptAction> actionsOf(std::string_view script);
// Of several of one name the first with a body. Nothing when the script has no such action.
std::optional<ActionBlock> findActionBlock(std::string_view script, std::string_view action);

}  // namespace zoka
