// The lines that values of entities are copied and pasted as: "skill3 Speed = 2.5", "body.mass = 80". All in UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "util/Outcome.h"

namespace zoka {

// What a paste did.
struct PasteResult {
    size_t taken = 0;                  // values that are others now
    std::vector<std::string> refused;  // the lines that found no place, each with the reason

    void refuse(std::string_view line, const std::string& why) {
        refused.push_back(std::string(line) + "  (" + why + ')');
    }
};

// What a row is called in a line.
struct LineName {
    std::string field;  // "skill3", "flag1"; empty for a component's value
    std::string label;  // "Speed", "body.mass"; both are empty for a row without a value

    // Empty for a row without a value.
    std::string text() const { return field.empty() ? label : field + ' ' + label; }
};

// The rows that lines go to, counted from 0.
class BehaviorLines {
public:
    explicit BehaviorLines(std::vector<LineName> rows) : m_rows(std::move(rows)) {}

    struct Place {
        size_t row = 0;
        std::string_view value;  // within the line
    };
    // A value goes to the row of the same number and name, or else of the same name; a component's to that of its name
    // alone. Refused where no row is meant, or several are.
    Result<Place> placeOf(std::string_view line) const;

private:
    Result<size_t> rowOf(std::string_view field, std::string_view label) const;

    std::vector<LineName> m_rows;
};

// Those lines of the text that hold something, without the blanks around it.
std::vector<std::string_view> filledLines(std::string_view text);

}  // namespace zoka
