#include "customize/MarkupLine.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "controls/EntryRules.h"
#include "customize/CustomScript.h"
#include "util/LexChars.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

// Of a keyword: a colon may stand with or without blanks.
constexpr std::string_view kKeywordSeparators = " \t:";
constexpr double kMinimumDefault = -999999.0;
constexpr double kMaximumDefault = 999999.0;
constexpr size_t kUsualChoices = 4;  // of a drop list; more take a little longer

// A limit of a "cntl" line; false when it's no number (and then 0).
bool readLimit(std::string_view token, double ifX, double& value) {
    if (token.empty()) {
        return true;
    }
    if (equalNoCase(token, "x")) {
        value = ifX;
        return true;
    }
    const auto number = numberOf(token);
    if (number) {
        value = *number;
        return true;
    }
    // What a number's beginning is worth counts.
    size_t length = lex::isSign(token[0]) ? 1 : 0;
    for (bool point = false; length < token.size(); ++length) {
        if (token[length] == '.' && !point) {
            point = true;
        } else if (!lex::isDecimal(token[length])) {
            break;
        }
    }
    value = numberOf(token.substr(0, length)).value_or(0);
    return false;
}

}  // namespace

MarkupLine splitMarkupLine(std::string_view line) {
    LineTokens tokens(line.substr(2), kKeywordSeparators);
    MarkupLine parts;
    parts.keyword = tokens.next();
    parts.colon = withoutLeadingBlanks(tokens.rest()).starts_with(':');
    std::string_view text = tokens.rest();
    while (!text.empty() && (text.front() == ':' || lex::isBlank(text.front()))) {
        text.remove_prefix(1);
    }
    if (!text.empty() && text.front() && !lex::isLineEnd(text.front())) {
        parts.text = trimmed(text);
    }
    return parts;
}

bool readControl(std::string_view text, CustomEntry& entry, std::string* fault) {
    LineTokens tokens(text, kBlanks);
    const std::string_view word = tokens.next();
    const auto complain = [&](std::string what) {
        if (fault && fault->empty()) {
            *fault = std::move(what);
        }
    };
    if (equalNoCase(word, "drop_list") || equalNoCase(word, "drop")) {
        entry.controlKind = kDropList;
        entry.options.clear();
        entry.options.reserve(kUsualChoices);
        for (std::string_view option = tokens.next(); !option.empty(); option = tokens.next()) {
            entry.options.emplace_back(option);
        }
        const auto comma = std::ranges::find_if(entry.options, [](const std::string& option) {
            return option.starts_with(',') || option.ends_with(',');
        });
        if (comma != entry.options.end()) {
            complain("choices are parted by blanks: the comma of " + quotedBeginning(*comma) +
                     " is a part of a choice of " + quotedBeginning(entry.label));
        }
        if (entry.options.empty()) {
            complain("the list of choices of " + quotedBeginning(entry.label) + " is empty");
        }
        return true;
    }
    if (equalNoCase(word, "drop_pair")) {
        entry.controlKind = kDropPair;
        return true;
    }
    const bool slider = equalNoCase(word, "slider");
    if (!slider && !equalNoCase(word, "spin")) {
        return false;
    }
    entry.controlKind = slider ? kSliderControl : kSpin;
    entry.minimum = kMinimumDefault;
    entry.maximum = kMaximumDefault;
    entry.step = 0;
    for (const auto& [value, ifX] :
         {std::pair(&entry.minimum, kMinimumDefault), std::pair(&entry.maximum, kMaximumDefault),
          std::pair(&entry.step, slider ? 1.0 : 0.0)}) {
        const std::string_view token = tokens.next();
        if (!readLimit(token, ifX, *value)) {
            complain(quotedBeginning(token) + " in the limits of " + quotedBeginning(entry.label) +
                     " is no number; " + numberText(*value, 6) + " was taken");
        }
    }
    if (entry.minimum > entry.maximum) {
        complain("the minimum of " + quotedBeginning(entry.label) +
                 " is above its maximum; no value is inside");
    }
    if (entry.step < 0) {
        complain("the step of " + quotedBeginning(entry.label) + " is below 0; it was ignored");
    }
    return true;
}

int markupInteger(std::string_view text, bool* fits) {
    text = withoutLeadingBlanks(text);
    if (text.starts_with('+') && text.size() > 1 && lex::isDecimal(text[1])) {
        text.remove_prefix(1);
    }
    int value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc::result_out_of_range) {
        return value;
    }
    if (fits) {
        *fits = false;
    }
    return text.front() == '-' ? INT32_MIN : INT32_MAX;
}

std::string_view readTextNumbers(std::string_view text, int& first, int& second, bool& one) {
    std::string_view rest = text;
    int numbers[2] = {0, 0};
    for (int& number : numbers) {
        size_t digits = 0;
        while (digits < rest.size() && lex::isDecimal(rest[digits])) {
            ++digits;
        }
        if (digits == 0 || digits == rest.size() || rest[digits] != ',') {
            one = rest.size() < text.size();
            return text;
        }
        number = markupInteger(rest);
        rest.remove_prefix(digits + 1);
        rest = withoutLeadingBlanks(rest);
    }
    first = numbers[0];
    second = numbers[1];
    return rest;
}

}  // namespace zoka
