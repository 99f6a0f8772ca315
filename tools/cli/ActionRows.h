// The rows that an action's markup declares, as the tool prints them.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "customize/BehaviorPanel.h"

namespace zoka::cli {

// "skill3 Speed"; the field alone where it has no label.
std::string nameOf(const CustomEntry& row);
nlohmann::ordered_json jsonOf(const CustomEntry& row, TextSet set);
// "\t(text)"; nothing for an empty text.
std::string inParentheses(const std::string& text);

}  // namespace zoka::cli
