// The words of the customization markup. docs/customize-markup.md describes what they mean.
#pragma once

#include <cstddef>
#include <string_view>

namespace zoka {

// Places in the keyword table; those of values are the kinds of entries too, and stand in value files.
enum CustomKeyword : int {
    kNoKeyword = -1,
    kTitle = 0,
    kImage = 1,
    kText = 2,
    kSection = 3,
    kHelp = 4,
    kEntryHelp = 5,
    kId = 6,
    kCntl = 7,
    kEnable = 8,
    kAction = 9,
    kEntry = 10,
    kEntryNumEdit = 11,     // a whole number
    kEntryNumEditF = 12,    // a number with a point or a sign
    kEntryChooseFile = 13,  // a file name
    kEntryStrEdit = 14,     // a string
    kEntryEntity = 15,
    kEntryPath = 16,
    kEntryDrop = 17,
    kEntryText = 18,
    kVer = 19,
    kDate = 20,
    kDesc = 21,
    kFlag = 22,
    kFlag1 = 23,  // to flag8 = 30
    kSkill = 31,
    kSkill1 = 32,  // to skill20 = 51
    kBehavior = 52,
    kCmpEdit = 53,
    kKeywordCount = 54,
};

// The keyword's place in the table, whatever its case; -1 for any other word.
int LookupCustomKeyword(const char* word, size_t length);
inline int LookupCustomKeyword(std::string_view word) {
    return LookupCustomKeyword(word.data(), word.size());
}

// "skill" of "skill21", "flag" of "Flag1": the word before the number, whether or not entities have one of that number.
// Empty for all other words.
std::string_view numberedKeyword(std::string_view word);

// The word itself. `keyword` is a place in the table.
const char* customKeywordName(int keyword);

// The keyword that `word` is a slip away from: one letter too many, too few or wrong, or two exchanged. -1
// for keywords themselves, for words of a script's header ("data" isn't a slip of "date"), for those of ordinary
// comments ("next", "texts") and for all others.
int nearCustomKeyword(std::string_view word);

}  // namespace zoka
