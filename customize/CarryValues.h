// Moves a user's values from one version of a script into another, and keeps those that find no place there.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "customize/ScriptRows.h"

namespace zoka {

struct KeptValue {
    int id = -1;
    int kind = -1;
    std::string label;
    std::string value;
    TextSet set = TextSet::System;  // of both
    std::string definition = {};    // what stands beside the value in its line: "var range ="; in UTF-8
};

struct UnplacedValue {
    KeptValue kept;
    std::string reason;  // in UTF-8, but for what stands in a script's texts
};

// What an entry with a value has in common with those of its kind in other versions of the script: its id, or without
// one its label, which is in that set. Several may share it.
std::string entryKey(int id, const std::string& label, TextSet set);
// For each entry of `from` with a value its counterpart in `to`, by id or, without one, by label; those that
// share it in their order. -1 where there is none. Linear.
std::vector<std::ptrdiff_t> matchEntries(const CustomScript& from, const CustomScript& to);

// The current values of the rows: of all that have an id, as in the value file, or of all that have changed.
enum class ValuesToKeep { AllWithId, Changed };
std::vector<KeptValue> valuesToKeep(const ScriptRows& panel, ValuesToKeep which);

// Why an entry of a new version doesn't take a kept value: its field or its limits refuse it, or it means
// something else now (a switch that became a list). Empty when it does.
std::string carryRefusal(const KeptValue& kept, const CustomEntry& entry, const EntryFacts& facts);

// Where values are carried to: to another version of their script, in which an id names the same thing whatever its
// label is by now, or to what another program or person has made of the file, which may be another script by now.
enum class CarryTo { NewVersion, ChangedFile };

// Puts each value into the entry with its id, values of an id that stands there several times in their order;
// without an id into the entry of the same label. Values that the new entry refuses, its limits included, and
// those without an entry are handed back; in a changed file those, too, whose entry has both another label and another
// definition. Linear.
std::vector<UnplacedValue> carryValues(const std::vector<KeptValue>& values, ScriptRows& panel,
                                       CarryTo to = CarryTo::NewVersion);

// Values without an id that the user gave to `before` and that `after` doesn't have: no value file keeps
// them.
std::vector<UnplacedValue> lostWithoutId(const ScriptRows& before, const ScriptRows& after);

// One line per value: "Range (id 4): 150 - the reason". In UTF-8.
std::string unplacedText(const std::vector<UnplacedValue>& values);

// The content of the file with the values that found no place (kLeftOverEnding): `earlier` is what the file held so
// far (or empty), whose records stay unless a newer one has their id. Values without an id stand at the end, in a form
// that readers of value files pass over.
std::string oldValuesText(const std::string& earlier, const CustomScript& script,
                          const std::vector<UnplacedValue>& values);
// Adds the values to the file beside the script; nothing is written when there are none.
Outcome keepOldValues(const CustomScript& script, const std::vector<UnplacedValue>& values);

}  // namespace zoka
