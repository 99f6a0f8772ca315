// What an action's markup says about the skills and flags of the entities that it is attached to.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "customize/CustomScript.h"

namespace zoka {

// A row's `id` tells what it shows: its kind in the high byte, the number in the low one.
inline constexpr int kFlagIds = 0x1600;
inline constexpr int kSkillIds = 0x1F00;

struct NumberedName {
    std::uint8_t number = 0;
    std::string name;
};

// The rows of one action. Filled by LoadBehaviorPanel; may be used on any thread, by one at a time.
struct BehaviorPanel {
    // Where the action stands, as the host says; set before loading. Position and length in bytes.
    std::string scriptName;
    std::int32_t blockStart = 0;
    std::int32_t blockLength = 0;
    // Shown where the action declares nothing, in UTF-8; set before loading.
    std::vector<NumberedName> defaultSkillNames, defaultFlagNames;

    // In the markup's order. Of a skill or a flag `label` is its name, `value` its default and `line` where it
    // stands in the script; a description's text is its `label`.
    std::vector<CustomEntry> rows;
    // Of the script, and so of all texts of the rows and findings; UTF-8 where names are shown that its set lacks.
    TextSet set = TextSet::System;
    int declaredCount = 0;  // of skills and flags, not those shown for lack of them
    MarkupFindings findings;

    // The last title: the caption of the panel's window. Empty when there is none.
    std::string caption() const;
};

// Reads the script and makes the rows. Without a script's name, and for a script that can't be read, is empty or
// ends before the block does, there are no rows.
void LoadBehaviorPanel(BehaviorPanel& panel);
// The same of a script's text at hand.
void readBehaviorMarkup(const std::string& script, BehaviorPanel& panel);
// The same of an action's block alone, which begins in that line of its script; `panel.set` is set before.
void readActionBlock(std::string_view block, int firstLine, BehaviorPanel& panel);
// What is said of a script in UTF-16, which declares nothing.
inline constexpr const char* kUtf16Script = "This file is UTF-16; save it as 8-bit or UTF-8 text.";
// The rows for want of any declared: the default names, or else two lines that tell where values can be changed.
void addUndeclaredRows(BehaviorPanel& panel);

// The number that a row's value goes to, or 0: skills 1 to 20, flags 1 to 8.
int skillNumber(const CustomEntry& row);
int flagNumber(const CustomEntry& row);
// Whether it is one of these two.
inline bool isEntityValue(const CustomEntry& row) {
    return skillNumber(row) > 0 || flagNumber(row) > 0;
}
// "skill3", "flag1"; empty for other rows.
std::string fieldName(const CustomEntry& row);

// What shows the row, whose texts are in that set: its default is the value. A title has nothing in the panel.
EntryFacts behaviorFacts(const CustomEntry& row, TextSet set);

// A skill's value as text and back: at most six decimals, no exponent. Nothing for a text that isn't all of a
// finite number.
std::string skillText(float value);
std::optional<float> skillOfText(std::string_view text);
// Why a text is none, in words for the user.
const char* skillRefusal(std::string_view text);

}  // namespace zoka
