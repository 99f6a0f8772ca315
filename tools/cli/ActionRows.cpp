#include "tools/cli/ActionRows.h"

#include "controls/EntryModel.h"
#include "tools/cli/Json.h"

namespace zoka::cli {

std::string nameOf(const CustomEntry& row) {
    return fieldName(row) + (row.label.empty() ? "" : ' ' + row.label);
}

nlohmann::ordered_json jsonOf(const CustomEntry& row, TextSet set) {
    nlohmann::ordered_json one;
    one["line"] = row.line;
    one["kind"] = customKeywordName(row.kind);
    if (isEntityValue(row)) {
        one["field"] = fieldName(row);
        one["default"] = jsonText(row.value);
    }
    one["label"] = jsonText(row.label);
    if (!row.help.empty()) {
        one["help"] = jsonText(row.help);
    }
    addAllowed(one, behaviorFacts(row, set));
    return one;
}

std::string inParentheses(const std::string& text) {
    return text.empty() ? "" : "\t(" + text + ')';
}

}  // namespace zoka::cli
