#include "controls/EntryRules.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "util/LexChars.h"

namespace zoka {
namespace {

constexpr std::string_view kEmptyBare = "A value must stand here: without one the definition would break.";
constexpr double kNoLimit = 999999.0;  // what a missing limit is read as

std::string refusalOfBare(std::string_view text) {
    if (text.empty()) return std::string(kEmptyBare);
    if (text.find_first_of(" \t") != text.npos)
        return "A blank is not allowed here: the value would end at it.";
    const size_t bad = text.find_first_of(":;=,");
    if (bad != text.npos)
        return std::string("\"") + text[bad] + "\" is not allowed here: the value would end at it.";
    if (text.front() == '"' || text.front() == '<')
        return std::string("The value can't begin with \"") + text.front() +
               "\": it would be read as another kind.";
    if (text.front() == '/' || text.find("//") != text.npos || text.find("/*") != text.npos)
        return "The value can't hold the slashes of a comment.";
    return {};
}

std::string refusalOfBracketed(std::string_view text) {
    const size_t bad = text.find_first_of("<>\"|?*");
    if (bad != text.npos) return std::string("\"") + text[bad] + "\" can't stand in a file name.";
    if (!text.empty() && (lex::isBlank(text.front()) || lex::isBlank(text.back())))
        return "A file name can't begin or end with a blank.";
    return {};
}

std::string refusalOfNumber(const EntrySpec& spec, std::string_view text) {
    if (text.empty()) return std::string(kEmptyBare);
    const std::string range = allowedRange(spec).empty() ? "" : " (" + allowedRange(spec) + ")";
    if (!numberOf(text) || text.find_first_of("0123456789") == text.npos)
        return (spec.decimal ? "Only a number fits here: digits, one point, a sign in front"
                             : "Only a whole number fits here") +
               range + ".";
    if (!spec.decimal && (text.find('.') != text.npos || text.front() == '+'))
        return "Only a whole number fits here" + range + ".";
    return {};
}

}  // namespace

std::optional<double> numberOf(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    bool point = false;
    for (const char c : text) {
        if (c == '.' && !point)
            point = true;
        else if (!lex::isDecimal(c))
            return std::nullopt;
    }
    double value = 0;
    const auto result =
        std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (result.ec == std::errc::result_out_of_range) value = HUGE_VAL;
    return negative ? -value : value;  // a lone sign or point is 0
}

std::string shapeRefusal(const EntrySpec& spec, std::string_view text) {
    if (text.find('\0') != text.npos) return "A character of value 0 can't be written.";
    const bool severalLines = spec.shape == ValueShape::Quoted && spec.lines > 1;
    if (!severalLines && text.find_first_of("\r\n") != text.npos) return "A line end is not allowed here.";
    switch (spec.shape) {
        case ValueShape::Bare:
            return refusalOfBare(text);
        case ValueShape::Bracketed:
            return refusalOfBracketed(text);
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

std::string fieldRefusal(const EntrySpec& spec, std::string_view text) {
    if (!hasValue(spec.field)) return "Nothing can be entered here.";
    if (std::string why = shapeRefusal(spec, text); !why.empty()) return why;
    if (spec.field == EntryField::Switch && text != "0" && text != "1")
        return "A switch is either 1 (on) or 0 (off).";
    if (isNumber(spec.field)) return refusalOfNumber(spec, text);
    return {};
}

std::string entryRefusal(const EntrySpec& spec, std::string_view text) {
    if (hasValue(spec.field) && text == spec.value) return {};
    if (std::string why = fieldRefusal(spec, text); !why.empty()) return why;
    if (isNumber(spec.field) && spec.limited) {
        const double value = *numberOf(text);
        if (value < spec.minimum || value > spec.maximum)
            return std::string(text) + " is too " + (value < spec.minimum ? "small" : "large") + " (" +
                   allowedRange(spec) + ").";
    }
    if (spec.maxChars > 0 && text.size() > static_cast<size_t>(spec.maxChars))
        return "At most " + std::to_string(spec.maxChars) + " characters fit here; these are " +
               std::to_string(text.size()) + ".";
    return {};
}

std::string allowedRange(const EntrySpec& spec) {
    if (!isNumber(spec.field) || !spec.limited) return {};
    const bool low = spec.minimum > -kNoLimit, high = spec.maximum < kNoLimit;
    const auto text = [](double value) { return numberText(value, decimalsOf(value)); };
    if (low && high) return "allowed: " + text(spec.minimum) + " to " + text(spec.maximum);
    if (low) return "allowed: " + text(spec.minimum) + " or more";
    if (high) return "allowed: " + text(spec.maximum) + " or less";
    return {};
}

std::string numberText(double value, int decimals) {
    char buffer[400];  // the longest double has 309 digits in front of the point
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                                   std::clamp(decimals, 0, 17))
                         .ptr;
    std::string text(buffer, end);
    if (text.find('.') != text.npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') text.pop_back();
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
