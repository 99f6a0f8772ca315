// Brings a script up to its template's version and keeps the user's values, without a window or a question.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "customize/CarryValues.h"

namespace zoka {

struct ValueUpdatePlan {
    std::string before;                   // the script's bytes
    std::string after;                    // what they will be
    ScriptPanel old;                      // the script as it is
    std::vector<UnplacedValue> unplaced;  // values that the new version has no place for
    size_t kept = 0;                      // values that differ from the template's own and were put in
};
// Nothing, with the reason in `why`, when one of the two can't be read.
std::optional<ValueUpdatePlan> planValueUpdate(const std::string& scriptPath, const std::string& templatePath,
                                               std::string& why);

// Replaces the script by its template with the values put in; the value file then holds them too, and what
// found no place is added to the file of old values first. False, with the script as it was, when any of it
// can't be done; `why` then says so in words. `unplaced` may be null.
bool updateKeepingValues(const std::string& scriptPath, const std::string& templatePath, std::string& why,
                         std::vector<UnplacedValue>* unplaced = nullptr);

// The template's bytes as they are for the script: a numbered copy ("lift_3.kez" of "lift_.kez") has its
// number in the place of each "%_%". Nothing when the file can't be read.
std::optional<std::string> templateTextFor(const std::string& scriptPath, const std::string& templatePath);
// The file name of the template that a numbered copy was made of; empty for a name that ends in no number.
std::string numberedTemplateOf(const std::string& scriptPath);

}  // namespace zoka
