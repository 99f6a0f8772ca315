#include "controls/EntryRules.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "controls/Colour.h"
#include "util/LexChars.h"
#include "util/Text.h"

namespace zoka {
namespace {

constexpr std::string_view kEmptyBare = "A value is required here.";
constexpr double kNoLimit = 999999.0;  // what a missing limit is read as

std::string refusalOfBare(std::string_view text) {
    if (text.empty()) {
        return std::string(kEmptyBare);
    }
    if (text.find_first_of(" \t") != text.npos) {
        return "A blank is not allowed here: the value would end at it.";
    }
    const size_t bad = text.find_first_of(":;=,");
    if (bad != text.npos) {
        return std::string("\"") + text[bad] + "\" is not allowed here: the value would end at it.";
    }
    if (text.front() == '"' || text.front() == '<') {
        return std::string("The value can't begin with \"") + text.front() +
               "\": it would be read as another kind.";
    }
    if (text.front() == '/' || text.find("//") != text.npos || text.find("/*") != text.npos) {
        return "The value can't hold the slashes of a comment.";
    }
    return {};
}

std::string refusalOfBracketed(std::string_view text) {
    const size_t bad = text.find_first_of("<>\"|?*");
    if (bad != text.npos) {
        return std::string("\"") + text[bad] + "\" can't stand in a file name.";
    }
    if (!text.empty() && (lex::isBlank(text.front()) || lex::isBlank(text.back()))) {
        return "A file name can't begin or end with a blank.";
    }
    return {};
}

std::string refusalWithBrackets(std::string_view text) {
    if (text.size() < 2 || text.front() != '<' || text.back() != '>') {
        return "The value stands between < and > here.";
    }
    return text.find_first_of("<>", 1) < text.size() - 1 ? "The value would end at its first >." : "";
}

std::string refusalOfNumber(const EntryFacts& facts, std::string_view text) {
    if (text.empty()) {
        return std::string(kEmptyBare);
    }
    if (std::string why = blanksRefusal(text); !why.empty()) {
        return why;
    }
    const std::string range = allowedRange(facts).empty() ? "" : " (" + allowedRange(facts) + ")";
    if (!numberOf(text) || text.find_first_of("0123456789") == text.npos) {
        return (facts.decimal ? "Enter a number such as -1.5" : "Enter a whole number such as 15") + range +
               ".";
    }
    if (!facts.decimal && (text.find('.') != text.npos || text.front() == '+')) {
        return "Enter a whole number such as 15" + range + ".";
    }
    return {};
}

}  // namespace

std::optional<double> numberOf(std::string_view text) {
    constexpr size_t kExactDigits = 15;  // of a whole number that a double holds as it is
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    bool point = false;
    std::uint64_t whole = 0;  // wraps around in numbers for which it doesn't count
    for (const char c : text) {
        if (c == '.' && !point) {
            point = true;
        } else if (!lex::isDecimal(c)) {
            return std::nullopt;
        } else {
            whole = whole * 10 + static_cast<std::uint64_t>(c - '0');
        }
    }
    if (!point && text.size() <= kExactDigits) {  // most numbers; several times as fast as what follows
        return negative ? -static_cast<double>(whole) : static_cast<double>(whole);
    }
    double value = 0;
    const auto result =
        std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (result.ec == std::errc::result_out_of_range) {
        value = HUGE_VAL;
    }
    return negative ? -value : value;  // a lone sign or point is 0
}

std::string blanksRefusal(std::string_view text) {
    const std::string_view number = trimmed(text);
    return number.size() < text.size() && !number.empty() && numberOf(number)
               ? "No blank may stand in front of the number or behind it."
               : "";
}

std::string shapeRefusal(const EntryFacts& facts, std::string_view text) {
    if (text.find('\0') != text.npos) {
        return "A character of value 0 can't be written.";
    }
    if (!isWritten(text, facts.set)) {
        return "The text is no UTF-8, in which this script is written.";
    }
    const bool severalLines =
        (facts.shape == ValueShape::Quoted || facts.shape == ValueShape::None) && facts.lines > 1;
    if (!severalLines && text.find_first_of("\r\n") != text.npos) {
        return "A line end is not allowed here.";
    }
    switch (facts.shape) {
        case ValueShape::Bare:
            return refusalOfBare(text);
        case ValueShape::Bracketed:
            return refusalOfBracketed(text);
        case ValueShape::WithBrackets:
            return refusalWithBrackets(text);
        case ValueShape::Quoted:
            return text.find('"') == text.npos
                       ? ""
                       : "A double quote is not allowed here: the text would end at it.";
        case ValueShape::Switch:
        case ValueShape::None:
            break;
    }
    return {};
}

std::string fieldRefusal(const EntryFacts& facts, std::string_view text) {
    if (!hasValue(facts.field)) {
        return "Nothing can be entered here.";
    }
    // A number's own reason is the plainer one, and its characters can break nothing.
    if (isNumber(facts.field)) {
        return refusalOfNumber(facts, text);
    }
    if (std::string why = shapeRefusal(facts, text); !why.empty()) {
        return why;
    }
    if (facts.field == EntryField::Switch && text != "0" && text != "1") {
        return "A switch is either 1 (on) or 0 (off).";
    }
    if (facts.field == EntryField::ColourField && !colourOf(text)) {
        return "Enter a color such as #3080ff, or as three numbers from 0 to 255 such as 48 128 255.";
    }
    return {};
}

std::string storedRefusal(const EntryFacts& facts, std::string_view text) {
    if (!isNumber(facts.field)) {
        return fieldRefusal(facts, text);
    }
    EntryFacts any = facts;
    any.decimal = true;
    return refusalOfNumber(any, text);
}

std::string entryRefusal(const EntryFacts& facts, std::string_view text) {
    if (hasValue(facts.field) && !facts.different && text == facts.value) {
        return {};
    }
    if (std::string why = fieldRefusal(facts, text); !why.empty()) {
        return why;
    }
    if (isNumber(facts.field) && facts.limited) {
        const double value = *numberOf(text);
        if (value < facts.minimum || value > facts.maximum) {
            return std::string(text) + " is too " + (value < facts.minimum ? "small" : "large") + " (" +
                   allowedRange(facts) + ").";
        }
    }
    const size_t characters = characterCount(text, facts.set);
    if (facts.maxChars > 0 && characters > static_cast<size_t>(facts.maxChars)) {
        return "At most " + std::to_string(facts.maxChars) + " characters fit here; these are " +
               std::to_string(characters) + ".";
    }
    return {};
}

std::string allowedRange(const EntryFacts& facts) {
    if (!isNumber(facts.field) || !facts.limited) {
        return {};
    }
    const bool low = facts.minimum > -kNoLimit, high = facts.maximum < kNoLimit;
    const auto text = [](double value) { return numberText(value, decimalsOf(value)); };
    if (low && high) {
        return "allowed: " + text(facts.minimum) + " to " + text(facts.maximum);
    }
    if (low) {
        return "allowed: " + text(facts.minimum) + " or more";
    }
    if (high) {
        return "allowed: " + text(facts.maximum) + " or less";
    }
    return {};
}

bool hasChoices(const EntryFacts& facts) {
    return !facts.options.empty() || (facts.hostNames && !facts.hostNames->empty());
}

std::string_view withoutBrackets(std::string_view text) {
    return text.size() >= 2 && text.front() == '<' && text.back() == '>' ? text.substr(1, text.size() - 2)
                                                                         : text;
}

bool isSameChoice(const EntryFacts& facts, std::string_view choice, std::string_view text) {
    return choice == text ||
           (facts.shape == ValueShape::WithBrackets && withoutBrackets(choice) == withoutBrackets(text));
}

bool isChoice(const EntryFacts& facts, std::string_view text) {
    const auto in = [&](const std::vector<std::string>& list) {
        return std::ranges::any_of(
            list, [&](const std::string& choice) { return isSameChoice(facts, choice, text); });
    };
    return in(facts.options) || (facts.hostNames && in(*facts.hostNames));
}

std::string choiceRefusal(const EntryFacts& facts, std::string_view text) {
    if (facts.field != EntryField::DropList || !hasChoices(facts) || isChoice(facts, text)) {
        return {};
    }
    constexpr size_t kNamed = 20;
    std::string choices;
    for (size_t i = 0; i < std::min(facts.options.size(), kNamed); ++i) {
        choices += (i > 0 ? ", " : "") + facts.options[i];
    }
    if (facts.options.size() > kNamed) {
        choices += " and " + std::to_string(facts.options.size() - kNamed) + " more";
    }
    return '"' + std::string(text) + "\" is not among its choices (" + choices + ')';
}

std::string numberText(double value, int decimals) {
    char buffer[400];  // the longest double has 309 digits in front of the point
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                                   std::clamp(decimals, 0, 17))
                         .ptr;
    std::string text(buffer, end);
    if (text.find('.') != text.npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') {
            text.pop_back();
        }
    }
    return text == "-0" ? "0" : text;
}

int decimalsOf(std::string_view text) {
    const size_t point = text.find('.');
    return point == text.npos ? 0 : static_cast<int>(std::min<size_t>(text.size() - point - 1, 17));
}

int decimalsOf(double value) {
    return decimalsOf(numberText(value, 6));
}

}  // namespace zoka
