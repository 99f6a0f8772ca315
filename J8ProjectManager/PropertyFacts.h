// What a typed value of a component or a skill may be, and the row that shows it.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "J8ProjectManager/J8Types.h"
#include "controls/EntryFacts.h"

namespace zoka {

// A property's or a skill's own words; what they point to must outlive it.
struct J8TypedValue {
    const std::string& name;
    J8Type type;
    const std::string& doc;
    const std::vector<J8Constraint>& constraints;
    const std::vector<J8Enum>& enums;

    static J8TypedValue of(const J8Property& property) {
        return {property.name, property.type, property.doc, property.constraints, property.enums};
    }
    static J8TypedValue of(const J8Skill& skill) {
        return {skill.name, skill.type, skill.doc, skill.constraints, skill.enums};
    }
};

// The limits among the constraints, whose words are compared without regard to case: "min", "max" and "step"
// hold numbers, "list" the values allowed, separated by commas. Other words, and numbers that are none, limit
// nothing.
struct J8Limits {
    std::optional<double> minimum, maximum, step;
    std::vector<std::string> list;
};
J8Limits limitsOf(const std::vector<J8Constraint>& constraints);
// A minimum, maximum or step that is no number: limitsOf passes it over.
bool isLostLimit(const J8Constraint& constraint);

// The row of a value that the file holds. A drop list shows the names of enumeration entries. `inherited` is what
// holds without the value.
EntryFacts factsOf(const J8TypedValue& typed, const std::string& value,
                   const std::optional<std::string>& inherited = std::nullopt);
// Between what a file holds and what the row's control shows: names of enumeration entries, "1" and "0" of switches.
// `before` tells how the file wrote it, so that "true" becomes "false" and "1" becomes "0".
std::string shownValue(const J8TypedValue& typed, const std::string& stored);
std::string storedValue(const J8TypedValue& typed, const std::string& shown, const std::string& before);

// What the values of one property or skill are held against.
class J8ValueCheck {
public:
    // For many of them the choices are made ready; for one they are gone through.
    enum class Values { One, Many };
    explicit J8ValueCheck(const J8TypedValue& typed, Values values = Values::Many);

    // Why a file may not hold that value, in words for the user; empty when it may.
    std::string refusal(std::string_view value) const;

private:
    std::string listRefusal() const;
    bool isListed(std::string_view value) const;

    J8TypedValue m_typed;
    Values m_values;
    J8Limits m_limits;
    std::set<std::string, std::less<>> m_allowed;  // of many: the enumeration's values or those of the list
};
// Why one value is refused; for many, an object of the class above is faster.
std::string valueRefusal(const J8TypedValue& typed, std::string_view value);

// "min 0, max 100, step 5", for help and lists; empty without limits.
std::string limitsText(const J8TypedValue& typed);

}  // namespace zoka
