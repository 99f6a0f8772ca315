#include "J8ProjectManager/PropertyFacts.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "controls/Colour.h"
#include "controls/EntryRules.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

bool isSwitch(J8Type type) {
    return type == J8Type::Bool || type == J8Type::Flag;
}
bool isFraction(J8Type type) {
    return type == J8Type::Float || type == J8Type::Unit || type == J8Type::Ang;
}

// The words of switches, off and on.
constexpr std::string_view kSwitchWords[][2] = {{"0", "1"}, {"false", "true"}, {"no", "yes"}, {"off", "on"}};

// 0 or 1; -1 for what is no word of a switch.
int switchState(std::string_view value) {
    for (const auto& words : kSwitchWords) {
        for (const int on : {0, 1}) {
            if (equalNoCase(words[on], trimmed(value))) {
                return on;
            }
        }
    }
    return -1;
}

// How many numbers, separated by commas or blanks, the text consists of; 0 when that is not all of it.
size_t countNumbers(std::string_view text) {
    size_t count = 0;
    text = trimmed(text);
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of(" \t\r\n,"), text.size());
        if (!numberOf(text.substr(0, end)) || end == 0) {
            return 0;
        }
        ++count;
        text = trimmed(text.substr(end));
        if (text.starts_with(',')) {
            text = trimmed(text.substr(1));
            if (text.empty()) {
                return 0;
            }
        }
    }
    return count;
}

std::string refusalOfType(const J8TypedValue& typed, std::string_view value) {
    const std::string_view text = trimmed(value);
    const auto number = numberOf(text);
    const bool hasDigits = text.find_first_of("0123456789") != text.npos;
    switch (typed.type) {
        case J8Type::Int:
            return number && hasDigits && text.find('.') == text.npos ? "" : "a whole number is needed";
        case J8Type::Float:
        case J8Type::Unit:
        case J8Type::Ang:
            return number && hasDigits ? "" : "a number is needed";
        case J8Type::Bool:
        case J8Type::Flag:
            return switchState(text) >= 0 ? "" : "true or false is needed";
        case J8Type::Vec:
            return countNumbers(text) == 3 ? "" : "three numbers are needed";
        case J8Type::Color:
            return colourOf(text) ? "" : "a color is needed: #rrggbb, or three or four numbers";
        default:
            return "";
    }
}

}  // namespace

J8Limits limitsOf(const std::vector<J8Constraint>& constraints) {
    J8Limits limits;
    for (const J8Constraint& constraint : constraints) {
        const auto number = numberOf(trimmed(constraint.value));
        if (equalNoCase(constraint.type, "min")) {
            limits.minimum = number;
        } else if (equalNoCase(constraint.type, "max")) {
            limits.maximum = number;
        } else if (equalNoCase(constraint.type, "step")) {
            limits.step = number && *number > 0 ? number : std::nullopt;
        } else if (equalNoCase(constraint.type, "list")) {
            std::string_view rest = constraint.value;
            while (!rest.empty()) {
                const size_t end = std::min(rest.find(','), rest.size());
                limits.list.emplace_back(trimmed(rest.substr(0, end)));
                rest.remove_prefix(std::min(end + 1, rest.size()));
            }
        }
    }
    return limits;
}

bool isLostLimit(const J8Constraint& constraint) {
    const bool isNumber = equalNoCase(constraint.type, "min") || equalNoCase(constraint.type, "max") ||
                          equalNoCase(constraint.type, "step");
    return isNumber && !numberOf(trimmed(constraint.value));
}

EntryFacts factsOf(const J8TypedValue& typed, const std::string& value,
                   const std::optional<std::string>& inherited) {
    EntryFacts facts;
    facts.label = typed.name;
    facts.help = typed.doc;
    facts.value = shownValue(typed, value);
    const auto extras = std::make_shared<EntryExtras>();
    if (inherited) {
        extras->standard = shownValue(typed, *inherited);
    }
    const J8Limits limits = limitsOf(typed.constraints);
    if (!typed.enums.empty()) {
        facts.field = EntryField::DropList;
        for (const J8Enum& entry : typed.enums) {
            facts.options.push_back(entry.name);
        }
    } else if (!limits.list.empty()) {
        facts.field = EntryField::DropList;
        facts.options = limits.list;
    } else if (isSwitch(typed.type) && switchState(value) >= 0) {
        facts.field = EntryField::Switch;
    } else if (typed.type == J8Type::Int || isFraction(typed.type)) {
        facts.decimal = isFraction(typed.type);
        facts.keepPoint = facts.decimal && value.find('.') != value.npos;
        facts.field = facts.decimal ? EntryField::FloatField : EntryField::IntField;
        // Half a range is left to valueRefusal: a row's limits come in pairs.
        if (limits.minimum && limits.maximum && *limits.minimum < *limits.maximum) {
            facts.limited = true;
            facts.minimum = *limits.minimum;
            facts.maximum = *limits.maximum;
            facts.field = EntryField::Slider;
        }
        facts.step = limits.step.value_or(0);
    } else if (typed.type == J8Type::Color) {
        facts.field = EntryField::ColourField;
    } else {
        facts.field = EntryField::StringField;
    }
    facts.extras = extras;
    return facts;
}

std::string shownValue(const J8TypedValue& typed, const std::string& stored) {
    for (const J8Enum& entry : typed.enums) {
        if (entry.value == stored) {
            return entry.name;
        }
    }
    const int state = typed.enums.empty() && isSwitch(typed.type) ? switchState(stored) : -1;
    return state >= 0 ? std::to_string(state) : stored;
}

std::string storedValue(const J8TypedValue& typed, const std::string& shown, const std::string& before) {
    for (const J8Enum& entry : typed.enums) {
        if (entry.name == shown) {
            return entry.value;
        }
    }
    if (!typed.enums.empty() || !isSwitch(typed.type) || (shown != "0" && shown != "1")) {
        return shown;
    }
    for (const auto& words : kSwitchWords) {
        if (equalNoCase(words[0], trimmed(before)) || equalNoCase(words[1], trimmed(before))) {
            return std::string(words[shown == "1"]);
        }
    }
    return shown == "1" ? "true" : "false";
}

J8ValueCheck::J8ValueCheck(const J8TypedValue& typed, Values values)
    : m_typed(typed), m_values(values), m_limits(limitsOf(typed.constraints)) {
    if (values == Values::One) {
        return;
    }
    for (const J8Enum& entry : typed.enums) {
        m_allowed.insert(entry.value);
    }
    if (typed.enums.empty()) {
        m_allowed.insert(m_limits.list.begin(), m_limits.list.end());
    }
}

bool J8ValueCheck::isListed(std::string_view value) const {
    if (m_values == Values::Many) {
        return m_allowed.contains(value);
    }
    return m_typed.enums.empty()
               ? std::ranges::find(m_limits.list, value) != m_limits.list.end()
               : std::ranges::find(m_typed.enums, value, &J8Enum::value) != m_typed.enums.end();
}

// A long list is cut: what isn't in it is told for each value.
std::string J8ValueCheck::listRefusal() const {
    constexpr size_t kNamed = 20;
    std::string names;
    const size_t count = m_typed.enums.empty() ? m_limits.list.size() : m_typed.enums.size();
    for (size_t i = 0; i < std::min(count, kNamed); ++i) {
        const std::string& value = m_typed.enums.empty() ? m_limits.list[i] : m_typed.enums[i].value;
        names += (names.empty() ? "" : ", ") + (value.empty() ? "\"\"" : value);
    }
    return "one of these is needed: " + names +
           (count > kNamed ? " and " + std::to_string(count - kNamed) + " more" : "");
}

std::string J8ValueCheck::refusal(std::string_view value) const {
    if (!m_typed.enums.empty()) {
        return isListed(value) ? "" : listRefusal();
    }
    if (std::string refusal = refusalOfType(m_typed, value); !refusal.empty()) {
        return refusal;
    }
    const J8Limits& limits = m_limits;
    const J8TypedValue& typed = m_typed;
    if (!m_limits.list.empty() && !isListed(trimmed(value))) {
        return listRefusal();
    }
    const auto number =
        typed.type == J8Type::Int || isFraction(typed.type) ? numberOf(trimmed(value)) : std::nullopt;
    if (!number) {
        return {};
    }
    if ((limits.minimum && *number < *limits.minimum) || (limits.maximum && *number > *limits.maximum)) {
        return "outside its limits (" + limitsText(typed) + ")";
    }
    if (limits.step) {
        const double steps = (*number - limits.minimum.value_or(0)) / *limits.step;
        if (std::abs(steps - std::round(steps)) > 1e-6) {
            return "between its steps (" + limitsText(typed) + ")";
        }
    }
    return {};
}

std::string valueRefusal(const J8TypedValue& typed, std::string_view value) {
    // Files are read with such blanks, and nothing writes them.
    const bool isNumber = typed.enums.empty() && (typed.type == J8Type::Int || isFraction(typed.type));
    if (std::string refusal = isNumber ? blanksRefusal(value) : ""; !refusal.empty()) {
        return refusal;
    }
    return J8ValueCheck(typed, J8ValueCheck::Values::One).refusal(value);
}

std::string limitsText(const J8TypedValue& typed) {
    std::string text;
    for (const J8Constraint& constraint : typed.constraints) {
        text += (text.empty() ? "" : ", ") + constraint.type + " " + constraint.value;
    }
    return text;
}

}  // namespace zoka
