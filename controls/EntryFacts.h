// What a row of a panel shows and which values it takes.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controls/TextSet.h"

namespace zoka {

enum class EntryField {
    Caption,
    Picture,
    Text,
    Heading,
    Switch,  // "1" on, "0" off
    Slider,  // with its number field
    IntField,
    FloatField,
    FileField,
    StringField,
    ColourField,  // a text with a swatch and a chooser; see Colour.h
    DropList,
};

// How a value stands in its script, which decides what it may not hold.
enum class ValueShape {
    None,          // no value in a script
    Switch,        // a line commented out or not
    Bare,          // ends at a blank, ':', ';', '=' or ','
    Quoted,        // between double quotes
    Bracketed,     // between '<' and '>'
    WithBrackets,  // the same, and they are a part of the value
};

// What few rows have.
struct EntryExtras {
    std::optional<std::string> standard = {};  // the value that it has where nobody has set one
    bool alarming = false;  // something is wrong with it: its label stands out, and says what
};

struct EntryFacts {
    EntryField field = EntryField::Text;
    ValueShape shape = ValueShape::None;
    TextSet set = TextSet::System;  // of all its texts
    std::string label = {};         // of a picture its file's name
    std::string help = {};
    std::string value = {};  // as loaded

    // Of number fields and sliders. Without limits any number is taken.
    bool limited = false;
    double minimum = 0, maximum = 0;
    double step = 0;         // 0: the control finds one
    bool decimal = false;    // takes numbers with a point
    bool keepPoint = false;  // a whole number is written with ".0", so that it's read as a decimal one again

    // Of a drop list; a value that is none of them is fine. Names of the host stand behind its own options, in
    // one list for all rows (null: none).
    std::vector<std::string> options = {};
    std::shared_ptr<const std::vector<std::string>> hostNames = {};

    int lines = 0;           // of a text field: lines shown, 0 and 1 alike are one
    bool bareFeeds = false;  // its lines end in LF, not in CR LF
    int maxChars = 0;        // 0: as many as one likes

    bool different = false;  // the row stands for several values, which are not equal; `value` is empty then
    std::shared_ptr<const EntryExtras> extras = {};  // null: none
};

inline const EntryExtras& extrasOf(const EntryFacts& facts) {
    static const EntryExtras kNone;
    return facts.extras ? *facts.extras : kNone;
}

inline bool hasValue(EntryField field) {
    return field >= EntryField::Switch;
}
inline bool isNumber(EntryField field) {
    return field == EntryField::Slider || field == EntryField::IntField || field == EntryField::FloatField;
}

}  // namespace zoka
