// Texts and rows of the suite's files in JSON, which is UTF-8.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "controls/EntryFacts.h"

namespace zoka::cli {

// Keeps what is UTF-8; any other text is taken as Windows-1252.
std::string jsonText(const std::string& text);
nlohmann::ordered_json jsonTexts(const std::vector<std::string>& texts);
// What the row may take: its limits and step, its choices.
void addAllowed(nlohmann::ordered_json& one, const EntryFacts& facts);
// To the standard output, indented, with a line feed at the end.
void printJson(const nlohmann::ordered_json& json);

}  // namespace zoka::cli
