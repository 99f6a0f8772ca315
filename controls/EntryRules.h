// Which texts an entry takes as its value, and why not others.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "controls/EntryFacts.h"

namespace zoka {

// The number that is all of `text`: an optional sign, digits, at most one point. No exponent, no locale.
std::optional<double> numberOf(std::string_view text);

// Why a number with blanks or line ends around it is none; empty for every other text.
std::string blanksRefusal(std::string_view text);

// Why writing `text` would break the script's definition, in words for the user; empty when it would not.
std::string shapeRefusal(const EntryFacts& facts, std::string_view text);
// The same of anything that speaks against `text` but the limits: also what the field can't hold.
std::string fieldRefusal(const EntryFacts& facts, std::string_view text);
// Why a value that another version of the file holds can't be put there as it stands: only what would break the
// definition, or make it another kind of entry, speaks against it.
std::string storedRefusal(const EntryFacts& facts, std::string_view text);
// Why a user's entry of `text` is refused; empty when it isn't. What was loaded is always allowed.
std::string entryRefusal(const EntryFacts& facts, std::string_view text);

// "allowed: 0 to 100", "allowed: 0 or more"; empty without limits.
std::string allowedRange(const EntryFacts& facts);

// `text` without the < and > around it.
std::string_view withoutBrackets(std::string_view text);

// Whether a drop list has choices at all, and whether `text` is one of them, to the letter. Where a value keeps its
// brackets, a choice is the same with and without them.
bool hasChoices(const EntryFacts& facts);
bool isSameChoice(const EntryFacts& facts, std::string_view choice, std::string_view text);
bool isChoice(const EntryFacts& facts, std::string_view text);
// Why a list does not take the value; empty when it offers it, or is no list. The tool sets others with --force.
std::string choiceRefusal(const EntryFacts& facts, std::string_view text);

// A number with at most `decimals` digits behind the point, without zeros at its end.
std::string numberText(double value, int decimals);
// Digits behind the point of a number in text, and those that `value` needs (at most 6).
int decimalsOf(std::string_view text);
int decimalsOf(double value);

}  // namespace zoka
