// A script loaded for customization, and the items in it that a user may change.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/EntryControl.h"
#include "controls/EntryFacts.h"
#include "customize/CustomKeywords.h"
#include "customize/MarkupFindings.h"
#include "util/JobProgress.h"
#include "util/OsFiles.h"

namespace zoka {

// Values of CustomEntry::controlKind.
enum ControlKind : int {
    kNoControl = -1,
    kSpin = 0,
    kDropList = 1,
    kDropPair = 2,
    kSliderControl = 3,
};

struct CustomEntry {
    int kind = kNoKeyword;
    int id = -1;            // 1 or more: kept in the value file
    int line = 0;           // of its keyword in the script, from 1
    std::string label;      // of a picture its file's name
    std::string help;       // lines parted by CR LF
    std::string value;      // without quotes or brackets
    size_t valueStart = 0;  // the value's span in the script's text: what saving replaces
    size_t valueLength = 0;
    int controlKind = kNoControl;
    int textParam1 = 0;  // of entry_text: lines shown
    int textParam2 = 0;  // of entry_text: most characters
    double minimum = 0, maximum = 0, step = 0;
    std::vector<std::string> options;
    EntryControl* control = nullptr;  // not owned; null while it has none

    bool hasValue() const { return kind == kEnable || (kind >= kEntryNumEdit && kind <= kEntryText); }
    // Whether `minimum`, `maximum` and `step` count.
    bool isLimited() const { return controlKind == kSpin || controlKind == kSliderControl; }
};

// The text stays as it was loaded while the entries' spans are in use. Movable; entries hold no pointers into
// the text.
struct CustomScript {
    std::string scriptPath;            // at most 259 characters
    std::optional<OsEntry> onDisk;     // the file when it was read or saved; nothing when that isn't known
    std::string text;                  // for reading it always ends with CR LF
    TextSet set = TextSet::System;     // of the whole text, and so of all texts of the entries
    size_t fileLength = 0;             // how much of the text the file held: what is written back
    std::vector<CustomEntry> entries;  // in the order in which they were completed
    int version = 0;
    int date = 0;
    MarkupFindings findings;
    // Reading ended before the script's end, because its entries would take more memory than a panel may.
    bool tooLarge = false;

    std::string_view fileText() const { return std::string_view(text).substr(0, fileLength); }
};

// What the entries of one script may take, with the rows that show them: some 800,000 of the usual size.
inline constexpr size_t kMostEntryBytes = 300'000'000;

// What is said of a script in UTF-16, which offers nothing.
inline constexpr const char* kUtf16ToCustomize =
    "This file is UTF-16; save it as 8-bit or UTF-8 text to customize it";

// A path's longest form; longer names are cut.
inline constexpr size_t kMaxScriptPath = 259;

// Reads and parses the script. Refused, with `script` as it was and no message, when the name is empty, the file can't
// be read or is 2 GiB or larger, or has so many entries that they don't fit into the memory that an editor of 32 bits
// can spare (see kMostEntryBytes), or when `progress` (may be null) stopped it.
Outcome LoadCustomScript(const std::string& fileName, CustomScript& script, JobProgress* progress = nullptr);
// The same of a text at hand, which is what the file holds. False when it was stopped.
bool parseCustomText(std::string fileText, CustomScript& script, JobProgress* progress = nullptr);

// Findings that need the whole list: an id used twice, values outside their limits, lists without the current
// value. Part of loading.
void checkCustomEntries(CustomScript& script);
// Those of them that are about one entry's value. They stand at the findings' end.
void checkCustomValue(CustomScript& script, const CustomEntry& entry);

// Pictures that can't be shown; `pathOf` tells where the file of a name is looked for. Reads them.
void checkPictures(CustomScript& script, const std::function<std::string(const std::string&)>& pathOf);

// The host's names, in one list that all rows share; null when there are none.
using HostNames = std::shared_ptr<const std::vector<std::string>>;

// What the rows of all panels have in common: an entry's texts, in that set, and how one without a value is shown.
EntryFacts plainFacts(const CustomEntry& entry, TextSet set);
// Those of the entry's control, where it has limits.
void setLimits(const CustomEntry& entry, EntryFacts& facts);
// The row of a panel that shows the entry. `hostNames` are offered for entities and paths.
EntryFacts factsOf(const CustomScript& script, const CustomEntry& entry, const HostNames& hostNames = {});

// The two choices of a "drop_pair": of yes/no, on/off, true/false and 1/0 the pair that `value` belongs to,
// written as the value is ("No" gives Yes and No); on/off for any other value.
std::vector<std::string> dropPairOf(std::string_view value);

}  // namespace zoka
