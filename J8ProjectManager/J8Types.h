// What components, behaviours and levels are made of: typed properties with their limits.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zoka {

enum class J8Type : std::int8_t {
    Unknown = -1,
    Empty = 0,
    Ang = 2,
    Bool = 3,
    Color = 4,
    Entity = 5,  // never read from a file
    Flag = 6,
    Float = 7,
    Int = 8,
    String = 9,
    Unit = 10,
    Vec = 11,
    AnimGroup = 12,
};

// The word of a type: "unknown", "empty" and, for a number without a name, "<bad enum>" included. Static.
const char* typeWord(J8Type type);
// The type of a file's word, compared to the letter; Unknown for every word that files may not use.
J8Type typeOfWord(std::string_view word);

struct J8Constraint {
    std::string type, value;
    bool operator==(const J8Constraint&) const = default;
};

struct J8Enum {
    std::string name, value, doc;
    bool operator==(const J8Enum&) const = default;
};

// `place` is where its element stands in its file, see XMLNode::place.
struct J8Property {
    std::string name, value, doc;
    J8Type type = J8Type::Unit;
    bool edit = false, set = false, get = false;
    std::uint32_t place = 0;
    std::vector<J8Constraint> constraints;
    std::vector<J8Enum> enums;
};

// A numbered skill of a behaviour.
struct J8Skill {
    int num = 0;
    std::uint32_t place = 0;
    J8Type type = J8Type::Unit;
    std::string name, value, doc;
    std::vector<J8Constraint> constraints;
    std::vector<J8Enum> enums;
};

// A value given to a property of a component.
struct J8Edit {
    std::string name, value;
    std::uint32_t place = 0;  // 0: it stands in no file yet
    bool operator==(const J8Edit& other) const { return name == other.name && value == other.value; }
};

}  // namespace zoka
