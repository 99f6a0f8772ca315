#include "J8ProjectManager/J8Types.h"

namespace zoka {
namespace {

struct TypeName {
    J8Type type;
    const char* word;
    bool inFiles;
};

constexpr TypeName kTypes[] = {
    {J8Type::Unknown, "unknown", false},
    {J8Type::Empty, "empty", false},
    {J8Type::Ang, "ang", true},
    {J8Type::Bool, "bool", true},
    {J8Type::Color, "color", true},
    {J8Type::Entity, "entity", false},
    {J8Type::Flag, "flag", true},
    {J8Type::Float, "float", true},
    {J8Type::Int, "int", true},
    {J8Type::String, "string", true},
    {J8Type::Unit, "unit", true},
    {J8Type::Vec, "vec", true},
    {J8Type::AnimGroup, "animGroup", true},
};

}  // namespace

const char* typeWord(J8Type type) {
    for (const TypeName& name : kTypes) {
        if (name.type == type) {
            return name.word;
        }
    }
    return "<bad enum>";
}

J8Type typeOfWord(std::string_view word) {
    for (const TypeName& name : kTypes) {
        if (name.inFiles && word == name.word) {
            return name.type;
        }
    }
    return J8Type::Unknown;
}

}  // namespace zoka
